// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/imagebrowserview.h"

#include "ui/browser/accessiblegrid.h"
#include "ui/browser/imagebrowserdelegate.h"
#include "ui/browser/privatefolders.h"

#include <QMenu>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace plexa
{
namespace
{

/// Of the time of a frame, what may go into scaling thumbnails and laying out names.
constexpr int kSharpMilliseconds = 5;
/// How far a shadow reaches beyond its cell, in points.
constexpr double kShadowReach = 24;
constexpr int kAutoscrollMilliseconds = 30;

} // namespace

ImageBrowserView::ImageBrowserView(QWidget *parent)
    : QAbstractScrollArea(parent)
    , m_folders(std::make_shared<PrivateFolders>())
{
    AccessibleGrid::install();
    setObjectName(QStringLiteral("imageBrowser"));
    setAccessibleName(tr("Images"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // White marks what is selected, so the ground is darker than a list's.
    viewport()->setBackgroundRole(QPalette::Mid);
    viewport()->setMouseTracking(true);
    viewport()->setAcceptDrops(true);
    m_style.font = font();

    m_refineTimer.setSingleShot(true);
    m_refineTimer.setInterval(0);
    connect(&m_refineTimer, &QTimer::timeout, this, [this] {
        const QRegion rough = std::exchange(m_rough, {});
        viewport()->update(rough);
    });
    m_autoscrollTimer.setInterval(kAutoscrollMilliseconds);
    connect(&m_autoscrollTimer, &QTimer::timeout, this, &ImageBrowserView::autoscroll);
}

ImageBrowserView::~ImageBrowserView() = default;

void ImageBrowserView::setContextMenu(QMenu *menu)
{
    m_contextMenu = menu;
}

void ImageBrowserView::setImages(std::shared_ptr<const ImageBrowserSource> images)
{
    if (images == m_images)
        return;
    m_images = std::move(images);
    m_isDragStale = true;
    change([this](BrowserSelection &selection) {
        selection.selectNone();
        selection.setCount(numberImages());
    });
    fullRefresh();
}

int ImageBrowserView::numberImages() const
{
    return m_images ? m_images->count() : 0;
}

QString ImageBrowserView::filename(int index) const
{
    return index >= 0 && index < numberImages() ? m_images->filename(index) : QString();
}

void ImageBrowserView::setZoomFactor(float zoomFactor)
{
    m_zoomFactor = zoomFactor > 0 ? std::min(zoomFactor, 1.0F) : 0.0F;
    const bool wasFocusVisible = cellIsVisible(focusImageIndex());
    const double middle = visibleRect().center().y() / std::max(1.0, m_geometry.height());
    computeGridAndFrame();
    if (wasFocusVisible)
        scrollFocusImageToVisible();
    else
        scrollTo(middle * m_geometry.height() - visibleRect().height() / 2);
    refresh();
}

void ImageBrowserView::setShowFilenames(bool show)
{
    m_style.showFilenames = show;
    refresh();
}

void ImageBrowserView::setGridStyle(const GridStyle &style)
{
    m_style = style;
    refresh();
}

void ImageBrowserView::refresh()
{
    viewport()->update();
}

void ImageBrowserView::fullRefresh()
{
    if (numberImages() != m_selection.count()) {
        m_isDragStale = true;
        change([this](BrowserSelection &selection) { selection.setCount(numberImages()); });
    }
    computeGridAndFrame();
    refresh();
}

void ImageBrowserView::refreshImageAtIndex(int index)
{
    if (const auto cell = cellForIndex(index))
        viewport()->update(viewportRect(*cell)
                               .adjusted(-kShadowReach, -kShadowReach, kShadowReach, kShadowReach)
                               .toAlignedRect());
}

void ImageBrowserView::refreshImage(const void *image)
{
    if (m_images)
        refreshImageAtIndex(m_images->indexOf(image));
}

QRectF ImageBrowserView::visibleRect() const
{
    return {QPointF(0, verticalScrollBar()->value()), QSizeF(viewport()->size())};
}

QPointF ImageBrowserView::gridPoint(QPointF viewportPoint) const
{
    return viewportPoint + visibleRect().topLeft();
}

QRectF ImageBrowserView::viewportRect(const QRectF &gridRect) const
{
    return gridRect.translated(-visibleRect().topLeft());
}

bool ImageBrowserView::cellIsVisible(int index) const
{
    const auto cell = cellForIndex(index);
    return cell && cell->intersects(visibleRect());
}

void ImageBrowserView::scrollCellToVisible(int index)
{
    const auto cell = cellForIndex(index);
    if (!cell)
        return;
    // With the margin above the first and below the last row.
    const double margin = m_geometry.cell(0)->top();
    const QRectF visible = visibleRect();
    const double top = cell->top() - margin;
    const double bottom = cell->bottom() + margin;
    if (top < visible.top() || bottom - top > visible.height())
        scrollTo(top);
    else if (bottom > visible.bottom())
        scrollTo(bottom - visible.height());
}

void ImageBrowserView::scrollTo(double top)
{
    verticalScrollBar()->setValue(static_cast<int>(std::lround(top)));
}

/// Fits layout, scroll bar and scroll range to the list, the zoom and the widget's size.
void ImageBrowserView::computeGridAndFrame()
{
    if (m_isComputing) // by the viewport's change of size, below
        return;
    m_isComputing = true;
    QScrollBar *bar = verticalScrollBar();
    m_geometry = GridGeometry::besideScrollBar(numberImages(), QSizeF(contentsRect().size()),
                                               bar->sizeHint().width(), m_zoomFactor);
    setVerticalScrollBarPolicy(m_geometry.needsScrollBar() ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    const int height = contentsRect().height();
    bar->setRange(0, static_cast<int>(std::ceil(m_geometry.height() - height)));
    bar->setPageStep(std::max(1, height));
    bar->setSingleStep(static_cast<int>(std::max(16.0, std::min(m_geometry.cellSize() / 2, 60.0))));
    m_isComputing = false;
}

void ImageBrowserView::resizeEvent(QResizeEvent *)
{
    const double middle = visibleRect().center().y() / std::max(1.0, m_geometry.height());
    const bool isAtTop = verticalScrollBar()->value() == 0;
    computeGridAndFrame();
    if (!isAtTop)
        scrollTo(middle * m_geometry.height() - visibleRect().height() / 2);
}

void ImageBrowserView::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        m_style.font = font();
    if (event->type() == QEvent::StyleChange)
        computeGridAndFrame();
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange)
        refresh();
}

void ImageBrowserView::scrollContentsBy(int, int dy)
{
    // What stays is moved and only what appears is drawn, where points are whole pixels: else edges would be
    // rounded to other pixels than in a picture drawn anew.
    const double ratio = viewport()->devicePixelRatioF();
    if (ratio == std::floor(ratio) && std::abs(dy) < viewport()->height()) {
        m_rough.translate(0, dy);
        viewport()->scroll(0, dy);
    } else {
        refresh();
    }
    lookAgain();
}

void ImageBrowserView::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    refreshImageAtIndex(focusImageIndex());
}

void ImageBrowserView::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    refreshImageAtIndex(focusImageIndex());
}

