// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QLatin1String>
#include <QVariantMap>

#include <span>

namespace plexa
{

/// The dictionaries of a property dictionary. Contact lies inside of Iptc; Top is the whole, which holds the
/// others and some values of its own.
enum class MetadataGroup { Tiff, Exif, ExifAux, Gps, Iptc, Contact, Top };

/// How a stored value becomes a value of the dictionary.
enum class MetadataKind {
    Text,
    TextList,  ///< repeatable: an array of texts
    Copyright, ///< photographer's and editor's notice, parted by NUL in EXIF and by a line break here
    Comment,   ///< with a character code in front
    DateTime,  ///< "yyyy:MM:dd HH:mm:ss"
    IptcDate,  ///< "yyyyMMdd"
    Integer,
    IntegerList, ///< an array, even of one
    Number,      ///< rational or integer
    NumberList,
    Version,   ///< "0221" is [2, 2, 1]
    Degrees,   ///< degrees, minutes, seconds: one number of degrees; the letter stands in a field of its own
    TimeOfDay, ///< "HH:mm:ss", with a fraction where the file has one
};

/// One fact and every place where a file may store it.
struct MetadataField {
    MetadataGroup group;
    QLatin1StringView key;
    MetadataKind kind;
    const char *exif; ///< the library's key, null: EXIF has no place for it
    const char *iptc;
    const char *xmp;
    int iptcMaxBytes; ///< 0: no IPTC
};

/// The table of all facts that the property dictionary models.
std::span<const MetadataField> metadataFields();

/// The key of the dictionary that holds the group ("{IPTC}" for Contact, too); null for Top.
QLatin1StringView dictionaryKey(MetadataGroup group);

/// The group's dictionary; empty when it is absent.
QVariantMap groupDictionary(const QVariantMap &properties, MetadataGroup group);

} // namespace plexa
