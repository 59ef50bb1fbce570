// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/tiff/tiffblocks.h"
#include "imageio/codecs/tiff/tiffcodec.h"
#include "imageio/codecs/tiff/tifffile.h"
#include "imageio/color/colorprofile.h"
#include "imageio/container/tiffpictures.h"
#include "raster/pixelformat.h"

#include <limits>
#include <new>
#include <optional>
#include <vector>

namespace plexa
{

namespace
{

using Kind = TiffFacts::Kind;

/// A reader that holds no more than that needs no memory reserved.
constexpr qint64 kStreamedBytes = 1024 * 1024;

/// Turns rows of samples into rows of 8-bit sRGB.
class TiffColors
{
public:
    TiffColors(const TiffFacts &facts, TIFF *tiff)
        : m_facts(facts)
        , m_isDeep(facts.depth > 8)
        , m_full(m_isDeep ? 65535 : (1 << facts.depth) - 1)
    {
        if (facts.kind == Kind::ByLibrary)
            m_transform = ColorTransform::toSrgb(facts.iccProfile, PixelLayout::Rgb32);
        else if (!m_isDeep && facts.kind == Kind::Palette)
            makePalette(tiff);
        else if (!m_isDeep && facts.kind == Kind::Gray)
            makeGrays();
        else
            chooseTransform();
        if (m_table.empty())
            m_words.resize(size_t(facts.size.width()) * 4);
    }

    /// @param samples  a row, changed on the way
    void convert(quint16 *samples, QRgb *out)
    {
        const int width = m_facts.size.width();
        if (m_facts.isPremultiplied && m_facts.kind != Kind::Palette && m_facts.kind != Kind::Lab)
            divideByAlpha(samples);
        if (!m_table.empty()) {
            for (int x = 0; x < width; ++x)
                out[x] = m_table[samples[x * m_facts.samples]];
        } else if (m_facts.kind == Kind::Cmyk) {
            convertInks(samples, out);
        } else if (m_isDeep || m_facts.kind == Kind::Lab) {
            convertWords(samples, out);
        } else {
            for (int x = 0; x < width; ++x, samples += m_facts.samples)
                out[x] = qRgb(scaled(samples[0]), scaled(samples[1]), scaled(samples[2]));
            samples -= qsizetype(width) * m_facts.samples;
            if (m_transform)
                m_transform->convert(out, out, width);
        }
        if (m_facts.alphaSample >= 0)
            applyAlpha(samples, out);
    }

    /// Converts colours that the library has made.
    void convertPixels(QRgb *row) const
    {
        if (m_transform)
            m_transform->convert(row, row, m_facts.size.width());
    }

private:
    int scaled(int sample) const { return (sample * 255 + m_full / 2) / m_full; }

    void makePalette(TIFF *tiff)
    {
        const size_t count = size_t(1) << m_facts.depth;
        const quint16 *red = nullptr;
        const quint16 *green = nullptr;
        const quint16 *blue = nullptr;
        m_table.assign(count, 0xff000000);
        if (!TIFFGetField(tiff, TIFFTAG_COLORMAP, &red, &green, &blue))
            return;
        // Some programs write bytes where words are meant.
        bool isNarrow = true;
        for (size_t i = 0; i < count; ++i)
            isNarrow = isNarrow && red[i] < 256 && green[i] < 256 && blue[i] < 256;
        const int factor = isNarrow ? 257 : 1;
        std::vector<quint16> words(count * 4, 0xffff);
        for (size_t i = 0; i < count; ++i) {
            words[4 * i] = quint16(red[i] * factor);
            words[4 * i + 1] = quint16(green[i] * factor);
            words[4 * i + 2] = quint16(blue[i] * factor);
            m_table[i] =
                qRgb(byteOfWord(words[4 * i]), byteOfWord(words[4 * i + 1]), byteOfWord(words[4 * i + 2]));
        }
        if (const auto transform = ColorTransform::toSrgb(m_facts.iccProfile, PixelLayout::Rgba64))
            transform->convert(words.data(), m_table.data(), qsizetype(count));
    }

