// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/metadataset.h"

#include "imageio/exiv2setup.h"
#include "imageio/metadatablocks.h"

#include <QFile>
#include <QFileInfo>

#include <memory>

namespace plexa
{

namespace
{

// The XML is walked recursively by the library; real packets nest less than twenty elements.
constexpr int kMaxXmlDepth = 200;

bool nestsTooDeeply(const std::string &xml)
{
    int depth = 0;
    for (size_t at = xml.find('<'); at != std::string::npos; at = xml.find('<', at + 1)) {
        const char next = at + 1 < xml.size() ? xml[at + 1] : ' ';
        if (next == '/') {
            --depth;
        } else if (next != '?' && next != '!') {
            if (++depth > kMaxXmlDepth)
                return true;
            const size_t end = xml.find('>', at);
            if (end != std::string::npos && xml[end - 1] == '/')
                --depth;
        }
    }
    return false;
}

Exiv2::XmpData decodedPacket(const std::string &packet)
{
    Exiv2::XmpData xmp;
    if (packet.empty() || packet.size() > static_cast<size_t>(kMaxMetadataBytes) || nestsTooDeeply(packet))
        return xmp;
    try {
        if (Exiv2::XmpParser::decode(xmp, packet) != 0)
            xmp.clear();
    } catch (const std::exception &) {
        xmp.clear();
    }
    return xmp;
}

void decodeExif(MetadataSet &set, const QByteArray &exif)
{
    if (exif.isEmpty())
        return;
    try {
        const auto order =
            Exiv2::ExifParser::decode(set.exif, reinterpret_cast<const Exiv2::byte *>(exif.constData()),
                                      static_cast<uint32_t>(exif.size()));
        if (order != Exiv2::invalidByteOrder)
            set.byteOrder = order;
    } catch (const std::exception &) {
        set.exif.clear();
    }
}

void decodeIptc(MetadataSet &set, const QByteArray &iptc)
{
    if (iptc.isEmpty())
        return;
    try {
        if (Exiv2::IptcParser::decode(set.iptc, reinterpret_cast<const Exiv2::byte *>(iptc.constData()),
                                      static_cast<uint32_t>(iptc.size())) != 0)
            set.iptc.clear();
    } catch (const std::exception &) {
        set.iptc.clear();
    }
    if (!set.iptc.empty())
        set.iptcBlock = iptc;
}

void readThroughLibrary(MetadataSet &set, const QString &path)
{
    // The library decodes the XMP of these formats along with the rest.
    const auto lock = lockXmpNamespaces();
    // The library takes "-" and names with a protocol for something else than files.
    const QString absolutePath = QFileInfo(path).absoluteFilePath();
    const std::unique_ptr<Exiv2::Image> image(
        Exiv2::ImageFactory::open(QFile::encodeName(absolutePath).toStdString()).release());
    image->readMetadata();
    set.exif = image->exifData();
    set.iptc = image->iptcData();
    set.comment = image->comment();
    const auto noteOrder = set.exif.findKey(Exiv2::ExifKey("Exif.MakerNote.ByteOrder"));
    if (image->byteOrder() != Exiv2::invalidByteOrder)
        set.byteOrder = image->byteOrder();
    else if (noteOrder != set.exif.end() && noteOrder->toString().starts_with("MM"))
        set.byteOrder = Exiv2::bigEndian;
    set.xmpPacket = image->xmpPacket();
    if (set.xmpPacket.empty() && !image->xmpData().empty())
        Exiv2::XmpParser::encode(set.xmpPacket, image->xmpData());
}

} // namespace

MetadataSet readMetadataSet(const QString &path)
{
    prepareMetadataLibrary();
    MetadataSet set;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return set;
    if (const std::optional<MetadataBlocks> blocks = readMetadataBlocks(file)) {
        decodeExif(set, blocks->exif);
        decodeIptc(set, blocks->iptc);
        set.xmpPacket = blocks->xmp.toStdString();
        set.moreXmpPacket = blocks->moreXmp.toStdString();
        set.comment = blocks->comment.toStdString();
        set.texts = blocks->texts;
        return set;
    }
    try {
        readThroughLibrary(set, path);
    } catch (const std::exception &) {
        // What was taken over before the failure is whole.
    }
    return set;
}

Exiv2::XmpData decodedXmp(const MetadataSet &set)
{
    Exiv2::XmpData xmp = decodedPacket(set.xmpPacket);
    for (const Exiv2::Xmpdatum &datum : decodedPacket(set.moreXmpPacket)) {
        if (xmp.findKey(Exiv2::XmpKey(datum.key())) == xmp.end())
            xmp.add(datum);
    }
    return xmp;
}

} // namespace plexa
