// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/metadatareading.h"

#include "imageio/metadatafields.h"
#include "imageio/metadatatext.h"
#include "imageio/propertykeys.h"
#include "imageio/xmpreading.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <limits>

namespace plexa
{

namespace
{

// More elements than any array field has; what is longer is no value for people.
constexpr long kMaxElements = 256;
constexpr long kMaxTextBytes = 1024 * 1024;

/// Element `n` of a numeric value: the exact quotient of a rational. None: zero divided by zero and such.
QVariant numberAt(const Exiv2::Value &value, long n)
{
    const auto at = static_cast<size_t>(n);
    const auto quotient = [](double numerator, double denominator) {
        return denominator == 0 ? QVariant() : QVariant(numerator / denominator);
    };
    if (const auto *rationals = dynamic_cast<const Exiv2::URationalValue *>(&value))
        return quotient(rationals->value_[at].first, rationals->value_[at].second);
    if (const auto *rationals = dynamic_cast<const Exiv2::RationalValue *>(&value))
        return quotient(rationals->value_[at].first, rationals->value_[at].second);
    if (const auto *numbers = dynamic_cast<const Exiv2::DoubleValue *>(&value))
        return std::isfinite(numbers->value_[at]) ? QVariant(numbers->value_[at]) : QVariant();
    if (const auto *numbers = dynamic_cast<const Exiv2::FloatValue *>(&value))
        return std::isfinite(numbers->value_[at]) ? QVariant(double{numbers->value_[at]}) : QVariant();
    const qlonglong whole = value.toLong(n);
    if (!value.ok())
        return {};
    if (whole >= std::numeric_limits<int>::min() && whole <= std::numeric_limits<int>::max())
        return static_cast<int>(whole);
    return whole;
}

bool isNumeric(const Exiv2::Value &value)
{
    switch (value.typeId()) {
    case Exiv2::unsignedByte:
    case Exiv2::unsignedShort:
    case Exiv2::unsignedLong:
    case Exiv2::unsignedRational:
    case Exiv2::signedByte:
    case Exiv2::undefined:
    case Exiv2::signedShort:
    case Exiv2::signedLong:
    case Exiv2::signedRational:
    case Exiv2::tiffFloat:
    case Exiv2::tiffDouble:
    case Exiv2::tiffIfd:
        return true;
    default:
        return false;
    }
}

QVariantList numbersOf(const Exiv2::Value &value)
{
    QVariantList numbers;
    if (isNumeric(value) && value.count() <= kMaxElements) {
        for (long i = 0; i < value.count(); ++i) {
            // "Unknown", zero divided by zero, has a place to keep in a list.
            const QVariant number = numberAt(value, i);
            numbers += number.isValid() ? number : QVariant(0);
        }
    }
    return numbers;
}

QVariant integerOf(const Exiv2::Value &value)
{
    if (!isNumeric(value) || value.count() < 1)
        return {};
    const QVariant number = numberAt(value, 0);
    if (number.typeId() == QMetaType::Double) {
        const double whole = number.toDouble();
        return std::abs(whole) < 1e9 && whole == std::floor(whole) ? QVariant(static_cast<int>(whole))
                                                                   : number;
    }
    return number;
}

QByteArray bytesOf(const Exiv2::Value &value)
{
    if (value.size() <= 0 || value.size() > kMaxTextBytes)
        return {};
    QByteArray bytes(value.size(), '\0');
    value.copy(reinterpret_cast<Exiv2::byte *>(bytes.data()), Exiv2::littleEndian);
    return bytes;
}

QVariant textOrNothing(const QString &text)
{
    return text.isEmpty() ? QVariant() : QVariant(text);
}

QVariant textOf(const Exiv2::Value &value, bool isTrimmed)
{
    QString text;
    if (value.typeId() == Exiv2::asciiString || value.typeId() == Exiv2::undefined ||
        value.typeId() == Exiv2::unsignedByte || value.typeId() == Exiv2::comment)
        text = decodedField(bytesOf(value));
    else if (isNumeric(value) && value.count() <= kMaxElements)
        text = QString::fromStdString(value.toString());
    return textOrNothing(isTrimmed ? trimmedAtEnd(text) : text);
}

/// Photographer's and editor's notice, each closed by NUL.
QVariant copyrightOf(const Exiv2::Value &value)
{
    const QList<QByteArray> notices = bytesOf(value).split('\0');
    QStringList texts;
    for (qsizetype i = 0; i < std::min<qsizetype>(2, notices.size()); ++i) {
        const QString text = trimmedAtEnd(decodedField(notices[i]));
        if (!text.isEmpty())
            texts += text;
    }
    return textOrNothing(texts.join(u'\n'));
}

/// "0221" is [2, 2, 1], "0100" is [1, 0].
QVariant versionOf(const Exiv2::Value &value)
{
    const QByteArray digits = bytesOf(value);
    if (digits.size() != 4 ||
        !QRegularExpression(QStringLiteral("^[0-9]{4}$")).match(QString::fromLatin1(digits)).hasMatch())
        return {};
    QVariantList parts{digits.left(2).toInt(), digits[2] - '0'};
    if (digits[3] != '0')
        parts += digits[3] - '0';
    return parts;
}

QVariant degreesOf(const Exiv2::Value &value)
{
    const QVariantList parts = numbersOf(value);
    if (parts.isEmpty() || parts.size() > 3)
        return {};
    double degrees = 0;
    double unit = 1;
    for (const QVariant &part : parts) {
        degrees += part.toDouble() / unit;
        unit *= 60;
    }
    return degrees;
}

QVariant timeOfDayOf(const Exiv2::Value &value)
{
    const QVariantList parts = numbersOf(value);
    if (parts.size() != 3 || !(parts[0].toDouble() >= 0) || !(parts[0].toDouble() < 1e4))
        return {};
    // Fractions of hours and minutes run down into the seconds.
    const double total = parts[0].toDouble() * 3600 + parts[1].toDouble() * 60 + parts[2].toDouble();
    if (!(total >= 0) || !(total < 1e8))
        return {};
    const auto hours = static_cast<int>(total / 3600);
    const auto minutes = static_cast<int>((total - hours * 3600.0) / 60);
    const double seconds = total - hours * 3600.0 - minutes * 60.0;
    QString text = QStringLiteral("%1:%2:").arg(hours, 2, 10, QChar(u'0')).arg(minutes, 2, 10, QChar(u'0'));
    const double rounded = std::round(seconds * 1e6) / 1e6;
    if (rounded < 10)
        text += u'0';
    return text + QString::number(rounded, 'g', 10);
}

QVariant commentOf(const Exiv2::Value &value, Exiv2::ByteOrder order)
{
    QByteArray bytes;
    if (const auto *comment = dynamic_cast<const Exiv2::CommentValue *>(&value))
        bytes = QByteArray::fromStdString(comment->value_.substr(0, kMaxTextBytes));
    else
        bytes = bytesOf(value);
    return textOrNothing(decodedComment(bytes, order == Exiv2::bigEndian));
}

/// Camera makers pad these names with blanks; in other texts a blank at the end is the author's.
bool isTrimmedField(QLatin1StringView key)
{
    return key == kCGImagePropertyTIFFMake || key == kCGImagePropertyTIFFModel ||
           key == kCGImagePropertyTIFFSoftware || key == kCGImagePropertyTIFFArtist ||
           key == kCGImagePropertyExifAuxLensModel || key == kCGImagePropertyExifAuxSerialNumber ||
           key == kCGImagePropertyExifCameraOwnerName || key == kCGImagePropertyExifSubsecTime ||
           key == kCGImagePropertyExifSubsecTimeOrginal || key == kCGImagePropertyExifSubsecTimeDigitized;
}

QVariant exifValue(const Exiv2::Exifdatum &datum, const MetadataField &field, Exiv2::ByteOrder order)
{
    const Exiv2::Value &value = datum.value();
    switch (field.kind) {
    case MetadataKind::Text:
    case MetadataKind::DateTime:
    case MetadataKind::IptcDate:
    case MetadataKind::TextList:
        return textOf(value, isTrimmedField(field.key));
    case MetadataKind::Copyright:
        return copyrightOf(value);
    case MetadataKind::Comment:
        return commentOf(value, order);
    case MetadataKind::Integer:
        return integerOf(value);
    case MetadataKind::Number:
        return isNumeric(value) && value.count() >= 1 ? numberAt(value, 0) : QVariant();
    case MetadataKind::IntegerList:
    case MetadataKind::NumberList: {
        const QVariantList numbers = numbersOf(value);
        return numbers.isEmpty() ? QVariant() : QVariant(numbers);
    }
    case MetadataKind::Version:
        return versionOf(value);
    case MetadataKind::Degrees:
        return degreesOf(value);
    case MetadataKind::TimeOfDay:
        return timeOfDayOf(value);
    }
    return {};
}

QVariant exifField(const MetadataSet &set, const MetadataField &field)
{
    if (!field.exif)
        return {};
    const Exiv2::ExifKey key(field.exif);
    auto found = set.exif.findKey(key);
    if (found == set.exif.end() && field.group == MetadataGroup::Exif) {
        // Scanners and raw converters put EXIF facts into the main directory, as TIFF/EP does.
        found = std::find_if(set.exif.begin(), set.exif.end(), [&](const Exiv2::Exifdatum &datum) {
            return datum.tag() == key.tag() && datum.groupName() == "Image";
        });
    }
    return found == set.exif.end() ? QVariant() : exifValue(*found, field, set.byteOrder);
}

QVariant iptcField(const Exiv2::IptcData &iptc, const MetadataField &field)
{
    if (!field.iptc)
        return {};
    const Exiv2::IptcKey key(field.iptc);
    QStringList texts;
    for (const Exiv2::Iptcdatum &datum : iptc) {
        if (datum.record() != key.record() || datum.tag() != key.tag())
            continue;
        // Many records are UTF-8 and do not say so, and some say so and are not.
        const QString text = decodedField(bytesOf(datum.value()));
        if (!text.isEmpty() && texts.size() < kMaxElements * 16)
            texts += text;
    }
    if (texts.isEmpty())
        return {};
    if (field.kind != MetadataKind::TextList)
        return texts.constFirst();
    return QVariantList(texts.begin(), texts.end());
}

void insertSerialNumber(QVariantMap &aux, const Exiv2::ExifData &exif)
{
    if (aux.contains(kCGImagePropertyExifAuxSerialNumber))
        return;
    const auto found = Exiv2::serialNumber(exif);
    if (found == exif.end() || found->count() < 1)
        return;
    // A Canon number is stored as a number; its interpretation is a different text on old bodies.
    const QVariant text = isNumeric(found->value()) && found->count() == 1
                              ? numberAt(found->value(), 0).toString()
                              : textOf(found->value(), true);
    if (!text.toString().isEmpty())
        aux.insert(kCGImagePropertyExifAuxSerialNumber, text);
}

/// The lens name as the maker notes tell it, interpreted; empty for unknown lenses, which come as numbers.
QString makerNoteLens(const Exiv2::ExifData &exif)
{
    const auto found = Exiv2::lensName(exif);
    if (found == exif.end())
        return {};
    const QString name = trimmedAtEnd(decodedField(QByteArray::fromStdString(found->print(&exif))));
    static const QRegularExpression noName(
        QStringLiteral("^(\\(?[0-9 .x]*\\)?|n/a|none|unknown.*|manual lens.*|-+)$"),
        QRegularExpression::CaseInsensitiveOption);
    return noName.match(name).hasMatch() ? QString() : name;
}

void insertLens(QVariantMap &aux, const MetadataSet &set)
{
    const QString name = makerNoteLens(set.exif);
    if (!name.isEmpty() && !aux.contains(kCGImagePropertyExifAuxLensModel))
        aux.insert(kCGImagePropertyExifAuxLensModel, name);
    const auto canonType = set.exif.findKey(Exiv2::ExifKey("Exif.CanonCs.LensType"));
    // A number that names no lens comes from a damaged note or a camera without lens mount.
    if (!name.isEmpty() && canonType != set.exif.end() && canonType->count() == 1) {
        const QVariant number = numberAt(canonType->value(), 0);
        if (number.toInt() > 0 && number.toInt() != 0xFFFF)
            aux.insert(kCGImagePropertyExifAuxLensID, number);
    }
}

void insertResolution(QVariantMap &properties)
{
    const QVariantMap tiff = properties.value(kCGImagePropertyTIFFDictionary).toMap();
    const double perInch = tiff.value(kCGImagePropertyTIFFResolutionUnit).toInt() == 3 ? 2.54 : 1;
    const auto insert = [&](QLatin1StringView key, QLatin1StringView tiffKey) {
        const double resolution = tiff.value(tiffKey).toDouble() * perInch;
        if (resolution > 0)
            properties.insert(key, resolution);
    };
    // A resolution without unit tells the shape of the pixels, like one with a unit.
    insert(kCGImagePropertyDPIWidth, kCGImagePropertyTIFFXResolution);
    insert(kCGImagePropertyDPIHeight, kCGImagePropertyTIFFYResolution);
}

/// A copyright, caption or creator in XMP belongs to the IPTC dictionary alone; which way up a picture is
/// and how dense its pixels are only EXIF and the container say.
bool readsXmp(const MetadataField &field)
{
    return field.xmp &&
           (field.group != MetadataGroup::Tiff || field.key == kCGImagePropertyTIFFMake ||
            field.key == kCGImagePropertyTIFFModel || field.key == kCGImagePropertyTIFFSoftware ||
            field.key == kCGImagePropertyTIFFDateTime);
}

} // namespace

QVariantMap propertiesOfMetadata(const MetadataSet &set, const Exiv2::XmpData &xmp)
{
    QMap<MetadataGroup, QVariantMap> groups;
    const auto insert = [&](const MetadataField &field, const QVariant &value) {
        if (value.isValid() && !groups[field.group].contains(field.key))
            groups[field.group].insert(field.key, value);
    };
    for (const MetadataField &field : metadataFields()) {
        insert(field, exifField(set, field));
        insert(field, iptcField(set.iptc, field));
    }
    insertLens(groups[MetadataGroup::ExifAux], set);
    insertSerialNumber(groups[MetadataGroup::ExifAux], set.exif);
    for (const MetadataField &field : metadataFields()) {
        if (readsXmp(field))
            insert(field, xmpField(xmp, field));
    }
    insertGpsFromXmp(groups[MetadataGroup::Gps], xmp);

    if (!groups[MetadataGroup::Contact].isEmpty())
        groups[MetadataGroup::Iptc].insert(kCGImagePropertyIPTCCreatorContactInfo,
                                           groups.take(MetadataGroup::Contact));
    QVariantMap properties;
    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        if (group.key() != MetadataGroup::Contact && !group->isEmpty())
            properties.insert(dictionaryKey(group.key()), *group);
    }
    const QVariant orientation =
        properties.value(kCGImagePropertyTIFFDictionary).toMap().value(kCGImagePropertyTIFFOrientation);
    if (orientation.isValid())
        properties.insert(kCGImagePropertyOrientation, orientation);
    insertResolution(properties);
    return properties;
}

} // namespace plexa
