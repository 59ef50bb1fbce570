// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "watermark/wpresetvalues.h"

#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QSizeF>

#include <optional>
#include <vector>

namespace plexa
{

/// The place of a watermark on a photo. Photo pixels, origin at the bottom left, y upwards; QRectF::x/y are
/// the bottom left corner. Nothing is rounded or clamped.
struct WatermarkLayout {
    QRectF rect;                  ///< of the first copy
    std::optional<QRectF> box;    ///< the background box, clipped to the photo; none when there is none
    std::vector<QPointF> repeats; ///< bottom left corners of all copies in drawing order, the first included
    QPointF shadowOffset;         ///< y upwards; (0, 0) without a shadow
    bool tooManyRepeats = false;  ///< not tiled; `repeats` holds the first copy only
};

/// The layout of a watermark bitmap that is already turned and mirrored.
/// @param photo   pixels, after the photo's turns
/// @param bitmap  pixels of the turned and mirrored watermark bitmap
/// @param customOrigin  a place chosen by hand, which replaces the anchor's
WatermarkLayout layoutWatermark(const WPresetValues &values, QSize photo, QSize bitmap,
                                std::optional<QPointF> customOrigin);

/// The pixel value of a length: "% of width", "% of height", "% of long edge" and "% of short edge" refer to
/// the photo, every other unit means pixels. Computed in double, returned in single precision.
float absoluteValueForSize(float value, const QString &unit, QSizeF imageSize);

/// The repeats of one column, from bottom to top: copies of `initialRect`, which is not among them, for as
/// long as their lower edge lies below the photo's upper one. At most 100,000. Any thread.
/// @param initialRect  of the column's first copy: photo pixels, x/y its bottom left corner, y upwards
/// @param step         from one copy's lower edge to the next one's, in pixels; none are repeated unless it
/// is > 0
/// @param imageSize    of the photo, in pixels
/// @return the bottom left corners
std::vector<QPointF> replicateVerticallyWatermark(const QRectF &initialRect, double step, QSizeF imageSize);

/// An angle of a preset in radians, in single precision; a negative one is raised by a full turn, once.
float positiveRadians(FloatNumber degrees);

} // namespace plexa
