// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// The width of help and lists.
inline constexpr qsizetype kTextColumns = 80;

/// A line that begins with `start`, with `text` from a column on, in as many lines as it needs; each ends
/// with a line feed. A longer `start` has a line of its own.
QString wrappedText(const QString &start, const QString &text, qsizetype column);

} // namespace plexa
