// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QImage>
#include <QSize>
#include <QTransform>

namespace plexa
{

// Rotates and mirrors a stored picture upright. An orientation is numbered as EXIF numbers it:
//   1 as stored        2 mirrored left to right    3 half turn                4 mirrored top to bottom
//   5 transposed       6 quarter turn clockwise    7 transposed crosswise     8 quarter turn
//   counter-clockwise
// Any other number counts as 1. Any thread.

/// The size of the upright picture: the sides are exchanged from 5 on.
QSize orientedSize(QSize stored, int orientation);

/// Copies rows of a stored picture to where they belong in the upright one, exactly.
/// @param target    the whole upright picture, 32 bits a pixel, orientedSize() large, not shared with
///                  another QImage; a target of another size is left alone
/// @param strip     32 bits a pixel, its first `stripRows` rows are the stored rows from `firstRow` on
///                  (0: from the top); rows outside of the stored picture are passed over
/// Different strips may be placed by different threads, on QImages that share the target's memory.
void placeOrientedRows(QImage &target, const QImage &strip, int stripRows, int firstRow, QSize stored,
                       int orientation);

} // namespace plexa
