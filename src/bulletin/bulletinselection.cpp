// SPDX-License-Identifier: GPL-3.0-or-later

#include "bulletin/bulletinselection.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

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

/// Whether a feed may send a browser to an address.
bool isPage(const QString &location)
{
    const QUrl url(location);
    const bool isOnTheNet = url.scheme() == u"https" || url.scheme() == u"http";
    return isOnTheNet && url.isValid() && !url.host().isEmpty();
}

QUrl urlToShow(const QJsonArray &sources, const QStringList &preferredLanguages)
{
    return QUrl(preferredText(sources, QStringLiteral("location"), preferredLanguages, isPage));
}

} // namespace

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
