// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/copyencoding.h"

#include "imageio/container/imageresources.h"
#include "imageio/container/picturestarts.h"
#include "imageio/embedded/exif/embeddedpictures.h"
#include "imageio/embedded/exif/exifencoding.h"
#include "imageio/embedded/exif/exifvalues.h"
#include "imageio/embedded/exif/makernoterewriting.h"
#include "imageio/embedded/metadatablocks.h"
#include "imageio/embedded/metadatachanges.h"
#include "imageio/embedded/metadataclearing.h"
#include "imageio/embedded/metadatareading.h"
#include "imageio/embedded/metadatavalues.h"
#include "imageio/embedded/xmp/iptctoxmp.h"
#include "metadata/metadatafields.h"
#include "metadata/propertykeys.h"
#include "metadata/propertyvalues.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace plexa
{

namespace
{

struct ApexPair {
    QLatin1StringView plain;
    QLatin1StringView exponent;
    double factor; ///< exponent = factor * log2(plain)
};

constexpr ApexPair kApexPairs[] = {
    {kCGImagePropertyExifFNumber, kCGImagePropertyExifApertureValue, 2},
    {kCGImagePropertyExifExposureTime, kCGImagePropertyExifShutterSpeedValue, -1},
};

/// EXIF holds aperture and exposure time a second time as exponents of two (EXIF 2.3, annex C). Where an edit
/// changed or removed a plain value and left its exponent, the exponent follows.
QVariantMap withAgreeingApexValues(const QVariantMap &before, QVariantMap after)
{
    const QVariantMap oldExif = groupDictionary(before, MetadataGroup::Exif);
    QVariantMap exif = groupDictionary(after, MetadataGroup::Exif);
    for (const ApexPair &pair : kApexPairs) {
        const QVariant plain = exif.value(pair.plain);
        if (!exif.contains(pair.exponent) || samePropertyValue(oldExif.value(pair.plain), plain) ||
            !samePropertyValue(oldExif.value(pair.exponent), exif.value(pair.exponent)))
            continue;
        const double exponent = pair.factor * std::log2(plain.toDouble());
        // A millionth of a stop, so that it is a fraction of small numbers.
        if (std::isfinite(exponent) && !rationalText(plain.toDouble()).isEmpty())
            exif.insert(pair.exponent, std::round(exponent * 1e6) / 1e6);
        else
            exif.remove(pair.exponent);
        after.insert(kCGImagePropertyExifDictionary, exif);
    }
    return after;
}

/// Removes EXIF's subject area and location, which name a place of the picture.
void eraseRegionsFromExif(Exiv2::ExifData &exif)
{
    eraseExifFields(exif,
                    {"Exif.Photo.SubjectArea", "Exif.Photo.SubjectLocation", "Exif.Image.SubjectLocation"});
}

/// Removes the same of XMP, and the regions of faces and people (Metadata Working Group, Microsoft and two
/// photo managers).
/// @return have regions of people been removed?
bool eraseRegionsFromXmp(Exiv2::XmpData &xmp)
{
    eraseXmpProperty(xmp, "Xmp.exif.SubjectArea");
    eraseXmpProperty(xmp, "Xmp.exif.SubjectLocation");
    bool hadPeople = eraseXmpProperty(xmp, "Xmp.mwg-rs.Regions");
    hadPeople = eraseXmpProperty(xmp, "Xmp.MP.RegionInfo") || hadPeople;
    return eraseMetadataIf(xmp,
                           [](const Exiv2::Xmpdatum &datum) {
                               return datum.groupName() == "acdsee-rs" || datum.groupName() == "apple-fi";
                           }) ||
           hadPeople;
}

void describePictureInExif(Exiv2::ExifData &exif, QSize size)
{
    exif["Exif.Image.Orientation"] = uint16_t{1};
    const Exiv2::Exifdatum *colorSpace = exifDatum(exif, "Exif.Photo.ColorSpace");
    if (colorSpace && colorSpace->toLong() != 1)
        eraseExifFields(exif, {"Exif.Image.WhitePoint", "Exif.Image.PrimaryChromaticities",
                               "Exif.Image.TransferFunction", "Exif.Image.YCbCrCoefficients",
                               "Exif.Photo.Gamma", "Exif.Photo.0xa500"});
    if (hasExifGroup(exif, "Photo")) {
        exif["Exif.Photo.ColorSpace"] = uint16_t{1};
        exif["Exif.Photo.PixelXDimension"] = static_cast<uint32_t>(size.width());
        exif["Exif.Photo.PixelYDimension"] = static_cast<uint32_t>(size.height());
    }
    const Exiv2::Exifdatum *interoperability = exifDatum(exif, "Exif.Iop.InteroperabilityIndex");
    if (interoperability && interoperability->toString().starts_with("R03"))
        exif["Exif.Iop.InteroperabilityIndex"] = std::string("R98");
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
    try {
        if (!set.iptcBlock.isEmpty() && areSame(set.iptc, original)) {
            records = iptcWithoutPictures(set.iptcBlock);
        } else if (!set.iptc.empty()) {
            const Exiv2::DataBuf buffer = Exiv2::IptcParser::encode(set.iptc);
            records = QByteArray(reinterpret_cast<const char *>(buffer.pData_), buffer.size_);
        }
    } catch (const std::exception &) {
        return {};
    }
    return holdsPictureStart(records) ? QByteArray() : records;
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
QByteArray changedXmp(MetadataSet &set, const QVariantMap &before, const QVariantMap &after,
                      const EmbeddedMetadata::CopyFacts &facts, bool hasNewIptc, QStringList &omitted)
{
    DecodedXmp xmp = decodedXmp(set, &omitted);
    erasePicturesFromXmp(xmp.data);
    clearGroups(set, xmp, facts.cleared, after);
    // A cleared fact that is there again is new, even with the same value.
    const QVariantMap remaining = facts.cleared ? propertiesOfMetadata(set, xmp.data) : before;
    if (applyPropertyChanges(set, xmp.data, remaining, after) || hasNewIptc ||
        (facts.cleared & ClearedGroup::Iptc))
        // A digest of the old record would make other programs distrust the new one.
        eraseXmpProperty(xmp.data, "Xmp.photoshop.LegacyIPTCDigest");
    if (!facts.holdsIptc) {
        addIptcToXmp(xmp.data, after);
        omitted += iptcWithoutPlaceInXmp(set.iptc);
    }
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

} // namespace

EmbeddedMetadata::Encoded encodedForCopy(MetadataSet set, const QVariantMap &before,
                                         const QVariantMap &properties,
                                         const EmbeddedMetadata::CopyFacts &facts)
{
    QVariantMap after = withAgreeingApexValues(before, properties);
    EmbeddedMetadata::Encoded encoded;
    if (set.hasDamagedIptc)
        encoded.omitted += set.iptc.empty() ? u"IPTC"_qs : u"damaged IPTC field"_qs;
    after = withKeptUsageTerms(before, after, facts.cleared);
    MakerNoteBlock note = makerNoteOf(set.exif);
    encoded.omitted += erasePicturesFromExif(set.exif);
    const bool erasedFromIptc = erasePicturesFromIptc(set.iptc);
    const Exiv2::IptcData original = set.iptc;
    const bool hadNote = exifDatum(set.exif, "Exif.Photo.MakerNote") != nullptr;
    encoded.xmp = changedXmp(set, before, after, facts, erasedFromIptc, encoded.omitted);
    if (hadNote && !exifDatum(set.exif, "Exif.Photo.MakerNote") && !(facts.cleared & ClearedGroup::Exif))
        encoded.omitted += u"maker note"_qs;

    if (facts.isTurned)
        eraseRegionsFromExif(set.exif);
    describePictureInExif(set.exif, facts.pixelSize);
    if (!exifDatum(set.exif, "Exif.Photo.MakerNote"))
        note = {};
    note.isEdited = makerNoteFields(set.exif) != static_cast<size_t>(note.fields.count());
    encodeExif(encoded, set.exif, set.byteOrder, note, facts);
    encoded.iptc = encodedIptc(set, original);
    if (encoded.iptc.isEmpty() && !set.iptc.empty())
        encoded.omitted += u"IPTC"_qs;
    encoded.imageResources = encodedImageResources(set, encoded.iptc, after, facts.cleared);
    // Free text about the photo, as the caption is.
    if (!(facts.cleared & ClearedGroup::Iptc)) {
        bool isWhole = true;
        encoded.comment = set.comments.text(isWhole);
        if (!isWhole)
            encoded.omitted += u"comment"_qs;
    }
    return encoded;
}

} // namespace plexa
