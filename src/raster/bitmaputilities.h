// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/cancelcheck.h"

#include <QColor>
#include <QImage>
#include <QTransform>

namespace plexa
{

// Creates, rotates, mirrors, scales and recolors bitmaps.
//
// Rules common to all of these functions: a bitmap is 8-bit sRGB, Format_RGB32 without alpha and
// Format_ARGB32_Premultiplied with. Geometry is given with the origin at the bottom left and y upwards,
// although a QImage's first row is the top one. A null QImage means that the bitmap could not be made
// (no size, no memory, more than 2^30 pixels). No function changes its arguments. Any thread.

/// A cleared bitmap: transparent with alpha, black without.
QImage createBitmapContext(int width, int height, bool withAlpha);

/// The image turned counter-clockwise, in its bounding box (fractions of a pixel cut off), the corners
/// transparent where the bitmap has alpha.
QImage createImageRotatedByAngle(const QImage &image, double radians);

/// A stored picture rotated and mirrored upright (orientation.h), its sides stretched by these factors.
QImage createImageUpright(const QImage &image, int orientation, double scaleX, double scaleY);

/// The image made smaller so that its longer side is `maxSize`, sides cut to whole pixels but not to
/// none; never larger. With `flipVertically` off and `maxSize` not below the longer side it is the very same
/// image.
QImage createImageScaledToMaxSize(const QImage &image, int maxSize, bool flipVertically);

/// The image scaled to exactly that size.
/// @param isCanceled  checked at each row; the result is then null
QImage createImageScaledToSize(const QImage &image, int width, int height, bool highQuality,
                               const CancelCheck &isCanceled = {});

} // namespace plexa
