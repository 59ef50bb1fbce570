// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/metadatachanges.h"

#include "imageio/exifvalues.h"
#include "imageio/keywordlists.h"
#include "imageio/locationcreated.h"
#include "imageio/metadataclearing.h"
#include "imageio/metadatafields.h"
#include "imageio/metadatatext.h"
#include "imageio/metadatavalues.h"
#include "imageio/propertykeys.h"
#include "imageio/propertyvalues.h"
#include "imageio/xmppackets.h"

#include <QRegularExpression>

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

/// A camera's own number in the notes of some makers: "SerialNumber", "InternalSerialNumber", "SerialNO".
bool isSerialNumberInNote(const Exiv2::Exifdatum &datum)
{
    const QString name = QString::fromStdString(datum.tagName());
    return isMakerNoteGroup(datum.groupName()) && name.contains(u"SerialN"_qs) && !name.contains(u"Lens"_qs);
}

/// Maker notes and DNG say the serial number or lens in ways of their own, which a new value does not fit
/// into.
void eraseOtherExifHomes(Exiv2::ExifData &exif, const MetadataField &field)
{
    const auto eraseAll = [&exif](auto find) {
        constexpr int kMaxSources = 16;
        for (int i = 0; i < kMaxSources; ++i) {
            const auto found = find(exif);
            if (found == exif.end())
                return;
            const std::string key = found->key();
            eraseMetadataIf(exif, [&key](const Exiv2::Exifdatum &datum) { return datum.key() == key; });
        }
    };
    if (field.group == MetadataGroup::ExifAux && field.key == kCGImagePropertyExifAuxSerialNumber) {
        eraseOpaqueMakerNote(exif);
        eraseAll(Exiv2::serialNumber);
        eraseMetadataIf(exif, isSerialNumberInNote);
        eraseExifFields(exif, {"Exif.Image.CameraSerialNumber"});
    } else if (field.group == MetadataGroup::ExifAux && field.key == kCGImagePropertyExifAuxLensModel) {
        eraseAll(Exiv2::lensName);
    } else if (field.group == MetadataGroup::ExifAux && field.key == kCGImagePropertyExifAuxLensID) {
        eraseExifFields(exif, {"Exif.CanonCs.LensType"});
    } else if (field.key == kCGImagePropertyTIFFModel) {
        eraseExifFields(exif, {"Exif.Image.UniqueCameraModel", "Exif.Image.LocalizedCameraModel"});
    }
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

void setExif(Exiv2::ExifData &exif, const MetadataField &field, const QVariant &value, Exiv2::ByteOrder order)
{
    const Exiv2::ExifKey key(field.exif);
    const ExifText text = exifText(field.kind, value, key.defaultTypeId(), order == Exiv2::bigEndian);
    if (text.type == Exiv2::invalidTypeId)
        return;
    const ValuePointer stored = newValue(text.type);
    const int failed = text.isBytes ? stored->read(reinterpret_cast<const Exiv2::byte *>(text.text.data()),
                                                   static_cast<long>(text.text.size()), order)
                                    : stored->read(text.text);
    if (failed != 0)
        return;
    eraseExif(exif, field);
    exif.add(Exiv2::ExifKey(field.exif), stored.get());
}

/// Makes all texts of the record UTF-8 and lets it say so.
void makeUtf8(Exiv2::IptcData &iptc)
{
    const char *charset = iptc.detectCharset();
    const bool isMarked = iptc.findKey(Exiv2::IptcKey("Iptc.Envelope.CharacterSet")) != iptc.end();
    if (isMarked && charset && qstrcmp(charset, "UTF-8") == 0)
        return;
    const QByteArray characterSet = iptcCharacterSet(iptc);
    for (Exiv2::Iptcdatum &datum : iptc) {
        if (datum.typeId() == Exiv2::string && datum.record() != Exiv2::IptcDataSets::envelope)
            datum.setValue(
                decodedIptcText(QByteArray::fromStdString(datum.toString()), characterSet).toStdString());
    }
    iptc["Iptc.Envelope.CharacterSet"] = std::string("\x1B%G");
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

/// IIM has room for few characters; what has to be cut off there stands whole in XMP.
bool fitsIptc(const MetadataField &field, const QVariant &value)
{
    const QStringList texts = propertyTexts(value);
    return std::all_of(texts.begin(), texts.end(),
                       [&](const QString &text) { return text.toUtf8().size() <= field.iptcMaxBytes; });
}

/// What XMP writes for facts under more than one name (EXIF for XMP, XMP part 2, guidelines of the Metadata
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
};

/// The further names under which XMP says the field's fact: the aliases, and what it calls other fields of
/// the table that share the EXIF tag.
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

void addXmpStructure(Exiv2::XmpData &xmp, const char *name)
{
    const Exiv2::XmpKey key(name);
    if (xmp.findKey(key) != xmp.end())
        return;
    Exiv2::XmpTextValue structure;
    structure.setXmpStruct(Exiv2::XmpValue::xsStruct);
    xmp.add(key, &structure);
}

void addXmp(Exiv2::XmpData &xmp, const char *name, const QStringList &texts)
{
    const Exiv2::XmpKey key(name);
    const Exiv2::TypeId type = Exiv2::XmpProperties::propertyType(key);
    if (type == Exiv2::invalidTypeId || type == Exiv2::xmpText) {
        const Exiv2::XmpTextValue text = plainXmpText(texts.join(u' ').toStdString());
        xmp.add(key, &text);
        return;
    }
    const ValuePointer stored = newValue(type);
    if (type == Exiv2::langAlt) {
        stored->read("lang=\"x-default\" " + texts.join(u'\n').toStdString());
    } else if (type == Exiv2::xmpSeq || type == Exiv2::xmpBag || type == Exiv2::xmpAlt) {
        for (const QString &text : texts)
            stored->read(text.toStdString());
    } else {
        stored->read(texts.join(u' ').toStdString());
    }
    xmp.add(key, stored.get());
}

/// EXIF packs the flash into one number, XMP spreads it over a structure (EXIF for XMP).
void addXmpFlash(Exiv2::XmpData &xmp, int flash)
{
    addXmpStructure(xmp, "Xmp.exif.Flash");
    const auto add = [&xmp](const char *name, const QString &text) {
        addXmp(xmp, (std::string("Xmp.exif.Flash/exif:") + name).c_str(), {text});
    };
    const auto truth = [](int bit) { return bit ? QStringLiteral("True") : QStringLiteral("False"); };
    add("Fired", truth(flash & 1));
    add("Return", QString::number(flash >> 1 & 3));
    add("Mode", QString::number(flash >> 3 & 3));
    add("Function", truth(flash >> 5 & 1));
    add("RedEyeMode", truth(flash >> 6 & 1));
}

void setXmp(Exiv2::XmpData &xmp, const MetadataField &field, const QVariant &value)
{
    const QStringList texts = xmpTexts(field.kind, value);
    for (const char *name : furtherXmpNames(field)) {
        if (eraseXmpProperty(xmp, name) && !texts.isEmpty())
            addXmp(xmp, name, texts);
    }
    if (!field.xmp)
        return;
    const bool wasPresent = eraseXmpProperty(xmp, field.xmp);
    const bool hasOtherHome = field.exif || (field.iptc && fitsIptc(field, value));
    if (texts.isEmpty() || (!wasPresent && hasOtherHome))
        return;
    if (field.key == kCGImagePropertyExifFlash) {
        addXmpFlash(xmp, value.toInt());
        return;
    }
    if (field.group == MetadataGroup::Contact)
        addXmpStructure(xmp, kContactProperty);
    addXmp(xmp, field.xmp, texts);
}

/// Does the IPTC dictionary still say what this property of XMP says? The property is its mirror: a field of
/// TIFF that shares it does not hold it.
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

void setField(MetadataSet &set, Exiv2::XmpData &xmp, const MetadataField &field, const QVariant &value)
{
    if (field.exif)
        setExif(set.exif, field, value, set.byteOrder);
    if (field.iptc)
        setIptc(set.iptc, field, value);
    setXmp(xmp, field, value);
}

/// Structures and lists of XMP that say the IPTC fact beside its own property.
void updateFurtherXmp(Exiv2::XmpData &xmp, const MetadataField &field, const QVariant &oldValue,
                      const QVariant &newValue)
{
    if (field.group != MetadataGroup::Iptc)
        return;
    updateLocationCreated(xmp, field.key, propertyTexts(newValue).value(0));
    if (field.key == kCGImagePropertyIPTCKeywords)
        updateKeywordLists(xmp, propertyTexts(oldValue), propertyTexts(newValue));
}

/// A point in time: XMP says in one property what EXIF spreads over three fields.
struct SplitDate {
    QLatin1StringView date;
    MetadataGroup dateGroup;
    QLatin1StringView fraction;
    QLatin1StringView zone;
};

constexpr SplitDate kSplitDates[] = {
    {kCGImagePropertyTIFFDateTime, MetadataGroup::Tiff, kCGImagePropertyExifSubsecTime,
     kCGImagePropertyExifOffsetTime},
    {kCGImagePropertyExifDateTimeOriginal, MetadataGroup::Exif, kCGImagePropertyExifSubsecTimeOrginal,
     kCGImagePropertyExifOffsetTimeOriginal},
    {kCGImagePropertyExifDateTimeDigitized, MetadataGroup::Exif, kCGImagePropertyExifSubsecTimeDigitized,
     kCGImagePropertyExifOffsetTimeDigitized},
};

/// "2010-08-13T21:00:01.85-06:00", as far as it is known.
QStringList xmpDate(const SplitDate &split, const QVariantMap &properties)
{
    const QVariantMap exif = groupDictionary(properties, MetadataGroup::Exif);
    QStringList texts =
        xmpTexts(MetadataKind::DateTime, groupDictionary(properties, split.dateGroup).value(split.date));
    if (texts.isEmpty())
        return {};
    static const QRegularExpression digits(QStringLiteral("^[0-9]+"));
    static const QRegularExpression offset(QStringLiteral("^([+-][0-9]{2}:[0-9]{2}|Z)$"));
    const QString fraction = digits.match(exif.value(split.fraction).toString()).captured();
    if (!fraction.isEmpty())
        texts[0] += u'.' + fraction;
    texts[0] += offset.match(exif.value(split.zone).toString()).captured();
    return texts;
}

/// Gives XMP the dates anew of which the date, its fraction or its time zone has changed.
void updateXmpDates(Exiv2::XmpData &xmp, const QVariantMap &before, const QVariantMap &after)
{
    for (const SplitDate &split : kSplitDates) {
        const QStringList texts = xmpDate(split, after);
        if (texts == xmpDate(split, before) || texts.isEmpty())
            continue;
        for (const MetadataField &field : metadataFields()) {
            if (field.group != split.dateGroup || field.key != split.date)
                continue;
            const QList<const char *> names = furtherXmpNames(field) + QList{field.xmp};
            for (const char *name : names) {
                if (eraseXmpProperty(xmp, name))
                    addXmp(xmp, name, texts);
            }
        }
    }
}

} // namespace

bool applyPropertyChanges(MetadataSet &set, Exiv2::XmpData &xmp, const QVariantMap &before,
                          const QVariantMap &after)
{
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
                setField(set, xmp, field, newValue);
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
