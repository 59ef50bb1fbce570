// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/clearedgroups.h"
#include "metadata/propertykeys.h"

#include <QDateTime>
#include <QString>
#include <QVariant>
#include <QVariantMap>

namespace plexa
{

class LocaleFormat;

/// The editable copy of a photo's property dictionary (keys: imageio/propertykeys.h), with an accessor for
/// every fact that people see or edit. A value: copies share nothing. The five sub-dictionaries and the
/// creator's contact dictionary are always present. An absent value is an invalid QVariant; setting an
/// invalid one removes the key. Not shared between threads while it is being edited.
class ImageMetadata final
{
public:
    /// @param source  a property dictionary, may be empty. Sub-dictionaries that are missing or are no
    ///                dictionaries become empty ones.
    explicit ImageMetadata(const QVariantMap &source = {});

    /// The whole dictionary, as a writer takes it.
    const QVariantMap &imagePropertiesDictionary() const { return m_properties; }

    bool operator==(const ImageMetadata &) const = default;

    /// The sub-dictionaries.
    QVariantMap tiffData() const;
    QVariantMap exifData() const;
    QVariantMap exifAuxData() const;
    QVariantMap iptcData() const;
    QVariantMap iptcContactData() const;
    QVariantMap gpsData() const;

    /// Any key of a dictionary.
    QVariant imagePropertiesValueForKey(const QString &key) const;
    void setImagePropertiesValue(const QVariant &value, const QString &key);
    QVariant tiffValueForKey(const QString &key) const;
    void setTiffValue(const QVariant &value, const QString &key);
    QVariant exifValueForKey(const QString &key) const;
    void setExifValue(const QVariant &value, const QString &key);
    QVariant exifAuxValueForKey(const QString &key) const;
    void setExifAuxValue(const QVariant &value, const QString &key);
    QVariant iptcValueForKey(const QString &key) const;
    void setIptcValue(const QVariant &value, const QString &key);
    QVariant iptcContactValueForKey(const QString &key) const;
    void setIptcContactValue(const QVariant &value, const QString &key);
    QVariant gpsValueForKey(const QString &key) const;

    /// Orientation 1..8; setters store 1 for anything else and keep TIFF's copy equal.
    QVariant orientation() const;
    void setOrientation(const QVariant &value);
    QVariant tiffOrientation() const;
    void setTiffOrientation(const QVariant &value);
    int orientationCorrected() const;

    /// Pixels per inch; setters store 72 for anything not above 0, keep TIFF's copy equal and set the unit
    /// to inches.
    QVariant dpiWidth() const;
    void setDpiWidth(const QVariant &value);
    QVariant dpiHeight() const;
    void setDpiHeight(const QVariant &value);
    QVariant tiffXResolution() const;
    void setTiffXResolution(const QVariant &value);
    QVariant tiffYResolution() const;
    void setTiffYResolution(const QVariant &value);
    double dpiWidthCorrected() const;
    double dpiHeightCorrected() const;

    static int correctedOrientationForValue(const QVariant &value);
    /// The value itself where its whole part is above 0, else 72.
    static QVariant correctedDPIForValue(const QVariant &value);

    /// The quality that the writer is told; a missing value, or one whose whole part is outside 0..100, is
    /// stored as 80.
    QVariant compressionQuality() const;
    void setCompressionQuality(const QVariant &value);

    /// Facts that two dictionaries hold: each setter keeps the other's copy equal.
    QVariant iptcCopyright() const;
    void setIptcCopyright(const QVariant &value);
    QVariant tiffCopyright() const;
    void setTiffCopyright(const QVariant &value);
    QVariant iptcCreator() const; ///< the first of several
    void setIptcCreator(const QVariant &value);
    QVariant tiffArtist() const;
    void setTiffArtist(const QVariant &value);
    QVariant iptcDescription() const;
    void setIptcDescription(const QVariant &value);
    QVariant tiffDescription() const;
    void setTiffDescription(const QVariant &value);

    /// Capture and scan time: the clock that the photo's camera showed, in the local time zone (in one of a
    /// fixed offset where the local clock skips that hour); invalid when absent or not an EXIF date. The
    /// setters store the wall clock (onItsWallClock()).
    QDateTime exifDateTimeOriginal() const;
    void setExifDateTimeOriginal(const QDateTime &when);
    QDateTime exifDateTimeDigitized() const;
    void setExifDateTimeDigitized(const QDateTime &when);

    /// 1 when the flash fired, else 0; the setter leaves the stored value's other bits alone.
    int exifFlash() const;
    void setExifFlash(const QVariant &value);

