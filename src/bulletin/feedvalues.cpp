// SPDX-License-Identifier: GPL-3.0-or-later

#include "bulletin/feedvalues.h"

#include <QDateTime>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSysInfo>

#include <algorithm>
#include <cstdlib>

namespace plexa
{

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

SystemVersion currentSystemVersion()
{
    return systemVersionOf(QSysInfo::productVersion());
}

bool isCurrentOSVersionSince(const QJsonValue &value, const SystemVersion &current)
{
    static const QRegularExpression pattern(QStringLiteral("\\A[0-9]{1,9}(\\.[0-9]{1,9}){1,2}\\z"));
    const QString least = value.toString();
    return !pattern.match(least).hasMatch() || current >= systemVersionOf(least);
}

QString preferredText(const QJsonArray &objects, const QString &key, const QStringList &preferredLanguages,
                      const std::function<bool(const QString &)> &isUsable)
{
    QString chosen;
    for (const auto &element : objects) {
        const QJsonObject object = element.toObject();
        const QString text = object[key].toString();
        const QString language = object[u"language"].toString();
        const bool isPreferred =
            std::any_of(preferredLanguages.begin(), preferredLanguages.end(),
                        [&](const QString &own) { return own.startsWith(language, Qt::CaseInsensitive); });
        if (isUsable(text) && (language.isEmpty() ? chosen.isEmpty() : isPreferred))
            chosen = text;
    }
    return chosen;
}

bool isWithinADay(const QString &date)
{
    constexpr qint64 kSecondsOfADay = 86'400;
    const auto time = QDateTime::fromString(date, Qt::ISODate);
    return time.isValid() && std::abs(time.secsTo(QDateTime::currentDateTimeUtc())) < kSecondsOfADay;
}

} // namespace plexa
