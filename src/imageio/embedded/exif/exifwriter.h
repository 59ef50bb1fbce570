// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

#include <exiv2/exiv2.hpp>

namespace plexa
{

/// A maker note as it lay in its file. What is in it points to itself by offsets from the start of the EXIF
/// data, so it has to keep its place; some programs have moved it without adapting them, and readers guess
/// the difference: only the same bytes at the same place mean the same to all readers.
struct MakerNoteBlock {
    QByteArray bytes;       ///< empty: no maker note
    qsizetype offset = -1;  ///< from the start of the EXIF data; negative: any place will do
    bool isEdited = false;  ///< the decoded fields no longer equal the bytes
    Exiv2::ExifData fields; ///< that the library has decoded from the bytes
};

/// Writes EXIF data from the fields of the directories Image, Photo, GPSInfo and Iop; fields of other groups
/// are not written. Fields of unknown type are left out.
/// @param thumbnail  the JPEG for the thumbnail directory, empty: none
/// @return empty when the maker note cannot have its place
QByteArray writtenExif(const Exiv2::ExifData &exif, Exiv2::ByteOrder order, const MakerNoteBlock &makerNote,
                       const QByteArray &thumbnail);

} // namespace plexa
