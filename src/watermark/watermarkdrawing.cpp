// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/watermarkdrawing.h"

#include "raster/bitmaputilities.h"
#include "watermark/texttokens.h"
#include "watermark/textwatermark.h"
#include "watermark/watermarkbitmap.h"
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

/// Longer sides and distances cannot be drawn.
constexpr double kMaxSide = 1e9;

double fractionOf(WholeNumber percent)
{
    return std::clamp(percent.value_or(0) / 100.0, 0.0, 1.0);
}

/// @param image  Format_ARGB32_Premultiplied
bool isTransparent(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        if (std::any_of(row, row + image.width(), [](QRgb pixel) { return qAlpha(pixel) != 0; }))
            return false;
    }
    return true;
}

/// How much finer than the target marks are rendered: at full size they are on whole pixels; a mark as large
/// as the photo must not need more memory than at full size, or than 32 million pixels.
int finerFor(QSize photo, double scale)
{
    const double full = double(photo.width()) * photo.height();
    return scale < 1 && 4 * scale * scale * full <= std::max(full, 32e6) ? 2 : 1;
}

QSize renderedSize(QSize size, double scale)
{
    return (QSizeF(size) * scale).toSize().expandedTo(QSize(1, 1));
}

Result<std::optional<WatermarkBitmap>> createImageWatermarkOfWidth(double width, const WPresetValues &values,
                                                                   const Rendering &rendering)
{
    if (values.image.isNull())
        return std::nullopt;
    const QSizeF picture = values.image.size();
    if (picture.isEmpty())
        return fail(values.pictureFault());
    const double height = width / picture.width() * picture.height();
    if (!(width >= 1 && height >= 1))
        return std::nullopt;
    const double scale = rendering.scale;
    const auto tooLarge = [&](QSizeF size) { return leftOut(size * scale, rendering); };
    if (width > kMaxSide || height > kMaxSide)
        return tooLarge({width, height});
    WatermarkBitmap bitmap;
    bitmap.size = QSize(static_cast<int>(width), static_cast<int>(height));
    bitmap.scale = scale;
    if (rendering.isTooLarge(QSizeF(bitmap.size) * scale))
        return tooLarge(bitmap.size);
    const QSize rendered = renderedSize(bitmap.size, scale);
    const QSizeF box = tiltedBox(bitmap.size, rendering.tilt);
    if (rendering.isTooLarge(box * scale))
        return tooLarge(box);
    bitmap.ink = values.image.imageOfSize(rendered, rendering.isCanceled, rendering.tilt);
    if (bitmap.ink.isNull()) {
        const QString fault = values.pictureFault();
        return fault.isEmpty() ? noMemory() : fail(fault);
    }
    if (rendering.tilt == 0)
        return bitmap;
    const QSizeF margins = box * scale - tiltedBox(rendered, rendering.tilt);
    bitmap.size = QSize(static_cast<int>(box.width()), static_cast<int>(box.height()));
    if (scale != 1)
        bitmap.inkAt = QPointF(margins.width(), margins.height()) / 2;
    return bitmap;
}

/// The watermark's bitmap, freely tilted, before rotation.
Result<std::optional<WatermarkBitmap>> createWatermarkForImage(const WPresetValues &values,
                                                               const PhotoFacts &photo,
                                                               const FontCatalog &fonts,
                                                               const Rendering &rendering)
{
    const float width =
        absoluteValueForSize(static_cast<float>(values.width.value_or(0)), values.widthUnit, rendering.photo);
    if (values.type == QLatin1StringView("Image"))
        return createImageWatermarkOfWidth(static_cast<double>(width), values, rendering);
    const std::optional<QString> text = watermarkTextForImage(values, photo);
    if (!text)
        return std::nullopt;
    return createTextWatermarkOfWidth(static_cast<double>(width), values, *text, fonts, rendering);
}

WatermarkBitmap turned(const WatermarkBitmap &bitmap, const WPresetValues &values)
{
    const WatermarkBitmap byAngle = turnedByAngle(bitmap, values.angle.value_or(0.0F));
    return mirrored(turnedByQuarters(byAngle, values.rotation.value_or(0)), values.flip.value_or(0));
}

/// Black at one third.
QColor shadowColor()
{
    return QColor::fromRgbF(0, 0, 0, 1.0F / 3);
}

/// Beyond every photo for a length that is no number.
int roundedPixels(double length)
{
    if (std::isnan(length))
        return static_cast<int>(kMaxSide);
    return static_cast<int>(std::round(std::clamp(length, -kMaxSide, kMaxSide)));
}

} // namespace

