// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/copyencoding.h"

#include "imageio/container/imageresources.h"
#include "imageio/container/picturestarts.h"
#include "imageio/embedded/exif/apexvalues.h"
#include "imageio/embedded/exif/embeddedpictures.h"
#include "imageio/embedded/exif/exifencoding.h"
#include "imageio/embedded/exif/pictureregions.h"
#include "imageio/embedded/metadatachanges.h"
#include "imageio/embedded/metadataclearing.h"
#include "imageio/embedded/metadatareading.h"
#include "imageio/embedded/xmp/iptctoxmp.h"
#include "imageio/embedded/xmp/xmpencoding.h"
#include "metadata/metadatafields.h"
#include "metadata/propertykeys.h"

#include <QRegularExpression>

#include <algorithm>

namespace plexa
{

namespace
{

bool hasGroup(const Exiv2::ExifData &exif, const char *group)
{
    return std::any_of(exif.begin(), exif.end(),
                       [group](const Exiv2::Exifdatum &datum) { return datum.groupName() == group; });
}

void describePictureInExif(Exiv2::ExifData &exif, QSize size)
{
    exif["Exif.Image.Orientation"] = uint16_t{1};
    const auto colorSpace = exif.findKey(Exiv2::ExifKey("Exif.Photo.ColorSpace"));
    if (colorSpace != exif.end() && colorSpace->toLong() != 1)
        eraseExifFields(exif, {"Exif.Image.WhitePoint", "Exif.Image.PrimaryChromaticities",
                               "Exif.Image.TransferFunction", "Exif.Image.YCbCrCoefficients",
                               "Exif.Photo.Gamma", "Exif.Photo.0xa500"});
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

bool areSame(const Exiv2::IptcData &a, const Exiv2::IptcData &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const Exiv2::Iptcdatum &left, const Exiv2::Iptcdatum &right) {
                          return left.key() == right.key() && left.toString() == right.toString();
                      });
}

/// The records unchanged where nothing was edited: encoding them again would add time zones and such.
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

/// The library drops the "rdf:about" of a packet.
void restoreAbout(QByteArray &packet, const std::string &original)
{
    static const QRegularExpression about(QStringLiteral("rdf:about=([\"'])([^\"'<>&]{1,200})\\1"));
    const auto match =
        about.match(QString::fromUtf8(original.c_str(), static_cast<qsizetype>(original.size())));
    const qsizetype at = match.hasMatch() ? packet.indexOf("rdf:about=\"\"") : -1;
    if (at >= 0)
        packet.insert(at + 11, match.captured(2).toUtf8());
}

/// The Photoshop resources of the copy without its IPTC records.
QByteArray encodedImageResources(const MetadataSet &set, const QByteArray &iptc, const QVariantMap &after,
                                 ClearedGroups cleared)
{
    const bool keepsRights =
        groupDictionary(after, MetadataGroup::Iptc).contains(kCGImagePropertyIPTCCopyrightNotice);
    ImageResourceFacts facts;
    facts.iptcBefore = set.iptcBlock;
    facts.iptcAfter = iptc;
    facts.dpi[0] = after.value(kCGImagePropertyDPIWidth).toDouble();
    facts.dpi[1] = after.value(kCGImagePropertyDPIHeight).toDouble();
    facts.clearsRights = (cleared & ClearedGroup::Iptc) && !keepsRights;
    return imageResourcesForCopy(set.imageResources, facts);
}

/// Clears and edits EXIF, IPTC and XMP, and encodes the XMP.
QByteArray changedXmp(MetadataSet &set, ClearedGroups cleared, const QVariantMap &before,
                      const QVariantMap &after, const EmbeddedMetadata::CopyFacts &facts, bool hasNewIptc,
                      QStringList &omitted)
{
    DecodedXmp xmp = decodedXmp(set, &omitted);
    erasePicturesFromXmp(xmp.data);
    clearGroups(set, xmp, cleared, after);
    // A cleared fact that is there again is new, even with the same value.
    const QVariantMap remaining = cleared ? propertiesOfMetadata(set, xmp.data) : before;
    if (applyPropertyChanges(set, xmp.data, remaining, after) || hasNewIptc || (cleared & ClearedGroup::Iptc))
        // A digest of the old record would make other programs distrust the new one.
        eraseXmpProperty(xmp.data, "Xmp.photoshop.LegacyIPTCDigest");
    if (!facts.holdsIptc)
        addIptcToXmp(xmp.data, after);
    if (!facts.holdsExif)
        addTiffTextsToXmp(xmp.data, after);
    if (facts.isTurned && eraseRegionsFromXmp(xmp.data))
        omitted += u"face regions"_qs;
    describePictureInXmp(xmp.data, facts.pixelSize);
    QByteArray packet = encodedXmp(xmp, omitted);
    restoreAbout(packet, set.xmpPacket);
    return packet;
}

/// The terms of use belong to the copyright that a clearing keeps, though the dictionary has only the notice.
QVariantMap withKeptUsageTerms(const QVariantMap &before, QVariantMap after, ClearedGroups cleared)
{
    const QLatin1StringView key = kCGImagePropertyIPTCRightsUsageTerms;
    const QVariant terms = groupDictionary(before, MetadataGroup::Iptc).value(key);
    QVariantMap iptc = groupDictionary(after, MetadataGroup::Iptc);
    if ((cleared & ClearedGroup::Iptc) && terms.isValid() && !iptc.contains(key) &&
        iptc.contains(kCGImagePropertyIPTCCopyrightNotice)) {
        iptc.insert(key, terms);
        after.insert(dictionaryKey(MetadataGroup::Iptc), iptc);
    }
    return after;
}

bool hasMakerNote(const Exiv2::ExifData &exif)
{
    return exif.findKey(Exiv2::ExifKey("Exif.Photo.MakerNote")) != exif.end();
}

} // namespace

