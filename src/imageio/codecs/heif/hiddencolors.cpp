// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/heif/hiddencolors.h"

#include "imageio/base/picturefailures.h"

#include <algorithm>
#include <vector>

namespace plexa
{

namespace
{

constexpr int kPixelBytes = 4;

/// The picture in half the size. A pixel is the mean of its visible ones of four, and opaque if there is any.
QImage halved(const QImage &image)
{
    QImage half((image.width() + 1) / 2, (image.height() + 1) / 2, QImage::Format_RGBA8888);
    if (half.isNull())
        return half;
    for (int y = 0; y < half.height(); ++y) {
        const uchar *rows[] = {image.constScanLine(2 * y),
                               image.constScanLine(qMin(2 * y + 1, image.height() - 1))};
        uchar *out = half.scanLine(y);
        for (int x = 0; x < half.width(); ++x, out += kPixelBytes) {
            int sums[3] = {0, 0, 0};
            int weight = 0;
            for (const uchar *row : rows) {
                for (const int column : {2 * x, qMin(2 * x + 1, image.width() - 1)}) {
                    const uchar *pixel = row + kPixelBytes * column;
                    for (int i = 0; i < 3; ++i)
                        sums[i] += pixel[i] * pixel[3];
                    weight += pixel[3];
                }
            }
            for (int i = 0; i < 3; ++i)
                out[i] = weight > 0 ? uchar((sums[i] + weight / 2) / weight) : uchar(0);
            out[3] = weight > 0 ? 255 : 0;
        }
    }
    return half;
}

/// Interpolates the colors of transparent pixels from the picture of half the size.
/// @param alpha  of these pixels afterwards
void fillFrom(const QImage &half, QImage &image, uchar alpha)
{
    for (int y = 0; y < image.height(); ++y) {
        uchar *pixel = image.scanLine(y);
        const int further = std::clamp(y % 2 == 0 ? y / 2 - 1 : y / 2 + 1, 0, half.height() - 1);
        const uchar *near = half.constScanLine(y / 2);
        const uchar *far = half.constScanLine(further);
        for (int x = 0; x < image.width(); ++x, pixel += kPixelBytes) {
            if (pixel[3] != 0)
                continue;
            const int at = kPixelBytes * (x / 2);
            const int beside =
                kPixelBytes * std::clamp(x % 2 == 0 ? x / 2 - 1 : x / 2 + 1, 0, half.width() - 1);
            for (int i = 0; i < 3; ++i)
                pixel[i] = uchar(
                    (9 * near[at + i] + 3 * near[beside + i] + 3 * far[at + i] + far[beside + i] + 8) / 16);
            pixel[3] = alpha;
        }
    }
}

} // namespace

Result<void> fillHiddenColors(QImage &image)
{
    std::vector<QImage> levels; // each of half the size of the one before
    for (QSize size = image.size(); size != QSize(1, 1);) {
        levels.push_back(halved(levels.empty() ? image : levels.back()));
        if (levels.back().isNull())
            return fail(PictureFailures::outOfMemory());
        size = levels.back().size();
    }
    if (levels.empty() || levels.back().constBits()[3] == 0)
        return {};
    for (size_t i = levels.size() - 1; i > 0; --i)
        fillFrom(levels[i], levels[i - 1], 255);
    fillFrom(levels.front(), image, 0);
    return {};
}

} // namespace plexa