    /// Plain accessors: value and setter of one key. ISO speed, writer and creator title are the first of
    /// an array and stored as an array of one.
    QVariant bitDepth() const { return imagePropertiesValueForKey(kCGImagePropertyDepth); }
    void setBitDepth(const QVariant &value) { setImagePropertiesValue(value, kCGImagePropertyDepth); }
    QVariant colorModel() const { return imagePropertiesValueForKey(kCGImagePropertyColorModel); }
    void setColorModel(const QVariant &value) { setImagePropertiesValue(value, kCGImagePropertyColorModel); }
    QVariant iccProfileName() const { return imagePropertiesValueForKey(kCGImagePropertyProfileName); }
    void setIccProfileName(const QVariant &value)
    {
        setImagePropertiesValue(value, kCGImagePropertyProfileName);
    }
    QVariant exifDateTimeOriginalStr() const { return exifValueForKey(kCGImagePropertyExifDateTimeOriginal); }
    void setExifDateTimeOriginalStr(const QVariant &value)
    {
        setExifValue(value, kCGImagePropertyExifDateTimeOriginal);
    }
    QVariant exifDateTimeDigitizedStr() const
    {
        return exifValueForKey(kCGImagePropertyExifDateTimeDigitized);
    }
    void setExifDateTimeDigitizedStr(const QVariant &value)
    {
        setExifValue(value, kCGImagePropertyExifDateTimeDigitized);
    }
    QVariant exifSubsecTimeOriginal() const { return exifValueForKey(kCGImagePropertyExifSubsecTimeOrginal); }
    void setExifSubsecTimeOriginal(const QVariant &value)
    {
        setExifValue(value, kCGImagePropertyExifSubsecTimeOrginal);
    }
    QVariant exifSubsecTimeDigitized() const
    {
        return exifValueForKey(kCGImagePropertyExifSubsecTimeDigitized);
    }
    void setExifSubsecTimeDigitized(const QVariant &value)
    {
        setExifValue(value, kCGImagePropertyExifSubsecTimeDigitized);
    }
    QVariant exifExposureTime() const { return exifValueForKey(kCGImagePropertyExifExposureTime); }
    void setExifExposureTime(const QVariant &value) { setExifValue(value, kCGImagePropertyExifExposureTime); }
    QVariant exifFNumber() const { return exifValueForKey(kCGImagePropertyExifFNumber); }
    void setExifFNumber(const QVariant &value) { setExifValue(value, kCGImagePropertyExifFNumber); }
    QVariant exifFocalLength() const { return exifValueForKey(kCGImagePropertyExifFocalLength); }
    void setExifFocalLength(const QVariant &value) { setExifValue(value, kCGImagePropertyExifFocalLength); }
    QVariant exifFocalLength35() const { return exifValueForKey(kCGImagePropertyExifFocalLenIn35mmFilm); }
    void setExifFocalLength35(const QVariant &value)
    {
        setExifValue(value, kCGImagePropertyExifFocalLenIn35mmFilm);
    }
    QVariant exifExposureProgram() const { return exifValueForKey(kCGImagePropertyExifExposureProgram); }
    void setExifExposureProgram(const QVariant &value)
    {
        setExifValue(value, kCGImagePropertyExifExposureProgram);
    }
    QVariant exifExposureBias() const { return exifValueForKey(kCGImagePropertyExifExposureBiasValue); }
    void setExifExposureBias(const QVariant &value)
    {
        setExifValue(value, kCGImagePropertyExifExposureBiasValue);
    }
    QVariant exifMeteringMode() const { return exifValueForKey(kCGImagePropertyExifMeteringMode); }
    void setExifMeteringMode(const QVariant &value) { setExifValue(value, kCGImagePropertyExifMeteringMode); }
    QVariant exifUserComment() const { return exifValueForKey(kCGImagePropertyExifUserComment); }
    void setExifUserComment(const QVariant &value) { setExifValue(value, kCGImagePropertyExifUserComment); }
    QVariant exifISOSpeed() const { return firstOf(exifValueForKey(kCGImagePropertyExifISOSpeedRatings)); }
    void setExifISOSpeed(const QVariant &value)
    {
        setExifValue(arrayOfOne(value), kCGImagePropertyExifISOSpeedRatings);
    }
    QVariant exifLens() const { return exifAuxValueForKey(kCGImagePropertyExifAuxLensModel); }
    void setExifLens(const QVariant &value) { setExifAuxValue(value, kCGImagePropertyExifAuxLensModel); }
    QVariant exifLensID() const { return exifAuxValueForKey(kCGImagePropertyExifAuxLensID); }
    void setExifLensID(const QVariant &value) { setExifAuxValue(value, kCGImagePropertyExifAuxLensID); }
    QVariant exifCameraSerialNumber() const
    {
        return exifAuxValueForKey(kCGImagePropertyExifAuxSerialNumber);
    }
    void setExifCameraSerialNumber(const QVariant &value)
    {
        setExifAuxValue(value, kCGImagePropertyExifAuxSerialNumber);
    }
    QVariant exifImageNumber() const { return exifAuxValueForKey(kCGImagePropertyExifAuxImageNumber); }
    void setExifImageNumber(const QVariant &value)
    {
        setExifAuxValue(value, kCGImagePropertyExifAuxImageNumber);
    }
    QVariant iptcHeadline() const { return iptcValueForKey(kCGImagePropertyIPTCHeadline); }
    void setIptcHeadline(const QVariant &value) { setIptcValue(value, kCGImagePropertyIPTCHeadline); }
    QVariant iptcTitle() const { return iptcValueForKey(kCGImagePropertyIPTCObjectName); }
    void setIptcTitle(const QVariant &value) { setIptcValue(value, kCGImagePropertyIPTCObjectName); }
    QVariant iptcSublocation() const { return iptcValueForKey(kCGImagePropertyIPTCSubLocation); }
    void setIptcSublocation(const QVariant &value) { setIptcValue(value, kCGImagePropertyIPTCSubLocation); }
    QVariant iptcCountry() const { return iptcValueForKey(kCGImagePropertyIPTCCountryPrimaryLocationName); }
    void setIptcCountry(const QVariant &value)
    {
        setIptcValue(value, kCGImagePropertyIPTCCountryPrimaryLocationName);
    }
    QVariant iptcState() const { return iptcValueForKey(kCGImagePropertyIPTCProvinceState); }
    void setIptcState(const QVariant &value) { setIptcValue(value, kCGImagePropertyIPTCProvinceState); }
    QVariant iptcCity() const { return iptcValueForKey(kCGImagePropertyIPTCCity); }
    void setIptcCity(const QVariant &value) { setIptcValue(value, kCGImagePropertyIPTCCity); }
    QVariant iptcDescriptionWriter() const
    {
        return firstOf(iptcValueForKey(kCGImagePropertyIPTCWriterEditor));
    }
    void setIptcDescriptionWriter(const QVariant &value)
    {
        setIptcValue(arrayOfOne(value), kCGImagePropertyIPTCWriterEditor);
    }
    QVariant iptcCreatorTitle() const { return firstOf(iptcValueForKey(kCGImagePropertyIPTCBylineTitle)); }
    void setIptcCreatorTitle(const QVariant &value)
    {
        setIptcValue(arrayOfOne(value), kCGImagePropertyIPTCBylineTitle);
    }
    QVariant iptcCreatorEmail() const
    {
        return iptcContactValueForKey(kCGImagePropertyIPTCContactInfoEmails);
    }
    void setIptcCreatorEmail(const QVariant &value)
    {
        setIptcContactValue(value, kCGImagePropertyIPTCContactInfoEmails);
    }
    QVariant iptcCreatorWebsite() const
    {
        return iptcContactValueForKey(kCGImagePropertyIPTCContactInfoWebURLs);
    }
    void setIptcCreatorWebsite(const QVariant &value)
    {
        setIptcContactValue(value, kCGImagePropertyIPTCContactInfoWebURLs);
    }
    QVariant iptcCreatorPhone() const
    {
        return iptcContactValueForKey(kCGImagePropertyIPTCContactInfoPhones);
    }
    void setIptcCreatorPhone(const QVariant &value)
    {
        setIptcContactValue(value, kCGImagePropertyIPTCContactInfoPhones);
    }
    QVariant iptcCreatorCountry() const
    {
        return iptcContactValueForKey(kCGImagePropertyIPTCContactInfoCountry);
    }
    void setIptcCreatorCountry(const QVariant &value)
    {
        setIptcContactValue(value, kCGImagePropertyIPTCContactInfoCountry);
    }
    QVariant iptcCreatorState() const
    {
        return iptcContactValueForKey(kCGImagePropertyIPTCContactInfoStateProvince);
    }
    void setIptcCreatorState(const QVariant &value)
    {
        setIptcContactValue(value, kCGImagePropertyIPTCContactInfoStateProvince);
    }
    QVariant iptcCreatorCity() const { return iptcContactValueForKey(kCGImagePropertyIPTCContactInfoCity); }
    void setIptcCreatorCity(const QVariant &value)
    {
        setIptcContactValue(value, kCGImagePropertyIPTCContactInfoCity);
    }
    QVariant iptcCreatorPostalCode() const
    {
        return iptcContactValueForKey(kCGImagePropertyIPTCContactInfoPostalCode);
    }
    void setIptcCreatorPostalCode(const QVariant &value)
    {
        setIptcContactValue(value, kCGImagePropertyIPTCContactInfoPostalCode);
    }
    QVariant iptcCreatorAddress() const
    {
        return iptcContactValueForKey(kCGImagePropertyIPTCContactInfoAddress);
    }
    void setIptcCreatorAddress(const QVariant &value)
    {
        setIptcContactValue(value, kCGImagePropertyIPTCContactInfoAddress);
    }
    QVariant tiffSoftware() const { return tiffValueForKey(kCGImagePropertyTIFFSoftware); }
    void setTiffSoftware(const QVariant &value) { setTiffValue(value, kCGImagePropertyTIFFSoftware); }
    QVariant tiffCompression() const { return tiffValueForKey(kCGImagePropertyTIFFCompression); }
    void setTiffCompression(const QVariant &value) { setTiffValue(value, kCGImagePropertyTIFFCompression); }
    QVariant tiffCameraMake() const { return tiffValueForKey(kCGImagePropertyTIFFMake); }
    void setTiffCameraMake(const QVariant &value) { setTiffValue(value, kCGImagePropertyTIFFMake); }
    QVariant tiffCameraModel() const { return tiffValueForKey(kCGImagePropertyTIFFModel); }
    void setTiffCameraModel(const QVariant &value) { setTiffValue(value, kCGImagePropertyTIFFModel); }
    QVariant tiffResolutionUnit() const { return tiffValueForKey(kCGImagePropertyTIFFResolutionUnit); }
    void setTiffResolutionUnit(const QVariant &value)
    {
        setTiffValue(value, kCGImagePropertyTIFFResolutionUnit);
    }

