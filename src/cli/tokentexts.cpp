// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/tokentexts.h"

#include "cli/suggestions.h"
#include "saving/namingtokens.h"
#include "watermark/texttokens.h"

#include <utility>

namespace plexa
{
namespace
{

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

QString unknownToken(const QString &name, TokenUse use)
{
    if (use == TokenUse::Watermark && namingTokenNames().contains(name))
        return QStringLiteral("{%1} is a token of names of copies only (--name)").arg(name);
    const QString likely = likelyToken(name, use);
    const QString hint = likely.isEmpty() ? QStringLiteral("\"plexa-cli tokens\" lists the tokens.")
                                          : QStringLiteral("did you mean {%1}?").arg(likely);
    return QStringLiteral("there is no token {%1}: %2 Write {{ for a brace").arg(name, hint);
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
            return fail(unknownToken(name, use));
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
    return isLabel(text) ? QString() : likelyName(text, tokensFor(use));
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
