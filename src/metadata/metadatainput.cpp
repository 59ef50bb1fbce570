// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/metadatainput.h"

#include "metadata/imagemetadata.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QRegularExpression>

#include <cmath>

namespace plexa
{

namespace
{

using enum MetadataProperty;

constexpr qsizetype kDateTimeLength = 19; ///< of "yyyy-MM-dd HH:mm:ss"

QString translated(const char *text)
{
    return QCoreApplication::translate("ImageMetadata", text);
}

QLatin1StringView unitOf(MetadataProperty property)
{
    if (property == exifExposureTime)
        return QLatin1StringView("sec");
    if (property == exifFocalLength || property == exifFocalLength35)
        return QLatin1StringView("mm");
    if (property == dpiWidth || property == dpiHeight)
        return QLatin1StringView("dpi");
    return {};
}

/// With up to six decimals, so that a short exposure stays one.
QString numberText(double number, QLocale locale)
{
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(std::round(number * 1e6) / 1e6, 'f', QLocale::FloatingPointShortest);
}

/// The text without blanks at its ends and without its unit.
QString withoutUnit(MetadataProperty property, const QString &text)
{
    static const QRegularExpression seconds(QStringLiteral("\\s*(s|sec)$"),
                                            QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression millimeters(QStringLiteral("\\s*mm$"),
                                                QRegularExpression::CaseInsensitiveOption);
    QString number = text.trimmed();
    if (property == exifExposureTime)
        number.remove(seconds);
    else if (unitOf(property) == QLatin1StringView("mm"))
        number.remove(millimeters);
    return number;
}

/// In the locale's form, else with a point. Separators of groups are refused: the same character is the
/// decimal separator in other locales, and "0,008" must not become 8.
std::optional<double> plainNumber(const QString &text, QLocale locale)
{
    locale.setNumberOptions(QLocale::RejectGroupSeparator);
    bool isNumber = false;
    double number = locale.toDouble(text, &isNumber);
    if (!isNumber)
        number = text.toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

/// A number, or a fraction such as 1/125.
std::optional<double> numberOf(const QString &text, const QLocale &locale)
{
    const qsizetype slash = text.indexOf(u'/');
    if (slash < 0)
        return plainNumber(text, locale);
    const std::optional<double> numerator = plainNumber(text.left(slash).trimmed(), locale);
    const std::optional<double> denominator = plainNumber(text.mid(slash + 1).trimmed(), locale);
    if (!numerator || !denominator || !(*denominator > 0))
        return {};
    return *numerator / *denominator;
}

Result<QVariant> wholeNumberOf(MetadataProperty property, const QString &text, const QLocale &locale)
{
    // Most of these facts have 16 bits in EXIF.
    const bool isLong = property == exifImageNumber || property == exifLensID;
    const int greatest = isLong ? 999'999'999 : 65'535;
    const std::optional<double> number = plainNumber(text, locale);
    if (!number || *number < 0 || *number > greatest || *number != std::trunc(*number))
        return fail(translated(QT_TRANSLATE_NOOP("ImageMetadata", "it must be a whole number from 0 to %1"))
                        .arg(greatest));
    return QVariant(static_cast<int>(*number));
}

Result<QVariant> decimalOf(MetadataProperty property, const QString &text, const QLocale &locale)
{
    constexpr double kGreatest = 1e6;
    const bool isSigned = property == exifExposureBias;
    const std::optional<double> number = numberOf(text, locale);
    if (!number || std::abs(*number) > kGreatest || (*number < 0 && !isSigned))
        return fail(isSigned
                        ? translated(QT_TRANSLATE_NOOP("ImageMetadata", "it must be a number"))
                        : translated(QT_TRANSLATE_NOOP("ImageMetadata", "it must be a number, 0 or more")));
    return QVariant(*number);
}

/// The decimals of a second.
Result<QVariant> digitsOf(const QString &text)
{
    static const QRegularExpression digits(QStringLiteral("\\A[0-9]{1,9}\\z"));
    if (!digits.match(text).hasMatch())
        return fail(translated(QT_TRANSLATE_NOOP("ImageMetadata", "it must be up to 9 digits")));
    return QVariant(text);
}

Result<QVariant> dateOf(const QString &text)
{
    constexpr qsizetype kDateLength = 10;
    QString day = text.left(kDateLength);
    const QString clock = text.mid(kDateLength).trimmed();
    const QDate date = QDate::fromString(day.replace(u':', u'-'), Qt::ISODate);
    const QTime time = clock.isEmpty() ? QTime(0, 0) : QTime::fromString(clock, QStringLiteral("H:m:s"));
    const QTime whole = time.isValid() ? time : QTime::fromString(clock, QStringLiteral("H:m"));
    if (!date.isValid() || !whole.isValid())
        return fail(
            translated(QT_TRANSLATE_NOOP("ImageMetadata", "it must be a date such as 2024-12-31 23:59:59")));
    return QVariant(date.toString(QStringLiteral("yyyy:MM:dd ")) +
                    whole.toString(QStringLiteral("HH:mm:ss")));
}

} // namespace

QString textOfMetadata(MetadataProperty property, const QVariant &value, const QLocale &locale)
{
    const MetadataPropertyRow &row = metadataProperty(property);
    if (value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (row.kind == MetadataKind::DateTime) {
        // Kept as it is where it is no date.
        const QString text = value.toString();
        const bool isDate =
            metadataOfText(property, text, locale).has_value() && text.size() == kDateTimeLength;
        return isDate ? QString(text).replace(4, 1, u'-').replace(7, 1, u'-') : text;
    }
    const bool isOfNumbers = row.kind == MetadataKind::Number || row.kind == MetadataKind::Integer ||
                             row.kind == MetadataKind::IntegerList;
    if (!value.isValid() || !isNumber || !isOfNumbers)
        return value.toString();
    const QLatin1StringView unit = unitOf(property);
    const bool isReal = value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float;
    const QString text = isReal ? numberText(number, locale) : value.toString(); // long ones exceed a double
    return unit.isEmpty() ? text : text + u' ' + unit;
}

Result<QVariant> metadataOfText(MetadataProperty property, const QString &text, const QLocale &locale)
{
    const QString number = withoutUnit(property, text);
    if (number.isEmpty())
        return QVariant();
    if (property == exifSubsecTimeOriginal || property == exifSubsecTimeDigitized)
        return digitsOf(number);
    switch (metadataProperty(property).kind) {
    case MetadataKind::Integer:
    case MetadataKind::IntegerList:
        return wholeNumberOf(property, number, locale);
    case MetadataKind::Number:
        return decimalOf(property, number, locale);
    case MetadataKind::DateTime:
        return dateOf(number);
    case MetadataKind::TextList:
        if (property == iptcKeywords) {
            QStringList keywords;
            for (const QString &part : text.split(u',')) {
                if (const QString keyword = part.trimmed(); !keyword.isEmpty() && !keywords.contains(keyword))
                    keywords += keyword;
            }
            return keywords.isEmpty() ? QVariant() : QVariant(QVariantList(keywords.begin(), keywords.end()));
        }
        break;
    default:
        break;
    }
    return QVariant(text);
}

} // namespace plexa
