// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"
#include "imageio/codecs/tiff/tiffblocks.h"
#include "imageio/codecs/tiff/tifffile.h"
#include "imageio/color/rowconversion.h"
#include "imageio/container/tiffpictures.h"

#include <algorithm>
#include <limits>
#include <new>
#include <optional>
#include <vector>

namespace plexa
{

namespace
{

using Kind = TiffFacts::Kind;

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
