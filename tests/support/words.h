// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

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
    const QStringList inserted{wordOf(values)...};
    QStringList words;
    QString word;
    bool isQuoted = false;
    bool isWord = false;
    const QString all = QString::fromUtf8(text);
    for (qsizetype i = 0; i < all.size(); ++i) {
        const QChar letter = all[i];
        if (letter.isSpace() && !isQuoted) {
            if (isWord)
                words.append(word);
            word.clear();
            isWord = false;
            continue;
        }
        isWord = true;
        const int place = letter == u'%' && i + 1 < all.size() ? all[i + 1].digitValue() : 0;
        if (letter == u'\'') {
            isQuoted = !isQuoted;
        } else if (place >= 1 && place <= inserted.size()) {
            word += inserted[place - 1];
            ++i;
        } else {
            word += letter;
        }
    }
    if (isWord)
        words.append(word);
    return words;
}

} // namespace plexa::test
