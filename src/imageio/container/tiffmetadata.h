// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QIODevice>

#include <vector>

namespace plexa
{

/// Bytes of a file, from `start` up to `end`.
struct ByteRange {
    quint64 start = 0;
    quint64 end = 0;
};

/// The parts of a TIFF file, or of a camera raw file of the same structure, that its directories and their
/// values occupy, with the bytes around them: maker notes refer to bytes outside their own. Strips and tiles
/// are not values. Sorted, disjoint, within the file.
/// @param tiff            random access; left at any position
/// @param mostValueBytes  longer values are left out
/// @return none when the contents have another structure
std::vector<ByteRange> tiffMetadataRanges(QIODevice &tiff, quint64 mostValueBytes);

} // namespace plexa
