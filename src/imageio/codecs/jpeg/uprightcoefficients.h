// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/jpeg/jpegcoefficients.h"

namespace plexa
{

/// The coefficients of a JPEG file as those of its upright picture: blocks change places, and the
/// coefficients in them places and signs. One thread.
class UprightCoefficients
{
public:
    /// @param orientation  1..8 as in raster/orientation.h
    UprightCoefficients(QIODevice &device, const ReadLimits &limits, int orientation);

    [[nodiscard]] bool readHeader() { return m_stored.readHeader(); }

    // Known after readHeader():
    /// Has the picture a form for which all of this works? Blocks can be mirrored only where no MCU is
    /// partly outside of the picture.
    bool isPossible() const;
    QSize size() const;
    JpegSampling sampling() const;
    QSize mcuSize() const;
    QSize mcuCount() const;

    // As JpegCoefficients. The caller may write over rows that it has read.
    [[nodiscard]] bool start(int rowsKept);
    [[nodiscard]] bool readTo(int row);
    [[nodiscard]] bool hasEnd() { return m_stored.hasEnd(); }
    QString notice() const { return m_stored.notice(); }
    JBLOCKARRAY rowsOf(int component, int row);
    QuantizationTable tableOf(int component);

private:
    void turnRow(size_t component, int row);
    void turnBlock(const JCOEF *from, JCOEF *to) const;
    QSize turned(QSize size) const { return m_isTransposed ? size.transposed() : size; }

    const int m_orientation;
    const bool m_isTransposed;
    const bool m_reversesColumns; ///< of the stored picture
    const bool m_reversesRows;
    JpegCoefficients m_stored;
    std::vector<CoefficientPlane> m_planes; ///< empty where the picture is stored upright
    int m_rowsTurned = 0;
};

} // namespace plexa
