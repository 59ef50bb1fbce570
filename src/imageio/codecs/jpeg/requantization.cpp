// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/requantization.h"

#include <algorithm>

namespace plexa
{

Requantization::Requantization(const QuantizationTable &from, const QuantizationTable &quality)
{
    std::transform(from.begin(), from.end(), quality.begin(), m_table.begin(),
                   [](UINT16 one, UINT16 other) { return std::max(one, other); });
    std::transform(
        from.begin(), from.end(), m_table.begin(), m_factors.begin(),
        [](UINT16 one, UINT16 other) { return static_cast<float>(one) / static_cast<float>(other); });
    m_isIdentity = from == m_table;
}

void Requantization::convert(JBLOCKROW from, JBLOCKROW to, int count) const
{
    // A product is exact to within a thousandth, and is a half or differs from it by more: steps are at most
    // 255.
    constexpr float kHalf = 0.5F - 0.0005F;
    for (int block = 0; block < count; ++block) {
        const JCOEF *in = from[block];
        JCOEF *out = to[block];
        for (int k = 0; k < DCTSIZE2; ++k) {
            const float value = static_cast<float>(in[k]) * m_factors[static_cast<size_t>(k)];
            out[k] = static_cast<JCOEF>(static_cast<int>(value + (value < 0 ? -kHalf : kHalf)));
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
