// SPDX-License-Identifier: GPL-3.0-or-later

#include "bulletin/bulletinselection.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <limits>

namespace plexa
{

namespace
{

/// A number without its fraction.
std::optional<double> wholeNumber(const QJsonValue &value)
{
    if (!value.isDouble())
        return std::nullopt;
    return std::trunc(value.toDouble());
}

bool isCurrentOSVersionSince(const QJsonValue &value, const SystemVersion &current)
{
    static const QRegularExpression pattern(QStringLiteral("\\A[0-9]{1,9}(\\.[0-9]{1,9}){1,2}\\z"));
    const QString least = value.toString();
    return !pattern.match(least).hasMatch() || current >= systemVersionOf(least);
}

bool isCurrentAppWithinBundleIDs(const QJsonValue &value, const QString &bundleID)
{
    return !value.isArray() || value.toArray().contains(bundleID);
}

QDate dayOf(const QJsonValue &value)
{
    return QDate::fromString(value.toString(), QStringLiteral("yyyy-MM-dd"));
}

/// The range does not contain the day that it ends on.
bool isCurrentDateWithinRange(const QJsonValue &from, const QJsonValue &to, const QDate &today)
{
    const QDate first = dayOf(from);
    const QDate end = dayOf(to);
    return (!first.isValid() || first <= today) && (!end.isValid() || today < end);
}

bool isEligible(const QJsonObject &bulletin, const BulletinAudience &audience)
{
    const QString id = bulletin[u"bulletinID"].toString();
    if (id.isEmpty() || audience.suppressed.contains(id))
        return false;
    const auto leastRuns = wholeNumber(bulletin[u"min_app_launch_count"]);
    if (leastRuns && static_cast<double>(audience.runNumber) < *leastRuns)
        return false;
    if (!isCurrentAppWithinBundleIDs(bulletin[u"bundle_ids"], audience.bundleID) ||
        !isCurrentOSVersionSince(bulletin[u"minOSversion"], audience.systemVersion) ||
        !isCurrentDateWithinRange(bulletin[u"from"], bulletin[u"to"], audience.today))
        return false;
    const auto mostTimes = wholeNumber(bulletin[u"times_shown"]);
    return !mostTimes || *mostTimes > static_cast<double>(std::max<qint64>(0, audience.timesShown.value(id)));
}

/// The page at an address; empty if a browser must not be sent there by a feed.
QUrl pageAt(const QJsonValue &location)
{
    const QUrl url(location.toString());
    const bool isPage = url.scheme() == u"https" || url.scheme() == u"http";
    return isPage && url.isValid() && !url.host().isEmpty() ? url : QUrl();
}

/// The last page in a preferred language; else the page without a language, if it comes first.
QUrl urlToShow(const QJsonArray &sources, const QStringList &preferredLanguages)
{
    QUrl chosen;
    for (const auto &element : sources) {
        const QJsonObject source = element.toObject();
        const QUrl page = pageAt(source[u"location"]);
        const QString language = source[u"language"].toString();
        const bool isPreferred =
            std::any_of(preferredLanguages.begin(), preferredLanguages.end(),
                        [&](const QString &own) { return own.startsWith(language, Qt::CaseInsensitive); });
        if (!page.isEmpty() && (language.isEmpty() ? chosen.isEmpty() : isPreferred))
            chosen = page;
    }
    return chosen;
}

} // namespace

SystemVersion systemVersionOf(const QString &text)
{
    static const QRegularExpression digits(QStringLiteral("\\A[0-9]{1,9}"));
    SystemVersion version{};
    const QStringList parts = text.split(u'.');
    const auto count = std::min(static_cast<std::size_t>(parts.size()), version.size());
    for (std::size_t i = 0; i < count; ++i)
        version.at(i) = digits.match(parts.at(static_cast<qsizetype>(i))).captured().toInt();
    return version;
}

Result<std::optional<Bulletin>> bulletinToShowFromJSONData(const QByteArray &feed,
                                                           const BulletinAudience &audience)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(feed, &error);
    if (error.error != QJsonParseError::NoError)
        return fail(QStringLiteral("Failed to get or parse the JSON bulletin. Parse error: ") +
                    error.errorString());
    const QJsonValue bulletins = document.object()[u"bulletins"];
    if (!bulletins.isArray())
        return fail(QStringLiteral("ERROR: No root object in the bulletin JSON"));

    std::optional<QJsonObject> best;
    double lowest = 0;
    for (const auto &element : bulletins.toArray()) {
        const QJsonObject bulletin = element.toObject();
        const double priority = bulletin[u"priority"].toDouble(std::numeric_limits<double>::infinity());
        if ((best && priority >= lowest) || !isEligible(bulletin, audience))
            continue;
        best = bulletin;
        lowest = priority;
    }
    if (!best)
        return std::optional<Bulletin>();
    return Bulletin{(*best)[u"bulletinID"].toString(),
                    urlToShow((*best)[u"sources"].toArray(), audience.preferredLanguages),
                    (*best)[u"allow_suppress"].toBool()};
}

} // namespace plexa
