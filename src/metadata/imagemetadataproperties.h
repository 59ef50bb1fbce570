// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/metadatafields.h"
#include "metadata/propertykeys.h"

#include <QtGlobal>

#include <optional>
#include <span>

namespace plexa
{

/// How an accessor of ImageMetadata reads and stores the value of its key.
enum class MetadataForm {
    Plain,
    First,       ///< reads the first element of an array, stores an array of one
    FirstOfText, ///< reads the first element of an array, stores the value itself
    Orientation, ///< stores 1 for anything but 1..8
    Resolution,  ///< pixels per inch: stores 72 for anything not above 0, and sets TIFF's unit to inches
    Quality,     ///< stores 80 for a value that is missing or has a whole part outside 0..100
    Flash,       ///< bit 0: 1 when the flash fired; the other bits of the stored value are kept
    ReadOnly,
};

// clang-format off

/// The table of the facts that people see or edit:
/// getter, setter, form, kind, group, key, label for people, may people edit it.
/// From this table the accessors of ImageMetadata, MetadataProperty and metadataProperties() are made.
#define PLEXA_METADATA_PROPERTIES(P) \
    P(orientation, setOrientation, Orientation, Integer, Top, kCGImagePropertyOrientation, QT_TRANSLATE_NOOP("ImageMetadata", "Orientation"), false) \
    P(dpiWidth, setDpiWidth, Resolution, Number, Top, kCGImagePropertyDPIWidth, QT_TRANSLATE_NOOP("ImageMetadata", "Horizontal resolution"), false) \
    P(dpiHeight, setDpiHeight, Resolution, Number, Top, kCGImagePropertyDPIHeight, QT_TRANSLATE_NOOP("ImageMetadata", "Vertical resolution"), false) \
    P(compressionQuality, setCompressionQuality, Quality, Number, Top, kCGImageDestinationLossyCompressionQuality, QT_TRANSLATE_NOOP("ImageMetadata", "Quality"), false) \
    P(bitDepth, setBitDepth, Plain, Integer, Top, kCGImagePropertyDepth, QT_TRANSLATE_NOOP("ImageMetadata", "Bit depth"), false) \
    P(colorModel, setColorModel, Plain, Text, Top, kCGImagePropertyColorModel, QT_TRANSLATE_NOOP("ImageMetadata", "Color model"), false) \
    P(iccProfileName, setIccProfileName, Plain, Text, Top, kCGImagePropertyProfileName, QT_TRANSLATE_NOOP("ImageMetadata", "ICC profile"), false) \
    P(exifDateTimeOriginalStr, setExifDateTimeOriginalStr, Plain, DateTime, Exif, kCGImagePropertyExifDateTimeOriginal, QT_TRANSLATE_NOOP("ImageMetadata", "Date taken"), true) \
    P(exifDateTimeDigitizedStr, setExifDateTimeDigitizedStr, Plain, DateTime, Exif, kCGImagePropertyExifDateTimeDigitized, QT_TRANSLATE_NOOP("ImageMetadata", "Date digitized"), true) \
    P(exifSubsecTimeOriginal, setExifSubsecTimeOriginal, Plain, Text, Exif, kCGImagePropertyExifSubsecTimeOrginal, QT_TRANSLATE_NOOP("ImageMetadata", "Subseconds taken"), true) \
    P(exifSubsecTimeDigitized, setExifSubsecTimeDigitized, Plain, Text, Exif, kCGImagePropertyExifSubsecTimeDigitized, QT_TRANSLATE_NOOP("ImageMetadata", "Subseconds digitized"), true) \
    P(exifExposureTime, setExifExposureTime, Plain, Number, Exif, kCGImagePropertyExifExposureTime, QT_TRANSLATE_NOOP("ImageMetadata", "Exposure time"), true) \
    P(exifFNumber, setExifFNumber, Plain, Number, Exif, kCGImagePropertyExifFNumber, QT_TRANSLATE_NOOP("ImageMetadata", "F-number"), true) \
    P(exifISOSpeed, setExifISOSpeed, First, IntegerList, Exif, kCGImagePropertyExifISOSpeedRatings, QT_TRANSLATE_NOOP("ImageMetadata", "ISO speed"), true) \
    P(exifFocalLength, setExifFocalLength, Plain, Number, Exif, kCGImagePropertyExifFocalLength, QT_TRANSLATE_NOOP("ImageMetadata", "Focal length"), true) \
    P(exifFocalLength35, setExifFocalLength35, Plain, Integer, Exif, kCGImagePropertyExifFocalLenIn35mmFilm, QT_TRANSLATE_NOOP("ImageMetadata", "Focal length (35 mm)"), true) \
    P(exifFlash, setExifFlash, Flash, Integer, Exif, kCGImagePropertyExifFlash, QT_TRANSLATE_NOOP("ImageMetadata", "Flash"), true) \
    P(exifExposureProgram, setExifExposureProgram, Plain, Integer, Exif, kCGImagePropertyExifExposureProgram, QT_TRANSLATE_NOOP("ImageMetadata", "Exposure program"), true) \
    P(exifExposureBias, setExifExposureBias, Plain, Number, Exif, kCGImagePropertyExifExposureBiasValue, QT_TRANSLATE_NOOP("ImageMetadata", "Exposure bias"), true) \
    P(exifMeteringMode, setExifMeteringMode, Plain, Integer, Exif, kCGImagePropertyExifMeteringMode, QT_TRANSLATE_NOOP("ImageMetadata", "Metering mode"), true) \
    P(exifUserComment, setExifUserComment, Plain, Comment, Exif, kCGImagePropertyExifUserComment, QT_TRANSLATE_NOOP("ImageMetadata", "User comment"), true) \
    P(exifLens, setExifLens, Plain, Text, ExifAux, kCGImagePropertyExifAuxLensModel, QT_TRANSLATE_NOOP("ImageMetadata", "Lens"), true) \
    P(exifLensID, setExifLensID, Plain, Integer, ExifAux, kCGImagePropertyExifAuxLensID, QT_TRANSLATE_NOOP("ImageMetadata", "Lens ID"), true) \
    P(exifCameraSerialNumber, setExifCameraSerialNumber, Plain, Text, ExifAux, kCGImagePropertyExifAuxSerialNumber, QT_TRANSLATE_NOOP("ImageMetadata", "Camera serial number"), true) \
    P(exifImageNumber, setExifImageNumber, Plain, Integer, ExifAux, kCGImagePropertyExifAuxImageNumber, QT_TRANSLATE_NOOP("ImageMetadata", "Image number"), true) \
    P(iptcHeadline, setIptcHeadline, Plain, Text, Iptc, kCGImagePropertyIPTCHeadline, QT_TRANSLATE_NOOP("ImageMetadata", "Headline"), true) \
    P(iptcTitle, setIptcTitle, Plain, Text, Iptc, kCGImagePropertyIPTCObjectName, QT_TRANSLATE_NOOP("ImageMetadata", "Title"), true) \
    P(iptcDescription, setIptcDescription, Plain, Text, Iptc, kCGImagePropertyIPTCCaptionAbstract, QT_TRANSLATE_NOOP("ImageMetadata", "Description"), true) \
    P(iptcKeywords, setIptcKeywords, Plain, TextList, Iptc, kCGImagePropertyIPTCKeywords, QT_TRANSLATE_NOOP("ImageMetadata", "Keywords"), true) \
    P(iptcCopyright, setIptcCopyright, Plain, Text, Iptc, kCGImagePropertyIPTCCopyrightNotice, QT_TRANSLATE_NOOP("ImageMetadata", "Copyright"), true) \
    P(iptcDescriptionWriter, setIptcDescriptionWriter, First, TextList, Iptc, kCGImagePropertyIPTCWriterEditor, QT_TRANSLATE_NOOP("ImageMetadata", "Description writer"), true) \
    P(iptcSublocation, setIptcSublocation, Plain, Text, Iptc, kCGImagePropertyIPTCSubLocation, QT_TRANSLATE_NOOP("ImageMetadata", "Sublocation"), true) \
    P(iptcCountry, setIptcCountry, Plain, Text, Iptc, kCGImagePropertyIPTCCountryPrimaryLocationName, QT_TRANSLATE_NOOP("ImageMetadata", "Country"), true) \
    P(iptcState, setIptcState, Plain, Text, Iptc, kCGImagePropertyIPTCProvinceState, QT_TRANSLATE_NOOP("ImageMetadata", "State"), true) \
    P(iptcCity, setIptcCity, Plain, Text, Iptc, kCGImagePropertyIPTCCity, QT_TRANSLATE_NOOP("ImageMetadata", "City"), true) \
    P(iptcCreator, setIptcCreator, First, TextList, Iptc, kCGImagePropertyIPTCByline, QT_TRANSLATE_NOOP("ImageMetadata", "Creator"), true) \
    P(iptcCreatorTitle, setIptcCreatorTitle, First, TextList, Iptc, kCGImagePropertyIPTCBylineTitle, QT_TRANSLATE_NOOP("ImageMetadata", "Creator's title"), true) \
    P(iptcCreatorEmail, setIptcCreatorEmail, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoEmails, QT_TRANSLATE_NOOP("ImageMetadata", "Creator's e-mail"), true) \
    P(iptcCreatorWebsite, setIptcCreatorWebsite, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoWebURLs, QT_TRANSLATE_NOOP("ImageMetadata", "Creator's website"), true) \
    P(iptcCreatorPhone, setIptcCreatorPhone, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoPhones, QT_TRANSLATE_NOOP("ImageMetadata", "Creator's phone"), true) \
    P(iptcCreatorCountry, setIptcCreatorCountry, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoCountry, QT_TRANSLATE_NOOP("ImageMetadata", "Creator's country"), true) \
    P(iptcCreatorState, setIptcCreatorState, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoStateProvince, QT_TRANSLATE_NOOP("ImageMetadata", "Creator's state"), true) \
    P(iptcCreatorCity, setIptcCreatorCity, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoCity, QT_TRANSLATE_NOOP("ImageMetadata", "Creator's city"), true) \
    P(iptcCreatorPostalCode, setIptcCreatorPostalCode, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoPostalCode, QT_TRANSLATE_NOOP("ImageMetadata", "Creator's postal code"), true) \
    P(iptcCreatorAddress, setIptcCreatorAddress, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoAddress, QT_TRANSLATE_NOOP("ImageMetadata", "Creator's address"), true) \
    P(tiffSoftware, setTiffSoftware, Plain, Text, Tiff, kCGImagePropertyTIFFSoftware, QT_TRANSLATE_NOOP("ImageMetadata", "Software"), true) \
    P(tiffCopyright, setTiffCopyright, Plain, Copyright, Tiff, kCGImagePropertyTIFFCopyright, QT_TRANSLATE_NOOP("ImageMetadata", "Copyright"), true) \
    P(tiffArtist, setTiffArtist, FirstOfText, Text, Tiff, kCGImagePropertyTIFFArtist, QT_TRANSLATE_NOOP("ImageMetadata", "Artist"), true) \
    P(tiffDescription, setTiffDescription, Plain, Text, Tiff, kCGImagePropertyTIFFImageDescription, QT_TRANSLATE_NOOP("ImageMetadata", "Description"), true) \
    P(tiffCompression, setTiffCompression, Plain, Integer, Tiff, kCGImagePropertyTIFFCompression, QT_TRANSLATE_NOOP("ImageMetadata", "Compression"), false) \
    P(tiffOrientation, setTiffOrientation, Orientation, Integer, Tiff, kCGImagePropertyTIFFOrientation, QT_TRANSLATE_NOOP("ImageMetadata", "Orientation"), false) \
    P(tiffCameraMake, setTiffCameraMake, Plain, Text, Tiff, kCGImagePropertyTIFFMake, QT_TRANSLATE_NOOP("ImageMetadata", "Camera make"), true) \
    P(tiffCameraModel, setTiffCameraModel, Plain, Text, Tiff, kCGImagePropertyTIFFModel, QT_TRANSLATE_NOOP("ImageMetadata", "Camera model"), true) \
    P(tiffXResolution, setTiffXResolution, Resolution, Number, Tiff, kCGImagePropertyTIFFXResolution, QT_TRANSLATE_NOOP("ImageMetadata", "Horizontal resolution"), false) \
    P(tiffYResolution, setTiffYResolution, Resolution, Number, Tiff, kCGImagePropertyTIFFYResolution, QT_TRANSLATE_NOOP("ImageMetadata", "Vertical resolution"), false) \
    P(tiffResolutionUnit, setTiffResolutionUnit, Plain, Integer, Tiff, kCGImagePropertyTIFFResolutionUnit, QT_TRANSLATE_NOOP("ImageMetadata", "Resolution unit"), false) \
    P(gpsLatitude, setGpsLatitude, ReadOnly, Degrees, Gps, kCGImagePropertyGPSLatitude, QT_TRANSLATE_NOOP("ImageMetadata", "Latitude"), false) \
    P(gpsLatitudeRef, setGpsLatitudeRef, ReadOnly, Text, Gps, kCGImagePropertyGPSLatitudeRef, QT_TRANSLATE_NOOP("ImageMetadata", "Latitude reference"), false) \
    P(gpsLongitude, setGpsLongitude, ReadOnly, Degrees, Gps, kCGImagePropertyGPSLongitude, QT_TRANSLATE_NOOP("ImageMetadata", "Longitude"), false) \
    P(gpsLongitudeRef, setGpsLongitudeRef, ReadOnly, Text, Gps, kCGImagePropertyGPSLongitudeRef, QT_TRANSLATE_NOOP("ImageMetadata", "Longitude reference"), false) \
    P(gpsAltitude, setGpsAltitude, ReadOnly, Number, Gps, kCGImagePropertyGPSAltitude, QT_TRANSLATE_NOOP("ImageMetadata", "Altitude"), false) \
    P(gpsDateStamp, setGpsDateStamp, ReadOnly, Text, Gps, kCGImagePropertyGPSDateStamp, QT_TRANSLATE_NOOP("ImageMetadata", "GPS date"), false)

// clang-format on

/// One row of the table, named as its getter.
enum class MetadataProperty {
#define PLEXA_NAME(getter, ...) getter,
    PLEXA_METADATA_PROPERTIES(PLEXA_NAME)
#undef PLEXA_NAME
};

struct MetadataPropertyRow {
    const char *name;  ///< "iptcCity"
    const char *label; ///< "City", to be translated in the context "ImageMetadata"
    MetadataForm form;
    MetadataKind kind;
    MetadataGroup group;
    QLatin1StringView key;
    bool isEditable; ///< by people; the program sets the others, or the file alone has them
};

/// All rows in the order of MetadataProperty.
std::span<const MetadataPropertyRow> metadataProperties();

const MetadataPropertyRow &metadataProperty(MetadataProperty property);

/// The property that holds the same fact in another dictionary; both are kept equal.
std::optional<MetadataProperty> twinOf(MetadataProperty property);

} // namespace plexa