void WatermarkDrawing::placeBox()
{
    m_box.reset();
    if (!m_layout.box || !m_values.backgroundColor.isValid())
        return;
    const QRectF &box = *m_layout.box;
    QColor color = m_values.backgroundColor.toRgb();
    color.setAlphaF(static_cast<float>(fractionOf(m_values.backgroundOpacity)));
    const double top = m_photo.height() - box.y() - box.height();
    m_box =
        Box{QRectF(box.x() * m_scale, top * m_scale, box.width() * m_scale, box.height() * m_scale), color};
}

void WatermarkDrawing::castShadow(const CancelCheck &isCanceled)
{
    if (!m_values.shadow || m_mark.image.isNull())
        return;
    const QImage image = m_mark.image.imageAt({0, 0});
    const Rendering rendering{m_photo, m_scale, isCanceled};
    const double blur = std::max(0, m_values.shadowBlur.value_or(0)) * m_scale;
    // The blur reaches some three standard deviations, of half its size each, to all sides.
    const QSizeF size = QSizeF(image.size()) + QSizeF(4 * blur, 4 * blur);
    if (!rendering.isTooLarge(size))
        m_mark.shadow = shadowOf(image, blur, shadowColor(), isCanceled);
    if (m_mark.shadow.image.isNull()) {
        m_notices.append(Texts::tr("the shadow of the watermark is left out: it would be too large"));
        return;
    }
    const QPointF offset = m_layout.shadowOffset * m_scale;
    m_mark.shadowOffset = QPoint(roundedPixels(offset.x()), roundedPixels(-offset.y())) -
                          QPoint(m_mark.shadow.margin, m_mark.shadow.margin);
}

QRect WatermarkDrawing::reach() const
{
    const QRect image(QPoint(0, 0), m_mark.image.largestSize());
    return m_mark.shadow.image.isNull() ? image
                                        : image | QRect(m_mark.shadowOffset, m_mark.shadow.image.size());
}

QPoint WatermarkDrawing::stampAt(qint64 column, qint64 row) const
{
    const QPointF copy = m_layout.repeats.at(column, row);
    // Saved copies are on whole photo pixels, which keeps text sharp.
    const QPointF corner(std::round(copy.x()),
                         std::round(m_photo.height() - copy.y() - m_layout.rect.height()));
    const QPointF at = corner * m_scale * m_finer + m_mark.at;
    return {roundedPixels(at.x()), roundedPixels(at.y())};
}

WatermarkDrawing::Stamps WatermarkDrawing::stampsIn(const QRect &part) const
{
    const Repeats &repeats = m_layout.repeats;
    if (m_mark.image.isNull() || !(m_mark.opacity > 0))
        return {};
    const QRect reach = this->reach();
    const auto firstOf = [](qint64 count, const auto &isBefore) {
        qint64 first = 0;
        while (first < count) {
            const qint64 middle = first + (count - first) / 2;
            if (isBefore(middle))
                first = middle + 1;
            else
                count = middle;
        }
        return first;
    };
    // Columns run to the right, rows up.
    const auto right = [&](qint64 c) { return pixelOf(c, 0).x() + reach.right(); };
    const auto top = [&](qint64 r) { return pixelOf(0, r).y() + reach.top(); };
    return {firstOf(repeats.columns, [&](qint64 c) { return right(c) < part.left(); }),
            firstOf(repeats.columns, [&](qint64 c) { return right(c) - reach.width() < part.right(); }),
            firstOf(repeats.rows, [&](qint64 r) { return top(r) > part.bottom(); }),
            firstOf(repeats.rows, [&](qint64 r) { return top(r) + reach.height() > part.top(); })};
}

void WatermarkDrawing::layOut(std::optional<QPointF> customOrigin)
{
    m_layout = layoutWatermark(m_values, m_photo, m_size, customOrigin);
    placeBox();
}

QStringList WatermarkDrawing::notices() const
{
    QStringList notices = m_notices;
    if (m_layout.tooManyRepeats)
        notices.append(Texts::tr("the watermark is drawn once: it would be repeated too many times; make the "
                                 "distances larger"));
    return notices;
}

