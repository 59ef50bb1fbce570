// SPDX-License-Identifier: GPL-3.0-or-later

// What the mouse, the keyboard and the trackpad do in the grid; drags are in imagebrowserdrags.cpp.

#include "ui/browser/imagebrowserdelegate.h"
#include "ui/browser/imagebrowserview.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QScrollBar>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace plexa
{
namespace
{

constexpr float kZoomOfWheelNotch = 0.05F;
constexpr double kWheelNotch = 120; // eighths of a degree
constexpr double kQuarterTurnAt = 45;
/// A sideways stroke with several fingers is a swipe from so many points on.
constexpr double kSwipeLength = 60;
constexpr int kSwipeFingers = 3;
/// How near to an edge a drag scrolls.
constexpr double kDragScrollMargin = 24;
constexpr double kMaxAutoscrollStep = 60;

BrowserSelection::Mode modeOf(Qt::KeyboardModifiers modifiers)
{
    if (modifiers & Qt::ShiftModifier)
        return BrowserSelection::Mode::Range;
    return modifiers & Qt::ControlModifier ? BrowserSelection::Mode::Extend : BrowserSelection::Mode::Replace;
}

} // namespace

// ---- mouse

void ImageBrowserView::press(int index, Qt::KeyboardModifiers modifiers, Qt::MouseButton button)
{
    if (index == kNone) {
        if (button != Qt::RightButton)
            selectNone();
        return;
    }
    auto mode = modeOf(modifiers);
    // Ctrl takes a selected one out, with Shift as well.
    if (modifiers & Qt::ControlModifier && isIndexSelected(index))
        mode = BrowserSelection::Mode::Extend;
    const BrowserSelection before = m_selection;
    m_selection.press(index, mode);
    tellOfChange(before);
}

void ImageBrowserView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton && event->button() != Qt::RightButton) {
        event->ignore();
        return;
    }
    endRubberBand(false);
    m_mouseDownPoint = gridPoint(event->position());
    const int index = cellIndexAtPoint(m_mouseDownPoint);
    m_mouseDownAtImage = index != kNone;
    m_isBandAllowed = !m_mouseDownAtImage;
    m_isDoubleClick = false;
    press(index, event->modifiers(), event->button());
}

void ImageBrowserView::mouseDoubleClickEvent(QMouseEvent *event)
{
    mousePressEvent(event);
    m_isDoubleClick = event->button() == Qt::LeftButton && m_mouseDownAtImage;
}

void ImageBrowserView::mouseMoveEvent(QMouseEvent *event)
{
    m_pointer = event->position();
    const QPointF point = gridPoint(m_pointer);
    if (!(event->buttons() & Qt::LeftButton)) {
        endRubberBand(true); // the release went to somebody else, such as a message that came up
        if (event->buttons() == Qt::NoButton)
            setShowOriginalAtIndex(m_showsOriginalOnMouseOver ? cellIndexAtPoint(point) : kNone);
        return;
    }
    if (!m_mouseDownAtImage) {
        if (!m_isBandAllowed)
            return;
        stretchRubberBand(m_pointer);
        if (!m_autoscrollTimer.isActive())
            m_autoscrollTimer.start();
    } else if (!m_isDraggingImages && m_delegate && !selectionIndexes().isEmpty() &&
               (point - m_mouseDownPoint).manhattanLength() >= QApplication::startDragDistance() &&
               m_delegate->shouldDragPromisedFiles()) {
        startDrag(m_pointer);
    }
}

void ImageBrowserView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton) // it was another button
        return;
    endRubberBand(true);
    const bool isDoubleClick = std::exchange(m_isDoubleClick, false);
    if (event->button() == Qt::LeftButton && isDoubleClick && m_delegate)
        m_delegate->focusImageDoubleClicked();
    const int index = cellIndexAtPoint(gridPoint(event->position()));
    if (index != kNone && index == focusImageIndex())
        scrollFocusImageToVisible();
    m_isDraggingImages = false;
}

void ImageBrowserView::stretchRubberBand(QPointF viewportPoint)
{
    m_mouseSelectionRect = QRectF(m_mouseDownPoint, gridPoint(viewportPoint)).normalized();
    refresh();
}

