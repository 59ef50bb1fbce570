// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/textwatermark.h"

#include "raster/bitmaputilities.h"
#include "watermark/textlayout.h"
#include "watermark/wpresetvalues.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace plexa
{
namespace
{

/// Sides beyond this cannot be counted; nothing that large is drawn anyway.
constexpr double kMaxSide = 1e9;

/// The painter's rasteriser has limits of its own; larger bitmaps are drawn in pieces.
constexpr int kTileSide = 16'384;

TextAlignment alignmentOf(const WPresetValues &values)
{
    switch (values.textAlignment.value_or(0)) {
    case 1:
        return TextAlignment::Centre;
    case 2:
        return TextAlignment::Right;
    default:
        return TextAlignment::Left;
    }
}

/// Fill and outline of the glyphs.
struct Inks {
    bool isFilled = true;
    QColor fill;
    QPen outline{Qt::NoPen};
    double reach = 0; ///< pixels by which the outline goes beyond the glyphs' edges
};

/// An outline's width is given in percent of the font size; a negative one stands for outlines alone.
Inks inksOf(const WPresetValues &values, double fontSize)
{
    Inks inks;
    const QColor fill = values.fillColor.isValid() ? values.fillColor : QColor(Qt::black);
    inks.fill = createCGColorFromColor(fill);
    const int percent = values.stroke ? values.strokeWidth.value_or(0) : 0;
    if (percent == 0)
        return inks;
    inks.isFilled = percent > 0;
    const QColor color = values.strokeColor.isValid() ? values.strokeColor : fill;
    const double width = std::abs(percent / 100.0) * fontSize;
    inks.outline = QPen(createCGColorFromColor(color), width, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin);
    inks.reach = width / 2;
    return inks;
}

QRectF boundsOf(const TextSetting &setting, const QTransform &toPixels, double reach)
{
    QRectF bounds;
    if (!setting.outlines.isEmpty())
        bounds = toPixels.mapRect(setting.outlines.controlPointRect()).adjusted(-reach, -reach, reach, reach);
    const QTransform thousandths = QTransform::fromScale(0.001, 0.001) * toPixels;
    for (const QGlyphRun &glyph : setting.pictureGlyphs) {
        const QRectF box = glyph.rawFont().boundingRect(glyph.glyphIndexes().first());
        bounds |= thousandths.mapRect(box.translated(glyph.positions().first()));
    }
    // Anti-aliasing reaches a pixel further.
    return bounds.isEmpty() ? bounds : bounds.adjusted(-1, -1, 1, 1);
}

void paintTile(QImage &tile, const TextSetting &setting, const Inks &inks, const QTransform &toTile)
{
    QPainter painter(&tile);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath outlines = toTile.map(setting.outlines);
    if (inks.isFilled)
        painter.fillPath(outlines, inks.fill);
    if (inks.outline.style() != Qt::NoPen)
        painter.strokePath(outlines, inks.outline);
    painter.setTransform(QTransform::fromScale(0.001, 0.001) * toTile);
    painter.setPen(inks.fill);
    drawPictureGlyphs(painter, setting);
}

void paint(QImage &ink, const TextSetting &setting, const Inks &inks, const QTransform &toInk)
{
    const qsizetype stride = ink.bytesPerLine();
    uchar *const bits = ink.bits();
    for (int y = 0; y < ink.height(); y += kTileSide) {
        for (int x = 0; x < ink.width(); x += kTileSide) {
            QImage tile(bits + y * stride + qsizetype{4} * x, std::min(kTileSide, ink.width() - x),
                        std::min(kTileSide, ink.height() - y), stride, ink.format());
            paintTile(tile, setting, inks, toInk * QTransform::fromTranslate(-x, -y));
        }
    }
}

std::optional<double> baseLength(const QString &unit, QSize photo)
{
    if (unit == QLatin1StringView("% of height"))
        return photo.height();
    if (unit == QLatin1StringView("% of width"))
        return photo.width();
    if (unit == QLatin1StringView("% of long edge"))
        return std::max(photo.width(), photo.height());
    if (unit == QLatin1StringView("% of short edge"))
        return std::min(photo.width(), photo.height());
    return std::nullopt;
}

} // namespace

double fontSizeInPixels(const WPresetValues &values, QSize photo, double lineHeight)
{
    const double size = values.fontSize.value_or(0);
    if (values.fontSizeUnit == QLatin1StringView("Points"))
        return size;
    const std::optional<double> base = baseLength(values.fontSizeUnit, photo);
    const double ratio = base ? *base / (size * lineHeight) : 1;
    return size * 0.01 * ratio * size;
}

Result<std::optional<WatermarkBitmap>> createTextWatermarkOfWidth(double width, const WPresetValues &values,
                                                                  const QString &text, QSize photo,
                                                                  const FontCatalog &fonts)
{
    const double fontSize = fontSizeInPixels(values, photo, lineHeightInEms(fonts, values.font));
    if (!(width >= 1) || !(fontSize > 0))
        return std::nullopt;
    const Result<TextSetting> setting =
        setText(text, fonts, values.font, alignmentOf(values), width / fontSize);
    if (!setting)
        return tl::unexpected(setting.error());
    // A line meant to be 240 pixels tall must not come out as 239 for the last bit of a sum.
    const double height = setting->height * fontSize + 1e-6;
    if (!(height >= 1))
        return std::nullopt;
    if (width > kMaxSide || height > kMaxSide)
        return tooLargeBitmap(width, height);

    WatermarkBitmap bitmap;
    bitmap.size = QSize(static_cast<int>(width), static_cast<int>(height));
    // The fraction of a pixel that is cut off goes at the top.
    const QTransform toPixels = QTransform::fromScale(fontSize, fontSize) *
                                QTransform::fromTranslate(0, bitmap.size.height() - height);
    const Inks inks = inksOf(values, fontSize);
    const QRectF bounds =
        boundsOf(*setting, toPixels, inks.reach).intersected(QRectF(QPointF(), bitmap.size));
    const QRect ink = bounds.toAlignedRect();
    if (ink.isEmpty())
        return bitmap;
    if (qint64{ink.width()} * ink.height() > maxBitmapPixels(photo))
        return tooLargeBitmap(ink.width(), ink.height());
    bitmap.inkAt = ink.topLeft();
    bitmap.ink = createBitmapContext(ink.width(), ink.height(), true);
    if (bitmap.ink.isNull())
        return tooLargeBitmap(ink.width(), ink.height());
    paint(bitmap.ink, *setting, inks, toPixels * QTransform::fromTranslate(-ink.x(), -ink.y()));
    return bitmap;
}

} // namespace plexa
