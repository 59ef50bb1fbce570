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
    std::optional<QRectF> box;    ///< the background box, clipped to the photo
    std::vector<QPointF> repeats; ///< bottom left corners of all copies in drawing order, the first included
    QPointF shadowOffset;         ///< y upwards; (0, 0) without a shadow
    bool tooManyRepeats = false;  ///< not tiled; `repeats` holds the first copy only
};

/// @param photo         pixels of the upright photo
/// @param bitmap        pixels of the rotated, tilted and mirrored watermark
/// @param customOrigin  a place chosen by hand, which replaces the anchor's
WatermarkLayout layoutWatermark(const WPresetValues &values, QSize photo, QSize bitmap,
                                std::optional<QPointF> customOrigin);

/// The length that a percent unit refers to ("% of width", "% of height", "% of long edge", "% of short
/// edge"); none for other units.
std::optional<double> baseLength(const QString &unit, QSizeF photo);

/// A length in pixels of the photo; units other than those of baseLength() mean pixels. Computed in double,
/// returned in single precision.
float absoluteValueForSize(float value, const QString &unit, QSizeF imageSize);

/// The repeats of one column, from bottom to top, without the first copy: at most 100,000 whose lower edge
/// lies below the photo's upper one. Photo pixels, y upwards.
/// @param step  from one copy's lower edge to the next one's; nothing is repeated unless it is > 0
/// @return the bottom left corners
std::vector<QPointF> replicateVerticallyWatermark(const QRectF &initialRect, double step, QSizeF imageSize);

/// An angle of a preset in radians, in single precision; a full circle is added to a negative one, once.
float positiveRadians(FloatNumber degrees);

} // namespace plexa
