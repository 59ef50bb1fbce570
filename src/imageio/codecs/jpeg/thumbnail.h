// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QImage>

#include <vector>

namespace plexa
{

/// Makes the small picture for EXIF out of a large one that passes by in strips: the mean of a sample of the
/// pixels under each of its own. It costs a few per cent of what an encoder costs.
class ThumbnailMaker final
{
public:
    static constexpr int kLongerSide = 160;

    /// @param size  of the large picture, both sides at least 1. A picture that is smaller than a thumbnail
    ///              is not enlarged.
    explicit ThumbnailMaker(QSize size);

    /// Takes the next `count` rows.
    /// @param strip  Format_RGB32 or Format_ARGB32_Premultiplied (taken as lying on white), as wide as the
    ///               picture
    void addRows(const QImage &strip, int count);

    /// The thumbnail of the rows added so far, Format_RGB32.
    QImage image() const;

    /// The thumbnail as a JPEG of exactly `bytes` bytes: as good as fits, filled up behind the picture;
    /// smaller where even the worst quality does not fit.
    /// @return empty when not even one pixel fits (some 700 bytes) or memory is short
    QByteArray jpeg(qsizetype bytes) const;

private:
    void addRow(const QRgb *row, bool hasAlpha);

    QSize m_source;
    QSize m_size;
    int m_stepX; ///< every how many pixels one is looked at
    int m_stepY;
    int m_nextRow = 0;
    std::vector<int> m_columns; ///< the thumbnail's column of each pixel looked at
    struct Sum {
        quint32 red = 0, green = 0, blue = 0, count = 0;
    };
    std::vector<Sum> m_sums;
};

} // namespace plexa
