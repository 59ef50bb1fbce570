// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArrayView>

class QIODevice;

namespace plexa
{

/// The orientation that a TIFF, PNG or JPEG file states for its pixels (1 to 8 as in EXIF),
/// read without the rest of its metadata. XMP is not read.
/// @param device  open for reading, random access, at any position; its position afterwards is undefined
/// @return 1 where the file states none, or an invalid one
int storedOrientation(QIODevice &device);

/// May the metadata of a file of a format that is written here name this software? A file that only has the
/// name at another place of its metadata may, too. Much faster than reading the metadata.
/// @param device    open for reading, random access, at any position; its position afterwards is undefined
/// @param software  ASCII
bool mayNameSoftware(QIODevice &device, QByteArrayView software);

} // namespace plexa
