// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/metadata/metadatapages.h"

#include "metadata/metadatainput.h"

#include <QCoreApplication>

namespace plexa
{
namespace
{

using enum MetadataProperty;
using enum MetadataControl;

#define TEXT(text) QT_TRANSLATE_NOOP("MetadataPages", text)

QString translated(const char *text)
{
    return QCoreApplication::translate("MetadataPages", text);
}

QVariant pixelSize(const ImageMetadata &metadata)
{
    const QVariant width = metadata.valueForKey(MetadataGroup::Top, kCGImagePropertyPixelWidth);
    const QVariant height = metadata.valueForKey(MetadataGroup::Top, kCGImagePropertyPixelHeight);
    if (!width.isValid() || !height.isValid())
        return {};
    return QStringLiteral("%1 × %2").arg(width.toString(), height.toString());
}

QVariant orientationText(const ImageMetadata &metadata)
{
    static constexpr const char *kTexts[] = {TEXT("upright"),
                                             TEXT("mirrored"),
                                             TEXT("upside down"),
                                             TEXT("upside down, mirrored"),
                                             TEXT("on its left side, mirrored"),
                                             TEXT("on its left side"),
                                             TEXT("on its right side, mirrored"),
                                             TEXT("on its right side")};
    const int orientation = metadata.orientationCorrected();
    return QStringLiteral("%1 (%2)").arg(orientation).arg(translated(kTexts[orientation - 1]));
}

/// A code of TIFF with its meaning, "5 (LZW)"; the code alone where the list lacks it.
QVariant codeWithMeaning(const QVariant &code, std::initializer_list<std::pair<int, QString>> meanings)
{
    if (!code.isValid())
        return {};
    for (const auto &[known, meaning] : meanings) {
        if (code == known)
            return QStringLiteral("%1 (%2)").arg(known).arg(meaning);
    }
    return code;
}

QVariant compression(const ImageMetadata &metadata)
{
    const QString jpeg = QStringLiteral("JPEG");
    const QString fax = QStringLiteral("CCITT");
    const QString deflate = QStringLiteral("Deflate");
    return codeWithMeaning(metadata.tiffCompression(), {{1, translated(TEXT("none"))},
                                                        {2, fax},
                                                        {3, fax},
                                                        {4, fax},
                                                        {5, QStringLiteral("LZW")},
                                                        {6, jpeg},
                                                        {7, jpeg},
                                                        {8, deflate},
                                                        {32773, QStringLiteral("PackBits")},
                                                        {32946, deflate}});
}

QVariant resolutionUnit(const ImageMetadata &metadata)
{
    return codeWithMeaning(
        metadata.tiffResolutionUnit(),
        {{1, translated(TEXT("none"))}, {2, translated(TEXT("inch"))}, {3, translated(TEXT("centimeter"))}});
}

/// None where the file does not say whether it fired; the accessor gives 0 then.
QVariant flash(const ImageMetadata &metadata)
{
    return metadata.exifValueForKey(kCGImagePropertyExifFlash).isValid() ? metadata.exifFlash() : QVariant();
}

QVariant latitude(const ImageMetadata &metadata)
{
    return metadata.gpsLatitudeFull();
}

QVariant longitude(const ImageMetadata &metadata)
{
    return metadata.gpsLongitudeFull();
}

QVariant altitude(const ImageMetadata &metadata)
{
    return metadata.gpsAltitudeString();
}

QVariant direction(const ImageMetadata &metadata)
{
    return metadata.gpsImageDirection();
}

QVariant timeStamp(const ImageMetadata &metadata)
{
    return metadata.gpsTimeStamp();
}

std::vector<MetadataPage> makePages()
{
    return {
        {"General",
         TEXT("General"),
         {{Readout, orientation, pixelSize, TEXT("Size in the file"), "pixelSize"},
          {Readout, orientation, orientationText},
          {Readout, bitDepth},
          {Readout, colorModel},
          {Readout, iccProfileName},
          {Readout, dpiWidth},
          {Readout, dpiHeight},
          {Readout, tiffResolutionUnit, resolutionUnit, TEXT("Unit in the file")},
          {Readout, tiffCompression, compression},
          {Readout, exifDateTimeOriginalStr},
          {Readout, tiffCameraModel},
          {Readout, iptcTitle},
          {Readout, iptcCreator},
          {Readout, iptcCopyright}}},
        {"EXIF",
         TEXT("EXIF"),
         {{Date, exifDateTimeOriginalStr},
          {Line, exifSubsecTimeOriginal},
          {Date, exifDateTimeDigitizedStr},
          {Line, exifSubsecTimeDigitized},
          {Line, exifExposureTime},
          {Line, exifFNumber},
          {Line, exifISOSpeed},
          {Line, exifFocalLength},
          {Line, exifFocalLength35},
          {PopUp, exifFlash, flash},
          {PopUp, exifExposureProgram},
          {Line, exifExposureBias},
          {PopUp, exifMeteringMode},
          {Line, tiffCameraMake},
          {Line, tiffCameraModel},
          {Line, exifCameraSerialNumber},
          {Line, exifLens},
          {Line, exifLensID},
          {Line, exifImageNumber},
          {Line, tiffArtist},
          {Line, tiffCopyright},
          {Line, tiffDescription},
          {Line, tiffSoftware},
          {Text, exifUserComment}}},
        {"IPTC",
         TEXT("IPTC"),
         {{Line, iptcTitle},
          {Line, iptcHeadline},
          {Text, iptcDescription},
          {Line, iptcDescriptionWriter},
          {Keywords, iptcKeywords},
          {Line, iptcCopyright},
          {Line, iptcSublocation},
          {Line, iptcCity},
          {Line, iptcState},
          {Line, iptcCountry}}},
        {"Contact",
         TEXT("Contact"),
         {{Line, iptcCreator},
          {Line, iptcCreatorTitle},
          {Line, iptcCreatorEmail},
          {Line, iptcCreatorWebsite},
          {Line, iptcCreatorPhone},
          {Text, iptcCreatorAddress},
          {Line, iptcCreatorPostalCode},
          {Line, iptcCreatorCity},
          {Line, iptcCreatorState},
          {Line, iptcCreatorCountry}}},
        {"GPS",
         TEXT("GPS"),
         {{Readout, gpsLatitude, latitude},
          {Readout, gpsLongitude, longitude},
          {Readout, gpsAltitude, altitude},
          {Readout, gpsAltitude, direction, TEXT("Image direction"), "gpsImageDirection"},
          {Readout, gpsDateStamp},
          {Readout, gpsDateStamp, timeStamp, TEXT("GPS time"), "gpsTimeStamp"}}},
    };
}

#undef TEXT

} // namespace

QString MetadataPageRow::name() const
{
    return QLatin1StringView(ownName ? ownName : metadataProperty(property).name);
}

QString MetadataPageRow::shownLabel() const
{
    return label ? translated(label)
                 : QCoreApplication::translate("ImageMetadata", metadataProperty(property).label);
}

QVariant MetadataPageRow::value(const ImageMetadata &metadata) const
{
    return reader ? reader(metadata) : metadata.value(property);
}

QString MetadataPageRow::text(const QVariant &value) const
{
    return textOfMetadata(property, value, QLocale());
}

const std::vector<MetadataPage> &metadataPages()
{
    static const std::vector<MetadataPage> pages = makePages();
    return pages;
}

std::vector<MetadataChoice> metadataChoices(MetadataProperty property)
{
    if (property == exifFlash)
        return {{0, translated(QT_TRANSLATE_NOOP("MetadataPages", "did not fire"))},
                {1, translated(QT_TRANSLATE_NOOP("MetadataPages", "fired"))}};
    const bool isProgram = property == exifExposureProgram;
    const std::vector<int> values =
        isProgram ? std::vector{0, 1, 2, 3, 4, 5, 6, 7, 8} : std::vector{0, 1, 2, 3, 4, 5, 6, 255};
    std::vector<MetadataChoice> choices;
    for (const int value : values) {
        ImageMetadata metadata;
        metadata.setValue(property, value);
        choices.push_back(
            {value,
             (isProgram ? metadata.exifExposureProgramStr() : metadata.exifMeteringModeStr()).toString()});
    }
    return choices;
}

} // namespace plexa
