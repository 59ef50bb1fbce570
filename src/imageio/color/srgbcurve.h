// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cmath>

namespace plexa
{

/// The light, 0..1, that a value of sRGB, 0..1, stands for (IEC 61966-2-1).
inline double srgbLight(double value)
{
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

} // namespace plexa
