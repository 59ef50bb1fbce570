// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDateTime>
#include <QString>
#include <QVariant>

namespace plexa
{

/// "normal program" and so on for EXIF's exposure program; invalid when absent.
QVariant exposureProgramString(const QVariant &program);

/// "spot" and so on for EXIF's metering mode; invalid when absent.
QVariant meteringModeString(const QVariant &mode);

/// Degrees, minutes and seconds, with the reference letter after a blank where there is one:
/// 48° 51' 30.240" N. Each part keeps the sign of a negative number. Invalid without a number.
QVariant latitudeOrLongitudeString(const QVariant &number, const QVariant &reference);

/// The form of EXIF's dates and times, "yyyy:MM:dd HH:mm:ss", as QDateTime::toString() reads it.
QString exifDateTimeFormatter();

/// An EXIF date and time, in the local time zone, or in one that shows the same clock where the local one
/// skips that hour. Invalid for anything else, a day that does not exist included.
QDateTime exifDateTimeFromString(const QString &text);

/// The EXIF form of a point in time, on its wall clock (onItsWallClock()).
QString exifStringFromDateTime(const QDateTime &when);

} // namespace plexa
