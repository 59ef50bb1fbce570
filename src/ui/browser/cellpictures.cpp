// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/cellpictures.h"

#include "raster/resampling.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

namespace plexa
{
namespace
{

constexpr double kFrameOpacity = 0.8;
constexpr double kShadowOpacity = 0.5;
constexpr double kShadowBlur = 15; // points: twice the standard deviation
constexpr double kShadowShift = 2; // points, downwards
/// The number of standard deviations beyond which a shadow is invisible.
constexpr double kShadowReach = 2.5;

QSize levelSize(QSize size, int halvings)
{
    return {std::max(1, size.width() >> halvings), std::max(1, size.height() >> halvings)};
}

/// How often a thumbnail may be halved and still be at least that large.
int halvingsFor(QSize thumbnail, QSize size)
{
    int halvings = 0;
    while (halvings < 16) {
        const QSize next = levelSize(thumbnail, halvings + 1);
        if (next.width() < size.width() || next.height() < size.height() || next.isEmpty() ||
            next == levelSize(thumbnail, halvings))
            break;
        ++halvings;
    }
    return halvings;
}

/// The blurred shadow of a bar: the share of light that it removes from each pixel of a row. A box convolved
/// with a Gaussian is a difference of two error functions.
std::vector<double> shadowProfile(int length, int from, int to, double sigma)
{
    std::vector<double> profile(static_cast<std::size_t>(length));
    const double scale = 1 / (sigma * std::sqrt(2.0));
    for (int i = 0; i < length; ++i) {
        const double middle = i + 0.5;
        profile[static_cast<std::size_t>(i)] =
            (std::erf((middle - from) * scale) - std::erf((middle - to) * scale)) / 2;
    }
    return profile;
}

QImage transparent(QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

} // namespace

CellPictures::CellPictures(qint64 maxBytes)
    : m_pictures(maxBytes)
{
}

QImage CellPictures::find(const Key &key) const
{
    const QImage *image = m_pictures.object(key);
    return image ? *image : QImage();
}

QImage CellPictures::keep(const Key &key, const QImage &image)
{
    if (!image.isNull())
        m_pictures.insert(key, new QImage(image), image.sizeInBytes());
    return image;
}

QImage CellPictures::scaled(const QImage &thumbnail, QSize size) const
{
    return find({Kind::Scaled, thumbnail.cacheKey(), size});
}

QImage CellPictures::makeScaled(const QImage &thumbnail, QSize size)
{
    const Key key{Kind::Scaled, thumbnail.cacheKey(), size};
    if (const QImage image = find(key); !image.isNull())
        return image;
    const QImage source = level(thumbnail, halvingsFor(thumbnail.size(), size));
    return keep(key, resampled(source, size, Quality::Low).mirrored());
}

QImage CellPictures::nearest(const QImage &thumbnail, QSize size) const
{
    for (int halvings = halvingsFor(thumbnail.size(), size); halvings > 0; --halvings) {
        const QImage image = find({Kind::Level, thumbnail.cacheKey(), levelSize(thumbnail.size(), halvings)});
        if (!image.isNull())
            return image;
    }
    return thumbnail;
}

QImage CellPictures::level(const QImage &thumbnail, int halvings)
{
    if (halvings == 0) {
        const bool isKnown = thumbnail.format() == QImage::Format_RGB32 ||
                             thumbnail.format() == QImage::Format_ARGB32_Premultiplied;
        return isKnown ? thumbnail : thumbnail.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    }
    const QSize size = levelSize(thumbnail.size(), halvings);
    const Key key{Kind::Level, thumbnail.cacheKey(), size};
    if (const QImage image = find(key); !image.isNull())
        return image;
    // From the next larger kept version, if any.
    const QImage larger = nearest(thumbnail, size);
    return keep(key, resampled(level(larger, 0), size, Quality::Low));
}

int CellPictures::matMargin(int border, double scale)
{
    return border + static_cast<int>(std::ceil(kShadowReach * kShadowBlur * scale / 2)) +
           qRound(kShadowShift * scale);
}

QImage CellPictures::mat(QSize picture, int border, double scale)
{
    const Key key{Kind::Mat, border + 1000 * std::lround(16 * scale), picture};
    if (const QImage image = find(key); !image.isNull())
        return image;

    const int margin = matMargin(border, scale);
    QImage image = transparent(picture + 2 * QSize(margin, margin));
    const QRect frame = QRect(QPoint(margin, margin), picture).adjusted(-border, -border, border, border);
    const QRect shadow = frame.translated(0, qRound(kShadowShift * scale));
    const double sigma = kShadowBlur * scale / 2;
    const auto across = shadowProfile(image.width(), shadow.left(), shadow.right() + 1, sigma);
    const auto down = shadowProfile(image.height(), shadow.top(), shadow.bottom() + 1, sigma);
    for (int y = 0; y < image.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const double share = across[static_cast<std::size_t>(x)] * down[static_cast<std::size_t>(y)];
            row[x] = qRgba(0, 0, 0, static_cast<int>(255 * kShadowOpacity * share + 0.5));
        }
    }
    QPainter painter(&image);
    QColor white(Qt::white);
    white.setAlphaF(static_cast<float>(kFrameOpacity));
    painter.setCompositionMode(QPainter::CompositionMode_Source); // hides the shadow below the frame
    painter.fillRect(frame, white);
    painter.end();
    return keep(key, image);
}

QImage CellPictures::outline(QSize size, const Outline &outline)
{
    const qint64 color = outline.color.rgb() & 0xffffff;
    const Key key{Kind::Outline,
                  color << 32 | qint64(outline.isSelection) << 31 | std::lround(4 * outline.width) << 20 |
                      std::lround(16 * outline.radius),
                  size};
    if (const QImage image = find(key); !image.isNull())
        return image;
    QImage image = transparent(size);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (outline.isSelection) {
        painter.setBrush(QColor(255, 255, 255, 153)); // 0.6
        painter.drawRoundedRect(QRectF(image.rect()), outline.radius, outline.radius);
    }
    painter.setPen(QPen(outline.color, outline.width));
    painter.setBrush(Qt::NoBrush);
    const double inset = outline.width / 2;
    const double radius = std::max(0.0, outline.radius - inset);
    painter.drawRoundedRect(QRectF(image.rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
    painter.end();
    return keep(key, image);
}

QImage CellPictures::placeholder(QSize size, double scale)
{
    const Key key{Kind::Placeholder, std::lround(16 * scale), size};
    if (const QImage image = find(key); !image.isNull())
        return image;
    constexpr double kLine = 3, kDash = 10, kGap = 5; // in points
    QImage image = transparent(size);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QPen pen(QColor(255, 255, 255, 77), kLine * scale); // 0.3
    pen.setCapStyle(Qt::FlatCap);
    pen.setDashPattern({kDash / kLine, kGap / kLine});
    painter.setPen(pen);
    painter.setBrush(QColor(255, 255, 255, 26)); // 0.1
    const double inset = kLine * scale / 2;
    const double radius = 0.1 * size.height();
    painter.drawRoundedRect(QRectF(image.rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
    painter.end();
    return keep(key, image);
}

} // namespace plexa
