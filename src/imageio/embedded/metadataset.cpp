// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/metadataset.h"

#include "imageio/embedded/exif/exiv2setup.h"
#include "imageio/embedded/metadatablocks.h"
#include "imageio/embedded/tiffmetadata.h"
#include "imageio/embedded/xmp/xmpdeclarations.h"
#include "imageio/embedded/xmp/xmppackets.h"
#include "imageio/embedded/xmp/xmprepair.h"

#include <QFile>
#include <QFileInfo>

#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace plexa
{

namespace
{

// The XML is walked recursively by the library; real packets nest less than twenty elements.
constexpr int kMaxXmlDepth = 200;

// The library looks for each property among all others, so that its time grows with the square: this many
// take a third of a second.
constexpr int kMaxXmlNames = 5000;

struct XmlTag {
    size_t end = std::string_view::npos; ///< of its '>'
    int names = 1;                       ///< of the element and its attributes
    bool isClosed = false;
};

XmlTag tagAt(std::string_view xml, size_t at)
{
    XmlTag tag;
    char quote = '\0';
    for (size_t i = at + 1; i < xml.size(); ++i) {
        const char byte = xml[i];
        if (quote != '\0') {
            if (byte == quote)
                quote = '\0';
        } else if (byte == '"' || byte == '\'') {
            quote = byte;
        } else if (byte == '=') {
            ++tag.names;
        } else if (byte == '>') {
            tag.end = i;
            tag.isClosed = xml[i - 1] == '/';
            break;
        }
    }
    return tag;
}

bool isWideText(std::string_view xml)
{
    return xml.find('\0') < xml.find_last_not_of('\0') && xml.find_last_not_of('\0') != xml.npos;
}

/// Looks at the XML without decoding it. In texts of several bytes a character every '<' counts as one more
/// element inside of the others.
class XmlMeasure
{
public:
    /// @return false when this packet, or the packets so far, nest too deeply or name too much
    bool accepts(std::string_view xml)
    {
        const bool isWide = isWideText(xml);
        m_depth = 0;
        for (size_t at = xml.find('<'); at != xml.npos; at = xml.find('<', at)) {
            const std::string_view rest = xml.substr(at);
            if (isWide) {
                if (++m_depth > kMaxXmlDepth)
                    return false;
                ++at;
            } else if (rest.starts_with("<!--")) {
                at = xml.find("-->", at + 4);
            } else if (rest.starts_with("<![CDATA[")) {
                at = xml.find("]]>", at + 9);
            } else if (rest.starts_with("<!")) {
                return false; // a document type: its entities may stand for any amount of XML
            } else if (rest.starts_with("<?")) {
                at = xml.find("?>", at + 2);
            } else if (rest.starts_with("</")) {
                --m_depth;
                ++at;
            } else if (!enter(tagAt(xml, at), at)) {
                return false;
            }
            if (at == xml.npos)
                break;
        }
        return true;
    }

private:
    bool enter(const XmlTag &tag, size_t &at)
    {
        at = tag.end;
        m_names += tag.names;
        if (++m_depth > kMaxXmlDepth || m_names > kMaxXmlNames)
            return false;
        if (tag.isClosed)
            --m_depth;
        return true;
    }

    int m_depth = 0;
    int m_names = 0;
};

bool isAcceptable(const std::string &packet, XmlMeasure &measure)
{
    return packet.size() <= static_cast<size_t>(kMaxMetadataBytes) && measure.accepts(packet);
}

/// @return none when the library refuses the packet
std::optional<Exiv2::XmpData> attemptedPacket(const std::string &packet)
{
    try {
        Exiv2::XmpData xmp;
        const std::string understood = packetForLibrary(packet);
        rememberXmpNamespaces(QByteArray::fromStdString(understood));
        if (Exiv2::XmpParser::decode(xmp, understood) != 0)
            return {};
        if (understood != packet)
            restoreTexts(xmp);
        removeBreaksOfAliases(xmp);
        return xmp;
    } catch (const std::exception &) {
        return {};
    }
}

bool isBlank(const std::string &packet)
{
    return packet.find_first_not_of(std::string_view(" \t\r\n\0", 5)) == packet.npos;
}

Exiv2::XmpData decodedPacket(const std::string &packet, XmlMeasure &measure, QStringList &omitted)
{
    if (isBlank(packet))
        return {};
    if (isAcceptable(packet, measure)) {
        if (auto xmp = attemptedPacket(packet))
            return *std::move(xmp);
        const RepairedXmp repaired = repairedXmp(QByteArray::fromStdString(packet));
        auto xmp = repaired.packet.isEmpty() ? std::nullopt : attemptedPacket(repaired.packet.toStdString());
        if (xmp) {
            omitted += repaired.dropped;
            return *std::move(xmp);
        }
    }
    omitted += QStringLiteral("XMP");
    return {};
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
        // A record that is cut off is read as far as it goes.
        set.hasDamagedIptc =
            Exiv2::IptcParser::decode(set.iptc, reinterpret_cast<const Exiv2::byte *>(iptc.constData()),
                                      static_cast<uint32_t>(iptc.size())) != 0;
    } catch (const std::exception &) {
        set.hasDamagedIptc = true;
    }
    if (!set.iptc.empty())
        set.iptcBlock = iptc;
}

/// What a TIFF keeps in a field of its own: Photoshop's resources, XMP.
QByteArray blockOf(const Exiv2::ExifData &exif, const char *key)
{
    const auto field = exif.findKey(Exiv2::ExifKey(key));
    if (field == exif.end() || field->size() <= 0 || field->size() > kMaxMetadataBytes)
        return {};
    QByteArray bytes(field->size(), '\0');
    field->copy(reinterpret_cast<Exiv2::byte *>(bytes.data()), Exiv2::littleEndian);
    return bytes;
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
    set.imageResources = blockOf(set.exif, "Exif.Image.ImageResources");
    set.comments.add(QByteArray::fromStdString(image->comment()));
    const auto noteOrder = set.exif.findKey(Exiv2::ExifKey("Exif.MakerNote.ByteOrder"));
    if (image->byteOrder() != Exiv2::invalidByteOrder)
        set.byteOrder = image->byteOrder();
    else if (noteOrder != set.exif.end() && noteOrder->toString().starts_with("MM"))
        set.byteOrder = Exiv2::bigEndian;
    set.xmpPacket = image->xmpPacket();
    if (set.xmpPacket.empty())
        set.xmpPacket = blockOf(set.exif, "Exif.Image.XMLPacket").toStdString();
    if (set.xmpPacket.empty() && !image->xmpData().empty()) {
        Exiv2::XmpParser::encode(set.xmpPacket, image->xmpData());
        set.xmpPacket = withXmpNamespaces(QByteArray::fromStdString(set.xmpPacket)).toStdString();
    }
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
        set.imageResources = blocks->imageResources;
        set.xmpPacket = blocks->xmp.toStdString();
        set.moreXmpPacket = blocks->moreXmp.toStdString();
        set.comments = blocks->comments;
        set.texts = blocks->texts;
        return set;
    }
    try {
        readThroughLibrary(set, path);
    } catch (const std::exception &) {
        // What was taken over before the failure is whole.
    }
    // The records as they lie in the file are kept as they are where nothing changes.
    const QByteArray iptc = iptcOfTiff(file);
    const Exiv2::IptcData ofLibrary = std::exchange(set.iptc, {});
    decodeIptc(set, iptc);
    if (set.iptc.empty())
        set.iptc = ofLibrary;
    return set;
}

Exiv2::XmpData decodedXmp(const MetadataSet &set, QStringList *omitted)
{
    XmlMeasure measure;
    QStringList names;
    Exiv2::XmpData xmp = decodedPacket(set.xmpPacket, measure, names);
    const Exiv2::XmpData more = decodedPacket(set.moreXmpPacket, measure, names);
    if (omitted) {
        names.removeDuplicates();
        *omitted += names;
    }
    std::set<std::string> keys;
    for (const Exiv2::Xmpdatum &datum : xmp)
        keys.insert(datum.key());
    for (const Exiv2::Xmpdatum &datum : more) {
        if (keys.insert(datum.key()).second)
            xmp.add(datum);
    }
    return xmp;
}

} // namespace plexa
