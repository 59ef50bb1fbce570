// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/localeformat.h"

#include <QTimeZone>

#include <unicode/datefmt.h>
#include <unicode/decimfmt.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <memory>

namespace plexa
{
namespace
{

QString toQString(const icu::UnicodeString &text)
{
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

icu::UnicodeString toIcu(const QString &text)
{
    return icu::UnicodeString(reinterpret_cast<const char16_t *>(text.utf16()),
                              static_cast<int32_t>(text.size()));
}

/// From "language_TERRITORY.codeset@modifier" to ICU's "language_Script_TERRITORY_VARIANT".
QByteArray icuName(const QByteArray &posixName)
{
    const qsizetype at = posixName.indexOf('@');
    const QByteArray modifier = at < 0 ? QByteArray() : posixName.mid(at + 1).toLower();
    QByteArray name = posixName.left(at < 0 ? posixName.size() : at);
    name = name.left(name.contains('.') ? name.indexOf('.') : name.size());
    name.replace('-', '_');
    if (name.isEmpty() || name == "C" || name == "POSIX")
        return "en_US_POSIX";

    const qsizetype languageEnd = name.contains('_') ? name.indexOf('_') : name.size();
    if (modifier == "latin")
        name.insert(languageEnd, "_Latn");
    else if (modifier == "cyrillic")
        name.insert(languageEnd, "_Cyrl");
    else if (modifier == "devanagari")
        name.insert(languageEnd, "_Deva");
    else if (modifier == "valencia")
        name.append("_VALENCIA");
    return name;
}

QByteArray localeFromEnvironment(const char *category)
{
    for (const char *variable : {"LC_ALL", category, "LANG"}) {
        const QByteArray value = qgetenv(variable);
        if (!value.isEmpty())
            return icuName(value);
    }
    return icuName("C");
}

/// A zone of ICU that has Qt's offset at that moment: the system's. Where TZ holds a rule instead of a name,
/// where ICU and Qt have different time zone data, or where the time has a zone of its own: one made of the
/// offset.
std::unique_ptr<icu::TimeZone> zoneAt(const QDateTime &local)
{
    const int offsetMs = local.offsetFromUtc() * 1000;
    std::unique_ptr<icu::TimeZone> zone(
        icu::TimeZone::createTimeZone(toIcu(QString::fromUtf8(QTimeZone::systemTimeZoneId()))));
    int32_t rawOffset = 0;
    int32_t dstOffset = 0;
    UErrorCode status = U_ZERO_ERROR;
    zone->getOffset(static_cast<UDate>(local.toMSecsSinceEpoch()), false, rawOffset, dstOffset, status);
    if (U_SUCCESS(status) && rawOffset + dstOffset == offsetMs)
        return zone;
    const int minutes = std::abs(offsetMs) / 60'000;
    const QString name = QStringLiteral("GMT%1%2:%3")
                             .arg(QLatin1Char(offsetMs < 0 ? '-' : '+'))
                             .arg(minutes / 60, 2, 10, QLatin1Char('0'))
                             .arg(minutes % 60, 2, 10, QLatin1Char('0'));
    return std::unique_ptr<icu::TimeZone>(icu::TimeZone::createTimeZone(toIcu(name)));
}

icu::DateFormat::EStyle icuStyle(LocaleFormat::Style style)
{
    switch (style) {
    case LocaleFormat::Style::Full:
        return icu::DateFormat::kFull;
    case LocaleFormat::Style::Long:
        return icu::DateFormat::kLong;
    case LocaleFormat::Style::Medium:
        return icu::DateFormat::kMedium;
    case LocaleFormat::Style::Short:
        break;
    }
    return icu::DateFormat::kShort;
}

QString formatted(icu::DateFormat *format, const QDateTime &local)
{
    if (!format)
        return {};
    format->adoptTimeZone(zoneAt(local).release());
    icu::UnicodeString text;
    format->format(static_cast<UDate>(local.toMSecsSinceEpoch()), text);
    return toQString(text);
}

} // namespace

QDateTime onItsWallClock(const QDateTime &when)
{
    const bool hasItsOwn = when.timeSpec() == Qt::TimeZone || when.timeSpec() == Qt::OffsetFromUTC;
    return hasItsOwn ? when : when.toLocalTime();
}

LocaleFormat::LocaleFormat()
    : m_dateLocale(localeFromEnvironment("LC_TIME"))
    , m_numberLocale(localeFromEnvironment("LC_NUMERIC"))
{
}

LocaleFormat::LocaleFormat(const QString &localeName)
    : m_dateLocale(icuName(localeName.toUtf8()))
    , m_numberLocale(m_dateLocale)
{
}

QString LocaleFormat::date(const QDateTime &when, Style style) const
{
    if (!when.isValid())
        return {};
    const std::unique_ptr<icu::DateFormat> format(
        icu::DateFormat::createDateInstance(icuStyle(style), icu::Locale(m_dateLocale.constData())));
    return formatted(format.get(), onItsWallClock(when));
}

QString LocaleFormat::time(const QDateTime &when, Style style) const
{
    if (!when.isValid())
        return {};
    const std::unique_ptr<icu::DateFormat> format(
        icu::DateFormat::createTimeInstance(icuStyle(style), icu::Locale(m_dateLocale.constData())));
    return formatted(format.get(), onItsWallClock(when));
}

QString LocaleFormat::decimal(double value, int maxFractionDigits) const
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::NumberFormat> format(
        icu::NumberFormat::createInstance(icu::Locale(m_numberLocale.constData()), UNUM_DECIMAL, status));
    if (U_FAILURE(status) || !format)
        return QString::number(value, 'f', std::max(maxFractionDigits, 0));
    format->setMinimumFractionDigits(0);
    format->setMaximumFractionDigits(std::max(maxFractionDigits, 0));
    format->setRoundingMode(icu::NumberFormat::kRoundHalfEven);
    icu::UnicodeString text;
    format->format(value, text);
    return toQString(text);
}

} // namespace plexa
