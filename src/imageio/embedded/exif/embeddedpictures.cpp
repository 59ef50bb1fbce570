// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/embeddedpictures.h"

#include "imageio/container/picturestarts.h"
#include "imageio/embedded/exif/exifvalues.h"
#include "imageio/embedded/metadataclearing.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string_view>

namespace plexa
{

namespace
{

using namespace std::string_view_literals;

bool containsAnyCase(const std::string &text, QLatin1StringView word)
{
    return QString::fromStdString(text).contains(word, Qt::CaseInsensitive);
}

/// Tags of the main directory that describe how and where the file stores its pixels, or hold other files.
constexpr std::array kStructureTags = {
    0x00FE, 0x00FF, // kind of picture
    0x0100, 0x0101, 0x0102, 0x0103, 0x0106, 0x0107, 0x0108, 0x0109, 0x010A, 0x0111, 0x0115, 0x0116,
    0x0117, 0x0118, 0x0119, 0x011C, 0x0120, 0x0121, 0x0122, 0x0123, 0x0124, 0x0125, 0x013D, 0x0140,
    0x0141, 0x0142, 0x0143, 0x0144, 0x0145, 0x014A, 0x014C, 0x014D, 0x014E, 0x0150, 0x0151, 0x0152,
    0x0153, 0x0154, 0x0155, 0x0156, 0x0157, 0x0158, 0x0159, 0x015A, 0x015B, 0x0200, 0x0201, 0x0202,
    0x0203, 0x0205, 0x0206, 0x0207, 0x0208, 0x0209, 0x0212, 0x0214,
    0x02BC,                         // XMP packet
    0x7032,                         // image history
    0x80E3, 0x80E4, 0x80E5, 0x80E6, // matteing, data type, depth, tile depth
    0x828D, 0x828E,                 // color filter array
    0x83BB,                         // IPTC record
    0x8649,                         // Photoshop resources
    0x8773,                         // ICC profile
    0x935C,                         // Photoshop layers
    0xC634,                         // a raw file's private data, or where they lie
};

/// Tags that point to directories: of EXIF, GPS and interoperability, and those of TIFF-FX, Kodak, Leaf and
/// DNG that the library does not read.
constexpr std::array kReadDirectories = {0x8769, 0x8825, 0xA005};
constexpr std::array kUnreadDirectories = {0x0190, 0x8290, 0x888A, 0xC6F5, 0xFE00};

bool isUnreadDirectory(const Exiv2::Exifdatum &datum)
{
    return !std::ranges::count(kReadDirectories, datum.tag()) &&
           (datum.typeId() == Exiv2::tiffIfd || std::ranges::count(kUnreadDirectories, datum.tag()));
}

bool isDngTag(uint16_t tag)
{
    // Models, serial number, lens, name of the raw file.
    const bool isOfCamera = tag == 0xC614 || tag == 0xC615 || tag == 0xC62F || tag == 0xC630 || tag == 0xC68B;
    return !isOfCamera && ((tag >= 0xC612 && tag <= 0xC7FF) || (tag >= 0xCD2D && tag <= 0xCD4F));
}

QByteArray bytesOf(const Exiv2::Value &value)
{
    return bytesOfValue(value, std::numeric_limits<long>::max());
}

bool holdsPicture(const Exiv2::Exifdatum &datum)
{
    const Exiv2::DataBuf area = datum.dataArea();
    if (area.pData_ && holdsPictureStart(QByteArrayView(area.pData_, area.size_)))
        return true;
    const QByteArray bytes = bytesOf(datum.value());
    // The notes of some makers are built like a TIFF file, and begin like one.
    if (datum.key() == "Exif.Photo.MakerNote")
        return holdsPictureStart(bytes);
    constexpr qsizetype kCharacterCode = 8;
    return isPictureValue(bytes) ||
           (datum.key() == "Exif.Photo.UserComment" && isPictureValue(bytes.mid(kCharacterCode)));
}

/// One dataset of IIM records.
struct IptcDataSet {
    uint8_t record = 0;
    uint8_t number = 0;
    qsizetype headBytes = 0;
    qsizetype valueBytes = 0;
};

/// The dataset that begins at `at`; none where it is not whole.
std::optional<IptcDataSet> iptcDataSetAt(const QByteArray &block, qsizetype at)
{
    constexpr qsizetype kHeadBytes = 5;
    if (at + kHeadBytes > block.size())
        return {};
    IptcDataSet set{static_cast<uint8_t>(block[at + 1]), static_cast<uint8_t>(block[at + 2]), kHeadBytes,
                    qFromBigEndian<quint16>(block.constData() + at + 3)};
    if (set.valueBytes > 0x7FFF) { // so many bytes of length follow
        const qsizetype lengthBytes = set.valueBytes & 0x7FFF;
        set.headBytes += lengthBytes;
        if (lengthBytes > 4 || at + set.headBytes > block.size())
            return {};
        set.valueBytes = 0;
        for (qsizetype i = at + kHeadBytes; i < at + set.headBytes; ++i)
            set.valueBytes = set.valueBytes << 8 | static_cast<uchar>(block[i]);
    }
    if (set.valueBytes > block.size() - at - set.headBytes)
        return {};
    return set;
}

bool isPictureDataSet(int record, int number, const QByteArray &value)
{
    // The preview with its format, and the object itself with its sizes.
    return (record == 2 && number >= 200 && number <= 202) || (record >= 7 && record <= 9) ||
           isPictureValue(value);
}

/// Does the name of the tag or group denote a picture, or the place of one? Sizes and borders of
/// previews, and places of previews that are not there, give nothing away.
bool isPreviewTag(const Exiv2::Exifdatum &datum)
{
    const std::string group = datum.groupName();
    if (!isMakerNoteGroup(group))
        return false;
    const std::string name = datum.tagName();
    if (containsAnyCase(group, QLatin1StringView("preview")) ||
        name == "Preview") // the pointer to that group
        return true;
    if (!containsAnyCase(name, QLatin1StringView("preview")) &&
        !containsAnyCase(name, QLatin1StringView("thumbnail")))
        return false;
    constexpr long kMaxBytesOfAFact = 64;
    const bool isPlace = name.ends_with("Start") || name.ends_with("Offset") || name.ends_with("Length");
    return datum.size() > kMaxBytesOfAFact || (isPlace && datum.toLong() != 0);
}

bool isOfKeptGroup(const std::string &group)
{
    return group == "Image" || group == "Photo" || group == "GPSInfo" || group == "Iop" ||
           isMakerNoteGroup(group);
}

} // namespace

bool isPictureStructureTag(uint16_t tag)
{
    return std::find(kStructureTags.begin(), kStructureTags.end(), tag) != kStructureTags.end();
}

QStringList erasePicturesFromExif(Exiv2::ExifData &exif)
{
    const bool isRaw = exifDatum(exif, "Exif.Image.DNGVersion");
    eraseMetadataIf(exif, [isRaw](const Exiv2::Exifdatum &datum) {
        const std::string group = datum.groupName();
        if (group == "Image" && (isPictureStructureTag(datum.tag()) || (isRaw && isDngTag(datum.tag()))))
            return true;
        return !isOfKeptGroup(group) || isPreviewTag(datum);
    });
    // A maker note with decoded fields is encoded again, and inspected after that.
    const bool isNoteDecoded = makerNoteFields(exif) > 0;
    QStringList removed;
    eraseMetadataIf(exif, [&](const Exiv2::Exifdatum &datum) {
        const bool isInNote = isMakerNoteGroup(datum.groupName());
        if (!isInNote && isUnreadDirectory(datum))
            removed += QStringLiteral("EXIF directory %1").arg(QString::fromStdString(datum.tagName()));
        else if (!(isNoteDecoded && datum.key() == "Exif.Photo.MakerNote") && holdsPicture(datum))
            removed += exifFieldName(datum);
        else
            return !isInNote && std::ranges::count(kReadDirectories, datum.tag()) > 0;
        return true;
    });
    return removed;
}

bool erasePicturesFromIptc(Exiv2::IptcData &iptc)
{
    return eraseMetadataIf(iptc, [](const Exiv2::Iptcdatum &datum) {
        return isPictureDataSet(datum.record(), datum.tag(), bytesOf(datum.value()));
    });
}

QByteArray iptcWithoutPictures(const QByteArray &block)
{
    constexpr char kMarker = '\x1C';
    QByteArray kept;
    for (qsizetype at = block.indexOf(kMarker); at >= 0;) {
        const std::optional<IptcDataSet> set = iptcDataSetAt(block, at);
        if (!set)
            break;
        const qsizetype bytes = set->headBytes + set->valueBytes;
        if (!isPictureDataSet(set->record, set->number, block.mid(at + set->headBytes, set->valueBytes)))
            kept += block.mid(at, bytes);
        at = block.indexOf(kMarker, at + bytes);
    }
    return kept;
}

void erasePicturesFromXmp(Exiv2::XmpData &xmp)
{
    eraseMetadataIf(xmp, [](const Exiv2::Xmpdatum &datum) {
        const std::string key = datum.key();
        if (startsWithAny(key, {"Xmp.xmp.Thumbnails"sv, "Xmp.xmpGImg."sv, "Xmp.hdrgm."sv, "Xmp.HDRGainMap."sv,
                                "Xmp.apdi."sv, "Xmp.Container."sv, "Xmp.GImage."sv, "Xmp.GDepth."sv,
                                "Xmp.GAudio."sv, "Xmp.GCamera.MicroVideo"sv, "Xmp.GCamera.MotionPhoto"sv,
                                "Xmp.xmpNote.HasExtendedXMP"sv}) ||
            key.find("xmpGImg:") != key.npos)
            return true;
        // A JPEG or PNG in Base64, or a GIF, WebP or TIFF.
        const std::string value = datum.size() > 64 ? datum.toString() : std::string();
        return holdsPictureAsText(QByteArray::fromStdString(value)) ||
               startsWithAny(value, {"R0lGOD"sv, "UklGR"sv, "SUkqA"sv, "TU0AK"sv});
    });
}

} // namespace plexa