// ---- drawing

CellContents ImageBrowserView::contentsOf(int index) const
{
    const auto kind = index == m_showOriginalAtIndex ? ImageBrowserSource::ThumbnailKind::Original
                                                     : ImageBrowserSource::ThumbnailKind::Watermarked;
    CellContents contents;
    contents.thumbnail = m_images->thumbnail(index, kind);
    if (m_style.showFilenames)
        contents.filename = m_images->filename(index);
    const auto cell = cellForIndex(index);
    contents.isSelected =
        isIndexSelected(index) || (m_mouseSelectionRect && cell && cell->intersects(*m_mouseSelectionRect));
    contents.hasFocusRing = hasFocus() && index == focusImageIndex();
    return contents;
}

void ImageBrowserView::paintEvent(QPaintEvent *event)
{
    if (numberImages() != m_geometry.count())
        fullRefresh();
    QPainter painter(viewport());
    if (m_geometry.count() == 0) {
        GridPainter::drawEmptyText(painter, QRectF(viewport()->rect()), font(),
                                   tr("Drag & drop images here"));
        return;
    }

    GridStyle style = m_style;
    if (!style.textColor.isValid())
        style.textColor = palette().color(QPalette::WindowText);
    if (!style.focusColor.isValid())
        style.focusColor = palette().color(QPalette::Highlight);
    GridPainter grid(painter, m_geometry, style, m_pictures, m_names,
                     {visibleRect().topLeft(), viewport()->devicePixelRatioF()});
    grid.setTime(kSharpMilliseconds);

    const QRectF dirty = QRectF(event->rect())
                             .translated(visibleRect().topLeft())
                             .adjusted(-kShadowReach, -kShadowReach, kShadowReach, kShadowReach);
    const GridGeometry::Range range = m_geometry.cellsInRows(dirty);
    if (style.drawCells)
        for (int i = range.first; i < range.end; ++i)
            grid.drawTint(*cellForIndex(i));
    if (m_drawnInsertionIndex != kNone)
        grid.drawInsertionBar(m_geometry.insertionBar(m_drawnInsertionIndex, style.insertionHintWidth));
    if (m_mouseSelectionRect)
        grid.drawRubberBand(*m_mouseSelectionRect);
    for (int i = range.first; i < range.end; ++i) {
        const QRectF cell = *cellForIndex(i);
        if (cell.intersects(dirty) && !grid.drawCell(cell, contentsOf(i)))
            m_rough += viewportRect(cell).toAlignedRect();
    }
    if (!m_rough.isEmpty())
        m_refineTimer.start();
}

