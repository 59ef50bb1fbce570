// SPDX-License-Identifier: GPL-3.0-or-later

#include "raster/bitmaputilities.h"

#include "raster/compositing.h"
#include "raster/orientation.h"
#include "raster/pixelformat.h"
#include "raster/resampling.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace plexa
{

namespace
{

/// No bitmap is larger: 4 GiB.
constexpr qint64 kMaxPixels = qint64(1) << 30;

QImage::Format bitmapFormat(bool withAlpha)
{
    return withAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
}

QImage::Format formatLike(const QImage &image)
{
    return bitmapFormat(image.hasAlphaChannel() || hasDeepComponents(image.format()));
}

/// The image in the format of these functions; no copy when it has that format.
QImage asBitmap(const QImage &image)
{
    return image.convertToFormat(formatLike(image));
}

/// Whether a bitmap can have that size; false for NaN.
bool isPossible(double width, double height)
{
    return width >= 1 && height >= 1 && width * height <= double(kMaxPixels);
}

/// A bitmap whose pixels are not set yet.
QImage uncleared(double width, double height, QImage::Format format)
{
    return isPossible(width, height) ? QImage(int(width), int(height), format) : QImage();
}

QImage cleared(double width, double height, QImage::Format format)
{
    QImage result = uncleared(width, height, format);
    if (!result.isNull())
        result.fill(format == QImage::Format_RGB32 ? 0xff000000U : 0U);
    return result;
}

QImage oriented(const QImage &image, int orientation)
{
    const QImage source = asBitmap(image);
    if (source.isNull())
        return {};
    const QSize size = orientedSize(source.size(), orientation);
    QImage result = uncleared(size.width(), size.height(), source.format());
    if (!result.isNull())
        placeOrientedRows(result, source, source.height(), 0, source.size(), orientation);
    return result;
}

QImage scaledTo(const QImage &image, double width, double height, Quality quality,
                const CancelCheck &isCanceled = {})
{
    if (image.isNull() || !isPossible(width, height))
        return {};
    return resampled(asBitmap(image), QSize(int(width), int(height)), quality, isCanceled);
}

/// Draws through a transform that has its origin at the bottom left of the image and of the bitmap.
QImage drawnThrough(const QImage &image, const QTransform &transform, double width, double height)
{
    const QImage source = asBitmap(image);
    if (source.isNull() || !transform.isInvertible())
        return {};
    QImage result = cleared(width, height, source.format());
    if (result.isNull())
        return {};
    const QTransform toTarget =
        QTransform(1, 0, 0, -1, 0, source.height()) * transform * QTransform(1, 0, 0, -1, 0, result.height());
    const QTransform toSource = toTarget.inverted();
    // A transform that flattens the image to less than a thousandth of a pixel shows nothing of it.
    const double steepest = std::max({std::abs(toSource.m11()), std::abs(toSource.m12()),
                                      std::abs(toSource.m21()), std::abs(toSource.m22())});
    if (steepest < 1000.0 * std::max(source.width(), source.height()))
        drawTransformed(result, source, toSource);
    return result;
}

/// The quarter turns (counter-clockwise, 0 to 3) that an angle makes, if it makes whole ones. The tolerance
/// moves no corner of the largest bitmap by a visible part of a pixel.
std::optional<int> wholeQuarters(double radians)
{
    const double quarters = radians / (std::numbers::pi / 2);
    const double whole = std::round(quarters);
    if (std::abs(quarters - whole) > 1e-9)
        return std::nullopt;
    return int(std::fmod(std::fmod(whole, 4) + 4, 4));
}

/// The orientation that a transform along the axes amounts to, its stretching and moving aside.
int orientationOf(const QTransform &transform)
{
    const bool turned = transform.m12() != 0;
    const bool first = turned ? transform.m12() > 0 : transform.m11() > 0;
    const bool second = turned ? transform.m21() > 0 : transform.m22() > 0;
    if (turned)
        return first ? (second ? 7 : 8) : (second ? 6 : 5);
    return first ? (second ? 1 : 4) : (second ? 2 : 3);
}

/// Copies the image to another place in its frame.
QImage moved(const QImage &image, double right, double up)
{
    if (right == 0 && up == 0)
        return image;
    QImage result = cleared(image.width(), image.height(), image.format());
    if (result.isNull())
        return {};
    const int width = image.width() - int(std::min<double>(std::abs(right), image.width()));
    const int height = image.height() - int(std::min<double>(std::abs(up), image.height()));
    if (width == 0 || height == 0)
        return result;
    const int fromX = right < 0 ? image.width() - width : 0;
    const int fromY = up > 0 ? image.height() - height : 0;
    const int toX = image.width() - width - fromX;
    const int toY = image.height() - height - fromY;
    uchar *bits = result.bits();
    for (int y = 0; y < height; ++y) {
        const uchar *from = image.constBits() + (fromY + y) * image.bytesPerLine() + qsizetype(fromX) * 4;
        std::copy_n(from, qsizetype(width) * 4,
                    bits + (toY + y) * result.bytesPerLine() + qsizetype(toX) * 4);
    }
    return result;
}

} // namespace

QImage createBitmapContextLikeImage(const QImage &image, int width, int height, bool forcePremultipliedAlpha)
{
    if (image.isNull())
        return {};
    return cleared(width, height, forcePremultipliedAlpha ? bitmapFormat(true) : formatLike(image));
}

QImage createBitmapContext(int width, int height, bool withAlpha)
{
    return cleared(width, height, bitmapFormat(withAlpha));
}

QImage createImageRotatedByQuarter(const QImage &image, bool clockwise)
{
    return oriented(image, clockwise ? 6 : 8);
}

QImage createImageRotatedByHalf(const QImage &image)
{
    return oriented(image, 3);
}

QImage createImageFlipped(const QImage &image, bool vertically)
{
    return oriented(image, vertically ? 4 : 2);
}

QImage createImageRotatedByAngle(const QImage &image, double radians)
{
    if (image.isNull() || !std::isfinite(radians))
        return {};
    if (const std::optional<int> quarters = wholeQuarters(radians)) {
        constexpr int kOrientations[] = {1, 8, 3, 6};
        return oriented(image, kOrientations[*quarters]);
    }
    const double sine = std::sin(radians);
    const double cosine = std::cos(radians);
    const double width = image.width();
    const double height = image.height();
    const double boxWidth = std::abs(width * cosine) + std::abs(height * sine);
    const double boxHeight = std::abs(width * sine) + std::abs(height * cosine);
    // How far the turned image reaches to the left of and below the corner that it turns about.
    const double left = std::min(0.0, width * cosine) + std::min(0.0, -height * sine);
    const double bottom = std::min(0.0, width * sine) + std::min(0.0, height * cosine);
    return drawnThrough(image, QTransform(cosine, sine, -sine, cosine, -left, -bottom), std::floor(boxWidth),
                        std::floor(boxHeight));
}

QImage createImageRotatedAboutCenter(const QImage &image, double radians)
{
    if (image.isNull() || !std::isfinite(radians))
        return {};
    const std::optional<int> quarters = wholeQuarters(radians);
    if (quarters && *quarters % 2 == 0)
        return oriented(image, *quarters == 0 ? 1 : 3);
    const double sine = std::sin(radians);
    const double cosine = std::cos(radians);
    const double x = image.width() / 2.0;
    const double y = image.height() / 2.0;
    const QTransform turn(cosine, sine, -sine, cosine, x - cosine * x + sine * y, y - sine * x - cosine * y);
    return drawnThrough(image, turn, image.width(), image.height());
}

QImage createImageWithTransform(const QImage &image, const QTransform &transform)
{
    if (image.isNull() || !transform.isAffine() || !transform.isInvertible())
        return {};
    const double a = transform.m11();
    const double b = transform.m12();
    const double c = transform.m21();
    const double d = transform.m22();
    const bool exchanges = b != 0 || c != 0;
    const double stretchedWidth = std::round(image.width() * std::hypot(a, b));
    const double stretchedHeight = std::round(image.height() * std::hypot(c, d));
    const double width = exchanges ? stretchedHeight : stretchedWidth;
    const double height = exchanges ? stretchedWidth : stretchedHeight;

    // How far the image's lower left corner comes to lie from the frame's.
    const double right =
        transform.dx() + std::min(0.0, a * image.width()) + std::min(0.0, c * image.height());
    const double up = transform.dy() + std::min(0.0, b * image.width()) + std::min(0.0, d * image.height());
    const bool alongAxes = (b == 0 && c == 0) || (a == 0 && d == 0);
    const bool stretches = std::abs(a + b) != 1 || std::abs(c + d) != 1;
    const bool movesByPixels = right == std::round(right) && up == std::round(up);
    if (!alongAxes || (!stretches && !movesByPixels))
        return drawnThrough(image, transform, width, height);

    const QImage turned = oriented(image, orientationOf(transform));
    const QImage stretched = stretches ? scaledTo(turned, width, height, Quality::High) : turned;
    return stretched.isNull() ? QImage() : moved(stretched, std::round(right), std::round(up));
}

QImage createImageScaledToMaxSize(const QImage &image, int maxSize, bool flipVertically)
{
    if (image.isNull())
        return {};
    const int longer = std::max(image.width(), image.height());
    if (maxSize >= longer)
        return flipVertically ? createImageFlipped(image, true) : image;
    if (maxSize < 1)
        return {};
    // A very long and thin image keeps one pixel of its shorter side.
    const auto scaled = [&](int side) { return std::max<qint64>(1, qint64(side) * maxSize / longer); };
    const QImage smaller =
        scaledTo(image, double(scaled(image.width())), double(scaled(image.height())), Quality::High);
    return flipVertically ? createImageFlipped(smaller, true) : smaller;
}

QImage createImageScaledToSize(const QImage &image, int width, int height, bool highQuality,
                               const CancelCheck &isCanceled)
{
    return scaledTo(image, width, height, highQuality ? Quality::High : Quality::Low, isCanceled);
}

QImage createImageFlattened(const QImage &image, bool keepAlpha, const QColor &background, int width,
                            int height)
{
    QImage result = createBitmapContextLikeImage(image, width, height, keepAlpha);
    if (result.isNull())
        return {};
    if (!keepAlpha)
        fillRows(result, 0, QRectF(0, 0, width, height), background);
    const QImage scaled = scaledTo(image, width, height, Quality::High);
    if (scaled.isNull())
        return {};
    stampRows(result, 0, scaled.convertToFormat(QImage::Format_ARGB32_Premultiplied), QPoint(0, 0),
              BlendMode::Normal, 1);
    return result;
}

QColor createCGColorFromColor(const QColor &color)
{
    return color.toRgb();
}

} // namespace plexa
