// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/tiff/tiffblocks.h"

#include <QFloat16>

#include <cstring>
#include <limits>
#include <new>

namespace plexa
{

namespace
{

constexpr qint64 kTooMuch = std::numeric_limits<qint64>::max();

/// A product that saturates at the largest number.
qint64 times(qint64 a, qint64 b)
{
    return b > 0 && a > kTooMuch / b ? kTooMuch : a * b;
}

/// libtiff reads a packed strip whole, at most the file's size, and unpacked ones in pieces.
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

template<class Value>
Value valueAt(const uchar *bytes, qint64 index)
{
    Value value;
    std::memcpy(&value, bytes + index * qint64(sizeof value), sizeof value);
    return value;
}

quint16 wordOf(double value)
{
    return value > 0 ? quint16(qMin(value, 1.0) * 65535 + 0.5) : 0;
}

quint16 wordOf(float value)
{
    return value > 0 ? quint16(qMin(value, 1.0f) * 65535 + 0.5f) : 0;
}

/// The sample of up to 16 bits that begins at that bit.
quint32 bitsAt(const uchar *bytes, qint64 bit, int depth)
{
    const uchar *b = bytes + bit / 8;
    const int end = int(bit % 8) + depth; // in bits from the first byte on
    quint32 value = b[0];
    int read = 8;
    for (; read < end; read += 8)
        value = value << 8 | *++b;
    return value >> (read - end) & ((1u << depth) - 1);
}

template<class Sample>
void unpackEach(qint64 count, quint16 *out, int stride, Sample sample)
{
    for (qint64 i = 0; i < count; ++i, out += stride)
        *out = sample(i);
}

void unpackFloats(const uchar *bytes, qint64 count, int depth, quint16 *out, int stride)
{
    switch (depth) {
    case 16:
        unpackEach(count, out, stride,
                   [bytes](qint64 i) { return wordOf(float(valueAt<qfloat16>(bytes, i))); });
        break;
    case 32:
        unpackEach(count, out, stride, [bytes](qint64 i) { return wordOf(valueAt<float>(bytes, i)); });
        break;
    default:
        unpackEach(count, out, stride, [bytes](qint64 i) { return wordOf(valueAt<double>(bytes, i)); });
    }
}

/// Converts a row of TIFF samples to 16-bit numbers: samples of up to 8 bits keep their value, others are
/// scaled to 0..65535. Floats are clamped to 0..1; not-a-number becomes 0.
/// @param bytes   as libtiff returns them: samples of whole bytes in native order, others packed from the
///                highest bit down
/// @param depth   bits per sample: 1..16 or 32; for floats 16, 32 or 64
/// @param stride  from one number to the next in `out`
void unpackSamples(const uchar *bytes, qint64 count, int depth, bool isFloat, quint16 *out, int stride)
{
    if (isFloat) {
        unpackFloats(bytes, count, depth, out, stride);
        return;
    }
    switch (depth) {
    case 8:
        unpackEach(count, out, stride, [bytes](qint64 i) { return bytes[i]; });
        break;
    case 16:
        unpackEach(count, out, stride, [bytes](qint64 i) { return valueAt<quint16>(bytes, i); });
        break;
    case 32:
        unpackEach(count, out, stride, [bytes](qint64 i) {
            return quint16((valueAt<quint32>(bytes, i) * quint64(65535) + 0x7fffffff) / 0xffffffff);
        });
        break;
    default: {
        const quint32 full = (1u << depth) - 1;
        unpackEach(count, out, stride, [=](qint64 i) {
            const quint32 value = bitsAt(bytes, i * depth, depth);
            return quint16(depth < 8 ? value : (value * 65535 + full / 2) / full);
        });
    }
    }
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
    // One more block for the packed bytes.
    const qint64 held = times(times(m_blockBytes, m_blocksAcross), qint64(m_planes.size()));
    const qint64 packed = m_isByLine ? largestPackedStrip(m_file.handle(), m_file.fileBytes()) : m_blockBytes;
    const qint64 blocks = held > kTooMuch - packed ? kTooMuch : held + packed;
    const qint64 row = times(times(m_facts.size.width(), m_facts.samples), 2);
    return blocks > kTooMuch - row ? kTooMuch : blocks + row;
}

bool TiffBlocks::allocate()
{
    // Pages that the file's data do not fill are never touched, so they need no memory.
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
            unpackSamples(block, width * together, m_facts.depth, m_facts.isFloat,
                          m_samples.data() + x * m_facts.samples + plane,
                          m_facts.isPlanar ? m_facts.samples : 1);
        }
    }
    return m_samples.data();
}

bool TiffBlocks::readLine(int row)
{
    if (TIFFReadScanline(m_file.handle(), m_bytes.get(), quint32(row), 0) != 1 || m_file.isDamaged())
        return false;
    unpackSamples(m_bytes.get(), qint64(m_samples.size()), m_facts.depth, m_facts.isFloat, m_samples.data(),
                  1);
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

} // namespace plexa
