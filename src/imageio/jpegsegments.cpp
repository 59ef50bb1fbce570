// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/jpegsegments.h"

#include "imageio/colorprofile.h"
#include "imageio/readfailures.h"

#include <QCryptographicHash>
#include <QtEndian>

namespace plexa
{

namespace
{

constexpr int kApp1 = 0xe1;
constexpr int kApp2 = 0xe2;
constexpr int kApp13 = 0xed;
constexpr int kComment = 0xfe;

constexpr QByteArrayView kExifName("Exif\0\0", 6);
constexpr QByteArrayView kXmpName("http://ns.adobe.com/xap/1.0/\0", 29);
constexpr QByteArrayView kMoreXmpName("http://ns.adobe.com/xmp/extension/\0", 35);
constexpr QByteArrayView kResourcesName("Photoshop 3.0\0", 14);
constexpr QByteArrayView kIccName("ICC_PROFILE\0", 12);

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
    segments.append({kApp1, kXmpName.toByteArray() + main});
    constexpr qsizetype kPiece = 65'000;
    for (qsizetype at = 0; at < rdf.size(); at += kPiece)
        segments.append({kApp1, kMoreXmpName.toByteArray() + guid + bigEndian(quint32(rdf.size())) +
                                    bigEndian(quint32(at)) + rdf.mid(at, kPiece)});
}

/// Cuts `whole` into segments that each begin with `name`.
void appendInPieces(int marker, QByteArrayView name, const QByteArray &whole, QList<JpegSegment> &segments)
{
    const qsizetype room = JpegSegment::kMaxPayload - name.size();
    for (qsizetype at = 0; at < whole.size(); at += room)
        segments.append({marker, name.toByteArray() + whole.mid(at, room)});
}

} // namespace

QByteArray iptcResourceBlock(const QByteArray &iptc)
{
    QByteArray block("8BIM\x04\x04\0\0", 8);
    block += bigEndian(quint32(iptc.size()));
    block += iptc;
    if (iptc.size() % 2 != 0)
        block += '\0';
    return block;
}

Result<QList<JpegSegment>> jpegMetadataSegments(const WriteOptions &options)
{
    QList<JpegSegment> segments;
    if (options.exif.size() > kMaxJpegExif)
        return fail(ReadFailures::exifTooLong());
    if (!options.exif.isEmpty())
        segments.append({kApp1, kExifName.toByteArray() + options.exif});
    if (options.xmp.size() > JpegSegment::kMaxPayload - kXmpName.size())
        appendLongXmp(options.xmp, segments);
    else if (!options.xmp.isEmpty())
        segments.append({kApp1, kXmpName.toByteArray() + options.xmp});
    if (!options.iptc.isEmpty())
        appendInPieces(kApp13, kResourcesName, iptcResourceBlock(options.iptc), segments);
    segments.append({kApp2, kIccName.toByteArray() + QByteArray("\1\1", 2) + srgbProfile()});
    appendInPieces(kComment, {}, options.comment, segments);
    return segments;
}

} // namespace plexa
