// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QRgb>
#include <QString>

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
/// compensation. One thread at a time; shares nothing with other objects.
class ColorTransform final
{
public:
    /// @param iccProfile  may be damaged or of the wrong kind
    /// @return null if the profile equals sRGB to within 1 of 255, or cannot be applied to these pixels
    static std::unique_ptr<ColorTransform> toSrgb(const QByteArray &iccProfile, PixelLayout layout);

    /// The same for colors given by calibration; `layout` is Rgb32 or Rgb48.
    static std::unique_ptr<ColorTransform> toSrgb(const ColorCalibration &calibration, PixelLayout layout);

    /// From CIE Lab under D50 (layout Lab16). @return null without memory
    static std::unique_ptr<ColorTransform> labToSrgb();

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

/// The color model of a profile: "RGB", "Gray", "CMYK", "Lab"; empty if unusable.
QString profileColorModel(const QByteArray &iccProfile);

/// The profile's name for people; may be empty.
QString profileDescription(const QByteArray &iccProfile);

/// Adobe RGB (1998), for pictures that name it without a profile.
const QByteArray &adobeRgbProfile();

/// The sRGB profile of every written picture: under 4 KB, always the same bytes.
const QByteArray &srgbProfile();

/// Colors as code points (ITU-T H.273, clauses 8.1 and 8.2), used by video and related formats.
struct NclxColors {
    int primaries = 1; ///< 1: BT.709 and sRGB, 9: BT.2020, 12: Display P3, ...
    int transfer = 13; ///< 13: sRGB, 16: PQ, 18: HLG, ...
};

/// The ICC profile for these colors. The curves of SDR video count as sRGB's, as in other programs. PQ and
/// HLG are mapped to the range of a monitor: highlights above their reference white are compressed.
/// @return empty for sRGB, for reserved or unspecified code points, and without memory
QByteArray profileOfNclx(const NclxColors &colors);

} // namespace plexa
