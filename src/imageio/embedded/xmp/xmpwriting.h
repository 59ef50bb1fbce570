// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/metadatafields.h"

#include <QStringList>
#include <QVariantMap>

#include <exiv2/exiv2.hpp>

namespace plexa
{

/// A simple XMP value with just this text; the library's own reading looks for commands in it.
Exiv2::XmpTextValue plainXmpText(const std::string &text);

/// Replaces the values of an XMP property and its parts by these texts, in the form that the property has
/// in its vocabulary: a list, one text for the default language, or one plain text. The texts are stored as
/// they are, but for characters that XML cannot hold. Throws what the library throws
/// for a name that it does not know.
/// @param name       the library's key, "Xmp.dc.creator"
/// @param separator  stands between texts that have to become one plain text
void putXmpTexts(Exiv2::XmpData &xmp, const char *name, const QStringList &texts,
                 const QString &separator = QStringLiteral("; "));

/// Gives XMP a field's value; a value that XMP has no form for removes the property.
/// @param name  one of the properties that hold the field's fact
void putXmpField(Exiv2::XmpData &xmp, const char *name, const MetadataField &field, const QVariant &value);

/// Makes a property that holds other properties, where there is none of this name.
void addXmpStructure(Exiv2::XmpData &xmp, const char *name);

/// The points in time that EXIF spreads over three fields (date, fraction of a second, offset from UTC) and
/// XMP holds in one.
struct SplitDate {
    QLatin1StringView date;
    MetadataGroup dateGroup;
    QLatin1StringView fraction;
    QLatin1StringView zone;
};

/// The row for the field; null: the field is no such date.
const SplitDate *splitDateOf(const MetadataField &field);

/// "2010-08-13T21:00:01.85-06:00", as far as the dictionaries know it; empty when they do not know the date.
QString xmpDateText(const SplitDate &split, const QVariantMap &properties);

} // namespace plexa
