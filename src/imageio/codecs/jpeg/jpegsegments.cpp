// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/jpegsegments.h"

#include "imageio/base/picturefailures.h"
#include "imageio/color/colorprofile.h"
#include "imageio/container/imageresources.h"
#include "imageio/container/jpegmarkers.h"

#include <QCryptographicHash>
#include <QtEndian>

namespace plexa
{

namespace
{

using namespace JpegMarker;
using namespace JpegSegmentName;

QByteArray bigEndian(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

/// The RDF of a packet without the processing instructions around it and the blanks that pad it.
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

/// XMP standard, third volume, 1.1.3.1: a packet that is too long goes into numbered extension
/// segments; the main packet names them by the MD5 sum of what they hold.
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

} // namespace

Result<QList<JpegSegment>> jpegMetadataSegments(const WriteOptions &options)
{
    QList<JpegSegment> segments;
    if (options.exif.size() > kMaxJpegExif)
        return fail(PictureFailures::exifTooLong());
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

} // namespace plexa
