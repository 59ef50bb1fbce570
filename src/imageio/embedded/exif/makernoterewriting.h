// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/exif/exifwriter.h"

#include <QStringList>

namespace plexa
{

/// The maker note of decoded EXIF, with its decoded fields.
MakerNoteBlock makerNoteOf(const Exiv2::ExifData &exif);

/// May the maker note be encoded again from the fields that the library has read of it? Not where another
/// program has moved the note without adapting its offsets, so that the library read other bytes than the
/// camera wrote, nor where `exif` lacks the camera's serial number or shutter count, by which Nikon encrypts
/// parts of its notes, and the note has it.
/// @param exif   the fields to write
/// @param note   as in its file
/// @param order  of the EXIF data
bool canRewriteMakerNote(const Exiv2::ExifData &exif, const MakerNoteBlock &note, Exiv2::ByteOrder order);

/// Does the library read the encoded fields of the maker note from its own EXIF data? It writes some notes
/// with another header than it has read (Olympus), or cannot read them again. May throw what the library
/// throws.
/// @param exif  the fields that were encoded
bool holdsMakerNote(const QByteArray &encoded, const Exiv2::ExifData &exif);

/// What the encoded form of the note lacks, though `exif` does not: the library leaves out what it cannot
/// read. May throw what the library throws.
/// @param note     as in its file
/// @param exif     the fields that were encoded
/// @return in words for the user: "maker note field LensData", "maker note field 0x0e22" without a name,
///         "maker note field 0x2010/0x0100" in a directory to which 0x2010 points, "maker note data outside
///         of its fields"
QStringList lossesByRewriting(const MakerNoteBlock &note, const Exiv2::ExifData &exif,
                              const QByteArray &encoded);

} // namespace plexa
