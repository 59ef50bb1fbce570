// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/tiff/tiffblocks.h"

#include "imageio/codecs/tiff/tiffsamples.h"

#include <limits>
#include <new>

namespace plexa
{

namespace
{

constexpr qint64 kTooMuch = std::numeric_limits<qint64>::max();

/// A product that stays at the largest number instead of running over it.
qint64 times(qint64 a, qint64 b)
{
    return b > 0 && a > kTooMuch / b ? kTooMuch : a * b;
}

/// Rows are unpacked from a strip that libtiff reads whole, of at most the file's size; what is not packed it
/// reads piece by piece.
qint64 largestPackedStrip(TIFF *tiff, qint64 fileBytes)
{
    quint16 compression = COMPRESSION_NONE;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &compression);
    if (compression == COMPRESSION_NONE)
        return 0;
    quint64 largest = 0;
    const quint32 strips = TIFFNumberOfStrips(tiff);
    for (quint32 i = 0; i < strips; ++i)
        largest = qMax(largest, quint64(TIFFGetStrileByteCount(tiff, i)));
    return qint64(qMin(largest, quint64(fileBytes)));
}

} // namespace

TiffBlocks::TiffBlocks(TiffFile &file)
    : m_file(file)
    , m_facts(file.facts())
    , m_isByLine(!m_facts.isTiled && !m_facts.isPlanar && m_facts.kind != TiffFacts::Kind::ByLibrary)
{
    TIFF *tiff = m_file.handle();
    m_blocksAcross = (qint64(m_facts.size.width()) + m_facts.blockWidth - 1) / m_facts.blockWidth;
    if (m_facts.kind == TiffFacts::Kind::ByLibrary) {
        m_rowBytes = qint64(m_facts.blockWidth) * 4;
        m_blockBytes = times(m_rowBytes, m_facts.blockHeight);
    } else {
        const quint64 row = m_facts.isTiled ? TIFFTileRowSize64(tiff) : TIFFScanlineSize64(tiff);
        m_rowBytes = qint64(qMin<quint64>(row, kTooMuch));
        m_blockBytes = m_isByLine ? m_rowBytes : times(m_rowBytes, m_facts.blockHeight);
    }
    m_planes = {0};
    if (m_facts.isPlanar && m_facts.kind != TiffFacts::Kind::ByLibrary) {
        for (int i = 1; i < m_facts.channels; ++i)
            m_planes.push_back(i);
        if (m_facts.alphaSample >= 0)
            m_planes.push_back(m_facts.alphaSample);
    }
}

bool TiffBlocks::isConsistent() const
{
    if (m_facts.kind == TiffFacts::Kind::ByLibrary)
        return true;
    const qint64 width = qMin<qint64>(m_facts.blockWidth, m_facts.size.width());
    const qint64 together = m_facts.isPlanar ? 1 : m_facts.samples;
    return m_rowBytes >= (width * together * m_facts.depth + 7) / 8;
}

qint64 TiffBlocks::bytesNeeded() const
{
    // One block more for what libtiff reads of the file before it is unpacked.
    const qint64 held = times(times(m_blockBytes, m_blocksAcross), qint64(m_planes.size()));
    const qint64 packed = m_isByLine ? largestPackedStrip(m_file.handle(), m_file.fileBytes()) : m_blockBytes;
    const qint64 blocks = held > kTooMuch - packed ? kTooMuch : held + packed;
    const qint64 row = times(times(m_facts.size.width(), m_facts.samples), 2);
    return blocks > kTooMuch - row ? kTooMuch : blocks + row;
}

bool TiffBlocks::allocate()
{
    // What the file's data do not fill is never touched, and so takes no memory.
    m_bytes.reset(new (std::nothrow) uchar[size_t(m_blockBytes * m_blocksAcross * qint64(m_planes.size()))]);
    if (!m_bytes)
        return false;
    if (m_facts.kind == TiffFacts::Kind::ByLibrary)
        return true;
    m_samples.resize(size_t(m_facts.size.width()) * size_t(m_facts.samples));
    return true;
}

