// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/metadatachanges.h"

#include "imageio/embedded/exif/exifvalues.h"
#include "imageio/embedded/exif/makernotefacts.h"
#include "imageio/embedded/metadataclearing.h"
#include "imageio/embedded/metadatavalues.h"
#include "imageio/embedded/xmp/iptcmirrors.h"
#include "imageio/embedded/xmp/xmpwriting.h"
#include "metadata/metadatafields.h"
#include "metadata/metadatatext.h"
#include "metadata/propertykeys.h"
#include "metadata/propertyvalues.h"

#include <algorithm>
#include <memory>

namespace plexa
{

namespace
{

constexpr const char *kContactProperty = "Xmp.iptc.CreatorContactInfo";

using ValuePointer = std::unique_ptr<Exiv2::Value>;

ValuePointer newValue(Exiv2::TypeId type)
{
    return ValuePointer(Exiv2::Value::create(type).release());
}

/// Facts that the encoder alone decides: they follow from the picture that is written.
bool belongsToEncoder(const MetadataField &field)
{
    return field.group == MetadataGroup::Tiff &&
           (field.key == kCGImagePropertyTIFFOrientation || field.key == kCGImagePropertyTIFFCompression ||
            field.key == kCGImagePropertyTIFFPhotometricInterpretation ||
            field.key == kCGImagePropertyTIFFTileWidth || field.key == kCGImagePropertyTIFFTileLength);
}

/// Windows keeps texts of its own beside some of EXIF's and IPTC's.
void eraseWindowsTexts(Exiv2::ExifData &exif, const MetadataField &field)
{
    if (field.key == kCGImagePropertyTIFFImageDescription)
        eraseExifFields(exif, {"Exif.Image.XPTitle", "Exif.Image.XPComment", "Exif.Image.XPSubject"});
    else if (field.key == kCGImagePropertyIPTCObjectName)
        eraseExifFields(exif, {"Exif.Image.XPTitle"});
    else if (field.key == kCGImagePropertyTIFFArtist)
        eraseExifFields(exif, {"Exif.Image.XPAuthor"});
    else if (field.key == kCGImagePropertyIPTCKeywords)
        eraseExifFields(exif, {"Exif.Image.XPKeywords"});
}

/// Maker notes and DNG hold such facts in forms of their own, which have no room for a new value.
void eraseOtherExifHomes(Exiv2::ExifData &exif, const MetadataField &field)
{
    if (field.group == MetadataGroup::ExifAux)
        eraseFactFromMakerNotes(exif, field.key);
    else if (field.key == kCGImagePropertyTIFFModel)
        eraseExifFields(exif, {"Exif.Image.UniqueCameraModel", "Exif.Image.LocalizedCameraModel"});
}

/// From its own place and, for EXIF facts, from the main directory, where scanners and raw files put them.
void eraseExif(Exiv2::ExifData &exif, const MetadataField &field)
{
    const Exiv2::ExifKey key(field.exif);
    const bool isAlsoInMainDirectory =
        field.group == MetadataGroup::Exif || field.group == MetadataGroup::ExifAux;
    eraseMetadataIf(exif, [&](const Exiv2::Exifdatum &datum) {
        return datum.tag() == key.tag() && (datum.groupName() == key.groupName() ||
                                            (isAlsoInMainDirectory && datum.groupName() == "Image"));
    });
}

/// @return false when the field's type cannot hold the value; nothing has changed then
bool setExif(Exiv2::ExifData &exif, const MetadataField &field, const QVariant &value, Exiv2::ByteOrder order)
{
    const Exiv2::ExifKey key(field.exif);
    const ExifText text = exifText(field.kind, value, key.defaultTypeId(), order == Exiv2::bigEndian);
    if (text.type == Exiv2::invalidTypeId)
        return false;
    const ValuePointer stored = newValue(text.type);
    const int failed = text.isBytes ? stored->read(reinterpret_cast<const Exiv2::byte *>(text.text.data()),
                                                   static_cast<long>(text.text.size()), order)
                                    : stored->read(text.text);
    if (failed != 0)
        return false;
    eraseExif(exif, field);
    exif.add(Exiv2::ExifKey(field.exif), stored.get());
    return true;
}

void setIptc(Exiv2::IptcData &iptc, const MetadataField &field, const QVariant &value)
{
    makeUtf8(iptc);
    const Exiv2::IptcKey key(field.iptc);
    eraseMetadataIf(iptc, [&](const Exiv2::Iptcdatum &datum) { return datum.key() == key.key(); });
    const Exiv2::TypeId type = Exiv2::IptcDataSets::dataSetType(key.tag(), key.record());
    for (const QString &text : propertyTexts(value)) {
        const QByteArray bytes = utf8OfAtMost(text, field.iptcMaxBytes);
        const ValuePointer stored = newValue(type);
        if (stored->read(reinterpret_cast<const Exiv2::byte *>(bytes.constData()),
                         static_cast<long>(bytes.size()), Exiv2::bigEndian) == 0)
            iptc.add(key, stored.get());
    }
    const Exiv2::IptcKey version("Iptc.Application2.RecordVersion");
    if (iptc.findKey(version) == iptc.end())
        iptc["Iptc.Application2.RecordVersion"] = uint16_t{4};
}

/// Further names of facts in XMP (EXIF for XMP, XMP part 2, guidelines of the Metadata
/// Working Group).
struct XmpAlias {
    MetadataGroup group;
    QLatin1StringView key;
    const char *xmp;
};

constexpr XmpAlias kXmpAliases[] = {
    {MetadataGroup::Tiff, kCGImagePropertyTIFFImageDescription, "Xmp.tiff.ImageDescription"},
    {MetadataGroup::Tiff, kCGImagePropertyTIFFArtist, "Xmp.tiff.Artist"},
    {MetadataGroup::Tiff, kCGImagePropertyTIFFCopyright, "Xmp.tiff.Copyright"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCCaptionAbstract, "Xmp.tiff.ImageDescription"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCByline, "Xmp.tiff.Artist"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCCopyrightNotice, "Xmp.tiff.Copyright"},
    {MetadataGroup::Tiff, kCGImagePropertyTIFFSoftware, "Xmp.xmp.CreatorTool"},
    {MetadataGroup::Tiff, kCGImagePropertyTIFFDateTime, "Xmp.tiff.DateTime"},
    {MetadataGroup::Exif, kCGImagePropertyExifDateTimeDigitized, "Xmp.xmp.CreateDate"},
    {MetadataGroup::Exif, kCGImagePropertyExifISOSpeedRatings, "Xmp.exifEX.PhotographicSensitivity"},
    {MetadataGroup::ExifAux, kCGImagePropertyExifAuxSerialNumber, "Xmp.MicrosoftPhoto.CameraSerialNumber"},
    {MetadataGroup::ExifAux, kCGImagePropertyExifAuxLensModel, "Xmp.MicrosoftPhoto.LensModel"},
    {MetadataGroup::ExifAux, kCGImagePropertyExifAuxLensModel, "Xmp.exif.Lens"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCByline, "Xmp.acdsee.author"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCByline, "Xmp.pdf.Author"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCByline, "Xmp.xmp.Author"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCCaptionAbstract, "Xmp.acdsee.caption"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCCaptionAbstract, "Xmp.pdf.Subject"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCCaptionAbstract, "Xmp.xmp.Description"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCObjectName, "Xmp.pdf.Title"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCObjectName, "Xmp.xmp.Title"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCCopyrightNotice, "Xmp.pdf.Copyright"},
};

/// The further names of the field's fact in XMP: the aliases, and the names of other fields of the table that
/// share the EXIF tag.
QList<const char *> furtherXmpNames(const MetadataField &field)
{
    QList<const char *> names;
    for (const XmpAlias &alias : kXmpAliases) {
        if (alias.group == field.group && alias.key == field.key)
            names += alias.xmp;
    }
    for (const MetadataField &other : metadataFields()) {
        if (&other != &field && field.exif && other.exif && qstrcmp(field.exif, other.exif) == 0) {
            if (other.xmp)
                names += other.xmp;
            for (const XmpAlias &alias : kXmpAliases) {
                if (alias.group == other.group && alias.key == other.key)
                    names += alias.xmp;
            }
        }
    }
    return names;
}

/// An EXIF fact is put into XMP where the file has it there already, an IPTC fact always: it has two homes,
/// and many programs read only the one in XMP, which also has room for a long text.
void setXmp(Exiv2::XmpData &xmp, const MetadataField &field, const QVariant &value)
{
    for (const char *name : furtherXmpNames(field)) {
        if (eraseXmpProperty(xmp, name))
            putXmpField(xmp, name, field, value);
    }
    if (!field.xmp)
        return;
    if (!eraseXmpProperty(xmp, field.xmp) && field.exif)
        return;
    if (field.group == MetadataGroup::Contact)
        addXmpStructure(xmp, kContactProperty);
    putXmpField(xmp, field.xmp, field, value);
}

/// Does the IPTC dictionary still have the fact of this property of XMP? The property is its mirror: a field
/// of TIFF that shares it does not hold it.
bool isNeeded(const char *xmpKey, const MetadataField &removed, const QVariantMap &after)
{
    const auto fields = metadataFields();
    return std::any_of(fields.begin(), fields.end(), [&](const MetadataField &field) {
        return field.xmp && &field != &removed && field.group != MetadataGroup::Tiff &&
               qstrcmp(field.xmp, xmpKey) == 0 && groupDictionary(after, field.group).contains(field.key);
    });
}

void removeField(MetadataSet &set, Exiv2::XmpData &xmp, const MetadataField &field, const QVariantMap &after)
{
    if (field.exif)
        eraseExif(set.exif, field);
    if (field.iptc)
        eraseMetadataIf(set.iptc, [&](const Exiv2::Iptcdatum &datum) { return datum.key() == field.iptc; });
    for (const char *name : furtherXmpNames(field))
        eraseXmpProperty(xmp, name);
    if (field.xmp && !isNeeded(field.xmp, field, after))
        eraseXmpProperty(xmp, field.xmp);
    if (field.group == MetadataGroup::Contact && groupDictionary(after, MetadataGroup::Contact).isEmpty())
        eraseXmpProperty(xmp, kContactProperty);
}

/// A value that EXIF cannot hold, such as the negative exponent of an aperture, removes the old one.
void setField(MetadataSet &set, Exiv2::XmpData &xmp, const MetadataField &field, const QVariant &value,
              const QVariantMap &after)
{
    if (field.exif && !setExif(set.exif, field, value, set.byteOrder)) {
        removeField(set, xmp, field, after);
        return;
    }
    if (field.iptc)
        setIptc(set.iptc, field, value);
    setXmp(xmp, field, value);
}

/// Structures and lists of XMP that repeat the IPTC fact beside its own property.
void updateFurtherXmp(Exiv2::XmpData &xmp, const MetadataField &field, const QVariant &oldValue,
                      const QVariant &newValue)
{
    if (field.group != MetadataGroup::Iptc)
        return;
    updateLocationCreated(xmp, field.key, propertyTexts(newValue).value(0));
    if (field.key == kCGImagePropertyIPTCKeywords)
        updateKeywordLists(xmp, propertyTexts(oldValue), propertyTexts(newValue));
}

/// Without the fractions and time zones of dates that are no longer there, unless they are new as well.
QVariantMap withoutPartsOfRemovedDates(const QVariantMap &before, QVariantMap after)
{
    const QVariantMap oldExif = groupDictionary(before, MetadataGroup::Exif);
    QVariantMap exif = groupDictionary(after, MetadataGroup::Exif);
    for (const MetadataField &field : metadataFields()) {
        const SplitDate *split = splitDateOf(field);
        if (!split || groupDictionary(after, field.group).contains(field.key) ||
            !groupDictionary(before, field.group).contains(field.key))
            continue;
        for (const QLatin1StringView part : {split->fraction, split->zone}) {
            if (exif.value(part) == oldExif.value(part))
                exif.remove(part);
        }
    }
    if (exif.size() < groupDictionary(after, MetadataGroup::Exif).size())
        after.insert(dictionaryKey(MetadataGroup::Exif), exif);
    return after;
}

/// Writes the dates into XMP again of which the date, its fraction or its time zone has changed.
void updateXmpDates(Exiv2::XmpData &xmp, const QVariantMap &before, const QVariantMap &after)
{
    for (const MetadataField &field : metadataFields()) {
        const SplitDate *split = splitDateOf(field);
        const QString text = split ? xmpDateText(*split, after) : QString();
        if (text.isEmpty() || text == xmpDateText(*split, before))
            continue;
        for (const char *name : furtherXmpNames(field) + QList{field.xmp}) {
            if (eraseXmpProperty(xmp, name))
                putXmpTexts(xmp, name, {text});
        }
    }
}

} // namespace

bool applyPropertyChanges(MetadataSet &set, Exiv2::XmpData &xmp, const QVariantMap &before,
                          const QVariantMap &wanted)
{
    const QVariantMap after = withoutPartsOfRemovedDates(before, wanted);
    bool hasChangedIptc = false;
    for (const MetadataField &field : metadataFields()) {
        const QVariant oldValue = groupDictionary(before, field.group).value(field.key);
        const QVariant newValue = groupDictionary(after, field.group).value(field.key);
        if (belongsToEncoder(field) || samePropertyValue(oldValue, newValue))
            continue;
        try {
            eraseWindowsTexts(set.exif, field);
            eraseOtherExifHomes(set.exif, field);
            if (newValue.isValid())
                setField(set, xmp, field, newValue, after);
            else
                removeField(set, xmp, field, after);
            updateFurtherXmp(xmp, field, oldValue, newValue);
        } catch (const std::exception &) {
            // A value that the library refuses is left out; the other fields are not its fault.
        }
        hasChangedIptc = hasChangedIptc || field.iptc;
    }
    try {
        updateXmpDates(xmp, before, after);
    } catch (const std::exception &) {
        // As above.
    }
    return hasChangedIptc;
}

} // namespace plexa
