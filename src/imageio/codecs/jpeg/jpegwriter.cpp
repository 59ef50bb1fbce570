// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/jpeg/jpegcodec.h"
#include "imageio/codecs/jpeg/jpegerrors.h"
#include "imageio/codecs/jpeg/jpegsegments.h"
#include "imageio/codecs/jpeg/jpegstructure.h"
#include "imageio/codecs/jpeg/thumbnail.h"

#include <QBuffer>

#include <array>
#include <cmath>
#include <optional>

namespace plexa
{

namespace
{

constexpr J_COLOR_SPACE kRgb32 = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? JCS_EXT_BGRX : JCS_EXT_XRGB;
constexpr int kRowsAtATime = 16;

struct SamplingFactors {
    int horizontal;
    int vertical;
};

/// The factors of luma and the two chroma planes.
using Sampling = std::array<SamplingFactors, 3>;

constexpr Sampling kFullChroma = {{{1, 1}, {1, 1}, {1, 1}}};
constexpr Sampling kHalfChroma = {{{2, 2}, {1, 1}, {1, 1}}};

/// Reads "22,11,11". @return full chroma where the text is not of a picture with colors that libjpeg can
/// write with the same factors
Sampling samplingFromText(const QByteArray &text)
{
    const QByteArrayList planes = text.split(',');
    if (planes.size() < 3)
        return kFullChroma;
    Sampling sampling = kFullChroma;
    int blocks = 0;
    for (size_t i = 0; i < sampling.size(); ++i) {
        const QByteArray &factors = planes[qsizetype(i)];
        if (factors.size() != 2)
            return kFullChroma;
        sampling[i] = {factors[0] - '0', factors[1] - '0'};
        if (sampling[i].horizontal < 1 || sampling[i].horizontal > 4 || sampling[i].vertical < 1 ||
            sampling[i].vertical > 4)
            return kFullChroma;
        // libjpeg scales down from the largest factor, which has to be luma's, by whole numbers.
        if (sampling[0].horizontal % sampling[i].horizontal != 0 ||
            sampling[0].vertical % sampling[i].vertical != 0)
            return kFullChroma;
        blocks += sampling[i].horizontal * sampling[i].vertical;
    }
    return blocks <= C_MAX_BLOCKS_IN_MCU ? sampling : kFullChroma;
}

/// libjpeg's output: large writes to a device.
struct Target {
    jpeg_destination_mgr manager;
    QIODevice *device;
    qint64 flushed;
    bool writeFailed;
    std::array<JOCTET, 256 * 1024> buffer;

    void attach(QIODevice &to)
    {
        device = &to;
        flushed = 0;
        writeFailed = false;
        manager.init_destination = [](j_compress_ptr info) {
            reinterpret_cast<Target *>(info->dest)->startBuffer();
        };
        manager.empty_output_buffer = [](j_compress_ptr info) -> boolean {
            auto *target = reinterpret_cast<Target *>(info->dest);
            if (!target->write(target->buffer.size()))
                info->err->error_exit(reinterpret_cast<j_common_ptr>(info));
            target->startBuffer();
            return TRUE;
        };
        manager.term_destination = [](j_compress_ptr info) {
            auto *target = reinterpret_cast<Target *>(info->dest);
            if (!target->write(target->buffer.size() - target->manager.free_in_buffer))
                info->err->error_exit(reinterpret_cast<j_common_ptr>(info));
        };
    }

    void startBuffer()
    {
        manager.next_output_byte = buffer.data();
        manager.free_in_buffer = buffer.size();
    }

    bool write(size_t count)
    {
        const auto size = qint64(count);
        writeFailed = device->write(reinterpret_cast<const char *>(buffer.data()), size) != size;
        flushed += size;
        return !writeFailed;
    }

