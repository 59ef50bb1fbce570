// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <cmath>

// The blend modes' formulas B(Cb, Cs) of W3C Compositing and Blending Level 1, section 10: `under` is the
// backdrop's color, `over` the source's, neither multiplied by alpha, 0..1. A mode that mixes each channel
// for itself has `mix` of one channel; the others mix a whole color. Both sides of each choice can be
// computed for any input, so that the compiler may turn them into selections.

namespace plexa::blend
{

struct Rgb {
    float red;
    float green;
    float blue;
};

struct Normal {
    static float mix(float, float over) { return over; }
};

struct Multiply {
    static float mix(float under, float over) { return under * over; }
};

struct Screen {
    static float mix(float under, float over) { return under + over - under * over; }
};

struct HardLight {
    static float mix(float under, float over)
    {
        const float dark = 2 * under * over;
        const float light = Screen::mix(under, 2 * over - 1);
        return over <= 0.5F ? dark : light;
    }
};

struct Overlay {
    static float mix(float under, float over) { return HardLight::mix(over, under); }
};

struct Darken {
    static float mix(float under, float over) { return std::min(under, over); }
};

struct Lighten {
    static float mix(float under, float over) { return std::max(under, over); }
};

struct ColorDodge {
    static float mix(float under, float over)
    {
        // The smallest divisor replaces 0: any backdrop but black divided by it exceeds 1.
        const float quotient = under / std::max(1 - over, 1e-12F);
        return quotient < 1 ? quotient : 1.0F;
    }
};

struct ColorBurn {
    static float mix(float under, float over)
    {
        const float quotient = (1 - under) / std::max(over, 1e-12F);
        return quotient < 1 ? 1 - quotient : 0.0F;
    }
};

struct SoftLight {
    static float mix(float under, float over)
    {
        const float darker = under - (1 - 2 * over) * under * (1 - under);
        const float shadows = ((16 * under - 12) * under + 4) * under;
        const float root = std::sqrt(under);
        const float lifted = under <= 0.25F ? shadows : root;
        const float lighter = under + (2 * over - 1) * (lifted - under);
        return over <= 0.5F ? darker : lighter;
    }
};

struct Difference {
    static float mix(float under, float over) { return std::abs(under - over); }
};

struct Exclusion {
    static float mix(float under, float over) { return under + over - 2 * under * over; }
};

inline float lum(Rgb color)
{
    return 0.3F * color.red + 0.59F * color.green + 0.11F * color.blue;
}

inline float lowest(Rgb color)
{
    return std::min(std::min(color.red, color.green), color.blue);
}

inline float highest(Rgb color)
{
    return std::max(std::max(color.red, color.green), color.blue);
}

/// The color with that luminosity, drawn towards gray as far as it takes to fit into 0..1.
inline Rgb setLum(Rgb color, float luminosity)
{
    const float shift = luminosity - lum(color);
    color = {color.red + shift, color.green + shift, color.blue + shift};
    const float low = lowest(color);
    const float high = highest(color);
    const float fromLow = luminosity / std::max(luminosity - low, 1e-12F);
    const float fromHigh = (1 - luminosity) / std::max(high - luminosity, 1e-12F);
    const float scale = low < 0 ? fromLow : (high > 1 ? fromHigh : 1.0F);
    return {luminosity + (color.red - luminosity) * scale, luminosity + (color.green - luminosity) * scale,
            luminosity + (color.blue - luminosity) * scale};
}

inline float sat(Rgb color)
{
    return highest(color) - lowest(color);
}

/// The color with that saturation: its lowest channel becomes 0, its highest the saturation, the third keeps
/// its place between them. Gray becomes black.
inline Rgb setSat(Rgb color, float saturation)
{
    const float low = lowest(color);
    const float range = highest(color) - low;
    const float scale = range > 0 ? saturation / std::max(range, 1e-12F) : 0.0F;
    return {(color.red - low) * scale, (color.green - low) * scale, (color.blue - low) * scale};
}

struct Hue {
    static Rgb mix(Rgb under, Rgb over) { return setLum(setSat(over, sat(under)), lum(under)); }
};

struct Saturation {
    static Rgb mix(Rgb under, Rgb over) { return setLum(setSat(under, sat(over)), lum(under)); }
};

struct Color {
    static Rgb mix(Rgb under, Rgb over) { return setLum(over, lum(under)); }
};

struct Luminosity {
    static Rgb mix(Rgb under, Rgb over) { return setLum(under, lum(over)); }
};

} // namespace plexa::blend
