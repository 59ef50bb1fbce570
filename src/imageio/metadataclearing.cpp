// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/metadataclearing.h"

#include "imageio/metadatafields.h"
#include "imageio/propertykeys.h"

#include <QStringList>

#include <set>

namespace plexa
{

namespace
{

using namespace std::string_view_literals;

bool startsWithAny(const std::string &text, std::initializer_list<std::string_view> beginnings)
{
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [&](std::string_view beginning) { return text.starts_with(beginning); });
}

/// Does the last name of the property's path contain the word, in any letter case?
bool nameContains(const Exiv2::Xmpdatum &datum, QLatin1StringView word)
{
    const QString key = QString::fromStdString(datum.key());
    return key.mid(key.lastIndexOf(u'.') + 1).contains(word, Qt::CaseInsensitive);
}

void clearGps(MetadataSet &set, Exiv2::XmpData &xmp)
{
    eraseMetadataIf(set.exif, [](const Exiv2::Exifdatum &datum) {
        return datum.groupName() == "GPSInfo" || datum.key() == "Exif.Image.GPSTag" ||
               QString::fromStdString(datum.tagName()).contains(u"GPS", Qt::CaseInsensitive);
    });
    // Drones and scene descriptions have properties of their own.
    eraseMetadataIf(xmp, [](const Exiv2::Xmpdatum &datum) {
        return nameContains(datum, QLatin1StringView("gps")) ||
               nameContains(datum, QLatin1StringView("latitude")) ||
               nameContains(datum, QLatin1StringView("longitude")) ||
               nameContains(datum, QLatin1StringView("altitude"));
    });
}

/// Tags of the main directory that speak of the camera or the exposure (TIFF/EP, DNG), not of the picture.
bool isCameraTag(uint16_t tag)
{
    return (tag >= 0x828D && tag <= 0x8290) || tag == 0x829A || tag == 0x829D ||
           (tag >= 0x8822 && tag <= 0x8833 && tag != 0x8825) || (tag >= 0x9000 && tag <= 0x9290) ||
           (tag >= 0xA000 && tag <= 0xA4FF) || (tag >= 0xC612 && tag <= 0xC7FF);
}

void clearExif(MetadataSet &set, Exiv2::XmpData &xmp)
{
    eraseMakerNotes(set.exif);
    eraseMetadataIf(set.exif, [](const Exiv2::Exifdatum &datum) {
        const std::string group = datum.groupName();
        return group == "Photo" || group == "Iop" || (group == "Image" && isCameraTag(datum.tag()));
    });
    eraseMetadataIf(xmp, [](const Exiv2::Xmpdatum &datum) {
        const std::string key = datum.key();
        return (key.starts_with("Xmp.exif.") && !nameContains(datum, QLatin1StringView("gps"))) ||
               startsWithAny(key,
                             {"Xmp.exifEX."sv, "Xmp.aux."sv, "Xmp.GCamera."sv, "Xmp.xmp.CreateDate"sv}) ||
               nameContains(datum, QLatin1StringView("SerialNumber"));
    });
}

/// What XMP stores for IPTC Core and Extension, and the keyword lists of photo managers.
bool isIptcInXmp(const std::string &key)
{
    if (startsWithAny(key,
                      {"Xmp.photoshop.ICCProfile"sv, "Xmp.photoshop.ColorMode"sv, "Xmp.photoshop.History"sv,
                       "Xmp.photoshop.DocumentAncestors"sv, "Xmp.photoshop.SidecarForExtension"sv,
                       "Xmp.photoshop.TextLayers"sv, "Xmp.dc.format"sv}))
        return false;
    return startsWithAny(key, {"Xmp.photoshop."sv, "Xmp.dc."sv, "Xmp.iptc."sv, "Xmp.iptcExt."sv,
                               "Xmp.xmpRights."sv, "Xmp.plus."sv, "Xmp.lr."sv, "Xmp.digiKam."sv,
                               "Xmp.MicrosoftPhoto."sv, "Xmp.acdsee."sv, "Xmp.mediapro."sv,
                               "Xmp.expressionmedia."sv, "Xmp.xmp.Rating"sv, "Xmp.xmp.Label"sv});
}

void clearIptc(MetadataSet &set, Exiv2::XmpData &xmp, const QVariantMap &after)
{
    std::set<std::string> keptIptc;
    std::set<std::string> keptXmp;
    for (const MetadataField &field : metadataFields()) {
        const bool isIptc = field.group == MetadataGroup::Iptc || field.group == MetadataGroup::Contact;
        if (!isIptc || !groupDictionary(after, field.group).contains(field.key))
            continue;
        if (field.iptc)
            keptIptc.insert(field.iptc);
        if (field.xmp)
            keptXmp.insert(field.xmp);
        if (field.group == MetadataGroup::Contact)
            keptXmp.insert("Xmp.iptc.CreatorContactInfo");
    }
    const bool keepsRights =
        groupDictionary(after, MetadataGroup::Iptc).contains(kCGImagePropertyIPTCCopyrightNotice);
    eraseMetadataIf(set.iptc, [&](const Exiv2::Iptcdatum &datum) {
        return datum.record() != Exiv2::IptcDataSets::envelope && !keptIptc.contains(datum.key());
    });
    eraseMetadataIf(xmp, [&](const Exiv2::Xmpdatum &datum) {
        const std::string key = datum.key();
        return isIptcInXmp(key) && !keptXmp.contains(key) &&
               !(keepsRights && key.starts_with("Xmp.xmpRights."));
    });
    const bool onlyEnvelope =
        std::all_of(set.iptc.begin(), set.iptc.end(), [](const Exiv2::Iptcdatum &datum) {
            return datum.record() == Exiv2::IptcDataSets::envelope;
        });
    if (onlyEnvelope)
        set.iptc.clear();
    eraseMetadataIf(set.exif, [](const Exiv2::Exifdatum &datum) {
        return datum.key() == "Exif.Image.XPKeywords" || datum.key() == "Exif.Image.Rating" ||
               datum.key() == "Exif.Image.RatingPercent";
    });
}

/// Facts of the IPTC dictionary that a clearing may keep.
QStringList keepableIptcKeys()
{
    return {kCGImagePropertyIPTCCopyrightNotice, kCGImagePropertyIPTCByline, kCGImagePropertyIPTCBylineTitle,
            kCGImagePropertyIPTCCreatorContactInfo};
}

bool hasBeenCleared(QVariantMap before, QVariantMap after)
{
    return !before.isEmpty() && after.isEmpty();
}

bool iptcHasBeenCleared(QVariantMap before, QVariantMap after)
{
    const auto withoutEmptyContact = [](QVariantMap &iptc) {
        if (iptc.value(kCGImagePropertyIPTCCreatorContactInfo).toMap().isEmpty())
            iptc.remove(kCGImagePropertyIPTCCreatorContactInfo);
    };
    withoutEmptyContact(before);
    withoutEmptyContact(after);
    if (before.keys() == after.keys())
        return false;
    for (const QString &key : keepableIptcKeys())
        after.remove(key);
    return after.isEmpty();
}

} // namespace