quint16 *TiffBlocks::readSamples(int row)
{
    if (m_isByLine)
        return readLine(row) ? m_samples.data() : nullptr;
    if (!readBlocks(row))
        return nullptr;
    const int together = m_facts.isPlanar ? 1 : m_facts.samples;
    const uchar *block = m_bytes.get() + (row - m_firstRow) * m_rowBytes;
    for (const int plane : m_planes) {
        for (qint64 i = 0; i < m_blocksAcross; ++i, block += m_blockBytes) {
            const qint64 x = i * m_facts.blockWidth;
            const qint64 width = qMin<qint64>(m_facts.blockWidth, m_facts.size.width() - x);
            unpack(block, width * together, m_samples.data() + x * m_facts.samples + plane,
                   m_facts.isPlanar ? m_facts.samples : 1);
        }
    }
    return m_samples.data();
}

bool TiffBlocks::readLine(int row)
{
    if (TIFFReadScanline(m_file.handle(), m_bytes.get(), quint32(row), 0) != 1 || m_file.isDamaged())
        return false;
    unpack(m_bytes.get(), qint64(m_samples.size()), m_samples.data(), 1);
    return true;
}

bool TiffBlocks::readBlocks(int row)
{
    const qint64 first = row - row % qint64(m_facts.blockHeight);
    if (first == m_firstRow)
        return true;
    TIFF *tiff = m_file.handle();
    uchar *target = m_bytes.get();
    const qint64 rows = m_facts.isTiled ? m_facts.blockHeight
                                        : qMin<qint64>(m_facts.blockHeight, m_facts.size.height() - first);
    const tmsize_t bytes = rows * m_rowBytes;
    for (const int plane : m_planes) {
        for (qint64 i = 0; i < m_blocksAcross; ++i, target += m_blockBytes) {
            const auto sample = quint16(plane);
            tmsize_t got = 0;
            if (m_facts.isTiled) {
                const auto x = quint32(i * m_facts.blockWidth);
                got = TIFFReadEncodedTile(tiff, TIFFComputeTile(tiff, x, quint32(first), 0, sample), target,
                                          bytes);
            } else {
                got =
                    TIFFReadEncodedStrip(tiff, TIFFComputeStrip(tiff, quint32(first), sample), target, bytes);
            }
            if (got != bytes || m_file.isDamaged())
                return false;
        }
    }
    m_firstRow = first;
    return true;
}

bool TiffBlocks::readPixels(int row, QRgb *out)
{
    if (!readRasters(row))
        return false;
    // A raster begins with its lowest row.
    const qint64 rows = m_facts.isTiled
                            ? m_facts.blockHeight
                            : qMin<qint64>(m_facts.blockHeight, m_facts.size.height() - m_firstRow);
    const uchar *block = m_bytes.get() + (rows - 1 - (row - m_firstRow)) * m_rowBytes;
    for (qint64 x = 0; x < m_facts.size.width(); block += m_blockBytes) {
        const qint64 end = qMin<qint64>(x + m_facts.blockWidth, m_facts.size.width());
        const auto *pixel = reinterpret_cast<const quint32 *>(block);
        for (; x < end; ++x, ++pixel)
            out[x] = qRgb(int(TIFFGetR(*pixel)), int(TIFFGetG(*pixel)), int(TIFFGetB(*pixel)));
    }
    return true;
}

bool TiffBlocks::readRasters(int row)
{
    const qint64 first = row - row % qint64(m_facts.blockHeight);
    if (first == m_firstRow)
        return true;
    uchar *target = m_bytes.get();
    for (qint64 i = 0; i < m_blocksAcross; ++i, target += m_blockBytes) {
        auto *raster = reinterpret_cast<quint32 *>(target);
        const int isRead = m_facts.isTiled
                               ? TIFFReadRGBATileExt(m_file.handle(), quint32(i * m_facts.blockWidth),
                                                     quint32(first), raster, 1)
                               : TIFFReadRGBAStripExt(m_file.handle(), quint32(first), raster, 1);
        if (isRead != 1 || m_file.isDamaged())
            return false;
    }
    m_firstRow = first;
    return true;
}

void TiffBlocks::unpack(const uchar *bytes, qint64 count, quint16 *out, int stride) const
{
    unpackTiffSamples(bytes, count, m_facts.depth, m_facts.isFloat, out, stride);
}

} // namespace plexa
