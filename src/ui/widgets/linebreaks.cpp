// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/linebreaks.h"

#include <QTextBoundaryFinder>

namespace plexa
{
namespace
{

constexpr QChar kZeroWidthSpace(0x200b);

/// A word of so many units fits on a line of every label.
constexpr qsizetype kLongWord = 24;

} // namespace

QString withLineBreaks(const QString &text)
{
    QString result;
    qsizetype wordBegin = 0;
    const auto appendWord = [&](qsizetype end) {
        const QString word = text.mid(wordBegin, end - wordBegin);
        if (word.size() < kLongWord) {
            result += word;
            return;
        }
        QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, word);
        for (qsizetype from = 0, to = letters.toNextBoundary(); to >= 0;
             from = to, to = letters.toNextBoundary())
            result += word.mid(from, to - from) + kZeroWidthSpace;
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!text[i].isSpace())
            continue;
        appendWord(i);
        result += text[i];
        wordBegin = i + 1;
    }
    appendWord(text.size());
    return result;
}

QString withoutLineBreaks(QString text)
{
    return text.remove(kZeroWidthSpace);
}

} // namespace plexa
