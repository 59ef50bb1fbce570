// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QRgb>

#include <array>
#include <memory>

namespace plexa
{

/// How the pixels that a ColorTransform reads are arranged in memory. Words have 16 bits in native order.
enum class PixelLayout {
    Rgb32,  ///< QRgb; alpha is ignored and kept
    Rgb48,  ///< red, green, blue in words
    Gray8,  ///< one byte
    Gray16, ///< one word
    Cmyk8,  ///< bytes, 255: full ink
    Cmyk16, ///< words, 65535: full ink
    Lab16,  ///< lightness, a, b in words: 65535 for 100, 257 (a + 128), 257 (b + 128)
};

/// The colors of a picture without a profile: the exponent of its encoding (0.45455 for a display gamma
/// of 2.2) and the x, y chromaticities of white, red, green and blue.
struct ColorCalibration {
    double gamma = 0;
    std::array<double, 8> chromaticities = {0.3127, 0.3290, 0.64, 0.33, 0.30, 0.60, 0.15, 0.06};
};

/// Converts pixels from the colors of a picture to 8-bit sRGB: relative colorimetric with black-point
/// compensation. Immutable and shared by threads.
class ColorTransform final
{
public:
    /// The transforms of the profiles that were used last are kept for the next pictures.
    /// @param iccProfile  may be damaged or of the wrong kind
    /// @return null if the profile equals sRGB to within 1 of 255, or cannot be applied to these pixels
    static std::shared_ptr<const ColorTransform> toSrgb(const QByteArray &iccProfile, PixelLayout layout);

    /// The same for colors given by calibration; `layout` is Rgb32 or Rgb48.
    static std::shared_ptr<const ColorTransform> toSrgb(const ColorCalibration &calibration,
                                                        PixelLayout layout);

    /// From CIE Lab under D50 (layout Lab16). @return null without memory
    static std::shared_ptr<const ColorTransform> labToSrgb();

    ~ColorTransform();
    ColorTransform(const ColorTransform &) = delete;
    ColorTransform &operator=(const ColorTransform &) = delete;

    /// Converts `count` pixels. Alpha becomes 255, except with Rgb32.
    /// @param in  pixels of the layout; for Rgb32 it may be `out`
    void convert(const void *in, QRgb *out, qsizetype count) const;

private:
    struct Data;
    explicit ColorTransform(std::unique_ptr<Data> data);
    std::unique_ptr<Data> m_data;
};

} // namespace plexa
