// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/imagemetadata.h"

#include "metadata/propertyvalues.h"
#include "platform/localeformat.h"
#include "platform/numbervalues.h"

#include <cmath>

namespace plexa
{

namespace
{

void setOrRemove(QVariantMap &dictionary, const QString &key, const QVariant &value)
{
    if (value.isValid())
        dictionary.insert(key, value);
    else
        dictionary.remove(key);
}

/// The value without its decimals; 0 for a value that is no number, and for one that no int holds.
int wholePart(const QVariant &value)
{
    const double number = value.toDouble();
    return std::abs(number) < 2e9 ? static_cast<int>(number) : 0;
}

QVariant firstOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList)
        return value.toList().value(0);
    return value;
}

QVariant validQuality(const QVariant &value)
{
    constexpr int kDefaultQuality = 80;
    const double quality = value.toDouble();
    const bool isInside = isNumber(value) && quality > -1 && quality < 101; // by its whole part
    return isInside ? value : QVariant(kDefaultQuality);
}

} // namespace

ImageMetadata::ImageMetadata(const QVariantMap &source)
    : m_properties(source)
{
    using enum MetadataGroup;
    for (const MetadataGroup group : {Tiff, Exif, ExifAux, Iptc, Gps})
        m_properties.insert(dictionaryKey(group), groupDictionary(source, group));
    QVariantMap iptc = dictionary(Iptc);
    iptc.insert(kCGImagePropertyIPTCCreatorContactInfo, dictionary(Contact));
    m_properties.insert(dictionaryKey(Iptc), iptc);
}

void ImageMetadata::setValueForKey(MetadataGroup group, const QVariant &value, const QString &key)
{
    if (group == MetadataGroup::Top) {
        setOrRemove(m_properties, key, value);
        return;
    }
    const QVariant old = group == MetadataGroup::Contact
                             ? iptcValueForKey(kCGImagePropertyIPTCCreatorContactInfo)
                             : m_properties.value(dictionaryKey(group));
    if (old.typeId() != QMetaType::QVariantMap)
        return;
    QVariantMap changed = old.toMap();
    setOrRemove(changed, key, value);
    if (group == MetadataGroup::Contact)
        setValueForKey(MetadataGroup::Iptc, changed, kCGImagePropertyIPTCCreatorContactInfo);
    else
        m_properties.insert(dictionaryKey(group), changed);
}

QVariant ImageMetadata::value(MetadataProperty property) const
{
    const MetadataPropertyRow &row = metadataProperty(property);
    const QVariant stored = valueForKey(row.group, row.key);
    switch (row.form) {
    case MetadataForm::First:
    case MetadataForm::FirstOfText:
        return firstOf(stored);
    case MetadataForm::Flash:
        return wholePart(stored) & 1;
    default:
        return stored;
    }
}

void ImageMetadata::setValue(MetadataProperty property, const QVariant &value)
{
    const MetadataPropertyRow &row = metadataProperty(property);
    QVariant shown = value;
    QVariant stored = value;
    switch (row.form) {
    case MetadataForm::ReadOnly:
        return;
    case MetadataForm::First:
        stored = value.isValid() ? QVariant(QVariantList{value}) : QVariant();
        break;
    case MetadataForm::Orientation:
        shown = stored = correctedOrientationForValue(value);
        break;
    case MetadataForm::Resolution: {
        constexpr int kInches = 2;
        shown = stored = correctedDPIForValue(value);
        setTiffResolutionUnit(kInches);
        break;
    }
    case MetadataForm::Quality:
        stored = validQuality(value);
        break;
    case MetadataForm::Flash:
        stored = (wholePart(valueForKey(row.group, row.key)) & ~1) | (value.toDouble() != 0 ? 1 : 0);
        break;
    case MetadataForm::Plain:
    case MetadataForm::FirstOfText:
        break;
    }
    setValueForKey(row.group, stored, row.key);
    const auto twin = twinOf(property);
    if (twin && !samePropertyValue(this->value(*twin), shown))
        setValue(*twin, shown);
}

int ImageMetadata::correctedOrientationForValue(const QVariant &value)
{
    const int orientation = wholePart(value);
    return orientation >= 1 && orientation <= 8 ? orientation : 1;
}

QVariant ImageMetadata::correctedDPIForValue(const QVariant &value)
{
    constexpr int kDefaultDpi = 72;
    return wholePart(value) > 0 ? value : QVariant(kDefaultDpi);
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

bool ImageMetadata::gpsLowerThanSeaLevel() const
{
    return gpsValueForKey(kCGImagePropertyGPSAltitudeRef).toDouble() != 0;
}

QVariant ImageMetadata::exifExposureTimeStr(const LocaleFormat &locale) const
{
    const QVariant seconds = exifExposureTime();
    constexpr int kMaxDecimals = 4;
    return seconds.isValid() ? QVariant(locale.decimal(seconds.toDouble(), kMaxDecimals)) : QVariant();
}

QVariant ImageMetadata::gpsAltitudeString() const
{
    constexpr double kFeetPerMetre = 3.2808; // the documented factor, not the exact one
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
