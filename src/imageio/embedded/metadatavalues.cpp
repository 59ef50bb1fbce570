// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/metadatavalues.h"

#include "metadata/metadatatext.h"

#include <QRegularExpression>

#include <cmath>
#include <limits>
#include <utility>

namespace plexa
{

namespace
{

QVariantList itemsOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList)
        return value.toList();
    return {value};
}

bool isRational(Exiv2::TypeId type)
{
    return type == Exiv2::unsignedRational || type == Exiv2::signedRational;
}

/// Numbers as the library reads them: "3 5/10"
ExifText numbersText(const QVariant &value, Exiv2::TypeId type)
{
    ExifText result{type, {}};
    for (const QVariant &item : itemsOf(value)) {
        bool isNumber = false;
        const double number = item.toDouble(&isNumber);
        const bool isSigned = type == Exiv2::signedRational || type == Exiv2::signedShort ||
                              type == Exiv2::signedLong || type == Exiv2::signedByte;
        const double greatest = isSigned ? 2147483647.0 : 4294967295.0;
        if (!isNumber || !std::isfinite(number) || (number < 0 && !isSigned) || std::abs(number) > greatest)
            return {};
        if (type == Exiv2::unsignedShort && number > 65535)
            result.type = Exiv2::unsignedLong;
        const bool isByte = type == Exiv2::unsignedByte || type == Exiv2::undefined;
        const QString text = isRational(type) ? rationalText(number) : QString::number(qRound64(number));
        if (text.isEmpty() || (isByte && number > 255))
            return {};
        if (!result.text.empty())
            result.text += ' ';
        result.text += text.toStdString();
    }
    return result;
}

/// [2, 2, 1] is the bytes "0221".
ExifText versionText(const QVariant &value)
{
    QString digits;
    const QVariantList parts = itemsOf(value);
    for (qsizetype i = 0; i < parts.size(); ++i)
        digits += QString::number(parts[i].toInt()).rightJustified(i == 0 ? 2 : 1, u'0');
    digits = digits.leftJustified(4, u'0');
    if (digits.size() != 4)
        return {};
    return {Exiv2::undefined, digits.toStdString(), true};
}

