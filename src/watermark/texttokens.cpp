// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/texttokens.h"

#include "metadata/imagemetadata.h"
#include "platform/filenames.h"
#include "platform/localeformat.h"
#include "watermark/plainstring.h"

#include <QDateTime>

#include <array>

namespace plexa
{
namespace
{

using Text = std::optional<QString>;
using Style = LocaleFormat::Style;

/// One row of the vocabulary. Rows that read metadata are asked only where there is some.
struct Token {
    const char *name;
    Text (*ofFile)(const TokenFacts &facts);
    Text (*ofMetadata)(const ImageMetadata &metadata, const LocaleFormat &locale);
};

template<auto read>
Text field(const ImageMetadata &metadata, const LocaleFormat &)
{
    return plainString(QVariant((metadata.*read)()));
}

template<auto read>
Text localized(const ImageMetadata &metadata, const LocaleFormat &locale)
{
    return plainString(QVariant((metadata.*read)(locale)));
}

template<Style style>
Text date(const ImageMetadata &metadata, const LocaleFormat &locale)
{
    const QDateTime taken = metadata.exifDateTimeOriginal();
    return taken.isValid() ? Text(locale.date(taken, style)) : Text();
}

template<Style style>
Text time(const ImageMetadata &metadata, const LocaleFormat &locale)
{
    const QDateTime taken = metadata.exifDateTimeOriginal();
    return taken.isValid() ? Text(locale.time(taken, style)) : Text();
}

/// The day, month and year or the hours, minutes and seconds, in a fixed form.
template<const char *pattern>
Text calendar(const ImageMetadata &metadata, const LocaleFormat &locale)
{
    const QDateTime taken = metadata.exifDateTimeOriginal();
    return taken.isValid() ? Text(locale.calendar(taken, QLatin1StringView(pattern))) : Text();
}

constexpr char kYearMonthDay[] = "%Y-%m-%d";
constexpr char kDayMonthYear[] = "%d.%m.%Y";
constexpr char kMonthDayYear[] = "%m/%d/%Y";
constexpr char kHoursMinutes[] = "%H:%M";
constexpr char kHoursMinutesSeconds[] = "%H:%M:%S";

Text flash(const ImageMetadata &metadata, const LocaleFormat &)
{
    return metadata.exifFlash() != 0 ? QStringLiteral("did fire") : QStringLiteral("did not fire");
}

/// The sign stands before the number's own, so that a negative value has two; stored presets and their users
/// know it like this.
Text exposureBias(const ImageMetadata &metadata, const LocaleFormat &)
{
    const QVariant bias = metadata.exifExposureBias();
    const Text number = plainString(bias);
    if (!number)
        return number;
    const float value = bias.toFloat();
    const QLatin1StringView sign(value > 0 ? "+" : value < 0 ? "-" : "");
    return sign + *number;
}

Text dimensions(const TokenFacts &facts)
{
    return QStringLiteral("%1 x %2").arg(facts.pixelSize.width()).arg(facts.pixelSize.height());
}

Text width(const TokenFacts &facts)
{
    return QString::number(facts.pixelSize.width());
}

Text height(const TokenFacts &facts)
{
    return QString::number(facts.pixelSize.height());
}

Text filename(const TokenFacts &facts)
{
    return facts.filename;
}

Text fileExtension(const TokenFacts &facts)
{
    const QString extension = fileExtensionOf(facts.path);
    return extension.isEmpty() ? Text() : extension;
}

using M = ImageMetadata;

constexpr std::array kTokens{
    Token{"copyright", nullptr, field<&M::iptcCopyright>},
    Token{"headline", nullptr, field<&M::iptcHeadline>},
    Token{"title", nullptr, field<&M::iptcTitle>},
    Token{"caption", nullptr, field<&M::iptcDescription>},
    Token{"sublocation", nullptr, field<&M::iptcSublocation>},
    Token{"country", nullptr, field<&M::iptcCountry>},
    Token{"state", nullptr, field<&M::iptcState>},
    Token{"city", nullptr, field<&M::iptcCity>},
    Token{"writer/editor", nullptr, field<&M::iptcDescriptionWriter>},
    Token{"creator", nullptr, field<&M::iptcCreator>},
    Token{"creator title", nullptr, field<&M::iptcCreatorTitle>},
    Token{"creator e-mail", nullptr, field<&M::iptcCreatorEmail>},
    Token{"creator website", nullptr, field<&M::iptcCreatorWebsite>},
    Token{"creator phone", nullptr, field<&M::iptcCreatorPhone>},
    Token{"creator country", nullptr, field<&M::iptcCreatorCountry>},
    Token{"creator state", nullptr, field<&M::iptcCreatorState>},
    Token{"creator city", nullptr, field<&M::iptcCreatorCity>},
    Token{"creator postal code", nullptr, field<&M::iptcCreatorPostalCode>},
    Token{"creator address", nullptr, field<&M::iptcCreatorAddress>},
    Token{"date (full)", nullptr, date<Style::Full>},
    Token{"date (long)", nullptr, date<Style::Long>},
    Token{"date (medium)", nullptr, date<Style::Medium>},
    Token{"date (short)", nullptr, date<Style::Short>},
    Token{"date (YYYY-MM-DD)", nullptr, calendar<kYearMonthDay>},
    Token{"date (DD.MM.YYYY)", nullptr, calendar<kDayMonthYear>},
    Token{"date (MM/DD/YYYY)", nullptr, calendar<kMonthDayYear>},
    Token{"time (long)", nullptr, time<Style::Long>},
    Token{"time (medium)", nullptr, time<Style::Medium>},
    Token{"time (short)", nullptr, time<Style::Short>},
    Token{"time (hh:mm)", nullptr, calendar<kHoursMinutes>},
    Token{"time (hh:mm:ss)", nullptr, calendar<kHoursMinutesSeconds>},
    Token{"subsecond time", nullptr, field<&M::exifSubsecTimeOriginal>},
    Token{"latitude", nullptr, field<&M::gpsLatitudeFull>},
    Token{"longitude", nullptr, field<&M::gpsLongitudeFull>},
    Token{"altitude", nullptr, field<&M::gpsAltitudeString>},
    Token{"exposure time", nullptr, localized<&M::exifExposureTimeStr>},
    Token{"F-number", nullptr, field<&M::exifFNumber>},
    Token{"ISO speed", nullptr, field<&M::exifISOSpeed>},
    Token{"exposure program", nullptr, field<&M::exifExposureProgramStr>},
    Token{"focal length", nullptr, field<&M::exifFocalLength>},
    Token{"focal length 35mm", nullptr, field<&M::exifFocalLength35>},
    Token{"flash", nullptr, flash},
    Token{"exposure bias", nullptr, exposureBias},
    Token{"metering mode", nullptr, field<&M::exifMeteringModeStr>},
    Token{"camera make", nullptr, field<&M::tiffCameraMake>},
    Token{"camera model", nullptr, field<&M::tiffCameraModel>},
    Token{"camera serial #", nullptr, field<&M::exifCameraSerialNumber>},
    Token{"lens", nullptr, field<&M::exifLens>},
    Token{"lens ID", nullptr, field<&M::exifLensID>},
    Token{"image number", nullptr, field<&M::exifImageNumber>},
    Token{"dimensions", dimensions, nullptr},
    Token{"width", width, nullptr},
    Token{"height", height, nullptr},
    Token{"DPI width", nullptr, field<&M::dpiWidth>},
    Token{"DPI height", nullptr, field<&M::dpiHeight>},
    Token{"bit depth", nullptr, field<&M::bitDepth>},
    Token{"color model", nullptr, field<&M::colorModel>},
    Token{"ICC profile", nullptr, field<&M::iccProfileName>},
    Token{"filename", filename, nullptr},
    Token{"file extension", fileExtension, nullptr},
    Token{"EXIF user comment", nullptr, field<&M::exifUserComment>},
    Token{"software", nullptr, field<&M::tiffSoftware>},
};

} // namespace

std::optional<QString> stringForInfoToken(const QString &piece, const TokenFacts &facts,
                                          const LocaleFormat &locale, bool *tokenExists)
{
    for (const Token &token : kTokens) {
        if (piece != QLatin1StringView(token.name))
            continue;
        if (tokenExists)
            *tokenExists = true;
        if (token.ofFile)
            return token.ofFile(facts);
        return facts.metadata ? token.ofMetadata(*facts.metadata, locale) : std::nullopt;
    }
    if (tokenExists)
        *tokenExists = false;
    return std::nullopt;
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
