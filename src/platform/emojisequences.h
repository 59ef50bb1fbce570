// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <vector>

namespace plexa
{

/// A piece of a text that is one emoji by Unicode's rules: with the emoji variation selector, a skin tone, or
/// zero-width joiners, a flag, a keycap, or a character that is an emoji without these.
struct EmojiSequence {
    qsizetype at = 0;
    qsizetype length = 0;    ///< in UTF-16 units
    bool isExplicit = false; ///< false: a character alone, which the text's own font may show
};

/// All emoji of a text, in its order. Any thread.
std::vector<EmojiSequence> emojiSequencesIn(const QString &text);

} // namespace plexa
