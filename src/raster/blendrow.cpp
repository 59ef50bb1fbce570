// SPDX-License-Identifier: GPL-3.0-or-later

#include "raster/blendrow.h"

#include "raster/blendformulas.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace plexa
{

namespace
{

/// Pixels are worked on in blocks of so many, channel by channel: a count that the compiler knows gives loops
/// without remainders.
constexpr int kBlock = 16;
constexpr float kUnit = 1.0F / 255;
static_assert(255 * kUnit == 1.0F, "full coverage must stay exactly full");

/// A block's channels, 0..255, premultiplied as stored.
struct Planes {
    alignas(64) float red[kBlock];
    alignas(64) float green[kBlock];
    alignas(64) float blue[kBlock];
    alignas(64) float alpha[kBlock];

    explicit Planes(const quint32 *pixels)
    {
        for (int i = 0; i < kBlock; ++i) {
            const auto pixel = int(pixels[i]);
            red[i] = float((pixel >> 16) & 255);
            green[i] = float((pixel >> 8) & 255);
            blue[i] = float(pixel & 255);
            alpha[i] = float((pixel >> 24) & 255);
        }
    }
};

template<class Blend>
concept MixesChannels = requires
{
    Blend::mix(0.0F, 0.0F);
};

template<class Blend>
blend::Rgb mixed(blend::Rgb under, blend::Rgb over)
{
    if constexpr (MixesChannels<Blend>) {
        return {Blend::mix(under.red, over.red), Blend::mix(under.green, over.green),
                Blend::mix(under.blue, over.blue)};
    } else {
        return Blend::mix(under, over);
    }
}

int rounded(float value, float highest)
{
    return int(std::min(std::max(value, 0.0F), highest) + 0.5F);
}

template<class Blend, bool isOpaque>
void blendBlock(quint32 *under, const quint32 *over, float opacity)
{
    const Planes backdrop(under);
    const Planes source(over);
    alignas(64) quint32 result[kBlock];
    for (int i = 0; i < kBlock; ++i) {
        // Where alpha is 0 so are the colors: a divisor of 1 leaves them.
        const float divisor = std::max(source.alpha[i], 1.0F);
        const blend::Rgb cs{std::min(source.red[i] / divisor, 1.0F),
                            std::min(source.green[i] / divisor, 1.0F),
                            std::min(source.blue[i] / divisor, 1.0F)};
        const float as = source.alpha[i] * kUnit * opacity;
        const float ab = isOpaque ? 1.0F : backdrop.alpha[i] * kUnit;
        const float backdropDivisor = isOpaque ? 255.0F : std::max(backdrop.alpha[i], 1.0F);
        const blend::Rgb cb = isOpaque ? blend::Rgb{backdrop.red[i] * kUnit, backdrop.green[i] * kUnit,
                                                    backdrop.blue[i] * kUnit}
                                       : blend::Rgb{std::min(backdrop.red[i] / backdropDivisor, 1.0F),
                                                    std::min(backdrop.green[i] / backdropDivisor, 1.0F),
                                                    std::min(backdrop.blue[i] / backdropDivisor, 1.0F)};
        const blend::Rgb both = mixed<Blend>(cb, cs);
        const float sourceOnly = isOpaque ? 0.0F : 255 * as * (1 - ab);
        const float backdropOnly = 1 - as;
        const float shared = 255 * as * ab;
        const float alpha = isOpaque ? 255.0F : backdrop.alpha[i] * backdropOnly + 255 * as;
        const auto channel = [&](float s, float b, float mix) {
            return rounded(s * sourceOnly + b * backdropOnly + mix * shared, alpha);
        };
        const int red = channel(cs.red, backdrop.red[i], both.red);
        const int green = channel(cs.green, backdrop.green[i], both.green);
        const int blue = channel(cs.blue, backdrop.blue[i], both.blue);
        result[i] = quint32(rounded(alpha, 255.0F)) << 24 | quint32(red << 16 | green << 8 | blue);
    }
    std::memcpy(under, result, sizeof result);
}

/// Normal blending at full opacity needs no color without its alpha: each byte becomes
/// over + under (1 - as), on any backdrop, which whole numbers give to the nearest.
void coverBlock(quint32 *under, const quint32 *over)
{
    constexpr std::size_t kBytes = kBlock * sizeof(quint32);
    alignas(64) quint32 alphas[kBlock];
    for (int i = 0; i < kBlock; ++i)
        alphas[i] = (over[i] >> 24) * 0x01010101U;
    alignas(64) uchar alpha[kBytes];
    alignas(64) uchar source[kBytes];
    alignas(64) uchar backdrop[kBytes];
    std::memcpy(alpha, alphas, kBytes);
    std::memcpy(source, over, kBytes);
    std::memcpy(backdrop, under, kBytes);
    for (std::size_t i = 0; i < kBytes; ++i) {
        // x / 255 to the nearest is (t + t / 256) / 256 with t = x + 128, for all x up to 255 * 255.
        const auto t = quint16(backdrop[i] * (255 - alpha[i]) + 128);
        backdrop[i] = uchar(source[i] + (quint16(t + (t >> 8)) >> 8));
    }
    std::memcpy(under, backdrop, kBytes);
}

bool isEmpty(const quint32 *pixels)
{
    quint32 all = 0;
    for (int i = 0; i < kBlock; ++i)
        all |= pixels[i];
    return all == 0;
}

/// Walks over a row in blocks, passing over the empty ones: most of a text's bitmap is empty.
template<class DrawBlock>
void walk(quint32 *under, const quint32 *over, int count, const DrawBlock &draw)
{
    int x = 0;
    for (; x + kBlock <= count; x += kBlock) {
        if (!isEmpty(over + x))
            draw(under + x, over + x);
    }
    const auto rest = std::size_t(count - x) * sizeof(quint32);
    if (rest == 0)
        return;
    quint32 lastUnder[kBlock] = {};
    quint32 lastOver[kBlock] = {};
    std::memcpy(lastUnder, under + x, rest);
    std::memcpy(lastOver, over + x, rest);
    if (isEmpty(lastOver))
        return;
    draw(lastUnder, lastOver);
    std::memcpy(under + x, lastUnder, rest);
}

template<class Blend, bool isOpaque>
void blendRow(quint32 *under, const quint32 *over, int count, float opacity)
{
    if constexpr (std::is_same_v<Blend, blend::Normal>) {
        if (opacity == 1) {
            walk(under, over, count, coverBlock);
            return;
        }
    }
    walk(under, over, count, [opacity](quint32 *backdrop, const quint32 *source) {
        blendBlock<Blend, isOpaque>(backdrop, source, opacity);
    });
}

template<class... Blends>
struct Rows {
    static_assert(sizeof...(Blends) == kBlendModeCount);
    static constexpr std::array<BlendRow, kBlendModeCount> kOpaque{&blendRow<Blends, true>...};
    static constexpr std::array<BlendRow, kBlendModeCount> kAlpha{&blendRow<Blends, false>...};
};

// In the order of the enumeration.
using AllRows =
    Rows<blend::Normal, blend::Multiply, blend::Screen, blend::Overlay, blend::Darken, blend::Lighten,
         blend::ColorDodge, blend::ColorBurn, blend::SoftLight, blend::HardLight, blend::Difference,
         blend::Exclusion, blend::Hue, blend::Saturation, blend::Color, blend::Luminosity>;

} // namespace

BlendRow blendRowFor(BlendMode mode, bool isOpaque)
{
    auto index = static_cast<std::size_t>(mode);
    if (index >= AllRows::kOpaque.size())
        index = 0;
    return isOpaque ? AllRows::kOpaque[index] : AllRows::kAlpha[index];
}

} // namespace plexa
