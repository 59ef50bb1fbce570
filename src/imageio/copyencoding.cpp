// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/copyencoding.h"

#include "imageio/embeddedpictures.h"
#include "imageio/exiv2setup.h"
#include "imageio/metadatachanges.h"
#include "imageio/metadataclearing.h"

#include <QRandomGenerator>

namespace plexa
{

namespace
{

/// What one JPEG segment holds besides "Exif\0\0".
constexpr size_t kMaxExifBytes = 65'527;

bool hasGroup(const Exiv2::ExifData &exif, const char *group)
{
    return std::any_of(exif.begin(), exif.end(),
                       [group](const Exiv2::Exifdatum &datum) { return datum.groupName() == group; });
}

void describePictureInExif(Exiv2::ExifData &exif, QSize size)
{
    const auto erase = [&exif](std::initializer_list<const char *> keys) {
        for (const char *key : keys)
            eraseMetadataIf(exif, [key](const Exiv2::Exifdatum &datum) { return datum.key() == key; });
    };
    exif["Exif.Image.Orientation"] = uint16_t{1};
    const auto colorSpace = exif.findKey(Exiv2::ExifKey("Exif.Photo.ColorSpace"));
    if (colorSpace != exif.end() && colorSpace->toLong() != 1)
        erase({"Exif.Image.WhitePoint", "Exif.Image.PrimaryChromaticities", "Exif.Image.TransferFunction",
               "Exif.Image.YCbCrCoefficients", "Exif.Photo.Gamma", "Exif.Photo.0xa500"});
    if (hasGroup(exif, "Photo")) {
        exif["Exif.Photo.ColorSpace"] = uint16_t{1};
        exif["Exif.Photo.PixelXDimension"] = static_cast<uint32_t>(size.width());
        exif["Exif.Photo.PixelYDimension"] = static_cast<uint32_t>(size.height());
    }
    const auto interoperability = exif.findKey(Exiv2::ExifKey("Exif.Iop.InteroperabilityIndex"));
    if (interoperability != exif.end() && interoperability->toString().starts_with("R03"))
        interoperability->setValue("R98");
}

void describePictureInXmp(Exiv2::XmpData &xmp, QSize size)
{
    const auto replace = [&xmp](const char *key, const std::string &text) {
        const auto found = std::find_if(xmp.begin(), xmp.end(),
                                        [key](const Exiv2::Xmpdatum &datum) { return datum.key() == key; });
        if (found != xmp.end())
            found->setValue(text);
    };
    const std::string width = std::to_string(size.width());
    const std::string height = std::to_string(size.height());
    replace("Xmp.tiff.Orientation", "1");
    replace("Xmp.exif.ColorSpace", "1");
    replace("Xmp.exif.PixelXDimension", width);
    replace("Xmp.exif.PixelYDimension", height);
    replace("Xmp.tiff.ImageWidth", width);
    replace("Xmp.tiff.ImageLength", height);
    replace("Xmp.photoshop.ICCProfile", "sRGB IEC61966-2.1");
    replace("Xmp.photoshop.ColorMode", "3");
    eraseXmpProperty(xmp, "Xmp.exif.Gamma");
}

QByteArray encodedExif(const Exiv2::ExifData &exif, Exiv2::ByteOrder order)
{
    Exiv2::Blob blob;
    Exiv2::ExifParser::encode(blob, order, exif);
    return QByteArray(reinterpret_cast<const char *>(blob.data()), static_cast<qsizetype>(blob.size()));
}

/// EXIF that certainly holds no picture: rather without maker notes, rather empty.
QByteArray exifWithoutPictures(Exiv2::ExifData &exif, Exiv2::ByteOrder order)
{
    const auto isAcceptable = [](const QByteArray &blob) {
        return static_cast<size_t>(blob.size()) <= kMaxExifBytes &&
               !holdsPictureStart(blob.constData(), static_cast<size_t>(blob.size()));
    };
    QByteArray blob = encodedExif(exif, order);
    if (isAcceptable(blob))
        return blob;
    eraseMakerNotes(exif);
    blob = encodedExif(exif, order);
    if (isAcceptable(blob))
        return blob;
    exif.clear();
    return {};
}

/// Bytes that occur nowhere else: letters, so that no picture can seem to begin in them.
QByteArray newPlaceholder(qsizetype bytes)
{
    QByteArray placeholder(bytes, '\0');
    for (char &byte : placeholder)
        byte = static_cast<char>('A' + QRandomGenerator::global()->bounded(26));
    return placeholder;
}

void encodeExif(EmbeddedMetadata::Encoded &encoded, Exiv2::ExifData &exif, Exiv2::ByteOrder order,
                qsizetype thumbnailBytes)
{
    encoded.exif = exifWithoutPictures(exif, order);
    constexpr qsizetype kDirectoryBytes = 256;
    if (thumbnailBytes <= 0 || encoded.exif.isEmpty() ||
        static_cast<size_t>(encoded.exif.size() + thumbnailBytes + kDirectoryBytes) > kMaxExifBytes)
        return;
    const QByteArray placeholder = newPlaceholder(thumbnailBytes);
    Exiv2::ExifThumb(exif).setJpegThumbnail(reinterpret_cast<const Exiv2::byte *>(placeholder.constData()),
                                            static_cast<long>(placeholder.size()), {72, 1}, {72, 1}, 2);
    const QByteArray blob = encodedExif(exif, order);
    if (static_cast<size_t>(blob.size()) <= kMaxExifBytes && blob.count(placeholder) == 1 &&
        !holdsPictureStart(blob.constData(), static_cast<size_t>(blob.size()))) {
        encoded.exif = blob;
        encoded.thumbnailPlaceholder = placeholder;
    }
}

bool areSame(const Exiv2::IptcData &a, const Exiv2::IptcData &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const Exiv2::Iptcdatum &left, const Exiv2::Iptcdatum &right) {
                          return left.key() == right.key() && left.toString() == right.toString();
                      });
}

