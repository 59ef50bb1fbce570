// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace plexa
{

/// The time by the clock that applies to it: that of its own time zone or offset where it has one, else that
/// of the system's time zone (TZ), also for UTC.
QDateTime onItsWallClock(const QDateTime &when);

/// Dates, times and numbers as the user's locale writes them (CLDR styles, by ICU). A value; any thread.
///
/// Times are written as onItsWallClock() returns them. An invalid time gives an empty string.
class LocaleFormat final
{
public:
    enum class Style { Full, Long, Medium, Short };

    /// The user's locale, from the environment: LC_ALL, else LC_TIME for dates and times and LC_NUMERIC for
    /// numbers, else LANG. "C" and "POSIX" write dates and times in American English, and numbers plainly.
    LocaleFormat();

    /// @param localeName  as in "de_DE" or "sr_RS.UTF-8@latin"; unknown names fall back as ICU does
    explicit LocaleFormat(const QString &localeName);

    /// The date alone, or the time alone.
    QString date(const QDateTime &when, Style style) const;
    QString time(const QDateTime &when, Style style) const;

    /// A decimal number with at most `maxFractionDigits` digits after the separator, rounded half to even, as
    /// the locale's decimal style writes it (digit groups included).
    QString decimal(double value, int maxFractionDigits) const;

private:
    QByteArray m_dateLocale;   // in ICU's spelling
    QByteArray m_numberLocale; // in ICU's spelling
};

} // namespace plexa
