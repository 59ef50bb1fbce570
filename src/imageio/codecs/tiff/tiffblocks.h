// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/tiff/tifffile.h"

#include <QRgb>

#include <memory>
#include <vector>

namespace plexa
{

/// The rows of an open TIFF file, put together from strips or tiles. Holds one row where the samples of a
/// pixel lie together in strips, else one row of tiles or of strips. Rows are asked for from the top down.
class TiffBlocks final
{
public:
    /// @param file  open; must outlive the object
    explicit TiffBlocks(TiffFile &file);

    /// Are a row's bytes as many as the samples need? To be asked before all else.
    bool isConsistent() const;

    /// The memory that allocate() will take, and libtiff for the unpacking.
    qint64 bytesNeeded() const;

    /// To be called once, before a row is read. Throws std::bad_alloc, or returns false, without memory.
    [[nodiscard]] bool allocate();

    /// @return the samples of a row, all of a pixel together, as
    ///         unpackTiffSamples() gives them; the caller may change them. Null on failure.
    quint16 *readSamples(int row);

    /// Reads a row of a picture whose colors the library makes. @return false on failure
    bool readPixels(int row, QRgb *out);

private:
    bool readLine(int row);
    bool readBlocks(int row);
    bool readRasters(int row);
    void unpack(const uchar *bytes, qint64 count, quint16 *out, int stride) const;

    TiffFile &m_file;
    const TiffFacts &m_facts;
    const bool m_isByLine;
    qint64 m_blocksAcross = 1;
    qint64 m_rowBytes = 0;     ///< of a line, or of a block's row
    qint64 m_blockBytes = 0;   ///< of a line, or of a block
    std::vector<int> m_planes; ///< those that are of use
    qint64 m_firstRow = -1;    ///< of the blocks in memory
    std::unique_ptr<uchar[]> m_bytes;
    std::vector<quint16> m_samples;
};

} // namespace plexa
