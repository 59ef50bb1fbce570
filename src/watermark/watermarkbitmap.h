// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/cancelcheck.h"
#include "platform/result.h"

#include <QImage>
#include <QPointF>
#include <QSize>
#include <QStringList>
#include <QTransform>

#include <optional>

namespace plexa
{

/// The target of a rendering.
struct Rendering {
    QSize photo{0, 0};           ///< pixels of the upright photo, the unit of all measures
    double scale = 1;            ///< rendered pixels for each photo pixel, in (0, 2)
    CancelCheck isCanceled = {}; ///< may be empty
    double tilt = 0;             ///< of freeTilt(); the mark is rendered with it; 0: upright

    /// Would a bitmap of so many rendered pixels be too large? The answer is the same at every scale.
    bool isTooLarge(QSizeF size) const;
};

/// The failure of a rendering that gets no memory.
tl::unexpected<Error> noMemory();

/// The bitmap of a watermark. Only the part that is not transparent is stored; it may reach beyond the
/// bitmap.
struct WatermarkBitmap {
    QSize size{0, 0}; ///< of the whole bitmap, in photo pixels
    double scale = 1; ///< pixels of the ink for each photo pixel
    QImage ink = {};  ///< Format_ARGB32_Premultiplied, sRGB; null: all transparent
    QPointF inkAt; ///< from the bitmap's to the ink's top left corner, in pixels of the ink; whole at scale 1
    QStringList notices = {}; ///< what the user should know about it, as texts that follow the photo's path
};

/// A tilt other than by quarters, in radians counter-clockwise.
/// @param degrees  as presets store it; 0 to 360, and -360 to 0, have an effect
std::optional<double> freeTilt(float degrees);

/// The size of the bounding box of a tilted rectangle.
QSizeF tiltedBox(QSizeF size, double radians);

/// From a rectangle (its top left corner at the origin, y downwards) to its place in that box.
QTransform tiltIntoBox(QSizeF size, double radians);

/// For a mark that is too large: without size, with a notice.
/// @param size  in rendered pixels
WatermarkBitmap leftOut(QSizeF size, const Rendering &rendering);

/// The bitmap rotated counter-clockwise, if the angle makes whole quarters, which need no interpolation.
/// @param degrees  as presets store it
WatermarkBitmap turnedByAngle(const WatermarkBitmap &bitmap, float degrees);

/// @param rotation  1 a quarter counter-clockwise, 2 a quarter clockwise, 3 a half, else none
WatermarkBitmap turnedByQuarters(const WatermarkBitmap &bitmap, int rotation);

/// @param flip  1 left-right, 2 top-bottom, 3 both, else none
WatermarkBitmap mirrored(const WatermarkBitmap &bitmap, int flip);

} // namespace plexa
