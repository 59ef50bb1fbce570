// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/copyencoding.h"

#include "imageio/embeddedpictures.h"
#include "imageio/exifwriter.h"
#include "imageio/exiv2setup.h"
#include "imageio/metadatachanges.h"
#include "imageio/metadataclearing.h"

#include <QRandomGenerator>
#include <QRegularExpression>

#include <algorithm>

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

bool holdsPicture(const QByteArray &bytes)
{
    return holdsPictureStart(bytes.constData(), static_cast<size_t>(bytes.size()));
}

/// Bytes that occur nowhere else: letters, so that no picture can seem to begin in them.
QByteArray newPlaceholder(qsizetype bytes)
{
    QByteArray placeholder(bytes, '\0');
    for (char &byte : placeholder)
        byte = static_cast<char>('A' + QRandomGenerator::global()->bounded(26));
    return placeholder;
}

size_t makerNoteFields(const Exiv2::ExifData &exif)
{
    return static_cast<size_t>(std::count_if(exif.begin(), exif.end(), [](const Exiv2::Exifdatum &datum) {
        return isMakerNoteGroup(datum.groupName());
    }));
}

MakerNoteBlock makerNoteOf(const Exiv2::ExifData &exif)
{
    MakerNoteBlock block;
    const auto note = exif.findKey(Exiv2::ExifKey("Exif.Photo.MakerNote"));
    if (note == exif.end() || note->size() <= 0)
        return block;
    block.bytes.resize(note->size());
    note->copy(reinterpret_cast<Exiv2::byte *>(block.bytes.data()), Exiv2::littleEndian);
    const auto offset = exif.findKey(Exiv2::ExifKey("Exif.MakerNote.Offset"));
    if (offset != exif.end() && offset->count() > 0)
        block.offset = offset->toLong();
    return block;
}

QByteArray encodedByLibrary(Exiv2::ExifData exif, Exiv2::ByteOrder order, const QByteArray &thumbnail)
{
    eraseMetadataIf(exif, [](const Exiv2::Exifdatum &datum) {
        return Exiv2::TypeInfo::typeSize(datum.typeId()) == 0 || datum.size() == 0;
    });
    if (!thumbnail.isEmpty())
        Exiv2::ExifThumb(exif).setJpegThumbnail(reinterpret_cast<const Exiv2::byte *>(thumbnail.constData()),
                                                static_cast<long>(thumbnail.size()), {72, 1}, {72, 1}, 2);
    Exiv2::Blob blob;
    Exiv2::ExifParser::encode(blob, order, exif);
    return QByteArray(reinterpret_cast<const char *>(blob.data()), static_cast<qsizetype>(blob.size()));
}

/// Tries the ways to write EXIF from the one that keeps most to the one that keeps least, until the result
/// fits into a JPEG segment and holds no picture: the maker note as it was, the maker note made anew from
/// what the library understands of it, none.
class ExifEncoder
{
public:
    /// @param note  the maker note as it was; empty when it may not be kept as it was
    ExifEncoder(Exiv2::ExifData exif, Exiv2::ByteOrder order, const MakerNoteBlock &note)
        : m_exif(std::move(exif))
        , m_order(order)
        , m_note(note)
    {
    }

    QByteArray encoded(const QByteArray &thumbnail) const
    {
        if (!m_note.bytes.isEmpty() && !holdsMangledPicture(m_note.bytes)) {
            const QByteArray asItWas = writtenExif(m_exif, m_order, m_note, thumbnail);
            if (isAcceptable(asItWas, thumbnail))
                return asItWas;
        }
        if (makerNoteFields(m_exif) > 0) {
            try {
                const QByteArray anew = encodedByLibrary(m_exif, m_order, thumbnail);
                if (isAcceptable(anew, thumbnail))
                    return anew;
            } catch (const std::exception &) {
                // The next way needs nothing of the maker note.
            }
        }
        const QByteArray without = writtenExif(m_exif, m_order, {}, thumbnail);
        return isAcceptable(without, thumbnail) ? without : QByteArray();
    }

private:
    static bool isAcceptable(const QByteArray &blob, const QByteArray &thumbnail)
    {
        return !blob.isEmpty() && static_cast<size_t>(blob.size()) <= kMaxExifBytes && !holdsPicture(blob) &&
               (thumbnail.isEmpty() || blob.count(thumbnail) == 1);
    }

    /// Some cameras spoil the first byte of the JPEGs in their notes.
    static bool holdsMangledPicture(const QByteArray &note)
    {
        return note.contains("\xD8\xFF\xDB") || note.contains("\xD8\xFF\xE0") ||
               note.contains("\xD8\xFF\xE1");
    }

