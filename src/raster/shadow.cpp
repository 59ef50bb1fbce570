// SPDX-License-Identifier: GPL-3.0-or-later

#include "raster/bitmaputilities.h"
#include "raster/compositing.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace plexa
{

namespace
{

/// A Gaussian is followed as far as this many standard deviations: beyond lies a third of one level of 255.
constexpr double kReach = 3;

/// A wide blur is computed on averaged blocks. The standard deviation is at least this many blocks, so
/// neither the blocks nor the interpolation between them is visible.
constexpr double kBlocksPerDeviation = 6;

/// Half of a symmetric kernel: the middle first. The whole adds up to 1.
std::vector<float> gaussian(double deviation)
{
    const int reach = std::max(1, int(std::ceil(kReach * deviation)));
    std::vector<double> exact;
    double sum = 0;
    for (int i = 0; i <= reach; ++i) {
        exact.push_back(std::exp(-0.5 * i * i / (deviation * deviation)));
        sum += i == 0 ? exact.back() : 2 * exact.back();
    }
    std::vector<float> kernel;
    for (double weight : exact)
        kernel.push_back(float(weight / sum));
    return kernel;
}

/// Blurs `source`, which has as many zeros before and after it as the kernel reaches, along the row.
void blurAcross(const std::vector<float> &kernel, const float *source, float *target, int width)
{
    constexpr int kChunk = 512; // stays in the first-level cache while all weights pass over it
    for (int begin = 0; begin < width; begin += kChunk) {
        const int count = std::min(kChunk, width - begin);
        const float *middle = source + begin;
        float *to = target + begin;
        for (int x = 0; x < count; ++x)
            to[x] = middle[x] * kernel[0];
        for (int k = 1; k < int(kernel.size()); ++k) {
            const float weight = kernel[std::size_t(k)];
            const float *left = middle - k;
            const float *right = middle + k;
            for (int x = 0; x < count; ++x)
                to[x] += (left[x] + right[x]) * weight;
        }
    }
}

/// Writes coverage as pixels of a color.
class Tint
{
public:
    explicit Tint(const QColor &color)
        : m_alpha(color.alphaF() * 255)
        , m_red(color.redF() * m_alpha)
        , m_green(color.greenF() * m_alpha)
        , m_blue(color.blueF() * m_alpha)
    {
    }

    void write(const float *coverage, quint32 *pixels, int width) const
    {
        for (int x = 0; x < width; ++x) {
            const float part = std::min(coverage[x], 1.0F);
            const int alpha = int(part * m_alpha + 0.5F);
            const int red = int(part * m_red + 0.5F);
            const int green = int(part * m_green + 0.5F);
            const int blue = int(part * m_blue + 0.5F);
            pixels[x] = quint32(alpha) << 24 | quint32(red << 16 | green << 8 | blue);
        }
    }

private:
    float m_alpha;
    float m_red;
    float m_green;
    float m_blue;
};

/// A mark's coverage, 0..1, averaged over blocks of `block` x `block` pixels. The grid of blocks starts
/// `margin` pixels above and to the left of the mark.
class BlockedCoverage
{
public:
    BlockedCoverage(const QImage &mark, int margin, int block, int columns)
        : m_mark(mark)
        , m_width(mark.width())
        , m_margin(margin)
        , m_block(block)
        , m_sums(std::size_t(columns))
    {
    }

    /// Writes one row of blocks. @return false, and writes nothing, where there is no coverage at all
    bool read(int row, float *to)
    {
        const qint64 top = qint64(row) * m_block - m_margin;
        const int begin = int(std::clamp<qint64>(top, 0, m_mark.height()));
        const int end = int(std::clamp<qint64>(top + m_block, 0, m_mark.height()));
        std::fill(m_sums.begin(), m_sums.end(), 0U);
        quint32 any = 0;
        for (int y = begin; y < end; ++y) {
            const auto *pixels =
                reinterpret_cast<const quint32 *>(m_mark.constBits() + y * m_mark.bytesPerLine());
            any |= m_block == 1 ? addPixels(pixels) : addBlocks(pixels);
        }
        if (any == 0)
            return false;
        const float full = 255.0F * float(m_block) * float(m_block);
        for (std::size_t x = 0; x < m_sums.size(); ++x)
            to[x] = float(int(m_sums[x])) / full;
        return true;
    }

private:
    quint32 addPixels(const quint32 *pixels)
    {
        quint32 any = 0;
        quint32 *to = m_sums.data() + m_margin;
        for (int x = 0; x < m_width; ++x) {
            to[x] = pixels[x] >> 24;
            any |= to[x];
        }
        return any;
    }

    quint32 addBlocks(const quint32 *pixels)
    {
        quint32 any = 0;
        int x = 0;
        for (std::size_t column = std::size_t(m_margin / m_block); x < m_width; ++column) {
            const auto end = qint64(column + 1) * m_block - m_margin;
            quint32 sum = 0;
            for (; x < std::min<qint64>(end, m_width); ++x)
                sum += pixels[x] >> 24;
            m_sums[column] += sum;
            any |= sum;
        }
        return any;
    }

    const QImage &m_mark;
    int m_width;
    int m_margin;
    int m_block;
    std::vector<quint32> m_sums;
};

/// The rows of the blurred coverage, from the top. Holds no more rows than the kernel reaches over.
class BlurredRows
{
public:
    BlurredRows(BlockedCoverage coverage, int columns, const std::vector<float> &kernel)
        : m_coverage(std::move(coverage))
        , m_kernel(kernel)
        , m_columns(columns)
        , m_reach(int(kernel.size()) - 1)
        , m_padded(std::size_t(columns) + 2 * std::size_t(m_reach))
        , m_ring(std::size_t(columns) * std::size_t(2 * m_reach + 1))
        , m_filled(std::size_t(2 * m_reach + 1))
    {
        for (int row = 0; row < m_reach; ++row)
            readRow(row);
    }

    /// Writes the next row. @return false, and writes nothing, where the row is empty
    bool next(float *to)
    {
        readRow(m_next + m_reach);
        const int row = m_next++;
        if (std::none_of(m_filled.begin(), m_filled.end(), [](bool filled) { return filled; }))
            return false;
        std::fill_n(to, m_columns, 0.0F);
        for (int k = -m_reach; k <= m_reach; ++k) {
            if (row + k < 0 || !m_filled[slotOf(row + k)])
                continue;
            const float weight = m_kernel[std::size_t(std::abs(k))];
            const float *from = rowAt(row + k);
            for (int x = 0; x < m_columns; ++x)
                to[x] += from[x] * weight;
        }
        return true;
    }

private:
    std::size_t slotOf(int row) const { return std::size_t(row) % m_filled.size(); }
    float *rowAt(int row) { return m_ring.data() + slotOf(row) * std::size_t(m_columns); }

    void readRow(int row)
    {
        const bool filled = m_coverage.read(row, m_padded.data() + m_reach);
        m_filled[slotOf(row)] = filled;
        if (filled)
            blurAcross(m_kernel, m_padded.data() + m_reach, rowAt(row), m_columns);
    }

    BlockedCoverage m_coverage;
    const std::vector<float> &m_kernel;
    int m_columns;
    int m_reach;
    std::vector<float> m_padded;
    std::vector<float> m_ring;
    std::vector<bool> m_filled;
    int m_next = 0;
};

/// Where a pixel lies between the middles of two blocks.
struct Between {
    int first;
    int second;
    float share; ///< of the second

    Between(int pixel, int block, int blocks)
    {
        const double place = std::clamp((pixel + 0.5) / block - 0.5, 0.0, double(blocks - 1));
        first = int(place);
        second = std::min(first + 1, blocks - 1);
        share = float(place - first);
    }
};

/// Writes the blurred coverage row by row.
void writeRows(BlurredRows &rows, const Tint &tint, QImage &target, const CancelCheck &isCanceled)
{
    std::vector<float> row(std::size_t(target.width()), 0.0F);
    uchar *bits = target.bits();
    for (int y = 0; y < target.height() && !canceled(isCanceled); ++y) {
        if (rows.next(row.data()))
            tint.write(row.data(), reinterpret_cast<quint32 *>(bits + y * target.bytesPerLine()),
                       target.width());
    }
}

/// Draws the blurred blocks, with straight lines from middle to middle.
void writeBlocks(BlurredRows &rows, int columns, int lines, int block, const Tint &tint, QImage &target,
                 const CancelCheck &isCanceled)
{
    std::vector<Between> across;
    for (int x = 0; x < target.width(); ++x)
        across.emplace_back(x, block, columns);
    std::vector<float> upper(std::size_t(columns), 0.0F);
    std::vector<float> lower(std::size_t(columns), 0.0F);
    std::vector<float> wide(std::size_t(target.width()));
    const auto read = [&](std::vector<float> &row) {
        if (!rows.next(row.data()))
            std::fill(row.begin(), row.end(), 0.0F);
    };
    read(lower);
    int have = 0;
    uchar *bits = target.bits();
    for (int y = 0; y < target.height() && !canceled(isCanceled); ++y) {
        const Between down(y, block, lines);
        for (; have < down.second; ++have) {
            upper.swap(lower);
            read(lower);
        }
        const std::vector<float> &first = down.first == have ? lower : upper;
        for (std::size_t x = 0; x < wide.size(); ++x) {
            const Between &at = across[x];
            const auto mixed = [&](int column) {
                const auto i = std::size_t(column);
                return first[i] + (lower[i] - first[i]) * down.share;
            };
            const float left = mixed(at.first);
            wide[x] = left + (mixed(at.second) - left) * at.share;
        }
        tint.write(wide.data(), reinterpret_cast<quint32 *>(bits + y * target.bytesPerLine()),
                   target.width());
    }
}

void writeSharp(const QImage &mark, const Tint &tint, QImage &target)
{
    std::vector<float> row(std::size_t(mark.width()));
    BlockedCoverage coverage(mark, 0, 1, mark.width());
    uchar *bits = target.bits();
    for (int y = 0; y < mark.height(); ++y) {
        if (coverage.read(y, row.data()))
            tint.write(row.data(), reinterpret_cast<quint32 *>(bits + y * target.bytesPerLine()),
                       mark.width());
    }
}

} // namespace

Shadow shadowOf(const QImage &mark, double blur, const QColor &color, const CancelCheck &isCanceled)
{
    const bool isMark = mark.isNull() || mark.format() == QImage::Format_ARGB32_Premultiplied;
    Q_ASSERT(isMark);
    if (mark.isNull() || !isMark)
        return {};
    const double deviation = blur > 0 ? blur / 2 : 0;
    const double margin = std::ceil(kReach * deviation);
    if (!(2 * margin + std::max(mark.width(), mark.height()) < double(std::numeric_limits<int>::max())))
        return {};
    Shadow shadow{createBitmapContext(mark.width() + 2 * int(margin), mark.height() + 2 * int(margin), true),
                  int(margin)};
    if (shadow.image.isNull())
        return {};
    const Tint tint(color.toRgb());
    if (shadow.margin == 0) {
        writeSharp(mark, tint, shadow.image);
        return shadow;
    }

    const int block = std::max(1, int(deviation / kBlocksPerDeviation));
    const std::vector<float> kernel = gaussian(deviation / block);
    const int columns = (shadow.image.width() + block - 1) / block;
    const int lines = (shadow.image.height() + block - 1) / block;
    BlurredRows rows(BlockedCoverage(mark, shadow.margin, block, columns), columns, kernel);
    if (block > 1)
        writeBlocks(rows, columns, lines, block, tint, shadow.image, isCanceled);
    else
        writeRows(rows, tint, shadow.image, isCanceled);
    return canceled(isCanceled) ? Shadow() : shadow;
}

} // namespace plexa