void ImageBrowserView::endRubberBand(bool selects)
{
    m_autoscrollTimer.stop();
    const auto band = std::exchange(m_mouseSelectionRect, std::nullopt);
    if (!band)
        return;
    refresh();
    if (!selects)
        return;
    QList<int> caught;
    const GridGeometry::Range range = m_geometry.cellsInRows(*band);
    for (int i = range.first; i < range.end; ++i)
        if (cellForIndex(i)->intersects(*band))
            caught.append(i);
    if (caught.isEmpty())
        return;
    const BrowserSelection before = m_selection;
    m_selection.select(caught, true);
    // Arrow keys and the preview go on from there.
    if (m_selection.focus() == kNone)
        m_selection.setFocus(caught.first());
    tellOfChange(before);
}

void ImageBrowserView::autoscroll()
{
    if (const QWidget *modal = QApplication::activeModalWidget(); modal && modal != window()) {
        endRubberBand(true);
        return;
    }
    const QRectF area(viewport()->rect());
    const double margin = m_mouseSelectionRect ? 0 : kDragScrollMargin;
    const double above = area.top() + margin - m_pointer.y();
    const double below = m_pointer.y() - (area.bottom() - margin);
    const double distance = above > 0 ? -above : std::max(0.0, below);
    if (distance == 0)
        return;
    const double step = std::clamp(distance, -kMaxAutoscrollStep, kMaxAutoscrollStep);
    verticalScrollBar()->setValue(verticalScrollBar()->value() + static_cast<int>(std::lround(step)));
}

/// The pointer rests, but what is below it has moved.
void ImageBrowserView::lookAgain()
{
    if (m_mouseSelectionRect)
        stretchRubberBand(m_pointer);
    if (m_drawnInsertionIndex != kNone)
        setDrawnInsertionIndex(insertionIndexAtPoint(gridPoint(m_pointer)));
}

void ImageBrowserView::setShowsOriginalOnMouseOver(bool shows)
{
    m_showsOriginalOnMouseOver = shows;
    if (!shows)
        setShowOriginalAtIndex(kNone);
}

void ImageBrowserView::setShowOriginalAtIndex(int index)
{
    if (index == m_showOriginalAtIndex)
        return;
    m_showOriginalAtIndex = index;
    refresh();
}

void ImageBrowserView::contextMenuEvent(QContextMenuEvent *event)
{
    if (!m_contextMenu) {
        QAbstractScrollArea::contextMenuEvent(event);
        return;
    }
    QPoint at = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        scrollFocusImageToVisible();
        const auto cell = cellForIndex(focusImageIndex());
        at = viewport()->mapToGlobal(cell ? viewportRect(*cell).center().toPoint()
                                          : viewport()->rect().center());
    }
    m_contextMenu->popup(at);
}

void ImageBrowserView::wheelEvent(QWheelEvent *event)
{
    if (!(event->modifiers() & Qt::ControlModifier)) {
        QAbstractScrollArea::wheelEvent(event);
        return;
    }
    const auto notches = static_cast<float>(event->angleDelta().y() / kWheelNotch);
    if (m_delegate && notches != 0)
        m_delegate->changedZoomFactorTo(m_zoomFactor + notches * kZoomOfWheelNotch);
    event->accept();
}

bool ImageBrowserView::showToolTip(QPoint viewportPoint, QPoint globalPoint)
{
    const int index = cellIndexAtPoint(gridPoint(viewportPoint));
    QString text;
    QRect cell;
    if (index != kNone) {
        cell = viewportRect(*cellForIndex(index)).toRect();
        QFont nameFont(m_style.font);
        nameFont.setPixelSize(std::max(1, qRound(m_style.textSize)));
        if (!m_style.showFilenames ||
            m_names.isShortened(filename(index), nameFont, qRound(m_geometry.cellSize())))
            text = filename(index);
    }
    QToolTip::showText(globalPoint, text.isEmpty() ? text : text.toHtmlEscaped(), viewport(), cell);
    return true;
}

// ---- keyboard

void ImageBrowserView::selectNeighbourImage(bool next, Qt::KeyboardModifiers modifiers)
{
    const BrowserSelection before = m_selection;
    m_selection.stepTo(next, modeOf(modifiers));
    tellOfChange(before);
}

int ImageBrowserView::imagesInPage() const
{
    const double pitch = m_geometry.cellSize() + m_geometry.verticalSpacing();
    const int rows = static_cast<int>(visibleRect().height() / std::max(1.0, pitch));
    return std::max(1, rows) * m_geometry.columns();
}

