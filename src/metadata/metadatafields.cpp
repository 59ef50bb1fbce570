// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/metadatafields.h"

#include "metadata/propertykeys.h"

namespace plexa
{

namespace
{

using enum MetadataGroup;
using enum MetadataKind;

// clang-format off
// Lengths of IPTC fields: IIM 4.2, record 2. XMP homes: EXIF for XMP (CIPA DC-010), IPTC Core.
constexpr MetadataField kFields[] = {
    // group, key, kind, EXIF, IPTC, XMP, greatest IPTC length
    {Tiff, kCGImagePropertyTIFFDocumentName, Text, "Exif.Image.DocumentName", nullptr, nullptr, 0},
    {Tiff, kCGImagePropertyTIFFImageDescription, Text, "Exif.Image.ImageDescription", nullptr, "Xmp.dc.description", 0},
    {Tiff, kCGImagePropertyTIFFMake, Text, "Exif.Image.Make", nullptr, "Xmp.tiff.Make", 0},
    {Tiff, kCGImagePropertyTIFFModel, Text, "Exif.Image.Model", nullptr, "Xmp.tiff.Model", 0},
    {Tiff, kCGImagePropertyTIFFXResolution, Number, "Exif.Image.XResolution", nullptr, "Xmp.tiff.XResolution", 0},
    {Tiff, kCGImagePropertyTIFFYResolution, Number, "Exif.Image.YResolution", nullptr, "Xmp.tiff.YResolution", 0},
    {Tiff, kCGImagePropertyTIFFResolutionUnit, Integer, "Exif.Image.ResolutionUnit", nullptr, "Xmp.tiff.ResolutionUnit", 0},
    {Tiff, kCGImagePropertyTIFFSoftware, Text, "Exif.Image.Software", nullptr, "Xmp.tiff.Software", 0},
    {Tiff, kCGImagePropertyTIFFDateTime, DateTime, "Exif.Image.DateTime", nullptr, "Xmp.xmp.ModifyDate", 0},
    {Tiff, kCGImagePropertyTIFFArtist, Text, "Exif.Image.Artist", nullptr, "Xmp.dc.creator", 0},
    {Tiff, kCGImagePropertyTIFFHostComputer, Text, "Exif.Image.HostComputer", nullptr, nullptr, 0},
    {Tiff, kCGImagePropertyTIFFCopyright, Copyright, "Exif.Image.Copyright", nullptr, "Xmp.dc.rights", 0},
    {Tiff, kCGImagePropertyTIFFOrientation, Integer, "Exif.Image.Orientation", nullptr, "Xmp.tiff.Orientation", 0},
    {Tiff, kCGImagePropertyTIFFPhotometricInterpretation, Integer, "Exif.Image.PhotometricInterpretation", nullptr, nullptr, 0},
    {Tiff, kCGImagePropertyTIFFCompression, Integer, "Exif.Image.Compression", nullptr, nullptr, 0},
    {Tiff, kCGImagePropertyTIFFTransferFunction, IntegerList, "Exif.Image.TransferFunction", nullptr, nullptr, 0},
    {Tiff, kCGImagePropertyTIFFWhitePoint, NumberList, "Exif.Image.WhitePoint", nullptr, nullptr, 0},
    {Tiff, kCGImagePropertyTIFFPrimaryChromaticities, NumberList, "Exif.Image.PrimaryChromaticities", nullptr, nullptr, 0},
    {Tiff, kCGImagePropertyTIFFTileWidth, Integer, "Exif.Image.TileWidth", nullptr, nullptr, 0},
    {Tiff, kCGImagePropertyTIFFTileLength, Integer, "Exif.Image.TileLength", nullptr, nullptr, 0},
    {Exif, kCGImagePropertyExifExposureTime, Number, "Exif.Photo.ExposureTime", nullptr, "Xmp.exif.ExposureTime", 0},
    {Exif, kCGImagePropertyExifFNumber, Number, "Exif.Photo.FNumber", nullptr, "Xmp.exif.FNumber", 0},
    {Exif, kCGImagePropertyExifExposureProgram, Integer, "Exif.Photo.ExposureProgram", nullptr, "Xmp.exif.ExposureProgram", 0},
    {Exif, kCGImagePropertyExifSpectralSensitivity, Text, "Exif.Photo.SpectralSensitivity", nullptr, "Xmp.exif.SpectralSensitivity", 0},
    {Exif, kCGImagePropertyExifISOSpeedRatings, IntegerList, "Exif.Photo.ISOSpeedRatings", nullptr, "Xmp.exif.ISOSpeedRatings", 0},
    {Exif, kCGImagePropertyExifSensitivityType, Integer, "Exif.Photo.SensitivityType", nullptr, "Xmp.exifEX.SensitivityType", 0},
    {Exif, kCGImagePropertyExifStandardOutputSensitivity, Integer, "Exif.Photo.StandardOutputSensitivity", nullptr, "Xmp.exifEX.StandardOutputSensitivity", 0},
    {Exif, kCGImagePropertyExifRecommendedExposureIndex, Integer, "Exif.Photo.RecommendedExposureIndex", nullptr, "Xmp.exifEX.RecommendedExposureIndex", 0},
    {Exif, kCGImagePropertyExifISOSpeed, Integer, "Exif.Photo.ISOSpeed", nullptr, "Xmp.exifEX.ISOSpeed", 0},
    {Exif, kCGImagePropertyExifISOSpeedLatitudeyyy, Integer, "Exif.Photo.ISOSpeedLatitudeyyy", nullptr, "Xmp.exifEX.ISOSpeedLatitudeyyy", 0},
    {Exif, kCGImagePropertyExifISOSpeedLatitudezzz, Integer, "Exif.Photo.ISOSpeedLatitudezzz", nullptr, "Xmp.exifEX.ISOSpeedLatitudezzz", 0},
    {Exif, kCGImagePropertyExifVersion, Version, "Exif.Photo.ExifVersion", nullptr, "Xmp.exif.ExifVersion", 0},
    {Exif, kCGImagePropertyExifDateTimeOriginal, DateTime, "Exif.Photo.DateTimeOriginal", nullptr, "Xmp.exif.DateTimeOriginal", 0},
    {Exif, kCGImagePropertyExifDateTimeDigitized, DateTime, "Exif.Photo.DateTimeDigitized", nullptr, "Xmp.exif.DateTimeDigitized", 0},
    {Exif, kCGImagePropertyExifOffsetTime, Text, "Exif.Photo.OffsetTime", nullptr, nullptr, 0},
    {Exif, kCGImagePropertyExifOffsetTimeOriginal, Text, "Exif.Photo.OffsetTimeOriginal", nullptr, nullptr, 0},
    {Exif, kCGImagePropertyExifOffsetTimeDigitized, Text, "Exif.Photo.OffsetTimeDigitized", nullptr, nullptr, 0},
    {Exif, kCGImagePropertyExifComponentsConfiguration, IntegerList, "Exif.Photo.ComponentsConfiguration", nullptr, "Xmp.exif.ComponentsConfiguration", 0},
    {Exif, kCGImagePropertyExifCompressedBitsPerPixel, Number, "Exif.Photo.CompressedBitsPerPixel", nullptr, "Xmp.exif.CompressedBitsPerPixel", 0},
    {Exif, kCGImagePropertyExifShutterSpeedValue, Number, "Exif.Photo.ShutterSpeedValue", nullptr, "Xmp.exif.ShutterSpeedValue", 0},
    {Exif, kCGImagePropertyExifApertureValue, Number, "Exif.Photo.ApertureValue", nullptr, "Xmp.exif.ApertureValue", 0},
    {Exif, kCGImagePropertyExifBrightnessValue, Number, "Exif.Photo.BrightnessValue", nullptr, "Xmp.exif.BrightnessValue", 0},
    {Exif, kCGImagePropertyExifExposureBiasValue, Number, "Exif.Photo.ExposureBiasValue", nullptr, "Xmp.exif.ExposureBiasValue", 0},
    {Exif, kCGImagePropertyExifMaxApertureValue, Number, "Exif.Photo.MaxApertureValue", nullptr, "Xmp.exif.MaxApertureValue", 0},
    {Exif, kCGImagePropertyExifSubjectDistance, Number, "Exif.Photo.SubjectDistance", nullptr, "Xmp.exif.SubjectDistance", 0},
    {Exif, kCGImagePropertyExifMeteringMode, Integer, "Exif.Photo.MeteringMode", nullptr, "Xmp.exif.MeteringMode", 0},
    {Exif, kCGImagePropertyExifLightSource, Integer, "Exif.Photo.LightSource", nullptr, "Xmp.exif.LightSource", 0},
    {Exif, kCGImagePropertyExifFlash, Integer, "Exif.Photo.Flash", nullptr, "Xmp.exif.Flash", 0},
    {Exif, kCGImagePropertyExifFocalLength, Number, "Exif.Photo.FocalLength", nullptr, "Xmp.exif.FocalLength", 0},
    {Exif, kCGImagePropertyExifSubjectArea, IntegerList, "Exif.Photo.SubjectArea", nullptr, "Xmp.exif.SubjectArea", 0},
    {Exif, kCGImagePropertyExifUserComment, Comment, "Exif.Photo.UserComment", nullptr, "Xmp.exif.UserComment", 0},
    {Exif, kCGImagePropertyExifSubsecTime, Text, "Exif.Photo.SubSecTime", nullptr, nullptr, 0},
    {Exif, kCGImagePropertyExifSubsecTimeOrginal, Text, "Exif.Photo.SubSecTimeOriginal", nullptr, nullptr, 0},
    {Exif, kCGImagePropertyExifSubsecTimeDigitized, Text, "Exif.Photo.SubSecTimeDigitized", nullptr, nullptr, 0},
    {Exif, kCGImagePropertyExifFlashPixVersion, Version, "Exif.Photo.FlashpixVersion", nullptr, "Xmp.exif.FlashpixVersion", 0},
    {Exif, kCGImagePropertyExifColorSpace, Integer, "Exif.Photo.ColorSpace", nullptr, "Xmp.exif.ColorSpace", 0},
    {Exif, kCGImagePropertyExifPixelXDimension, Integer, "Exif.Photo.PixelXDimension", nullptr, "Xmp.exif.PixelXDimension", 0},
    {Exif, kCGImagePropertyExifPixelYDimension, Integer, "Exif.Photo.PixelYDimension", nullptr, "Xmp.exif.PixelYDimension", 0},
    {Exif, kCGImagePropertyExifRelatedSoundFile, Text, "Exif.Photo.RelatedSoundFile", nullptr, "Xmp.exif.RelatedSoundFile", 0},
    {Exif, kCGImagePropertyExifFlashEnergy, Number, "Exif.Photo.FlashEnergy", nullptr, "Xmp.exif.FlashEnergy", 0},
    {Exif, kCGImagePropertyExifFocalPlaneXResolution, Number, "Exif.Photo.FocalPlaneXResolution", nullptr, "Xmp.exif.FocalPlaneXResolution", 0},
    {Exif, kCGImagePropertyExifFocalPlaneYResolution, Number, "Exif.Photo.FocalPlaneYResolution", nullptr, "Xmp.exif.FocalPlaneYResolution", 0},
    {Exif, kCGImagePropertyExifFocalPlaneResolutionUnit, Integer, "Exif.Photo.FocalPlaneResolutionUnit", nullptr, "Xmp.exif.FocalPlaneResolutionUnit", 0},
    {Exif, kCGImagePropertyExifSubjectLocation, IntegerList, "Exif.Photo.SubjectLocation", nullptr, "Xmp.exif.SubjectLocation", 0},
    {Exif, kCGImagePropertyExifExposureIndex, Number, "Exif.Photo.ExposureIndex", nullptr, "Xmp.exif.ExposureIndex", 0},
    {Exif, kCGImagePropertyExifSensingMethod, Integer, "Exif.Photo.SensingMethod", nullptr, "Xmp.exif.SensingMethod", 0},
    {Exif, kCGImagePropertyExifFileSource, Integer, "Exif.Photo.FileSource", nullptr, "Xmp.exif.FileSource", 0},
    {Exif, kCGImagePropertyExifSceneType, Integer, "Exif.Photo.SceneType", nullptr, "Xmp.exif.SceneType", 0},
    {Exif, kCGImagePropertyExifCFAPattern, IntegerList, "Exif.Photo.CFAPattern", nullptr, nullptr, 0},
    {Exif, kCGImagePropertyExifCustomRendered, Integer, "Exif.Photo.CustomRendered", nullptr, "Xmp.exif.CustomRendered", 0},
    {Exif, kCGImagePropertyExifExposureMode, Integer, "Exif.Photo.ExposureMode", nullptr, "Xmp.exif.ExposureMode", 0},
    {Exif, kCGImagePropertyExifWhiteBalance, Integer, "Exif.Photo.WhiteBalance", nullptr, "Xmp.exif.WhiteBalance", 0},
    {Exif, kCGImagePropertyExifDigitalZoomRatio, Number, "Exif.Photo.DigitalZoomRatio", nullptr, "Xmp.exif.DigitalZoomRatio", 0},
    {Exif, kCGImagePropertyExifFocalLenIn35mmFilm, Integer, "Exif.Photo.FocalLengthIn35mmFilm", nullptr, "Xmp.exif.FocalLengthIn35mmFilm", 0},
    {Exif, kCGImagePropertyExifSceneCaptureType, Integer, "Exif.Photo.SceneCaptureType", nullptr, "Xmp.exif.SceneCaptureType", 0},
    {Exif, kCGImagePropertyExifGainControl, Integer, "Exif.Photo.GainControl", nullptr, "Xmp.exif.GainControl", 0},
    {Exif, kCGImagePropertyExifContrast, Integer, "Exif.Photo.Contrast", nullptr, "Xmp.exif.Contrast", 0},
    {Exif, kCGImagePropertyExifSaturation, Integer, "Exif.Photo.Saturation", nullptr, "Xmp.exif.Saturation", 0},
    {Exif, kCGImagePropertyExifSharpness, Integer, "Exif.Photo.Sharpness", nullptr, "Xmp.exif.Sharpness", 0},
    {Exif, kCGImagePropertyExifSubjectDistRange, Integer, "Exif.Photo.SubjectDistanceRange", nullptr, "Xmp.exif.SubjectDistanceRange", 0},
    {Exif, kCGImagePropertyExifImageUniqueID, Text, "Exif.Photo.ImageUniqueID", nullptr, "Xmp.exif.ImageUniqueID", 0},
    {Exif, kCGImagePropertyExifCameraOwnerName, Text, "Exif.Photo.CameraOwnerName", nullptr, "Xmp.exifEX.CameraOwnerName", 0},
    {Exif, kCGImagePropertyExifBodySerialNumber, Text, "Exif.Photo.BodySerialNumber", nullptr, "Xmp.exifEX.BodySerialNumber", 0},
    {Exif, kCGImagePropertyExifLensSpecification, NumberList, "Exif.Photo.LensSpecification", nullptr, "Xmp.exifEX.LensSpecification", 0},
    {Exif, kCGImagePropertyExifLensMake, Text, "Exif.Photo.LensMake", nullptr, "Xmp.exifEX.LensMake", 0},
    {Exif, kCGImagePropertyExifLensModel, Text, "Exif.Photo.LensModel", nullptr, "Xmp.exifEX.LensModel", 0},
    {Exif, kCGImagePropertyExifLensSerialNumber, Text, "Exif.Photo.LensSerialNumber", nullptr, "Xmp.exifEX.LensSerialNumber", 0},
    {Exif, kCGImagePropertyExifGamma, Number, "Exif.Photo.0xa500", nullptr, "Xmp.exifEX.Gamma", 0},
    {Exif, kCGImagePropertyExifCompositeImage, Integer, "Exif.Photo.0xa460", nullptr, nullptr, 0},
    {Exif, kCGImagePropertyExifSourceImageNumberOfCompositeImage, IntegerList, "Exif.Photo.0xa461", nullptr, nullptr, 0},
    {Gps, kCGImagePropertyGPSVersion, IntegerList, "Exif.GPSInfo.GPSVersionID", nullptr, "Xmp.exif.GPSVersionID", 0},
    {Gps, kCGImagePropertyGPSLatitudeRef, Text, "Exif.GPSInfo.GPSLatitudeRef", nullptr, nullptr, 0},
    {Gps, kCGImagePropertyGPSLatitude, Degrees, "Exif.GPSInfo.GPSLatitude", nullptr, "Xmp.exif.GPSLatitude", 0},
    {Gps, kCGImagePropertyGPSLongitudeRef, Text, "Exif.GPSInfo.GPSLongitudeRef", nullptr, nullptr, 0},
    {Gps, kCGImagePropertyGPSLongitude, Degrees, "Exif.GPSInfo.GPSLongitude", nullptr, "Xmp.exif.GPSLongitude", 0},
    {Gps, kCGImagePropertyGPSAltitudeRef, Integer, "Exif.GPSInfo.GPSAltitudeRef", nullptr, "Xmp.exif.GPSAltitudeRef", 0},
    {Gps, kCGImagePropertyGPSAltitude, Number, "Exif.GPSInfo.GPSAltitude", nullptr, "Xmp.exif.GPSAltitude", 0},
    {Gps, kCGImagePropertyGPSTimeStamp, TimeOfDay, "Exif.GPSInfo.GPSTimeStamp", nullptr, nullptr, 0},
    {Gps, kCGImagePropertyGPSSatellites, Text, "Exif.GPSInfo.GPSSatellites", nullptr, "Xmp.exif.GPSSatellites", 0},
    {Gps, kCGImagePropertyGPSStatus, Text, "Exif.GPSInfo.GPSStatus", nullptr, "Xmp.exif.GPSStatus", 0},
    {Gps, kCGImagePropertyGPSMeasureMode, Text, "Exif.GPSInfo.GPSMeasureMode", nullptr, "Xmp.exif.GPSMeasureMode", 0},
    {Gps, kCGImagePropertyGPSDOP, Number, "Exif.GPSInfo.GPSDOP", nullptr, "Xmp.exif.GPSDOP", 0},
    {Gps, kCGImagePropertyGPSSpeedRef, Text, "Exif.GPSInfo.GPSSpeedRef", nullptr, "Xmp.exif.GPSSpeedRef", 0},
    {Gps, kCGImagePropertyGPSSpeed, Number, "Exif.GPSInfo.GPSSpeed", nullptr, "Xmp.exif.GPSSpeed", 0},
    {Gps, kCGImagePropertyGPSTrackRef, Text, "Exif.GPSInfo.GPSTrackRef", nullptr, "Xmp.exif.GPSTrackRef", 0},
    {Gps, kCGImagePropertyGPSTrack, Number, "Exif.GPSInfo.GPSTrack", nullptr, "Xmp.exif.GPSTrack", 0},
    {Gps, kCGImagePropertyGPSImgDirectionRef, Text, "Exif.GPSInfo.GPSImgDirectionRef", nullptr, "Xmp.exif.GPSImgDirectionRef", 0},
    {Gps, kCGImagePropertyGPSImgDirection, Number, "Exif.GPSInfo.GPSImgDirection", nullptr, "Xmp.exif.GPSImgDirection", 0},
    {Gps, kCGImagePropertyGPSMapDatum, Text, "Exif.GPSInfo.GPSMapDatum", nullptr, "Xmp.exif.GPSMapDatum", 0},
    {Gps, kCGImagePropertyGPSDestLatitudeRef, Text, "Exif.GPSInfo.GPSDestLatitudeRef", nullptr, nullptr, 0},
    {Gps, kCGImagePropertyGPSDestLatitude, Degrees, "Exif.GPSInfo.GPSDestLatitude", nullptr, "Xmp.exif.GPSDestLatitude", 0},
    {Gps, kCGImagePropertyGPSDestLongitudeRef, Text, "Exif.GPSInfo.GPSDestLongitudeRef", nullptr, nullptr, 0},
    {Gps, kCGImagePropertyGPSDestLongitude, Degrees, "Exif.GPSInfo.GPSDestLongitude", nullptr, "Xmp.exif.GPSDestLongitude", 0},
    {Gps, kCGImagePropertyGPSDestBearingRef, Text, "Exif.GPSInfo.GPSDestBearingRef", nullptr, "Xmp.exif.GPSDestBearingRef", 0},
    {Gps, kCGImagePropertyGPSDestBearing, Number, "Exif.GPSInfo.GPSDestBearing", nullptr, "Xmp.exif.GPSDestBearing", 0},
    {Gps, kCGImagePropertyGPSDestDistanceRef, Text, "Exif.GPSInfo.GPSDestDistanceRef", nullptr, "Xmp.exif.GPSDestDistanceRef", 0},
    {Gps, kCGImagePropertyGPSDestDistance, Number, "Exif.GPSInfo.GPSDestDistance", nullptr, "Xmp.exif.GPSDestDistance", 0},
    {Gps, kCGImagePropertyGPSProcessingMethod, Comment, "Exif.GPSInfo.GPSProcessingMethod", nullptr, "Xmp.exif.GPSProcessingMethod", 0},
    {Gps, kCGImagePropertyGPSAreaInformation, Comment, "Exif.GPSInfo.GPSAreaInformation", nullptr, "Xmp.exif.GPSAreaInformation", 0},
    {Gps, kCGImagePropertyGPSDateStamp, Text, "Exif.GPSInfo.GPSDateStamp", nullptr, nullptr, 0},
    {Gps, kCGImagePropertyGPSDifferental, Integer, "Exif.GPSInfo.GPSDifferential", nullptr, "Xmp.exif.GPSDifferential", 0},
    {Gps, kCGImagePropertyGPSHPositioningError, Number, "Exif.GPSInfo.0x001f", nullptr, "Xmp.exif.GPSHPositioningError", 0},
    {Iptc, kCGImagePropertyIPTCObjectTypeReference, Text, nullptr, "Iptc.Application2.ObjectType", nullptr, 67},
    {Iptc, kCGImagePropertyIPTCObjectAttributeReference, TextList, nullptr, "Iptc.Application2.ObjectAttribute", nullptr, 68},
    {Iptc, kCGImagePropertyIPTCObjectName, Text, nullptr, "Iptc.Application2.ObjectName", "Xmp.dc.title", 64},
    {Iptc, kCGImagePropertyIPTCEditStatus, Text, nullptr, "Iptc.Application2.EditStatus", nullptr, 64},
    {Iptc, kCGImagePropertyIPTCEditorialUpdate, Text, nullptr, "Iptc.Application2.EditorialUpdate", nullptr, 2},
    {Iptc, kCGImagePropertyIPTCUrgency, Text, nullptr, "Iptc.Application2.Urgency", "Xmp.photoshop.Urgency", 1},
    {Iptc, kCGImagePropertyIPTCSubjectReference, TextList, nullptr, "Iptc.Application2.Subject", nullptr, 236},
    {Iptc, kCGImagePropertyIPTCCategory, Text, nullptr, "Iptc.Application2.Category", "Xmp.photoshop.Category", 3},
    {Iptc, kCGImagePropertyIPTCSupplementalCategory, TextList, nullptr, "Iptc.Application2.SuppCategory", "Xmp.photoshop.SupplementalCategories", 32},
    {Iptc, kCGImagePropertyIPTCFixtureIdentifier, Text, nullptr, "Iptc.Application2.FixtureId", nullptr, 32},
    {Iptc, kCGImagePropertyIPTCKeywords, TextList, nullptr, "Iptc.Application2.Keywords", "Xmp.dc.subject", 64},
    {Iptc, kCGImagePropertyIPTCContentLocationCode, TextList, nullptr, "Iptc.Application2.LocationCode", nullptr, 3},
    {Iptc, kCGImagePropertyIPTCContentLocationName, TextList, nullptr, "Iptc.Application2.LocationName", nullptr, 64},
    {Iptc, kCGImagePropertyIPTCReleaseDate, IptcDate, nullptr, "Iptc.Application2.ReleaseDate", nullptr, 8},
    {Iptc, kCGImagePropertyIPTCReleaseTime, Text, nullptr, "Iptc.Application2.ReleaseTime", nullptr, 11},
    {Iptc, kCGImagePropertyIPTCExpirationDate, IptcDate, nullptr, "Iptc.Application2.ExpirationDate", nullptr, 8},
    {Iptc, kCGImagePropertyIPTCExpirationTime, Text, nullptr, "Iptc.Application2.ExpirationTime", nullptr, 11},
    {Iptc, kCGImagePropertyIPTCSpecialInstructions, Text, nullptr, "Iptc.Application2.SpecialInstructions", "Xmp.photoshop.Instructions", 256},
    {Iptc, kCGImagePropertyIPTCActionAdvised, Text, nullptr, "Iptc.Application2.ActionAdvised", nullptr, 2},
    {Iptc, kCGImagePropertyIPTCReferenceService, TextList, nullptr, "Iptc.Application2.ReferenceService", nullptr, 10},
    {Iptc, kCGImagePropertyIPTCReferenceDate, IptcDate, nullptr, "Iptc.Application2.ReferenceDate", nullptr, 8},
    {Iptc, kCGImagePropertyIPTCReferenceNumber, TextList, nullptr, "Iptc.Application2.ReferenceNumber", nullptr, 8},
    {Iptc, kCGImagePropertyIPTCDateCreated, IptcDate, nullptr, "Iptc.Application2.DateCreated", "Xmp.photoshop.DateCreated", 8},
    {Iptc, kCGImagePropertyIPTCTimeCreated, Text, nullptr, "Iptc.Application2.TimeCreated", nullptr, 11},
    {Iptc, kCGImagePropertyIPTCDigitalCreationDate, IptcDate, nullptr, "Iptc.Application2.DigitizationDate", nullptr, 8},
    {Iptc, kCGImagePropertyIPTCDigitalCreationTime, Text, nullptr, "Iptc.Application2.DigitizationTime", nullptr, 11},
    {Iptc, kCGImagePropertyIPTCOriginatingProgram, Text, nullptr, "Iptc.Application2.Program", nullptr, 32},
    {Iptc, kCGImagePropertyIPTCProgramVersion, Text, nullptr, "Iptc.Application2.ProgramVersion", nullptr, 10},
    {Iptc, kCGImagePropertyIPTCObjectCycle, Text, nullptr, "Iptc.Application2.ObjectCycle", nullptr, 1},
    {Iptc, kCGImagePropertyIPTCByline, TextList, nullptr, "Iptc.Application2.Byline", "Xmp.dc.creator", 32},
    {Iptc, kCGImagePropertyIPTCBylineTitle, TextList, nullptr, "Iptc.Application2.BylineTitle", "Xmp.photoshop.AuthorsPosition", 32},
    {Iptc, kCGImagePropertyIPTCCity, Text, nullptr, "Iptc.Application2.City", "Xmp.photoshop.City", 32},
    {Iptc, kCGImagePropertyIPTCSubLocation, Text, nullptr, "Iptc.Application2.SubLocation", "Xmp.iptc.Location", 32},
    {Iptc, kCGImagePropertyIPTCProvinceState, Text, nullptr, "Iptc.Application2.ProvinceState", "Xmp.photoshop.State", 32},
    {Iptc, kCGImagePropertyIPTCCountryPrimaryLocationCode, Text, nullptr, "Iptc.Application2.CountryCode", "Xmp.iptc.CountryCode", 3},
    {Iptc, kCGImagePropertyIPTCCountryPrimaryLocationName, Text, nullptr, "Iptc.Application2.CountryName", "Xmp.photoshop.Country", 64},
    {Iptc, kCGImagePropertyIPTCOriginalTransmissionReference, Text, nullptr, "Iptc.Application2.TransmissionReference", "Xmp.photoshop.TransmissionReference", 32},
    {Iptc, kCGImagePropertyIPTCHeadline, Text, nullptr, "Iptc.Application2.Headline", "Xmp.photoshop.Headline", 256},
    {Iptc, kCGImagePropertyIPTCCredit, Text, nullptr, "Iptc.Application2.Credit", "Xmp.photoshop.Credit", 32},
    {Iptc, kCGImagePropertyIPTCSource, Text, nullptr, "Iptc.Application2.Source", "Xmp.photoshop.Source", 32},
    {Iptc, kCGImagePropertyIPTCCopyrightNotice, Text, nullptr, "Iptc.Application2.Copyright", "Xmp.dc.rights", 128},
    {Iptc, kCGImagePropertyIPTCContact, TextList, nullptr, "Iptc.Application2.Contact", nullptr, 128},
    {Iptc, kCGImagePropertyIPTCCaptionAbstract, Text, nullptr, "Iptc.Application2.Caption", "Xmp.dc.description", 2000},
    {Iptc, kCGImagePropertyIPTCWriterEditor, TextList, nullptr, "Iptc.Application2.Writer", "Xmp.photoshop.CaptionWriter", 32},
    {Iptc, kCGImagePropertyIPTCImageType, Text, nullptr, "Iptc.Application2.ImageType", nullptr, 2},
    {Iptc, kCGImagePropertyIPTCImageOrientation, Text, nullptr, "Iptc.Application2.ImageOrientation", nullptr, 1},
    {Iptc, kCGImagePropertyIPTCLanguageIdentifier, Text, nullptr, "Iptc.Application2.Language", nullptr, 3},
    {Iptc, kCGImagePropertyIPTCStarRating, Integer, nullptr, nullptr, "Xmp.xmp.Rating", 0},
    {Iptc, kCGImagePropertyIPTCScene, TextList, nullptr, nullptr, "Xmp.iptc.Scene", 0},
    {Iptc, kCGImagePropertyIPTCRightsUsageTerms, Text, nullptr, nullptr, "Xmp.xmpRights.UsageTerms", 0},
    {Contact, kCGImagePropertyIPTCContactInfoCity, Text, nullptr, nullptr, "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrCity", 0},
    {Contact, kCGImagePropertyIPTCContactInfoCountry, Text, nullptr, nullptr, "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrCtry", 0},
    {Contact, kCGImagePropertyIPTCContactInfoAddress, Text, nullptr, nullptr, "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrExtadr", 0},
    {Contact, kCGImagePropertyIPTCContactInfoPostalCode, Text, nullptr, nullptr, "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrPcode", 0},
    {Contact, kCGImagePropertyIPTCContactInfoStateProvince, Text, nullptr, nullptr, "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrRegion", 0},
    {Contact, kCGImagePropertyIPTCContactInfoEmails, Text, nullptr, nullptr, "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiEmailWork", 0},
    {Contact, kCGImagePropertyIPTCContactInfoPhones, Text, nullptr, nullptr, "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiTelWork", 0},
    {Contact, kCGImagePropertyIPTCContactInfoWebURLs, Text, nullptr, nullptr, "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiUrlWork", 0},
    {ExifAux, kCGImagePropertyExifAuxLensInfo, NumberList, "Exif.Photo.LensSpecification", nullptr, "Xmp.aux.LensInfo", 0},
    {ExifAux, kCGImagePropertyExifAuxLensModel, Text, "Exif.Photo.LensModel", nullptr, "Xmp.aux.Lens", 0},
    {ExifAux, kCGImagePropertyExifAuxSerialNumber, Text, "Exif.Photo.BodySerialNumber", nullptr, "Xmp.aux.SerialNumber", 0},
    {ExifAux, kCGImagePropertyExifAuxLensID, Integer, nullptr, nullptr, "Xmp.aux.LensID", 0},
    {ExifAux, kCGImagePropertyExifAuxLensSerialNumber, Text, "Exif.Photo.LensSerialNumber", nullptr, "Xmp.aux.LensSerialNumber", 0},
    {ExifAux, kCGImagePropertyExifAuxImageNumber, Integer, "Exif.Image.ImageNumber", nullptr, "Xmp.aux.ImageNumber", 0},
    {ExifAux, kCGImagePropertyExifAuxFlashCompensation, Number, nullptr, nullptr, "Xmp.aux.FlashCompensation", 0},
    {ExifAux, kCGImagePropertyExifAuxOwnerName, Text, "Exif.Photo.CameraOwnerName", nullptr, "Xmp.aux.OwnerName", 0},
    {ExifAux, kCGImagePropertyExifAuxFirmware, Text, nullptr, nullptr, "Xmp.aux.Firmware", 0},
};
// clang-format on

} // namespace

std::span<const MetadataField> metadataFields()
{
    return kFields;
}

QLatin1StringView dictionaryKey(MetadataGroup group)
{
    switch (group) {
    case Tiff:
        return kCGImagePropertyTIFFDictionary;
    case Exif:
        return kCGImagePropertyExifDictionary;
    case ExifAux:
        return kCGImagePropertyExifAuxDictionary;
    case Gps:
        return kCGImagePropertyGPSDictionary;
    case Iptc:
    case Contact:
        return kCGImagePropertyIPTCDictionary;
    case Top:
        break;
    }
    return {};
}

QVariantMap groupDictionary(const QVariantMap &properties, MetadataGroup group)
{
    if (group == Top)
        return properties;
    const QVariantMap dictionary = properties.value(dictionaryKey(group)).toMap();
    return group == Contact ? dictionary.value(kCGImagePropertyIPTCCreatorContactInfo).toMap() : dictionary;
}

} // namespace plexa
