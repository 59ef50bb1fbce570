// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"
#include "imageio/container/heifitems.h"

namespace plexa
{

/// What decoding a HEIF file's primary picture will take, found out without decoding.
struct HeifMeasure {
    QSize canvas;                ///< the largest of what is put together on the way
    qint64 codedPixels = 0;      ///< of all that is decoded, tiles and alpha included, as often as it is
    qint64 largestPixels = 0;    ///< of a single coded picture
    int chroma = 1;              ///< 0: gray, 1: 4:2:0, 2: 4:2:2, 3: 4:4:4
    bool hasTurnedParts = false; ///< a part of the picture, or its alpha, is turned by itself
};

/// Follows the primary picture down to its coded pictures and reads their heads. The sizes in the boxes need
/// not be those of the coded pictures, a tile may be used any number of times, and grids may hold grids:
/// decoders look at none of it.
/// @return the failure when the picture is damaged, of a kind that is not decoded, or beyond the limits
[[nodiscard]] Result<HeifMeasure> measureHeif(QIODevice &device, const HeifItems &items,
                                              const ReadLimits &limits, const char *formatName);

} // namespace plexa
