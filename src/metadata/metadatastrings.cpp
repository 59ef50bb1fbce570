// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/metadatastrings.h"

#include "platform/localeformat.h"

#include <QTimeZone>

#include <cmath>

namespace plexa
{

QString exifDateTimeFormatter()
{
    return QStringLiteral("yyyy:MM:dd HH:mm:ss");
}

QVariant exposureProgramString(const QVariant &program)
{
    static constexpr const char *kNames[] = {"undefined",         "manual",           "normal program",
                                             "aperture priority", "shutter priority", "creative program",
                                             "action program",    "portrait mode",    "landscape mode"};
    if (!program.isValid())
        return {};
    const qlonglong code = program.toLongLong();
    if (code < 0 || code >= static_cast<qlonglong>(std::size(kNames)))
        return QStringLiteral("unknown");
    return QString(QLatin1StringView(kNames[code]));
}

QVariant meteringModeString(const QVariant &mode)
{
    static constexpr const char *kNames[] = {
        "average", "center-weighted average", "spot", "multi-spot", "pattern", "partial"};
    if (!mode.isValid())
        return {};
    const qlonglong code = mode.toLongLong();
    if (code == 255)
        return QStringLiteral("other");
    if (code < 1 || code > static_cast<qlonglong>(std::size(kNames)))
        return QStringLiteral("unknown");
    return QString(QLatin1StringView(kNames[code - 1]));
}

QVariant latitudeOrLongitudeString(const QVariant &number, const QVariant &reference)
{
    if (!number.isValid())
        return {};
    constexpr double kGreatest = 1e9; // beyond it a whole part does not fit an int
    const double value = number.toDouble();
    if (!(std::abs(value) < kGreatest))
        return {};
    const int degrees = static_cast<int>(value);
    const double rest = (value - degrees) * 60;
    const int minutes = static_cast<int>(rest);
    const double seconds = (rest - minutes) * 60;
    QString text = QString::asprintf("%d\u00B0 %d' %.3f\"", degrees, minutes, seconds);
    if (reference.isValid())
        text += u' ' + reference.toString();
    return text;
}

QDateTime exifDateTimeFromString(const QString &text)
{
    constexpr qsizetype kDateLength = 10;
    const QString format = exifDateTimeFormatter();
    const QDate date = QDate::fromString(text.left(kDateLength), format.left(kDateLength));
    const QTime time = QTime::fromString(text.mid(kDateLength), format.mid(kDateLength));
    if (!date.isValid() || !time.isValid())
        return {};
    const QDateTime local(date, time);
    if (local.isValid())
        return local;
    // The hour that the local clock skips in spring: cameras in other zones have it. The offset only has to
    // be one that makes the clock show this time.
    return QDateTime(date, time, QTimeZone(QDateTime(date.addDays(-1), time).offsetFromUtc()));
}

QString exifStringFromDateTime(const QDateTime &when)
{
    return onItsWallClock(when).toString(exifDateTimeFormatter());
}

} // namespace plexa
