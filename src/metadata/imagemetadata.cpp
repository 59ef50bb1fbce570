// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/imagemetadata.h"

#include "metadata/metadatastrings.h"
#include "metadata/propertyvalues.h"
#include "platform/localeformat.h"
#include "platform/numbervalues.h"

#include <cmath>

namespace plexa
{

namespace
{

constexpr int kInches = 2;
constexpr int kDefaultDpi = 72;
constexpr double kFeetPerMetre = 3.2808; // the documented factor, not the exact one

const QString &topLevelDictionaryKey(qsizetype i)
{
    static const QString keys[] = {kCGImagePropertyTIFFDictionary, kCGImagePropertyExifDictionary,
                                   kCGImagePropertyExifAuxDictionary, kCGImagePropertyIPTCDictionary,
                                   kCGImagePropertyGPSDictionary};
    return keys[i];
}
constexpr qsizetype kDictionaries = 5;

void setOrRemove(QVariantMap &dictionary, const QString &key, const QVariant &value)
{
    if (value.isValid())
        dictionary.insert(key, value);
    else
        dictionary.remove(key);
}

/// The value without decimals, cut off; 0 for what is no number, and for one that no int holds.
int wholePart(const QVariant &value)
{
    const double number = value.toDouble();
    return std::abs(number) < 2e9 ? static_cast<int>(number) : 0;
}

} // namespace

ImageMetadata::ImageMetadata(const QVariantMap &source)
    : m_properties(source)
{
    for (qsizetype i = 0; i < kDictionaries; ++i) {
        const QString &key = topLevelDictionaryKey(i);
        m_properties.insert(key, source.value(key).toMap());
    }
    QVariantMap iptc = iptcData();
    iptc.insert(kCGImagePropertyIPTCCreatorContactInfo,
                iptc.value(kCGImagePropertyIPTCCreatorContactInfo).toMap());
    m_properties.insert(kCGImagePropertyIPTCDictionary, iptc);
}

QVariantMap ImageMetadata::dictionary(const QString &key) const
{
    return m_properties.value(key).toMap();
}

QVariantMap ImageMetadata::tiffData() const
{
    return dictionary(kCGImagePropertyTIFFDictionary);
}

QVariantMap ImageMetadata::exifData() const
{
    return dictionary(kCGImagePropertyExifDictionary);
}

QVariantMap ImageMetadata::exifAuxData() const
{
    return dictionary(kCGImagePropertyExifAuxDictionary);
}

QVariantMap ImageMetadata::iptcData() const
{
    return dictionary(kCGImagePropertyIPTCDictionary);
}

QVariantMap ImageMetadata::iptcContactData() const
{
    return iptcData().value(kCGImagePropertyIPTCCreatorContactInfo).toMap();
}

QVariantMap ImageMetadata::gpsData() const
{
    return dictionary(kCGImagePropertyGPSDictionary);
}

QVariant ImageMetadata::imagePropertiesValueForKey(const QString &key) const
{
    return m_properties.value(key);
}

void ImageMetadata::setImagePropertiesValue(const QVariant &value, const QString &key)
{
    setOrRemove(m_properties, key, value);
}

void ImageMetadata::setDictionaryValue(const QString &dictionaryKey, const QString &key,
                                       const QVariant &value)
{
    const auto found = m_properties.constFind(dictionaryKey);
    if (found == m_properties.constEnd() || found->typeId() != QMetaType::QVariantMap)
        return;
    QVariantMap changed = found->toMap();
    setOrRemove(changed, key, value);
    m_properties.insert(dictionaryKey, changed);
}

QVariant ImageMetadata::tiffValueForKey(const QString &key) const
{
    return tiffData().value(key);
}

void ImageMetadata::setTiffValue(const QVariant &value, const QString &key)
{
    setDictionaryValue(kCGImagePropertyTIFFDictionary, key, value);
}

QVariant ImageMetadata::exifValueForKey(const QString &key) const
{
    return exifData().value(key);
}

void ImageMetadata::setExifValue(const QVariant &value, const QString &key)
{
    setDictionaryValue(kCGImagePropertyExifDictionary, key, value);
}

QVariant ImageMetadata::exifAuxValueForKey(const QString &key) const
{
    return exifAuxData().value(key);
}

void ImageMetadata::setExifAuxValue(const QVariant &value, const QString &key)
{
    setDictionaryValue(kCGImagePropertyExifAuxDictionary, key, value);
}

QVariant ImageMetadata::iptcValueForKey(const QString &key) const
{
    return iptcData().value(key);
}

void ImageMetadata::setIptcValue(const QVariant &value, const QString &key)
{
    setDictionaryValue(kCGImagePropertyIPTCDictionary, key, value);
}

QVariant ImageMetadata::iptcContactValueForKey(const QString &key) const
{
    return iptcContactData().value(key);
}

void ImageMetadata::setIptcContactValue(const QVariant &value, const QString &key)
{
    QVariantMap iptc = iptcData();
    const auto found = iptc.constFind(kCGImagePropertyIPTCCreatorContactInfo);
    if (found == iptc.constEnd() || found->typeId() != QMetaType::QVariantMap)
        return;
    QVariantMap contact = found->toMap();
    setOrRemove(contact, key, value);
    setIptcValue(contact, kCGImagePropertyIPTCCreatorContactInfo);
}

QVariant ImageMetadata::gpsValueForKey(const QString &key) const
{
    return gpsData().value(key);
}

int ImageMetadata::correctedOrientationForValue(const QVariant &value)
{
    const int orientation = wholePart(value);
    return orientation >= 1 && orientation <= 8 ? orientation : 1;
}

QVariant ImageMetadata::correctedDPIForValue(const QVariant &value)
{
    return wholePart(value) > 0 ? value : QVariant(kDefaultDpi);
}

QVariant ImageMetadata::orientation() const
{
    return imagePropertiesValueForKey(kCGImagePropertyOrientation);
}

void ImageMetadata::setOrientation(const QVariant &value)
{
    setImagePropertiesValue(correctedOrientationForValue(value), kCGImagePropertyOrientation);
    if (!samePropertyValue(tiffOrientation(), orientation()))
        setTiffOrientation(orientation());
}

QVariant ImageMetadata::tiffOrientation() const
{
    return tiffValueForKey(kCGImagePropertyTIFFOrientation);
}

void ImageMetadata::setTiffOrientation(const QVariant &value)
{
    setTiffValue(correctedOrientationForValue(value), kCGImagePropertyTIFFOrientation);
    if (!samePropertyValue(orientation(), tiffOrientation()))
        setOrientation(tiffOrientation());
}

int ImageMetadata::orientationCorrected() const
{
    return correctedOrientationForValue(orientation());
}

QVariant ImageMetadata::dpiWidth() const
{
    return imagePropertiesValueForKey(kCGImagePropertyDPIWidth);
}

void ImageMetadata::setDpiWidth(const QVariant &value)
{
    setDpi(value, kCGImagePropertyDPIWidth, kCGImagePropertyTIFFXResolution);
}

QVariant ImageMetadata::dpiHeight() const
{
    return imagePropertiesValueForKey(kCGImagePropertyDPIHeight);
}

void ImageMetadata::setDpiHeight(const QVariant &value)
{
    setDpi(value, kCGImagePropertyDPIHeight, kCGImagePropertyTIFFYResolution);
}

QVariant ImageMetadata::tiffXResolution() const
{
    return tiffValueForKey(kCGImagePropertyTIFFXResolution);
}

void ImageMetadata::setTiffXResolution(const QVariant &value)
{
    setTiffResolution(value, kCGImagePropertyTIFFXResolution, kCGImagePropertyDPIWidth);
}

QVariant ImageMetadata::tiffYResolution() const
{
    return tiffValueForKey(kCGImagePropertyTIFFYResolution);
}

void ImageMetadata::setTiffYResolution(const QVariant &value)
{
    setTiffResolution(value, kCGImagePropertyTIFFYResolution, kCGImagePropertyDPIHeight);
}

void ImageMetadata::setDpi(const QVariant &value, const QString &topKey, const QString &tiffKey)
{
    const QVariant corrected = correctedDPIForValue(value);
    setImagePropertiesValue(corrected, topKey);
    setTiffResolutionUnit(kInches);
    if (!samePropertyValue(tiffValueForKey(tiffKey), corrected))
        setTiffResolution(corrected, tiffKey, topKey);
}

void ImageMetadata::setTiffResolution(const QVariant &value, const QString &tiffKey, const QString &topKey)
{
    const QVariant corrected = correctedDPIForValue(value);
    setTiffValue(corrected, tiffKey);
    setTiffResolutionUnit(kInches);
    if (!samePropertyValue(imagePropertiesValueForKey(topKey), corrected))
        setDpi(corrected, topKey, tiffKey);
}

double ImageMetadata::dpiWidthCorrected() const
{
    return correctedDPIForValue(dpiWidth()).toDouble();
}

double ImageMetadata::dpiHeightCorrected() const
{
    return correctedDPIForValue(dpiHeight()).toDouble();
}

QVariant ImageMetadata::compressionQuality() const
{
    return imagePropertiesValueForKey(kCGImageDestinationLossyCompressionQuality);
}

void ImageMetadata::setCompressionQuality(const QVariant &value)
{
    constexpr int kDefaultQuality = 80;
    const double quality = value.toDouble();
    const bool isInside = isNumber(value) && quality > -1 && quality < 101; // by its whole part
    setImagePropertiesValue(isInside ? value : QVariant(kDefaultQuality),
                            kCGImageDestinationLossyCompressionQuality);
}

QVariant ImageMetadata::iptcCopyright() const
{
    return iptcValueForKey(kCGImagePropertyIPTCCopyrightNotice);
}

void ImageMetadata::setIptcCopyright(const QVariant &value)
{
    setIptcValue(value, kCGImagePropertyIPTCCopyrightNotice);
    if (!samePropertyValue(tiffCopyright(), value))
        setTiffCopyright(value);
}

QVariant ImageMetadata::tiffCopyright() const
{
    return tiffValueForKey(kCGImagePropertyTIFFCopyright);
}

void ImageMetadata::setTiffCopyright(const QVariant &value)
{
    setTiffValue(value, kCGImagePropertyTIFFCopyright);
    if (!samePropertyValue(iptcCopyright(), value))
        setIptcCopyright(value);
}

QVariant ImageMetadata::firstOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList)
        return value.toList().value(0);
    return value;
}

