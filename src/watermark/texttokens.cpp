// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/texttokens.h"

#include "platform/filenames.h"
#include "watermark/wpresetvalues.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>

namespace plexa
{
namespace
{

using Text = std::optional<QString>;
using Style = LocaleFormat::Style;

/// A whole number has no decimals; others have the shortest form that reads back as the same number.
QString plainString(double number)
{
    // Doubles hold every whole number up to here.
    constexpr double exact = 9007199254740992.0;
    if (number == std::trunc(number) && std::abs(number) <= exact)
        return QString::number(static_cast<qint64>(number));
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

/// A metadata value as text, whatever the locale; none for an empty text, for lists and for groups.
Text plainString(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString().isEmpty() ? std::nullopt : std::optional(value.toString());
    case QMetaType::Float: {
        // Shortest for a float, not for the double that it becomes.
        const float number = value.toFloat();
        if (number == std::trunc(number))
            return plainString(static_cast<double>(number));
        for (int digits = 6; digits < 9; ++digits) {
            const QString text = QString::number(static_cast<double>(number), 'g', digits);
            if (text.toFloat() == number)
                return text;
        }
        return QString::number(static_cast<double>(number), 'g', 9);
    }
    case QMetaType::Double:
        return plainString(value.toDouble());
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
        return QString::number(value.toLongLong());
    case QMetaType::ULongLong:
        return QString::number(value.toULongLong());
    default:
        return std::nullopt;
    }
}

struct Token {
    const char *name;
    Text (*textOf)(const PhotoFacts &photo);
};

template<auto read>
Text field(const PhotoFacts &photo)
{
    return plainString(QVariant((photo.metadata().*read)()));
}

template<auto read>
Text localized(const PhotoFacts &photo)
{
    return plainString(QVariant((photo.metadata().*read)(photo.locale())));
}

template<Style style>
Text date(const PhotoFacts &photo)
{
    const QDateTime taken = photo.metadata().exifDateTimeOriginal();
    return taken.isValid() ? Text(photo.locale().date(taken, style)) : Text();
}

template<Style style>
Text time(const PhotoFacts &photo)
{
    const QDateTime taken = photo.metadata().exifDateTimeOriginal();
    return taken.isValid() ? Text(photo.locale().time(taken, style)) : Text();
}

/// @param pattern  of QDateTime::toString()
template<const char *pattern>
Text calendar(const PhotoFacts &photo)
{
    const QDateTime taken = photo.metadata().exifDateTimeOriginal();
    return taken.isValid() ? Text(onItsWallClock(taken).toString(QLatin1StringView(pattern))) : Text();
}

constexpr char kYearMonthDay[] = "yyyy-MM-dd";
constexpr char kDayMonthYear[] = "dd.MM.yyyy";
constexpr char kMonthDayYear[] = "MM/dd/yyyy";
constexpr char kHoursMinutes[] = "HH:mm";
constexpr char kHoursMinutesSeconds[] = "HH:mm:ss";

Text flash(const PhotoFacts &photo)
{
    return photo.metadata().exifFlash() != 0 ? QStringLiteral("did fire") : QStringLiteral("did not fire");
}

/// A negative value has two signs. Stored presets rely on this.
Text exposureBias(const PhotoFacts &photo)
{
    const QVariant bias = photo.metadata().exifExposureBias();
    const Text number = plainString(bias);
    if (!number)
        return number;
    const float value = bias.toFloat();
    const QLatin1StringView sign(value > 0 ? "+" : value < 0 ? "-" : "");
    return sign + *number;
}

Text dimensions(const PhotoFacts &photo)
{
    return QStringLiteral("%1 x %2").arg(photo.unscaledSize().width()).arg(photo.unscaledSize().height());
}

Text fileExtension(const PhotoFacts &photo)
{
    const QString extension = fileExtensionOf(photo.path());
    return extension.isEmpty() ? Text() : extension;
}

using M = ImageMetadata;

constexpr std::array kTokens{
    Token{"copyright", field<&M::iptcCopyright>},
    Token{"headline", field<&M::iptcHeadline>},
    Token{"title", field<&M::iptcTitle>},
    Token{"caption", field<&M::iptcDescription>},
    Token{"sublocation", field<&M::iptcSublocation>},
    Token{"country", field<&M::iptcCountry>},
    Token{"state", field<&M::iptcState>},
    Token{"city", field<&M::iptcCity>},
    Token{"writer/editor", field<&M::iptcDescriptionWriter>},
    Token{"creator", field<&M::iptcCreator>},
    Token{"creator title", field<&M::iptcCreatorTitle>},
    Token{"creator e-mail", field<&M::iptcCreatorEmail>},
    Token{"creator website", field<&M::iptcCreatorWebsite>},
    Token{"creator phone", field<&M::iptcCreatorPhone>},
    Token{"creator country", field<&M::iptcCreatorCountry>},
    Token{"creator state", field<&M::iptcCreatorState>},
    Token{"creator city", field<&M::iptcCreatorCity>},
    Token{"creator postal code", field<&M::iptcCreatorPostalCode>},
    Token{"creator address", field<&M::iptcCreatorAddress>},
    Token{"date (full)", date<Style::Full>},
    Token{"date (long)", date<Style::Long>},
    Token{"date (medium)", date<Style::Medium>},
    Token{"date (short)", date<Style::Short>},
    Token{"date (YYYY-MM-DD)", calendar<kYearMonthDay>},
    Token{"date (DD.MM.YYYY)", calendar<kDayMonthYear>},
    Token{"date (MM/DD/YYYY)", calendar<kMonthDayYear>},
    Token{"time (long)", time<Style::Long>},
    Token{"time (medium)", time<Style::Medium>},
    Token{"time (short)", time<Style::Short>},
    Token{"time (hh:mm)", calendar<kHoursMinutes>},
    Token{"time (hh:mm:ss)", calendar<kHoursMinutesSeconds>},
    Token{"subsecond time", field<&M::exifSubsecTimeOriginal>},
    Token{"latitude", field<&M::gpsLatitudeFull>},
    Token{"longitude", field<&M::gpsLongitudeFull>},
    Token{"altitude", field<&M::gpsAltitudeString>},
    Token{"exposure time", localized<&M::exifExposureTimeStr>},
    Token{"F-number", field<&M::exifFNumber>},
    Token{"ISO speed", field<&M::exifISOSpeed>},
    Token{"exposure program", field<&M::exifExposureProgramStr>},
    Token{"focal length", field<&M::exifFocalLength>},
    Token{"focal length 35mm", field<&M::exifFocalLength35>},
    Token{"flash", flash},
    Token{"exposure bias", exposureBias},
    Token{"metering mode", field<&M::exifMeteringModeStr>},
    Token{"camera make", field<&M::tiffCameraMake>},
    Token{"camera model", field<&M::tiffCameraModel>},
    Token{"camera serial #", field<&M::exifCameraSerialNumber>},
    Token{"lens", field<&M::exifLens>},
    Token{"lens ID", field<&M::exifLensID>},
    Token{"image number", field<&M::exifImageNumber>},
    Token{"dimensions", dimensions},
    Token{"width",
          [](const PhotoFacts &photo) -> Text { return QString::number(photo.unscaledSize().width()); }},
    Token{"height",
          [](const PhotoFacts &photo) -> Text { return QString::number(photo.unscaledSize().height()); }},
    Token{"DPI width", field<&M::dpiWidth>},
    Token{"DPI height", field<&M::dpiHeight>},
    Token{"bit depth", field<&M::bitDepth>},
    Token{"color model", field<&M::colorModel>},
    Token{"ICC profile", field<&M::iccProfileName>},
    Token{"filename", [](const PhotoFacts &photo) -> Text { return filenameOf(photo.path()); }},
    Token{"file extension", fileExtension},
    Token{"EXIF user comment", field<&M::exifUserComment>},
    Token{"software", field<&M::tiffSoftware>},
};

} // namespace

PhotoFacts::PhotoFacts(const QString &path, ImageMetadata metadata, QSize pixelSize, QSize unscaledSize,
                       const LocaleFormat &locale)
    : m_path(path)
    , m_metadata(std::move(metadata))
    , m_pixelSize(pixelSize)
    , m_unscaledSize(unscaledSize)
    , m_locale(locale)
{
}

std::optional<QString> PhotoFacts::stringForInfoToken(const QString &piece, bool *tokenExists) const
{
    const auto token = std::find_if(kTokens.begin(), kTokens.end(),
                                    [&](const Token &row) { return piece == QLatin1StringView(row.name); });
    if (tokenExists)
        *tokenExists = token != kTokens.end();
    return token != kTokens.end() ? token->textOf(*this) : std::nullopt;
}

std::optional<QString> watermarkTextForImage(const WPresetValues &values, const PhotoFacts &image)
{
    QString text;
    for (const QString &piece : values.textTokens) {
        bool isToken = false;
        const std::optional<QString> expansion = image.stringForInfoToken(piece, &isToken);
        text += isToken ? expansion.value_or(QString()) : piece;
    }
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

const QStringList &tokenNames()
{
    static const QStringList names = [] {
        QStringList list;
        for (const Token &token : kTokens)
            list.append(QLatin1StringView(token.name));
        return list;
    }();
    return names;
}

} // namespace plexa
