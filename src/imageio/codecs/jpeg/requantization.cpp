// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/requantization.h"

#include "imageio/codecs/jpeg/samplerounding.h"

#include <algorithm>

namespace plexa
{

namespace
{

/// How far a coefficient lies beyond halfway for the farther multiple. Less gains little, but as many bits.
constexpr float kBeyondHalfway = 0.1F;

/// So many ties in a block are worth the time.
constexpr int kManyTies = 5;

} // namespace

Requantization::Requantization(const QuantizationTable &from, const QuantizationTable &quality)
{
    std::transform(from.begin(), from.end(), quality.begin(), m_table.begin(),
                   [](UINT16 one, UINT16 other) { return std::max(one, other); });
    std::transform(
        from.begin(), from.end(), m_table.begin(), m_factors.begin(),
        [](UINT16 one, UINT16 other) { return static_cast<float>(one) / static_cast<float>(other); });
    std::copy(from.begin(), from.end(), m_steps.begin());
    m_isIdentity = from == m_table;
}

void Requantization::convert(JBLOCKROW from, JBLOCKROW to, int count) const
{
    // A product is exact to within half a thousandth, and is a half or differs from it by more: new steps are
    // at most 255.
    constexpr float kMargin = 0.0005F;
    Block nearer;
    Block away;
    for (int block = 0; block < count; ++block) {
        const JCOEF *in = from[block];
        int ties = 0;
        for (size_t k = 0; k < DCTSIZE2; ++k) {
            const float value = static_cast<float>(in[k]) * m_factors[k];
            const float half = value < 0 ? -0.5F : 0.5F;
            const float margin = value < 0 ? -kMargin : kMargin;
            nearer[k] = static_cast<JCOEF>(static_cast<int>(value + (half - margin)));
            away[k] = static_cast<JCOEF>(static_cast<int>(value + (half + margin)) - nearer[k]);
            ties += away[k] * away[k];
        }
        if (ties >= kManyTies)
            decideTies(in, away, nearer);
        std::copy(nearer.begin(), nearer.end(), to[block]);
    }
}

/// @param away  from zero to the other multiple where both are equally near, otherwise 0
void Requantization::decideTies(const JCOEF *from, const Block &away, Block &to) const
{
    const SampleRounding rounding(from, m_steps);
    for (size_t first = 0; first < DCTSIZE2; first += DCTSIZE) {
        int ties = 0;
        for (size_t i = 0; i < DCTSIZE; ++i)
            ties |= away[first + i];
        if (ties == 0)
            continue;
        const std::array<float, DCTSIZE> added = rounding.ofRow(first / DCTSIZE);
        for (size_t i = 0; i < DCTSIZE; ++i) {
            const bool isBeyond = static_cast<float>(away[first + i]) * added[i] > kBeyondHalfway;
            to[first + i] = static_cast<JCOEF>(to[first + i] + (isBeyond ? away[first + i] : 0));
        }
    }
}

bool Requantization::areValid(JBLOCKROW blocks, int count)
{
    // Values of 10 bits; only the mean of black has one more.
    constexpr JCOEF kMost = 1023;
    JCOEF least = 0;
    JCOEF greatest = 0;
    const JCOEF *all = blocks[0];
    for (int k = 0; k < count * DCTSIZE2; ++k) {
        least = std::min(least, all[k]);
        greatest = std::max(greatest, all[k]);
    }
    if (least >= -kMost || greatest > kMost || least < -kMost - 1)
        return least >= -kMost && greatest <= kMost;
    return std::all_of(blocks, blocks + count, [](const JBLOCK &block) {
        return std::all_of(block + 1, block + DCTSIZE2, [](JCOEF value) { return value >= -kMost; });
    });
}

} // namespace plexa
