// SPDX-License-Identifier: GPL-3.0-or-later

#include "raster/bitmaputilities.h"

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

/// The image in the format of these functions; no copy when it has that format.
QImage asBitmap(const QImage &image)
{
    return image.convertToFormat(bitmapFormat(image.hasAlphaChannel() || hasDeepComponents(image.format())));
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

} // namespace

QImage createBitmapContext(int width, int height, bool withAlpha)
{
    return cleared(width, height, bitmapFormat(withAlpha));
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

QImage createImageUpright(const QImage &image, int orientation, double scaleX, double scaleY)
{
    const QImage upright = oriented(image, orientation);
    if (upright.isNull() || (scaleX == 1 && scaleY == 1))
        return upright;
    const QSize stretched(int(std::lround(image.width() * scaleX)),
                          int(std::lround(image.height() * scaleY)));
    const QSize size = orientedSize(stretched, orientation);
    return scaledTo(upright, size.width(), size.height(), Quality::High);
}

QImage createImageScaledToMaxSize(const QImage &image, int maxSize, bool flipVertically)
{
    if (image.isNull())
        return {};
    const int longer = std::max(image.width(), image.height());
    if (maxSize >= longer)
        return flipVertically ? oriented(image, 4) : image;
    if (maxSize < 1)
        return {};
    // A very long and thin image keeps one pixel of its shorter side.
    const auto scaled = [&](int side) { return std::max<qint64>(1, qint64(side) * maxSize / longer); };
    const QImage smaller =
        scaledTo(image, double(scaled(image.width())), double(scaled(image.height())), Quality::High);
    return flipVertically ? oriented(smaller, 4) : smaller;
}

QImage createImageScaledToSize(const QImage &image, int width, int height, bool highQuality,
                               const CancelCheck &isCanceled)
{
    return scaledTo(image, width, height, highQuality ? Quality::High : Quality::Low, isCanceled);
}

} // namespace plexa
