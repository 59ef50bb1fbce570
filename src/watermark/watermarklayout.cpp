// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/watermarklayout.h"

#include "watermark/wpresetvalues.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace plexa
{
namespace
{

/// Tiling beyond this is a mistake (a negative gap nearly as large as the watermark) and would take minutes
/// for each photo.
constexpr double kMaxStampedAreaInPhotos = 400;

/// To draw any copy takes at least as long as so many pixels.
constexpr double kLeastStampedPixels = 50;

/// Converts the lengths of a preset to pixels of the photo.
struct Lengths {
    QSizeF photo;

    double pixels(WholeNumber value, const QString &unit) const
    {
        return static_cast<double>(absoluteValueForSize(static_cast<float>(value.value_or(0)), unit, photo));
    }
};

QPointF anchoredOrigin(const WPresetValues &values, const Lengths &lengths, QSizeF mark)
{
    const double ox = lengths.pixels(values.offsetHorizontal, values.offsetHorizontalUnit);
    const double oy = lengths.pixels(values.offsetVertical, values.offsetVerticalUnit);
    const QSizeF room = lengths.photo - mark;
    const double columns[] = {ox, room.width() / 2, room.width() - ox};
    const double rows[] = {room.height() - oy, room.height() / 2, oy};
    const int anchor = values.anchorPoint.value_or(0);
    const int known = anchor >= 0 && anchor <= 8 ? anchor : 6;
    return {columns[known % 3], rows[known / 3]};
}

std::optional<QRectF> boxAround(const WPresetValues &values, const Lengths &lengths, const QRectF &mark)
{
    const QString &unit = values.backgroundPaddingUnit;
    QRectF box = mark.adjusted(-lengths.pixels(values.backgroundPaddingLeft, unit),
                               -lengths.pixels(values.backgroundPaddingBottom, unit),
                               lengths.pixels(values.backgroundPaddingRight, unit),
                               lengths.pixels(values.backgroundPaddingTop, unit));
    const QRectF photo(QPointF(0, 0), lengths.photo);
    if (values.backgroundFullWidth) {
        box.setLeft(0);
        box.setWidth(photo.width());
    }
    if (!(box.width() > 0 && box.height() > 0) || !box.intersects(photo)) // padding may be negative
        return std::nullopt;
    return box & photo;
}

/// Copies in one direction, the first included.
double countOfCopies(double start, double step, double end)
{
    if (!(step > 0) || !(start + step < end))
        return 1;
    return std::ceil((end - start) / step);
}

/// The sum of the lengths within 0 ... end of all copies in one direction.
double coveredLength(double copies, double start, double step, double length, double end)
{
    const double visible = std::min(copies, std::max(1.0, std::ceil((end + length) / std::max(step, 1e-6))));
    const double onePart = std::min(length, end);
    return copies > 1 ? visible * onePart
                      : std::max(0.0, std::min(start + length, end) - std::max(start, 0.0));
}

void repeat(WatermarkLayout &layout, const WPresetValues &values, const Lengths &lengths)
{
    const QSizeF photo = lengths.photo;
    const QPointF first = layout.rect.topLeft();
    const double sx = layout.rect.width() + lengths.pixels(values.replicateHorizontalDistance,
                                                           values.replicateHorizontalDistanceUnit);
    const double sy = layout.rect.height() +
                      lengths.pixels(values.replicateVerticalDistance, values.replicateVerticalDistanceUnit);
    const double columns = values.replicateHorizontal ? countOfCopies(first.x(), sx, photo.width()) : 1;
    const double rows = values.replicateVertical ? replicateVerticallyWatermark(layout.rect, sy, photo) : 1;
    const double stamped = coveredLength(columns, first.x(), sx, layout.rect.width(), photo.width()) *
                           coveredLength(rows, first.y(), sy, layout.rect.height(), photo.height());
    const double most = kMaxStampedAreaInPhotos * photo.width() * photo.height();
    layout.repeats = {first, {}};
    layout.tooManyRepeats =
        columns * rows > 1 && std::max(stamped, columns * rows * kLeastStampedPixels) > most;
    if (!layout.tooManyRepeats)
        layout.repeats = {first, {sx, sy}, static_cast<qint64>(columns), static_cast<qint64>(rows)};
}

QPointF shadowOffsetOf(const WPresetValues &values, const Lengths &lengths)
{
    if (!values.shadow)
        return {};
    const double angle = static_cast<double>(positiveRadians(values.shadowAngle));
    const double distance = lengths.pixels(values.shadowOffset, values.shadowOffsetUnit);
    return {std::cos(angle) * distance, std::sin(angle) * distance};
}

} // namespace

std::optional<double> baseLength(const QString &unit, QSizeF photo)
{
    if (unit == QLatin1StringView("% of width"))
        return photo.width();
    if (unit == QLatin1StringView("% of height"))
        return photo.height();
    if (unit == QLatin1StringView("% of long edge"))
        return std::max(photo.width(), photo.height());
    if (unit == QLatin1StringView("% of short edge"))
        return std::min(photo.width(), photo.height());
    return std::nullopt;
}

float absoluteValueForSize(float value, const QString &unit, QSizeF imageSize)
{
    const std::optional<double> base = baseLength(unit, imageSize);
    return base ? static_cast<float>(static_cast<double>(value) * *base / 100) : value;
}

double replicateVerticallyWatermark(const QRectF &initialRect, double step, QSizeF imageSize)
{
    return countOfCopies(initialRect.y(), step, imageSize.height());
}

float positiveRadians(FloatNumber degrees)
{
    constexpr float pi = std::numbers::pi_v<float>;
    float radians = degrees.value_or(0.0F) * pi / 180;
    if (radians < 0)
        radians += 2 * pi;
    return radians;
}

WatermarkLayout layoutWatermark(const WPresetValues &values, QSize photo, QSize bitmap,
                                std::optional<QPointF> customOrigin)
{
    const Lengths lengths{photo};
    WatermarkLayout layout;
    const QPointF origin = customOrigin ? *customOrigin : anchoredOrigin(values, lengths, bitmap);
    layout.rect = QRectF(origin, QSizeF(bitmap));
    if (values.background)
        layout.box = boxAround(values, lengths, layout.rect);
    layout.shadowOffset = shadowOffsetOf(values, lengths);
    repeat(layout, values, lengths);
    return layout;
}

} // namespace plexa