ExifText degreesText(const QVariant &value)
{
    const double degrees = std::abs(value.toDouble());
    if (!(degrees <= 360))
        return {};
    // Seconds to a ten-thousandth: three millimetres on the ground.
    const auto units = static_cast<qlonglong>(std::llround(degrees * 36'000'000));
    return {Exiv2::unsignedRational, QStringLiteral("%1/1 %2/1 %3/10000")
                                         .arg(units / 36'000'000)
                                         .arg(units / 600'000 % 60)
                                         .arg(units % 600'000)
                                         .toStdString()};
}

ExifText timeOfDayText(const QVariant &value)
{
    const QStringList parts = value.toString().split(u':');
    if (parts.size() != 3)
        return {};
    bool areNumbers = true;
    QStringList rationals;
    for (const QString &part : parts) {
        bool isNumber = false;
        rationals += rationalText(part.toDouble(&isNumber));
        areNumbers = areNumbers && isNumber && !rationals.constLast().isEmpty();
    }
    return areNumbers ? ExifText{Exiv2::unsignedRational, rationals.join(u' ').toStdString()} : ExifText{};
}

/// Each number by itself; empty if one is not a number, or too great for `textOf`.
template<class TextOf>
QStringList textsOfNumbers(const QVariant &value, TextOf textOf)
{
    QStringList texts;
    for (const QVariant &item : itemsOf(value)) {
        bool isNumber = false;
        const double number = item.toDouble(&isNumber);
        const QString text = isNumber ? textOf(item, number) : QString();
        if (text.isEmpty())
            return {};
        texts += text;
    }
    return texts;
}

/// "2010-08-13T21:00:01" for "2010:08:13 21:00:01". A camera whose clock was never set writes zeros or
/// blanks.
QStringList isoDateTime(QString text)
{
    static const QRegularExpression form(
        QStringLiteral("^[0-9]{4}:[0-9]{2}:[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}$"));
    static const QRegularExpression isoForm(
        QStringLiteral("^[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}(Z|[+-][0-9]{2}:[0-9]{2})?$"));
    if (isoForm.match(text).hasMatch()) // as some programs write it into EXIF
        return {text};
    if (!form.match(text).hasMatch() || text.startsWith(u"0000"))
        return {};
    text[4] = text[7] = u'-';
    text[10] = u'T';
    return {text};
}

/// "1998-04-03" for "19980403". IIM has zeros for unknown parts of a date, XMP leaves them out.
QStringList isoDate(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^([0-9]{4})([0-9]{2})([0-9]{2})$"));
    const QStringList parts = form.match(text).capturedTexts();
    if (parts.isEmpty() || parts[1] == u"0000")
        return {};
    if (parts[2] == u"00")
        return {parts[1]};
    return {parts[1] + u'-' + parts[2] + (parts[3] == u"00" ? QString() : u'-' + parts[3])};
}

} // namespace

QString rationalText(double number)
{
    constexpr double kGreatest = std::numeric_limits<qint32>::max();
    if (!std::isfinite(number) || number < -kGreatest || number > std::numeric_limits<quint32>::max())
        return {};
    if (number > kGreatest) // such as 0xFFFFFFFF for infinite
        return QStringLiteral("%1/1").arg(static_cast<qulonglong>(number));
    // Continued fractions; stops where the quotient equals the number to a double's precision.
    const double wanted = std::abs(number);
    double rest = wanted;
    double numerator = 1;
    double denominator = 0;
    double oldNumerator = 0;
    double oldDenominator = 1;
    for (int i = 0; i < 32; ++i) {
        const double whole = std::floor(rest);
        const double nextNumerator = whole * numerator + oldNumerator;
        const double nextDenominator = whole * denominator + oldDenominator;
        if (nextNumerator > kGreatest || nextDenominator > kGreatest)
            break;
        oldNumerator = std::exchange(numerator, nextNumerator);
        oldDenominator = std::exchange(denominator, nextDenominator);
        if (std::abs(numerator / denominator - wanted) <= wanted * 1e-15 || rest == whole)
            break;
        rest = 1 / (rest - whole);
    }
    return QStringLiteral("%1%2/%3")
        .arg(QLatin1StringView(number < 0 ? "-" : ""))
        .arg(static_cast<qlonglong>(numerator))
        .arg(static_cast<qlonglong>(denominator));
}

ExifText exifText(MetadataKind kind, const QVariant &value, Exiv2::TypeId type, bool bigEndian)
{
    switch (kind) {
    case MetadataKind::Text:
    case MetadataKind::TextList:
    case MetadataKind::DateTime:
    case MetadataKind::IptcDate:
    case MetadataKind::Copyright:
        return {Exiv2::asciiString, propertyTexts(value).join(QStringLiteral("; ")).toStdString()};
    case MetadataKind::Comment:
        return {Exiv2::undefined, encodedComment(propertyTexts(value).value(0), bigEndian).toStdString(),
                true};
    case MetadataKind::Integer:
    case MetadataKind::IntegerList:
    case MetadataKind::Number:
    case MetadataKind::NumberList:
        return numbersText(value, type == Exiv2::asciiString ? Exiv2::invalidTypeId : type);
    case MetadataKind::Version:
        return versionText(value);
    case MetadataKind::Degrees:
        return degreesText(value);
    case MetadataKind::TimeOfDay:
        return timeOfDayText(value);
    }
    return {};
}

QStringList xmpTexts(MetadataKind kind, const QVariant &value)
{
    switch (kind) {
    case MetadataKind::Text:
    case MetadataKind::TextList:
    case MetadataKind::Copyright:
    case MetadataKind::Comment:
        return propertyTexts(value);
    case MetadataKind::DateTime:
        return isoDateTime(value.toString());
    case MetadataKind::IptcDate:
        return isoDate(value.toString());
    case MetadataKind::Integer:
    case MetadataKind::IntegerList:
        return textsOfNumbers(value, [](const QVariant &item, double number) {
            // Some numbers name a lens by eight bytes; none are greater.
            return std::abs(number) < 9e18 ? QString::number(item.toLongLong()) : QString();
        });
    case MetadataKind::Number:
    case MetadataKind::NumberList:
        return textsOfNumbers(value, [](const QVariant &, double number) { return rationalText(number); });
    case MetadataKind::Version:
        return {QString::fromStdString(versionText(value).text)};
    case MetadataKind::Degrees:
    case MetadataKind::TimeOfDay:
        break; // one XMP property holds letter or date as well: a stale one is only removed
    }
    return {};
}

QStringList propertyTexts(const QVariant &value)
{
    QStringList texts;
    for (const QVariant &item : itemsOf(value)) {
        if (item.isValid()) // a NUL would be the end of the text for its readers
            texts += item.toString().remove(QChar::Null);
    }
    return texts;
}

} // namespace plexa
