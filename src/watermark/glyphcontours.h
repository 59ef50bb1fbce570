// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/cancelcheck.h"

#include <QPainterPath>

#include <optional>
#include <vector>

namespace plexa
{

/// A shape at a place.
struct PlacedShape {
    const QPainterPath *path = nullptr; ///< non-zero winding, its origin at (0, 0)
    QPointF at;
};

/// The contours of shapes that are outlined as one: without the parts inside others and inside their own
/// overlaps, where letters of a joined script meet. Any thread.
/// @param shapes      in pixels; the same path may occur often. Beyond a bound of work the rest stays whole.
/// @param touching    in pixels; gaps up to this size are closed
/// @param isCanceled  checked after each 50,000 comparisons; the rest then stays whole
/// @return for each shape the rest of its contour (which may be empty), its origin at (0, 0), to be outlined
///         with round ends; none: the whole contour
std::vector<std::optional<QPainterPath>> contoursOfUnion(const std::vector<PlacedShape> &shapes,
                                                         double touching, const CancelCheck &isCanceled);

} // namespace plexa
