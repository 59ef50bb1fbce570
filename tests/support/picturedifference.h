// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QImage>

#include <cmath>

namespace plexa::test
{

/// How two pictures differ. Colors count as they look on black, and differences of alpha count too.
struct PictureDifference {
    double mean = 256;       ///< of a channel, 0..255; 256 when the sizes differ
    int worst = 256;         ///< of all channels, 0..255; 256 when the sizes differ
    double meanSquare = 1e9; ///< of a channel
    QRect rect;              ///< the pixels that differ, origin top left; empty when none does

    /// Peak signal to noise ratio in dB; 99 when the pictures are equal.
    double psnr() const { return meanSquare == 0 ? 99 : 10 * std::log10(255.0 * 255.0 / meanSquare); }
};

/// @param hole  pixels that do not count, origin top left
inline PictureDifference differenceOf(const QImage &a, const QImage &b, const QRect &hole = {})
{
    if (a.isNull() || a.size() != b.size())
        return {};
    const QImage left = a.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage right = b.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    qint64 pixels = 0;
    qint64 sum = 0;
    qint64 squares = 0;
    PictureDifference result{0, 0, 0, {}};
    for (int y = 0; y < left.height(); ++y) {
        const auto *p = reinterpret_cast<const QRgb *>(left.constScanLine(y));
        const auto *q = reinterpret_cast<const QRgb *>(right.constScanLine(y));
        for (int x = 0; x < left.width(); ++x) {
            if (hole.contains(x, y))
                continue;
            ++pixels;
            if (p[x] == q[x])
                continue;
            result.rect |= QRect(x, y, 1, 1);
            for (int shift = 0; shift < 32; shift += 8) {
                const int channel = std::abs(int(p[x] >> shift & 0xff) - int(q[x] >> shift & 0xff));
                sum += channel;
                squares += channel * channel;
                result.worst = std::max(result.worst, channel);
            }
        }
    }
    const double samples = 3.0 * double(std::max<qint64>(pixels, 1));
    result.mean = double(sum) / samples;
    result.meanSquare = double(squares) / samples;
    return result;
}

inline double meanDifference(const QImage &a, const QImage &b)
{
    return differenceOf(a, b).mean;
}

} // namespace plexa::test
