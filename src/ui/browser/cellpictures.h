// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QCache>
#include <QImage>
#include <QSize>

namespace plexa
{

/// The pictures that cells are put together from, each made once for its size and kept while there is room.
/// All sizes are device pixels, all pictures have a device pixel ratio of 1. Main thread.
class CellPictures
{
public:
    explicit CellPictures(qint64 maxBytes = 128 << 20);

    /// A thumbnail at that size, upright. Null when there is none yet.
    /// @param thumbnail  mirrored top to bottom
    QImage scaled(const QImage &thumbnail, QSize size) const;
    /// As above, made when there is none. That costs time: for each pixel of the thumbnail, when it is shown
    /// for the first time; of a size at most twice as large, when it was.
    QImage makeScaled(const QImage &thumbnail, QSize size);

    /// The smallest kept version of a thumbnail (mirrored as it is) with no fewer pixels than that; the
    /// thumbnail itself where there is none. To be scaled in passing.
    QImage nearest(const QImage &thumbnail, QSize size) const;

    /// What lies behind a picture.
    struct Mat {
        QSize picture;
        int border = 0;      ///< of a white frame around the picture; 0: no frame
        double blur = 0;     ///< of the shadow: twice its standard deviation; 0: no shadow
        int shadowShift = 0; ///< downwards
        bool operator==(const Mat &) const = default;
    };
    /// The picture's place is in the middle, matMargin() from each side.
    QImage mat(const Mat &mat);
    static int matMargin(const Mat &mat);

    /// A rounded rectangle behind the thumbnail of a selected cell.
    QImage selection(QSize size, double radius);
    /// What stands for a thumbnail that is not there yet.
    /// @param scale  device pixels in a point
    QImage placeholder(QSize size, double scale);

    qint64 bytes() const { return m_pictures.totalCost(); }

private:
    enum class Kind { Scaled, Level, Mat, Selection, Placeholder };
    struct Key {
        Kind kind;
        qint64 of; ///< the thumbnail's cache key, or what else makes the picture
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
