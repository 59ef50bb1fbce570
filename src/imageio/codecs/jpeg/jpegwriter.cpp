// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"
#include "imageio/codecs/jpeg/jpegerrors.h"
#include "imageio/codecs/jpeg/jpegstructure.h"
#include "imageio/codecs/jpeg/thumbnail.h"
#include "imageio/color/colorprofile.h"
#include "imageio/container/imageresources.h"
#include "imageio/container/jpegmarkers.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QtEndian>

#include <array>
#include <cmath>
#include <optional>

namespace plexa
{

namespace
{

using namespace JpegMarker;
using namespace JpegSegmentName;

constexpr J_COLOR_SPACE kRgb32 = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? JCS_EXT_BGRX : JCS_EXT_XRGB;
constexpr int kRowsAtATime = 16;

/// The factors of luma and the two chroma planes.
using Sampling = std::array<JpegStructure::Component, 3>;

constexpr Sampling kFullChroma = {{{1, 1}, {1, 1}, {1, 1}}};
constexpr Sampling kHalfChroma = {{{2, 2}, {1, 1}, {1, 1}}};

/// Reads "22,11,11". @return full chroma unless libjpeg can write the factors
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
        // libjpeg scales down by whole numbers from the largest factor, which must be luma's.
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

struct Encoding {
    int quality = 80; ///< 0..100
    Sampling sampling = kHalfChroma;
    bool isProgressive = false;
    bool hasJfif = true;
    int dpi[2] = {0, 0}; ///< 0: not written
};

/// Runs libjpeg's compressor. The functions that call it own no object whose destructor a jump would skip;
/// after one has returned false the encoder must not be used.
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

    /// @param rows  only read, although libjpeg's type is not const
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

/// One marker segment to be written.
struct JpegSegment {
    int marker;         ///< second byte of the marker: 0xE1 for APP1
    QByteArray payload; ///< at most kMaxJpegSegmentPayload bytes
};

QByteArray bigEndian(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray withoutPacketWrapper(const QByteArray &packet)
{
    QByteArray rdf = packet;
    const qsizetype begin = rdf.indexOf("<?xpacket begin");
    if (begin >= 0) {
        const qsizetype end = rdf.indexOf("?>", begin);
        if (end >= 0)
            rdf = rdf.mid(end + 2);
    }
    const qsizetype trailer = rdf.lastIndexOf("<?xpacket end");
    if (trailer >= 0)
        rdf.truncate(trailer);
    return rdf.trimmed();
}

/// XMP standard, part 3, 1.1.3.1: a packet that is too long is split into extension segments; the main packet
/// refers to them by the MD5 sum of their contents.
void appendLongXmp(const QByteArray &packet, QList<JpegSegment> &segments)
{
    const QByteArray rdf = withoutPacketWrapper(packet);
    const QByteArray guid = QCryptographicHash::hash(rdf, QCryptographicHash::Md5).toHex().toUpper();
    const QByteArray main = "<?xpacket begin=\"\xef\xbb\xbf\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>"
                            "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">"
                            "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
                            "<rdf:Description rdf:about=\"\" xmlns:xmpNote=\"http://ns.adobe.com/xmp/note/\" "
                            "xmpNote:HasExtendedXMP=\"" +
                            guid + "\"/></rdf:RDF></x:xmpmeta><?xpacket end=\"w\"?>";
    segments.append({APP1, kXmp.toByteArray() + main});
    constexpr qsizetype kPiece = 65'000;
    for (qsizetype at = 0; at < rdf.size(); at += kPiece)
        segments.append({APP1, kMoreXmp.toByteArray() + guid + bigEndian(quint32(rdf.size())) +
                                   bigEndian(quint32(at)) + rdf.mid(at, kPiece)});
}

/// Cuts `whole` into segments that each begin with `name`.
void appendInPieces(int marker, QByteArrayView name, const QByteArray &whole, QList<JpegSegment> &segments)
{
    const qsizetype room = kMaxJpegSegmentPayload - name.size();
    for (qsizetype at = 0; at < whole.size(); at += room)
        segments.append({marker, name.toByteArray() + whole.mid(at, room)});
}

/// All segments of a written JPEG besides JFIF and the picture; nothing comes from the source's segments.
QList<JpegSegment> metadataSegments(const WriteOptions &options)
{
    QList<JpegSegment> segments;
    if (!options.exif.isEmpty())
        segments.append({APP1, kExif.toByteArray() + options.exif});
    if (options.xmp.size() > kMaxJpegSegmentPayload - kXmp.size())
        appendLongXmp(options.xmp, segments);
    else if (!options.xmp.isEmpty())
        segments.append({APP1, kXmp.toByteArray() + options.xmp});
    appendInPieces(APP13, kImageResources, imageResourceBlocks(options.iptc, options.imageResources),
                   segments);
    segments.append({APP2, kIcc.toByteArray() + QByteArray("\1\1", 2) + srgbProfile()});
    appendInPieces(COM, {}, options.comment, segments);
    return segments;
}

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
        if (options.exif.size() > kMaxJpegExif)
            return fail(PictureFailures::exifTooLong());
        const QList<JpegSegment> segments = metadataSegments(options);
        if (!m_encoder.start())
            return failure();
        if (!options.exif.isEmpty() && !options.thumbnailPlaceholder.isEmpty()) {
            // The EXIF segment comes first. Its payload follows marker and length.
            const qsizetype offset = segments.first().payload.indexOf(options.thumbnailPlaceholder);
            if (offset >= 0) {
                m_thumbnailPosition = m_start + m_encoder.position() + 4 + offset;
                m_thumbnailBytes = options.thumbnailPlaceholder.size();
                m_thumbnail.emplace(m_format.size);
            }
        }
        for (const JpegSegment &segment : segments) {
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

/// The written chroma sampling: at a quality of 0.9 and above that of WriteOptions::chromaSampling, or full
/// chroma if it is empty; below that half chroma in both directions.
Result<std::unique_ptr<RowWriter>> openJpegWriter(QIODevice &device, const RowFormat &format,
                                                  const WriteOptions &options)
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

qint64 jpegWriterBytes(const RowFormat &format, const WriteOptions &options)
{
    const Encoding encoding = encodingOf(options);
    if (!encoding.isProgressive)
        return 0;
    return coefficientBytes(format.size, {encoding.sampling.begin(), encoding.sampling.end()});
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
