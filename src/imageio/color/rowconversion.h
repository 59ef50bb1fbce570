// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/color/colortransform.h"

#include <optional>
#include <vector>

namespace plexa
{

/// How the decoded samples of a pixel are arranged and what they mean.
struct SampleLayout {
    enum class Colors {
        Gray,
        Rgb,
        Cmyk,
        Lab,     ///< as PixelLayout::Lab16
        Palette, ///< indices into `palette`
    };

    Colors colors = Colors::Rgb;    ///< the color samples come first
    int samples = 3;                ///< from one pixel to the next
    int full = 255;                 ///< value of a full sample, 1..65535; with Lab 65535
    int alpha = -1;                 ///< index of the alpha sample, -1: opaque
    bool isPremultiplied = false;   ///< Gray, Rgb and Cmyk
    bool isInverted = false;        ///< Gray: 0 is white; Cmyk: 0 is full ink
    std::vector<QRgb> palette = {}; ///< sRGB, opaque; indices beyond it are black
};

/// The colors of a picture: an ICC profile, or else a calibration, or else sRGB.
struct PictureColors {
    QByteArray iccProfile; ///< may be empty, damaged or of the wrong kind
    std::optional<ColorCalibration> calibration;
};

/// Converts rows of decoded samples to rows of 8-bit sRGB, premultiplied by alpha: the one conversion of all
/// codecs. Without a usable profile gray and RGB count as sRGB, and each CMYK ink absorbs its part of the
/// light that black leaves. Results are rounded to the nearest value. One thread at a time.
class RowConversion
{
public:
    /// Throws std::bad_alloc.
    /// @param width  of the rows, in pixels
    RowConversion(SampleLayout layout, const PictureColors &colors, int width);

    /// Does a profile or a calibration change the colors?
    bool hasTransform() const { return m_transform || m_hasTableTransform; }

    /// Converts a row of samples of one byte (`full` up to 255) or two bytes each.
    void convert(const uchar *samples, QRgb *out);
    void convert(const quint16 *samples, QRgb *out);

    /// Converts a row of 8-bit pixels with straight alpha in place, for layouts of RGB with `full` 255;
    /// `alpha` states whether they have any.
    void convertPixels(QRgb *row) const;

private:
    bool isDeep() const { return m_layout.full > 255; }
    void makeTable(const PictureColors &colors);
    void premultiply(QRgb *row) const;
    int byteOf(int sample) const;
    template<class Sample>
    int colorSample(const Sample *pixel, int index) const;
    template<class Sample>
    void convertSamples(const Sample *samples, QRgb *out);
    template<class Word, class Sample>
    void gather(const Sample *samples, Word *out) const;
    template<class Sample>
    void convertPremultiplied(const Sample *samples, QRgb *out) const;
    template<class Sample>
    void convertRgb(const Sample *samples, QRgb *out) const;
    template<class Sample>
    void convertInks(const Sample *samples, QRgb *out) const;
    template<class Sample>
    void applyAlpha(const Sample *samples, QRgb *out) const;

    const SampleLayout m_layout;
    const int m_width;
    int m_wordsPerPixel; ///< that the transform reads
    bool m_hasTableTransform = false;
    std::shared_ptr<const ColorTransform> m_transform;
    std::vector<QRgb> m_table;    ///< the color of each value, for gray of up to 8 bits and palettes
    std::vector<quint16> m_words; ///< a row as the transform reads it
};

} // namespace plexa
