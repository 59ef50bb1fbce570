// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/metadatafields.h"
#include "metadata/propertykeys.h"
#include "support/words.h"

#include <QVariant>

#include <cmath>

namespace plexa::test
{

/// The name that exiftool gives to a field of the dictionary.
inline QString exiftoolName(MetadataGroup group, const QString &key)
{
    static const QStringList renamed =
        words("DateTime=ModifyDate ISOSpeedRatings=ISO DateTimeDigitized=CreateDate "
              "ExposureBiasValue=ExposureCompensation SubsecTime=SubSecTime "
              "SubsecTimeOriginal=SubSecTimeOriginal SubsecTimeDigitized=SubSecTimeDigitized "
              "FlashPixVersion=FlashpixVersion PixelXDimension=ExifImageWidth "
              "PixelYDimension=ExifImageHeight FocalLenIn35mmFilm=FocalLengthIn35mmFormat "
              "SubjectDistRange=SubjectDistanceRange CameraOwnerName=OwnerName "
              "BodySerialNumber=SerialNumber LensSpecification=LensInfo GPSVersion=GPSVersionID "
              "Differental=GPSDifferential Byline=By-line BylineTitle=By-lineTitle "
              "Caption/Abstract=Caption-Abstract Writer/Editor=Writer-Editor "
              "Province/State=Province-State SubLocation=Sub-location "
              "Country/PrimaryLocationName=Country-PrimaryLocationName "
              "Country/PrimaryLocationCode=Country-PrimaryLocationCode "
              "SupplementalCategory=SupplementalCategories");
    const QStringList found = renamed.filter(QRegularExpression(u"^%1="_qs.arg(key)));
    QString name = found.isEmpty() ? key : found.first().section(u'=', 1);
    if (group == MetadataGroup::Gps && !name.startsWith(u"GPS"))
        name.prepend(u"GPS");
    return name;
}

/// The groups of exiftool (family 1) that contain the fields of a group of the dictionary.
inline QStringList exiftoolGroups(MetadataGroup group)
{
    switch (group) {
    case MetadataGroup::Tiff:
        return {u"IFD0"_qs};
    case MetadataGroup::Exif:
        return {u"ExifIFD"_qs};
    case MetadataGroup::Gps:
        return {u"GPS"_qs};
    case MetadataGroup::Iptc:
        return {u"IPTC"_qs};
    default:
        return {};
    }
}

/// The parts of a value as texts, numbers with all digits.
inline QStringList partsOf(const QVariant &value)
{
    QStringList result;
    if (value.typeId() == QMetaType::QVariantList) {
        for (const QVariant &item : value.toList())
            result += partsOf(item);
        return result;
    }
    return value.typeId() == QMetaType::Double ? QStringList(QString::number(value.toDouble(), 'g', 17))
                                               : value.toString().split(u' ');
}

/// Converts an APEX value to seconds or an F-number, as exiftool does.
inline QVariant withoutApex(const MetadataField &field, const QVariant &value)
{
    if (field.key == kCGImagePropertyExifShutterSpeedValue && value.toDouble() < 100)
        return std::exp2(-value.toDouble());
    if (field.key == kCGImagePropertyExifApertureValue || field.key == kCGImagePropertyExifMaxApertureValue)
        return std::exp2(value.toDouble() / 2);
    return value;
}

/// Is the value the one that exiftool prints, apart from its rounding and formatting?
inline bool isSame(const QString &expected, const MetadataField &field, const QVariant &value)
{
    const MetadataKind kind = field.kind;
    if (kind == MetadataKind::Version) {
        const QVariantList parts = value.toList();
        QString digits = QStringLiteral("%1%2")
                             .arg(parts.value(0).toInt(), 2, 10, QChar(u'0'))
                             .arg(parts.value(1).toInt());
        return (digits + (parts.size() > 2 ? parts[2].toString() : QStringLiteral("0"))) == expected;
    }
    if (kind == MetadataKind::IptcDate)
        return QString(expected).remove(u':') == value.toString();
    if (field.group == MetadataGroup::Iptc && QString(field.key).contains(u"Time"))
        return value.toString().startsWith(QString(expected).remove(u':'));
    if (field.key == kCGImagePropertyExifCFAPattern) // exiftool omits the high bytes of both sizes
        return value.toList().size() == expected.split(u' ').size() + 2;
    const QStringList left =
        QString(expected).replace(QLatin1StringView("undef"), QLatin1StringView("0")).split(u' ');
    const QStringList right = partsOf(value);
    if (left.size() != right.size())
        return false;
    for (qsizetype i = 0; i < left.size(); ++i) {
        bool isNumber = false;
        const double wanted = left[i].toDouble(&isNumber);
        // exiftool prints a quotient with ten digits.
        if (left[i] != right[i] &&
            !(isNumber && std::abs(right[i].toDouble() - wanted) <= 1e-8 * std::abs(wanted)))
            return false;
    }
    return true;
}

} // namespace plexa::test
