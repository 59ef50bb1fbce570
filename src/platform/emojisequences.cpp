// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/emojisequences.h"

#include <QList>

#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <memory>
#include <optional>

namespace plexa
{
namespace
{

constexpr uint kTextSelector = 0xfe0e;
constexpr uint kEmojiSelector = 0xfe0f;
constexpr uint kJoiner = 0x200d;

/// Below are no emoji without a character from above.
constexpr char16_t kFirstOfEmoji = 0x2000;

bool has(uint character, UProperty property)
{
    return u_hasBinaryProperty(static_cast<UChar32>(character), property);
}

/// Is the text between two boundaries an emoji, and is it explicitly one?
/// @return none if it is text
std::optional<bool> emojiKindOf(const QList<uint> &cluster)
{
    const uint second = cluster.value(1);
    if (!has(cluster.value(0), UCHAR_EMOJI) || second == kTextSelector)
        return std::nullopt;
    if (second == kEmojiSelector || has(second, UCHAR_EMOJI_MODIFIER) ||
        (second == kJoiner && has(cluster.value(2), UCHAR_EXTENDED_PICTOGRAPHIC)))
        return true;
    if (has(cluster.value(0), UCHAR_EMOJI_PRESENTATION))
        return cluster.size() > 1;
    return std::nullopt;
}

} // namespace

std::vector<EmojiSequence> emojiSequencesIn(const QString &text)
{
    std::vector<EmojiSequence> sequences;
    if (std::none_of(text.begin(), text.end(), [](QChar c) { return c >= QChar(kFirstOfEmoji); }))
        return sequences;
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<UBreakIterator, decltype(&ubrk_close)> breaks(
        ubrk_open(UBRK_CHARACTER, "", reinterpret_cast<const UChar *>(text.utf16()),
                  static_cast<int32_t>(text.size()), &error),
        &ubrk_close);
    if (U_FAILURE(error))
        return sequences;
    qsizetype at = 0;
    for (int end = ubrk_next(breaks.get()); end != UBRK_DONE; end = ubrk_next(breaks.get())) {
        const qsizetype length = end - at;
        if (const auto kind = emojiKindOf(text.mid(at, length).toUcs4()))
            sequences.push_back({at, length, *kind});
        at = end;
    }
    return sequences;
}

} // namespace plexa
