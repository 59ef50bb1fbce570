// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/metadatablocks.h"

#include "imageio/container/gifstructure.h"
#include "imageio/container/heifbrands.h"
#include "imageio/container/heifitems.h"
#include "imageio/container/imageresources.h"
#include "imageio/container/jpegexif.h"
#include "imageio/container/jpegmarkers.h"
#include "imageio/container/jpegsegmentreader.h"

#include <QList>
#include <QMap>
#include <QtEndian>

namespace plexa
{

namespace
{

using namespace Qt::Literals::StringLiterals;

constexpr int kMaxBlocks = 20'000; // chunks that are read at most

void takeFirst(QByteArray &block, const QByteArray &candidate)
{
    if (block.isEmpty() && candidate.size() <= kMaxMetadataBytes)
        block = candidate;
}

/// A packet in pieces: each states its packet, the length of the packet and the place of the piece.
class ExtendedXmp
{
public:
    void add(const QByteArray &piece)
    {
        if (piece.size() < kHeadBytes)
            return;
        const QByteArray guid = piece.left(kGuidBytes);
        const qsizetype length = qFromBigEndian<quint32>(piece.constData() + kGuidBytes);
        const qsizetype offset = qFromBigEndian<quint32>(piece.constData() + kGuidBytes + 4);
        const QByteArray text = piece.mid(kHeadBytes);
        if (length > kMaxMetadataBytes || offset != m_packets[guid].size() || offset + text.size() > length)
            return;
        m_packets[guid] += text;
        m_lengths[guid] = length;
    }

