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

/// Tiling beyond these is a mistake (a negative gap nearly as large as the watermark) and would take minutes
/// for each photo.
constexpr double kMaxCopies = 100'000;
constexpr double kMaxStampedAreaInPhotos = 400;

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
double countOfCopies(bool isRepeated, double start, double step, double end)
{
    if (!isRepeated || !(step > 0) || !(start + step < end))
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

void appendColumn(std::vector<QPointF> &copies, const QRectF &first, double step, QSizeF photo,
                  bool isRepeated)
{
    copies.push_back(first.topLeft());
    if (!isRepeated)
        return;
    const std::vector<QPointF> above = replicateVerticallyWatermark(first, step, photo);
    copies.insert(copies.end(), above.begin(), above.end());
}

void appendRepeats(WatermarkLayout &layout, const WPresetValues &values, const Lengths &lengths)
{
    const QSizeF photo = lengths.photo;
    const QPointF first = layout.rect.topLeft();
    const double sx = layout.rect.width() + lengths.pixels(values.replicateHorizontalDistance,
                                                           values.replicateHorizontalDistanceUnit);
    const double sy = layout.rect.height() +
                      lengths.pixels(values.replicateVerticalDistance, values.replicateVerticalDistanceUnit);
    const double columns = countOfCopies(values.replicateHorizontal, first.x(), sx, photo.width());
    const double rows = countOfCopies(values.replicateVertical, first.y(), sy, photo.height());
    const double stamped = coveredLength(columns, first.x(), sx, layout.rect.width(), photo.width()) *
                           coveredLength(rows, first.y(), sy, layout.rect.height(), photo.height());
    layout.tooManyRepeats =
        columns * rows > kMaxCopies ||
        (columns * rows > 1 && stamped > kMaxStampedAreaInPhotos * photo.width() * photo.height());
    if (layout.tooManyRepeats) {
        layout.repeats = {first};
        return;
    }
    layout.repeats.reserve(static_cast<std::size_t>(columns * rows));
    appendColumn(layout.repeats, layout.rect, sy, photo, values.replicateVertical);
    if (!values.replicateHorizontal || !(sx > 0))
        return;
    for (double x = first.x() + sx; x < photo.width(); x += sx)
        appendColumn(layout.repeats, QRectF(QPointF(x, first.y()), layout.rect.size()), sy, photo,
                     values.replicateVertical);
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

std::vector<QPointF> replicateVerticallyWatermark(const QRectF &initialRect, double step, QSizeF imageSize)
{
    std::vector<QPointF> repeats;
    if (!(step > 0))
        return repeats;
    for (double y = initialRect.y() + step; y < imageSize.height(); y += step) {
        if (static_cast<double>(repeats.size()) >= kMaxCopies)
            break;
        repeats.emplace_back(initialRect.x(), y);
    }
    return repeats;
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
    appendRepeats(layout, values, lengths);
    return layout;
}

} // namespace plexa
