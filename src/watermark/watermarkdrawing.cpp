// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/watermarkdrawing.h"

#include "raster/bitmaputilities.h"
#include "watermark/texttokens.h"
#include "watermark/textwatermark.h"
#include "watermark/watermarkbitmap.h"
#include "watermark/watermarktext.h"
#include "watermark/wpresetvalues.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::WatermarkDrawing)
};

/// The sides of a picture that stand for nothing drawable.
constexpr double kMaxSide = 1e9;

double fractionOf(WholeNumber percent)
{
    return std::clamp(percent.value_or(0) / 100.0, 0.0, 1.0);
}

Result<std::optional<WatermarkBitmap>> createImageWatermarkOfWidth(double width, const WPresetValues &values,
                                                                   QSize photo)
{
    if (values.image.isNull())
        return std::nullopt;
    const QSizeF picture = values.image.size();
    if (picture.isEmpty())
        return fail(values.pictureFault());
    const double height = width / picture.width() * picture.height();
    if (!(width >= 1 && height >= 1))
        return std::nullopt;
    if (width > kMaxSide || height > kMaxSide)
        return tooLargeBitmap(width, height);
    WatermarkBitmap bitmap;
    bitmap.size = QSize(static_cast<int>(width), static_cast<int>(height));
    if (qint64{bitmap.size.width()} * bitmap.size.height() > maxBitmapPixels(photo))
        return tooLargeBitmap(width, height);
    bitmap.ink = values.image.imageOfSize(bitmap.size);
    if (!bitmap.ink.isNull())
        return bitmap;
    const QString fault = values.pictureFault();
    return fault.isEmpty() ? tooLargeBitmap(width, height) : fail(fault);
}

/// The watermark's bitmap before any turning.
Result<std::optional<WatermarkBitmap>>
createWatermarkForImage(const WPresetValues &values, const PhotoFacts &photo, const FontCatalog &fonts)
{
    const QSize size = photo.pixelSize();
    const float width =
        absoluteValueForSize(static_cast<float>(values.width.value_or(0)), values.widthUnit, size);
    if (values.type == QLatin1StringView("Image"))
        return createImageWatermarkOfWidth(static_cast<double>(width), values, size);
    const std::optional<QString> text = watermarkTextForImage(values, photo);
    if (!text)
        return std::nullopt;
    return createTextWatermarkOfWidth(static_cast<double>(width), values, *text, size, fonts);
}

Result<WatermarkBitmap> turned(const WatermarkBitmap &bitmap, const WPresetValues &values, QSize photo)
{
    const Result<WatermarkBitmap> byAngle =
        turnedByAngle(bitmap, values.angle.value_or(0.0F), maxBitmapPixels(photo));
    if (!byAngle)
        return byAngle;
    return mirrored(turnedByQuarters(*byAngle, values.rotation.value_or(0)), values.flip.value_or(0));
}

/// Black at one third.
QColor shadowColor()
{
    return QColor::fromRgbF(0, 0, 0, 1.0F / 3);
}

} // namespace

void WatermarkDrawing::placeBox(const WPresetValues &values, QSize photo)
{
    if (!m_layout.box || !values.backgroundColor.isValid())
        return;
    const QRectF &box = *m_layout.box;
    QColor color = createCGColorFromColor(values.backgroundColor);
    color.setAlphaF(static_cast<float>(fractionOf(values.backgroundOpacity)));
    m_box = Box{QRectF(box.x(), photo.height() - box.y() - box.height(), box.width(), box.height()), color};
}

Result<void> WatermarkDrawing::castShadow(const WPresetValues &values, QSize photo)
{
    if (!values.shadow || m_mark.isNull())
        return {};
    const double blur = std::max(0, values.shadowBlur.value_or(0));
    // The blur reaches some three standard deviations, of half its size each, to all sides.
    const double width = m_mark.width() + 4 * blur;
    const double height = m_mark.height() + 4 * blur;
    if (width * height > static_cast<double>(maxBitmapPixels(photo)))
        return tooLargeBitmap(width, height);
    m_shadow = shadowOf(m_mark, blur, shadowColor());
    if (m_shadow.image.isNull())
        return tooLargeBitmap(width, height);
    const QPointF offset = m_layout.shadowOffset;
    constexpr double far = kMaxSide;
    m_shadowOffset = QPoint(static_cast<int>(std::round(std::clamp(offset.x(), -far, far))),
                            static_cast<int>(std::round(std::clamp(-offset.y(), -far, far)))) -
                     QPoint(m_shadow.margin, m_shadow.margin);
    return {};
}