    /// Bytes that the file has so far.
    qint64 position() const { return flushed + qint64(buffer.size() - manager.free_in_buffer); }
};

/// How the picture itself is encoded.
struct Encoding {
    int quality = 80; ///< 0..100
    Sampling sampling = kHalfChroma;
    bool isProgressive = false;
    bool hasJfif = true;
    int dpi[2] = {0, 0}; ///< 0: not written
};

/// Runs libjpeg's compressor. The functions that call it have no object of their own that a jump would
/// leave behind; after one returned false the encoder is of no more use.
class JpegEncoder
{
public:
    JpegEncoder(QIODevice &device, QSize size, const Encoding &encoding)
        : m_size(size)
        , m_encoding(encoding)
    {
        m_info = {};
        m_target.attach(device);
    }

    ~JpegEncoder() { jpeg_destroy_compress(&m_info); }
    JpegEncoder(const JpegEncoder &) = delete;
    JpegEncoder &operator=(const JpegEncoder &) = delete;

    bool start()
    {
        m_info.err = m_errors.attach();
        if (setjmp(m_errors.jump))
            return false;
        jpeg_create_compress(&m_info);
        m_info.dest = &m_target.manager;
        m_info.image_width = JDIMENSION(m_size.width());
        m_info.image_height = JDIMENSION(m_size.height());
        m_info.input_components = 4;
        m_info.in_color_space = kRgb32;
        jpeg_set_defaults(&m_info);
        jpeg_set_quality(&m_info, m_encoding.quality, TRUE);
        for (int i = 0; i < 3; ++i) {
            m_info.comp_info[i].h_samp_factor = m_encoding.sampling[size_t(i)].horizontal;
            m_info.comp_info[i].v_samp_factor = m_encoding.sampling[size_t(i)].vertical;
        }
        m_info.write_JFIF_header = m_encoding.hasJfif;
        if (m_encoding.dpi[0] > 0 && m_encoding.dpi[1] > 0) {
            m_info.density_unit = 1;
            m_info.X_density = UINT16(m_encoding.dpi[0]);
            m_info.Y_density = UINT16(m_encoding.dpi[1]);
        }
        if (m_encoding.isProgressive)
            jpeg_simple_progression(&m_info);
        jpeg_start_compress(&m_info, TRUE);
        return true;
    }

    bool writeSegment(int marker, const char *payload, qsizetype size)
    {
        if (setjmp(m_errors.jump))
            return false;
        jpeg_write_marker(&m_info, marker, reinterpret_cast<const JOCTET *>(payload), unsigned(size));
        return true;
    }

    /// @param rows  they are only read; libjpeg's type does not say so
    bool writeRows(JSAMPARRAY rows, int count)
    {
        if (setjmp(m_errors.jump))
            return false;
        return jpeg_write_scanlines(&m_info, rows, JDIMENSION(count)) == JDIMENSION(count);
    }

    bool finish()
    {
        if (setjmp(m_errors.jump))
            return false;
        jpeg_finish_compress(&m_info);
        return true;
    }

    qint64 position() const { return m_target.position(); }
    bool isOutOfMemory() const { return m_errors.isOutOfMemory; }

    bool writeImage(const QImage &image, int count)
    {
        for (int row = 0; row < count;) {
            const int rows = qMin(count - row, kRowsAtATime);
            for (int i = 0; i < rows; ++i)
                m_rows[size_t(i)] = const_cast<JSAMPROW>(image.constScanLine(row + i));
            if (!writeRows(m_rows.data(), rows))
                return false;
            row += rows;
        }
        return true;
    }

private:
    const QSize m_size;
    const Encoding m_encoding;
    JpegErrors m_errors;
    Target m_target;
    jpeg_compress_struct m_info;
    std::array<JSAMPROW, kRowsAtATime> m_rows = {};
};

class JpegRowWriter final : public RowWriter
{
public:
    JpegRowWriter(QIODevice &device, const RowFormat &format, const Encoding &encoding)
        : RowWriter(format)
        , m_device(device)
        , m_start(device.pos())
        , m_encoder(device, format.size, encoding)
    {
    }

