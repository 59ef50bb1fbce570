// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/tiff/tifffile.h"

#include <QRgb>

#include <memory>
#include <vector>

namespace plexa
{

/// The rows of an open TIFF file from strips or tiles. Holds one row if the samples of a pixel are
/// interleaved in strips, else one row of tiles or of strips. Rows are read from the top down.
class TiffBlocks final
{
public:
    /// @param file  open; must outlive the object
    explicit TiffBlocks(TiffFile &file);

    /// Does a row have enough bytes for the samples? To be checked first.
    bool isConsistent() const;

    /// The memory for allocate() and for libtiff's unpacking.
    qint64 bytesNeeded() const;

    /// To be called once, before a row is read. Throws std::bad_alloc, or returns false, without memory.
    [[nodiscard]] bool allocate();

    /// @return the interleaved samples of a row: up to 8 bits as stored, others scaled to 0..65535; the
    /// caller
    ///         may change them. Null on failure.
    quint16 *readSamples(int row);

    /// Reads a row of a picture whose colors libtiff converts. @return false on failure
    bool readPixels(int row, QRgb *out);

private:
    bool readLine(int row);
    bool readBlocks(int row);
    bool readRasters(int row);

    TiffFile &m_file;
    const TiffFacts &m_facts;
    const bool m_isByLine;
    qint64 m_blocksAcross = 1;
    qint64 m_rowBytes = 0;     ///< of a line, or of a block's row
    qint64 m_blockBytes = 0;   ///< of a line, or of a block
    std::vector<int> m_planes; ///< the planes to read
    qint64 m_firstRow = -1;    ///< of the blocks in memory
    std::unique_ptr<uchar[]> m_bytes;
    std::vector<quint16> m_samples;
};

} // namespace plexa
