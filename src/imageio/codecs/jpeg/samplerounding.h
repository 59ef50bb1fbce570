// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/jpeg/jpegerrors.h"

#include <array>

namespace plexa
{

/// What decoding adds to the coefficients of a block by rounding its samples to whole numbers from 0 to 255.
class SampleRounding
{
public:
    /// @param coefficients  of one block, row by row
    /// @param steps         what they are multiples of
    SampleRounding(const JCOEF *coefficients, const std::array<float, DCTSIZE2> &steps);

    /// What is added to the coefficients of one row of a block.
    std::array<float, DCTSIZE> ofRow(size_t row) const;

private:
    using Quad = float __attribute__((vector_size(16)));
    using Line = std::array<Quad, 2>;
    struct Waves;

    /// What is added to a line of samples, plus and minus the same of its mirror image.
    std::array<Line, DCTSIZE / 2> m_sums, m_differences;
};

} // namespace plexa
