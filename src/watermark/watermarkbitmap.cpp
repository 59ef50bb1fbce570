// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/watermarkbitmap.h"

#include "raster/bitmaputilities.h"
#include "watermark/watermarklayout.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::WatermarkBitmap)
};

/// The size of the whole bitmap in pixels of its ink.
QSizeF renderedSize(const WatermarkBitmap &bitmap)
{
    return QSizeF(bitmap.size) * bitmap.scale;
}

/// From the ink's to the whole bitmap's lower right corner, in pixels of the ink.
QPointF beyondInk(const WatermarkBitmap &bitmap)
{
    const QSizeF rest = renderedSize(bitmap) - QSizeF(bitmap.ink.size());
    return QPointF(rest.width(), rest.height()) - bitmap.inkAt;
}

/// The bitmap after a rotation or reflection of its ink, if it has any.
template<class Change>
WatermarkBitmap changed(const WatermarkBitmap &bitmap, QSize size, QPointF inkAt, const Change &change)
{
    return {size, bitmap.scale, bitmap.ink.isNull() ? QImage() : change(bitmap.ink), inkAt, bitmap.notices};
}

WatermarkBitmap turnedByQuarter(const WatermarkBitmap &bitmap, bool clockwise)
{
    const QPointF beyond = beyondInk(bitmap);
    const QPointF inkAt =
        clockwise ? QPointF(beyond.y(), bitmap.inkAt.x()) : QPointF(bitmap.inkAt.y(), beyond.x());
    return changed(bitmap, bitmap.size.transposed(), inkAt,
                   [=](const QImage &ink) { return createImageUpright(ink, clockwise ? 6 : 8, 1, 1); });
}

WatermarkBitmap mirroredOnce(const WatermarkBitmap &bitmap, bool vertically)
{
    const QPointF beyond = beyondInk(bitmap);
    const QPointF inkAt =
        vertically ? QPointF(bitmap.inkAt.x(), beyond.y()) : QPointF(beyond.x(), bitmap.inkAt.y());
    return changed(bitmap, bitmap.size, inkAt,
                   [=](const QImage &ink) { return createImageUpright(ink, vertically ? 4 : 2, 1, 1); });
}

} // namespace

bool Rendering::isTooLarge(QSizeF size) const
{
    constexpr qint64 always = 64'000'000;
    const qint64 pixels = std::max(always, 2 * qint64{photo.width()} * photo.height());
    return size.width() * size.height() > static_cast<double>(pixels) * scale * scale;
}

tl::unexpected<Error> noMemory()
{
    return fail(Texts::tr("there is not enough memory to draw the watermark"));
}

std::optional<double> freeTilt(float degrees)
{
    const float radians = positiveRadians(degrees);
    if (!(radians > 0) || !std::isfinite(radians) || std::fmod(degrees, 90.0F) == 0)
        return std::nullopt;
    return static_cast<double>(radians);
}

QSizeF tiltedBox(QSizeF size, double radians)
{
    const double s = std::abs(std::sin(radians));
    const double c = std::abs(std::cos(radians));
    return {size.width() * c + size.height() * s, size.width() * s + size.height() * c};
}

QTransform tiltIntoBox(QSizeF size, double radians)
{
    const double s = std::sin(radians);
    const double c = std::cos(radians);
    const QSizeF box = tiltedBox(size, radians);
    return QTransform::fromTranslate(-size.width() / 2, -size.height() / 2) * QTransform(c, -s, s, c, 0, 0) *
           QTransform::fromTranslate(box.width() / 2, box.height() / 2);
}

WatermarkBitmap leftOut(QSizeF size, const Rendering &rendering)
{
    WatermarkBitmap none;
    none.scale = rendering.scale;
    none.notices = {Texts::tr("the watermark is left out: it would be %1 x %2 pixels large, more than memory "
                              "is given for; make it smaller")
                        .arg(size.width() / rendering.scale, 0, 'f', 0)
                        .arg(size.height() / rendering.scale, 0, 'f', 0)};
    return none;
}

WatermarkBitmap turnedByAngle(const WatermarkBitmap &bitmap, float degrees)
{
    const float radians = positiveRadians(degrees);
    if (!(radians > 0) || !std::isfinite(radians) || freeTilt(degrees))
        return bitmap;
    const int quarters = (static_cast<int>(std::fmod(degrees, 360.0F)) / 90 + 4) % 4;
    constexpr int rotations[] = {0, 1, 3, 2};
    return turnedByQuarters(bitmap, rotations[quarters]);
}

WatermarkBitmap turnedByQuarters(const WatermarkBitmap &bitmap, int rotation)
{
    switch (rotation) {
    case 1:
        return turnedByQuarter(bitmap, false);
    case 2:
        return turnedByQuarter(bitmap, true);
    case 3:
        return changed(bitmap, bitmap.size, beyondInk(bitmap),
                       [](const QImage &ink) { return createImageUpright(ink, 3, 1, 1); });
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