QVariant ImageMetadata::arrayOfOne(const QVariant &value)
{
    return value.isValid() ? QVariant(QVariantList{value}) : QVariant();
}

QVariant ImageMetadata::iptcCreator() const
{
    return firstOf(iptcValueForKey(kCGImagePropertyIPTCByline));
}

void ImageMetadata::setIptcCreator(const QVariant &value)
{
    setIptcValue(arrayOfOne(value), kCGImagePropertyIPTCByline);
    if (!samePropertyValue(tiffArtist(), value))
        setTiffArtist(value);
}

QVariant ImageMetadata::tiffArtist() const
{
    return firstOf(tiffValueForKey(kCGImagePropertyTIFFArtist));
}

void ImageMetadata::setTiffArtist(const QVariant &value)
{
    setTiffValue(value, kCGImagePropertyTIFFArtist);
    if (!samePropertyValue(iptcCreator(), value))
        setIptcCreator(value);
}

QVariant ImageMetadata::iptcDescription() const
{
    return iptcValueForKey(kCGImagePropertyIPTCCaptionAbstract);
}

void ImageMetadata::setIptcDescription(const QVariant &value)
{
    setIptcValue(value, kCGImagePropertyIPTCCaptionAbstract);
    if (!samePropertyValue(tiffDescription(), value))
        setTiffDescription(value);
}

