// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exiv2/exiv2.hpp>

namespace plexa
{

/// Removes EXIF's subject area and location, which name a place of the picture.
void eraseRegionsFromExif(Exiv2::ExifData &exif);

/// Removes the same of XMP, and the regions of faces and people (Metadata Working Group, Microsoft and two
/// photo managers).
/// @return have regions of people been removed?
bool eraseRegionsFromXmp(Exiv2::XmpData &xmp);

} // namespace plexa
