// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"
#include "imageio/codecs/jpeg/jpegfile.h"
#include "imageio/codecs/jpeg/thumbnail.h"

#include <QBuffer>

#include <optional>

namespace plexa
{

namespace
{

class JpegRowWriter final : public RowWriter
{
public:
    JpegRowWriter(QIODevice &device, const RowFormat &format, const JpegEncoding &encoding)
        : RowWriter(format)
        , m_file(device, format.size, encoding)
    {
    }

    Result<void> start(const WriteOptions &options)
    {
        const Result<void> started = m_file.start(options);
        if (started && m_file.needsThumbnail())
            m_thumbnail.emplace(m_format.size);
        return started;
    }

    Result<void> finish() override
    {
        const Result<void> finished = m_file.finish();
        return finished && m_thumbnail ? m_file.setThumbnail(*m_thumbnail) : finished;
    }

private:
    Result<void> encodeRows(const QImage &strip, int count) override
    {
        const Result<void> written = m_file.writeImage(strip, count);
        if (written && m_thumbnail)
            m_thumbnail->addRows(strip, count);
        return written;
    }

    JpegFile m_file;
    std::optional<ThumbnailMaker> m_thumbnail;
};

} // namespace

Result<std::unique_ptr<RowWriter>> openJpegWriter(QIODevice &device, const RowFormat &format,
                                                  const WriteOptions &options)
{
    Q_ASSERT(!format.hasAlpha);
    if (qMax(format.size.width(), format.size.height()) > JPEG_MAX_DIMENSION || format.size.isEmpty())
        return fail(PictureFailures::tooLargeToWrite("JPEG"));
    auto writer = std::make_unique<JpegRowWriter>(device, format, jpegEncodingOf(options));
    if (const auto started = writer->start(options); !started)
        return tl::unexpected(started.error());
    return writer;
}

qint64 jpegWriterBytes(const RowFormat &format, const WriteOptions &options)
{
    const JpegEncoding encoding = jpegEncodingOf(options);
    if (!encoding.isProgressive)
        return 0;
    return coefficientBytes(format.size, {encoding.sampling.begin(), encoding.sampling.end()});
}

QByteArray encodeBareJpeg(const QImage &image, int quality)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    JpegEncoding encoding;
    encoding.quality = qBound(0, quality, 100);
    encoding.hasJfif = false;
    const auto encoder = std::make_unique<JpegEncoder>(buffer, image.size(), encoding);
    if (!encoder->start() || !encoder->writeImage(image, image.height()) || !encoder->finish())
        return {};
    return buffer.data();
}

} // namespace plexa
