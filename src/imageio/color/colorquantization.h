// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QRgb>
#include <QSize>

#include <memory>
#include <vector>

namespace plexa
{

/// A picture of few colors.
struct IndexedPicture {
    std::vector<QRgb> palette;        ///< 1 to 256 opaque colors
    std::unique_ptr<uchar[]> indices; ///< row by row without padding
};

/// Chooses the best colors for a picture and dithers it by error diffusion; a picture with few enough colors
/// keeps them exactly. Needs some seconds for a large photo. Deterministic.
/// @param pixels     red, green, blue and 255, row by row without padding
/// @param size       sides of at least 1, at most maxQuantizedPixels() in all
/// @param maxColors  2 to 256
/// @return the failure if memory is short or the library refuses
[[nodiscard]] Result<IndexedPicture> quantizedPicture(const uchar *pixels, QSize size, int maxColors);

/// The largest picture, in pixels.
qint64 maxQuantizedPixels();

/// Upper bound of the memory (bytes) of quantizedPicture(), its result included.
qint64 quantizingBytes(QSize size);

} // namespace plexa
