// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/jpeg/jpegencoder.h"

namespace plexa
{

/// The picture that has the mean color of each 8 x 8 pixels, made of coefficients without decoding the rest
/// of the blocks.
class BlockMeans
{
public:
    /// @param sampling  gray or YCbCr, luma with the largest factors
    /// @param tables    of each component
    /// @param across    blocks of luma in a row, those included that only fill up an MCU
    BlockMeans(JpegSampling sampling, const std::vector<QuantizationTable> &tables, int across);

    /// Makes the rows of pixels of one row of MCUs.
    /// @param blocks  the rows of blocks of each component
    /// @return as many rows as luma's vertical factor, Format_RGB32; valid until the next call
    const QImage &rowsOf(const std::array<JBLOCKARRAY, 3> &blocks);

private:
    void readMeans(const std::array<JBLOCKARRAY, 3> &blocks, size_t component, int y);

    const JpegSampling m_sampling;
    std::array<float, 3> m_steps = {};
    std::array<std::vector<float>, 3> m_means; ///< of one row
    QImage m_rows;
};

} // namespace plexa
