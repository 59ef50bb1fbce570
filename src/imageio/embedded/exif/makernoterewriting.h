// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/exif/exifwriter.h"

namespace plexa
{

/// May the maker note be encoded again from the fields that the library has read of it? Not where another
/// program has moved the note without adapting its offsets, so that the library read other bytes than the
/// camera wrote, nor where the camera's serial number, by which Nikon encrypts parts of its notes, or the
/// count of its shutter is gone.
/// @param exif   the fields as they are to be written
/// @param note   the note as it lay in its file
/// @param order  of the EXIF data
bool canRewriteMakerNote(const Exiv2::ExifData &exif, const MakerNoteBlock &note, Exiv2::ByteOrder order);

/// Does the library read from EXIF data that it has encoded what was to be in the maker note? It writes some
/// notes with another header than it has read (Olympus), or cannot find its way in them again. May throw what
/// the library throws.
/// @param exif  the fields that were encoded
bool saysMakerNote(const QByteArray &encoded, const Exiv2::ExifData &exif);

} // namespace plexa
