// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QCache>
#include <QColor>
#include <QImage>
#include <QSize>

namespace plexa
{

/// The pictures that cells consist of, each created once for its size and kept in a cache bounded by bytes.
/// All sizes are device pixels; all pictures have a device pixel ratio of 1. Main thread.
class CellPictures
{
public:
    explicit CellPictures(qint64 maxBytes = 128 << 20);

    /// A thumbnail at this size, upright. Null if it has not been created yet.
    /// @param thumbnail  mirrored top to bottom
    QImage scaled(const QImage &thumbnail, QSize size) const;
    /// As above, created if needed. The cost is proportional to the pixels of the thumbnail the first time,
    /// afterwards to those of a size at most twice as large.
    QImage makeScaled(const QImage &thumbnail, QSize size);

    /// The smallest kept version of a thumbnail (mirrored like it) that is at least this large, else the
    /// thumbnail itself. For rough drawing.
    QImage nearest(const QImage &thumbnail, QSize size) const;

    /// The background of a picture: a white frame and a shadow.
    /// @param border  width of the frame around the picture
    /// @param scale   device pixels in a point
    QImage mat(QSize picture, int border, double scale);
    /// The distance between the edges of the picture and of its mat.
    static int matMargin(int border, double scale);

    /// A rounded rectangle around a cell.
    struct Outline {
        double radius = 0;
        QColor color;
        double width = 0;         ///< of the line, inside of the rectangle
        bool isSelection = false; ///< filled with translucent white
    };
    QImage outline(QSize size, const Outline &outline);
    /// Replaces a thumbnail that is not available yet.
    /// @param scale  device pixels in a point
    QImage placeholder(QSize size, double scale);

    qint64 bytes() const { return m_pictures.totalCost(); }

private:
    enum class Kind { Scaled, Level, Mat, Outline, Placeholder };
    struct Key {
        Kind kind;
        qint64 of; ///< the thumbnail's cache key, or the picture's other parameters
        QSize size;
        bool operator==(const Key &) const = default;
    };
    friend size_t qHash(const Key &key, size_t seed)
    {
        return qHashMulti(seed, static_cast<int>(key.kind), key.of, key.size.width(), key.size.height());
    }

    QImage find(const Key &key) const;
    QImage keep(const Key &key, const QImage &image);
    QImage level(const QImage &thumbnail, int halvings);

    mutable QCache<Key, QImage> m_pictures;
};

} // namespace plexa