    /// The packet that the main one names; empty unless it is whole.
    QByteArray packetNamedIn(const QByteArray &mainPacket) const
    {
        for (auto packet = m_packets.begin(); packet != m_packets.end(); ++packet) {
            if (packet->size() == m_lengths.value(packet.key()) && mainPacket.contains(packet.key()))
                return *packet;
        }
        return {};
    }

private:
    static constexpr qsizetype kGuidBytes = 32;
    static constexpr qsizetype kHeadBytes = kGuidBytes + 8;
    QMap<QByteArray, QByteArray> m_packets;
    QMap<QByteArray, qsizetype> m_lengths;
};

void takeApp1(JpegSegmentReader &segments, MetadataBlocks &blocks, ExtendedXmp &extendedXmp)
{
    using namespace JpegSegmentName;
    if (segments.isNamed(kXmp))
        takeFirst(blocks.xmp, segments.contentsBehind(kXmp));
    else if (segments.isNamed(kMoreXmp))
        extendedXmp.add(segments.contentsBehind(kMoreXmp));
}

/// @param fillsSegment  did the previous comment fill its segment? Then this one continues it.
void takeComment(MetadataBlocks &blocks, const QByteArray &comment, bool &fillsSegment)
{
    if (fillsSegment)
        blocks.comments.extendLast(comment);
    else
        blocks.comments.add(comment);
    fillsSegment = comment.size() == kMaxJpegSegmentPayload;
}

MetadataBlocks readJpegBlocks(QIODevice &device)
{
    using namespace JpegSegmentName;
    MetadataBlocks blocks;
    ExtendedXmp extendedXmp;
    JpegExif exif;
    bool fillsSegment = false;
    device.seek(0);
    JpegSegmentReader segments(device);
    while (const std::optional<int> marker = segments.next()) {
        if (*marker == JpegMarker::SOS || *marker == JpegMarker::EOI)
            break;
        exif.read(*marker, segments);
        if (*marker == JpegMarker::COM)
            takeComment(blocks, segments.payload().toByteArray(), fillsSegment);
        else if (*marker == JpegMarker::APP1)
            takeApp1(segments, blocks, extendedXmp);
        else if (*marker == JpegMarker::APP13 && segments.isNamed(kImageResources) &&
                 blocks.imageResources.size() < kMaxMetadataBytes)
            // Long resources continue in the next segment.
            blocks.imageResources += segments.contentsBehind(kImageResources);
    }
    takeFirst(blocks.exif, exif.structure());
    blocks.iptc = iptcOfImageResources(blocks.imageResources);
    blocks.moreXmp = extendedXmp.packetNamedIn(blocks.xmp);
    return blocks;
}

/// A profile that a program has put into a PNG text as "\nname\n  length\nhex digits".
QByteArray rawProfile(const QByteArray &text)
{
    const QList<QByteArray> lines = text.trimmed().split('\n');
    if (lines.size() < 3)
        return {};
    QByteArray data = QByteArray::fromHex(QByteArrayList(lines.mid(2)).join());
    const qsizetype length = lines[1].trimmed().toLongLong();
    return length > 0 ? data.left(length) : data;
}

void takeRawProfile(MetadataBlocks &blocks, const QByteArray &keyword, const QByteArray &text)
{
    if (!keyword.startsWith("Raw profile type "))
        return;
    const QByteArray kind = keyword.mid(17).toLower();
    QByteArray data = rawProfile(text);
    const bool startsAsExif = data.startsWith("Exif\0\0"_ba);
    if (kind == "exif" || (kind == "app1" && startsAsExif))
        takeFirst(blocks.exif, startsAsExif ? data.mid(6) : data);
    else if (kind == "app1" && data.startsWith("http://ns.adobe.com/xap/1.0/\0"_ba))
        takeFirst(blocks.xmp, data.mid(29));
    else if (kind == "xmp")
        takeFirst(blocks.xmp, data);
    else if ((kind == "iptc" || kind == "8bim") && data.startsWith("8BIM"))
        takeFirst(blocks.imageResources, data);
    else if (kind == "iptc" || kind == "8bim")
        takeFirst(blocks.iptc, data);
}

void takePngText(MetadataBlocks &blocks, PngTextChunks &texts, const QByteArray &type, const QByteArray &data)
{
    const std::optional<PngTextChunks::Content> content = texts.unpacked(type, data);
    if (!content)
        return;
    if (!content->isBlock())
        texts.add(*content);
    else if (!content->isUtf8)
        takeRawProfile(blocks, content->keyword, content->bytes);
    else if (content->keyword == "XML:com.adobe.xmp")
        takeFirst(blocks.xmp, content->bytes);
}

/// The chunks of a PNG or, with sizes in little endian and data of an even length, of a WebP.
MetadataBlocks readChunks(QIODevice &device, bool isPng)
{
    MetadataBlocks blocks;
    PngTextChunks texts;
    device.seek(isPng ? 8 : 12);
    for (int i = 0; i < kMaxBlocks; ++i) {
        const QByteArray head = device.read(8);
        if (head.size() < 8)
            break;
        const QByteArray type = isPng ? head.mid(4) : head.left(4);
        const qint64 size = isPng ? qFromBigEndian<quint32>(head.constData())
                                  : qFromLittleEndian<quint32>(head.constData() + 4);
        const qint64 next = device.pos() + size + (isPng ? 4 : size % 2);
        if (type == "IEND")
            break;
        if (size <= kMaxMetadataBytes) {
            if (type == "eXIf" || type == "EXIF") {
                const QByteArray data = device.read(size);
                takeFirst(blocks.exif, data.startsWith("Exif\0\0"_ba) ? data.mid(6) : data);
            } else if (type == "XMP ") {
                takeFirst(blocks.xmp, device.read(size));
            } else if (type == "tEXt" || type == "zTXt" || type == "iTXt") {
                takePngText(blocks, texts, type, device.read(size));
            }
        }
        if (next >= device.size() || !device.seek(next))
            break;
    }
    takeFirst(blocks.iptc, iptcOfImageResources(blocks.imageResources));
    blocks.texts = texts.texts();
    return blocks;
}

/// ISO 23008-12, A.2.1: four bytes state how far after them the TIFF structure begins.
QByteArray tiffOfExifItem(const QByteArray &item)
{
    if (item.size() < 8)
        return {};
    const qint64 offset = 4 + qint64(qFromBigEndian<quint32>(item.constData()));
    if (offset < item.size()) {
        const QByteArray rest = item.mid(qsizetype(offset));
        if (rest.startsWith("II") || rest.startsWith("MM"))
            return rest;
    }
    // Some writers count from another place, or write no offset.
    const qsizetype marker = item.left(64).indexOf(QByteArray("Exif\0\0", 6));
    if (marker >= 0)
        return item.mid(marker + 6);
    return item.startsWith("II") || item.startsWith("MM") ? item : QByteArray();
}

/// The EXIF and XMP of the primary picture.
MetadataBlocks readHeifBlocks(QIODevice &device)
{
    MetadataBlocks blocks;
    const Result<HeifItems> items = HeifItems::read(device);
    if (!items)
        return blocks;
    const auto contentsOf = [&](const char *type, const char *contentType) {
        const HeifItem *item = items->metadata(type, contentType);
        if (!item || item->isElsewhere || item->extents.isEmpty())
            return QByteArray();
        const qint64 size = item->extents.constLast().start + item->extents.constLast().length;
        return size <= kMaxMetadataBytes ? items->bytes(device, *item, 0, size) : QByteArray();
    };
    blocks.exif = tiffOfExifItem(contentsOf("Exif", nullptr));
    blocks.xmp = contentsOf("mime", "application/rdf+xml");
    return blocks;
}

MetadataBlocks readGifBlocks(QIODevice &device)
{
    MetadataBlocks blocks;
    if (const Result<GifStructure> structure = readGifStructure(device)) {
        takeFirst(blocks.xmp, structure->xmp);
        blocks.comments = structure->comments;
    }
    return blocks;
}

} // namespace

std::optional<MetadataBlocks> readMetadataBlocks(QIODevice &device)
{
    device.seek(0);
    const QByteArray head = device.read(64);
    if (head.startsWith("\xFF\xD8\xFF"))
        return readJpegBlocks(device);
    if (head.startsWith("\x89PNG\r\n\x1A\n"))
        return readChunks(device, true);
    if (head.startsWith("RIFF") && head.mid(8, 4) == "WEBP")
        return readChunks(device, false);
    if (head.startsWith("GIF87a") || head.startsWith("GIF89a"))
        return readGifBlocks(device);
    if (isHeicContents(head) || isAvifContents(head))
        return readHeifBlocks(device);
    return std::nullopt;
}

} // namespace plexa
