// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/exiftoxmp.h"

#include "imageio/embedded/metadatavalues.h"
#include "imageio/embedded/xmp/xmpreading.h"
#include "imageio/embedded/xmp/xmpwriting.h"
#include "metadata/metadatafields.h"
#include "metadata/propertykeys.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace plexa
{

namespace
{

/// Facts of the source's file, or of how it kept its pixels.
constexpr QLatin1StringView kFactsOfTheFile[] = {
    kCGImagePropertyTIFFXResolution,
    kCGImagePropertyTIFFYResolution,
    kCGImagePropertyTIFFResolutionUnit,
    kCGImagePropertyTIFFOrientation,
    kCGImagePropertyExifComponentsConfiguration,
    kCGImagePropertyExifCompressedBitsPerPixel,
    kCGImagePropertyExifGamma,
    kCGImagePropertyExifFlashPixVersion,
};

bool isOfTheFile(const MetadataField &field)
{
    return std::find(std::begin(kFactsOfTheFile), std::end(kFactsOfTheFile), field.key) !=
           std::end(kFactsOfTheFile);
}

/// TIFF facts that share their property with one of IPTC, and names of their own for them (XMP part 2).
struct OwnName {
    QLatin1StringView key;
    const char *xmp;
};

constexpr OwnName kOwnNames[] = {
    {kCGImagePropertyTIFFImageDescription, "Xmp.tiff.ImageDescription"},
    {kCGImagePropertyTIFFArtist, "Xmp.tiff.Artist"},
    {kCGImagePropertyTIFFCopyright, "Xmp.tiff.Copyright"},
};

const char *homeOf(const MetadataField &field, ClearedGroups cleared)
{
    if (field.group == MetadataGroup::Tiff && (cleared & ClearedGroup::Iptc)) {
        for (const OwnName &own : kOwnNames) {
            if (own.key == field.key)
                return own.xmp;
        }
    }
    return field.xmp;
}

/// "51,10.696862N": degrees, minutes and the letter. Empty when the letter is missing: half a place is none.
QString coordinateText(const QVariant &degrees, const QString &letter)
{
    const double whole = std::abs(degrees.toDouble());
    if (!(whole <= 360) || letter.size() != 1 || !QStringLiteral("NSEW").contains(letter))
        return {};
    // A hundredth of a millimetre on the ground; rounded first, so that there are never sixty minutes.
    const auto units = static_cast<qlonglong>(std::llround(whole * 60e8));
    const auto minutes = static_cast<double>(units % 6'000'000'000) / 1e8;
    return QStringLiteral("%1,%2%3").arg(units / 6'000'000'000).arg(minutes, 0, 'f', 8).arg(letter);
}

struct Coordinate {
    QLatin1StringView degrees;
    QLatin1StringView letter;
};

constexpr Coordinate kCoordinates[] = {
    {kCGImagePropertyGPSLatitude, kCGImagePropertyGPSLatitudeRef},
    {kCGImagePropertyGPSLongitude, kCGImagePropertyGPSLongitudeRef},
    {kCGImagePropertyGPSDestLatitude, kCGImagePropertyGPSDestLatitudeRef},
    {kCGImagePropertyGPSDestLongitude, kCGImagePropertyGPSDestLongitudeRef},
};

/// "2.3.0.0" for [2, 3, 0, 0], which has lost its zeros at the end.
QString gpsVersionText(const QVariant &version)
{
    QStringList parts = xmpTexts(MetadataKind::IntegerList, version);
    while (parts.size() < 4)
        parts += QStringLiteral("0");
    return parts.join(u'.');
}

bool isLensRange(const MetadataField &field)
{
    return field.key == kCGImagePropertyExifLensSpecification || field.key == kCGImagePropertyExifAuxLensInfo;
}

/// Focal lengths and apertures; one that is unknown is 0/0, as in EXIF.
QStringList lensRangeTexts(const QVariant &range)
{
    QStringList texts = xmpTexts(MetadataKind::NumberList, range);
    texts.replaceInStrings(QRegularExpression(QStringLiteral("^0/1$")), QStringLiteral("0/0"));
    return texts;
}

/// What XMP writes in another form than the dictionary; empty when it is none of that, or unknown.
QString formedText(const MetadataField &field, const QVariantMap &properties)
{
    if (const SplitDate *split = splitDateOf(field))
        return xmpDateText(*split, properties);
    const QVariantMap group = groupDictionary(properties, field.group);
    if (field.key == kCGImagePropertyGPSVersion)
        return gpsVersionText(group.value(field.key));
    for (const Coordinate &coordinate : kCoordinates) {
        if (coordinate.degrees == field.key)
            return coordinateText(group.value(field.key), group.value(coordinate.letter).toString());
    }
    return {};
}

void addField(Exiv2::XmpData &xmp, const MetadataField &field, const QVariantMap &properties,
              ClearedGroups cleared)
{
    const QVariant value = groupDictionary(properties, field.group).value(field.key);
    const char *home = homeOf(field, cleared);
    if (!value.isValid() || hasXmpProperty(xmp, home) || xmpField(xmp, field).isValid())
        return;
    const QString text = formedText(field, properties);
    if (!text.isEmpty())
        putXmpTexts(xmp, home, {text});
    else if (isLensRange(field))
        putXmpTexts(xmp, home, lensRangeTexts(value), QStringLiteral(" "));
    else
        putXmpField(xmp, home, field, value);
}

/// XMP has one point in time for the two of EXIF.
void addGpsTime(Exiv2::XmpData &xmp, const QVariantMap &gps)
{
    constexpr const char *kProperty = "Xmp.exif.GPSTimeStamp";
    // Some programs put the whole moment into the field of the date.
    static const QRegularExpression day(QStringLiteral("^[0-9]{4}:[0-9]{2}:[0-9]{2}(?= |$)"));
    static const QRegularExpression clock(QStringLiteral("^([0-9]{2}:[0-9]{2}:[0-9]{2})(\\.[0-9]+)?$"));
    const auto date = day.match(gps.value(kCGImagePropertyGPSDateStamp).toString());
    const auto time = clock.match(gps.value(kCGImagePropertyGPSTimeStamp).toString());
    if (!date.hasMatch() || !time.hasMatch() || hasXmpProperty(xmp, kProperty))
        return;
    const QStringList texts =
        xmpTexts(MetadataKind::DateTime, QString(date.captured() + u' ' + time.captured(1)));
    if (!texts.isEmpty())
        putXmpTexts(xmp, kProperty, {texts.constFirst() + time.captured(2) + u'Z'});
}

/// The second names by which most programs know these facts.
void addBasicProperties(Exiv2::XmpData &xmp, const QVariantMap &properties)
{
    const auto add = [&xmp](const char *name, const QString &text) {
        if (!text.isEmpty() && !hasXmpProperty(xmp, name))
            putXmpTexts(xmp, name, {text});
    };
    add("Xmp.xmp.CreatorTool",
        groupDictionary(properties, MetadataGroup::Tiff).value(kCGImagePropertyTIFFSoftware).toString());
    for (const MetadataField &field : metadataFields()) {
        if (field.group == MetadataGroup::Exif && field.key == kCGImagePropertyExifDateTimeDigitized)
            add("Xmp.xmp.CreateDate", formedText(field, properties));
    }
}

} // namespace

void addExifToXmp(Exiv2::XmpData &xmp, const QVariantMap &properties, ClearedGroups cleared)
{
    const auto attempt = [](const auto &add) {
        try {
            add();
        } catch (const std::exception &) {
            // A value that the library refuses is left out; the other fields are not its fault.
        }
    };
    for (const MetadataField &field : metadataFields()) {
        const bool isOfExif = field.group != MetadataGroup::Iptc && field.group != MetadataGroup::Contact;
        if (isOfExif && field.xmp && !isOfTheFile(field))
            attempt([&] { addField(xmp, field, properties, cleared); });
    }
    attempt([&] { addGpsTime(xmp, groupDictionary(properties, MetadataGroup::Gps)); });
    attempt([&] { addBasicProperties(xmp, properties); });
}

} // namespace plexa