QVariant ImageMetadata::tiffDescription() const
{
    return tiffValueForKey(kCGImagePropertyTIFFImageDescription);
}

void ImageMetadata::setTiffDescription(const QVariant &value)
{
    setTiffValue(value, kCGImagePropertyTIFFImageDescription);
    if (!samePropertyValue(iptcDescription(), value))
        setIptcDescription(value);
}

QDateTime ImageMetadata::exifDateTimeOriginal() const
{
    return exifDateTimeFromString(exifDateTimeOriginalStr().toString());
}

void ImageMetadata::setExifDateTimeOriginal(const QDateTime &when)
{
    setExifDateTimeOriginalStr(when.isValid() ? QVariant(exifStringFromDateTime(when)) : QVariant());
}

QDateTime ImageMetadata::exifDateTimeDigitized() const
{
    return exifDateTimeFromString(exifDateTimeDigitizedStr().toString());
}

void ImageMetadata::setExifDateTimeDigitized(const QDateTime &when)
{
    setExifDateTimeDigitizedStr(when.isValid() ? QVariant(exifStringFromDateTime(when)) : QVariant());
}

int ImageMetadata::exifFlash() const
{
    return wholePart(exifValueForKey(kCGImagePropertyExifFlash)) & 1;
}

void ImageMetadata::setExifFlash(const QVariant &value)
{
    const int others = wholePart(exifValueForKey(kCGImagePropertyExifFlash)) & ~1;
    setExifValue(others | (value.toDouble() != 0 ? 1 : 0), kCGImagePropertyExifFlash);
}

QVariant ImageMetadata::gpsLatitude() const
{
    return gpsValueForKey(kCGImagePropertyGPSLatitude);
}

QVariant ImageMetadata::gpsLatitudeRef() const
{
    return gpsValueForKey(kCGImagePropertyGPSLatitudeRef);
}

QVariant ImageMetadata::gpsLongitude() const
{
    return gpsValueForKey(kCGImagePropertyGPSLongitude);
}

QVariant ImageMetadata::gpsLongitudeRef() const
{
    return gpsValueForKey(kCGImagePropertyGPSLongitudeRef);
}

QVariant ImageMetadata::gpsAltitude() const
{
    return gpsValueForKey(kCGImagePropertyGPSAltitude);
}

