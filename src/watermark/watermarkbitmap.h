// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/cancelcheck.h"
#include "platform/result.h"

#include <QImage>
#include <QPointF>
#include <QSize>

namespace plexa
{

/// The target of a rendering.
struct Rendering {
    QSize photo{0, 0};           ///< pixels of the upright photo, the unit of all measures
    double scale = 1;            ///< rendered pixels for each photo pixel, in (0, 1]
    CancelCheck isCanceled = {}; ///< may be empty

    /// Would a bitmap of so many rendered pixels be too large? The answer is the same at every scale.
    bool isTooLarge(QSizeF size) const;

    /// The failure for a bitmap of so many rendered pixels.
    tl::unexpected<Error> tooLarge(QSizeF size) const;
};

/// The bitmap of a watermark. Only the part that is not transparent is stored; it may reach beyond the
/// bitmap.
struct WatermarkBitmap {
    QSize size{0, 0}; ///< of the whole bitmap, in photo pixels
    double scale = 1; ///< pixels of the ink for each photo pixel
    QImage ink = {};  ///< Format_ARGB32_Premultiplied, sRGB; null: all transparent
    QPointF inkAt; ///< from the bitmap's to the ink's top left corner, in pixels of the ink; whole at scale 1
};

/// The bitmap tilted counter-clockwise, in its bounding box (fractions of a photo pixel cut off).
/// @param degrees  as presets store it; 0 to 360, and -360 to 0, have an effect
/// @return a bitmap without size if it cannot be tilted; a failure if it is too large
[[nodiscard]] Result<WatermarkBitmap> turnedByAngle(const WatermarkBitmap &bitmap, float degrees,
                                                    const Rendering &rendering);

/// @param rotation  1 a quarter counter-clockwise, 2 a quarter clockwise, 3 a half, else none
WatermarkBitmap turnedByQuarters(const WatermarkBitmap &bitmap, int rotation);

/// @param flip  1 left-right, 2 top-bottom, 3 both, else none
WatermarkBitmap mirrored(const WatermarkBitmap &bitmap, int flip);

} // namespace plexa
