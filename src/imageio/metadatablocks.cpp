// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/metadatablocks.h"

#include "imageio/gifstructure.h"
#include "imageio/heifmetadata.h"

#include <QList>
#include <QMap>
#include <QtEndian>

namespace plexa
{

namespace
{

using namespace Qt::Literals::StringLiterals;

constexpr int kMaxBlocks = 20'000;     // segments or chunks that are looked at before giving up
constexpr int kMaxStrayBytes = 65'536; // between two segments

void takeFirst(QByteArray &block, const QByteArray &candidate)
{
    if (block.isEmpty() && candidate.size() <= kMaxMetadataBytes)
        block = candidate;
}

/// A packet in pieces: each says which packet it belongs to, how long that is and where the piece goes.
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

    /// The packet that the main one names, where it is whole.
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

MetadataBlocks readJpegBlocks(QIODevice &device)
{
    MetadataBlocks blocks;
    QByteArray imageResources;
    ExtendedXmp extendedXmp;
    device.seek(2);
    for (int i = 0; i < kMaxBlocks; ++i) {
        char byte = 0;
        int strayBytes = 0;
        while (device.getChar(&byte) && static_cast<uchar>(byte) != 0xFF && ++strayBytes < kMaxStrayBytes) {
        }
        while (device.getChar(&byte) && static_cast<uchar>(byte) == 0xFF) {
        }
        const auto marker = static_cast<uchar>(byte);
        if (marker == 0xDA || marker == 0xD9 || device.atEnd())
            break;
        if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8))
            continue;
        const QByteArray lengthBytes = device.read(2);
        if (lengthBytes.size() < 2)
            break;
        const int length = qFromBigEndian<quint16>(lengthBytes.constData()) - 2;
        if (length < 0)
            break;
        if (marker != 0xE1 && marker != 0xED && marker != 0xFE) {
            device.skip(length);
            continue;
        }
        const QByteArray data = device.read(length);
        if (marker == 0xFE)
            takeFirst(blocks.comment, data);
        else if (marker == 0xE1 && data.startsWith("Exif\0\0"_ba))
            takeFirst(blocks.exif, data.mid(6));
        else if (marker == 0xE1 && data.startsWith("http://ns.adobe.com/xap/1.0/\0"_ba))
            takeFirst(blocks.xmp, data.mid(29));
        else if (marker == 0xE1 && data.startsWith("http://ns.adobe.com/xmp/extension/\0"_ba))
            extendedXmp.add(data.mid(35));
        else if (marker == 0xED && data.startsWith("Photoshop 3.0\0"_ba))
            if (imageResources.size() < kMaxMetadataBytes)
                imageResources += data.mid(14); // long resources run on in the next segment
    }
    blocks.iptc = iptcOfImageResources(imageResources);
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
    else if (kind == "iptc" || kind == "8bim")
        takeFirst(blocks.iptc, data.startsWith("8BIM") ? iptcOfImageResources(data) : data);
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

MetadataBlocks readPngBlocks(QIODevice &device)
{
    MetadataBlocks blocks;
    PngTextChunks texts;
    device.seek(8);
    for (int i = 0; i < kMaxBlocks; ++i) {
        const QByteArray head = device.read(8);
        if (head.size() < 8)
            break;
        const qint64 size = qFromBigEndian<quint32>(head.constData());
        const QByteArray type = head.mid(4);
        const qint64 next = device.pos() + size + 4;
        if (type == "IEND")
            break;
        if (size <= kMaxMetadataBytes) {
            if (type == "eXIf") {
                const QByteArray data = device.read(size);
                takeFirst(blocks.exif, data.startsWith("Exif\0\0"_ba) ? data.mid(6) : data);
            } else if (type == "tEXt" || type == "zTXt" || type == "iTXt") {
                takePngText(blocks, texts, type, device.read(size));
            }
        }
        if (next >= device.size() || !device.seek(next))
            break;
    }
    blocks.texts = texts.texts();
    return blocks;
}

MetadataBlocks readWebpBlocks(QIODevice &device)
{
    MetadataBlocks blocks;
    device.seek(12);
    for (int i = 0; i < kMaxBlocks; ++i) {
        const QByteArray head = device.read(8);
        if (head.size() < 8)
            break;
        const qint64 size = qFromLittleEndian<quint32>(head.constData() + 4);
        const QByteArray type = head.left(4);
        const qint64 next = device.pos() + size + size % 2;
        if (size <= kMaxMetadataBytes) {
            if (type == "EXIF") {
                const QByteArray data = device.read(size);
                takeFirst(blocks.exif, data.startsWith("Exif\0\0"_ba) ? data.mid(6) : data);
            } else if (type == "XMP ") {
                takeFirst(blocks.xmp, device.read(size));
            }
        }
        if (next >= device.size() || !device.seek(next))
            break;
    }
    return blocks;
}

MetadataBlocks readGifBlocks(QIODevice &device)
{
    MetadataBlocks blocks;
    if (const Result<GifStructure> structure = readGifStructure(device)) {
        takeFirst(blocks.xmp, structure->xmp);
        takeFirst(blocks.comment, structure->comment);
    }
    return blocks;
}

} // namespace

QByteArray iptcOfImageResources(const QByteArray &resources)
{
    QByteArray iptc;
    qsizetype at = 0;
    while (at + 12 <= resources.size() && resources.mid(at, 4) == "8BIM") {
        const auto id = qFromBigEndian<quint16>(resources.constData() + at + 4);
        const qsizetype nameBytes = static_cast<uchar>(resources[at + 6]) + 1;
        at += 6 + nameBytes + nameBytes % 2;
        if (at + 4 > resources.size())
            break;
        const qsizetype size = qFromBigEndian<quint32>(resources.constData() + at);
        at += 4;
        if (size > resources.size() - at)
            break;
        if (id == 0x0404)
            iptc += resources.mid(at, size);
        at += size + size % 2;
    }
    return iptc;
}

std::optional<MetadataBlocks> readMetadataBlocks(QIODevice &device)
{
    device.seek(0);
    const QByteArray head = device.read(64);
    if (head.startsWith("\xFF\xD8\xFF"))
        return readJpegBlocks(device);
    if (head.startsWith("\x89PNG\r\n\x1A\n"))
        return readPngBlocks(device);
    if (head.startsWith("RIFF") && head.mid(8, 4) == "WEBP")
        return readWebpBlocks(device);
    if (head.startsWith("GIF87a") || head.startsWith("GIF89a"))
        return readGifBlocks(device);
    if (isHeif(head))
        return readHeifBlocks(device);
    return std::nullopt;
}

} // namespace plexa
