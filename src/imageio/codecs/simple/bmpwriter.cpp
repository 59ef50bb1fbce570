// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"
#include "imageio/container/bmpsoftware.h"

#include <QtEndian>

#include <cmath>
#include <limits>

namespace plexa
{

namespace
{

constexpr qint64 kFileHeaderBytes = 14;
constexpr qint64 kInfoHeaderBytes = 108; // version 4
static_assert(kFileHeaderBytes + kInfoHeaderBytes == kBmpSoftwareAt);

/// A row is padded to whole words of four bytes.
qint64 rowBytes(int width)
{
    return (qint64(width) * 3 + 3) / 4 * 4;
}

/// Before the pixels: the headers and the name of the software, to whole words of four bytes.
qint64 startBytes(const WriteOptions &options)
{
    return (kBmpSoftwareAt + options.software.size() + 3) / 4 * 4;
}

qint64 fileBytes(QSize size, qint64 start)
{
    return start + rowBytes(size.width()) * size.height();
}

quint32 pixelsPerMeter(double dpi)
{
    return dpi > 0 && dpi < 1e6 ? quint32(std::lround(dpi / 0.0254)) : 0;
}

/// BITMAPFILEHEADER, BITMAPV4HEADER, in which other fields are zero, and the name of the software.
QByteArray startOf(QSize size, const WriteOptions &options)
{
    const qint64 start = startBytes(options);
    QByteArray header(start, '\0');
    const auto put = [&header](qsizetype at, quint32 value) { qToLittleEndian(value, header.data() + at); };
    header.replace(0, 2, "BM");
    put(2, quint32(fileBytes(size, start)));
    put(10, quint32(start));
    put(14, quint32(kInfoHeaderBytes));
    put(18, quint32(size.width()));
    put(22, quint32(size.height())); // positive: from the bottom row up
    put(26, 1 | 24 << 16);           // planes, bits a pixel
    put(34, quint32(fileBytes(size, 0)));
    const double *const dpi = options.dpi;
    if (pixelsPerMeter(dpi[0]) > 0 && pixelsPerMeter(dpi[1]) > 0) {
        put(38, pixelsPerMeter(dpi[0]));
        put(42, pixelsPerMeter(dpi[1]));
    }
    put(70, 0x73524742); // LCS_sRGB
    header.replace(kBmpSoftwareAt, options.software.size(), options.software);
    return header;
}

/// Seeks for each strip: the last row of the picture comes first in the file.
class BmpRowWriter final : public RowWriter
{
public:
    BmpRowWriter(QIODevice &device, QSize size, const WriteOptions &options)
        : RowWriter({size, false})
        , m_device(device)
        , m_size(size)
        , m_start(startBytes(options))
    {
    }

    Result<void> start(const WriteOptions &options)
    {
        const QByteArray header = startOf(m_size, options);
        if (m_device.write(header) != header.size())
            return fail(PictureFailures::writeError(m_device));
        return {};
    }

    Result<void> finish() override
    {
        if (!m_device.seek(fileBytes(m_size, m_start)))
            return fail(PictureFailures::writeError(m_device));
        return {};
    }

private:
    Result<void> encodeRows(const QImage &strip, int count) override
    {
        const qsizetype stride = rowBytes(m_size.width());
        m_bytes.fill('\0', stride * count);
        for (int row = 0; row < count; ++row) {
            const auto *pixels = reinterpret_cast<const QRgb *>(strip.constScanLine(row));
            char *out = m_bytes.data() + stride * (count - 1 - row);
            for (int x = 0; x < m_size.width(); ++x) {
                *out++ = char(qBlue(pixels[x]));
                *out++ = char(qGreen(pixels[x]));
                *out++ = char(qRed(pixels[x]));
            }
        }
        if (!m_device.seek(m_start + stride * (m_size.height() - rowsWritten() - count)) ||
            m_device.write(m_bytes) != m_bytes.size())
            return fail(PictureFailures::writeError(m_device));
        return {};
    }

    QIODevice &m_device;
    const QSize m_size;
    const qint64 m_start; ///< of the pixels
    QByteArray m_bytes;   ///< of a strip
};

} // namespace

/// Writes 24 bits a pixel without compression under a header of version 4 that specifies sRGB.
Result<std::unique_ptr<RowWriter>> openBmpWriter(QIODevice &device, const RowFormat &format,
                                                 const WriteOptions &options)
{
    // The file's length has 32 bits.
    if (fileBytes(format.size, startBytes(options)) > std::numeric_limits<quint32>::max())
        return fail(PictureFailures::tooLargeToWrite("BMP"));
    auto writer = std::make_unique<BmpRowWriter>(device, format.size, options);
    if (const auto started = writer->start(options); !started)
        return tl::unexpected(started.error());
    return writer;
}

} // namespace plexa
