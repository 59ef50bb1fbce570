// SPDX-License-Identifier: GPL-3.0-or-later

#include "raster/compositing.h"

#include "raster/blendrow.h"

#include <algorithm>
#include <cmath>

namespace plexa
{

namespace
{

bool isTarget(const QImage &rows)
{
    return rows.format() == QImage::Format_RGB32 || rows.format() == QImage::Format_ARGB32_Premultiplied;
}

/// A color to paint with: premultiplied channels and alpha, 0..255.
struct Paint {
    float red;
    float green;
    float blue;
    float alpha;
};

/// Paints pixels [begin, end) of a row with a color that covers this much of each of them.
template<bool isOpaque>
void paint(quint32 *row, int begin, int end, const Paint &color, double coverage)
{
    const float part = float(coverage);
    const float kept = 1 - color.alpha * part / 255;
    const Paint added{color.red * part + 0.5F, color.green * part + 0.5F, color.blue * part + 0.5F,
                      color.alpha * part + 0.5F};
    for (int x = begin; x < end; ++x) {
        const auto pixel = int(row[x]);
        const int red = int(float((pixel >> 16) & 255) * kept + added.red);
        const int green = int(float((pixel >> 8) & 255) * kept + added.green);
        const int blue = int(float(pixel & 255) * kept + added.blue);
        const int alpha = isOpaque ? 255 : int(float((pixel >> 24) & 255) * kept + added.alpha);
        row[x] = quint32(alpha) << 24 | quint32(red << 16 | green << 8 | blue);
    }
}

/// The part of the interval [low, high) that pixel `index` sees, 0..1.
double coverageOf(double low, double high, double index)
{
    return std::max(0.0, std::min(high, index + 1) - std::max(low, index));
}

} // namespace

void fillRows(QImage &rows, int firstRow, const QRectF &rect, const QColor &color)
{
    Q_ASSERT(isTarget(rows));
    const QColor rgb = color.toRgb();
    if (!isTarget(rows) || !rgb.isValid())
        return;
    // In the target's own coordinates, cut off a little outside of it: no edge then leaves the range of int.
    const double left = std::max(rect.left(), -1.0);
    const double right = std::min(rect.right(), rows.width() + 1.0);
    const double top = std::max(rect.top() - firstRow, -1.0);
    const double bottom = std::min(rect.bottom() - firstRow, rows.height() + 1.0);
    if (!(left < right && top < bottom && rgb.alphaF() > 0)) // NaN is drawn nowhere
        return;

    const float alpha = rgb.alphaF() * 255;
    const Paint premultiplied{rgb.redF() * alpha, rgb.greenF() * alpha, rgb.blueF() * alpha, alpha};
    const bool isOpaque = rows.format() == QImage::Format_RGB32;
    const auto fill = isOpaque ? paint<true> : paint<false>;
    const int begin = std::max(0, int(std::floor(left)));
    const int end = std::min(rows.width(), int(std::ceil(right)));
    // Pixels [whole, wholeEnd) lie between both edges; they are one run.
    const int whole = std::clamp(int(std::ceil(left)), begin, end);
    const int wholeEnd = std::clamp(int(std::floor(right)), whole, end);

    const int firstLine = std::max(0, int(std::floor(top)));
    const int lastLine = std::min(rows.height(), int(std::ceil(bottom)));
    uchar *bits = rows.bits();
    for (int y = firstLine; y < lastLine; ++y) {
        auto *row = reinterpret_cast<quint32 *>(bits + y * rows.bytesPerLine());
        const double down = coverageOf(top, bottom, y);
        for (int x = begin; x < whole; ++x)
            fill(row, x, x + 1, premultiplied, down * coverageOf(left, right, x));
        fill(row, whole, wholeEnd, premultiplied, down);
        for (int x = wholeEnd; x < end; ++x)
            fill(row, x, x + 1, premultiplied, down * coverageOf(left, right, x));
    }
}

void stampRows(QImage &rows, int firstRow, const QImage &mark, QPoint at, BlendMode mode, double opacity)
{
    const bool isMark = mark.isNull() || mark.format() == QImage::Format_ARGB32_Premultiplied;
    Q_ASSERT(isTarget(rows) && isMark);
    if (!isTarget(rows) || !isMark || mark.isNull() || !(opacity > 0))
        return;
    const qint64 left = at.x();
    const qint64 top = qint64(at.y()) - firstRow;
    const qint64 begin = std::max<qint64>(left, 0);
    const qint64 end = std::min<qint64>(left + mark.width(), rows.width());
    const qint64 firstLine = std::max<qint64>(top, 0);
    const qint64 lastLine = std::min<qint64>(top + mark.height(), rows.height());
    if (begin >= end || firstLine >= lastLine)
        return;

    const BlendRow blend = blendRowFor(mode, rows.format() == QImage::Format_RGB32);
    const float share = float(std::min(opacity, 1.0));
    uchar *bits = rows.bits();
    for (qint64 y = firstLine; y < lastLine; ++y) {
        auto *under = reinterpret_cast<quint32 *>(bits + y * rows.bytesPerLine()) + begin;
        const auto *over =
            reinterpret_cast<const quint32 *>(mark.constBits() + (y - top) * mark.bytesPerLine());
        blend(under, over + (begin - left), int(end - begin), share);
    }
}

} // namespace plexa
