// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/metadataclearing.h"

#include "imageio/embedded/exif/exifvalues.h"
#include "imageio/embedded/xmp/xmpvocabularies.h"
#include "metadata/metadatafields.h"
#include "metadata/propertykeys.h"

#include <set>

namespace plexa
{

namespace
{

using namespace std::string_view_literals;

/// Does the last name of the property's path contain the word, in any letter case?
bool nameContains(const Exiv2::Xmpdatum &datum, QLatin1StringView word)
{
    const QString key = QString::fromStdString(datum.key());
    return key.mid(key.lastIndexOf(u'.') + 1).contains(word, Qt::CaseInsensitive);
}

bool isOneOf(const std::string &text, std::initializer_list<std::string_view> words)
{
    return std::find(words.begin(), words.end(), text) != words.end();
}

/// Tags for the place of maps and aerial photos (GeoTIFF 1.1 and its forerunners, GDAL).
bool isGeoTiffTag(uint16_t tag)
{
    return tag == 0x830E || (tag >= 0x847E && tag <= 0x8482) || tag == 0x85D8 ||
           (tag >= 0x87AF && tag <= 0x87B1) || tag == 0xA480;
}

/// Location, country, state, city and landmark, which the camera looks up.
bool isPlaceOfPanasonic(const Exiv2::Exifdatum &datum)
{
    const uint16_t tag = datum.tag();
    return datum.groupName() == "Panasonic" &&
           (tag == 0x67 || tag == 0x69 || tag == 0x6B || tag == 0x6D || tag == 0x6F || tag == 0x80);
}

/// Pentax's "location" only selects one of two clocks.
bool isClockOfPentax(const Exiv2::Exifdatum &datum)
{
    return datum.groupName().starts_with("Pentax") && datum.tag() == 0x22;
}

bool isPlaceInMakerNote(const Exiv2::Exifdatum &datum)
{
    const QString name = QString::fromStdString(datum.tagName());
    return isMakerNoteGroup(datum.groupName()) && !isClockOfPentax(datum) &&
           (name.contains(u"Latitude"_qs) || name.contains(u"Longitude"_qs) ||
            name.contains(u"Location"_qs) || datum.key() == "Exif.Nikon3.0x0039" ||
            isPlaceOfPanasonic(datum));
}

/// Drones and scene descriptions have properties of their own.
bool isPlaceInXmp(const Exiv2::Xmpdatum &datum, const XmpNamespaces &namespaces)
{
    for (const auto word : {QLatin1StringView("gps"), QLatin1StringView("latitude"),
                            QLatin1StringView("longitude"), QLatin1StringView("altitude")}) {
        if (nameContains(datum, word))
            return true;
    }
    // The World Wide Web Consortium's vocabulary, and the like.
    const std::string path = QString::fromStdString(datum.tagName()).toLower().toStdString();
    const std::string name = path.substr(path.find_last_of("/:") + 1);
    return isOneOf(name, {"lat"sv, "long"sv, "lon"sv, "lng"sv, "lat_long"sv, "latlong"sv}) ||
           (datum.groupName() == "geo" && name == "alt") || isAbout(XmpTopic::CellTower, datum, namespaces);
}

void clearGps(MetadataSet &set, DecodedXmp &xmp)
{
    eraseOpaqueMakerNote(set.exif);
    eraseMetadataIf(set.exif, [](const Exiv2::Exifdatum &datum) {
        return datum.groupName() == "GPSInfo" || datum.key() == "Exif.Image.GPSTag" ||
               QString::fromStdString(datum.tagName()).contains(u"GPS", Qt::CaseInsensitive) ||
               (datum.groupName() == "Image" && isGeoTiffTag(datum.tag())) || isPlaceInMakerNote(datum);
    });
    eraseMetadataIf(xmp.data,
                    [&](const Exiv2::Xmpdatum &datum) { return isPlaceInXmp(datum, xmp.namespaces); });
}

/// Tags of the main directory for camera and exposure (TIFF/EP, DNG), not for the picture. No copy holds the
/// tags of the color filter array beside 0x828F.
bool isCameraTag(uint16_t tag)
{
    return tag == 0x828F || tag == 0x829A || tag == 0x829D ||
           (tag >= 0x8822 && tag <= 0x8833 && tag != 0x8825) || (tag >= 0x9000 && tag <= 0x9290) ||
           (tag >= 0x9400 && tag <= 0x94FF) || (tag >= 0xA000 && tag <= 0xA47F) ||
           (tag >= 0xA481 && tag <= 0xA4FF) || tag == 0xC4A5 || (tag >= 0xC612 && tag <= 0xC7FF);
}

void clearExif(MetadataSet &set, DecodedXmp &xmp)
{
    eraseMakerNotes(set.exif);
    eraseMetadataIf(set.exif, [](const Exiv2::Exifdatum &datum) {
        const std::string group = datum.groupName();
        return group == "Photo" || group == "Iop" || (group == "Image" && isCameraTag(datum.tag()));
    });
    eraseMetadataIf(xmp.data, [&](const Exiv2::Xmpdatum &datum) {
        const std::string key = datum.key();
        return (key.starts_with("Xmp.exif.") && !nameContains(datum, QLatin1StringView("gps"))) ||
               startsWithAny(key, {"Xmp.exifEX."sv, "Xmp.aux."sv, "Xmp.GCamera."sv, "Xmp.xmp.CreateDate"sv,
                                   "Xmp.MicrosoftPhoto.Camera"sv, "Xmp.MicrosoftPhoto.Lens"sv,
                                   "Xmp.MicrosoftPhoto.Flash"sv}) ||
               nameContains(datum, QLatin1StringView("SerialNumber")) ||
               isAbout(XmpTopic::Exposure, datum, xmp.namespaces);
    });
}

/// Does the TIFF dictionary still have a value, so that its homes are not to be emptied?
bool keepsTiff(const QVariantMap &after, QLatin1StringView key)
{
    return groupDictionary(after, MetadataGroup::Tiff).contains(key);
}

/// Names of camera and program, and the fields of Windows and XMP beside those of the dictionary.
void clearTiff(MetadataSet &set, DecodedXmp &xmp, const QVariantMap &after)
{
    eraseExifFields(set.exif, {"Exif.Image.Software", "Exif.Image.ImageDescription", "Exif.Image.Make",
                               "Exif.Image.Model", "Exif.Image.UniqueCameraModel",
                               "Exif.Image.LocalizedCameraModel", "Exif.Image.ProcessingSoftware",
                               "Exif.Image.XPTitle", "Exif.Image.XPComment", "Exif.Image.XPSubject"});
    for (const std::string_view key : {"Xmp.tiff.Software"sv, "Xmp.tiff.ImageDescription"sv,
                                       "Xmp.tiff.Make"sv, "Xmp.tiff.Model"sv, "Xmp.xmp.CreatorTool"sv})
        eraseXmpProperty(xmp.data, key);
    eraseMetadataIf(xmp.data, [&](const Exiv2::Xmpdatum &datum) {
        return isAbout(XmpTopic::Camera, datum, xmp.namespaces);
    });
    if (!keepsTiff(after, kCGImagePropertyTIFFCopyright)) {
        eraseExifFields(set.exif, {"Exif.Image.Copyright"});
        eraseXmpProperty(xmp.data, "Xmp.tiff.Copyright");
    }
    if (!keepsTiff(after, kCGImagePropertyTIFFArtist)) {
        eraseExifFields(set.exif, {"Exif.Image.Artist", "Exif.Image.XPAuthor"});
        eraseXmpProperty(xmp.data, "Xmp.tiff.Artist");
    }
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

void clearIptc(MetadataSet &set, DecodedXmp &xmp, const QVariantMap &after)
{
    constexpr const char *kCharacterSet = "Iptc.Envelope.CharacterSet";
    std::set<std::string> keptIptc{kCharacterSet};
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
    eraseMetadataIf(set.iptc, [&](const Exiv2::Iptcdatum &datum) { return !keptIptc.contains(datum.key()); });
    eraseMetadataIf(xmp.data, [&](const Exiv2::Xmpdatum &datum) {
        const std::string key = datum.key();
        return (isIptcInXmp(key) || isAbout(XmpTopic::Description, datum, xmp.namespaces)) &&
               !keptXmp.contains(key) && !(keepsRights && isAbout(XmpTopic::Rights, datum, xmp.namespaces));
    });
    const bool isEmpty = std::all_of(set.iptc.begin(), set.iptc.end(), [](const Exiv2::Iptcdatum &datum) {
        return datum.key() == kCharacterSet;
    });
    if (isEmpty)
        set.iptc.clear();
    else
        makeUtf8(set.iptc);
    eraseExifFields(set.exif, {"Exif.Image.XPKeywords", "Exif.Image.XPTitle", "Exif.Image.Rating",
                               "Exif.Image.RatingPercent"});
}

} // namespace

bool startsWithAny(std::string_view text, std::initializer_list<std::string_view> beginnings)
{
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [&](std::string_view beginning) { return text.starts_with(beginning); });
}

void eraseExifFields(Exiv2::ExifData &exif, std::initializer_list<std::string_view> keys)
{
    eraseMetadataIf(exif, [&](const Exiv2::Exifdatum &datum) { return isOneOf(datum.key(), keys); });
}

bool eraseXmpProperty(Exiv2::XmpData &xmp, std::string_view key)
{
    return eraseMetadataIf(xmp, [&](const Exiv2::Xmpdatum &datum) {
        const std::string name = datum.key();
        return name.starts_with(key) &&
               (name.size() == key.size() || "/[?"sv.find(name[key.size()]) != "/[?"sv.npos);
    });
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

size_t makerNoteFields(const Exiv2::ExifData &exif)
{
    return static_cast<size_t>(std::count_if(exif.begin(), exif.end(), [](const Exiv2::Exifdatum &datum) {
        return isMakerNoteGroup(datum.groupName());
    }));
}

void eraseOpaqueMakerNote(Exiv2::ExifData &exif)
{
    if (makerNoteFields(exif) == 0)
        eraseMakerNotes(exif);
}

void clearGroups(MetadataSet &set, DecodedXmp &xmp, ClearedGroups groups, const QVariantMap &after)
{
    if (groups & ClearedGroup::Gps)
        clearGps(set, xmp);
    if (groups & ClearedGroup::Exif)
        clearExif(set, xmp);
    if (groups & ClearedGroup::Iptc)
        clearIptc(set, xmp, after);
    if (groups & ClearedGroup::Tiff)
        clearTiff(set, xmp, after);
}

} // namespace plexa
