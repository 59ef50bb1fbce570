// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QMap>

#include <optional>

namespace plexa
{

enum class TiffOrder { LittleEndian, BigEndian };

/// Puts a number into the first bytes (2 or 4) of `target`, which has room for them.
void putTiffNumber(char *target, quint32 number, int bytes, TiffOrder order);

/// The unsigned number of the first bytes (2 or 4) of `source`.
quint32 tiffNumberAt(const char *source, int bytes, TiffOrder order);

/// The byte order of a classic TIFF structure (not BigTIFF); nothing if its header is invalid.
std::optional<TiffOrder> orderOfTiff(QByteArrayView structure);

/// One field of a directory, undecoded.
struct TiffField {
    quint16 type = 0;
    quint32 count = 0;
    QByteArray value; ///< four bytes (eight in a BigTIFF) of the directory: the value, or its position

    /// The size of the value in bytes; 0: unknown type.
    quint64 valueBytes() const;

    /// The position of a value of more than four bytes, or the target of a pointer.
    quint32 offset(TiffOrder order) const { return tiffNumberAt(value.constData(), 4, order); }
};

using TiffFields = QMap<quint16, TiffField>; // sorted by tag, as a directory has to be

/// The size in bytes of a directory, without values that are stored elsewhere.
constexpr qsizetype tiffDirectoryBytes(qsizetype fields)
{
    return 2 + 12 * fields + 4;
}

/// Reads the directory at position `at` of the bytes. Of several fields with a tag the first counts.
/// @return nothing if it is incomplete
std::optional<TiffFields> readTiffFields(QByteArrayView bytes, quint32 at, TiffOrder order);

/// A directory with these fields (at most 65535), the last of its chain.
QByteArray encodedTiffFields(const TiffFields &fields, TiffOrder order);

} // namespace plexa
