// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/base/pictureturn.h"

#include <exiv2/exiv2.hpp>

namespace plexa
{

// Parts of the picture that metadata name, faces and the subject, turned along with it.

/// Turns EXIF's subject area and location (pixels: point, circle or rectangle around its centre).
void turnRegionsInExif(Exiv2::ExifData &exif, const PictureTurn &turn);

/// Turns the regions of the Metadata Working Group (mwg-rs: centre and size, normalised) and Microsoft (MP:
/// top left and size, normalised), and EXIF's areas in XMP. Regions in other forms are removed.
/// @return have regions been removed?
bool turnRegionsInXmp(Exiv2::XmpData &xmp, const PictureTurn &turn);

} // namespace plexa
