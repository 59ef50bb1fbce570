// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/cancelcheck.h"

#include <QImage>
#include <QRect>
#include <QSize>
#include <QTransform>

namespace plexa
{

// Computes pixels between the pixels of an image. Images are Format_RGB32 or Format_ARGB32_Premultiplied; the
// sample values are mixed as they are stored. Any thread.

enum class Quality { Low, High };

/// The image scaled to that size. Every source pixel counts by its area when shrinking, so that nothing
/// aliases; enlarging interpolates between pixels: bicubic (Catmull-Rom) in high quality, linear in low.
/// @param isCanceled  checked at each row
/// @return of the image's format; null when there is no memory or the work is canceled
QImage resampled(const QImage &image, QSize size, Quality quality, const CancelCheck &isCanceled = {});

/// resampled(image, size, Quality::High).copy(part), without the work for the rest.
/// @param part  inside of that size
QImage resampledPart(const QImage &image, QSize size, const QRect &part, const CancelCheck &isCanceled = {});

/// Draws the image through a transform onto a cleared target of the same format, interpolating between
/// pixels (Catmull-Rom). Beyond its edges the image is transparent (black without alpha), which softens them.
/// @param toSource  maps points of the target to points of the image; both have the origin at the top left
///                  and y downwards, pixels are unit squares
void drawTransformed(QImage &target, const QImage &image, const QTransform &toSource);

} // namespace plexa
