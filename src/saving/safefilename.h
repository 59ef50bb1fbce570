// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// The most bytes of UTF-8 that the name of a file may have, on every usual file system.
constexpr qsizetype kMaxFileNameBytes = 255;

/// The text as one that may be the name of a visible file in a folder, and of none elsewhere: slashes, colons
/// and what cannot be seen but breaks lines, ends strings or turns the direction of writing become "_";
/// blanks and dots at both ends go. May be empty; may be too long.
QString safeFileName(const QString &text);

/// The name of a file or a folder as one that exFAT and SMB accept: "_" for the characters that these forbid
/// and for a blank or dot at the end, and "_" after the base of a reserved name ("nul.txt").
QString portableFileName(const QString &name);

/// As much of the beginning of a text as fits into that many bytes of UTF-8. Letters stay whole, with their
/// accents, and there is no blank or dot at the end.
QString shortenedToBytes(const QString &text, qsizetype maxBytes);

} // namespace plexa
