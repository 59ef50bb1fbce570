// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/imagebrowserview.h"

#include "ui/browser/accessiblegrid.h"
#include "ui/browser/imagebrowserdelegate.h"
#include "ui/browser/imagebrowserdrags.h"
#include "ui/browser/imagebrowserdrawing.h"
#include "ui/browser/imagebrowserinput.h"

#include <QPaintEvent>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace plexa
{
ImageBrowserView::ImageBrowserView(QWidget *parent)
    : QAbstractScrollArea(parent)
    , m_drags(std::make_unique<ImageBrowserDrags>(*this))
    , m_input(std::make_unique<ImageBrowserInput>(*this, *m_drags))
    , m_drawing(std::make_unique<ImageBrowserDrawing>(*this, *m_input, *m_drags))
{
    AccessibleGrid::install();
    setObjectName(QStringLiteral("imageBrowser"));
    setAccessibleName(tr("Images"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // White marks selected images, so the background is darker than a list's.
    viewport()->setBackgroundRole(QPalette::Mid);
    viewport()->setMouseTracking(true);
    viewport()->setAcceptDrops(true);
}

ImageBrowserView::~ImageBrowserView() = default;

void ImageBrowserView::setContextMenu(QMenu *menu)
{
    m_input->setContextMenu(menu);
}

void ImageBrowserView::setImages(std::shared_ptr<const ImageBrowserSource> images)
{
    if (images == m_images)
        return;
    m_images = std::move(images);
    m_drags->listChanged();
    changeSelection([this](BrowserSelection &selection) {
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
    m_showFilenames = show;
    refresh();
}

void ImageBrowserView::setAllowCopying(bool allow)
{
    m_drags->setAllowCopying(allow);
}

void ImageBrowserView::setShowsOriginalOnMouseOver(bool shows)
{
    m_input->setShowsOriginalOnMouseOver(shows);
}

void ImageBrowserView::refresh()
{
    viewport()->update();
}

void ImageBrowserView::fullRefresh()
{
    if (numberImages() != m_selection.count()) {
        m_drags->listChanged();
        changeSelection([this](BrowserSelection &selection) { selection.setCount(numberImages()); });
    }
    computeGridAndFrame();
    refresh();
}

void ImageBrowserView::refreshImageAtIndex(int index)
{
    m_drawing->refreshImageAtIndex(index);
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

/// Adapts layout, scroll bar and scroll range to the list, the zoom and the widget's size.
void ImageBrowserView::computeGridAndFrame()
{
    if (m_isComputing) // called by the viewport's resizing below
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
    if (event->type() == QEvent::StyleChange)
        computeGridAndFrame();
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange)
        refresh();
}

void ImageBrowserView::scrollContentsBy(int, int dy)
{
    // Moves what stays visible and draws only what appears, where points are whole pixels. Elsewhere edges
    // would be rounded to other pixels than in a complete drawing.
    const double ratio = viewport()->devicePixelRatioF();
    if (ratio == std::floor(ratio) && std::abs(dy) < viewport()->height()) {
        m_drawing->scroll(dy);
    } else {
        refresh();
    }
    m_input->gridScrolled();
    m_drags->gridScrolled();
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

void ImageBrowserView::paintEvent(QPaintEvent *event)
{
    if (numberImages() != m_geometry.count())
        fullRefresh();
    m_drawing->paint(event->rect());
    reportVisibleImages();
}

void ImageBrowserView::reportVisibleImages()
{
    const GridGeometry::Range range = m_geometry.cellsInRows(visibleRect());
    const std::array visible{range.first, range.end,
                             qRound(m_geometry.cellSize() * viewport()->devicePixelRatioF())};
    if (m_delegate && std::exchange(m_visible, visible) != visible)
        m_delegate->visibleImagesDidChangeTo(range.first, range.end, visible[2]);
}

// ---- selection

void ImageBrowserView::changeSelection(const std::function<void(BrowserSelection &)> &change)
{
    const BrowserSelection before = m_selection;
    change(m_selection);
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

void ImageBrowserView::selectAll()
{
    changeSelection([](BrowserSelection &selection) { selection.selectAll(); });
}

void ImageBrowserView::selectNone()
{
    changeSelection([](BrowserSelection &selection) { selection.selectNone(); });
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

void ImageBrowserView::selectNeighbourImage(bool next, Qt::KeyboardModifiers modifiers)
{
    const auto mode = BrowserSelection::modeOf(modifiers);
    changeSelection([&](BrowserSelection &selection) { selection.stepTo(next, mode); });
}

void ImageBrowserView::copy()
{
    if (m_delegate && !selectionIndexes().isEmpty())
        m_delegate->copy();
}

// ---- events

bool ImageBrowserView::viewportEvent(QEvent *event)
{
    return m_input->handle(*event) || m_drags->handle(*event) || QAbstractScrollArea::viewportEvent(event);
}

void ImageBrowserView::keyPressEvent(QKeyEvent *event)
{
    if (!m_input->key(*event))
        QAbstractScrollArea::keyPressEvent(event);
}

} // namespace plexa
