// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QIODevice>

namespace plexa
{

// A BMP file has no metadata. A header of version 4 that states sRGB has 36 bytes without a use, however: the
// primaries, which count for other color spaces only. A written file names its software there.

inline constexpr qsizetype kBmpSoftwareAt = 74; ///< from the start of the file
inline constexpr qsizetype kBmpSoftwareBytes = 36;

/// @param device  open for reading, random access, at any position; its position afterwards is undefined
/// @return printable ASCII; empty if the file names none
QByteArray softwareOfBmp(QIODevice &device);

} // namespace plexa
