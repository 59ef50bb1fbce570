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

/// The byte order that a classic TIFF structure (not a BigTIFF) names; none when these are not the eight
/// bytes that one begins with.
std::optional<TiffOrder> orderOfTiff(QByteArrayView structure);

/// One field of a directory, undecoded.
struct TiffField {
    quint16 type = 0;
    quint32 count = 0;
    QByteArray value; ///< four bytes (eight in a BigTIFF) as they lie in the directory: the value, or where
                      ///< it lies

    /// The bytes of the value; more than these stand elsewhere. 0: unknown type.
    quint64 valueBytes() const;

    /// Where the value stands when it has more than four bytes, or what a pointer points to.
    quint32 offset(TiffOrder order) const { return tiffNumberAt(value.constData(), 4, order); }
};

using TiffFields = QMap<quint16, TiffField>; // sorted by tag, as a directory has to be

/// The bytes that a directory of so many fields takes, without the values that stand elsewhere.
constexpr qsizetype tiffDirectoryBytes(qsizetype fields)
{
    return 2 + 12 * fields + 4;
}

/// Reads the directory at position `at` of the bytes. Of several fields with a tag the first counts.
/// @return none when it is not whole
std::optional<TiffFields> readTiffFields(QByteArrayView bytes, quint32 at, TiffOrder order);

/// A directory with these fields (at most 65535) and none after it.
QByteArray encodedTiffFields(const TiffFields &fields, TiffOrder order);

} // namespace plexa
