// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/rowstream.h"

#include <algorithm>

namespace plexa
{

namespace
{

class ImageRows final : public SingleRowReader
{
public:
    ImageRows(QImage image, bool hasAlpha)
        : SingleRowReader({image.size(), hasAlpha})
        , m_image(std::move(image))
    {
    }

private:
    Result<void> decodeRow(int index, QRgb *row) override
    {
        QImage converted;
        if (m_image.format() != m_format.imageFormat())
            converted = m_image.copy(0, index, m_image.width(), 1).convertToFormat(m_format.imageFormat());
        const uchar *from = converted.isNull() ? m_image.constScanLine(index) : converted.constScanLine(0);
        std::copy_n(reinterpret_cast<const QRgb *>(from), m_image.width(), row);
        return {};
    }

    const QImage m_image;
};

} // namespace

Result<void> RowReader::readRows(QImage &strip, int count)
{
    Q_ASSERT(strip.format() == m_format.imageFormat() && strip.width() == m_format.size.width());
    Q_ASSERT(count >= 1 && count <= strip.height() && count <= m_format.size.height() - m_rowsRead);
    if (m_failure)
        return tl::unexpected(*m_failure);
    const Result<void> decoded = decodeRows(strip.bits(), strip.bytesPerLine(), count);
    if (decoded)
        m_rowsRead += count;
    else
        m_failure = decoded.error();
    return decoded;
}

Result<void> SingleRowReader::decodeRows(uchar *bits, qsizetype stride, int count)
{
    for (int row = 0; row < count; ++row, bits += stride) {
        if (const auto decoded = decodeRow(rowsRead() + row, reinterpret_cast<QRgb *>(bits)); !decoded)
            return decoded;
    }
    return {};
}

std::unique_ptr<RowReader> rowsOfImage(QImage image, bool hasAlpha)
{
    return std::make_unique<ImageRows>(std::move(image), hasAlpha);
}

Result<void> RowWriter::writeRows(const QImage &strip, int count)
{
    Q_ASSERT(strip.format() == m_format.imageFormat() && strip.width() == m_format.size.width());
    Q_ASSERT(count >= 1 && count <= strip.height() && count <= m_format.size.height() - m_rowsWritten);
    const Result<void> encoded = encodeRows(strip, count);
    m_rowsWritten += count;
    return encoded;
}

} // namespace plexa
