// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/jpeg/jpegencoder.h"
#include "imageio/codecs/jpeg/jpeginput.h"

#include <vector>

namespace plexa
{

/// The quantized coefficients of one component: the last rows of blocks that were begun.
class CoefficientPlane
{
public:
    /// @param across    blocks in a row
    /// @param rowsKept  a multiple of the rows that rows() is asked for
    CoefficientPlane(int across, int rowsKept);

    /// Pointers to the rows of blocks from `first` on.
    JBLOCKARRAY rows(int first) { return m_rows.data() + first % int(m_rows.size()); }

    /// Sets rows to zero that take the place of earlier ones.
    void begin(int first, int count);

    int across() const { return m_across; }

private:
    int m_across;
    std::vector<JCOEF> m_coefficients;
    std::vector<JBLOCKROW> m_rows;
};

/// Reads the coefficients of a JPEG file a row of MCUs at a time, without decoding pixels. Damage counts as
/// everywhere else (JpegInput). A picture of one scan takes the memory of the rows that are kept, another one
/// is kept whole. One thread.
class JpegCoefficients
{
public:
    /// @param device  open for reading, at the start of the file; must outlive this object
    JpegCoefficients(QIODevice &device, const ReadLimits &limits);

    [[nodiscard]] bool readHeader();

    // Known after readHeader():
    QSize size() const;
    /// Empty unless the picture is gray or YCbCr and libjpeg can write its sampling.
    const JpegSampling &sampling() const { return m_sampling; }
    QSize mcuSize() const { return m_mcuSize; } ///< pixels
    QSize mcuCount() const;
    bool hasSeveralScans();

    /// Begins to read.
    /// @param rowsKept  rows of MCUs that rowsOf() is asked for at the same time
    [[nodiscard]] bool start(int rowsKept);

    /// Reads the rows of MCUs up to this one.
    [[nodiscard]] bool readTo(int row);

    /// To be called after the last row: is the file complete?
    [[nodiscard]] bool hasEnd();

    QString notice() const { return m_input.notice(); }

    /// The rows of blocks of a component in a row of MCUs; of the last `rowsKept` rows that were read.
    JBLOCKARRAY rowsOf(int component, int row);

    /// Frees the coefficients of a component, if all have been read.
    void release(size_t component);

    /// Known after start().
    QuantizationTable tableOf(int component);

private:
    static jvirt_barray_ptr requestRows(j_common_ptr info, int pool, boolean isZero, JDIMENSION across,
                                        JDIMENSION down, JDIMENSION access);
    static JBLOCKARRAY accessRows(j_common_ptr info, jvirt_barray_ptr array, JDIMENSION first,
                                  JDIMENSION count, boolean isWritten);
    bool callStart();
    bool consume(bool &isAtEnd);

    JpegInput m_input;
    jpeg_decompress_struct &m_info;
    JpegSampling m_sampling;
    QSize m_mcuSize;
    std::vector<CoefficientPlane> m_planes;
    size_t m_requested = 0;
    bool m_isRing = false;
};

} // namespace plexa
