// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDateTime>
#include <QString>

namespace plexa
{

/// Dates, times and numbers as the user's locale writes them (CLDR styles, by ICU). A value; any thread.
class LocaleFormat final
{
public:
    enum class Style { Full, Long, Medium, Short };

    /// The user's locale, from the environment (LC_ALL, LC_TIME/LC_NUMERIC, LANG).
    LocaleFormat();

    /// @param localeName  as in "de_DE"; unknown names fall back as ICU does
    explicit LocaleFormat(const QString &localeName);

    /// The date alone, or the time alone, of a local time, in the local time zone.
    QString date(const QDateTime &when, Style style) const;
    QString time(const QDateTime &when, Style style) const;

    /// A strftime pattern ("%Y-%m-%d"), in the local time zone.
    QString calendar(const QDateTime &when, const QString &pattern) const;

    /// A decimal number with at most `maxFractionDigits` digits after the separator, rounded half to even, as
    /// the locale's decimal style writes it.
    QString decimal(double value, int maxFractionDigits) const;

private:
    QByteArray m_locale;
};

} // namespace plexa