    Exiv2::ExifData m_exif;
    Exiv2::ByteOrder m_order;
    MakerNoteBlock m_note;
};

void encodeExif(EmbeddedMetadata::Encoded &encoded, const ExifEncoder &encoder, qsizetype thumbnailBytes)
{
    const QByteArray plain = encoder.encoded({});
    encoded.exif = plain;
    constexpr qsizetype kDirectoryBytes = 256;
    if (thumbnailBytes <= 0 || plain.isEmpty() ||
        static_cast<size_t>(plain.size() + thumbnailBytes + kDirectoryBytes) > kMaxExifBytes)
        return;
    const QByteArray placeholder = newPlaceholder(thumbnailBytes);
    const QByteArray withThumbnail = encoder.encoded(placeholder);
    if (!withThumbnail.isEmpty()) {
        encoded.exif = withThumbnail;
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
        records = iptcWithoutPictures(set.iptcBlock);
    } else if (!set.iptc.empty()) {
        const Exiv2::DataBuf buffer = Exiv2::IptcParser::encode(set.iptc);
        if (buffer.pData_)
            records = QByteArray(reinterpret_cast<const char *>(buffer.pData_), buffer.size_);
    }
    return holdsPicture(records) ? QByteArray() : records;
}

/// The comment where it is a text: anything may be kept in that segment.
QByteArray textualComment(const std::string &comment)
{
    const QByteArray bytes = QByteArray::fromStdString(comment);
    const qsizetype end = static_cast<qsizetype>(comment.find_last_not_of('\0') + 1);
    // White space, and the escape that switches character sets.
    static const QByteArray allowed("\t\n\v\f\r\x1B");
    const bool isText = std::all_of(bytes.begin(), bytes.begin() + end, [](char byte) {
        return static_cast<uchar>(byte) >= ' ' || allowed.contains(byte);
    });
    return isText && !isPictureValue(bytes) ? bytes : QByteArray();
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

/// The library forgets what the packet says it is about.
void restoreAbout(QByteArray &packet, const std::string &original)
{
    static const QRegularExpression about(QStringLiteral("rdf:about=([\"'])([^\"'<>&]{1,200})\\1"));
    const auto match =
        about.match(QString::fromUtf8(original.c_str(), static_cast<qsizetype>(original.size())));
    const qsizetype at = match.hasMatch() ? packet.indexOf("rdf:about=\"\"") : -1;
    if (at >= 0)
        packet.insert(at + 11, match.captured(2).toUtf8());
}

} // namespace

EmbeddedMetadata::Encoded encodedForCopy(MetadataSet set, const QVariantMap &before, const QVariantMap &after,
                                         const EmbeddedMetadata::CopyFacts &facts)
{
    EmbeddedMetadata::Encoded encoded;
    if (hasExcessiveXmp(set))
        encoded.omitted += u"XMP"_qs;
    const auto lock = lockXmpNamespaces();
    Exiv2::XmpData xmp = decodedXmp(set);
    const MakerNoteBlock note = makerNoteOf(set.exif);
    const size_t noteFields = makerNoteFields(set.exif);
    erasePicturesFromExif(set.exif);
    erasePicturesFromXmp(xmp);
    // A digest of the old record would make other programs distrust the new one.
    if (erasePicturesFromIptc(set.iptc))
        eraseXmpProperty(xmp, "Xmp.photoshop.LegacyIPTCDigest");
    const Exiv2::IptcData original = set.iptc;
    applyPropertyChanges(set, xmp, before, after);
    describePictureInExif(set.exif, facts.pixelSize);
    describePictureInXmp(xmp, facts.pixelSize);

    const bool keepsNote = set.exif.findKey(Exiv2::ExifKey("Exif.Photo.MakerNote")) != set.exif.end() &&
                           makerNoteFields(set.exif) == noteFields;
    encodeExif(encoded, ExifEncoder(set.exif, set.byteOrder, keepsNote ? note : MakerNoteBlock()),
               facts.thumbnailBytes);
    try {
        encoded.iptc = encodedIptc(set, original);
    } catch (const std::exception &) {
        encoded.iptc.clear();
    }
    try {
        encoded.xmp = encodedXmp(xmp);
        restoreAbout(encoded.xmp, set.xmpPacket);
    } catch (const std::exception &) {
        encoded.xmp.clear();
    }
    encoded.comment = textualComment(set.comment);
    return encoded;
}

} // namespace plexa
