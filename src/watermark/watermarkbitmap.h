// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QImage>
#include <QPoint>
#include <QSize>

namespace plexa
{

/// The bitmap of a watermark, of which only the part with something in it is kept: a line of text is much
/// smaller than the box that it stands in.
struct WatermarkBitmap {
    QSize size{0, 0}; ///< of the whole bitmap
    QImage ink;       ///< Format_ARGB32_Premultiplied, sRGB; null: the whole bitmap is transparent
    QPoint inkAt;     ///< the ink's top left corner, from the bitmap's top left corner
};

/// The most pixels that one bitmap may take for a photo of that size; beyond, drawing fails with a message
/// instead of taking all memory.
qint64 maxBitmapPixels(QSize photo);

/// The failure for a bitmap that is beyond it.
tl::unexpected<Error> tooLargeBitmap(double width, double height);

/// The bitmap turned counter-clockwise, in its bounding box (fractions of a pixel cut off).
/// @param degrees  as presets keep it; 0 to 360, and -360 to 0, have an effect
/// @return a bitmap without size when it cannot be turned; a failure when it would be beyond `maxPixels`
[[nodiscard]] Result<WatermarkBitmap> turnedByAngle(const WatermarkBitmap &bitmap, float degrees,
                                                    qint64 maxPixels);

/// @param rotation  1 a quarter turn counter-clockwise, 2 a quarter turn clockwise, 3 half a turn, else none
WatermarkBitmap turnedByQuarters(const WatermarkBitmap &bitmap, int rotation);

/// @param flip  1 left-right, 2 top-bottom, 3 both, else none
WatermarkBitmap mirrored(const WatermarkBitmap &bitmap, int flip);

} // namespace plexa
