// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "watermark/wpresetvalues.h"

#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QSizeF>

#include <optional>

namespace plexa
{

/// The copies of a repeated watermark, which run to the right and up from the first one. Photo pixels, y
/// upwards. Drawn column by column, each from its bottom.
struct Repeats {
    QPointF first;      ///< the bottom left corner of the first copy
    QSizeF step;        ///< from one copy to the next one
    qint64 columns = 1; ///< >= 1, as the next one
    qint64 rows = 1;

    /// @return the bottom left corner of a copy; its x depends on the column alone, its y on the row
    QPointF at(qint64 column, qint64 row) const
    {
        return {first.x() + static_cast<double>(column) * step.width(),
                first.y() + static_cast<double>(row) * step.height()};
    }
    bool operator==(const Repeats &) const = default;
};

/// The place of a watermark on a photo. Photo pixels, origin at the bottom left, y upwards; QRectF::x/y are
/// the bottom left corner. Nothing is rounded or clamped.
struct WatermarkLayout {
    QRectF rect;                 ///< of the first copy
    std::optional<QRectF> box;   ///< the background box, clipped to the photo
    Repeats repeats;             ///< the first copy included
    QPointF shadowOffset;        ///< y upwards; (0, 0) without a shadow
    bool tooManyRepeats = false; ///< not tiled: the copies would cover the photo hundreds of times
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

/// The number of copies in one column, the first included: those whose lower edge lies below the photo's
/// upper one. Photo pixels, y upwards.
/// @param step  from one copy's lower edge to the next one's; nothing is repeated unless it is > 0
double replicateVerticallyWatermark(const QRectF &initialRect, double step, QSizeF imageSize);

/// An angle of a preset in radians, in single precision; a full circle is added to a negative one, once.
float positiveRadians(FloatNumber degrees);

} // namespace plexa
