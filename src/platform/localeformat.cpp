// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/localeformat.h"

#include <QTimeZone>

#include <unicode/datefmt.h>
#include <unicode/decimfmt.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
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

/// ICU's zone that shows the same clock as Qt at that moment: the system's. They may differ where TZ holds a
/// rule instead of a zone's name, where the two have different time zone data, and for a time with a zone of
/// its own.
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

QString formattedBy(const char16_t *icuPattern, const QByteArray &locale, const QDateTime &local)
{
    UErrorCode status = U_ZERO_ERROR;
    icu::SimpleDateFormat format(icu::UnicodeString(icuPattern), icu::Locale(locale.constData()), status);
    return U_SUCCESS(status) ? formatted(&format, local) : QString();
}

QString padded(int number, int width, char fill = '0')
{
    return QStringLiteral("%1").arg(number, width, 10, QLatin1Char(fill));
}

/// What a strftime conversion stands for that is a number; a null string when it is none.
QString number(QChar letter, QDate date, QTime time)
{
    switch (letter.unicode()) {
    case 'Y':
        return padded(date.year(), 4);
    case 'y':
        return padded(date.year() % 100, 2);
    case 'C':
        return padded(date.year() / 100, 2);
    case 'm':
        return padded(date.month(), 2);
    case 'd':
        return padded(date.day(), 2);
    case 'e':
        return padded(date.day(), 2, ' ');
    case 'j':
        return padded(date.dayOfYear(), 3);
    case 'H':
        return padded(time.hour(), 2);
    case 'I':
        return padded((time.hour() + 11) % 12 + 1, 2);
    case 'M':
        return padded(time.minute(), 2);
    case 'S':
        return padded(time.second(), 2);
    default:
        return {};
    }
}

/// What a strftime conversion stands for that is a word, or a character of its own; else a null string.
QString word(QChar letter, const QByteArray &locale, const QDateTime &local)
{
    switch (letter.unicode()) {
    case 'A':
        return formattedBy(u"EEEE", locale, local);
    case 'a':
        return formattedBy(u"EEE", locale, local);
    case 'B':
        return formattedBy(u"LLLL", locale, local);
    case 'b':
    case 'h':
        return formattedBy(u"LLL", locale, local);
    case 'p':
        return formattedBy(u"a", locale, local);
    case 'n':
        return QStringLiteral("\n");
    case 't':
        return QStringLiteral("\t");
    case '%':
        return QStringLiteral("%");
    default:
        return {};
    }
}

/// The longer pattern that a strftime conversion abbreviates; else a null string.
QString abbreviated(QChar letter)
{
    switch (letter.unicode()) {
    case 'F':
        return QStringLiteral("%Y-%m-%d");
    case 'T':
        return QStringLiteral("%H:%M:%S");
    case 'R':
        return QStringLiteral("%H:%M");
    case 'D':
        return QStringLiteral("%m/%d/%y");
    default:
        return {};
    }
}

QString expanded(const QString &pattern, const QByteArray &locale, const QDateTime &local)
{
    QString result;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != QLatin1Char('%') || i + 1 == pattern.size()) {
            result += pattern[i];
            continue;
        }
        const QChar letter = pattern[++i];
        QString value = number(letter, local.date(), local.time());
        if (value.isNull())
            value = word(letter, locale, local);
        if (value.isNull())
            value = expanded(abbreviated(letter), locale, local);
        result += value.isEmpty() ? QLatin1Char('%') + QString(letter) : value;
    }
    return result;
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

QString LocaleFormat::calendar(const QDateTime &when, const QString &pattern) const
{
    if (!when.isValid())
        return {};
    return expanded(pattern, m_dateLocale, onItsWallClock(when));
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