bool ImageBrowserView::handleKey(const QKeyEvent &event)
{
    const auto mode = modeOf(event.modifiers());
    const BrowserSelection before = m_selection;
    switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        m_selection.stepTo(event.key() == Qt::Key_Right, mode);
        break;
    case Qt::Key_Up:
        m_selection.jumpBy(-m_geometry.columns(), mode);
        break;
    case Qt::Key_Down:
        m_selection.jumpBy(m_geometry.columns(), mode);
        break;
    case Qt::Key_PageUp:
        m_selection.jumpBy(-imagesInPage(), mode);
        break;
    case Qt::Key_PageDown:
        m_selection.jumpBy(imagesInPage(), mode);
        break;
    case Qt::Key_Home:
        m_selection.jumpTo(0, mode);
        break;
    case Qt::Key_End:
        m_selection.jumpTo(numberImages() - 1, mode);
        break;
    case Qt::Key_Space:
        if (!(event.modifiers() & Qt::ControlModifier) || focusImageIndex() == kNone)
            return false;
        m_selection.press(focusImageIndex(), BrowserSelection::Mode::Extend);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (m_delegate)
            m_delegate->returnPressed();
        break;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        // With modifiers they are shortcuts, which come here when their commands are disabled.
        if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
            return false;
        if (m_delegate)
            m_delegate->deletePressed();
        break;
    case Qt::Key_Escape:
        if (!m_mouseSelectionRect)
            return false;
        endRubberBand(false);
        m_isBandAllowed = false;
        break;
    default:
        return false;
    }
    // What a key of the delegate changed it has told already.
    if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter && event.key() != Qt::Key_Delete &&
        event.key() != Qt::Key_Backspace)
        tellOfChange(before);
    return true;
}

void ImageBrowserView::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy)) {
        copy();
    } else if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
    } else if (handleKey(*event)) {
        scrollFocusImageToVisible();
    } else {
        QAbstractScrollArea::keyPressEvent(event);
    }
}

// ---- trackpad

bool ImageBrowserView::viewportEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::NativeGesture:
        return handleGesture(*static_cast<QNativeGestureEvent *>(event));
    case QEvent::ToolTip: {
        const auto *help = static_cast<QHelpEvent *>(event);
        return showToolTip(help->pos(), help->globalPos());
    }
    case QEvent::Leave:
        setShowOriginalAtIndex(kNone);
        break;
    default:
        break;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

bool ImageBrowserView::handleGesture(const QNativeGestureEvent &event)
{
    switch (event.gestureType()) {
    case Qt::BeginNativeGesture:
        m_accumulatedRotation = 0;
        m_accumulatedPan = {};
        return true;
    case Qt::ZoomNativeGesture:
        if (m_delegate)
            m_delegate->changedZoomFactorTo(m_zoomFactor + static_cast<float>(event.value()));
        return true;
    case Qt::RotateNativeGesture:
        rotateBy(event.value());
        return true;
    case Qt::SwipeNativeGesture:
        // A platform tells the direction as steps, or as an angle alone: 180 is to the left, 0 to the right.
        if (!event.delta().isNull())
            swipeBy(event.delta().y() == 0 ? event.delta().x() : 0);
        else if (event.value() == 180 || event.value() == 0)
            swipeBy(event.value() == 180 ? 1 : -1);
        return true;
    case Qt::PanNativeGesture:
        if (event.fingerCount() >= kSwipeFingers)
            m_accumulatedPan += event.delta();
        return true;
    case Qt::EndNativeGesture: {
        // Where the platform knows strokes but no swipes.
        const QPointF pan = std::exchange(m_accumulatedPan, {});
        if (std::abs(pan.x()) >= kSwipeLength && std::abs(pan.x()) > 2 * std::abs(pan.y()))
            swipeBy(pan.x() < 0 ? 1 : -1);
        return true;
    }
    default:
        return false;
    }
}

void ImageBrowserView::rotateBy(double degreesClockwise)
{
    m_accumulatedRotation += degreesClockwise;
    if (std::abs(m_accumulatedRotation) <= kQuarterTurnAt)
        return;
    const bool isClockwise = m_accumulatedRotation > 0;
    m_accumulatedRotation = 0;
    if (m_delegate)
        m_delegate->rotatedSelectedImages90ClockWise(isClockwise);
}

/// @param delta  +1 to the left, -1 to the right; others are no swipe
void ImageBrowserView::swipeBy(double delta)
{
    if (delta != 1 && delta != -1)
        return;
    const int index = focusImageIndex() - static_cast<int>(delta);
    if (index < 0 || index >= numberImages())
        return;
    const BrowserSelection before = m_selection;
    m_selection.setFocus(index);
    m_selection.select(index, false);
    tellOfChange(before);
    scrollFocusImageToVisible();
}

} // namespace plexa
