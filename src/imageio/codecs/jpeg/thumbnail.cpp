// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/thumbnail.h"

#include <QtEndian>

#include <algorithm>
#include <array>

namespace plexa
{

namespace
{

/// Pixels sampled along each side of a thumbnail's pixel.
constexpr int kSamplesAlongSide = 8;

QSize thumbnailSize(QSize source)
{
    const int longer = qMax(source.width(), source.height());
    if (longer <= ThumbnailMaker::kLongerSide)
        return source;
    const auto scaled = [longer](int side) {
        return qMax(1, int((qint64(side) * ThumbnailMaker::kLongerSide + longer / 2) / longer));
    };
    return {scaled(source.width()), scaled(source.height())};
}

/// Pads a JPEG to `bytes` bytes by comments before its end marker, and by fill bytes where no comment fits.
QByteArray filledUp(const QByteArray &jpeg, qsizetype bytes)
{
    QByteArray filled = jpeg.chopped(2);
    qsizetype left = bytes - jpeg.size();
    while (left >= 4) {
        const qsizetype length = qMin<qsizetype>(left - 2, 0xffff); // counts itself, not the marker
        char head[4] = {char(0xff), char(0xfe)};
        qToBigEndian(quint16(length), head + 2);
        filled.append(head, 4);
        filled.append(length - 2, '\0');
        left -= length + 2;
    }
    filled.append(left, char(0xff));
    filled.append("\xff\xd9", 2);
    return filled;
}

} // namespace

ThumbnailMaker::ThumbnailMaker(QSize size)
    : m_source(size)
    , m_size(thumbnailSize(size))
    , m_stepX(qMax(1, size.width() / m_size.width() / kSamplesAlongSide))
    , m_stepY(qMax(1, size.height() / m_size.height() / kSamplesAlongSide))
    , m_sums(size_t(m_size.width()) * size_t(m_size.height()))
{
    for (int x = 0; x < size.width(); x += m_stepX)
        m_columns.push_back(int(qint64(x) * m_size.width() / size.width()));
}

void ThumbnailMaker::addRows(const QImage &strip, int count)
{
    for (int row = 0; row < count; ++row, ++m_nextRow) {
        if (m_nextRow % m_stepY == 0 && m_nextRow < m_source.height())
            addRow(reinterpret_cast<const QRgb *>(strip.constScanLine(row)), strip.hasAlphaChannel());
    }
}

void ThumbnailMaker::addRow(const QRgb *row, bool hasAlpha)
{
    const qint64 y = qint64(m_nextRow) * m_size.height() / m_source.height();
    Sum *sums = m_sums.data() + y * m_size.width();
    for (const int column : m_columns) {
        const QRgb color = *row;
        row += m_stepX;
        // Premultiplied: what is missing to opaque is white.
        const quint32 white = hasAlpha ? quint32(255 - qAlpha(color)) : 0;
        Sum &sum = sums[column];
        sum.red += quint32(qRed(color)) + white;
        sum.green += quint32(qGreen(color)) + white;
        sum.blue += quint32(qBlue(color)) + white;
        ++sum.count;
    }
}

QImage ThumbnailMaker::image() const
{
    QImage image(m_size, QImage::Format_RGB32);
    const Sum *sum = m_sums.data();
    for (int y = 0; y < m_size.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < m_size.width(); ++x, ++sum) {
            const quint32 count = qMax(1u, sum->count);
            const auto mean = [count](quint32 total) { return int((total + count / 2) / count); };
            row[x] = qRgb(mean(sum->red), mean(sum->green), mean(sum->blue));
        }
    }
    return image;
}

QByteArray ThumbnailMaker::jpeg(qsizetype bytes) const
{
    QImage small = image();
    QByteArray encoded;
    const auto fits = [&](int quality) {
        encoded = encodeBareJpeg(small, quality);
        return !encoded.isEmpty() && encoded.size() <= bytes;
    };
    constexpr std::array kQualities = {88, 80, 72, 64, 56, 48, 40, 30, 20, 10, 1};
    bool isFound = std::any_of(kQualities.begin(), kQualities.end(), fits);
    while (!isFound && (small.width() > 1 || small.height() > 1)) {
        small = small.scaled(qMax(1, small.width() / 2), qMax(1, small.height() / 2), Qt::IgnoreAspectRatio,
                             Qt::SmoothTransformation);
        isFound = fits(30);
    }
    return isFound ? filledUp(encoded, bytes) : QByteArray();
}

} // namespace plexa
