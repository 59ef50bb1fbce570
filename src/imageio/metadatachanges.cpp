// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/metadatachanges.h"

#include "imageio/exifvalues.h"
#include "imageio/metadataclearing.h"
#include "imageio/metadatafields.h"
#include "imageio/metadatatext.h"
#include "imageio/metadatavalues.h"
#include "imageio/propertykeys.h"
#include "imageio/propertyvalues.h"

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
    if (failed == 0)
        exif[field.exif].setValue(stored.get());
}

/// Windows keeps texts of its own beside three of EXIF's.
void eraseWindowsTexts(Exiv2::ExifData &exif, const MetadataField &field)
{
    const auto erase = [&exif](std::initializer_list<const char *> keys) {
        for (const char *key : keys)
            eraseMetadataIf(exif, [key](const Exiv2::Exifdatum &datum) { return datum.key() == key; });
    };
    if (field.key == kCGImagePropertyTIFFImageDescription)
        erase({"Exif.Image.XPTitle", "Exif.Image.XPComment", "Exif.Image.XPSubject"});
    else if (field.key == kCGImagePropertyTIFFArtist)
        erase({"Exif.Image.XPAuthor"});
    else if (field.key == kCGImagePropertyIPTCKeywords)
        erase({"Exif.Image.XPKeywords"});
}

/// A serial number or lens that is to be unknown must not be found in the maker notes either.
void eraseMakerNoteSource(Exiv2::ExifData &exif, const MetadataField &field)
{
    if (field.group != MetadataGroup::ExifAux)
        return;
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
    if (field.key == kCGImagePropertyExifAuxSerialNumber)
        eraseAll(Exiv2::serialNumber);
    else if (field.key == kCGImagePropertyExifAuxLensModel)
        eraseAll(Exiv2::lensName);
    else if (field.key == kCGImagePropertyExifAuxLensID)
        eraseMetadataIf(exif,
                        [](const Exiv2::Exifdatum &datum) { return datum.key() == "Exif.CanonCs.LensType"; });
}

void eraseExif(Exiv2::ExifData &exif, const MetadataField &field)
{
    const Exiv2::ExifKey key(field.exif);
    const bool isAlsoInMainDirectory = field.group == MetadataGroup::Exif;
    eraseMetadataIf(exif, [&](const Exiv2::Exifdatum &datum) {
        return datum.tag() == key.tag() && (datum.groupName() == key.groupName() ||
                                            (isAlsoInMainDirectory && datum.groupName() == "Image"));
    });
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

void setXmp(Exiv2::XmpData &xmp, const MetadataField &field, const QVariant &value)
{
    const bool wasPresent = eraseXmpProperty(xmp, field.xmp);
    const bool hasOtherHome = field.exif || (field.iptc && fitsIptc(field, value));
    const QStringList texts = xmpTexts(field.kind, value);
    if (texts.isEmpty() || (!wasPresent && hasOtherHome))
        return;
    const Exiv2::XmpKey key(field.xmp);
    if (field.group == MetadataGroup::Contact && xmp.findKey(Exiv2::XmpKey(kContactProperty)) == xmp.end()) {
        Exiv2::XmpTextValue contact;
        contact.setXmpStruct(Exiv2::XmpValue::xsStruct);
        xmp.add(Exiv2::XmpKey(kContactProperty), &contact);
    }
    const Exiv2::TypeId type = Exiv2::XmpProperties::propertyType(key);
    const ValuePointer stored = newValue(type == Exiv2::invalidTypeId ? Exiv2::xmpText : type);
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

/// Does another field of the new dictionary still need this XMP property?
bool isNeeded(const char *xmpKey, const MetadataField &removed, const QVariantMap &after)
{
    const auto fields = metadataFields();
    return std::any_of(fields.begin(), fields.end(), [&](const MetadataField &field) {
        return field.xmp && &field != &removed && qstrcmp(field.xmp, xmpKey) == 0 &&
               groupDictionary(after, field.group).contains(field.key);
    });
}

void removeField(MetadataSet &set, Exiv2::XmpData &xmp, const MetadataField &field, const QVariantMap &after)
{
    if (field.exif)
        eraseExif(set.exif, field);
    eraseMakerNoteSource(set.exif, field);
    if (field.iptc)
        eraseMetadataIf(set.iptc, [&](const Exiv2::Iptcdatum &datum) { return datum.key() == field.iptc; });
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
    if (field.xmp)
        setXmp(xmp, field, value);
}

} // namespace

void applyPropertyChanges(MetadataSet &set, Exiv2::XmpData &xmp, const QVariantMap &before,
                          const QVariantMap &after)
{
    clearEmptiedGroups(set, xmp, before, after);
    bool hasChangedIptc = false;
    for (const MetadataField &field : metadataFields()) {
        const QVariant oldValue = groupDictionary(before, field.group).value(field.key);
        const QVariant newValue = groupDictionary(after, field.group).value(field.key);
        if (belongsToEncoder(field) || samePropertyValue(oldValue, newValue))
            continue;
        try {
            eraseWindowsTexts(set.exif, field);
            if (newValue.isValid())
                setField(set, xmp, field, newValue);
            else
                removeField(set, xmp, field, after);
        } catch (const std::exception &) {
            // A value that the library refuses is left out; the other fields are not its fault.
        }
        hasChangedIptc = hasChangedIptc || field.iptc;
    }
    // A digest of the old record would make other programs distrust the new one.
    if (hasChangedIptc)
        eraseXmpProperty(xmp, "Xmp.photoshop.LegacyIPTCDigest");
}

} // namespace plexa
