// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QIODevice>

namespace plexa
{

// A BMP file has no metadata. Its header states where the pixels begin, however, and a written file names its
// software between the two. Unused fields of the header would not do: some programs read them nevertheless.

/// From the start of the file, for a header of version 4.
inline constexpr qsizetype kBmpSoftwareAt = 122;

/// @param device  open for reading, random access, at any position; its position afterwards is undefined
/// @return printable ASCII; empty if the file names none
QByteArray softwareOfBmp(QIODevice &device);

} // namespace plexa
