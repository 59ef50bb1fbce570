// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/rawcodec.h"
#include "imageio/rawfile.h"
#include "imageio/readfailures.h"

#include <vector>

namespace plexa
{

namespace
{

QSize reduced(QSize size, int factor)
{
    return {(size.width() + factor - 1) / factor, (size.height() + factor - 1) / factor};
}

/// Hands out the rows of a photo that is developed already, each pixel the mean of a square of the photo's.
class RawRowReader final : public RowReader
{
public:
    RawRowReader(RawPicture picture, int factor)
        : m_picture(std::move(picture))
        , m_factor(factor)
        , m_format{reduced(m_picture.size, factor), false}
        , m_sums(size_t(m_format.size.width()))
    {
    }

    RowFormat format() const override { return m_format; }

    Result<void> readRows(QImage &strip, int count) override
    {
        Q_ASSERT(strip.format() == m_format.imageFormat() && strip.width() == m_format.size.width());
        Q_ASSERT(count >= 1 && count <= strip.height() && count <= m_format.size.height() - m_nextRow);
        uchar *bits = strip.bits();
        for (int row = 0; row < count; ++row, ++m_nextRow) {
            auto *out = reinterpret_cast<QRgb *>(bits + row * strip.bytesPerLine());
            if (m_factor == 1)
                copyRow(out);
            else
                averageRows(out);
        }
        return {};
    }

private:
    const uchar *pixelsOfRow(int row) const
    {
        return m_picture.pixels.get() + qint64(row) * m_picture.size.width() * m_picture.channels;
    }

    void copyRow(QRgb *out) const
    {
        const uchar *in = pixelsOfRow(m_nextRow);
        const int green = m_picture.channels > 1 ? 1 : 0;
        const int blue = m_picture.channels > 1 ? 2 : 0;
        for (int x = 0; x < m_format.size.width(); ++x, in += m_picture.channels)
            out[x] = qRgb(in[0], in[green], in[blue]);
    }

    void averageRows(QRgb *out)
    {
        std::fill(m_sums.begin(), m_sums.end(), Sum());
        const int green = m_picture.channels > 1 ? 1 : 0;
        const int blue = m_picture.channels > 1 ? 2 : 0;
        const int end = qMin(m_picture.size.height(), (m_nextRow + 1) * m_factor);
        for (int row = m_nextRow * m_factor; row < end; ++row) {
            const uchar *in = pixelsOfRow(row);
            for (int x = 0; x < m_picture.size.width(); ++x, in += m_picture.channels) {
                Sum &sum = m_sums[size_t(x / m_factor)];
                sum.red += in[0];
                sum.green += in[green];
                sum.blue += in[blue];
                ++sum.count;
            }
        }
        for (const Sum &sum : m_sums) {
            const auto mean = [&sum](int total) { return (total + sum.count / 2) / sum.count; };
            *out++ = qRgb(mean(sum.red), mean(sum.green), mean(sum.blue));
        }
    }

    struct Sum {
        int red = 0, green = 0, blue = 0, count = 0;
    };

    const RawPicture m_picture;
    const int m_factor;
    const RowFormat m_format;
    std::vector<Sum> m_sums;
    int m_nextRow = 0;
};

} // namespace

Result<PictureInfo> RawCodec::readInfo(QIODevice &device, const ReadLimits &limits) const
{
    RawFile file(device, limits);
    if (const auto opened = file.open(); !opened)
        return tl::unexpected(opened.error());
    const RawFacts &facts = file.facts();
    PictureInfo info;
    info.rows = {facts.size, false};
    info.imageCount = facts.pictureCount;
    info.depth = facts.depth;
    info.colorModel = QStringLiteral("RGB");
    info.decoderBytes = facts.decoderBytes;
    info.orientation = facts.orientation;
    info.properties = facts.properties;
    return info;
}

Result<std::unique_ptr<RowReader>> RawCodec::openReader(QIODevice &device, const ReadLimits &limits,
                                                        int reduction) const
{
    RawFile file(device, limits);
    if (const auto opened = file.open(); !opened)
        return tl::unexpected(opened.error());
    const bool isHalf = reduction > 1 && file.facts().canHalve;
    Result<RawPicture> picture = file.decode(isHalf);
    if (!picture)
        return tl::unexpected(picture.error());
    // Some decoders find out a different size while they decode.
    if (picture->size != reduced(file.facts().size, isHalf ? 2 : 1))
        return fail(ReadFailures::damaged());
    return std::make_unique<RawRowReader>(std::move(*picture), isHalf ? reduction / 2 : reduction);
}

Result<std::unique_ptr<RowWriter>> RawCodec::openWriter(QIODevice &, const RowFormat &,
                                                        const WriteOptions &) const
{
    return fail(ReadFailures::cannotWrite(QStringLiteral("image/x-dcraw")));
}

QSize RawCodec::reducedSize(QSize size, int reduction) const
{
    return reduced(size, reduction);
}

} // namespace plexa
