// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/base/reducedrows.h"
#include "imageio/codecs/raw/rawcodec.h"
#include "imageio/codecs/raw/rawfile.h"

namespace plexa
{

namespace
{

/// Hands out the rows of a photo that is developed already.
class RawRowReader final : public RowReader
{
public:
    explicit RawRowReader(RawPicture picture)
        : m_picture(std::move(picture))
        , m_format{m_picture.size, false}
    {
    }

    RowFormat format() const override { return m_format; }

    Result<void> readRows(QImage &strip, int count) override
    {
        Q_ASSERT(strip.format() == m_format.imageFormat() && strip.width() == m_format.size.width());
        Q_ASSERT(count >= 1 && count <= strip.height() && count <= m_format.size.height() - m_nextRow);
        const int channels = m_picture.channels;
        const int green = channels > 1 ? 1 : 0;
        const int blue = channels > 1 ? 2 : 0;
        uchar *bits = strip.bits();
        for (int row = 0; row < count; ++row, ++m_nextRow) {
            const uchar *in = m_picture.pixels.get() + qint64(m_nextRow) * strip.width() * channels;
            auto *out = reinterpret_cast<QRgb *>(bits + row * strip.bytesPerLine());
            for (int x = 0; x < strip.width(); ++x, in += channels)
                out[x] = qRgb(in[0], in[green], in[blue]);
        }
        return {};
    }

private:
    const RawPicture m_picture;
    const RowFormat m_format;
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
    if (picture->size != plexa::reducedSize(file.facts().size, isHalf ? 2 : 1))
        return fail(PictureFailures::damaged());
    return withReducedRows(std::make_unique<RawRowReader>(std::move(*picture)),
                           isHalf ? reduction / 2 : reduction);
}

Result<std::unique_ptr<RowWriter>> RawCodec::openWriter(QIODevice &, const RowFormat &,
                                                        const WriteOptions &) const
{
    return fail(PictureFailures::cannotWrite(QStringLiteral("image/x-dcraw")));
}

QSize RawCodec::reducedSize(QSize size, int reduction) const
{
    return plexa::reducedSize(size, reduction);
}

} // namespace plexa
