// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

namespace plexa
{

/// The color model of a profile: "RGB", "Gray", "CMYK", "Lab"; empty if unusable.
QString profileColorModel(const QByteArray &iccProfile);

/// The profile's name for people; may be empty.
QString profileDescription(const QByteArray &iccProfile);

/// Adobe RGB (1998), for pictures that name it without a profile.
const QByteArray &adobeRgbProfile();

/// The sRGB profile of every written picture: under 4 KB, always the same bytes.
const QByteArray &srgbProfile();

/// Colors as code points (ITU-T H.273, clauses 8.1 and 8.2), used by video and related formats.
struct NclxColors {
    int primaries = 1; ///< 1: BT.709 and sRGB, 9: BT.2020, 12: Display P3, ...
    int transfer = 13; ///< 13: sRGB, 16: PQ, 18: HLG, ...
};

/// The ICC profile for these colors. The curves of SDR video count as sRGB's, as in other programs. PQ and
/// HLG are mapped to the range of a monitor: highlights above their reference white are compressed.
/// @return empty for sRGB, for reserved or unspecified code points, and without memory
QByteArray profileOfNclx(const NclxColors &colors);

} // namespace plexa
