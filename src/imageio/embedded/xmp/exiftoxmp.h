// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/clearedgroups.h"

#include <QVariantMap>

#include <exiv2/exiv2.hpp>

namespace plexa
{

/// Puts what the dictionaries say of EXIF's facts into XMP, for a file that has no place for EXIF. Each fact
/// goes to its home of "Exif metadata for XMP" (CIPA DC-010); what XMP says already stays. Left out are
/// facts without a home, and those of the file rather than of the photo: resolution, orientation, layout of
/// the pixels. To be called after addIptcToXmp(), before the picture itself is
/// described.
/// @param properties  the property dictionary of the metadata after all edits and clearings
/// @param cleared     where IPTC is, description, artist and copyright of TIFF get TIFF's own names in
///                    place of those that are IPTC's mirror
void addExifToXmp(Exiv2::XmpData &xmp, const QVariantMap &properties, ClearedGroups cleared);

} // namespace plexa