    void makeGrays()
    {
        std::vector<uchar> grays(size_t(1) << m_facts.depth);
        for (size_t i = 0; i < grays.size(); ++i) {
            const auto gray = uchar(scaled(m_facts.zeroIsWhite ? m_full - int(i) : int(i)));
            grays[i] = gray;
            m_table.push_back(qRgb(gray, gray, gray));
        }
        const auto count = qsizetype(grays.size());
        if (const auto gray = ColorTransform::toSrgb(m_facts.iccProfile, PixelLayout::Gray8))
            gray->convert(grays.data(), m_table.data(), count);
        else if (const auto rgb = ColorTransform::toSrgb(m_facts.iccProfile, PixelLayout::Rgb32))
            rgb->convert(m_table.data(), m_table.data(), count);
    }

    void chooseTransform()
    {
        if (m_facts.kind == Kind::Lab) {
            m_transform = ColorTransform::labToSrgb();
            return;
        }
        PixelLayout layout = m_isDeep ? PixelLayout::Rgba64 : PixelLayout::Rgb32;
        if (m_facts.kind == Kind::Cmyk)
            layout = m_isDeep ? PixelLayout::Cmyk16 : PixelLayout::Cmyk8;
        m_isGrayProfile =
            m_facts.kind == Kind::Gray && profileColorModel(m_facts.iccProfile) == QLatin1String("Gray");
        if (m_isGrayProfile)
            layout = PixelLayout::GrayAlpha16;
        m_transform = ColorTransform::toSrgb(m_facts.iccProfile, layout);
    }

    void divideByAlpha(quint16 *samples) const
    {
        const int width = m_facts.size.width();
        for (int x = 0; x < width; ++x, samples += m_facts.samples) {
            const quint32 alpha = samples[m_facts.alphaSample];
            for (int i = 0; i < m_facts.channels && alpha > 0; ++i) {
                const quint32 straight = (samples[i] * quint32(m_full) + alpha / 2) / alpha;
                samples[i] = quint16(qMin(straight, quint32(m_full)));
            }
        }
    }

    void convertInks(const quint16 *samples, QRgb *out)
    {
        const int width = m_facts.size.width();
        if (m_transform) {
            auto *bytes = reinterpret_cast<uchar *>(m_words.data());
            for (int x = 0; x < width; ++x, samples += m_facts.samples) {
                for (int i = 0; i < 4; ++i) {
                    if (m_isDeep)
                        m_words[size_t(4 * x + i)] = samples[i];
                    else
                        bytes[4 * x + i] = uchar(scaled(samples[i]));
                }
            }
            m_transform->convert(m_words.data(), out, width);
            return;
        }
        // No profile: light that is left by each ink, times that left by black.
        const double full = m_full;
        for (int x = 0; x < width; ++x, samples += m_facts.samples) {
            const double black = (full - samples[3]) / full;
            const auto mix = [full, black](int ink) { return qRound((full - ink) / full * black * 255); };
            out[x] = qRgb(mix(samples[0]), mix(samples[1]), mix(samples[2]));
        }
    }

    /// Words to bytes: grey, RGB and Lab.
    void convertWords(const quint16 *samples, QRgb *out)
    {
        const int width = m_facts.size.width();
        quint16 *word = m_words.data();
        for (int x = 0; x < width; ++x, samples += m_facts.samples) {
            if (m_facts.kind == Kind::Lab) {
                word = putLab(samples, word);
                continue;
            }
            const quint16 first = m_facts.zeroIsWhite ? quint16(65535 - samples[0]) : samples[0];
            const bool isGray = m_facts.kind == Kind::Gray;
            *word++ = first;
            if (!m_isGrayProfile) {
                *word++ = isGray ? first : samples[1];
                *word++ = isGray ? first : samples[2];
            }
            *word++ = 0xffff;
        }
        if (m_transform) {
            m_transform->convert(m_words.data(), out, width);
            return;
        }
        const int step = m_isGrayProfile ? 2 : 4;
        word = m_words.data();
        for (int x = 0; x < width; ++x, word += step) {
            out[x] = m_isGrayProfile ? qRgb(byteOfWord(word[0]), byteOfWord(word[0]), byteOfWord(word[0]))
                                     : qRgb(byteOfWord(word[0]), byteOfWord(word[1]), byteOfWord(word[2]));
        }
    }

