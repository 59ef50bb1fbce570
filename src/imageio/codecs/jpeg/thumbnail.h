// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QImage>

#include <vector>

namespace plexa
{

/// Creates the thumbnail for EXIF from the strips of a large picture: the mean of a sample of the pixels
/// under each of its own.
class ThumbnailMaker final
{
public:
    static constexpr int kLongerSide = 160;

    /// @param size  of the large picture, both sides at least 1. A picture that is smaller than a thumbnail
    ///              is not enlarged.
    explicit ThumbnailMaker(QSize size);

    /// Adds the next `count` rows.
    /// @param strip  Format_RGB32 or Format_ARGB32_Premultiplied (put on white), as wide as the picture
    void addRows(const QImage &strip, int count);

    /// The thumbnail of the rows added so far, Format_RGB32.
    QImage image() const;

    /// The thumbnail as a JPEG of exactly `bytes` bytes, padded: the best quality that fits, with fewer
    /// pixels if even the worst quality does not fit.
    /// @return empty if not even one pixel fits (some 700 bytes) or memory is short
    QByteArray jpeg(qsizetype bytes) const;

private:
    void addRow(const QRgb *row, bool hasAlpha);

    QSize m_source;
    QSize m_size;
    int m_stepX; ///< from one sampled pixel to the next
    int m_stepY;
    int m_nextRow = 0;
    std::vector<int> m_columns; ///< the thumbnail's column of each sampled pixel
    struct Sum {
        quint32 red = 0, green = 0, blue = 0, count = 0;
    };
    std::vector<Sum> m_sums;
};

/// Encodes a baseline JPEG without application segments, as EXIF requires of a thumbnail, with half chroma.
/// @param image    Format_RGB32, at most 65500 pixels a side
/// @param quality  0..100
/// @return empty on failure
QByteArray encodeBareJpeg(const QImage &image, int quality);

} // namespace plexa
