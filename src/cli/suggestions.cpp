// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/suggestions.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace plexa
{
namespace
{

/// Letters and digits only, in lower case.
QString skeleton(const QString &text)
{
    QString letters;
    for (const QChar character : text.toCaseFolded()) {
        if (character.isLetterOrNumber())
            letters += character;
    }
    return letters;
}

/// The number of letters to insert, remove or replace (Levenshtein).
qsizetype editsBetween(const QString &a, const QString &b)
{
    std::vector<qsizetype> row(static_cast<std::size_t>(b.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const QChar letter : a) {
        qsizetype diagonal = row[0]++;
        for (std::size_t i = 1; i < row.size(); ++i) {
            const qsizetype replaced = diagonal + (b[static_cast<qsizetype>(i) - 1] == letter ? 0 : 1);
            diagonal = row[i];
            row[i] = std::min({replaced, row[i] + 1, row[i - 1] + 1});
        }
    }
    return row.back();
}

} // namespace

QString likelyName(const QString &text, const QStringList &names)
{
    constexpr qsizetype kShortest = 5; // shorter words are near to many others
    constexpr qsizetype kLong = 10;
    if (names.contains(text))
        return {};
    const QString letters = skeleton(text);
    QString likely;
    qsizetype fewest = letters.size() < kShortest ? 1 : letters.size() < kLong ? 2 : 3;
    for (const QString &name : names) {
        const qsizetype edits = editsBetween(letters, skeleton(name));
        if (edits >= fewest)
            continue;
        fewest = edits;
        likely = name;
    }
    return likely;
}

QString didYouMean(const QString &text, const QStringList &names, const QString &otherwise)
{
    const QString likely = likelyName(text, names);
    return likely.isEmpty() ? otherwise : QStringLiteral("; did you mean \"%1\"?").arg(likely);
}

} // namespace plexa
