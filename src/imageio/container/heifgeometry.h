// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QList>
#include <QPoint>
#include <QSize>

#include <array>
#include <optional>

namespace plexa
{

/// One step from the coded to the shown picture (ISO 23008-12, 6.5; ISO 14496-12, 12.1.4).
struct HeifTurn {
    enum class Kind { Rotate, Mirror, Crop };

    Kind kind = Kind::Rotate;
    int value = 0; ///< Rotate: quarter turns anti-clockwise; Mirror: 0 top to bottom, 1 left to right
    std::array<qint64, 8> crop = {}; ///< numerators and denominators: width, height, offsets of the center

    /// @param type     "irot", "imir" or "clap"
    /// @param payload  of that box
    /// @return nothing for another box or a damaged one
    static std::optional<HeifTurn> fromBox(const QByteArray &type, QByteArrayView payload);
};

/// Where the pixels of the shown picture lie in the coded one: (x, y) at origin + x * right + y * down, the
/// origins of both at the top left.
struct HeifGeometry {
    QSize size; ///< as shown
    QPoint origin;
    QPoint right = {1, 0};
    QPoint down = {0, 1};

    /// @return nothing if a crop leaves the picture
    static std::optional<HeifGeometry> of(QSize coded, const QList<HeifTurn> &turns);
};

} // namespace plexa
