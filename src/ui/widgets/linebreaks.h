// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// The text with a zero-width space after each letter of its long words, so that a label wraps names of
/// files anywhere, instead of cutting them off. For texts that nobody copies.
QString withLineBreaks(const QString &text);

/// The text as it was before withLineBreaks().
QString withoutLineBreaks(QString text);

} // namespace plexa
