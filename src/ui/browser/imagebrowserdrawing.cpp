// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/imagebrowserdrawing.h"

#include "ui/browser/imagebrowserdrags.h"
#include "ui/browser/imagebrowserinput.h"
#include "ui/browser/imagebrowserview.h"
#include "ui/widgets/emptyhint.h"
#include "ui/widgets/look.h"

#include <QPainter>

#include <utility>

namespace plexa
{
namespace
{

/// How far a shadow reaches beyond its cell, in points.
constexpr double kShadowReach = 24;

QRectF withShadow(const QRectF &rect)
{
    return rect.adjusted(-kShadowReach, -kShadowReach, kShadowReach, kShadowReach);
}

} // namespace

ImageBrowserDrawing::ImageBrowserDrawing(ImageBrowserView &view, const ImageBrowserInput &input,
                                         const ImageBrowserDrags &drags)
    : m_view(view)
    , m_input(input)
    , m_drags(drags)
{
    m_refineTimer.setSingleShot(true);
    m_refineTimer.setInterval(0);
    QObject::connect(&m_refineTimer, &QTimer::timeout, &m_refineTimer,
                     [this] { m_view.viewport()->update(std::exchange(m_rough, {})); });
}

void ImageBrowserDrawing::refreshImageAtIndex(int index)
{
    if (const auto cell = m_view.cellForIndex(index))
        m_view.viewport()->update(withShadow(m_view.viewportRect(*cell)).toAlignedRect());
}

void ImageBrowserDrawing::scroll(int dy)
{
    m_rough.translate(0, dy);
    m_view.viewport()->scroll(0, dy);
}

void ImageBrowserDrawing::paint(const QRect &rect)
{
    QWidget *viewport = m_view.viewport();
    if (m_view.geometry().count() == 0) {
        paintEmptyHint(viewport, ImageBrowserView::tr("Drag & drop images here"));
        return;
    }
    QPainter painter(viewport);
    const QPalette &palette = m_view.palette();
    const QColor text = palette.color(QPalette::WindowText);
    const GridStyle style{m_view.showFilenames(), m_view.font(), text, look::kMark,
                          m_view.hasFocus() ? look::kMark : text};
    const QPointF origin = m_view.visibleRect().topLeft();
    GridPainter grid(painter, m_view.geometry(), style, m_pictures, m_names,
                     {origin, viewport->devicePixelRatioF()});
    drawCells(grid, withShadow(QRectF(rect).translated(origin)));
    if (!m_rough.isEmpty())
        m_refineTimer.start();
}

/// @param dirty  of the grid; what does not meet it is not drawn
void ImageBrowserDrawing::drawCells(GridPainter &painter, const QRectF &dirty)
{
    const GridGeometry &geometry = m_view.geometry();
    const GridGeometry::Range range = geometry.cellsInRows(dirty);
    if (const int index = m_drags.insertionIndex(); index != BrowserSelection::kNone)
        painter.drawInsertionBar(geometry.insertionBar(index));
    if (const auto &band = m_input.rubberBand())
        painter.drawRubberBand(*band);
    for (int i = range.first; i < range.end; ++i) {
        const QRectF cell = *geometry.cell(i);
        if (cell.intersects(dirty) && !painter.drawCell(cell, contentsOf(i, cell)))
            m_rough += m_view.viewportRect(cell).toAlignedRect();
    }
}

CellContents ImageBrowserDrawing::contentsOf(int index, const QRectF &cell) const
{
    using Kind = ImageBrowserSource::ThumbnailKind;
    const ImageBrowserSource &images = *m_view.images();
    CellContents contents;
    contents.thumbnail =
        images.thumbnail(index, index == m_input.showOriginalAtIndex() ? Kind::Original : Kind::Watermarked);
    if (m_view.showFilenames())
        contents.filename = images.filename(index);
    const auto &band = m_input.rubberBand();
    contents.isSelected = m_view.isIndexSelected(index) || (band && cell.intersects(*band));
    contents.hasFocus = index == m_view.focusImageIndex();
    return contents;
}

} // namespace plexa
