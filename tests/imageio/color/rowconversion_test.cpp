// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/color/rowconversion.h"

#include <QRandomGenerator>
#include <QTest>

#include <cmath>

using namespace plexa;

using Colors = SampleLayout::Colors;

namespace
{

constexpr int kWidth = 251;

/// IEC 61966-2-1.
double encoded(double light)
{
    return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

/// The converted pixel by plain formulas: red, green, blue (premultiplied) and alpha, 0..255.
std::array<double, 4> plainPixel(const SampleLayout &layout, bool isLinear, const quint16 *samples)
{
    const double full = layout.full;
    const double alpha = layout.alpha < 0 ? 1 : samples[layout.alpha] / full;
    const auto color = [&](int index) {
        double value = samples[index] / full;
        if (layout.isPremultiplied && layout.alpha >= 0)
            value = alpha > 0 ? std::min(1.0, value / alpha) : 0;
        value = layout.isInverted ? 1 - value : value;
        return isLinear ? encoded(value) : value;
    };
    std::array<double, 4> pixel = {0, 0, 0, 255 * alpha};
    for (int i = 0; i < 3; ++i) {
        const double light = layout.colors == Colors::Cmyk ? (1 - color(i)) * (1 - color(3))
                                                           : color(layout.colors == Colors::Gray ? 0 : i);
        pixel[size_t(i)] = 255 * light * alpha;
    }
    return pixel;
}

template<class Sample>
std::vector<QRgb> convertedRow(const SampleLayout &layout, const PictureColors &colors,
                               const std::vector<quint16> &samples)
{
    const std::vector<Sample> row(samples.begin(), samples.end());
    std::vector<QRgb> out(kWidth);
    RowConversion(layout, colors, kWidth).convert(row.data(), out.data());
    return out;
}

} // namespace

/// Does the one conversion of all codecs round every layout of samples as a plain formula does?
class RowConversionTest : public QObject
{
    Q_OBJECT

    static void compare(const SampleLayout &layout, bool isLinear)
    {
        PictureColors colors;
        if (isLinear)
            colors.calibration = ColorCalibration{.gamma = 1};
        QRandomGenerator random(3);
        std::vector<quint16> samples;
        for (int i = 0; i < kWidth * layout.samples; ++i) // both ends are frequent
            samples.push_back(
                quint16(qBound(0, random.bounded(-layout.full / 8, layout.full * 9 / 8 + 1), layout.full)));
        // The alpha of a pixel is rounded, too. Dark light of 10 or 12 bits is rounded to 16 bits.
        const double tolerance = (layout.alpha >= 0 ? 1.51 : 0.501) + (isLinear ? 0.05 : 0);
        for (const bool asWords : {false, true}) {
            if (!asWords && layout.full > 255)
                continue;
            const auto row = asWords ? convertedRow<quint16>(layout, colors, samples)
                                     : convertedRow<uchar>(layout, colors, samples);
            for (int x = 0; x < kWidth; ++x) {
                const QRgb is = row[size_t(x)];
                const auto wanted = plainPixel(layout, isLinear, samples.data() + x * layout.samples);
                const int channels[] = {qRed(is), qGreen(is), qBlue(is), qAlpha(is)};
                for (size_t i = 0; i < 4; ++i)
                    QVERIFY2(
                        std::abs(channels[i] - wanted[i]) <= (i == 3 ? 0.501 : tolerance),
                        qPrintable(QString::asprintf("colors %d, full %d, alpha %d %d, pixel %d: %d, not %g",
                                                     int(layout.colors), layout.full, layout.alpha,
                                                     layout.isPremultiplied, x, channels[i], wanted[i])));
            }
        }
    }

private Q_SLOTS:
    void everyLayoutFollowsThePlainFormula()
    {
        for (const Colors colors : {Colors::Gray, Colors::Rgb, Colors::Cmyk}) {
            const int channels = colors == Colors::Gray ? 1 : colors == Colors::Rgb ? 3 : 4;
            for (const int full : {1, 3, 15, 255, 1023, 4095, 65535}) {
                for (int kind = 0; kind < 16; ++kind) {
                    SampleLayout layout{.colors = colors, .samples = channels + kind % 2 + 1, .full = full};
                    layout.isInverted = (kind & 2) != 0 && colors != Colors::Rgb;
                    const bool isLinear = (kind & 4) != 0 && colors != Colors::Cmyk;
                    layout.alpha = (kind & 8) != 0 ? layout.samples - 1 : -1;
                    compare(layout, isLinear);
                    // Division by alpha magnifies the rounding of samples of few bits.
                    layout.isPremultiplied = layout.alpha >= 0 && colors != Colors::Cmyk &&
                                             !layout.isInverted && (!isLinear || full == 65535);
                    if (layout.isPremultiplied)
                        compare(layout, isLinear);
                    if (QTest::currentTestFailed())
                        return;
                }
            }
        }
    }

    void paletteKeepsAlphaAndBounds()
    {
        SampleLayout layout{.colors = Colors::Palette, .samples = 2, .alpha = 1};
        layout.palette = {0xffff0000, 0xff00ff00};
        const uchar samples[] = {0, 255, 1, 128, 77, 255, 1, 0};
        std::vector<QRgb> row(4);
        RowConversion(layout, {}, 4).convert(samples, row.data());
        QCOMPARE(row, (std::vector<QRgb>{0xffff0000, 0x80008000, 0xff000000, 0}));
    }

    void pixelsKeepAlpha()
    {
        std::vector<QRgb> row = {0xffff8000, 0x80ff8000, 0x00ffffff};
        RowConversion({.samples = 4, .alpha = 3}, {}, 3).convertPixels(row.data());
        QCOMPARE(row, (std::vector<QRgb>{0xffff8000, qPremultiply(0x80ff8000), 0}));
    }
};

QTEST_APPLESS_MAIN(RowConversionTest)

#include "rowconversion_test.moc"
