// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/watermarkbitmap.h"

#include "raster/bitmaputilities.h"
#include "watermark/watermarklayout.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <cmath>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::WatermarkBitmap)
};

WatermarkBitmap turnedByQuarter(const WatermarkBitmap &bitmap, bool clockwise)
{
    const QSize ink = bitmap.ink.size();
    const int rightOfInk = bitmap.size.width() - bitmap.inkAt.x() - ink.width();
    const int belowInk = bitmap.size.height() - bitmap.inkAt.y() - ink.height();
    WatermarkBitmap turned;
    turned.size = bitmap.size.transposed();
    turned.inkAt = clockwise ? QPoint(belowInk, bitmap.inkAt.x()) : QPoint(bitmap.inkAt.y(), rightOfInk);
    if (!bitmap.ink.isNull())
        turned.ink = createImageRotatedByQuarter(bitmap.ink, clockwise);
    return turned;
}

WatermarkBitmap turnedByHalf(const WatermarkBitmap &bitmap)
{
    const QSize rest = bitmap.size - bitmap.ink.size();
    WatermarkBitmap turned;
    turned.size = bitmap.size;
    turned.inkAt = QPoint(rest.width(), rest.height()) - bitmap.inkAt;
    if (!bitmap.ink.isNull())
        turned.ink = createImageRotatedByHalf(bitmap.ink);
    return turned;
}

WatermarkBitmap mirroredOnce(const WatermarkBitmap &bitmap, bool vertically)
{
    WatermarkBitmap flipped = bitmap;
    if (vertically)
        flipped.inkAt.setY(bitmap.size.height() - bitmap.inkAt.y() - bitmap.ink.height());
    else
        flipped.inkAt.setX(bitmap.size.width() - bitmap.inkAt.x() - bitmap.ink.width());
    if (!bitmap.ink.isNull())
        flipped.ink = createImageFlipped(bitmap.ink, vertically);
    return flipped;
}

/// The bounding box of a turned rectangle.
QSizeF turnedSize(QSizeF size, double radians)
{
    const double s = std::abs(std::sin(radians));
    const double c = std::abs(std::cos(radians));
    return {size.width() * c + size.height() * s, size.width() * s + size.height() * c};
}

/// Turns the ink alone. Its centre goes round the bitmap's centre, and that becomes the centre of the
/// turned bitmap.
Result<WatermarkBitmap> turnedFreely(const WatermarkBitmap &bitmap, double radians, qint64 maxPixels)
{
    const QSizeF box = turnedSize(bitmap.size, radians);
    const QSizeF inkBox = turnedSize(bitmap.ink.size(), radians);
    if (inkBox.width() * inkBox.height() > static_cast<double>(maxPixels))
        return tooLargeBitmap(inkBox.width(), inkBox.height());
    WatermarkBitmap turned;
    turned.size = QSize(static_cast<int>(box.width()), static_cast<int>(box.height()));
    if (bitmap.ink.isNull())
        return turned;
    turned.ink = createImageRotatedByAngle(bitmap.ink, radians);
    if (turned.ink.isNull())
        return WatermarkBitmap{};
    const QPointF fromCentre = QRectF(bitmap.inkAt, bitmap.ink.size()).center() -
                               QPointF(bitmap.size.width() / 2.0, bitmap.size.height() / 2.0);
    const double s = std::sin(radians);
    const double c = std::cos(radians);
    const QPointF centre(box.width() / 2 + fromCentre.x() * c + fromCentre.y() * s,
                         box.height() / 2 - fromCentre.x() * s + fromCentre.y() * c);
    turned.inkAt = (centre - QPointF(inkBox.width() / 2, inkBox.height() / 2)).toPoint();
    return turned;
}

} // namespace

qint64 maxBitmapPixels(QSize photo)
{
    constexpr qint64 always = 64'000'000;
    return std::max(always, 2 * qint64{photo.width()} * photo.height());
}

tl::unexpected<Error> tooLargeBitmap(double width, double height)
{
    return fail(
        Texts::tr(
            "the watermark would be %1 x %2 pixels large, more than memory is given for; make it smaller")
            .arg(width, 0, 'f', 0)
            .arg(height, 0, 'f', 0));
}

Result<WatermarkBitmap> turnedByAngle(const WatermarkBitmap &bitmap, float degrees, qint64 maxPixels)
{
    const float radians = positiveRadians(degrees);
    if (!(radians > 0) || !std::isfinite(radians))
        return bitmap;
    // Whole quarters need no interpolation, which would blur.
    const float fromQuarter = std::fmod(degrees, 90.0F);
    if (fromQuarter == 0) {
        const int quarters = (static_cast<int>(std::fmod(degrees, 360.0F)) / 90 + 4) % 4;
        constexpr int rotations[] = {0, 1, 3, 2};
        return turnedByQuarters(bitmap, rotations[quarters]);
    }
    return turnedFreely(bitmap, static_cast<double>(radians), maxPixels);
}

WatermarkBitmap turnedByQuarters(const WatermarkBitmap &bitmap, int rotation)
{
    switch (rotation) {
    case 1:
        return turnedByQuarter(bitmap, false);
    case 2:
        return turnedByQuarter(bitmap, true);
    case 3:
        return turnedByHalf(bitmap);
    default:
        return bitmap;
    }
}

WatermarkBitmap mirrored(const WatermarkBitmap &bitmap, int flip)
{
    switch (flip) {
    case 1:
        return mirroredOnce(bitmap, false);
    case 2:
        return mirroredOnce(bitmap, true);
    case 3:
        return mirroredOnce(mirroredOnce(bitmap, false), true);
    default:
        return bitmap;
    }
}

} // namespace plexa
