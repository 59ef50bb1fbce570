// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/heifgeometry.h"

#include <QtEndian>

namespace plexa
{

namespace
{

constexpr qint64 kMaxSide = 1'000'000;

/// A quotient rounded down; the divisor is positive.
qint64 floorOf(qint64 numerator, qint64 denominator)
{
    const qint64 quotient = numerator / denominator;
    return numerator % denominator < 0 ? quotient - 1 : quotient;
}

/// Begin and length of a crop along one axis: offset from the center and length are fractions.
std::pair<int, int> cropAlong(int side, qint64 length, qint64 lengthUnit, qint64 offset, qint64 offsetUnit)
{
    const qint64 rounded = floorOf(2 * length + lengthUnit, 2 * lengthUnit);
    // offset + (side - 1) / 2 - (length - 1) / 2, over one denominator of at most 2 * kMaxSide^2
    const qint64 begin =
        floorOf(2 * offset * lengthUnit + qint64(side) * offsetUnit * lengthUnit - length * offsetUnit,
                2 * offsetUnit * lengthUnit);
    return {int(qBound(qint64(-1), begin, kMaxSide)), int(qBound(qint64(0), rounded, kMaxSide))};
}

bool applyCrop(HeifGeometry &geometry, const HeifTurn &turn)
{
    const auto &c = turn.crop;
    const auto [left, width] = cropAlong(geometry.size.width(), c[0], c[1], c[4], c[5]);
    const auto [top, height] = cropAlong(geometry.size.height(), c[2], c[3], c[6], c[7]);
    if (left < 0 || top < 0 || width < 1 || height < 1 || left + width > geometry.size.width() ||
        top + height > geometry.size.height())
        return false;
    geometry.origin += left * geometry.right + top * geometry.down;
    geometry.size = QSize(width, height);
    return true;
}

void applyQuarterTurn(HeifGeometry &geometry)
{
    geometry.origin += (geometry.size.width() - 1) * geometry.right;
    const QPoint right = geometry.right;
    geometry.right = geometry.down;
    geometry.down = -right;
    geometry.size.transpose();
}

void applyMirror(HeifGeometry &geometry, bool isLeftToRight)
{
    if (isLeftToRight) {
        geometry.origin += (geometry.size.width() - 1) * geometry.right;
        geometry.right = -geometry.right;
    } else {
        geometry.origin += (geometry.size.height() - 1) * geometry.down;
        geometry.down = -geometry.down;
    }
}

} // namespace

std::optional<HeifTurn> HeifTurn::fromBox(const QByteArray &type, QByteArrayView payload)
{
    HeifTurn turn;
    if (type == "irot" || type == "imir") {
        if (payload.isEmpty())
            return std::nullopt;
        const bool isRotation = type == "irot";
        turn.kind = isRotation ? Kind::Rotate : Kind::Mirror;
        turn.value = payload[0] & (isRotation ? 3 : 1);
        return turn;
    }
    if (type != "clap" || payload.size() < 32)
        return std::nullopt;
    turn.kind = Kind::Crop;
    for (size_t i = 0; i < turn.crop.size(); ++i) {
        turn.crop[i] = qFromBigEndian<qint32>(payload.data() + 4 * i);
        const bool isDenominator = i % 2 == 1;
        if (qAbs(turn.crop[i]) > kMaxSide || (isDenominator && turn.crop[i] < 1))
            return std::nullopt;
    }
    return turn;
}

std::optional<HeifGeometry> HeifGeometry::of(QSize coded, const QList<HeifTurn> &turns)
{
    HeifGeometry geometry;
    geometry.size = coded;
    for (const HeifTurn &turn : turns) {
        if (turn.kind == HeifTurn::Kind::Rotate) {
            for (int i = 0; i < turn.value; ++i)
                applyQuarterTurn(geometry);
        } else if (turn.kind == HeifTurn::Kind::Mirror) {
            applyMirror(geometry, turn.value == 1);
        } else if (!applyCrop(geometry, turn)) {
            return std::nullopt;
        }
    }
    return geometry;
}

} // namespace plexa