    /// Read only; GPS data can be cleared, not edited.
    QVariant gpsLatitude() const;
    QVariant gpsLatitudeRef() const;
    QVariant gpsLongitude() const;
    QVariant gpsLongitudeRef() const;
    QVariant gpsAltitude() const; ///< metres
    bool gpsLowerThanSeaLevel() const;
    QVariant gpsDateStamp() const;

    /// Texts for people.
    QVariant exifExposureTimeStr(const LocaleFormat &locale) const; ///< at most 4 decimals
    QVariant exifExposureProgramStr() const;
    QVariant exifMeteringModeStr() const;
    QVariant gpsLatitudeFull() const;
    QVariant gpsLongitudeFull() const;
    QVariant gpsAltitudeString() const;
    QVariant gpsImageDirection() const;
    QVariant gpsTimeStamp() const;

    /// The form in which EXIF dates are read and written, as QDateTime::toString() takes it:
    /// "yyyy:MM:dd HH:mm:ss".
    static QString exifDateTimeFormatter();

    /// Degrees, minutes, seconds and, where there is one, the letter: 48° 51' 30.240" N. Each part keeps the
    /// sign of a negative number. Invalid without a number.
    static QVariant latitudeOrLongitudeStringValueFromNumber(const QVariant &number,
                                                             const QVariant &reference);

    void clearExifData(); ///< EXIF and EXIF auxiliary
    void clearGPSData();
    /// Copyright: the notice. Contact information: creator, creator's title, contact dictionary.
    void clearIptcDataKeepCopyright(bool keepCopyright, bool keepContactInfo);
    /// Removes software, description, camera and, unless kept, copyright and artist (contact information).
    void clearTiffDataKeepCopyright(bool keepCopyright, bool keepContactInfo);

    /// What of this has been cleared, for a writer, which also clears what the dictionary does not model.
    ClearedGroups clearedGroups() const { return m_cleared; }

private:
    static QVariant firstOf(const QVariant &value);
    static QVariant arrayOfOne(const QVariant &value);
    QVariantMap dictionary(const QString &key) const;
    void setDictionaryValue(const QString &dictionaryKey, const QString &key, const QVariant &value);
    void setDpi(const QVariant &value, const QString &topKey, const QString &tiffKey);
    void setTiffResolution(const QVariant &value, const QString &tiffKey, const QString &topKey);

    QVariantMap m_properties;
    ClearedGroups m_cleared;
};

} // namespace plexa
