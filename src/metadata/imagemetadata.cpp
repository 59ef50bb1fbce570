// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/imagemetadata.h"

#include "metadata/propertyvalues.h"
#include "platform/localeformat.h"
#include "platform/numbervalues.h"

#include <QTimeZone>

#include <cmath>

namespace plexa
{

namespace
{

constexpr MetadataPropertyRow kRows[] = {
#define PLEXA_ROW(getter, setter, form, kind, group, key, label, isEditable)                                 \
    {#getter, label, MetadataForm::form, MetadataKind::kind, MetadataGroup::group, key, isEditable},
    PLEXA_METADATA_PROPERTIES(PLEXA_ROW)
#undef PLEXA_ROW
};

using enum MetadataProperty;

constexpr MetadataProperty kTwins[][2] = {
    {orientation, tiffOrientation}, {dpiWidth, tiffXResolution}, {dpiHeight, tiffYResolution},
    {iptcCopyright, tiffCopyright}, {iptcCreator, tiffArtist},   {iptcDescription, tiffDescription},
};

void setOrRemove(QVariantMap &dictionary, const QString &key, const QVariant &value)
{
    if (value.isValid())
        dictionary.insert(key, value);
    else
        dictionary.remove(key);
}

/// The value without its decimals; 0 for a value that is not a number, or too great for an int.
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

/// Degrees, minutes and seconds, each with the sign of the number, then the letter.
QVariant latitudeOrLongitudeString(const QVariant &number, const QVariant &reference)
{
    if (!number.isValid())
        return {};
    constexpr double kGreatest = 1e9; // beyond it a whole part does not fit an int
    const double value = number.toDouble();
    if (!(std::abs(value) < kGreatest))
        return {};
    const int degrees = static_cast<int>(value);
    const double rest = (value - degrees) * 60;
    const int minutes = static_cast<int>(rest);
    const double seconds = (rest - minutes) * 60;
    QString text = QString::asprintf("%d\u00B0 %d' %.3f\"", degrees, minutes, seconds);
    if (reference.isValid())
        text += u' ' + reference.toString();
    return text;
}

/// In the local time zone, or in one that shows the same clock if the local one skips that hour. Invalid: not
/// an EXIF date.
QDateTime exifDateTimeFromString(const QString &text)
{
    constexpr qsizetype kDateLength = 10;
    const QString format = ImageMetadata::exifDateTimeFormatter();
    const QDate date = QDate::fromString(text.left(kDateLength), format.left(kDateLength));
    const QTime time = QTime::fromString(text.mid(kDateLength), format.mid(kDateLength));
    if (!date.isValid() || !time.isValid())
        return {};
    const QDateTime local(date, time);
    if (local.isValid())
        return local;
    // The hour that the local clock skips in spring: cameras in other zones have it. Any offset makes the
    // clock show this time; the long form of the time shows the offset, too.
    return QDateTime(date, time, QTimeZone(QDateTime(date.addDays(-1), time).offsetFromUtc()));
}

QVariant dateText(const QDateTime &when)
{
    return when.isValid() ? QVariant(onItsWallClock(when).toString(ImageMetadata::exifDateTimeFormatter()))
                          : QVariant();
}

} // namespace

std::span<const MetadataPropertyRow> metadataProperties()
{
    return kRows;
}

const MetadataPropertyRow &metadataProperty(MetadataProperty property)
{
    return kRows[static_cast<size_t>(property)];
}

std::optional<MetadataProperty> twinOf(MetadataProperty property)
{
    for (const auto &[top, nested] : kTwins) {
        if (top == property || nested == property)
            return top == property ? nested : top;
    }
    return {};
}

ImageMetadata::ImageMetadata(const QVariantMap &source, ClearedGroups cleared)
    : m_properties(source)
    , m_cleared(cleared)
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
    setExifDateTimeOriginalStr(dateText(when));
}

QDateTime ImageMetadata::exifDateTimeDigitized() const
{
    return exifDateTimeFromString(exifDateTimeDigitizedStr().toString());
}

void ImageMetadata::setExifDateTimeDigitized(const QDateTime &when)
{
    setExifDateTimeDigitizedStr(dateText(when));
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

QVariant ImageMetadata::exifExposureProgramStr() const
{
    static constexpr const char *kNames[] = {"undefined",         "manual",           "normal program",
                                             "aperture priority", "shutter priority", "creative program",
                                             "action program",    "portrait mode",    "landscape mode"};
    const QVariant program = exifExposureProgram();
    if (!program.isValid())
        return {};
    const qlonglong code = program.toLongLong();
    if (code < 0 || code >= static_cast<qlonglong>(std::size(kNames)))
        return QStringLiteral("unknown");
    return QString(QLatin1StringView(kNames[code]));
}

QVariant ImageMetadata::exifMeteringModeStr() const
{
    static constexpr const char *kNames[] = {
        "average", "center-weighted average", "spot", "multi-spot", "pattern", "partial"};
    const QVariant mode = exifMeteringMode();
    if (!mode.isValid())
        return {};
    const qlonglong code = mode.toLongLong();
    if (code == 255)
        return QStringLiteral("other");
    if (code < 1 || code > static_cast<qlonglong>(std::size(kNames)))
        return QStringLiteral("unknown");
    return QString(QLatin1StringView(kNames[code - 1]));
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
