// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QString>
#include <QStringList>

namespace plexa
{

// Texts of tokens and literal pieces, as watermarks and names of copies have them.

/// The tokens of texts of watermarks, or of names of copies, which have some more.
enum class TokenUse { Watermark, CopyName };
QStringList tokensFor(TokenUse use);

/// The pieces of a text in which "{creator}" is a token and "{{" a brace. Literal text never becomes a token:
/// if it is the name of one, it is split.
/// @return a failure if the braces contain no token
[[nodiscard]] Result<QStringList> piecesOfText(const QString &text, TokenUse use);

/// The token that a text differs from in letter case, punctuation or a letter or two; empty if there is none,
/// if it is a token itself, or if it looks like a label ("Copyright: ").
QString likelyToken(const QString &text, TokenUse use);

/// A line for each piece that is literal and was probably meant as a token.
QStringList noticesAboutTokens(const QStringList &pieces, TokenUse use);

} // namespace plexa
