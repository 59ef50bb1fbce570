// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/metadataset.h"

#include "imageio/container/imageresources.h"
#include "imageio/container/tiffdirectoryreader.h"
#include "imageio/container/tiffpictures.h"
#include "imageio/embedded/exif/exifvalues.h"
#include "imageio/embedded/exif/exiv2setup.h"
#include "imageio/embedded/exif/libraryio.h"
#include "imageio/embedded/metadatablocks.h"

#include <QBuffer>

#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <utility>

namespace plexa
{

namespace
{

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

/// The block that a TIFF holds in a field of its own: Photoshop's resources, XMP.
QByteArray blockOf(const Exiv2::ExifData &exif, const char *key)
{
    const Exiv2::Exifdatum *field = exifDatum(exif, key);
    return field ? bytesOfValue(field->value(), kMaxMetadataBytes) : QByteArray();
}

/// The IIM records of a TIFF file as stored: those of its own field, else those in its Photoshop image
/// resources. Some programs store them as numbers of four bytes in reverse order. Empty: none, or no classic
/// TIFF.
QByteArray iptcOfTiff(QIODevice &device)
{
    constexpr quint16 kIptc = 33723;
    constexpr quint16 kImageResources = 34377;
    constexpr char kDataSetMarker = '\x1C';
    const TiffDirectoryReader reader(device);
    const auto directory = reader.read(reader.first());
    if (!directory)
        return {};
    QByteArray records = reader.value(directory->fields.value(kIptc), kMaxMetadataBytes);
    if (!records.startsWith(kDataSetMarker) && records.size() >= 4 && records[3] == kDataSetMarker) {
        for (qsizetype at = 0; at + 4 <= records.size(); at += 4)
            std::reverse(records.begin() + at, records.begin() + at + 4);
    }
    if (records.startsWith(kDataSetMarker))
        return records;
    return iptcOfImageResources(reader.value(directory->fields.value(kImageResources), kMaxMetadataBytes));
}

void readThroughLibrary(MetadataSet &set, QIODevice &device)
{
    const std::unique_ptr<Exiv2::Image> image(
        Exiv2::ImageFactory::open(Exiv2::BasicIo::AutoPtr(new LibraryIo(device))).release());
    if (!image) // of a kind unknown to the library
        return;
    if (device.seek(0) && isClassicTiff(device.peek(4)))
        image->io().mmap();    // reads before the lock is held
    const XmpTableGuard guard; // the library decodes the XMP of these formats with the rest
    image->readMetadata();
    set.exif = image->exifData();
    set.iptc = image->iptcData();
    set.imageResources = blockOf(set.exif, "Exif.Image.ImageResources");
    set.comments.add(QByteArray::fromStdString(image->comment()));
    const Exiv2::Exifdatum *noteOrder = exifDatum(set.exif, "Exif.MakerNote.ByteOrder");
    if (image->byteOrder() != Exiv2::invalidByteOrder)
        set.byteOrder = image->byteOrder();
    else if (noteOrder && noteOrder->toString().starts_with("MM"))
        set.byteOrder = Exiv2::bigEndian;
    set.xmpPacket = image->xmpPacket();
    if (set.xmpPacket.empty())
        set.xmpPacket = blockOf(set.exif, "Exif.Image.XMLPacket").toStdString();
    if (set.xmpPacket.empty())
        set.xmpPacket = image->xmpData().xmpPacket();
}

} // namespace

MetadataSet readMetadataSet(QIODevice &device)
{
    prepareMetadataLibrary();
    MetadataSet set;
    if (const std::optional<MetadataBlocks> blocks = readMetadataBlocks(device)) {
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
        readThroughLibrary(set, device);
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const std::exception &) {
        // The blocks that were read before the failure are whole.
    }
    // Unchanged records keep the form that they have in the file.
    const QByteArray iptc = iptcOfTiff(device);
    const Exiv2::IptcData ofLibrary = std::exchange(set.iptc, {});
    decodeIptc(set, iptc);
    if (set.iptc.empty())
        set.iptc = ofLibrary;
    return set;
}

} // namespace plexa
