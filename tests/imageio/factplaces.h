// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/imagemetadata.h"
#include "support/words.h"

#include <algorithm>

namespace plexa::test
{

/// A fact of the property dictionary, and the tags of exiftool in which a file may hold it.
struct FactPlaces {
    MetadataGroup group;
    QLatin1StringView key;
    const char *tags;

    QStringList places() const { return words(tags); }

    /// The accessor that sets the fact; none where people do not edit it.
    std::optional<MetadataProperty> property() const
    {
        const auto rows = metadataProperties();
        const auto row = std::find_if(rows.begin(), rows.end(), [this](const MetadataPropertyRow &candidate) {
            return candidate.group == group && candidate.key == key && candidate.isEditable;
        });
        return row == rows.end() ? std::nullopt : std::optional(MetadataProperty(row - rows.begin()));
    }

    QString name() const { return QString::fromUtf8(tags).section(u' ', 0, 0); }
};

// clang-format off
inline const FactPlaces kFactPlaces[] = {
    {MetadataGroup::Iptc, kCGImagePropertyIPTCHeadline, "IPTC:Headline XMP-photoshop:Headline"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCObjectName, "IPTC:ObjectName XMP-dc:Title IFD0:XPTitle"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCCaptionAbstract, "IPTC:Caption-Abstract XMP-dc:Description IFD0:ImageDescription XMP-tiff:ImageDescription IFD0:XPComment IFD0:XPSubject XMP-acdsee:Caption"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCCopyrightNotice, "IPTC:CopyrightNotice XMP-dc:Rights IFD0:Copyright XMP-tiff:Copyright"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCByline, "IPTC:By-line XMP-dc:Creator IFD0:Artist XMP-tiff:Artist IFD0:XPAuthor XMP-acdsee:Author XMP-pdf:Author"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCWriterEditor, "IPTC:Writer-Editor XMP-photoshop:CaptionWriter"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCSubLocation, "IPTC:Sub-location XMP-iptcCore:Location XMP-iptcExt:LocationCreatedSublocation"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCCountryPrimaryLocationName, "IPTC:Country-PrimaryLocationName XMP-photoshop:Country XMP-iptcExt:LocationCreatedCountryName"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCProvinceState, "IPTC:Province-State XMP-photoshop:State XMP-iptcExt:LocationCreatedProvinceState"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCCity, "IPTC:City XMP-photoshop:City XMP-iptcExt:LocationCreatedCity"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCBylineTitle, "IPTC:By-lineTitle XMP-photoshop:AuthorsPosition"},
    {MetadataGroup::Contact, kCGImagePropertyIPTCContactInfoEmails, "XMP-iptcCore:CreatorWorkEmail"},
    {MetadataGroup::Contact, kCGImagePropertyIPTCContactInfoWebURLs, "XMP-iptcCore:CreatorWorkURL"},
    {MetadataGroup::Contact, kCGImagePropertyIPTCContactInfoPhones, "XMP-iptcCore:CreatorWorkTelephone"},
    {MetadataGroup::Contact, kCGImagePropertyIPTCContactInfoCountry, "XMP-iptcCore:CreatorCountry"},
    {MetadataGroup::Contact, kCGImagePropertyIPTCContactInfoStateProvince, "XMP-iptcCore:CreatorRegion"},
    {MetadataGroup::Contact, kCGImagePropertyIPTCContactInfoCity, "XMP-iptcCore:CreatorCity"},
    {MetadataGroup::Contact, kCGImagePropertyIPTCContactInfoPostalCode, "XMP-iptcCore:CreatorPostalCode"},
    {MetadataGroup::Contact, kCGImagePropertyIPTCContactInfoAddress, "XMP-iptcCore:CreatorAddress"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCKeywords, "IPTC:Keywords XMP-dc:Subject"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCCountryPrimaryLocationCode, "IPTC:Country-PrimaryLocationCode XMP-iptcCore:CountryCode"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCCredit, "IPTC:Credit XMP-photoshop:Credit"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCSource, "IPTC:Source XMP-photoshop:Source"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCSpecialInstructions, "IPTC:SpecialInstructions XMP-photoshop:Instructions"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCOriginalTransmissionReference, "IPTC:OriginalTransmissionReference XMP-photoshop:TransmissionReference"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCRightsUsageTerms, "XMP-xmpRights:UsageTerms"},
    {MetadataGroup::Iptc, kCGImagePropertyIPTCStarRating, "XMP-xmp:Rating"},
    {MetadataGroup::Tiff, kCGImagePropertyTIFFSoftware, "IFD0:Software XMP-tiff:Software XMP-xmp:CreatorTool"},
    {MetadataGroup::Tiff, kCGImagePropertyTIFFMake, "IFD0:Make XMP-tiff:Make"},
    {MetadataGroup::Tiff, kCGImagePropertyTIFFModel, "IFD0:Model XMP-tiff:Model IFD0:UniqueCameraModel"},
    {MetadataGroup::Exif, kCGImagePropertyExifUserComment, "ExifIFD:UserComment XMP-exif:UserComment"},
    {MetadataGroup::ExifAux, kCGImagePropertyExifAuxLensModel, "ExifIFD:LensModel XMP-aux:Lens XMP-exifEX:LensModel XMP-exif:Lens"},
    {MetadataGroup::ExifAux, kCGImagePropertyExifAuxSerialNumber, "ExifIFD:SerialNumber XMP-aux:SerialNumber XMP-exifEX:SerialNumber IFD0:CameraSerialNumber"},
    {MetadataGroup::ExifAux, kCGImagePropertyExifAuxLensID, "XMP-aux:LensID"},
    {MetadataGroup::ExifAux, kCGImagePropertyExifAuxImageNumber, "IFD0:ImageNumber XMP-aux:ImageNumber"},
    {MetadataGroup::ExifAux, kCGImagePropertyExifAuxFirmware, "XMP-aux:Firmware"},
    {MetadataGroup::ExifAux, kCGImagePropertyExifAuxFlashCompensation, "XMP-aux:FlashCompensation"},
    {MetadataGroup::ExifAux, kCGImagePropertyExifAuxOwnerName, "ExifIFD:OwnerName XMP-aux:OwnerName"},
    {MetadataGroup::ExifAux, kCGImagePropertyExifAuxLensSerialNumber, "ExifIFD:LensSerialNumber XMP-aux:LensSerialNumber"},
    {MetadataGroup::Exif, kCGImagePropertyExifDateTimeOriginal, "ExifIFD:DateTimeOriginal XMP-exif:DateTimeOriginal"},
    {MetadataGroup::Exif, kCGImagePropertyExifDateTimeDigitized, "ExifIFD:CreateDate XMP-exif:DateTimeDigitized XMP-xmp:CreateDate"},
    {MetadataGroup::Exif, kCGImagePropertyExifSubsecTimeOrginal, "ExifIFD:SubSecTimeOriginal"},
    {MetadataGroup::Exif, kCGImagePropertyExifExposureTime, "ExifIFD:ExposureTime XMP-exif:ExposureTime"},
    {MetadataGroup::Exif, kCGImagePropertyExifFNumber, "ExifIFD:FNumber XMP-exif:FNumber"},
    {MetadataGroup::Exif, kCGImagePropertyExifISOSpeedRatings, "ExifIFD:ISO XMP-exif:ISO XMP-exifEX:PhotographicSensitivity"},
    {MetadataGroup::Exif, kCGImagePropertyExifFocalLength, "ExifIFD:FocalLength XMP-exif:FocalLength"},
    {MetadataGroup::Exif, kCGImagePropertyExifFocalLenIn35mmFilm, "ExifIFD:FocalLengthIn35mmFormat XMP-exif:FocalLengthIn35mmFormat"},
    {MetadataGroup::Exif, kCGImagePropertyExifExposureProgram, "ExifIFD:ExposureProgram XMP-exif:ExposureProgram"},
    {MetadataGroup::Exif, kCGImagePropertyExifExposureBiasValue, "ExifIFD:ExposureCompensation XMP-exif:ExposureCompensation"},
    {MetadataGroup::Exif, kCGImagePropertyExifMeteringMode, "ExifIFD:MeteringMode XMP-exif:MeteringMode"},
};
// clang-format on

} // namespace plexa::test
