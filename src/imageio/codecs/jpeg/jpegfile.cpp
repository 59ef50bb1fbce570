// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/jpegfile.h"

#include "imageio/codecs/jpeg/thumbnail.h"
#include "imageio/color/colorprofile.h"
#include "imageio/container/imageresources.h"
#include "imageio/container/jpegmarkers.h"

#include <QCryptographicHash>
#include <QtEndian>

#include <cmath>

namespace plexa
{

namespace
{

using namespace JpegMarker;
using namespace JpegSegmentName;

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

int density(double dpi)
{
    return dpi >= 0.5 && dpi <= 65535 ? int(std::lround(dpi)) : 0;
}

} // namespace

JpegFile::JpegFile(QIODevice &device, QSize size, const JpegEncoding &encoding)
    : m_device(device)
    , m_start(device.pos())
    , m_encoder(device, size, encoding)
{
}

Result<void> JpegFile::start(const WriteOptions &options, JpegBlockRows *rows)
{
    if (options.exif.size() > kMaxJpegExif)
        return fail(PictureFailures::exifTooLong());
    const QList<JpegSegment> segments = metadataSegments(options);
    if (!(rows ? m_encoder.start(*rows) : m_encoder.start()))
        return failure();
    if (!options.exif.isEmpty() && !options.thumbnailPlaceholder.isEmpty()) {
        // The EXIF segment comes first. Its payload follows marker and length.
        const qsizetype offset = segments.first().payload.indexOf(options.thumbnailPlaceholder);
        if (offset >= 0) {
            m_thumbnailPosition = m_start + m_encoder.position() + 4 + offset;
            m_thumbnailBytes = options.thumbnailPlaceholder.size();
        }
    }
    for (const JpegSegment &segment : segments) {
        if (!m_encoder.writeSegment(segment.marker, segment.payload.constData(), segment.payload.size()))
            return failure();
    }
    return {};
}

Result<void> JpegFile::writeImage(const QImage &image, int count)
{
    return m_encoder.writeImage(image, count) ? Result<void>() : failure();
}

Result<void> JpegFile::finish()
{
    return m_encoder.finish() ? Result<void>() : failure();
}

Result<void> JpegFile::setThumbnail(const ThumbnailMaker &thumbnail)
{
    const QByteArray jpeg = thumbnail.jpeg(m_thumbnailBytes);
    if (jpeg.isEmpty())
        return fail(PictureFailures::outOfMemory());
    const qint64 end = m_device.pos();
    if (!m_device.seek(m_thumbnailPosition) || m_device.write(jpeg) != jpeg.size() || !m_device.seek(end))
        return failure();
    return {};
}

tl::unexpected<Error> JpegFile::failure() const
{
    return fail(m_encoder.isOutOfMemory() ? PictureFailures::outOfMemory()
                                          : PictureFailures::writeError(m_device));
}

JpegEncoding jpegEncodingOf(const WriteOptions &options)
{
    constexpr int kKeepsChroma = 90;
    JpegEncoding encoding;
    encoding.quality = qBound(0, int(std::lround(options.quality * 100)), 100);
    if (encoding.quality >= kKeepsChroma) {
        encoding.sampling = jpegSamplingFromText(options.chromaSampling);
        if (encoding.sampling.size() != 3)
            encoding.sampling = {{1, 1}, {1, 1}, {1, 1}};
    }
    encoding.isProgressive = options.isProgressive;
    encoding.dpi[0] = density(options.dpi[0]);
    encoding.dpi[1] = density(options.dpi[1]);
    return encoding;
}

} // namespace plexa
