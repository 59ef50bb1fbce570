// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/jpeg/jpegencoder.h"

namespace plexa
{

/// Brings blocks of coefficients from the steps of one table to those of another one. Immutable.
class Requantization
{
public:
    /// @param quality  the table that a quality asks for: steps of `from` that are coarser stay
    Requantization(const QuantizationTable &from, const QuantizationTable &quality);

    /// The steps of the result.
    const QuantizationTable &table() const { return m_table; }

    /// Do all steps stay, and with them all coefficients?
    bool isIdentity() const { return m_isIdentity; }

    /// Converts `count` blocks to the nearest multiples of their new steps. Of two that are equally near, the
    /// one is chosen that is nearer to the decoded samples, which are rounded to whole numbers.
    /// @param to  may be `from`
    void convert(JBLOCKROW from, JBLOCKROW to, int count) const;

    /// Have all of `count` blocks in a row coefficients that an 8-bit picture can have? The library would
    /// write others as data that cannot be read.
    static bool areValid(JBLOCKROW blocks, int count);

private:
    using Block = std::array<JCOEF, DCTSIZE2>;

    void decideTies(const JCOEF *from, const Block &away, Block &to) const;

    QuantizationTable m_table;
    std::array<float, DCTSIZE2> m_steps;   ///< of the source
    std::array<float, DCTSIZE2> m_factors; ///< of coefficients
    bool m_isIdentity;
};

} // namespace plexa
