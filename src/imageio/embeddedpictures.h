// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/metadataset.h"

#include <QByteArray>

namespace plexa
{

/// Removes from EXIF every picture that shows the photo: the thumbnail directory, previews in maker notes,
/// further directories of raw and TIFF files with the tags that say where their pixels lie, and any field
/// whose data hold the start of a JPEG or PNG.
void erasePicturesFromExif(Exiv2::ExifData &exif);

/// Removes from XMP thumbnails, depth maps and other pictures, and what describes pictures that a copy does
/// not have any more (gain maps, motion photos, the list of a container's items, extended packets).
/// To be called under lockXmpNamespaces().
void erasePicturesFromXmp(Exiv2::XmpData &xmp);

/// Does a JPEG or PNG begin anywhere in these bytes?
bool holdsPictureStart(const char *data, size_t size);

} // namespace plexa