/// The records as they came where nothing changed: writing them anew would fill in time zones and such.
QByteArray encodedIptc(const MetadataSet &set, const Exiv2::IptcData &original)
{
    QByteArray records;
    if (!set.iptcBlock.isEmpty() && areSame(set.iptc, original)) {
        records = set.iptcBlock;
    } else if (!set.iptc.empty()) {
        const Exiv2::DataBuf buffer = Exiv2::IptcParser::encode(set.iptc);
        if (buffer.pData_)
            records = QByteArray(reinterpret_cast<const char *>(buffer.pData_), buffer.size_);
    }
    const bool holdsPicture = holdsPictureStart(records.constData(), static_cast<size_t>(records.size()));
    return holdsPicture ? QByteArray() : records;
}

QByteArray encodedXmp(const Exiv2::XmpData &xmp)
{
    if (xmp.empty())
        return {};
    std::string packet;
    if (Exiv2::XmpParser::encode(packet, xmp, Exiv2::XmpParser::useCompactFormat) != 0)
        return {};
    return QByteArray::fromStdString(packet);
}

} // namespace

EmbeddedMetadata::Encoded encodedForCopy(MetadataSet set, const QVariantMap &before, const QVariantMap &after,
                                         const EmbeddedMetadata::CopyFacts &facts)
{
    EmbeddedMetadata::Encoded encoded;
    const auto lock = lockXmpNamespaces();
    Exiv2::XmpData xmp = decodedXmp(set.xmpPacket);
    erasePicturesFromExif(set.exif);
    erasePicturesFromXmp(xmp);
    const Exiv2::IptcData original = set.iptc;
    applyPropertyChanges(set, xmp, before, after);
    describePictureInExif(set.exif, facts.pixelSize);
    describePictureInXmp(xmp, facts.pixelSize);

    encodeExif(encoded, set.exif, set.byteOrder, facts.thumbnailBytes);
    try {
        encoded.iptc = encodedIptc(set, original);
    } catch (const std::exception &) {
        encoded.iptc.clear();
    }
    try {
        encoded.xmp = encodedXmp(xmp);
    } catch (const std::exception &) {
        encoded.xmp.clear();
    }
    encoded.comment = QByteArray::fromStdString(set.comment);
    return encoded;
}

} // namespace plexa
