// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/metadatafields.h"

#include <QStringList>

#include <exiv2/exiv2.hpp>

#include <string>

namespace plexa
{

/// A dictionary value in the form that the metadata library reads for EXIF.
struct ExifText {
    Exiv2::TypeId type = Exiv2::invalidTypeId; ///< invalid: the value does not fit the field
    std::string text;
    bool isBytes = false; ///< the very bytes to store, else numbers in text form
};

/// @param type  the field's own type in EXIF
ExifText exifText(MetadataKind kind, const QVariant &value, Exiv2::TypeId type, bool bigEndian);

/// A dictionary value as XMP writes it, one text an item; empty when XMP has no form for it.
QStringList xmpTexts(MetadataKind kind, const QVariant &value);

/// The texts of a text, a number or an array of them.
QStringList propertyTexts(const QVariant &value);

/// "28/10" for 2.8: the quotient nearest to a number with both parts below 2^31, or below 2^32 over 1. Empty:
/// greater numbers, infinite ones and NaN.
QString rationalText(double number);

} // namespace plexa
