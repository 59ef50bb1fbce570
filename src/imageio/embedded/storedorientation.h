// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QIODevice;

namespace plexa
{

/// How a TIFF, PNG or JPEG file says that its pixels have to be turned to be upright (1 to 8 as EXIF counts),
/// read without the rest of its metadata. XMP is not asked.
/// @param device  open for reading, random access, at any position; it is left at any
/// @return 1 where the file says nothing, or what no orientation is
int storedOrientation(QIODevice &device);

} // namespace plexa
