// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/blockmeans.h"

#include <algorithm>
#include <new>

namespace plexa
{

namespace
{

int sample(float value)
{
    return qBound(0, int(value + 0.5F), 255);
}

} // namespace

BlockMeans::BlockMeans(JpegSampling sampling, const std::vector<QuantizationTable> &tables, int across)
    : m_sampling(std::move(sampling))
    , m_rows(across, m_sampling.front().vertical, QImage::Format_RGB32)
{
    if (m_rows.isNull())
        throw std::bad_alloc();
    for (size_t i = 0; i < tables.size(); ++i) {
        m_steps[i] = float(tables[i][0]) / DCTSIZE;
        m_means[i].resize(size_t(across));
    }
}

/// Reads the means of one row of pixels, relative to the middle of the range.
void BlockMeans::readMeans(const std::array<JBLOCKARRAY, 3> &blocks, size_t component, int y)
{
    const JpegStructure::Component luma = m_sampling.front();
    const JpegStructure::Component own = m_sampling[component];
    const JBLOCK *block = blocks[component][y * own.vertical / luma.vertical];
    const int pixelsOfBlock = luma.horizontal / own.horizontal;
    for (auto mean = m_means[component].begin(); mean != m_means[component].end(); ++block)
        mean = std::fill_n(mean, pixelsOfBlock, float((*block)[0]) * m_steps[component]);
}

const QImage &BlockMeans::rowsOf(const std::array<JBLOCKARRAY, 3> &blocks)
{
    const bool isGray = m_sampling.size() == 1;
    for (int y = 0; y < m_rows.height(); ++y) {
        for (size_t i = 0; i < m_sampling.size(); ++i)
            readMeans(blocks, i, y);
        auto *row = reinterpret_cast<QRgb *>(m_rows.scanLine(y));
        for (size_t x = 0; x < m_means[0].size(); ++x) {
            const float light = m_means[0][x] + CENTERJSAMPLE;
            const float blue = isGray ? 0 : m_means[1][x];
            const float red = isGray ? 0 : m_means[2][x];
            row[x] = qRgb(sample(light + 1.402F * red), sample(light - 0.344136F * blue - 0.714136F * red),
                          sample(light + 1.772F * blue));
        }
    }
    return m_rows;
}

} // namespace plexa
