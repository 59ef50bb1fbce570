// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/exifvalues.h"

#include "imageio/embedded/metadataclearing.h"
#include "metadata/metadatatext.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace plexa
{

namespace
{

// More elements than any array field has; longer values are data.
constexpr long kMaxElements = 256;

QVariant integerOf(const Exiv2::Value &value)
{
    if (!isNumeric(value) || value.count() < 1)
        return {};
    const QVariant number = numberOfValue(value, 0);
    if (number.typeId() == QMetaType::Double) {
        const double whole = number.toDouble();
        return std::abs(whole) < 1e9 && whole == std::floor(whole) ? QVariant(static_cast<int>(whole))
                                                                   : number;
    }
    return number;
}

QVariant textOrNothing(const QString &text)
{
    return text.isEmpty() ? QVariant() : QVariant(text);
}

/// Photographer's and editor's notice, each closed by NUL.
QVariant copyrightOf(const Exiv2::Value &value)
{
    const QList<QByteArray> notices = bytesOfValue(value).split('\0');
    QStringList texts;
    for (qsizetype i = 0; i < std::min<qsizetype>(2, notices.size()); ++i) {
        const QString text = trimmedAtEnd(decodedField(notices[i]));
        if (!text.isEmpty())
            texts += text;
    }
    return textOrNothing(texts.join(u'\n'));
}

QVariant degreesOf(const Exiv2::Value &value)
{
    const QVariantList parts = numbersOfValue(value);
    // Without a fix some cameras write zeros over zeros: no place, least of all one in the Gulf of Guinea.
    if (parts.isEmpty() || parts.size() > 3 || !numberOfValue(value, 0).isValid())
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
    const QVariantList parts = numbersOfValue(value);
    if (parts.size() != 3 || !numberOfValue(value, 0).isValid() || !(parts[0].toDouble() >= 0) ||
        !(parts[0].toDouble() < 1e4))
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
        bytes = bytesOfValue(value);
    return textOrNothing(decodedComment(bytes, order == Exiv2::bigEndian));
}

} // namespace

QVariant versionOf(const QByteArray &digits)
{
    if (digits.size() != 4 ||
        !std::all_of(digits.begin(), digits.end(), [](char digit) { return digit >= '0' && digit <= '9'; }))
        return {};
    QVariantList parts{digits.left(2).toInt(), digits[2] - '0'};
    if (digits[3] != '0')
        parts += digits[3] - '0';
    return parts;
}

QVariant numberOfValue(const Exiv2::Value &value, long n)
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

QVariantList numbersOfValue(const Exiv2::Value &value)
{
    QVariantList numbers;
    if (isNumeric(value) && value.count() <= kMaxElements) {
        for (long i = 0; i < value.count(); ++i) {
            // "Unknown", zero divided by zero, has a place to keep in a list.
            const QVariant number = numberOfValue(value, i);
            numbers += number.isValid() ? number : QVariant(0);
        }
    }
    return numbers;
}

const Exiv2::Exifdatum *exifDatum(const Exiv2::ExifData &exif, const char *key)
{
    const auto found = exif.findKey(Exiv2::ExifKey(key));
    return found == exif.end() ? nullptr : &*found;
}

QString exifFieldName(const Exiv2::Exifdatum &datum)
{
    if (datum.key() == "Exif.Photo.UserComment")
        return QStringLiteral("user comment");
    if (datum.key() == "Exif.Photo.MakerNote")
        return QStringLiteral("maker note");
    return (isMakerNoteGroup(datum.groupName()) ? QStringLiteral("maker note field %1")
                                                : QStringLiteral("EXIF field %1"))
        .arg(QString::fromStdString(datum.tagName()));
}

bool hasExifGroup(const Exiv2::ExifData &exif, const char *group)
{
    return std::any_of(exif.begin(), exif.end(),
                       [group](const Exiv2::Exifdatum &datum) { return datum.groupName() == group; });
}

QByteArray bytesOfValue(const Exiv2::Value &value, long maxBytes)
{
    if (value.size() <= 0 || value.size() > maxBytes)
        return {};
    QByteArray bytes(value.size(), '\0');
    value.copy(reinterpret_cast<Exiv2::byte *>(bytes.data()), Exiv2::littleEndian);
    return bytes;
}

QVariant textOfValue(const Exiv2::Value &value, bool isTrimmed)
{
    QString text;
    if (value.typeId() == Exiv2::asciiString || value.typeId() == Exiv2::undefined ||
        value.typeId() == Exiv2::unsignedByte || value.typeId() == Exiv2::comment)
        text = decodedField(bytesOfValue(value));
    else if (isNumeric(value) && value.count() <= kMaxElements)
        text = QString::fromStdString(value.toString());
    return textOrNothing(isTrimmed ? trimmedAtEnd(text) : text);
}

QByteArray iptcCharacterSet(const Exiv2::IptcData &iptc)
{
    const auto found = iptc.findKey(Exiv2::IptcKey("Iptc.Envelope.CharacterSet"));
    return found == iptc.end() ? QByteArray() : bytesOfValue(found->value());
}

void makeUtf8(Exiv2::IptcData &iptc)
{
    const QByteArray characterSet = iptcCharacterSet(iptc);
    for (Exiv2::Iptcdatum &datum : iptc) {
        if (datum.typeId() != Exiv2::string || datum.record() != Exiv2::IptcDataSets::application2)
            continue;
        const std::string before = datum.toString();
        const std::string after =
            decodedIptcText(QByteArray::fromStdString(before), characterSet).toStdString();
        if (after != before)
            datum.setValue(after);
    }
    iptc["Iptc.Envelope.CharacterSet"] = std::string("\x1B%G");
}

QVariant propertyOfValue(const Exiv2::Value &value, MetadataKind kind, bool isTrimmed, Exiv2::ByteOrder order)
{
    switch (kind) {
    case MetadataKind::Text:
    case MetadataKind::DateTime:
    case MetadataKind::IptcDate:
    case MetadataKind::TextList:
        return textOfValue(value, isTrimmed);
    case MetadataKind::Copyright:
        return copyrightOf(value);
    case MetadataKind::Comment:
        return commentOf(value, order);
    case MetadataKind::Integer:
        return integerOf(value);
    case MetadataKind::Number:
        return isNumeric(value) && value.count() >= 1 ? numberOfValue(value, 0) : QVariant();
    case MetadataKind::IntegerList:
    case MetadataKind::NumberList: {
        const QVariantList numbers = numbersOfValue(value);
        return numbers.isEmpty() ? QVariant() : QVariant(numbers);
    }
    case MetadataKind::Version:
        return versionOf(bytesOfValue(value));
    case MetadataKind::Degrees:
        return degreesOf(value);
    case MetadataKind::TimeOfDay:
        return timeOfDayOf(value);
    }
    return {};
}

} // namespace plexa
