// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QLatin1String>

/// The keys of the property dictionary: names and values are a published vocabulary, kept to the letter
/// ("SubsecTimeOrginal" included). They turn into QString, so they serve as keys of a QVariantMap.
namespace plexa
{

// The groups and the values beside them at the top
inline constexpr QLatin1StringView kCGImagePropertyTIFFDictionary("{TIFF}");
inline constexpr QLatin1StringView kCGImagePropertyExifDictionary("{Exif}");
inline constexpr QLatin1StringView kCGImagePropertyExifAuxDictionary("{ExifAux}");
inline constexpr QLatin1StringView kCGImagePropertyIPTCDictionary("{IPTC}");
inline constexpr QLatin1StringView kCGImagePropertyGPSDictionary("{GPS}");
inline constexpr QLatin1StringView kCGImagePropertyJFIFDictionary("{JFIF}");
inline constexpr QLatin1StringView kCGImagePropertyPNGDictionary("{PNG}");
inline constexpr QLatin1StringView kCGImagePropertyPixelWidth("PixelWidth");
inline constexpr QLatin1StringView kCGImagePropertyPixelHeight("PixelHeight");
inline constexpr QLatin1StringView kCGImagePropertyDPIWidth("DPIWidth");
inline constexpr QLatin1StringView kCGImagePropertyDPIHeight("DPIHeight");
inline constexpr QLatin1StringView kCGImagePropertyDepth("Depth");
inline constexpr QLatin1StringView kCGImagePropertyOrientation("Orientation");
inline constexpr QLatin1StringView kCGImagePropertyHasAlpha("HasAlpha");
inline constexpr QLatin1StringView kCGImagePropertyColorModel("ColorModel");
inline constexpr QLatin1StringView kCGImagePropertyProfileName("ProfileName");

// TIFF
inline constexpr QLatin1StringView kCGImagePropertyTIFFCompression("Compression");
inline constexpr QLatin1StringView kCGImagePropertyTIFFPhotometricInterpretation("PhotometricInterpretation");
inline constexpr QLatin1StringView kCGImagePropertyTIFFDocumentName("DocumentName");
inline constexpr QLatin1StringView kCGImagePropertyTIFFImageDescription("ImageDescription");
inline constexpr QLatin1StringView kCGImagePropertyTIFFMake("Make");
inline constexpr QLatin1StringView kCGImagePropertyTIFFModel("Model");
inline constexpr QLatin1StringView kCGImagePropertyTIFFOrientation("Orientation");
inline constexpr QLatin1StringView kCGImagePropertyTIFFXResolution("XResolution");
inline constexpr QLatin1StringView kCGImagePropertyTIFFYResolution("YResolution");
inline constexpr QLatin1StringView kCGImagePropertyTIFFResolutionUnit("ResolutionUnit");
inline constexpr QLatin1StringView kCGImagePropertyTIFFSoftware("Software");
inline constexpr QLatin1StringView kCGImagePropertyTIFFTransferFunction("TransferFunction");
inline constexpr QLatin1StringView kCGImagePropertyTIFFDateTime("DateTime");
inline constexpr QLatin1StringView kCGImagePropertyTIFFArtist("Artist");
inline constexpr QLatin1StringView kCGImagePropertyTIFFHostComputer("HostComputer");
inline constexpr QLatin1StringView kCGImagePropertyTIFFCopyright("Copyright");
inline constexpr QLatin1StringView kCGImagePropertyTIFFWhitePoint("WhitePoint");
inline constexpr QLatin1StringView kCGImagePropertyTIFFPrimaryChromaticities("PrimaryChromaticities");
inline constexpr QLatin1StringView kCGImagePropertyTIFFTileWidth("TileWidth");
inline constexpr QLatin1StringView kCGImagePropertyTIFFTileLength("TileLength");

// EXIF
inline constexpr QLatin1StringView kCGImagePropertyExifExposureTime("ExposureTime");
inline constexpr QLatin1StringView kCGImagePropertyExifFNumber("FNumber");
inline constexpr QLatin1StringView kCGImagePropertyExifExposureProgram("ExposureProgram");
inline constexpr QLatin1StringView kCGImagePropertyExifSpectralSensitivity("SpectralSensitivity");
inline constexpr QLatin1StringView kCGImagePropertyExifISOSpeedRatings("ISOSpeedRatings");
inline constexpr QLatin1StringView kCGImagePropertyExifSensitivityType("SensitivityType");
inline constexpr QLatin1StringView kCGImagePropertyExifStandardOutputSensitivity("StandardOutputSensitivity");
inline constexpr QLatin1StringView kCGImagePropertyExifRecommendedExposureIndex("RecommendedExposureIndex");
inline constexpr QLatin1StringView kCGImagePropertyExifISOSpeed("ISOSpeed");
inline constexpr QLatin1StringView kCGImagePropertyExifISOSpeedLatitudeyyy("ISOSpeedLatitudeyyy");
inline constexpr QLatin1StringView kCGImagePropertyExifISOSpeedLatitudezzz("ISOSpeedLatitudezzz");
inline constexpr QLatin1StringView kCGImagePropertyExifVersion("ExifVersion");
inline constexpr QLatin1StringView kCGImagePropertyExifDateTimeOriginal("DateTimeOriginal");
inline constexpr QLatin1StringView kCGImagePropertyExifDateTimeDigitized("DateTimeDigitized");
inline constexpr QLatin1StringView kCGImagePropertyExifOffsetTime("OffsetTime");
inline constexpr QLatin1StringView kCGImagePropertyExifOffsetTimeOriginal("OffsetTimeOriginal");
inline constexpr QLatin1StringView kCGImagePropertyExifOffsetTimeDigitized("OffsetTimeDigitized");
inline constexpr QLatin1StringView kCGImagePropertyExifComponentsConfiguration("ComponentsConfiguration");
inline constexpr QLatin1StringView kCGImagePropertyExifCompressedBitsPerPixel("CompressedBitsPerPixel");
inline constexpr QLatin1StringView kCGImagePropertyExifShutterSpeedValue("ShutterSpeedValue");
inline constexpr QLatin1StringView kCGImagePropertyExifApertureValue("ApertureValue");
inline constexpr QLatin1StringView kCGImagePropertyExifBrightnessValue("BrightnessValue");
inline constexpr QLatin1StringView kCGImagePropertyExifExposureBiasValue("ExposureBiasValue");
inline constexpr QLatin1StringView kCGImagePropertyExifMaxApertureValue("MaxApertureValue");
inline constexpr QLatin1StringView kCGImagePropertyExifSubjectDistance("SubjectDistance");
inline constexpr QLatin1StringView kCGImagePropertyExifMeteringMode("MeteringMode");
inline constexpr QLatin1StringView kCGImagePropertyExifLightSource("LightSource");
inline constexpr QLatin1StringView kCGImagePropertyExifFlash("Flash");
inline constexpr QLatin1StringView kCGImagePropertyExifFocalLength("FocalLength");
inline constexpr QLatin1StringView kCGImagePropertyExifSubjectArea("SubjectArea");
inline constexpr QLatin1StringView kCGImagePropertyExifUserComment("UserComment");
inline constexpr QLatin1StringView kCGImagePropertyExifSubsecTime("SubsecTime");
inline constexpr QLatin1StringView kCGImagePropertyExifSubsecTimeOrginal("SubsecTimeOriginal");
inline constexpr QLatin1StringView kCGImagePropertyExifSubsecTimeDigitized("SubsecTimeDigitized");
inline constexpr QLatin1StringView kCGImagePropertyExifFlashPixVersion("FlashPixVersion");
inline constexpr QLatin1StringView kCGImagePropertyExifColorSpace("ColorSpace");
inline constexpr QLatin1StringView kCGImagePropertyExifPixelXDimension("PixelXDimension");
inline constexpr QLatin1StringView kCGImagePropertyExifPixelYDimension("PixelYDimension");
inline constexpr QLatin1StringView kCGImagePropertyExifRelatedSoundFile("RelatedSoundFile");
inline constexpr QLatin1StringView kCGImagePropertyExifFlashEnergy("FlashEnergy");
inline constexpr QLatin1StringView kCGImagePropertyExifFocalPlaneXResolution("FocalPlaneXResolution");
inline constexpr QLatin1StringView kCGImagePropertyExifFocalPlaneYResolution("FocalPlaneYResolution");
inline constexpr QLatin1StringView kCGImagePropertyExifFocalPlaneResolutionUnit("FocalPlaneResolutionUnit");
inline constexpr QLatin1StringView kCGImagePropertyExifSubjectLocation("SubjectLocation");
inline constexpr QLatin1StringView kCGImagePropertyExifExposureIndex("ExposureIndex");
inline constexpr QLatin1StringView kCGImagePropertyExifSensingMethod("SensingMethod");
inline constexpr QLatin1StringView kCGImagePropertyExifFileSource("FileSource");
inline constexpr QLatin1StringView kCGImagePropertyExifSceneType("SceneType");
inline constexpr QLatin1StringView kCGImagePropertyExifCFAPattern("CFAPattern");
inline constexpr QLatin1StringView kCGImagePropertyExifCustomRendered("CustomRendered");
inline constexpr QLatin1StringView kCGImagePropertyExifExposureMode("ExposureMode");
inline constexpr QLatin1StringView kCGImagePropertyExifWhiteBalance("WhiteBalance");
inline constexpr QLatin1StringView kCGImagePropertyExifDigitalZoomRatio("DigitalZoomRatio");
inline constexpr QLatin1StringView kCGImagePropertyExifFocalLenIn35mmFilm("FocalLenIn35mmFilm");
inline constexpr QLatin1StringView kCGImagePropertyExifSceneCaptureType("SceneCaptureType");
inline constexpr QLatin1StringView kCGImagePropertyExifGainControl("GainControl");
inline constexpr QLatin1StringView kCGImagePropertyExifContrast("Contrast");
inline constexpr QLatin1StringView kCGImagePropertyExifSaturation("Saturation");
inline constexpr QLatin1StringView kCGImagePropertyExifSharpness("Sharpness");
inline constexpr QLatin1StringView kCGImagePropertyExifSubjectDistRange("SubjectDistRange");
inline constexpr QLatin1StringView kCGImagePropertyExifImageUniqueID("ImageUniqueID");
inline constexpr QLatin1StringView kCGImagePropertyExifCameraOwnerName("CameraOwnerName");
inline constexpr QLatin1StringView kCGImagePropertyExifBodySerialNumber("BodySerialNumber");
inline constexpr QLatin1StringView kCGImagePropertyExifLensSpecification("LensSpecification");
inline constexpr QLatin1StringView kCGImagePropertyExifLensMake("LensMake");
inline constexpr QLatin1StringView kCGImagePropertyExifLensModel("LensModel");
inline constexpr QLatin1StringView kCGImagePropertyExifLensSerialNumber("LensSerialNumber");
inline constexpr QLatin1StringView kCGImagePropertyExifGamma("Gamma");
inline constexpr QLatin1StringView kCGImagePropertyExifCompositeImage("CompositeImage");
inline constexpr QLatin1StringView
    kCGImagePropertyExifSourceImageNumberOfCompositeImage("SourceImageNumberOfCompositeImage");

// EXIF auxiliary: facts of lens makers and maker notes
inline constexpr QLatin1StringView kCGImagePropertyExifAuxLensInfo("LensInfo");
inline constexpr QLatin1StringView kCGImagePropertyExifAuxLensModel("LensModel");
inline constexpr QLatin1StringView kCGImagePropertyExifAuxSerialNumber("SerialNumber");
inline constexpr QLatin1StringView kCGImagePropertyExifAuxLensID("LensID");
inline constexpr QLatin1StringView kCGImagePropertyExifAuxLensSerialNumber("LensSerialNumber");
inline constexpr QLatin1StringView kCGImagePropertyExifAuxImageNumber("ImageNumber");
inline constexpr QLatin1StringView kCGImagePropertyExifAuxFlashCompensation("FlashCompensation");
inline constexpr QLatin1StringView kCGImagePropertyExifAuxOwnerName("OwnerName");
inline constexpr QLatin1StringView kCGImagePropertyExifAuxFirmware("Firmware");

// GPS
inline constexpr QLatin1StringView kCGImagePropertyGPSVersion("GPSVersion");
inline constexpr QLatin1StringView kCGImagePropertyGPSLatitudeRef("LatitudeRef");
inline constexpr QLatin1StringView kCGImagePropertyGPSLatitude("Latitude");
inline constexpr QLatin1StringView kCGImagePropertyGPSLongitudeRef("LongitudeRef");
inline constexpr QLatin1StringView kCGImagePropertyGPSLongitude("Longitude");
inline constexpr QLatin1StringView kCGImagePropertyGPSAltitudeRef("AltitudeRef");
inline constexpr QLatin1StringView kCGImagePropertyGPSAltitude("Altitude");
inline constexpr QLatin1StringView kCGImagePropertyGPSTimeStamp("TimeStamp");
inline constexpr QLatin1StringView kCGImagePropertyGPSSatellites("Satellites");
inline constexpr QLatin1StringView kCGImagePropertyGPSStatus("Status");
inline constexpr QLatin1StringView kCGImagePropertyGPSMeasureMode("MeasureMode");
inline constexpr QLatin1StringView kCGImagePropertyGPSDOP("DOP");
inline constexpr QLatin1StringView kCGImagePropertyGPSSpeedRef("SpeedRef");
inline constexpr QLatin1StringView kCGImagePropertyGPSSpeed("Speed");
inline constexpr QLatin1StringView kCGImagePropertyGPSTrackRef("TrackRef");
inline constexpr QLatin1StringView kCGImagePropertyGPSTrack("Track");
inline constexpr QLatin1StringView kCGImagePropertyGPSImgDirectionRef("ImgDirectionRef");
inline constexpr QLatin1StringView kCGImagePropertyGPSImgDirection("ImgDirection");
inline constexpr QLatin1StringView kCGImagePropertyGPSMapDatum("MapDatum");
inline constexpr QLatin1StringView kCGImagePropertyGPSDestLatitudeRef("DestLatitudeRef");
inline constexpr QLatin1StringView kCGImagePropertyGPSDestLatitude("DestLatitude");
inline constexpr QLatin1StringView kCGImagePropertyGPSDestLongitudeRef("DestLongitudeRef");
inline constexpr QLatin1StringView kCGImagePropertyGPSDestLongitude("DestLongitude");
inline constexpr QLatin1StringView kCGImagePropertyGPSDestBearingRef("DestBearingRef");
inline constexpr QLatin1StringView kCGImagePropertyGPSDestBearing("DestBearing");
inline constexpr QLatin1StringView kCGImagePropertyGPSDestDistanceRef("DestDistanceRef");
inline constexpr QLatin1StringView kCGImagePropertyGPSDestDistance("DestDistance");
inline constexpr QLatin1StringView kCGImagePropertyGPSProcessingMethod("ProcessingMethod");
inline constexpr QLatin1StringView kCGImagePropertyGPSAreaInformation("AreaInformation");
inline constexpr QLatin1StringView kCGImagePropertyGPSDateStamp("DateStamp");
inline constexpr QLatin1StringView kCGImagePropertyGPSDifferental("Differental");
inline constexpr QLatin1StringView kCGImagePropertyGPSHPositioningError("HPositioningError");

// IPTC
inline constexpr QLatin1StringView kCGImagePropertyIPTCObjectTypeReference("ObjectTypeReference");
inline constexpr QLatin1StringView kCGImagePropertyIPTCObjectAttributeReference("ObjectAttributeReference");
inline constexpr QLatin1StringView kCGImagePropertyIPTCObjectName("ObjectName");
inline constexpr QLatin1StringView kCGImagePropertyIPTCEditStatus("EditStatus");
inline constexpr QLatin1StringView kCGImagePropertyIPTCEditorialUpdate("EditorialUpdate");
inline constexpr QLatin1StringView kCGImagePropertyIPTCUrgency("Urgency");
inline constexpr QLatin1StringView kCGImagePropertyIPTCSubjectReference("SubjectReference");
inline constexpr QLatin1StringView kCGImagePropertyIPTCCategory("Category");
inline constexpr QLatin1StringView kCGImagePropertyIPTCSupplementalCategory("SupplementalCategory");
inline constexpr QLatin1StringView kCGImagePropertyIPTCFixtureIdentifier("FixtureIdentifier");
inline constexpr QLatin1StringView kCGImagePropertyIPTCKeywords("Keywords");
inline constexpr QLatin1StringView kCGImagePropertyIPTCContentLocationCode("ContentLocationCode");
inline constexpr QLatin1StringView kCGImagePropertyIPTCContentLocationName("ContentLocationName");
inline constexpr QLatin1StringView kCGImagePropertyIPTCReleaseDate("ReleaseDate");
inline constexpr QLatin1StringView kCGImagePropertyIPTCReleaseTime("ReleaseTime");
inline constexpr QLatin1StringView kCGImagePropertyIPTCExpirationDate("ExpirationDate");
inline constexpr QLatin1StringView kCGImagePropertyIPTCExpirationTime("ExpirationTime");
inline constexpr QLatin1StringView kCGImagePropertyIPTCSpecialInstructions("SpecialInstructions");
inline constexpr QLatin1StringView kCGImagePropertyIPTCActionAdvised("ActionAdvised");
inline constexpr QLatin1StringView kCGImagePropertyIPTCReferenceService("ReferenceService");
inline constexpr QLatin1StringView kCGImagePropertyIPTCReferenceDate("ReferenceDate");
inline constexpr QLatin1StringView kCGImagePropertyIPTCReferenceNumber("ReferenceNumber");
inline constexpr QLatin1StringView kCGImagePropertyIPTCDateCreated("DateCreated");
inline constexpr QLatin1StringView kCGImagePropertyIPTCTimeCreated("TimeCreated");
inline constexpr QLatin1StringView kCGImagePropertyIPTCDigitalCreationDate("DigitalCreationDate");
inline constexpr QLatin1StringView kCGImagePropertyIPTCDigitalCreationTime("DigitalCreationTime");
inline constexpr QLatin1StringView kCGImagePropertyIPTCOriginatingProgram("OriginatingProgram");
inline constexpr QLatin1StringView kCGImagePropertyIPTCProgramVersion("ProgramVersion");
inline constexpr QLatin1StringView kCGImagePropertyIPTCObjectCycle("ObjectCycle");
inline constexpr QLatin1StringView kCGImagePropertyIPTCByline("Byline");
inline constexpr QLatin1StringView kCGImagePropertyIPTCBylineTitle("BylineTitle");
inline constexpr QLatin1StringView kCGImagePropertyIPTCCity("City");
inline constexpr QLatin1StringView kCGImagePropertyIPTCSubLocation("SubLocation");
inline constexpr QLatin1StringView kCGImagePropertyIPTCProvinceState("Province/State");
inline constexpr QLatin1StringView
    kCGImagePropertyIPTCCountryPrimaryLocationCode("Country/PrimaryLocationCode");
inline constexpr QLatin1StringView
    kCGImagePropertyIPTCCountryPrimaryLocationName("Country/PrimaryLocationName");
inline constexpr QLatin1StringView
    kCGImagePropertyIPTCOriginalTransmissionReference("OriginalTransmissionReference");
inline constexpr QLatin1StringView kCGImagePropertyIPTCHeadline("Headline");
inline constexpr QLatin1StringView kCGImagePropertyIPTCCredit("Credit");
inline constexpr QLatin1StringView kCGImagePropertyIPTCSource("Source");
inline constexpr QLatin1StringView kCGImagePropertyIPTCCopyrightNotice("CopyrightNotice");
inline constexpr QLatin1StringView kCGImagePropertyIPTCContact("Contact");
inline constexpr QLatin1StringView kCGImagePropertyIPTCCaptionAbstract("Caption/Abstract");
inline constexpr QLatin1StringView kCGImagePropertyIPTCWriterEditor("Writer/Editor");
inline constexpr QLatin1StringView kCGImagePropertyIPTCImageType("ImageType");
inline constexpr QLatin1StringView kCGImagePropertyIPTCImageOrientation("ImageOrientation");
inline constexpr QLatin1StringView kCGImagePropertyIPTCLanguageIdentifier("LanguageIdentifier");
inline constexpr QLatin1StringView kCGImagePropertyIPTCStarRating("StarRating");
inline constexpr QLatin1StringView kCGImagePropertyIPTCScene("Scene");
inline constexpr QLatin1StringView kCGImagePropertyIPTCRightsUsageTerms("RightsUsageTerms");
inline constexpr QLatin1StringView kCGImagePropertyIPTCCreatorContactInfo("CreatorContactInfo");

// IPTC creator contact
inline constexpr QLatin1StringView kCGImagePropertyIPTCContactInfoCity("CiAdrCity");
inline constexpr QLatin1StringView kCGImagePropertyIPTCContactInfoCountry("CiAdrCtry");
inline constexpr QLatin1StringView kCGImagePropertyIPTCContactInfoAddress("CiAdrExtadr");
inline constexpr QLatin1StringView kCGImagePropertyIPTCContactInfoPostalCode("CiAdrPcode");
inline constexpr QLatin1StringView kCGImagePropertyIPTCContactInfoStateProvince("CiAdrRegion");
inline constexpr QLatin1StringView kCGImagePropertyIPTCContactInfoEmails("CiEmailWork");
inline constexpr QLatin1StringView kCGImagePropertyIPTCContactInfoPhones("CiTelWork");
inline constexpr QLatin1StringView kCGImagePropertyIPTCContactInfoWebURLs("CiUrlWork");

// JFIF
inline constexpr QLatin1StringView kCGImagePropertyJFIFVersion("JFIFVersion");
inline constexpr QLatin1StringView kCGImagePropertyJFIFXDensity("XDensity");
inline constexpr QLatin1StringView kCGImagePropertyJFIFYDensity("YDensity");
inline constexpr QLatin1StringView kCGImagePropertyJFIFDensityUnit("DensityUnit");
inline constexpr QLatin1StringView kCGImagePropertyJFIFIsProgressive("IsProgressive");

// PNG; its texts stand beside these under their own keywords ("Author", "Creation Time")
inline constexpr QLatin1StringView kCGImagePropertyPNGGamma("Gamma");
inline constexpr QLatin1StringView kCGImagePropertyPNGInterlaceType("InterlaceType");
inline constexpr QLatin1StringView kCGImagePropertyPNGXPixelsPerMeter("XPixelsPerMeter");
inline constexpr QLatin1StringView kCGImagePropertyPNGYPixelsPerMeter("YPixelsPerMeter");
inline constexpr QLatin1StringView kCGImagePropertyPNGsRGBIntent("sRGBIntent");
inline constexpr QLatin1StringView kCGImagePropertyPNGChromaticities("Chromaticities");

// For the writer
/// 0 (smallest file) to 1 (best quality).
inline constexpr QLatin1StringView
    kCGImageDestinationLossyCompressionQuality("kCGImageDestinationLossyCompressionQuality");

} // namespace plexa
