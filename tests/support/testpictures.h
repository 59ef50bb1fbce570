// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QBuffer>
#include <QColorSpace>
#include <QImage>
#include <QRandomGenerator>

namespace plexa::test
{

/// A picture of one color. Transparent colors need a format with alpha.
inline QImage flatPicture(QSize size, QColor color = Qt::gray, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(size, format);
    image.fill(color);
    return image;
}

/// A picture whose color at x, y (from the top left) is colorAt(x, y), a QRgb that is not premultiplied.
template<class ColorAt>
QImage paintedPicture(QSize size, QImage::Format format, ColorAt colorAt)
{
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            row[x] = colorAt(x, y);
    }
    return image.convertToFormat(format);
}

/// Gradients without edges, which a lossy codec keeps well. Every row and column differs from the others, so
/// a rotation shows. Alpha falls from 255 at the left to 55 at the right; formats without it show the same
/// colors.
inline QImage smoothPicture(QSize size, QImage::Format format = QImage::Format_RGB32)
{
    const bool hasAlpha = QImage(1, 1, format).hasAlphaChannel();
    return paintedPicture(size, format, [size, hasAlpha](int x, int y) {
        return qRgba(40 + 180 * x / size.width(), 60 + 150 * y / size.height(), 200 - 150 * x / size.width(),
                     hasAlpha ? 255 - 200 * x / size.width() : 255);
    });
}

/// Gradients in red and green, noise in blue: detail everywhere, so that a lost or repeated row shows, and
/// more colors than a palette holds. Alpha takes all its values; formats without it show the same colors.
inline QImage detailedPicture(QSize size, QImage::Format format = QImage::Format_RGB32)
{
    const bool hasAlpha = QImage(1, 1, format).hasAlphaChannel();
    QRandomGenerator random(7);
    return paintedPicture(size, format, [&](int x, int y) {
        return qRgba(x * 255 / size.width(), y * 255 / size.height(), random.bounded(256),
                     hasAlpha ? (x * 3 + y) % 256 : 255);
    });
}

/// Noise in all channels; where the format has alpha, in runs of transparent, opaque and translucent pixels.
inline QImage randomPicture(QSize size, QImage::Format format = QImage::Format_RGB32, quint32 seed = 1)
{
    const bool hasAlpha = QImage(1, 1, format).hasAlphaChannel();
    QRandomGenerator random(seed);
    int kind = 0;
    return paintedPicture(size, format, [&](int, int) {
        if (random.bounded(9) == 0)
            kind = random.bounded(3);
        const QRgb color = random.generate() & 0x00ffffffU;
        const quint32 alpha = !hasAlpha || kind == 1 ? 255 : kind == 0 ? 0 : random.bounded(256U);
        return color | alpha << 24;
    });
}

/// The file of a picture, written by Qt. @param format  of QImageWriter, as "JPEG"
inline QByteArray encoded(const QImage &image, const char *format, int quality = -1)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format, quality);
    return buffer.data();
}

/// The picture as plain RGB32 without a color space, to compare pixels alone.
inline QImage pixelsOf(QImage image)
{
    image.setColorSpace({});
    return image.convertToFormat(QImage::Format_RGB32);
}

} // namespace plexa::test
