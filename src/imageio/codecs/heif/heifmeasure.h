// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"
#include "imageio/container/heifitems.h"

namespace plexa
{

/// The cost of decoding a HEIF file's primary picture, determined without decoding.
struct HeifMeasure {
    QSize canvas;                 ///< the largest composed picture
    qint64 largestPixels = 0;     ///< of a single coded picture
    int chroma = 1;               ///< 0: gray, 1: 4:2:0, 2: 4:2:2, 3: 4:4:4
    bool hasRotatedParts = false; ///< a part of the picture, or its alpha, is rotated individually
};

/// Follows the primary picture down to its coded pictures and reads their headers. Decoders do not check that
/// the sizes in the boxes are those of the coded pictures, how often a tile is used, or how deep grids nest.
/// @return the failure if the picture is damaged, unsupported or beyond the limits
[[nodiscard]] Result<HeifMeasure> measureHeif(QIODevice &device, const HeifItems &items,
                                              const ReadLimits &limits, const char *formatName);

} // namespace plexa