    /// One pixel as PixelLayout::Lab16 has it. TIFF 6.0, section 23: a and b are signed, of 16 bits
    /// 256 steps a unit; where the photometric is ICC's they are offset by 128 instead.
    quint16 *putLab(const quint16 *samples, quint16 *word) const
    {
        const quint16 flip = m_facts.hasSignedAB ? (m_isDeep ? 0x8000 : 0x80) : 0;
        const bool isIccDeep = m_isDeep && !m_facts.hasSignedAB;
        for (int i = 0; i < 3; ++i) {
            const quint32 value = i == 0 ? samples[0] : quint32(samples[i] ^ flip);
            if (!m_isDeep)
                *word++ = quint16(value * 257);
            else if (i == 0 && !isIccDeep)
                *word++ = quint16(value);
            else
                *word++ = quint16(qMin<quint32>(value * 257 / 256, 65535));
        }
        return word;
    }

    void applyAlpha(const quint16 *samples, QRgb *out) const
    {
        samples += m_facts.alphaSample;
        for (int x = 0; x < m_facts.size.width(); ++x, samples += m_facts.samples) {
            const int alpha = m_isDeep ? byteOfWord(*samples) : scaled(*samples);
            out[x] = qPremultiply((out[x] & 0x00ffffff) | QRgb(alpha) << 24);
        }
    }

    const TiffFacts &m_facts;
    const bool m_isDeep;
    const int m_full; ///< the value of a sample that is full
    bool m_isGrayProfile = false;
    std::unique_ptr<ColorTransform> m_transform;
    std::vector<QRgb> m_table;    ///< the colours of all values, of small samples
    std::vector<quint16> m_words; ///< a row as the transform takes it
};

/// What reading takes: blocks, and a row on its way through the colours.
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
            m_colors.emplace(facts, m_file.handle());
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
        m_colors->convert(samples, row);
        return {};
    }

    TiffFile m_file;
    const ReadLimits m_limits;
    std::optional<TiffBlocks> m_blocks;
    std::optional<TiffColors> m_colors;
};

} // namespace

Result<PictureInfo> TiffCodec::readInfo(QIODevice &device, const ReadLimits &limits) const
{
    TiffFile file(device, limits);
    if (const auto opened = file.open(); !opened)
        return tl::unexpected(opened.error());
    const TiffFacts &facts = file.facts();
    PictureInfo info;
    info.rows = {facts.size, facts.alphaSample >= 0};
    const TiffPictures pictures = readTiffPictures(device);
    info.imageCount = qMax(1, pictures.count);
    if (pictures.hasFurtherPages)
        info.unmarkedPictures.append(QStringLiteral("further pages"));
    info.depth = facts.depth;
    info.colorModel = facts.colorModel;
    info.iccProfile = facts.iccProfile;
    info.dpiWidth = facts.dpiWidth;
    info.dpiHeight = facts.dpiHeight;
    // Planes and tiles are gathered; a few rows of them cost no more than the strip they go into.
    const qint64 bytes = bytesToRead(TiffBlocks(file), facts);
    info.decoderBytes = bytes > kStreamedBytes ? bytes : 0;
    return info;
}

Result<std::unique_ptr<RowReader>> TiffCodec::openReader(QIODevice &device, const ReadLimits &limits,
                                                         int) const
{
    auto reader = std::make_unique<TiffRowReader>(device, limits);
    if (const auto opened = reader->open(); !opened)
        return tl::unexpected(opened.error());
    return reader;
}

} // namespace plexa
