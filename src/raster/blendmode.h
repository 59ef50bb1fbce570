// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// How a watermark's colors meet the photo's. The numbers are those under which presets number them.
/// Formulas: W3C Compositing and Blending Level 1, section 10.
enum class BlendMode {
    Normal = 0,
    Multiply = 1,
    Screen = 2,
    Overlay = 3,
    Darken = 4,
    Lighten = 5,
    ColorDodge = 6,
    ColorBurn = 7,
    SoftLight = 8,
    HardLight = 9,
    Difference = 10,
    Exclusion = 11,
    Hue = 12,
    Saturation = 13,
    Color = 14,
    Luminosity = 15,
};

inline constexpr int kBlendModeCount = 16;

/// The mode of that exact name ("Color Dodge"); Normal for any other text, another letter case included.
BlendMode blendModeNamed(const QString &name);

/// The name under which presets store the mode.
QString nameOf(BlendMode mode);

} // namespace plexa
