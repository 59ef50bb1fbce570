// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/embedded/exif/exifwriter.h"

#include <QStringList>

namespace plexa
{

/// EXIF as a copy carries it.
struct EncodedExif {
    QByteArray bytes;                ///< TIFF structure; empty: none
    QByteArray thumbnailPlaceholder; ///< the bytes in it that reserve the place of the new thumbnail
    QStringList omitted;             ///< values that are left out: "maker note", "user comment"
};

/// Encodes EXIF within the length that the copy's format holds. What is too long is left out step by step:
/// the thumbnail, the maker note, large values that the property dictionary does not model, others.
/// @param exif  freed from pictures
/// @param note  the maker note as it was; empty: none
EncodedExif encodedExif(Exiv2::ExifData exif, Exiv2::ByteOrder order, const MakerNoteBlock &note,
                        const EmbeddedMetadata::CopyFacts &facts);

} // namespace plexa