bool isIptcCleared(const QVariantMap &before, const QVariantMap &after)
{
    return iptcHasBeenCleared(groupDictionary(before, MetadataGroup::Iptc),
                              groupDictionary(after, MetadataGroup::Iptc));
}

bool eraseXmpProperty(Exiv2::XmpData &xmp, std::string_view key)
{
    bool found = false;
    eraseMetadataIf(xmp, [&](const Exiv2::Xmpdatum &datum) {
        const std::string name = datum.key();
        const bool isMeant = name.starts_with(key) &&
                             (name.size() == key.size() || "/[?"sv.find(name[key.size()]) != "/[?"sv.npos);
        found = found || isMeant;
        return isMeant;
    });
    return found;
}

bool isMakerNoteGroup(const std::string &groupName)
{
    return groupName == "MakerNote" || Exiv2::ExifTags::isMakerGroup(groupName);
}

void eraseMakerNotes(Exiv2::ExifData &exif)
{
    eraseMetadataIf(exif, [](const Exiv2::Exifdatum &datum) {
        return isMakerNoteGroup(datum.groupName()) || datum.key() == "Exif.Photo.MakerNote";
    });
}

void clearEmptiedGroups(MetadataSet &set, Exiv2::XmpData &xmp, const QVariantMap &before,
                        const QVariantMap &after)
{
    const auto isCleared = [&](MetadataGroup group) {
        return hasBeenCleared(groupDictionary(before, group), groupDictionary(after, group));
    };
    if (isCleared(MetadataGroup::Gps))
        clearGps(set, xmp);
    if (isCleared(MetadataGroup::Exif))
        clearExif(set, xmp);
    if (isIptcCleared(before, after))
        clearIptc(set, xmp, after);
}

} // namespace plexa