    Result<void> start(const WriteOptions &options)
    {
        const Result<QList<JpegSegment>> segments = jpegMetadataSegments(options);
        if (!segments)
            return tl::unexpected(segments.error());
        if (!m_encoder.start())
            return failure();
        if (!options.exif.isEmpty() && !options.thumbnailPlaceholder.isEmpty()) {
            // The EXIF segment comes first. Its payload stands behind marker and length.
            const qsizetype offset = segments->first().payload.indexOf(options.thumbnailPlaceholder);
            if (offset >= 0) {
                m_thumbnailPosition = m_start + m_encoder.position() + 4 + offset;
                m_thumbnailBytes = options.thumbnailPlaceholder.size();
                m_thumbnail.emplace(m_format.size);
            }
        }
        for (const JpegSegment &segment : *segments) {
            if (!m_encoder.writeSegment(segment.marker, segment.payload.constData(), segment.payload.size()))
                return failure();
        }
        return {};
    }

    Result<void> finish() override
    {
        if (!m_encoder.finish())
            return failure();
        if (!m_thumbnail)
            return {};
        const QByteArray thumbnail = m_thumbnail->jpeg(m_thumbnailBytes);
        if (thumbnail.isEmpty())
            return fail(PictureFailures::outOfMemory());
        const qint64 end = m_device.pos();
        if (!m_device.seek(m_thumbnailPosition) || m_device.write(thumbnail) != thumbnail.size() ||
            !m_device.seek(end))
            return failure();
        return {};
    }

private:
    Result<void> encodeRows(const QImage &strip, int count) override
    {
        if (!m_encoder.writeImage(strip, count))
            return failure();
        if (m_thumbnail)
            m_thumbnail->addRows(strip, count);
        return {};
    }

    tl::unexpected<Error> failure() const
    {
        return fail(m_encoder.isOutOfMemory() ? PictureFailures::outOfMemory()
                                              : PictureFailures::writeError(m_device));
    }

    QIODevice &m_device;
    const qint64 m_start;
    JpegEncoder m_encoder;
    std::optional<ThumbnailMaker> m_thumbnail;
    qint64 m_thumbnailPosition = -1;
    qsizetype m_thumbnailBytes = 0;
};

int density(double dpi)
{
    return dpi >= 0.5 && dpi <= 65535 ? int(std::lround(dpi)) : 0;
}

Encoding encodingOf(const WriteOptions &options)
{
    Encoding encoding;
    encoding.quality = qBound(0, int(std::lround(options.quality * 100)), 100);
    encoding.sampling = encoding.quality >= 90 ? samplingFromText(options.chromaSampling) : kHalfChroma;
    encoding.isProgressive = options.isProgressive;
    encoding.dpi[0] = density(options.dpi[0]);
    encoding.dpi[1] = density(options.dpi[1]);
    return encoding;
}

} // namespace

Result<std::unique_ptr<RowWriter>> JpegCodec::openWriter(QIODevice &device, const RowFormat &format,
                                                         const WriteOptions &options) const
{
    Q_ASSERT(!format.hasAlpha);
    if (qMax(format.size.width(), format.size.height()) > JPEG_MAX_DIMENSION || format.size.isEmpty())
        return fail(PictureFailures::tooLargeToWrite("JPEG"));
    const Encoding encoding = encodingOf(options);
    auto writer = std::make_unique<JpegRowWriter>(device, format, encoding);
    if (const auto started = writer->start(options); !started)
        return tl::unexpected(started.error());
    return writer;
}

qint64 JpegCodec::writerBytes(const RowFormat &format, const WriteOptions &options) const
{
    const Encoding encoding = encodingOf(options);
    if (!encoding.isProgressive)
        return 0;
    QList<JpegStructure::Component> components;
    for (const SamplingFactors &factors : encoding.sampling)
        components.append({factors.horizontal, factors.vertical});
    return coefficientBytes(format.size, components);
}

QByteArray encodeBareJpeg(const QImage &image, int quality)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    Encoding encoding;
    encoding.quality = qBound(0, quality, 100);
    encoding.hasJfif = false;
    const auto encoder = std::make_unique<JpegEncoder>(buffer, image.size(), encoding);
    if (!encoder->start() || !encoder->writeImage(image, image.height()) || !encoder->finish())
        return {};
    return buffer.data();
}

} // namespace plexa
