// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/clearedgroups.h"
#include "metadata/imagemetadataproperties.h"

#include <QDateTime>
#include <QString>
#include <QVariant>
#include <QVariantMap>

namespace plexa
{

class LocaleFormat;

/// The editable copy of a photo's property dictionary (keys: metadata/propertykeys.h), with an accessor for
/// every row of PLEXA_METADATA_PROPERTIES. A value. The five sub-dictionaries and the creator's contact
/// dictionary are always present. An absent value is an invalid QVariant; setting an invalid one removes the
/// key. Not shared between threads while it is being edited.
class ImageMetadata final
{
public:
    /// @param source  a property dictionary, may be empty. Sub-dictionaries that are missing or are no
    ///                dictionaries become empty ones.
    /// @param cleared  the groups that were cleared before
    explicit ImageMetadata(const QVariantMap &source = {}, ClearedGroups cleared = {});

    /// The whole dictionary, as a writer reads it.
    const QVariantMap &imagePropertiesDictionary() const { return m_properties; }

    bool operator==(const ImageMetadata &) const = default;

    /// The value of a property in the form of its row.
    QVariant value(MetadataProperty property) const;

    /// Stores a value in the form of its row, and in the property's twin. Nothing happens for the read-only
    /// ones: GPS data can be cleared, not edited.
    void setValue(MetadataProperty property, const QVariant &value);

    /// Any key of a dictionary; Top is the whole.
    QVariantMap dictionary(MetadataGroup group) const { return groupDictionary(m_properties, group); }
    QVariant valueForKey(MetadataGroup group, const QString &key) const
    {
        return dictionary(group).value(key);
    }
    void setValueForKey(MetadataGroup group, const QVariant &value, const QString &key);

    QVariantMap gpsData() const { return dictionary(MetadataGroup::Gps); }
    QVariant gpsValueForKey(const QString &key) const { return valueForKey(MetadataGroup::Gps, key); }
    void setImagePropertiesValue(const QVariant &value, const QString &key)
    {
        setValueForKey(MetadataGroup::Top, value, key);
    }

    static int correctedOrientationForValue(const QVariant &value);
    /// The value itself where its whole part is above 0, else 72.
    static QVariant correctedDPIForValue(const QVariant &value);
    int orientationCorrected() const { return correctedOrientationForValue(orientation()); }
    double dpiWidthCorrected() const { return correctedDPIForValue(dpiWidth()).toDouble(); }
    double dpiHeightCorrected() const { return correctedDPIForValue(dpiHeight()).toDouble(); }

    /// Capture and scan time: the clock that the photo's camera showed, in the local time zone (in one of a
    /// fixed offset where the local clock skips that hour); invalid when absent or not an EXIF date. The
    /// setters store the wall clock (onItsWallClock()).
    QDateTime exifDateTimeOriginal() const;
    void setExifDateTimeOriginal(const QDateTime &when);
    QDateTime exifDateTimeDigitized() const;
    void setExifDateTimeDigitized(const QDateTime &when);

    /// The form of EXIF dates as QDateTime::toString() reads it: "yyyy:MM:dd HH:mm:ss".
    static QString exifDateTimeFormatter() { return QStringLiteral("yyyy:MM:dd HH:mm:ss"); }

    bool gpsLowerThanSeaLevel() const;

    /// Texts for people; invalid where the value is absent.
    QVariant exifExposureTimeStr(const LocaleFormat &locale) const; ///< at most 4 decimals
    QVariant exifExposureProgramStr() const;                        ///< "normal program"
    QVariant exifMeteringModeStr() const;                           ///< "spot"
    /// 48° 51' 30.240" N; each part keeps the sign of a negative number.
    QVariant gpsLatitudeFull() const;
    QVariant gpsLongitudeFull() const;
    QVariant gpsAltitudeString() const;
    QVariant gpsImageDirection() const;
    QVariant gpsTimeStamp() const;

    void clearExifData(); ///< EXIF and EXIF auxiliary
    void clearGPSData();
    /// Copyright: the notice. Contact information: creator, creator's title, contact dictionary.
    void clearIptcDataKeepCopyright(bool keepCopyright, bool keepContactInfo);
    /// Removes software, description, camera and, unless kept, copyright and artist (contact information).
    void clearTiffDataKeepCopyright(bool keepCopyright, bool keepContactInfo);

    /// The groups that have been cleared; a writer also clears what the dictionary does not model.
    ClearedGroups clearedGroups() const { return m_cleared; }

    // clang-format off

    // Accessors of the rows: QVariant iptcCity() const, void setIptcCity(const QVariant &), and so on.
#define PLEXA_ACCESSORS(getter, setter, ...) \
    QVariant getter() const { return value(MetadataProperty::getter); } \
    void setter(const QVariant &newValue) { setValue(MetadataProperty::getter, newValue); }
    PLEXA_METADATA_PROPERTIES(PLEXA_ACCESSORS)
#undef PLEXA_ACCESSORS

    // Accessors of the dictionaries: QVariantMap iptcData() const, QVariant iptcValueForKey(key) const,
    // void setIptcValue(value, key), and so on.
#define PLEXA_DICTIONARY(data, getter, setter, group) \
    QVariantMap data() const { return dictionary(MetadataGroup::group); } \
    QVariant getter(const QString &key) const { return valueForKey(MetadataGroup::group, key); } \
    void setter(const QVariant &newValue, const QString &key) { setValueForKey(MetadataGroup::group, newValue, key); }
    PLEXA_DICTIONARY(tiffData, tiffValueForKey, setTiffValue, Tiff)
    PLEXA_DICTIONARY(exifData, exifValueForKey, setExifValue, Exif)
    PLEXA_DICTIONARY(exifAuxData, exifAuxValueForKey, setExifAuxValue, ExifAux)
    PLEXA_DICTIONARY(iptcData, iptcValueForKey, setIptcValue, Iptc)
    PLEXA_DICTIONARY(iptcContactData, iptcContactValueForKey, setIptcContactValue, Contact)
#undef PLEXA_DICTIONARY

    // clang-format on

private:
    QVariantMap m_properties;
    ClearedGroups m_cleared;
};

} // namespace plexa
