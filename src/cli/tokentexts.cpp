// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/tokentexts.h"

#include "saving/namingtokens.h"
#include "watermark/texttokens.h"

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

/// Does it begin or end with a blank or a separator, as a text between tokens does?
bool isLabel(const QString &text)
{
    const auto isOpen = [](QChar end) { return end.isSpace() || QStringLiteral(":,.;-_|/").contains(end); };
    return text.isEmpty() || isOpen(text.front()) || isOpen(text.back());
}

/// Literal text, split if it is the name of a token.
void appendLiteral(QStringList &pieces, const QString &text, const QStringList &tokens)
{
    if (tokens.contains(text))
        pieces << text.left(1) << text.mid(1);
    else if (!text.isEmpty())
        pieces << text;
}

} // namespace

QStringList tokensFor(TokenUse use)
{
    return use == TokenUse::Watermark ? tokenNames() : tokenNames() + namingTokenNames();
}

Result<QStringList> piecesOfText(const QString &text, TokenUse use)
{
    const QStringList tokens = tokensFor(use);
    QStringList pieces;
    QString literal;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'{') {
            literal += text[i];
            continue;
        }
        if (text.mid(i + 1, 1) == u"{") {
            literal += text[i++];
            continue;
        }
        const qsizetype end = text.indexOf(u'}', i);
        if (end < 0)
            return fail(
                QStringLiteral("there is no \"}\" after \"%1\"; write {{ for a brace").arg(text.mid(i)));
        const QString name = text.mid(i + 1, end - i - 1);
        if (!tokens.contains(name)) {
            const QString likely = likelyToken(name, use);
            const QString hint = likely.isEmpty() ? QStringLiteral("\"plexa-cli tokens\" lists the tokens")
                                                  : QStringLiteral("did you mean {%1}?").arg(likely);
            return fail(QStringLiteral("there is no token {%1}: %2 Write {{ for a brace")
                            .arg(name, likely.isEmpty() ? hint + u'.' : hint));
        }
        appendLiteral(pieces, std::exchange(literal, QString()), tokens);
        pieces << name;
        i = end;
    }
    appendLiteral(pieces, literal, tokens);
    return pieces;
}

QString likelyToken(const QString &text, TokenUse use)
{
    constexpr qsizetype kShortest = 5; // shorter words are near to many others
    constexpr qsizetype kLong = 10;
    const QStringList tokens = tokensFor(use);
    if (tokens.contains(text) || isLabel(text))
        return {};
    const QString letters = skeleton(text);
    QString likely;
    qsizetype fewest = letters.size() < kShortest ? 1 : letters.size() < kLong ? 2 : 3;
    for (const QString &token : tokens) {
        const qsizetype edits = editsBetween(letters, skeleton(token));
        if (edits >= fewest)
            continue;
        fewest = edits;
        likely = token;
    }
    return likely;
}

QStringList noticesAboutTokens(const QStringList &pieces, TokenUse use)
{
    QStringList notices;
    for (const QString &piece : pieces) {
        if (const QString likely = likelyToken(piece, use); !likely.isEmpty())
            notices << QStringLiteral("\"%1\" is literal text; the token is \"%2\"").arg(piece, likely);
    }
    return notices;
}

} // namespace plexa