// ---- selection

template<class Change>
void ImageBrowserView::change(const Change &apply)
{
    const BrowserSelection before = m_selection;
    apply(m_selection);
    tellOfChange(before);
}

void ImageBrowserView::tellOfChange(const BrowserSelection &before)
{
    const BrowserSelection now = m_selection; // the delegate may change it
    if (now == before)
        return;
    refresh();
    AccessibleGrid::announceChange(*this, before, now);
    if (!m_delegate)
        return;
    if (now.indexes() != before.indexes())
        m_delegate->selectionDidChangeTo(now.indexes());
    if (now.focus() != before.focus())
        m_delegate->focusImageDidChangeTo(now.focus(), before.focus());
}

void ImageBrowserView::selectIndex(int index, bool extend, int allFromIndex)
{
    m_selection.select(index, extend, allFromIndex);
    refresh();
    if (m_delegate)
        m_delegate->selectionDidChangeTo(QList<int>(selectionIndexes()));
}

void ImageBrowserView::selectIndex(int index)
{
    selectIndex(index, false, kNone);
    if (m_delegate)
        m_delegate->selectionDidChangeTo(QList<int>(selectionIndexes()));
}

void ImageBrowserView::selectIndexes(const QList<int> &indexes, bool extend)
{
    change([&](BrowserSelection &selection) { selection.select(indexes, extend); });
}

void ImageBrowserView::deselectIndexes(int from, int to)
{
    change([&](BrowserSelection &selection) { selection.deselect(from, to); });
}

void ImageBrowserView::selectAll()
{
    change([](BrowserSelection &selection) { selection.selectAll(); });
}

void ImageBrowserView::selectNone()
{
    change([](BrowserSelection &selection) { selection.selectNone(); });
}

void ImageBrowserView::invertSelection()
{
    change([](BrowserSelection &selection) { selection.invert(); });
    scrollFocusImageToVisible();
}

void ImageBrowserView::setFocusImageIndex(int index)
{
    change([&](BrowserSelection &selection) { selection.setFocus(index); });
}

void ImageBrowserView::purgeFocusImageIndex()
{
    m_selection.setFocus(kNone);
    refresh();
}

void ImageBrowserView::takeSelection(const QList<int> &indexes, int focus)
{
    const BrowserSelection before = m_selection;
    m_selection.setCount(numberImages());
    m_selection.select(indexes, false);
    m_selection.setFocus(focus);
    if (!(m_selection == before)) {
        refresh();
        AccessibleGrid::announceChange(*this, before, m_selection);
    }
}

void ImageBrowserView::copy()
{
    if (m_delegate && !selectionIndexes().isEmpty())
        m_delegate->copy();
}

} // namespace plexa
