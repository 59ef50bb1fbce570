// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/cancelcheck.h"
#include "raster/blendmode.h"

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRectF>

namespace plexa
{

// Drawing onto a photo, or onto a horizontal strip of it.
//
// Rules common to all of these functions: the target `rows` is Format_RGB32 or
// Format_ARGB32_Premultiplied, sRGB; it holds the photo's rows from `firstRow` on (0: from the top), and
// parts outside of it are clipped. A mark is Format_ARGB32_Premultiplied, sRGB. Coordinates are
// whole photo pixels, origin at the top left, y downwards. Drawing strip by strip gives the same pixels
// as drawing on the whole photo at once. The target must not be shared with another QImage (it would
// detach). Any thread; different strips may be drawn by different threads.

/// Fills a rectangle with a color, normal blending. The rectangle's edges may lie between pixels: edge
/// pixels are covered in part. The color's own alpha is used.
void fillRows(QImage &rows, int firstRow, const QRectF &rect, const QColor &color);

/// Draws `mark` with its top left corner at `at`, blended by `mode` by W3C Compositing and Blending
/// Level 1 (source-over with backdrop alpha), its alpha multiplied by `opacity` (0..1, clamped).
void stampRows(QImage &rows, int firstRow, const QImage &mark, QPoint at, BlendMode mode, double opacity);

/// The soft shadow that a mark casts: its alpha, blurred by a Gaussian with a standard deviation of half
/// of `blur` pixels, times `color`.
struct Shadow {
    QImage image;   ///< Format_ARGB32_Premultiplied, the mark's size grown by `margin` on each side
    int margin = 0; ///< pixels by which the blur reaches beyond the mark
};

/// @param mark  Format_ARGB32_Premultiplied
/// @param blur  pixels, negative counts as 0; 0 gives a sharp shadow
/// @param isCanceled  checked at each row
/// @return a null image when there is no memory for it or the work is canceled
Shadow shadowOf(const QImage &mark, double blur, const QColor &color, const CancelCheck &isCanceled = {});

} // namespace plexa
