// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QImage>
#include <QPoint>
#include <QSize>

#include <memory>

namespace plexa
{

/// The picture of a mark that is drawn at many places. For a reduced target the picture is rendered finer
/// than the target's pixels: the mark can then be placed between them, where the marks of the full photo are
/// once it is reduced. Immutable; copies share their pictures. Any thread.
class FineMark final
{
public:
    FineMark() = default;

    /// @param image  Format_ARGB32_Premultiplied; null: nothing is drawn
    /// @param finer  pixels of `image` along the side of a target's pixel: 1 or 2
    FineMark(const QImage &image, int finer);

    bool isNull() const { return !m_pictures; }

    /// @param at  the top left corner of the mark, in pixels of its image; also negative
    /// @return the mark in the target's pixels, for the place pixelAt(at)
    QImage imageAt(QPoint at) const;

    /// The pixel of the target for the top left corner of imageAt().
    QPoint pixelAt(QPoint at) const;

    /// The largest size of an imageAt().
    QSize largestSize() const;

private:
    struct Pictures;

    int m_finer = 1;
    std::shared_ptr<Pictures> m_pictures;
};

} // namespace plexa
