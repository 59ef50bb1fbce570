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

class Lengths
{
public:
    explicit Lengths(QSize photo)
        : m_photo(photo)
    {
    }

    double pixels(WholeNumber value, const QString &unit) const
    {
        return static_cast<double>(
            absoluteValueForSize(static_cast<float>(value.value_or(0)), unit, m_photo));
    }

private:
    QSizeF m_photo;
};

QPointF anchoredOrigin(const WPresetValues &values, const Lengths &lengths, QSizeF photo, QSizeF mark)
{
    const double ox = lengths.pixels(values.offsetHorizontal, values.offsetHorizontalUnit);
    const double oy = lengths.pixels(values.offsetVertical, values.offsetVerticalUnit);
    const double right = photo.width() - mark.width() - ox;
    const double top = photo.height() - mark.height() - oy;
    const double center = (photo.width() - mark.width()) / 2;
    const double middle = (photo.height() - mark.height()) / 2;
    switch (values.anchorPoint.value_or(0)) {
    case 0:
        return {ox, top};
    case 1:
        return {center, top};
    case 2:
        return {right, top};
    case 3:
        return {ox, middle};
    case 4:
        return {center, middle};
    case 5:
        return {right, middle};
    case 7:
        return {center, oy};
    case 8:
        return {right, oy};
    default:
        return {ox, oy};
    }
}

std::optional<QRectF> boxAround(const WPresetValues &values, const Lengths &lengths, QSizeF photo,
                                const QRectF &mark)
{
    const QString &unit = values.backgroundPaddingUnit;
    const double top = lengths.pixels(values.backgroundPaddingTop, unit);
    const double bottom = lengths.pixels(values.backgroundPaddingBottom, unit);
    const double left = lengths.pixels(values.backgroundPaddingLeft, unit);
    const double right = lengths.pixels(values.backgroundPaddingRight, unit);

    double by = mark.y() - bottom;
    double bh = mark.height() + top + bottom;
    if (by < 0) {
        bh += by;
        by = 0;
    }
    if (by + bh > photo.height())
        bh = photo.height() - by;

    double bx = 0;
    double bw = photo.width();
    if (!values.backgroundFullWidth) {
        bx = mark.x() - left;
        bw = mark.width() + left + right;
        if (bx < 0) {
            bw += bx;
            bx = 0;
        }
        if (bx + bw > photo.width())
            bw = photo.width() - bx;
    }
    if (!(bw > 0 && bh > 0))
        return std::nullopt;
    return QRectF(bx, by, bw, bh);
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

void appendRepeats(WatermarkLayout &layout, const WPresetValues &values, const Lengths &lengths, QSizeF photo)
{
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

float absoluteValueForSize(float value, const QString &unit, QSizeF imageSize)
{
    const double number = static_cast<double>(value);
    if (unit == QLatin1StringView("% of width"))
        return static_cast<float>(number * imageSize.width() / 100);
    if (unit == QLatin1StringView("% of height"))
        return static_cast<float>(number * imageSize.height() / 100);
    if (unit == QLatin1StringView("% of long edge"))
        return static_cast<float>(number * std::max(imageSize.width(), imageSize.height()) / 100);
    if (unit == QLatin1StringView("% of short edge"))
        return static_cast<float>(number * std::min(imageSize.width(), imageSize.height()) / 100);
    return value;
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
    const Lengths lengths(photo);
    WatermarkLayout layout;
    const QPointF origin = customOrigin ? *customOrigin : anchoredOrigin(values, lengths, photo, bitmap);
    layout.rect = QRectF(origin, QSizeF(bitmap));
    if (values.background)
        layout.box = boxAround(values, lengths, photo, layout.rect);
    layout.shadowOffset = shadowOffsetOf(values, lengths);
    appendRepeats(layout, values, lengths, photo);
    return layout;
}

} // namespace plexa