void WatermarkDrawing::placeStamps(QSize photo, QPoint inkAt)
{
    if (m_mark.isNull() || !(m_opacity > 0))
        return;
    QRectF reach(QPointF(inkAt), QSizeF(m_mark.size()));
    if (!m_shadow.image.isNull())
        reach |= QRectF(QPointF(inkAt + m_shadowOffset), QSizeF(m_shadow.image.size()));
    const QRectF all(QPointF(0, 0), QSizeF(photo));
    for (const QPointF &copy : m_layout.repeats) {
        const QPointF topLeft(std::round(copy.x()),
                              std::round(photo.height() - copy.y() - m_layout.rect.height()));
        if (reach.translated(topLeft).intersects(all))
            m_stamps.push_back({topLeft.toPoint() + inkAt});
    }
}

Result<std::optional<WatermarkDrawing>> WatermarkDrawing::prepare(const WPresetValues &values,
                                                                  const PhotoFacts &photo,
                                                                  const FontCatalog &fonts,
                                                                  std::optional<QPointF> customOrigin)
{
    const Result<std::optional<WatermarkBitmap>> bitmap = createWatermarkForImage(values, photo, fonts);
    if (!bitmap)
        return tl::unexpected(bitmap.error());
    if (!*bitmap)
        return std::nullopt;
    const QSize size = photo.pixelSize();
    Result<WatermarkBitmap> mark = turned(**bitmap, values, size);
    if (!mark)
        return tl::unexpected(mark.error());

    WatermarkDrawing drawing;
    drawing.m_layout = layoutWatermark(values, size, mark->size, customOrigin);
    if (drawing.m_layout.tooManyRepeats)
        return fail(Texts::tr("the watermark would be repeated too many times; make the distances larger"));
    drawing.m_mark = mark->ink;
    drawing.m_mode = blendModeNamed(values.blendMode);
    drawing.m_opacity = fractionOf(values.opacity);
    drawing.placeBox(values, size);
    if (Result<void> cast = drawing.castShadow(values, size); !cast)
        return tl::unexpected(cast.error());
    drawing.placeStamps(size, mark->inkAt);
    const bool isBoxVisible = drawing.m_box && drawing.m_box->color.alpha() > 0 &&
                              drawing.m_box->rect.intersects(QRectF(QPointF(0, 0), QSizeF(size)));
    drawing.m_isVisible = isBoxVisible || !drawing.m_stamps.empty();
    return drawing;
}

void WatermarkDrawing::drawRows(QImage &rows, int firstRow) const
{
    const int end = firstRow + rows.height();
    const auto touches = [&](int top, int height) { return top < end && top + height > firstRow; };
    if (m_box && m_box->rect.top() < end && m_box->rect.bottom() > firstRow)
        fillRows(rows, firstRow, m_box->rect, m_box->color);
    for (const Stamp &stamp : m_stamps) {
        const QPoint shadowAt = stamp.topLeft + m_shadowOffset;
        if (!m_shadow.image.isNull() && touches(shadowAt.y(), m_shadow.image.height()))
            stampRows(rows, firstRow, m_shadow.image, shadowAt, m_mode, m_opacity);
        if (touches(stamp.topLeft.y(), m_mark.height()))
            stampRows(rows, firstRow, m_mark, stamp.topLeft, m_mode, m_opacity);
    }
}

Result<QImage> createWatermarkOnImage(const QImage &image, const WPresetValues &values,
                                      const PhotoFacts &photo, const FontCatalog &fonts, bool useCustomRect,
                                      QRectF *rect)
{
    const std::optional<QPointF> customOrigin =
        rect && useCustomRect ? std::optional(rect->topLeft()) : std::nullopt;
    const Result<std::optional<WatermarkDrawing>> drawing =
        WatermarkDrawing::prepare(values, photo, fonts, customOrigin);
    if (!drawing)
        return tl::unexpected(drawing.error());
    if (!*drawing)
        return image;
    if (rect)
        *rect = (*drawing)->layout().rect;
    const QSize size = photo.pixelSize();
    QImage marked = image.size() == size ? image.copy()
                                         : createImageScaledToSize(image, size.width(), size.height(), true);
    if (marked.format() != QImage::Format_RGB32)
        marked.convertTo(QImage::Format_ARGB32_Premultiplied);
    if (marked.isNull())
        return fail(Texts::tr("there is not enough memory to draw the watermark"));
    (*drawing)->drawRows(marked, 0);
    return marked;
}

} // namespace plexa
