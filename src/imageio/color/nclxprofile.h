// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

namespace plexa
{

/// Colors told by code points (ITU-T H.273, clauses 8.1 and 8.2), as video and the formats that came of it
/// tell them.
struct NclxColors {
    int primaries = 1; ///< 1: BT.709 and sRGB, 9: BT.2020, 12: Display P3, ...
    int transfer = 13; ///< 13: sRGB, 16: PQ, 18: HLG, ...
};

/// The ICC profile for these colors. The curves of SDR video count as sRGB's: cameras say BT.709 of pictures
/// that are meant to be seen on a monitor as they are, and other programs show them so. PQ and HLG are
/// brought into the range of a monitor: their reference white becomes a bright white, and what is brighter is
/// pressed together above it.
/// @return empty for sRGB, for code points that are reserved or unspecified, and without memory
QByteArray profileOfNclx(const NclxColors &colors);

} // namespace plexa
