// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/samplerounding.h"

#include <cmath>
#include <cstring>

namespace plexa
{

namespace
{

constexpr size_t kHalf = DCTSIZE / 2;

/// What rounding to whole samples adds.
/// @param samples  relative to the middle of the range
template<typename Quad>
Quad added(Quad samples)
{
    // Numbers of this size have no fractions.
    constexpr float kWhole = 3 << 22;
    constexpr float kLeast = -CENTERJSAMPLE;
    constexpr float kMost = MAXJSAMPLE - CENTERJSAMPLE;
    const Quad whole = (samples + kWhole) - kWhole;
    const Quad least = Quad{} + kLeast;
    const Quad most = Quad{} + kMost;
    const Quad bounded = whole < least ? least : whole;
    return (bounded > most ? most : bounded) - samples;
}

} // namespace

/// The waves of the transform (ITU-T T.81, A.3.3). Even frequencies are symmetric, odd ones antisymmetric.
struct SampleRounding::Waves {
    std::array<std::array<float, DCTSIZE>, DCTSIZE> at; ///< [frequency][place]
    std::array<Quad, DCTSIZE> begin;                    ///< [frequency], at the first places
    std::array<Line, DCTSIZE> ofPlace;                  ///< [place], of all frequencies

    Waves()
    {
        for (size_t frequency = 0; frequency < DCTSIZE; ++frequency) {
            const double height = frequency == 0 ? std::sqrt(0.125) : 0.5;
            for (size_t place = 0; place < DCTSIZE; ++place) {
                const double angle = double((2 * place + 1) * frequency) * 3.14159265358979323846 / 16;
                const auto value = float(height * std::cos(angle));
                at[frequency][place] = value;
                ofPlace[place][frequency / kHalf][frequency % kHalf] = value;
                if (place < kHalf)
                    begin[frequency][place] = value;
            }
        }
    }

    static const Waves &all()
    {
        static const Waves waves;
        return waves;
    }

    Line line(const JCOEF *coefficients, const float *steps) const
    {
        Quad even = {};
        Quad odd = {};
        for (size_t i = 0; i < DCTSIZE; i += 2) {
            even += float(coefficients[i]) * steps[i] * begin[i];
            odd += float(coefficients[i + 1]) * steps[i + 1] * begin[i + 1];
        }
        const Quad mirrored = even - odd;
        return {even + odd, Quad{mirrored[3], mirrored[2], mirrored[1], mirrored[0]}};
    }
};

SampleRounding::SampleRounding(const JCOEF *coefficients, const std::array<float, DCTSIZE2> &steps)
{
    const Waves &waves = Waves::all();
    std::array<Line, DCTSIZE> lines;
    for (size_t row = 0; row < DCTSIZE; ++row)
        lines[row] = waves.line(coefficients + row * DCTSIZE, steps.data() + row * DCTSIZE);
    for (size_t y = 0; y < kHalf; ++y) {
        for (size_t half = 0; half < 2; ++half) {
            Quad even = {};
            Quad odd = {};
            for (size_t row = 0; row < DCTSIZE; row += 2) {
                even += waves.at[row][y] * lines[row][half];
                odd += waves.at[row + 1][y] * lines[row + 1][half];
            }
            const Quad top = added(even + odd);
            const Quad bottom = added(even - odd);
            m_sums[y][half] = top + bottom;
            m_differences[y][half] = top - bottom;
        }
    }
}

std::array<float, DCTSIZE> SampleRounding::ofRow(size_t row) const
{
    const Waves &waves = Waves::all();
    const std::array<Line, kHalf> &lines = row % 2 == 0 ? m_sums : m_differences;
    Line added = {};
    for (size_t half = 0; half < 2; ++half) {
        Quad sum = {};
        for (size_t y = 0; y < kHalf; ++y)
            sum += waves.at[row][y] * lines[y][half];
        for (size_t i = 0; i < kHalf; ++i) {
            const Line &place = waves.ofPlace[half * kHalf + i];
            added[0] += sum[i] * place[0];
            added[1] += sum[i] * place[1];
        }
    }
    std::array<float, DCTSIZE> result;
    std::memcpy(result.data(), added.data(), sizeof result);
    return result;
}

} // namespace plexa
