// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"
#include "imageio/codecs/tiff/tifffile.h"
#include "imageio/color/rowconversion.h"
#include "imageio/container/tiffpictures.h"

#include <QFloat16>
#include <QRgb>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <vector>

namespace plexa
{

namespace
{

using Kind = TiffFacts::Kind;

struct FreedBytes {
    void operator()(uchar *bytes) const { std::free(bytes); }
};

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
    std::unique_ptr<uchar[], FreedBytes> m_bytes;
    std::vector<quint16> m_samples;
};

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
    // Zeros: libtiff may leave the end of a damaged block as it was without an error. Pages that the file's
    // data do not fill are never touched, so they need no memory.
    m_bytes.reset(static_cast<uchar *>(
        std::calloc(size_t(m_blocksAcross * qint64(m_planes.size())), size_t(m_blockBytes))));
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

/// A reader that holds less needs no memory reserved.
constexpr qint64 kStreamedBytes = 1024 * 1024;

/// The colors of a palette. Some programs write bytes instead of words.
std::vector<QRgb> paletteOf(const TiffFacts &facts, TIFF *tiff)
{
    const size_t count = size_t(1) << facts.depth;
    const quint16 *maps[3] = {};
    if (!TIFFGetField(tiff, TIFFTAG_COLORMAP, maps, maps + 1, maps + 2))
        return {};
    bool isNarrow = true;
    for (const quint16 *map : maps)
        isNarrow = isNarrow && std::all_of(map, map + count, [](quint16 value) { return value < 256; });
    std::vector<quint16> words;
    for (size_t i = 0; i < count; ++i) {
        for (const quint16 *map : maps)
            words.push_back(quint16(map[i] * (isNarrow ? 257 : 1)));
    }
    std::vector<QRgb> palette(count);
    RowConversion({.full = 65535}, {facts.iccProfile, {}}, int(count)).convert(words.data(), palette.data());
    return palette;
}

SampleLayout layoutOf(const TiffFacts &facts, TIFF *tiff)
{
    using Colors = SampleLayout::Colors;
    SampleLayout layout;
    layout.samples = facts.samples;
    layout.full = facts.depth > 8 ? 65535 : (1 << facts.depth) - 1;
    layout.alpha = facts.alphaSample;
    layout.isPremultiplied = facts.isPremultiplied;
    layout.isInverted = facts.zeroIsWhite;
    switch (facts.kind) {
    case Kind::Gray:
        layout.colors = Colors::Gray;
        break;
    case Kind::Palette:
        layout.colors = Colors::Palette;
        layout.isPremultiplied = false;
        layout.palette = paletteOf(facts, tiff);
        break;
    case Kind::Cmyk:
        layout.colors = Colors::Cmyk;
        break;
    case Kind::Lab:
        layout.colors = Colors::Lab;
        layout.full = 65535;
        layout.isPremultiplied = false;
        break;
    case Kind::Rgb:
        break;
    case Kind::ByLibrary: // pixels
        layout = {};
    }
    return layout;
}

/// Changes the samples of Lab pixels to PixelLayout::Lab16. TIFF 6.0, section 23: a and b are signed, with 16
/// bits in 1/256; with ICC's photometric interpretation they are offset by 128 instead.
void unifyLab(const TiffFacts &facts, quint16 *samples)
{
    const bool isDeep = facts.depth > 8;
    const quint16 flip = facts.hasSignedAB ? (isDeep ? 0x8000 : 0x80) : 0;
    for (int x = 0; x < facts.size.width(); ++x, samples += facts.samples) {
        for (int i = 0; i < facts.samples; ++i) {
            const bool isAB = i == 1 || i == 2;
            const quint32 value = isAB ? quint32(samples[i] ^ flip) : samples[i];
            if (!isDeep)
                samples[i] = quint16(value * 257);
            else if (isAB || (i == 0 && !facts.hasSignedAB))
                samples[i] = quint16(qMin<quint32>(value * 257 / 256, 65535));
        }
    }
}

/// The memory for reading: blocks, and a row in conversion.
qint64 bytesToRead(const TiffBlocks &blocks, const TiffFacts &facts)
{
    constexpr qint64 kWordsOfAPixel = 4;
    const qint64 row = facts.size.width() * kWordsOfAPixel * qint64(sizeof(quint16));
    const qint64 bytes = blocks.bytesNeeded();
    return bytes > std::numeric_limits<qint64>::max() - row ? bytes : bytes + row;
}

class TiffRowReader final : public SingleRowReader
{
public:
    TiffRowReader(QIODevice &device, const ReadLimits &limits)
        : m_file(device, limits)
        , m_limits(limits)
    {
    }

    Result<void> open()
    {
        if (const auto opened = m_file.open(); !opened)
            return opened;
        const TiffFacts &facts = m_file.facts();
        m_format = {facts.size, facts.alphaSample >= 0};
        m_blocks.emplace(m_file);
        if (!m_blocks->isConsistent())
            return fail(PictureFailures::damaged());
        const qint64 bytes = bytesToRead(*m_blocks, facts);
        if (bytes > m_limits.maxBytes)
            return fail(PictureFailures::tooMuchMemory(facts.size, bytes, m_limits));
        try {
            m_colors.emplace(layoutOf(facts, m_file.handle()), PictureColors{facts.iccProfile, {}},
                             facts.size.width());
            if (!m_blocks->allocate())
                return fail(PictureFailures::outOfMemory());
        } catch (const std::bad_alloc &) {
            return fail(PictureFailures::outOfMemory());
        }
        return {};
    }

private:
    Result<void> decodeRow(int index, QRgb *row) override
    {
        if (m_file.facts().kind == Kind::ByLibrary) {
            if (!m_blocks->readPixels(index, row))
                return fail(m_file.failureReason());
            m_colors->convertPixels(row);
            return {};
        }
        quint16 *samples = m_blocks->readSamples(index);
        if (!samples)
            return fail(m_file.failureReason());
        if (m_file.facts().kind == Kind::Lab)
            unifyLab(m_file.facts(), samples);
        m_colors->convert(samples, row);
        return {};
    }

    TiffFile m_file;
    const ReadLimits m_limits;
    std::optional<TiffBlocks> m_blocks;
    std::optional<RowConversion> m_colors;
};

} // namespace

Result<PictureInfo> readTiffInfo(QIODevice &device, const ReadLimits &limits)
{
    TiffFile file(device, limits);
    if (const auto opened = file.open(); !opened)
        return tl::unexpected(opened.error());
    const TiffFacts &facts = file.facts();
    PictureInfo info;
    info.rows = {facts.size, facts.alphaSample >= 0};
    if (readTiffPictures(device).hasFurtherPages)
        info.unmarkedPictures.append(QStringLiteral("further pages"));
    info.depth = facts.depth;
    info.colorModel = facts.colorModel;
    info.iccProfile = facts.iccProfile;
    info.dpiWidth = facts.dpiWidth;
    info.dpiHeight = facts.dpiHeight;
    const qint64 bytes = bytesToRead(TiffBlocks(file), facts);
    info.decoderBytes = bytes > kStreamedBytes ? bytes : 0;
    return info;
}

Result<std::unique_ptr<RowReader>> openTiffReader(QIODevice &device, const ReadLimits &limits, int)
{
    auto reader = std::make_unique<TiffRowReader>(device, limits);
    if (const auto opened = reader->open(); !opened)
        return tl::unexpected(opened.error());
    return reader;
}

} // namespace plexa
