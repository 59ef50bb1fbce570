// SPDX-License-Identifier: GPL-3.0-or-later

#include "raster/blendmode.h"

#include <QLatin1String>

#include <array>
#include <cstddef>

namespace plexa
{

namespace
{

// In the order of the enumeration.
constexpr std::array<QLatin1String, kBlendModeCount> kNames{
    QLatin1String("Normal"),      QLatin1String("Multiply"),   QLatin1String("Screen"),
    QLatin1String("Overlay"),     QLatin1String("Darken"),     QLatin1String("Lighten"),
    QLatin1String("Color Dodge"), QLatin1String("Color Burn"), QLatin1String("Soft Light"),
    QLatin1String("Hard Light"),  QLatin1String("Difference"), QLatin1String("Exclusion"),
    QLatin1String("Hue"),         QLatin1String("Saturation"), QLatin1String("Color"),
    QLatin1String("Luminosity"),
};

} // namespace

BlendMode blendModeNamed(const QString &name)
{
    for (std::size_t i = 0; i < kNames.size(); ++i) {
        if (name == kNames[i])
            return static_cast<BlendMode>(i);
    }
    return BlendMode::Normal;
}

QString nameOf(BlendMode mode)
{
    const auto index = static_cast<std::size_t>(mode);
    return kNames[index < kNames.size() ? index : 0];
}

} // namespace plexa