EmbeddedMetadata::Encoded encodedForCopy(MetadataSet set, const QVariantMap &before,
                                         const QVariantMap &properties,
                                         const EmbeddedMetadata::CopyFacts &facts)
{
    QVariantMap after = withAgreeingApexValues(before, properties);
    EmbeddedMetadata::Encoded encoded;
    if (set.hasDamagedIptc)
        encoded.omitted += set.iptc.empty() ? u"IPTC"_qs : u"damaged IPTC field"_qs;
    const ClearedGroups cleared = facts.cleared | emptiedGroups(before, after);
    after = withKeptUsageTerms(before, after, cleared);
    MakerNoteBlock note = makerNoteOf(set.exif);
    const size_t noteFields = makerNoteFields(set.exif);
    erasePicturesFromExif(set.exif);
    const bool erasedFromIptc = erasePicturesFromIptc(set.iptc);
    const Exiv2::IptcData original = set.iptc;
    const bool hadNote = hasMakerNote(set.exif);
    encoded.xmp = changedXmp(set, cleared, before, after, facts, erasedFromIptc, encoded.omitted);
    if (hadNote && !hasMakerNote(set.exif) && !(cleared & ClearedGroup::Exif))
        encoded.omitted += u"maker note"_qs;

    if (facts.isTurned)
        eraseRegionsFromExif(set.exif);
    describePictureInExif(set.exif, facts.pixelSize);
    if (!hasMakerNote(set.exif))
        note = {};
    note.isEdited = makerNoteFields(set.exif) != noteFields;
    EncodedExif exif = encodedExif(set.exif, set.byteOrder, note, facts);
    encoded.exif = exif.bytes;
    encoded.thumbnailPlaceholder = exif.thumbnailPlaceholder;
    encoded.omitted += exif.omitted;
    try {
        encoded.iptc = encodedIptc(set, original);
    } catch (const std::exception &) {
        encoded.iptc.clear();
    }
    encoded.imageResources = encodedImageResources(set, encoded.iptc, after, cleared);
    // Free text about the photo, as the caption is.
    if (!(cleared & ClearedGroup::Iptc)) {
        bool isWhole = true;
        encoded.comment = set.comments.text(isWhole);
        if (!isWhole)
            encoded.omitted += u"comment"_qs;
    }
    return encoded;
}

} // namespace plexa
