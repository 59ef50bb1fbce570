// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/textwatermark.h"

#include "raster/bitmaputilities.h"
#include "watermark/glyphcontours.h"
#include "watermark/textlayout.h"
#include "watermark/watermarklayout.h"
#include "watermark/wpresetvalues.h"

#include <QCoreApplication>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::TextWatermark)
};

/// Longer sides exceed the range of int.
constexpr double kMaxSide = 1e9;

/// The painter's rasterizer searches all edges to the left in a row; narrow tiles are ten times as fast, with
/// the same result.
constexpr int kTileSide = 256;

TextAlignment alignmentOf(const WPresetValues &values)
{
    const int alignment = values.textAlignment.value_or(0);
    return alignment == 1 || alignment == 2 ? static_cast<TextAlignment>(alignment) : TextAlignment::Left;
}

/// Fill and outline of the glyphs.
struct Inks {
    bool isFilled = true;
    QColor fill;
    bool isOutlined = false;
    QPen outline;
};

/// An outline's width is in percent of the font size; a negative one draws outlines without a fill.
Inks inksOf(const WPresetValues &values, double fontSize)
{
    Inks inks;
    const QColor fill = values.fillColor.isValid() ? values.fillColor : QColor(Qt::black);
    inks.fill = fill.toRgb();
    const int percent =
        values.stroke ? std::clamp(values.strokeWidth.value_or(0), -kWidestStroke, kWidestStroke) : 0;
    if (percent == 0)
        return inks;
    inks.isFilled = percent > 0;
    const QColor color = values.strokeColor.isValid() ? values.strokeColor : fill;
    const double width = std::abs(percent / 100.0) * fontSize;
    inks.outline = QPen(color.toRgb(), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    inks.isOutlined = true;
    return inks;
}

QTransform withoutMoving(const QTransform &transform)
{
    return {transform.m11(), transform.m12(), transform.m21(), transform.m22(), 0, 0};
}

/// A text in pixels: the fill first, the outlines above it. Glyphs that touch are outlined as one; else the
/// outline of each kind of glyph is computed once.
class PaintableText
{
public:
    PaintableText(const TextSetting &setting, const QTransform &toPixels, const Inks &inks)
        : m_setting(setting)
        , m_toPixels(toPixels)
        , m_inks(inks)
        , m_shapes(setting.shapes.size())
    {
        const double outside = inks.isOutlined ? inks.outline.widthF() / 2 : 0;
        // Anti-aliasing reaches a pixel further.
        const double margin = outside + 1;
        const QTransform scaling = withoutMoving(toPixels);
        for (std::size_t i = 0; i < m_shapes.size(); ++i) {
            m_shapes[i].reach = scaling.mapRect(setting.shapes[i].controlPointRect())
                                    .adjusted(-margin, -margin, margin, margin);
        }
        for (const TextSetting::Glyph &glyph : setting.glyphs) {
            m_glyphs.push_back({glyph.shape, glyph.shape, toPixels.map(glyph.at)});
            m_bounds |= reachOf(m_glyphs.back());
        }
        for (const TextSetting::PictureGlyph &glyph : setting.pictureGlyphs)
            m_bounds |= toPixels.mapRect(glyph.reach);
    }

    QRectF bounds() const { return m_bounds; }

    /// @param ink         its top left corner is at `at` in the text's pixels; not shared
    /// @param isCanceled  checked at each tile and in it at each 100,000 elements of outlines; the rest is
    /// then
    ///                    not painted
    void paint(QImage &ink, QPoint at, const CancelCheck &isCanceled)
    {
        if (m_inks.isOutlined)
            joinOutlines(isCanceled);
        const qsizetype stride = ink.bytesPerLine();
        uchar *const bits = ink.bits();
        for (int y = 0; y < ink.height(); y += kTileSide) {
            const int height = std::min(kTileSide, ink.height() - y);
            const std::vector<Glyph> inRow =
                reachingInto(m_glyphs, QRectF(at.x(), at.y() + y, ink.width(), height));
            if (inRow.empty())
                continue;
            for (int x = 0; x < ink.width(); x += kTileSide) {
                if (canceled(isCanceled))
                    return;
                QImage tile(bits + y * stride + qsizetype{4} * x, std::min(kTileSide, ink.width() - x),
                            height, stride, ink.format());
                paintTile(tile, at + QPoint(x, y), inRow, isCanceled);
            }
        }
        if (!m_setting.pictureGlyphs.empty())
            paintPictures(ink, at);
    }

private:
    /// A kind of glyph, or the rest of a contour that others cover, in pixels. Its origin is at (0, 0).
    struct Shape {
        QRectF reach = {};
        QPainterPath fill = {};    ///< created when it is first painted
        QPainterPath outline = {}; ///< likewise
    };

    struct Glyph {
        std::size_t shape;    ///< that is filled
        std::size_t outlined; ///< the shape that is outlined
        QPointF at;
    };

    QRectF reachOf(const Glyph &glyph) const { return m_shapes[glyph.shape].reach.translated(glyph.at); }

    void joinOutlines(const CancelCheck &isCanceled)
    {
        std::vector<PlacedShape> placed;
        for (const Glyph &glyph : m_glyphs)
            placed.push_back({&fillOf(glyph.shape), glyph.at});
        const double em = std::sqrt(std::abs(m_toPixels.determinant()));
        const auto contours = contoursOfUnion(placed, kTouching * em, isCanceled);
        for (std::size_t i = 0; i < contours.size(); ++i) {
            if (!contours[i])
                continue;
            m_glyphs[i].outlined = m_shapes.size();
            m_shapes.push_back({.fill = *contours[i]});
        }
    }

    std::vector<Glyph> reachingInto(const std::vector<Glyph> &glyphs, const QRectF &part) const
    {
        std::vector<Glyph> reaching;
        for (const Glyph &glyph : glyphs) {
            if (reachOf(glyph).intersects(part))
                reaching.push_back(glyph);
        }
        return reaching;
    }

    const QPainterPath &fillOf(std::size_t index)
    {
        Shape &shape = m_shapes[index];
        if (shape.fill.isEmpty() && index < m_setting.shapes.size())
            shape.fill = withoutMoving(m_toPixels).map(m_setting.shapes[index]);
        return shape.fill;
    }

    const QPainterPath &outlineOf(std::size_t index)
    {
        Shape &shape = m_shapes[index];
        if (shape.outline.isEmpty()) {
            QPainterPathStroker stroker(m_inks.outline);
            stroker.setCurveThreshold(kCurveTolerance);
            shape.outline = stroker.createStroke(fillOf(index));
        }
        return shape.outline;
    }

    void paintTile(QImage &tile, QPoint at, const std::vector<Glyph> &inRow, const CancelCheck &isCanceled)
    {
        const std::vector<Glyph> glyphs = reachingInto(inRow, QRectF(at, tile.size()));
        if (glyphs.empty())
            return;
        QPainter painter(&tile);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(-at);
        // Opaque colors, and colors on an empty bitmap, need only their coverage, which is the faster mode.
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        if (m_inks.isFilled)
            fill(painter, glyphs, m_inks.fill, isCanceled,
                 [this](const Glyph &glyph) { return fillOf(glyph.shape); });
        if (!m_inks.isOutlined)
            return;
        if (m_inks.isFilled && m_inks.outline.color().alpha() < 255)
            painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        fill(painter, glyphs, m_inks.outline.color(), isCanceled,
             [this](const Glyph &glyph) { return outlineOf(glyph.outlined); });
    }

    /// Fills the glyphs as one shape, so that overlaps are not filled twice; in pieces if there are thousands
    /// in one tile, too small to be distinguished.
    template<typename PathOf>
    void fill(QPainter &painter, const std::vector<Glyph> &glyphs, const QColor &color,
              const CancelCheck &isCanceled, const PathOf &pathOf) const
    {
        QPainterPath piece;
        piece.setFillRule(Qt::WindingFill);
        for (const Glyph &glyph : glyphs) {
            piece.addPath(pathOf(glyph).translated(glyph.at));
            if (piece.elementCount() < kMaxPieceElements)
                continue;
            if (canceled(isCanceled))
                return;
            painter.fillPath(piece, color);
            piece.clear();
            piece.setFillRule(Qt::WindingFill);
        }
        painter.fillPath(piece, color);
    }

    void paintPictures(QImage &ink, QPoint at) const
    {
        QPainter painter(&ink);
        painter.setTransform(QTransform::fromScale(0.001, 0.001) * m_toPixels *
                             QTransform::fromTranslate(-at.x(), -at.y()));
        painter.setOpacity((m_inks.isFilled ? m_inks.fill : m_inks.outline.color()).alphaF());
        drawPictureGlyphs(painter, m_setting, m_toPixels.inverted().mapRect(QRectF(at, ink.size())));
    }

    /// The furthest that a drawn outline may be from the true one, in pixels.
    static constexpr double kCurveTolerance = 0.1;

    static constexpr int kMaxPieceElements = 100'000;

    /// The largest gap between glyphs of a joined script, in ems: their places are rounded.
    static constexpr double kTouching = 0.001;

    const TextSetting &m_setting;
    QTransform m_toPixels;
    Inks m_inks;
    std::vector<Shape> m_shapes; ///< those of the setting first
    std::vector<Glyph> m_glyphs; ///< in the setting's order
    QRectF m_bounds;
};

/// The notice about characters that no font has.
QString missingText(const QString &characters)
{
    constexpr qsizetype kMost = 5;
    QStringList names;
    const QList<uint> all = characters.toUcs4();
    for (const uint c : all.first(std::min(kMost, all.size()))) {
        const char32_t character = c;
        names.append(QStringLiteral("\"%1\" (U+%2)")
                         .arg(QString::fromUcs4(&character, 1))
                         .arg(c, 4, 16, QLatin1Char('0')));
    }
    if (all.size() > kMost)
        names.append(Texts::tr("%n more", nullptr, static_cast<int>(all.size() - kMost)));
    return Texts::tr("no installed font has %1; the watermark shows a box for each").arg(names.join(u", "));
}

/// The part of the ink that is drawn: also beyond the frame, where accents, slanted letters and outlines
/// reach, unless that is too large.
QRect inkOf(const PaintableText &text, QSizeF frame, const Rendering &rendering)
{
    const QRectF all = text.bounds();
    return (rendering.isTooLarge(all.size()) ? all & QRectF(QPointF(0, 0), frame) : all).toAlignedRect();
}

/// @param toPixels  of the upright text
/// @param frame     in photo pixels
Result<std::optional<WatermarkBitmap>> painted(const TextSetting &setting, const QTransform &toPixels,
                                               QSize frame, const Inks &inks, const Rendering &rendering)
{
    const double scale = rendering.scale;
    const QSizeF box = tiltedBox(frame, rendering.tilt);
    const QTransform tilt = tiltIntoBox(QSizeF(frame) * scale, rendering.tilt);
    WatermarkBitmap bitmap;
    bitmap.size = QSize(static_cast<int>(box.width()), static_cast<int>(box.height()));
    bitmap.scale = scale;
    if (!setting.missing.isEmpty())
        bitmap.notices = {missingText(setting.missing)};
    PaintableText paintable(setting, rendering.tilt == 0 ? toPixels : toPixels * tilt, inks);
    const QRect ink = inkOf(paintable, box * scale, rendering);
    if (ink.isEmpty())
        return bitmap;
    if (rendering.isTooLarge(ink.size()))
        return leftOut(ink.size(), rendering);
    bitmap.inkAt = ink.topLeft();
    bitmap.ink = createBitmapContext(ink.width(), ink.height(), true);
    if (bitmap.ink.isNull())
        return noMemory();
    paintable.paint(bitmap.ink, ink.topLeft(), rendering.isCanceled);
    return bitmap;
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
                                                                  const QString &text,
                                                                  const FontCatalog &fonts,
                                                                  const Rendering &rendering)
{
    const double fontSize = fontSizeInPixels(values, rendering.photo, lineHeightInEms(fonts, values.font));
    if (!(width >= 1) || !(fontSize > 0))
        return std::nullopt;
    const Result<TextSetting> setting =
        setText(text, fonts, values.font, alignmentOf(values), width / fontSize);
    if (!setting)
        return tl::unexpected(setting.error());
    // A line of 240 pixels must not become 239 by the last bit of a sum.
    const double height = setting->height * fontSize + 1e-6;
    if (!(height >= 1))
        return std::nullopt;
    const double scale = rendering.scale;
    if (width > kMaxSide || height > kMaxSide)
        return leftOut(QSizeF(width, height) * scale, rendering);

    const QSize frame(static_cast<int>(width), static_cast<int>(height));
    // The fraction of a photo pixel is cut off at the top.
    const QTransform toPixels = QTransform::fromScale(fontSize * scale, fontSize * scale) *
                                QTransform::fromTranslate(0, (frame.height() - height) * scale);
    return painted(*setting, toPixels, frame, inksOf(values, fontSize * scale), rendering);
}

} // namespace plexa
