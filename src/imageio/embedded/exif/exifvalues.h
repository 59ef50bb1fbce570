// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/metadatafields.h"

#include <QVariant>

#include <exiv2/exiv2.hpp>

namespace plexa
{

/// A stored EXIF value as a value of the property dictionary; invalid when it does not fit the kind or is
/// unknown (zero divided by zero).
/// @param isTrimmed  texts lose the blanks at their end
/// @param order      of the file, for Unicode comments
QVariant propertyOfValue(const Exiv2::Value &value, MetadataKind kind, bool isTrimmed,
                         Exiv2::ByteOrder order);

/// "0221" is [2, 2, 1], "0100" is [1, 0]; invalid for anything but four digits.
QVariant versionOf(const QByteArray &digits);

/// Is this one number or several, bytes included?
bool isNumeric(const Exiv2::Value &value);

/// Element `n` of a numeric value: int, long long or the quotient of a rational as double. Invalid: a
/// quotient by zero.
QVariant numberOfValue(const Exiv2::Value &value, long n);

/// All elements, 0 for the unknown; empty when the value is no numbers or too many.
QVariantList numbersOfValue(const Exiv2::Value &value);

/// The field of this key; null: absent.
const Exiv2::Exifdatum *exifDatum(const Exiv2::ExifData &exif, const char *key);

/// The field in words for the user: "user comment", "maker note", "maker note field LensData", "EXIF field
/// 0xfde8".
QString exifFieldName(const Exiv2::Exifdatum &datum);

/// Is there a field of this group ("Photo", "Nikon3")?
bool hasExifGroup(const Exiv2::ExifData &exif, const char *group);

/// The bytes of a value, numbers in little endian; empty when it is longer than the limit.
inline constexpr long kMaxTextBytes = 1024 * 1024;
QByteArray bytesOfValue(const Exiv2::Value &value, long maxBytes = kMaxTextBytes);

/// The character set that an IPTC record states (data set 1:90), for decodedIptcText(); empty: none.
QByteArray iptcCharacterSet(const Exiv2::IptcData &iptc);

/// Converts all texts of the record to UTF-8, also those that only claim to be, and marks the record as
/// UTF-8.
void makeUtf8(Exiv2::IptcData &iptc);

/// A text, or numbers as a text; invalid when it is blank.
QVariant textOfValue(const Exiv2::Value &value, bool isTrimmed);

} // namespace plexa
