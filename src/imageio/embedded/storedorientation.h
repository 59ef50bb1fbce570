// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QIODevice;

namespace plexa
{

/// The orientation that a TIFF, PNG or JPEG file states for its pixels (1 to 8 as in EXIF),
/// read without the rest of its metadata. XMP is not read.
/// @param device  open for reading, random access, at any position; its position afterwards is undefined
/// @return 1 where the file states none, or an invalid one
int storedOrientation(QIODevice &device);

} // namespace plexa
