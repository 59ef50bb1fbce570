// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/metadatareading.h"

#include "imageio/embedded/exif/exifvalues.h"
#include "imageio/embedded/exif/makernotefacts.h"
#include "imageio/embedded/metadatavalues.h"
#include "imageio/embedded/xmp/xmpreading.h"
#include "metadata/metadatafields.h"
#include "metadata/metadatatext.h"
#include "metadata/propertykeys.h"

#include <algorithm>
#include <vector>

namespace plexa
{

namespace
{

/// Camera makers pad these names with blanks; in other texts a blank at the end is the author's.
bool isTrimmedField(QLatin1StringView key)
{
    return key == kCGImagePropertyTIFFMake || key == kCGImagePropertyTIFFModel ||
           key == kCGImagePropertyTIFFSoftware || key == kCGImagePropertyTIFFArtist ||
           key == kCGImagePropertyExifAuxLensModel || key == kCGImagePropertyExifAuxSerialNumber ||
           key == kCGImagePropertyExifCameraOwnerName || key == kCGImagePropertyExifSubsecTime ||
           key == kCGImagePropertyExifSubsecTimeOrginal || key == kCGImagePropertyExifSubsecTimeDigitized;
}

QVariant exifField(const MetadataSet &set, const MetadataField &field)
{
    if (!field.exif)
        return {};
    const Exiv2::ExifKey key(field.exif);
    auto found = set.exif.findKey(key);
    if (found == set.exif.end() && field.group == MetadataGroup::Exif) {
        // Scanners and raw converters put EXIF facts into the main directory, as TIFF/EP does.
        found = std::find_if(set.exif.begin(), set.exif.end(), [&](const Exiv2::Exifdatum &datum) {
            return datum.tag() == key.tag() && datum.groupName() == "Image";
        });
    }
    return found == set.exif.end()
               ? QVariant()
               : propertyOfValue(found->value(), field.kind, isTrimmedField(field.key), set.byteOrder);
}

/// All values of a repeatable field together.
constexpr qsizetype kMaxIptcTexts = 4096;

struct XmpText {
    QString text;
    QString lines; ///< with XML's line ends
    QByteArray utf8;
};

/// Is the field full, so that the character that follows in the whole text has no room in it? Some programs
/// cut before that character, others in the middle of it.
bool isFull(qsizetype usedBytes, int maxBytes, QStringView following)
{
    const qsizetype nextCharacter = following.size() > 1 && following.front().isHighSurrogate() ? 2 : 1;
    return usedBytes + following.first(nextCharacter).toUtf8().size() > maxBytes;
}

/// A text that fills its field of IIM may be cut there, even in the middle of a character: XMP has it whole
/// then.
/// @param bytes  of the field
/// @param inXmp  the field's texts in XMP
QString wholeText(const QString &text, const QByteArray &bytes, int maxBytes,
                  const std::vector<XmpText> &inXmp)
{
    constexpr int kBytesOfCharacter = 4;
    const qsizetype used = text.toUtf8().size();
    if (used <= maxBytes - kBytesOfCharacter)
        return text;
    const QString beginning = withXmlLineEnds(text);
    if (std::ranges::any_of(inXmp, [&](const XmpText &same) { return same.lines == beginning; }))
        return text;
    const auto whole = std::ranges::find_if(inXmp, [&](const XmpText &candidate) {
        return (candidate.lines.size() > beginning.size() && candidate.lines.startsWith(beginning) &&
                isFull(used, maxBytes, QStringView(candidate.lines).sliced(beginning.size()))) ||
               (bytes.size() >= maxBytes && candidate.utf8.size() > bytes.size() &&
                candidate.utf8.startsWith(bytes));
    });
    return whole == inXmp.end() ? text : whole->text;
}

QVariant iptcField(const Exiv2::IptcData &iptc, const QByteArray &characterSet, const MetadataField &field,
                   const Exiv2::XmpData &xmp)
{
    if (!field.iptc || iptc.empty())
        return {};
    const Exiv2::IptcKey key(field.iptc);
    const bool isText = field.kind == MetadataKind::Text || field.kind == MetadataKind::TextList;
    std::vector<XmpText> inXmp;
    if (isText && field.xmp) {
        for (const QString &whole : propertyTexts(xmpField(xmp, field)))
            inXmp.push_back({whole, withXmlLineEnds(whole), whole.toUtf8()});
    }
    QStringList texts;
    for (const Exiv2::Iptcdatum &datum : iptc) {
        if (datum.record() != key.record() || datum.tag() != key.tag())
            continue;
        const QByteArray bytes = bytesOfValue(datum.value());
        const QString text = decodedField(bytes, characterSet);
        if (!text.isEmpty() && texts.size() < kMaxIptcTexts)
            texts += wholeText(text, bytes, field.iptcMaxBytes, inXmp);
    }
    if (texts.isEmpty())
        return {};
    if (field.kind != MetadataKind::TextList)
        return texts.constFirst();
    return QVariantList(texts.begin(), texts.end());
}

/// Facts of camera and lens that only one of two dictionaries has go into the other.
void copyToAux(QVariantMap &aux, const QVariantMap &exif)
{
    const auto copy = [&](QLatin1StringView auxKey, QLatin1StringView exifKey) {
        if (exif.contains(exifKey) && !aux.contains(auxKey))
            aux.insert(auxKey, exif.value(exifKey));
    };
    copy(kCGImagePropertyExifAuxLensModel, kCGImagePropertyExifLensModel);
    copy(kCGImagePropertyExifAuxLensInfo, kCGImagePropertyExifLensSpecification);
    copy(kCGImagePropertyExifAuxLensSerialNumber, kCGImagePropertyExifLensSerialNumber);
    copy(kCGImagePropertyExifAuxSerialNumber, kCGImagePropertyExifBodySerialNumber);
    copy(kCGImagePropertyExifAuxOwnerName, kCGImagePropertyExifCameraOwnerName);
}

void insertResolution(QVariantMap &properties)
{
    const QVariantMap tiff = properties.value(kCGImagePropertyTIFFDictionary).toMap();
    const double perInch = tiff.value(kCGImagePropertyTIFFResolutionUnit).toInt() == 3 ? 2.54 : 1;
    const auto insert = [&](QLatin1StringView key, QLatin1StringView tiffKey) {
        const double resolution = tiff.value(tiffKey).toDouble() * perInch;
        if (resolution > 0)
            properties.insert(key, resolution);
    };
    // A resolution without unit states the shape of the pixels, like one with a unit.
    insert(kCGImagePropertyDPIWidth, kCGImagePropertyTIFFXResolution);
    insert(kCGImagePropertyDPIHeight, kCGImagePropertyTIFFYResolution);
}

/// A copyright, caption or creator in XMP belongs to the IPTC dictionary alone; the orientation of a picture
/// and the density of its pixels come from EXIF and the container alone.
bool readsXmp(const MetadataField &field)
{
    return field.xmp &&
           (field.group != MetadataGroup::Tiff || field.key == kCGImagePropertyTIFFMake ||
            field.key == kCGImagePropertyTIFFModel || field.key == kCGImagePropertyTIFFSoftware ||
            field.key == kCGImagePropertyTIFFDateTime);
}

} // namespace

QVariantMap propertiesOfMetadata(const MetadataSet &set, const Exiv2::XmpData &xmp)
{
    QMap<MetadataGroup, QVariantMap> groups;
    const auto insert = [&](const MetadataField &field, const QVariant &value) {
        if (value.isValid() && !groups[field.group].contains(field.key))
            groups[field.group].insert(field.key, value);
    };
    const QByteArray characterSet = iptcCharacterSet(set.iptc);
    for (const MetadataField &field : metadataFields()) {
        insert(field, exifField(set, field));
        insert(field, iptcField(set.iptc, characterSet, field, xmp));
    }
    insertMakerNoteFacts(groups[MetadataGroup::ExifAux], set.exif);
    // Fractions and offsets in XMP belong to the times in XMP.
    insertTimesFromXmp(groups[MetadataGroup::Exif], groups[MetadataGroup::Tiff], xmp);
    for (const MetadataField &field : metadataFields()) {
        if (readsXmp(field))
            insert(field, xmpField(xmp, field));
    }
    insertGpsFromXmp(groups[MetadataGroup::Gps], xmp);
    insertIptcFromXmp(groups[MetadataGroup::Iptc], xmp);
    copyToAux(groups[MetadataGroup::ExifAux], groups[MetadataGroup::Exif]);

    if (!groups[MetadataGroup::Contact].isEmpty())
        groups[MetadataGroup::Iptc].insert(kCGImagePropertyIPTCCreatorContactInfo,
                                           groups.take(MetadataGroup::Contact));
    QVariantMap properties;
    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        if (group.key() != MetadataGroup::Contact && !group->isEmpty())
            properties.insert(dictionaryKey(group.key()), *group);
    }
    const QVariant orientation =
        properties.value(kCGImagePropertyTIFFDictionary).toMap().value(kCGImagePropertyTIFFOrientation);
    if (orientation.isValid())
        properties.insert(kCGImagePropertyOrientation, orientation);
    insertResolution(properties);
    return properties;
}

} // namespace plexa
