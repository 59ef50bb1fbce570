// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/metadataset.h"

#include "imageio/container/tiffdirectoryreader.h"
#include "imageio/embedded/exif/exiv2setup.h"
#include "imageio/embedded/metadatablocks.h"
#include "imageio/embedded/tiffmetadata.h"
#include "imageio/embedded/xmp/xmpnamespaces.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>

#include <memory>
#include <optional>
#include <utility>

namespace plexa
{

namespace
{

/// Exists while the library decodes XMP by itself, which may spoil its table of namespaces for other files.
class XmpTableGuard
{
public:
    XmpTableGuard() = default;
    ~XmpTableGuard() { restoreXmpNamespaces(); }
    XmpTableGuard(const XmpTableGuard &) = delete;
    XmpTableGuard &operator=(const XmpTableGuard &) = delete;

private:
    std::unique_lock<std::recursive_mutex> m_lock = lockXmpNamespaces();
};

bool hasXmpField(const QByteArray &exif)
{
    constexpr quint16 kXmp = 700;
    QBuffer buffer;
    buffer.setData(exif);
    buffer.open(QIODevice::ReadOnly);
    const TiffDirectoryReader reader(buffer);
    const auto directory = reader.read(reader.first());
    return !directory || directory->fields.contains(kXmp);
}

void decodeExif(MetadataSet &set, const QByteArray &exif)
{
    if (exif.isEmpty())
        return;
    std::optional<XmpTableGuard> guard;
    if (hasXmpField(exif))
        guard.emplace();
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
    const XmpTableGuard guard; // the library decodes the XMP of these formats with the rest
    // The library reads "-" and names with a protocol as something other than files.
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
    if (set.xmpPacket.empty())
        set.xmpPacket = image->xmpData().xmpPacket();
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
        // The blocks that were read before the failure are whole.
    }
    // The records as they lie in the file are kept as they are where nothing changes.
    const QByteArray iptc = iptcOfTiff(file);
    const Exiv2::IptcData ofLibrary = std::exchange(set.iptc, {});
    decodeIptc(set, iptc);
    if (set.iptc.empty())
        set.iptc = ofLibrary;
    return set;
}

} // namespace plexa
