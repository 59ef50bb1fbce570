// SPDX-License-Identifier: GPL-3.0-or-later

#include "raster/orientation.h"

#include <algorithm>
#include <cstring>

namespace plexa
{

namespace
{

/// Rows of 32-bit pixels. Strides are counted in pixels.
struct Source {
    const quint32 *pixels;
    qsizetype stride;
    int width;
    int rows;
};

/// Copies a transposed block: pixel (x, y) goes to `origin + x * stepX + y * stepY`. Works in tiles, so that
/// the lines read and the lines written stay in the first-level cache together; a tile is taller than wide
/// because a long run within each line written costs fewer page look-ups.
void copyTransposed(const Source &source, quint32 *origin, qsizetype stepX, qsizetype stepY)
{
    constexpr int kTileWidth = 16;
    constexpr int kTileHeight = 64;
    for (int top = 0; top < source.rows; top += kTileHeight) {
        const int bottom = std::min(top + kTileHeight, source.rows);
        for (int left = 0; left < source.width; left += kTileWidth) {
            const int right = std::min(left + kTileWidth, source.width);
            for (int x = left; x < right; ++x) {
                const quint32 *from = source.pixels + top * source.stride + x;
                quint32 *to = origin + x * stepX + top * stepY;
                for (int y = top; y < bottom; ++y, from += source.stride, to += stepY)
                    *to = *from;
            }
        }
    }
}

bool isTransposed(int orientation)
{
    return orientation >= 5 && orientation <= 8;
}

} // namespace

QSize orientedSize(QSize stored, int orientation)
{
    return isTransposed(orientation) ? stored.transposed() : stored;
}

void placeOrientedRows(QImage &target, const QImage &strip, int stripRows, int firstRow, QSize stored,
                       int orientation)
{
    const bool fits = target.size() == orientedSize(stored, orientation) && target.depth() == 32 &&
                      strip.depth() == 32 && strip.width() >= stored.width();
    Q_ASSERT(fits);
    if (!fits)
        return;

    const qsizetype skipped = firstRow < 0 ? -qsizetype(firstRow) : 0;
    const qsizetype begin = std::max(firstRow, 0);
    const qsizetype rows =
        std::min<qsizetype>(std::min(stripRows, strip.height()) - skipped, stored.height() - begin);
    if (rows <= 0)
        return;

    const qsizetype sourceStride = strip.bytesPerLine() / 4;
    const Source source{reinterpret_cast<const quint32 *>(strip.constBits()) + skipped * sourceStride,
                        sourceStride, stored.width(), int(rows)};
    auto *pixels = reinterpret_cast<quint32 *>(target.bits());
    const qsizetype stride = target.bytesPerLine() / 4;
    const qsizetype lastX = stored.width() - 1;
    const qsizetype lastY = stored.height() - 1;

    switch (orientation) {
    case 5:
        return copyTransposed(source, pixels + begin, stride, 1);
    case 6:
        return copyTransposed(source, pixels + (lastY - begin), stride, -1);
    case 7:
        return copyTransposed(source, pixels + lastX * stride + (lastY - begin), -stride, -1);
    case 8:
        return copyTransposed(source, pixels + lastX * stride + begin, -stride, 1);
    default:
        break;
    }

    const bool mirrored = orientation == 2 || orientation == 3;
    const bool upsideDown = orientation == 3 || orientation == 4;
    for (qsizetype y = 0; y < rows; ++y) {
        const quint32 *from = source.pixels + y * sourceStride;
        quint32 *to = pixels + (upsideDown ? lastY - begin - y : begin + y) * stride;
        if (mirrored)
            std::reverse_copy(from, from + source.width, to);
        else
            std::memcpy(to, from, std::size_t(source.width) * sizeof(quint32));
    }
}

} // namespace plexa
