// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QRgb>
#include <QString>

#include <array>
#include <memory>

namespace plexa
{

/// How the pixels lie in memory that a ColorTransform takes. Words of 16 bits are in the machine's order.
enum class PixelLayout {
    Rgb32,         ///< QRgb, straight alpha or none
    Rgba64,        ///< red, green, blue, alpha of 16 bits, straight
    Gray8,         ///< one byte
    GrayAlpha8,    ///< grey, straight alpha
    GrayAlpha16,   ///< the same in words
    Cmyk8,         ///< 255: all ink
    Cmyk16,        ///< the same in words
    CmykInverted8, ///< 0: all ink
    Lab16,         ///< lightness, a, b in words: 65535 for 100, 257 (a + 128), 257 (b + 128)
};

/// What a picture says of its colours where it has no profile: the exponent of its encoding (0.45455 for a
/// display gamma of 2.2) and the x, y chromaticities of white, red, green and blue.
struct ColorCalibration {
    double gamma = 0;
    std::array<double, 8> chromaticities = {0.3127, 0.3290, 0.64, 0.33, 0.30, 0.60, 0.15, 0.06};
};

/// Converts pixels from a picture's own colours to 8-bit sRGB: relative colorimetric with black-point
/// compensation. An object belongs to one thread at a time; it shares nothing with others.
class ColorTransform final
{
public:
    /// @param iccProfile  may be damaged or of the wrong kind
    /// @return null when there is nothing to convert (the profile is sRGB to within 1 of 255 already), or
    ///         nothing to go by (no profile, or one that does not fit these pixels)
    static std::unique_ptr<ColorTransform> toSrgb(const QByteArray &iccProfile, PixelLayout layout);

    /// The same for colours given by calibration; `layout` is Rgb32 or Rgba64.
    static std::unique_ptr<ColorTransform> toSrgb(const ColorCalibration &calibration, PixelLayout layout);

    /// From CIE Lab under D50 (layout Lab16). @return null without memory
    static std::unique_ptr<ColorTransform> labToSrgb();

    ~ColorTransform();
    ColorTransform(const ColorTransform &) = delete;
    ColorTransform &operator=(const ColorTransform &) = delete;

    /// Converts `count` pixels. Alpha is kept, and 255 where the layout has none.
    /// @param in   pixels of the layout; for Rgb32 it may be `out`
    /// @param out  straight alpha
    void convert(const void *in, QRgb *out, qsizetype count) const;

private:
    struct Data;
    explicit ColorTransform(std::unique_ptr<Data> data);
    std::unique_ptr<Data> m_data;
};

/// What kind of pixels a profile is for: "RGB", "Gray", "CMYK", "Lab"; empty when it cannot be used.
QString profileColorModel(const QByteArray &iccProfile);

/// The profile's name for people; empty when it has none.
QString profileDescription(const QByteArray &iccProfile);

/// Adobe RGB (1998), for pictures that name it without carrying a profile.
const QByteArray &adobeRgbProfile();

/// The sRGB profile that every written picture carries: under 4 KB, always the same bytes.
const QByteArray &srgbProfile();

} // namespace plexa
