// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/embedded/exif/exifwriter.h"

namespace plexa
{

/// Encodes EXIF within the length that the copy's format holds. What is too long is left out step by step:
/// the thumbnail, the maker note, large values that the property dictionary does not model, others.
/// @param result  gets `exif`, `thumbnailPlaceholder` and more of `omitted`
/// @param exif  freed from pictures
/// @param note  the maker note as it was; empty: none
void encodeExif(EmbeddedMetadata::Encoded &result, Exiv2::ExifData exif, Exiv2::ByteOrder order,
                const MakerNoteBlock &note, const EmbeddedMetadata::CopyFacts &facts);

} // namespace plexa
