// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/blockmeans.h"

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
    for (size_t i = 0; i < tables.size(); ++i)
        m_steps[i] = float(tables[i][0]) / DCTSIZE;
}

/// Relative to the middle of the range.
float BlockMeans::meanAt(const std::array<JBLOCKARRAY, 3> &blocks, size_t component, int x, int y) const
{
    const JpegStructure::Component luma = m_sampling.front();
    const JpegStructure::Component own = m_sampling[component];
    const JBLOCKROW row = blocks[component][y * own.vertical / luma.vertical];
    return float(row[x * own.horizontal / luma.horizontal][0]) * m_steps[component];
}

const QImage &BlockMeans::rowsOf(const std::array<JBLOCKARRAY, 3> &blocks)
{
    for (int y = 0; y < m_rows.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(m_rows.scanLine(y));
        for (int x = 0; x < m_rows.width(); ++x) {
            const float light = meanAt(blocks, 0, x, y) + CENTERJSAMPLE;
            if (m_sampling.size() == 1) {
                row[x] = qRgb(sample(light), sample(light), sample(light));
                continue;
            }
            const float blue = meanAt(blocks, 1, x, y);
            const float red = meanAt(blocks, 2, x, y);
            row[x] = qRgb(sample(light + 1.402F * red), sample(light - 0.344136F * blue - 0.714136F * red),
                          sample(light + 1.772F * blue));
        }
    }
    return m_rows;
}

} // namespace plexa
