// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/exif/exifwriter.h"

namespace plexa
{

/// May the maker note be encoded again from the fields that the library has read of it? Not where another
/// program has moved the note without adapting its offsets, so that the library read other bytes than the
/// camera wrote, nor without the camera's serial number and shutter count, by which Nikon encrypts parts of
/// its notes.
/// @param exif   the fields to write
/// @param note   as in its file
/// @param order  of the EXIF data
bool canRewriteMakerNote(const Exiv2::ExifData &exif, const MakerNoteBlock &note, Exiv2::ByteOrder order);

/// Does the library read the encoded fields of the maker note from its own EXIF data? It writes some notes
/// with another header than it has read (Olympus), or cannot read them again. May throw what the library
/// throws.
/// @param exif  the fields that were encoded
bool holdsMakerNote(const QByteArray &encoded, const Exiv2::ExifData &exif);

} // namespace plexa
