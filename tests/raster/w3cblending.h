// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "raster/blendmode.h"

#include <QRgb>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace plexa::test
{

// W3C Compositing and Blending Level 1, sections 9 and 10, step by step as they are written there, in
// doubles.

using Color3 = std::array<double, 3>;

inline double blendChannel(BlendMode mode, double cb, double cs)
{
    switch (mode) {
    case BlendMode::Multiply:
        return cb * cs;
    case BlendMode::Screen:
        return 1 - (1 - cb) * (1 - cs);
    case BlendMode::Overlay:
        return blendChannel(BlendMode::HardLight, cs, cb);
    case BlendMode::Darken:
        return cb < cs ? cb : cs;
    case BlendMode::Lighten:
        return cb > cs ? cb : cs;
    case BlendMode::ColorDodge:
        if (cb == 0)
            return 0;
        return cs == 1 ? 1 : std::min(1.0, cb / (1 - cs));
    case BlendMode::ColorBurn:
        if (cb == 1)
            return 1;
        return cs == 0 ? 0 : 1 - std::min(1.0, (1 - cb) / cs);
    case BlendMode::HardLight:
        return cs <= 0.5 ? blendChannel(BlendMode::Multiply, cb, 2 * cs)
                         : blendChannel(BlendMode::Screen, cb, 2 * cs - 1);
    case BlendMode::SoftLight: {
        if (cs <= 0.5)
            return cb - (1 - 2 * cs) * cb * (1 - cb);
        const double d = cb <= 0.25 ? ((16 * cb - 12) * cb + 4) * cb : std::sqrt(cb);
        return cb + (2 * cs - 1) * (d - cb);
    }
    case BlendMode::Difference:
        return std::abs(cb - cs);
    case BlendMode::Exclusion:
        return cb + cs - 2 * cb * cs;
    default:
        return cs;
    }
}

inline double lum(const Color3 &c)
{
    return 0.3 * c[0] + 0.59 * c[1] + 0.11 * c[2];
}

inline Color3 clipColor(Color3 c)
{
    const double l = lum(c);
    const double n = *std::min_element(c.begin(), c.end());
    const double x = *std::max_element(c.begin(), c.end());
    for (double &channel : c) {
        if (n < 0)
            channel = l + (channel - l) * l / (l - n);
        if (x > 1)
            channel = l + (channel - l) * (1 - l) / (x - l);
    }
    return c;
}

inline Color3 setLum(Color3 c, double l)
{
    const double d = l - lum(c);
    for (double &channel : c)
        channel += d;
    return clipColor(c);
}

inline double sat(const Color3 &c)
{
    return *std::max_element(c.begin(), c.end()) - *std::min_element(c.begin(), c.end());
}

inline Color3 setSat(Color3 c, double s)
{
    std::array<std::size_t, 3> order{0, 1, 2};
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return c[a] < c[b]; });
    double &min = c[order[0]];
    double &mid = c[order[1]];
    double &max = c[order[2]];
    if (max > min) {
        mid = (mid - min) * s / (max - min);
        max = s;
    } else {
        mid = max = 0;
    }
    min = 0;
    return c;
}

inline Color3 blendColor(BlendMode mode, const Color3 &cb, const Color3 &cs)
{
    switch (mode) {
    case BlendMode::Hue:
        return setLum(setSat(cs, sat(cb)), lum(cb));
    case BlendMode::Saturation:
        return setLum(setSat(cb, sat(cs)), lum(cb));
    case BlendMode::Color:
        return setLum(cs, lum(cb));
    case BlendMode::Luminosity:
        return setLum(cb, lum(cs));
    default:
        return {blendChannel(mode, cb[0], cs[0]), blendChannel(mode, cb[1], cs[1]),
                blendChannel(mode, cb[2], cs[2])};
    }
}

/// The composed pixel, premultiplied, red, green, blue and alpha, 0..255.
inline std::array<double, 4> composed(BlendMode mode, QRgb under, QRgb over, double opacity)
{
    const auto straight = [](QRgb pixel) {
        const double alpha = qAlpha(pixel);
        return alpha == 0 ? Color3{0, 0, 0}
                          : Color3{qRed(pixel) / alpha, qGreen(pixel) / alpha, qBlue(pixel) / alpha};
    };
    const Color3 cb = straight(under);
    const Color3 cs = straight(over);
    const double ab = qAlpha(under) / 255.0;
    const double as = qAlpha(over) / 255.0 * opacity;
    const Color3 mixed = blendColor(mode, cb, cs);
    std::array<double, 4> result{};
    for (std::size_t i = 0; i < 3; ++i)
        result[i] = 255 * (cs[i] * as * (1 - ab) + cb[i] * ab * (1 - as) + as * ab * mixed[i]);
    result[3] = 255 * (as + ab * (1 - as));
    return result;
}

} // namespace plexa::test
