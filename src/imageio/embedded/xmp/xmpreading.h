// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/metadatafields.h"

#include <QVariant>

#include <exiv2/exiv2.hpp>

namespace plexa
{

/// The value that XMP has for a field; invalid when it has none or none that can be read.
QVariant xmpField(const Exiv2::XmpData &xmp, const MetadataField &field);

/// Adds fractions of seconds and offsets from UTC that XMP has at the end of its times, for those times that
/// the dictionaries do not have from elsewhere. To be called before the times are read from XMP.
/// @param exif  "{Exif}"
/// @param tiff  "{TIFF}" as far as it is known, for the time of the last change
void insertTimesFromXmp(QVariantMap &exif, const QVariantMap &tiff, const Exiv2::XmpData &xmp);

/// Adds the time of creation from XMP's date of creation, and the place where the photo was taken (IPTC
/// Extension) where neither IIM nor IPTC Core name one. Present values stay; so does a place that has one of
/// its parts already.
void insertIptcFromXmp(QVariantMap &iptc, const Exiv2::XmpData &xmp);

/// Adds the facts for which XMP has one property in place of two EXIF ones: reference letters, date and time
/// of the fix. Present values stay.
void insertGpsFromXmp(QVariantMap &gps, const Exiv2::XmpData &xmp);

} // namespace plexa