Result<std::optional<WatermarkDrawing>> WatermarkDrawing::prepare(const MarkOrder &order,
                                                                  const PhotoFacts &photo,
                                                                  const FontCatalog &fonts,
                                                                  const DrawingOptions &options)
{
    const int finer = finerFor(photo.pixelSize(), options.scale);
    const Rendering rendering{photo.pixelSize(), options.scale * finer, options.isCanceled,
                              freeTilt(order.values.angle.value_or(0.0F)).value_or(0)};
    const auto failed = [&](const Error &error) {
        return fail(canceled(options.isCanceled) ? canceledText() : error.text);
    };
    const Result<std::optional<WatermarkBitmap>> bitmap =
        createWatermarkForImage(order.values, photo, fonts, rendering);
    if (!bitmap)
        return failed(bitmap.error());
    if (!*bitmap)
        return std::nullopt;
    const WatermarkBitmap mark = turned(**bitmap, order.values);

    WatermarkDrawing drawing;
    drawing.m_values = order.values;
    drawing.m_photo = rendering.photo;
    drawing.m_scale = options.scale;
    drawing.m_finer = finer;
    drawing.m_size = mark.size;
    drawing.m_notices = mark.notices;
    drawing.m_mark.image = FineMark(isTransparent(mark.ink) ? QImage() : mark.ink, finer);
    drawing.m_mark.at = mark.inkAt;
    drawing.m_mark.mode = blendModeNamed(order.values.blendMode);
    drawing.m_mark.opacity = fractionOf(order.values.opacity);
    drawing.layOut(order.customOrigin);
    drawing.castShadow(options.isCanceled);
    if (canceled(options.isCanceled))
        return fail(canceledText());
    return drawing;
}

std::vector<Result<std::optional<WatermarkDrawing>>>
WatermarkDrawing::prepareEach(std::span<const MarkOrder> orders, const PhotoFacts &photo,
                              const FontCatalog &fonts, const DrawingOptions &options)
{
    std::vector<Result<std::optional<WatermarkDrawing>>> drawings;
    for (const MarkOrder &order : orders)
        drawings.push_back(prepare(order, photo, fonts, options));
    return drawings;
}

WatermarkDrawing WatermarkDrawing::movedTo(QPointF origin) const
{
    WatermarkDrawing moved = *this;
    moved.layOut(origin);
    return moved;
}

QRect WatermarkDrawing::coveredRect() const
{
    QRect covered;
    if (m_box && m_box->color.alpha() > 0)
        covered = m_box->rect.intersected(target()).toAlignedRect();
    const QRect all = target().toAlignedRect();
    const Stamps stamps = stampsIn(all);
    if (stamps.isEmpty())
        return covered;
    const QRect first = reach().translated(pixelOf(stamps.firstColumn, stamps.firstRow));
    const QRect last = reach().translated(pixelOf(stamps.endColumn - 1, stamps.endRow - 1));
    return covered | ((first | last) & all);
}

void WatermarkDrawing::drawRows(QImage &rows, int firstRow, int firstColumn) const
{
    const int end = firstRow + rows.height();
    if (m_box && m_box->rect.top() < end && m_box->rect.bottom() > firstRow)
        fillRows(rows, firstRow, m_box->rect.translated(-firstColumn, 0), m_box->color);
    const Stamps stamps = stampsIn(QRect(firstColumn, firstRow, rows.width(), rows.height()));
    for (qint64 column = stamps.firstColumn; column < stamps.endColumn; ++column) {
        for (qint64 row = stamps.firstRow; row < stamps.endRow; ++row) {
            const QPoint at = stampAt(column, row);
            const QPoint stamp = m_mark.image.pixelAt(at) - QPoint(firstColumn, 0);
            if (!m_mark.shadow.image.isNull())
                stampRows(rows, firstRow, m_mark.shadow.image, stamp + m_mark.shadowOffset, m_mark.mode,
                          m_mark.opacity);
            stampRows(rows, firstRow, m_mark.image.imageAt(at), stamp, m_mark.mode, m_mark.opacity);
        }
    }
}

Result<QImage> createWatermarkOnImage(const QImage &image, const WPresetValues &values,
                                      const PhotoFacts &photo, const FontCatalog &fonts, bool useCustomRect,
                                      QRectF *rect)
{
    const std::optional<QPointF> customOrigin =
        rect && useCustomRect ? std::optional(rect->topLeft()) : std::nullopt;
    const Result<std::optional<WatermarkDrawing>> drawing =
        WatermarkDrawing::prepare({values, customOrigin}, photo, fonts);
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
        return noMemory();
    (*drawing)->drawRows(marked, 0);
    return marked;
}

} // namespace plexa
