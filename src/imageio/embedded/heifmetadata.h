// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/metadatablocks.h"

namespace plexa
{

/// Do a file's first bytes (12 or more) belong to a HEIF file, whatever is coded in it?
bool isHeif(QByteArrayView head);

/// The EXIF and XMP of the primary picture of a HEIF file. What cannot be read is left out.
/// @param device  open for reading, random access, at any position
MetadataBlocks readHeifBlocks(QIODevice &device);

} // namespace plexa
