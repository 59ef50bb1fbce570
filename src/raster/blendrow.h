// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "raster/blendmode.h"

#include <QtGlobal>

namespace plexa
{

/// Blends one row of a mark over one row of a photo: W3C Compositing and Blending Level 1, section 9,
///   co = cs as (1 - ab) + cb ab (1 - as) + as ab B(cb, cs),  ao = as + ab (1 - as),
/// computed in floating point and rounded to the nearest once. Each pixel depends on nothing but itself, so
/// cutting a row into parts changes nothing. Pixels under a transparent part of the mark keep their bits.
/// @param under    `count` pixels, 0xffRRGGBB or premultiplied 0xAARRGGBB
/// @param over     `count` pixels, premultiplied
/// @param opacity  multiplies the mark's alpha, in (0, 1]
using BlendRow = void (*)(quint32 *under, const quint32 *over, int count, float opacity);

/// @param isOpaque  whether the photo's pixels have no alpha
BlendRow blendRowFor(BlendMode mode, bool isOpaque);

} // namespace plexa
