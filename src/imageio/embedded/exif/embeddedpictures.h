// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/metadataset.h"

#include <QByteArray>
#include <QStringList>

namespace plexa
{

/// Does a field of this tag in a TIFF's directory describe how and where the file stores its pixels, or does
/// it hold other data of the file (XMP, IPTC, Photoshop resources, a profile)?
bool isPictureStructureTag(uint16_t tag);

/// Removes from EXIF every picture that shows the photo: the thumbnail directory, previews in maker notes,
/// further directories of raw and TIFF files with the tags of the places of their pixels, and any field
/// whose data hold the start of a JPEG or PNG, or begin like another picture file. Removes all fields that
/// point to directories, too: the encoder points to those that it writes.
/// @return the names of removed fields whose tags are not for pictures, and of directories that are not read
QStringList erasePicturesFromExif(Exiv2::ExifData &exif);

/// Removes from XMP thumbnails, depth maps and other pictures, and what describes pictures that a copy does
/// not have any more (gain maps, motion photos, the list of a container's items, extended packets).
void erasePicturesFromXmp(Exiv2::XmpData &xmp);

/// Removes from IPTC the preview, the object of records 7 to 9, and any dataset that is a picture.
/// @return true where there was any
bool erasePicturesFromIptc(Exiv2::IptcData &iptc);

/// The same for records that are not decoded: the datasets that are kept, byte for byte. Bytes between
/// and after the datasets, and truncated datasets, are left out.
QByteArray iptcWithoutPictures(const QByteArray &block);

} // namespace plexa
