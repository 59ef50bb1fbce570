// SPDX-License-Identifier: GPL-3.0-or-later

#include "raster/resampling.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace plexa
{

namespace
{

/// The four channels of one pixel, worked on at once.
using Pixel = float __attribute__((vector_size(16)));

/// A filter over pixels: centered on 0, and 0 beyond `reach`.
struct Linear {
    static constexpr double kReach = 1;
    static double at(double x) { return std::max(0.0, 1 - std::abs(x)); }
};

/// Keys' cubic with a = -1/2 (Catmull-Rom): R. Keys, "Cubic convolution interpolation for digital image
/// processing", IEEE Trans. ASSP 29, 1981.
struct Cubic {
    static constexpr double kReach = 2;
    static double at(double x)
    {
        x = std::abs(x);
        if (x < 1)
            return (1.5 * x - 2.5) * x * x + 1;
        return x < 2 ? ((-0.5 * x + 2.5) * x - 4) * x + 2 : 0;
    }
};

/// The weights of the source pixels for each target pixel of one side: `taps` each, from `first` on.
struct Weights {
    std::vector<int> first;
    std::vector<float> weight;
    int taps = 0;

    const float *of(int index) const { return weight.data() + qsizetype(index) * taps; }
};

/// @param extent  the source's length in its pixels; the last pixel may be covered in part only
template<class Filter>
Weights weightsFor(double extent, int target)
{
    const int count = int(std::ceil(extent - 1e-9));
    const double ratio = extent / target;
    const double stretch = std::max(1.0, ratio);
    const double reach = Filter::kReach * stretch;

    Weights result;
    result.taps = int(std::min<double>(count, 2 * std::ceil(reach) + 1));
    result.first.resize(std::size_t(target));
    result.weight.resize(std::size_t(target) * std::size_t(result.taps));
    std::vector<double> row(std::size_t(result.taps));
    for (int i = 0; i < target; ++i) {
        const double center = (i + 0.5) * ratio;
        const int first = std::clamp(int(std::floor(center - reach)), 0, count - result.taps);
        double sum = 0;
        for (int k = 0; k < result.taps; ++k) {
            const double covered = std::min(1.0, extent - (first + k));
            row[std::size_t(k)] = Filter::at((first + k + 0.5 - center) / stretch) * covered;
            sum += row[std::size_t(k)];
        }
        result.first[std::size_t(i)] = first;
        float *to = result.weight.data() + qsizetype(i) * result.taps;
        for (int k = 0; k < result.taps; ++k)
            to[k] = float(row[std::size_t(k)] / sum);
    }
    return result;
}

/// The average of each block of `factorX` x `factorY` pixels; blocks at the right and at the bottom may be
/// smaller. Both factors at most 256, or a sum of bytes would not fit.
QImage shrunkByWholeFactors(const QImage &image, int factorX, int factorY, const CancelCheck &isCanceled)
{
    const int fullWidth = image.width();
    const int width = (fullWidth + factorX - 1) / factorX;
    const int height = (image.height() + factorY - 1) / factorY;
    QImage result(width, height, image.format());
    if (result.isNull())
        return {};
    uchar *bits = result.bits();
    const qsizetype bytes = qsizetype(fullWidth) * 4;
    std::vector<quint16> sums(std::size_t(bytes), 0);
    for (int y = 0; y < height; ++y) {
        if (canceled(isCanceled))
            return {};
        const int top = y * factorY;
        const int rows = std::min(factorY, image.height() - top);
        std::fill(sums.begin(), sums.end(), quint16(0));
        for (int row = top; row < top + rows; ++row) {
            const uchar *from = image.constBits() + row * image.bytesPerLine();
            quint16 *to = sums.data();
            for (qsizetype i = 0; i < bytes; ++i)
                to[i] = quint16(to[i] + from[i]);
        }
        uchar *to = bits + y * result.bytesPerLine();
        for (int x = 0; x < width; ++x) {
            const int left = x * factorX;
            const int columns = std::min(factorX, fullWidth - left);
            const quint16 *from = sums.data() + qsizetype(left) * 4;
            quint32 total[4] = {0, 0, 0, 0};
            for (int column = 0; column < columns; ++column, from += 4) {
                for (int c = 0; c < 4; ++c)
                    total[c] += from[c];
            }
            const float share = 1.0F / float(columns * rows);
            for (int c = 0; c < 4; ++c)
                to[x * 4 + c] = uchar(int(float(int(total[c])) * share + 0.5F));
        }
    }
    return result;
}

/// One row of pixels, filtered along x.
/// @param wide  room for `width` source pixels
void filterAcross(const uchar *from, int width, const Weights &across, std::vector<Pixel> &wide, Pixel *to,
                  std::size_t targetWidth)
{
    auto *channels = reinterpret_cast<float *>(wide.data());
    const qsizetype channelCount = qsizetype(width) * 4;
    for (qsizetype i = 0; i < channelCount; ++i)
        channels[i] = float(from[i]);
    for (std::size_t x = 0; x < targetWidth; ++x) {
        const float *weight = across.of(int(x));
        const Pixel *pixel = wide.data() + across.first[x];
        // Two sums, for the processor to add to both at a time.
        Pixel even{0, 0, 0, 0};
        Pixel odd{0, 0, 0, 0};
        int k = 0;
        for (; k + 1 < across.taps; k += 2) {
            even += pixel[k] * weight[k];
            odd += pixel[k + 1] * weight[k + 1];
        }
        if (k < across.taps)
            even += pixel[k] * weight[k];
        to[x] = even + odd;
    }
}

/// A rounded sum as a pixel.
quint32 packed(const Pixel &sum, bool isOpaque)
{
    const float alpha = isOpaque ? 255.0F : std::clamp(sum[3], 0.0F, 255.0F);
    const auto channel = [&](int c) { return quint32(std::clamp(sum[c], 0.0F, alpha)); };
    return quint32(alpha) << 24 | channel(2) << 16 | channel(1) << 8 | channel(0);
}

void writePixels(const std::vector<Pixel> &sum, bool isOpaque, quint32 *to)
{
    for (std::size_t x = 0; x < sum.size(); ++x)
        to[x] = packed(sum[x], isOpaque);
}

/// Applies both sides' weights. Source rows are filtered along x once, when they are first needed, and kept
/// only as long as a target row needs them.
QImage filtered(const QImage &image, QSize size, const Weights &across, const Weights &down,
                const CancelCheck &isCanceled)
{
    QImage result(size, image.format());
    if (result.isNull())
        return {};
    const std::size_t width = std::size_t(size.width());
    std::vector<Pixel> wide(std::size_t(image.width()));
    std::vector<Pixel> ring(width * std::size_t(down.taps));
    std::vector<Pixel> sum(width);
    const bool isOpaque = image.format() == QImage::Format_RGB32;
    uchar *bits = result.bits();
    int ready = 0;

    for (int y = 0; y < size.height(); ++y) {
        if (canceled(isCanceled))
            return {};
        const int first = down.first[std::size_t(y)];
        for (ready = std::max(ready, first); ready < first + down.taps; ++ready)
            filterAcross(image.constBits() + ready * image.bytesPerLine(), image.width(), across, wide,
                         ring.data() + std::size_t(ready % down.taps) * width, width);
        std::fill(sum.begin(), sum.end(), Pixel{0.5F, 0.5F, 0.5F, 0.5F});
        const float *weight = down.of(y);
        for (int k = 0; k < down.taps; ++k) {
            const Pixel *row = ring.data() + std::size_t((first + k) % down.taps) * width;
            const float factor = weight[k];
            for (std::size_t x = 0; x < width; ++x)
                sum[x] += row[x] * factor;
        }
        writePixels(sum, isOpaque, reinterpret_cast<quint32 *>(bits + y * result.bytesPerLine()));
    }
    return result;
}

/// The weights of `count` target pixels from `begin` on, for the source pixels from `offset` on that they
/// need.
struct PartOfWeights {
    Weights weights;
    int offset = 0;
    int length = 0;
};

PartOfWeights partOf(const Weights &whole, int begin, int count)
{
    const auto from = whole.first.begin() + begin;
    const auto [least, most] = std::minmax_element(from, from + count);
    PartOfWeights part{{std::vector<int>(from, from + count),
                        std::vector<float>(whole.of(begin), whole.of(begin) + qsizetype(count) * whole.taps),
                        whole.taps},
                       *least,
                       *most - *least + whole.taps};
    for (int &first : part.weights.first)
        first -= part.offset;
    return part;
}

/// The side of the blocks that are averaged first. The filter then still shrinks at least 6 times, which
/// hides the blocks.
int blockFactor(int source, int target)
{
    return std::clamp(int(source / (6.0 * target)), 1, 256);
}

/// An image that is averaged in blocks before it is filtered; its extents in blocks may be fractions.
struct Shrunk {
    QImage image;
    double extentX = 0;
    double extentY = 0;
};

Shrunk shrunkFor(const QImage &image, QSize size, const CancelCheck &isCanceled)
{
    const int factorX = blockFactor(image.width(), size.width());
    const int factorY = blockFactor(image.height(), size.height());
    return {factorX > 1 || factorY > 1 ? shrunkByWholeFactors(image, factorX, factorY, isCanceled) : image,
            double(image.width()) / factorX, double(image.height()) / factorY};
}

/// Places in an image are fixed-point numbers with 32 fractional bits: over any row that fits into
/// memory the steps add up to less than a hundredth of a pixel.
constexpr double kFixedOne = 4294967296.0;

/// The weights of four neighbors in one direction, for each 256th of a pixel.
struct CubicTaps {
    float weight[256][4];

    CubicTaps()
    {
        for (int i = 0; i < 256; ++i) {
            for (int k = 0; k < 4; ++k)
                weight[i][k] = float(Cubic::at(k - 1 - i / 256.0));
        }
    }
};

/// The colors between an image's pixels: bicubic, without values beyond the range of a pixel.
class Sampler
{
public:
    explicit Sampler(const QImage &image)
        : m_pixels(reinterpret_cast<const quint32 *>(image.constBits()))
        , m_stride(image.bytesPerLine() / 4)
        , m_width(image.width())
        , m_height(image.height())
        , m_isOpaque(image.format() == QImage::Format_RGB32)
    {
    }

    /// @param x, y  fixed-point; whole numbers are the middles of pixels
    quint32 at(qint64 x, qint64 y) const
    {
        static const CubicTaps taps;
        const qint64 left = (x >> 32) - 1;
        const qint64 top = (y >> 32) - 1;
        if (left >= 0 && left + 3 < m_width && top >= 0 && top + 3 < m_height)
            return mixed(m_pixels + top * m_stride + left, m_stride, taps.weight[(x >> 24) & 255],
                         taps.weight[(y >> 24) & 255]);
        quint32 around[16];
        for (int row = 0; row < 4; ++row) {
            for (int column = 0; column < 4; ++column)
                around[row * 4 + column] = pixelAt(left + column, top + row);
        }
        return mixed(around, 4, taps.weight[(x >> 24) & 255], taps.weight[(y >> 24) & 255]);
    }

private:
    using Bytes = uchar __attribute__((vector_size(4)));

    quint32 mixed(const quint32 *from, qsizetype stride, const float *across, const float *down) const
    {
        quint32 unlike = 0;
        for (int row = 0; row < 4; ++row) {
            for (int column = 0; column < 4; ++column)
                unlike |= from[row * stride + column] ^ from[0];
        }
        if (unlike == 0) // plain areas, most of a logo
            return m_isOpaque ? from[0] | 0xff000000U : from[0];
        Pixel sum{0.5F, 0.5F, 0.5F, 0.5F};
        for (int row = 0; row < 4; ++row) {
            Pixel inRow{0, 0, 0, 0};
            for (int column = 0; column < 4; ++column) {
                Bytes bytes;
                std::memcpy(&bytes, from + row * stride + column, sizeof bytes);
                inRow += __builtin_convertvector(bytes, Pixel) * across[column];
            }
            sum += inRow * down[row];
        }
        // At the edges of a picture the filter overshoots in all channels alike.
        if (sum[3] > 255.5F)
            sum *= 255.5F / sum[3];
        return packed(sum, m_isOpaque);
    }

    quint32 pixelAt(qint64 x, qint64 y) const
    {
        if (x >= 0 && x < m_width && y >= 0 && y < m_height)
            return m_pixels[y * m_stride + x];
        return 0;
    }

    const quint32 *m_pixels;
    qsizetype m_stride;
    qint64 m_width;
    qint64 m_height;
    bool m_isOpaque;
};

/// The part of a row that can show the image.
struct Span {
    double begin;
    double end;

    /// Keeps the x for which `start + x * step` lies within [low, high].
    void limit(double start, double step, double low, double high)
    {
        if (std::abs(step) < 1e-12) {
            if (start < low || start > high)
                end = begin;
            return;
        }
        const double atLow = (low - start) / step;
        const double atHigh = (high - start) / step;
        begin = std::max(begin, std::min(atLow, atHigh));
        end = std::min(end, std::max(atLow, atHigh));
    }
};

} // namespace

QImage resampled(const QImage &image, QSize size, Quality quality, const CancelCheck &isCanceled)
{
    if (image.isNull() || size.isEmpty())
        return {};
    if (image.size() == size)
        return image;
    const Shrunk source = shrunkFor(image, size, isCanceled);
    if (source.image.isNull())
        return {};
    if (quality == Quality::Low)
        return filtered(source.image, size, weightsFor<Linear>(source.extentX, size.width()),
                        weightsFor<Linear>(source.extentY, size.height()), isCanceled);
    return filtered(source.image, size, weightsFor<Cubic>(source.extentX, size.width()),
                    weightsFor<Cubic>(source.extentY, size.height()), isCanceled);
}

QImage resampledPart(const QImage &image, QSize size, const QRect &part, const CancelCheck &isCanceled)
{
    if (image.isNull() || part.isEmpty() || !QRect(QPoint(0, 0), size).contains(part))
        return {};
    if (image.size() == size)
        return image.copy(part);
    const Shrunk source = shrunkFor(image, size, isCanceled);
    if (source.image.isNull())
        return {};
    const PartOfWeights across =
        partOf(weightsFor<Cubic>(source.extentX, size.width()), part.left(), part.width());
    const PartOfWeights down =
        partOf(weightsFor<Cubic>(source.extentY, size.height()), part.top(), part.height());
    const QImage &all = source.image;
    const QImage needed(all.constScanLine(down.offset) + qsizetype(across.offset) * 4, across.length,
                        down.length, all.bytesPerLine(), all.format());
    return filtered(needed, part.size(), across.weights, down.weights, isCanceled);
}

void drawTransformed(QImage &target, const QImage &image, const QTransform &toSource)
{
    const Sampler sampler(image);
    const auto stepX = qint64(std::llround(toSource.m11() * kFixedOne));
    const auto stepY = qint64(std::llround(toSource.m12() * kFixedOne));
    uchar *bits = target.bits();
    for (int row = 0; row < target.height(); ++row) {
        const double v = row + 0.5;
        // The center of pixel 0 is at 0.5: taken off here, a whole number is the middle of a pixel.
        const double startX = toSource.m11() * 0.5 + toSource.m21() * v + toSource.dx() - 0.5;
        const double startY = toSource.m12() * 0.5 + toSource.m22() * v + toSource.dy() - 0.5;
        Span span{0, double(target.width())};
        span.limit(startX, toSource.m11(), -2, image.width() + 1);
        span.limit(startY, toSource.m12(), -2, image.height() + 1);
        if (!(span.begin < span.end))
            continue;
        const int begin = int(std::floor(span.begin));
        const int end = std::min(target.width(), int(std::ceil(span.end)) + 1);
        auto x = qint64(std::llround((startX + begin * toSource.m11()) * kFixedOne));
        auto y = qint64(std::llround((startY + begin * toSource.m12()) * kFixedOne));
        auto *to = reinterpret_cast<quint32 *>(bits + row * target.bytesPerLine());
        for (int column = begin; column < end; ++column, x += stepX, y += stepY)
            to[column] = sampler.at(x, y);
    }
}

} // namespace plexa
