// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/metadatafields.h"
#include "metadata/propertykeys.h"

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
    P(orientation, setOrientation, Orientation, Integer, Top, kCGImagePropertyOrientation, "Orientation", false) \
    P(dpiWidth, setDpiWidth, Resolution, Number, Top, kCGImagePropertyDPIWidth, "Horizontal resolution", false) \
    P(dpiHeight, setDpiHeight, Resolution, Number, Top, kCGImagePropertyDPIHeight, "Vertical resolution", false) \
    P(compressionQuality, setCompressionQuality, Quality, Number, Top, kCGImageDestinationLossyCompressionQuality, "Quality", false) \
    P(bitDepth, setBitDepth, Plain, Integer, Top, kCGImagePropertyDepth, "Bit depth", false) \
    P(colorModel, setColorModel, Plain, Text, Top, kCGImagePropertyColorModel, "Color model", false) \
    P(iccProfileName, setIccProfileName, Plain, Text, Top, kCGImagePropertyProfileName, "ICC profile", false) \
    P(exifDateTimeOriginalStr, setExifDateTimeOriginalStr, Plain, DateTime, Exif, kCGImagePropertyExifDateTimeOriginal, "Date taken", true) \
    P(exifDateTimeDigitizedStr, setExifDateTimeDigitizedStr, Plain, DateTime, Exif, kCGImagePropertyExifDateTimeDigitized, "Date digitized", true) \
    P(exifSubsecTimeOriginal, setExifSubsecTimeOriginal, Plain, Text, Exif, kCGImagePropertyExifSubsecTimeOrginal, "Subseconds taken", true) \
    P(exifSubsecTimeDigitized, setExifSubsecTimeDigitized, Plain, Text, Exif, kCGImagePropertyExifSubsecTimeDigitized, "Subseconds digitized", true) \
    P(exifExposureTime, setExifExposureTime, Plain, Number, Exif, kCGImagePropertyExifExposureTime, "Exposure time", true) \
    P(exifFNumber, setExifFNumber, Plain, Number, Exif, kCGImagePropertyExifFNumber, "F-number", true) \
    P(exifISOSpeed, setExifISOSpeed, First, IntegerList, Exif, kCGImagePropertyExifISOSpeedRatings, "ISO speed", true) \
    P(exifFocalLength, setExifFocalLength, Plain, Number, Exif, kCGImagePropertyExifFocalLength, "Focal length", true) \
    P(exifFocalLength35, setExifFocalLength35, Plain, Integer, Exif, kCGImagePropertyExifFocalLenIn35mmFilm, "Focal length (35 mm)", true) \
    P(exifFlash, setExifFlash, Flash, Integer, Exif, kCGImagePropertyExifFlash, "Flash", true) \
    P(exifExposureProgram, setExifExposureProgram, Plain, Integer, Exif, kCGImagePropertyExifExposureProgram, "Exposure program", true) \
    P(exifExposureBias, setExifExposureBias, Plain, Number, Exif, kCGImagePropertyExifExposureBiasValue, "Exposure bias", true) \
    P(exifMeteringMode, setExifMeteringMode, Plain, Integer, Exif, kCGImagePropertyExifMeteringMode, "Metering mode", true) \
    P(exifUserComment, setExifUserComment, Plain, Comment, Exif, kCGImagePropertyExifUserComment, "User comment", true) \
    P(exifLens, setExifLens, Plain, Text, ExifAux, kCGImagePropertyExifAuxLensModel, "Lens", true) \
    P(exifLensID, setExifLensID, Plain, Integer, ExifAux, kCGImagePropertyExifAuxLensID, "Lens ID", true) \
    P(exifCameraSerialNumber, setExifCameraSerialNumber, Plain, Text, ExifAux, kCGImagePropertyExifAuxSerialNumber, "Camera serial number", true) \
    P(exifImageNumber, setExifImageNumber, Plain, Integer, ExifAux, kCGImagePropertyExifAuxImageNumber, "Image number", true) \
    P(iptcHeadline, setIptcHeadline, Plain, Text, Iptc, kCGImagePropertyIPTCHeadline, "Headline", true) \
    P(iptcTitle, setIptcTitle, Plain, Text, Iptc, kCGImagePropertyIPTCObjectName, "Title", true) \
    P(iptcDescription, setIptcDescription, Plain, Text, Iptc, kCGImagePropertyIPTCCaptionAbstract, "Description", true) \
    P(iptcCopyright, setIptcCopyright, Plain, Text, Iptc, kCGImagePropertyIPTCCopyrightNotice, "Copyright", true) \
    P(iptcDescriptionWriter, setIptcDescriptionWriter, First, TextList, Iptc, kCGImagePropertyIPTCWriterEditor, "Description writer", true) \
    P(iptcSublocation, setIptcSublocation, Plain, Text, Iptc, kCGImagePropertyIPTCSubLocation, "Sublocation", true) \
    P(iptcCountry, setIptcCountry, Plain, Text, Iptc, kCGImagePropertyIPTCCountryPrimaryLocationName, "Country", true) \
    P(iptcState, setIptcState, Plain, Text, Iptc, kCGImagePropertyIPTCProvinceState, "State", true) \
    P(iptcCity, setIptcCity, Plain, Text, Iptc, kCGImagePropertyIPTCCity, "City", true) \
    P(iptcCreator, setIptcCreator, First, TextList, Iptc, kCGImagePropertyIPTCByline, "Creator", true) \
    P(iptcCreatorTitle, setIptcCreatorTitle, First, TextList, Iptc, kCGImagePropertyIPTCBylineTitle, "Creator's title", true) \
    P(iptcCreatorEmail, setIptcCreatorEmail, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoEmails, "Creator's e-mail", true) \
    P(iptcCreatorWebsite, setIptcCreatorWebsite, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoWebURLs, "Creator's website", true) \
    P(iptcCreatorPhone, setIptcCreatorPhone, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoPhones, "Creator's phone", true) \
    P(iptcCreatorCountry, setIptcCreatorCountry, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoCountry, "Creator's country", true) \
    P(iptcCreatorState, setIptcCreatorState, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoStateProvince, "Creator's state", true) \
    P(iptcCreatorCity, setIptcCreatorCity, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoCity, "Creator's city", true) \
    P(iptcCreatorPostalCode, setIptcCreatorPostalCode, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoPostalCode, "Creator's postal code", true) \
    P(iptcCreatorAddress, setIptcCreatorAddress, Plain, Text, Contact, kCGImagePropertyIPTCContactInfoAddress, "Creator's address", true) \
    P(tiffSoftware, setTiffSoftware, Plain, Text, Tiff, kCGImagePropertyTIFFSoftware, "Software", true) \
    P(tiffCopyright, setTiffCopyright, Plain, Copyright, Tiff, kCGImagePropertyTIFFCopyright, "Copyright", true) \
    P(tiffArtist, setTiffArtist, FirstOfText, Text, Tiff, kCGImagePropertyTIFFArtist, "Artist", true) \
    P(tiffDescription, setTiffDescription, Plain, Text, Tiff, kCGImagePropertyTIFFImageDescription, "Description", true) \
    P(tiffCompression, setTiffCompression, Plain, Integer, Tiff, kCGImagePropertyTIFFCompression, "Compression", false) \
    P(tiffOrientation, setTiffOrientation, Orientation, Integer, Tiff, kCGImagePropertyTIFFOrientation, "Orientation", false) \
    P(tiffCameraMake, setTiffCameraMake, Plain, Text, Tiff, kCGImagePropertyTIFFMake, "Camera make", true) \
    P(tiffCameraModel, setTiffCameraModel, Plain, Text, Tiff, kCGImagePropertyTIFFModel, "Camera model", true) \
    P(tiffXResolution, setTiffXResolution, Resolution, Number, Tiff, kCGImagePropertyTIFFXResolution, "Horizontal resolution", false) \
    P(tiffYResolution, setTiffYResolution, Resolution, Number, Tiff, kCGImagePropertyTIFFYResolution, "Vertical resolution", false) \
    P(tiffResolutionUnit, setTiffResolutionUnit, Plain, Integer, Tiff, kCGImagePropertyTIFFResolutionUnit, "Resolution unit", false) \
    P(gpsLatitude, setGpsLatitude, ReadOnly, Degrees, Gps, kCGImagePropertyGPSLatitude, "Latitude", false) \
    P(gpsLatitudeRef, setGpsLatitudeRef, ReadOnly, Text, Gps, kCGImagePropertyGPSLatitudeRef, "Latitude reference", false) \
    P(gpsLongitude, setGpsLongitude, ReadOnly, Degrees, Gps, kCGImagePropertyGPSLongitude, "Longitude", false) \
    P(gpsLongitudeRef, setGpsLongitudeRef, ReadOnly, Text, Gps, kCGImagePropertyGPSLongitudeRef, "Longitude reference", false) \
    P(gpsAltitude, setGpsAltitude, ReadOnly, Number, Gps, kCGImagePropertyGPSAltitude, "Altitude", false) \
    P(gpsDateStamp, setGpsDateStamp, ReadOnly, Text, Gps, kCGImagePropertyGPSDateStamp, "GPS date", false)

// clang-format on

/// One row of the table, named as its getter.
enum class MetadataProperty {
#define PLEXA_NAME(getter, ...) getter,
    PLEXA_METADATA_PROPERTIES(PLEXA_NAME)
#undef PLEXA_NAME
};

struct MetadataPropertyRow {
    const char *name;  ///< "iptcCity"
    const char *label; ///< "City", in English
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
