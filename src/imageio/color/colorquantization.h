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

/// Chooses the colors by which a picture looks best, and dithers it with them by diffusing errors; a picture
/// that has no more colors than allowed keeps them exactly. Takes some seconds for a large photo. The same
/// picture always gives the same result.
/// @param pixels     red, green, blue and 255, row by row without padding
/// @param size       sides of at least 1, at most maxQuantizedPixels() in all
/// @param maxColors  2 to 256
/// @return the failure when there is not enough memory, or the library refuses
[[nodiscard]] Result<IndexedPicture> quantizedPicture(const uchar *pixels, QSize size, int maxColors);

/// The largest picture, in pixels.
qint64 maxQuantizedPixels();

/// The most memory (bytes) that quantizedPicture() takes, with what it returns.
qint64 quantizingBytes(QSize size);

} // namespace plexa