bool ImageMetadata::gpsLowerThanSeaLevel() const
{
    return gpsValueForKey(kCGImagePropertyGPSAltitudeRef).toDouble() != 0;
}

QVariant ImageMetadata::gpsDateStamp() const
{
    return gpsValueForKey(kCGImagePropertyGPSDateStamp);
}

QVariant ImageMetadata::exifExposureTimeStr(const LocaleFormat &locale) const
{
    const QVariant seconds = exifExposureTime();
    constexpr int kMaxDecimals = 4;
    return seconds.isValid() ? QVariant(locale.decimal(seconds.toDouble(), kMaxDecimals)) : QVariant();
}

QVariant ImageMetadata::exifExposureProgramStr() const
{
    return exposureProgramString(exifExposureProgram());
}

QVariant ImageMetadata::exifMeteringModeStr() const
{
    return meteringModeString(exifMeteringMode());
}

QString ImageMetadata::exifDateTimeFormatter()
{
    return plexa::exifDateTimeFormatter();
}

QVariant ImageMetadata::latitudeOrLongitudeStringValueFromNumber(const QVariant &number,
                                                                 const QVariant &reference)
{
    return latitudeOrLongitudeString(number, reference);
}

QVariant ImageMetadata::gpsLatitudeFull() const
{
    return latitudeOrLongitudeString(gpsLatitude(), gpsLatitudeRef());
}

QVariant ImageMetadata::gpsLongitudeFull() const
{
    return latitudeOrLongitudeString(gpsLongitude(), gpsLongitudeRef());
}

QVariant ImageMetadata::gpsAltitudeString() const
{
    const QVariant altitude = gpsAltitude();
    if (!altitude.isValid())
        return {};
    const double metres = altitude.toDouble();
    return QString::asprintf("%.2f m (%.2f ft) %s", metres, metres * kFeetPerMetre,
                             gpsLowerThanSeaLevel() ? "below sea level" : "above sea level");
}

QVariant ImageMetadata::gpsImageDirection() const
{
    const QVariant direction = gpsValueForKey(kCGImagePropertyGPSImgDirection);
    if (!direction.isValid())
        return {};
    QString text = QString::asprintf("%.3f", direction.toDouble());
    const QVariant reference = gpsValueForKey(kCGImagePropertyGPSImgDirectionRef);
    if (reference.isValid())
        text += reference.toString() == u"T" ? QStringLiteral(" (true north direction)")
                                             : QStringLiteral(" (magnetic north direction)");
    return text;
}

QVariant ImageMetadata::gpsTimeStamp() const
{
    const QVariant time = gpsValueForKey(kCGImagePropertyGPSTimeStamp);
    return time.isValid() ? QVariant(time.toString() + QStringLiteral(" (UTC)")) : QVariant();
}

void ImageMetadata::clearExifData()
{
    m_properties.insert(kCGImagePropertyExifDictionary, QVariantMap());
    m_properties.insert(kCGImagePropertyExifAuxDictionary, QVariantMap());
    m_cleared |= ClearedGroup::Exif;
}

void ImageMetadata::clearGPSData()
{
    m_properties.insert(kCGImagePropertyGPSDictionary, QVariantMap());
    m_cleared |= ClearedGroup::Gps;
}

void ImageMetadata::clearIptcDataKeepCopyright(bool keepCopyright, bool keepContactInfo)
{
    const QVariant copyright = keepCopyright ? iptcCopyright() : QVariant();
    const QVariant creator = keepContactInfo ? iptcCreator() : QVariant();
    const QVariant title = keepContactInfo ? iptcCreatorTitle() : QVariant();
    const QVariantMap contact = keepContactInfo ? iptcContactData() : QVariantMap();
    m_properties.insert(kCGImagePropertyIPTCDictionary,
                        QVariantMap{{kCGImagePropertyIPTCCreatorContactInfo, contact}});
    if (copyright.isValid())
        setIptcCopyright(copyright);
    if (creator.isValid())
        setIptcCreator(creator);
    if (title.isValid())
        setIptcCreatorTitle(title);
    m_cleared |= ClearedGroup::Iptc;
}

void ImageMetadata::clearTiffDataKeepCopyright(bool keepCopyright, bool keepContactInfo)
{
    setTiffValue({}, kCGImagePropertyTIFFSoftware);
    if (!keepCopyright)
        setTiffValue({}, kCGImagePropertyTIFFCopyright);
    if (!keepContactInfo)
        setTiffValue({}, kCGImagePropertyTIFFArtist);
    setTiffValue({}, kCGImagePropertyTIFFImageDescription);
    setTiffValue({}, kCGImagePropertyTIFFMake);
    setTiffValue({}, kCGImagePropertyTIFFModel);
    m_cleared |= ClearedGroup::Tiff;
}

} // namespace plexa
