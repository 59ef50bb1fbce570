// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QRegularExpression>
#include <QStringList>

namespace plexa::test
{

inline QString wordOf(const QString &text)
{
    return text;
}

inline QString wordOf(const char *text)
{
    return QString::fromUtf8(text);
}

/// Splits a text at its blanks and puts the values into the places %1 to %9, so that a value stays one word
/// whatever it contains: words("save --text 'two words' --output %1", folder). Single quotes keep blanks.
template<class... Values>
QStringList words(const char *text, const Values &...values)
{
    static const QRegularExpression word(QStringLiteral("(?:[^\\s']|'[^']*')+"));
    const QStringList inserted{wordOf(values)...};
    QStringList words;
    for (const QRegularExpressionMatch &match : word.globalMatch(QString::fromUtf8(text))) {
        words.append(match.captured().remove(u'\''));
        for (qsizetype i = inserted.size(); i > 0; --i)
            words.last().replace(u'%' + QString::number(i), inserted[i - 1]);
    }
    return words;
}

} // namespace plexa::test
