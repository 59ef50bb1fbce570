// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/color/rowconversion.h"

#include "imageio/color/colorprofile.h"
#include "raster/pixelformat.h"

#include <algorithm>
#include <limits>

namespace plexa
{

namespace
{

using Colors = SampleLayout::Colors;

int channelsOf(Colors colors)
{
    return colors == Colors::Cmyk ? 4 : colors == Colors::Rgb || colors == Colors::Lab ? 3 : 1;
}

std::shared_ptr<const ColorTransform> transformOf(const PictureColors &colors, PixelLayout layout)
{
    if (!colors.iccProfile.isEmpty())
        return ColorTransform::toSrgb(colors.iccProfile, layout);
    return colors.calibration ? ColorTransform::toSrgb(*colors.calibration, layout) : nullptr;
}

} // namespace

RowConversion::RowConversion(SampleLayout layout, const PictureColors &colors, int width)
    : m_layout(std::move(layout))
    , m_width(width)
    , m_wordsPerPixel(channelsOf(m_layout.colors))
{
    if (m_layout.colors == Colors::Palette || (m_layout.colors == Colors::Gray && !isDeep())) {
        makeTable(colors);
        return;
    }
    PixelLayout pixels = isDeep() ? PixelLayout::Rgb48 : PixelLayout::Rgb32;
    if (m_layout.colors == Colors::Cmyk)
        pixels = isDeep() ? PixelLayout::Cmyk16 : PixelLayout::Cmyk8;
    if (m_layout.colors == Colors::Lab)
        m_transform = ColorTransform::labToSrgb();
    else if (m_layout.colors == Colors::Gray && profileColorModel(colors.iccProfile) == u"Gray")
        m_transform = transformOf(colors, PixelLayout::Gray16);
    else
        m_transform = transformOf(colors, pixels);
    if (m_layout.colors == Colors::Gray && profileColorModel(colors.iccProfile) != u"Gray")
        m_wordsPerPixel = 3;
    if (m_transform && (isDeep() || m_layout.colors == Colors::Cmyk))
        m_words.resize(size_t(width) * size_t(m_wordsPerPixel));
}

void RowConversion::makeTable(const PictureColors &colors)
{
    if (m_layout.colors == Colors::Palette) {
        m_table = m_layout.palette;
        m_table.resize(256, 0xff000000);
        return;
    }
    std::vector<uchar> grays(size_t(m_layout.full) + 1);
    for (int i = 0; i <= m_layout.full; ++i) {
        const int gray = byteOf(m_layout.isInverted ? m_layout.full - i : i);
        grays[size_t(i)] = uchar(gray);
        m_table.push_back(qRgb(gray, gray, gray));
    }
    if (const auto gray = transformOf(colors, PixelLayout::Gray8)) {
        m_hasTableTransform = true;
        gray->convert(grays.data(), m_table.data(), qsizetype(grays.size()));
    } else if (const auto rgb = transformOf(colors, PixelLayout::Rgb32)) {
        m_hasTableTransform = true;
        rgb->convert(m_table.data(), m_table.data(), qsizetype(grays.size()));
    }
    m_table.resize(256, m_table.back());
}

void RowConversion::convertPixels(QRgb *row) const
{
    if (m_transform)
        m_transform->convert(row, row, m_width);
    if (m_layout.alpha >= 0)
        premultiply(row);
}

void RowConversion::premultiply(QRgb *row) const
{
    for (int x = 0; x < m_width; ++x)
        row[x] = qPremultiply(row[x]);
}

int RowConversion::byteOf(int sample) const
{
    return m_layout.full == 255     ? sample
           : m_layout.full == 65535 ? byteOfWord(sample)
                                    : (2 * sample * 255 + m_layout.full) / (2 * m_layout.full);
}

/// A color sample, clamped, upright and without its alpha.
template<class Sample>
int RowConversion::colorSample(const Sample *pixel, int index) const
{
    const int full = m_layout.full;
    int value = qMin<int>(pixel[index], full);
    if (m_layout.isPremultiplied && m_layout.alpha >= 0) {
        const int alpha = qMin<int>(pixel[m_layout.alpha], full);
        value = alpha == 0 ? value : int(qMin((qint64(value) * full + alpha / 2) / alpha, qint64(full)));
    }
    return m_layout.isInverted ? full - value : value;
}

template<class Sample>
void RowConversion::convertSamples(const Sample *samples, QRgb *out)
{
    if (!m_table.empty() && !m_layout.isPremultiplied) {
        for (int x = 0; x < m_width; ++x)
            out[x] = m_table[samples[qsizetype(x) * m_layout.samples] & 0xff];
    } else if (!hasTransform() && m_layout.isPremultiplied && !m_layout.isInverted &&
               m_layout.colors != Colors::Cmyk) {
        convertPremultiplied(samples, out);
        return;
    } else if (!m_table.empty()) {
        for (int x = 0; x < m_width; ++x) {
            const Sample *pixel = samples + qsizetype(x) * m_layout.samples;
            const int gray = colorSample(pixel, 0); // upright, and so is not the table
            out[x] = m_table[size_t(m_layout.isInverted ? m_layout.full - gray : gray)];
        }
    } else if (m_transform && isDeep()) {
        gather(samples, m_words.data());
        m_transform->convert(m_words.data(), out, m_width);
    } else if (m_transform && m_layout.colors == Colors::Cmyk) {
        gather(samples, reinterpret_cast<uchar *>(m_words.data()));
        m_transform->convert(m_words.data(), out, m_width);
    } else if (m_layout.colors == Colors::Cmyk) {
        convertInks(samples, out);
    } else {
        convertRgb(samples, out);
        if (m_transform)
            m_transform->convert(out, out, m_width);
    }
    if (m_layout.alpha >= 0)
        applyAlpha(samples, out);
}

/// Collects the color samples of a row, scaled to the full range of `Word`.
template<class Word, class Sample>
void RowConversion::gather(const Sample *samples, Word *out) const
{
    constexpr qint64 kFull = std::numeric_limits<Word>::max();
    const qint64 full = m_layout.full;
    for (int x = 0; x < m_width; ++x, samples += m_layout.samples) {
        for (int i = 0; i < m_wordsPerPixel; ++i) {
            const int value = colorSample(samples, m_layout.colors == Colors::Gray ? 0 : i);
            *out++ = Word(full == kFull ? value : (2 * value * kFull + full) / (2 * full));
        }
    }
}

/// Premultiplied samples that need no other colors need no division either.
template<class Sample>
void RowConversion::convertPremultiplied(const Sample *samples, QRgb *out) const
{
    const bool isGray = m_layout.colors == Colors::Gray;
    for (int x = 0; x < m_width; ++x, samples += m_layout.samples) {
        const int alpha = byteOf(qMin<int>(samples[m_layout.alpha], m_layout.full));
        const auto color = [&](int index) {
            return qMin(byteOf(qMin<int>(samples[isGray ? 0 : index], m_layout.full)), alpha);
        };
        out[x] = qRgba(color(0), color(1), color(2), alpha);
    }
}

template<class Sample>
void RowConversion::convertRgb(const Sample *samples, QRgb *out) const
{
    const bool isGray = m_layout.colors == Colors::Gray;
    if (m_layout.full == 255 && !m_layout.isPremultiplied && !isGray) {
        for (int x = 0; x < m_width; ++x, samples += m_layout.samples)
            out[x] = qRgb(samples[0], samples[1], samples[2]);
        return;
    }
    for (int x = 0; x < m_width; ++x, samples += m_layout.samples) {
        const auto color = [&](int index) { return byteOf(colorSample(samples, isGray ? 0 : index)); };
        out[x] = isGray ? qRgb(color(0), color(0), color(0)) : qRgb(color(0), color(1), color(2));
    }
}

template<class Sample>
void RowConversion::convertInks(const Sample *samples, QRgb *out) const
{
    const qint64 full = m_layout.full;
    for (int x = 0; x < m_width; ++x, samples += m_layout.samples) {
        const qint64 black = full - colorSample(samples, 3);
        const auto light = [&](int ink) {
            const qint64 left = full - colorSample(samples, ink);
            return full == 255 ? int(2 * left * black + 255) / 510
                               : int((2 * left * black * 255 + full * full) / (2 * full * full));
        };
        out[x] = qRgb(light(0), light(1), light(2));
    }
}

template<class Sample>
void RowConversion::applyAlpha(const Sample *samples, QRgb *out) const
{
    samples += m_layout.alpha;
    for (int x = 0; x < m_width; ++x, samples += m_layout.samples) {
        const int alpha = byteOf(qMin<int>(*samples, m_layout.full));
        out[x] = qPremultiply((out[x] & 0x00ffffff) | QRgb(alpha) << 24);
    }
}

void RowConversion::convert(const uchar *samples, QRgb *out)
{
    convertSamples(samples, out);
}

void RowConversion::convert(const quint16 *samples, QRgb *out)
{
    convertSamples(samples, out);
}

} // namespace plexa
