// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/imagebrowserinput.h"

#include "ui/browser/gridpainter.h"
#include "ui/browser/imagebrowserdelegate.h"
#include "ui/browser/imagebrowserdrags.h"
#include "ui/browser/imagebrowserview.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>

namespace plexa
{
namespace
{

constexpr int kNone = BrowserSelection::kNone;
constexpr float kZoomOfWheelNotch = 0.05F;
constexpr double kWheelNotch = 120; // eighths of a degree

} // namespace

ImageBrowserInput::ImageBrowserInput(ImageBrowserView &view, ImageBrowserDrags &drags)
    : m_view(view)
    , m_drags(drags)
    , m_autoscroll(view, 0)
{
    QObject::connect(&m_autoscroll, &Autoscroll::interrupted, &m_autoscroll, [this] { endRubberBand(true); });
}

ImageBrowserInput::~ImageBrowserInput() = default;

bool ImageBrowserInput::handle(QEvent &event)
{
    if (event.type() == QEvent::ToolTip) {
        showToolTip(static_cast<const QHelpEvent &>(event));
        return true;
    }
    if (event.type() == QEvent::Leave)
        setShowOriginalAtIndex(kNone);
    return m_view.isEnabled() && handlePointer(event);
}

bool ImageBrowserInput::handlePointer(QEvent &event)
{
    const auto &mouse = static_cast<const QMouseEvent &>(event);
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        m_isDoubleClick = false;
        return press(mouse);
    case QEvent::MouseButtonDblClick: {
        const bool isPress = press(mouse);
        m_isDoubleClick = mouse.button() == Qt::LeftButton && m_mouseDownAtImage;
        return isPress;
    }
    case QEvent::MouseMove:
        move(mouse);
        return true;
    case QEvent::MouseButtonRelease:
        release(mouse);
        return true;
    case QEvent::ContextMenu:
        return openContextMenu(static_cast<const QContextMenuEvent &>(event));
    case QEvent::Wheel:
        return wheel(static_cast<const QWheelEvent &>(event));
    case QEvent::NativeGesture:
        return gesture(static_cast<const QNativeGestureEvent &>(event));
    default:
        return false;
    }
}

// ---- mouse

bool ImageBrowserInput::press(const QMouseEvent &event)
{
    if (event.button() != Qt::LeftButton && event.button() != Qt::RightButton)
        return false;
    endRubberBand(false);
    m_mouseDownPoint = m_view.gridPoint(event.position());
    const int index = m_view.cellIndexAtPoint(m_mouseDownPoint);
    m_mouseDownAtImage = index != kNone;
    m_isBandAllowed = !m_mouseDownAtImage;
    if (index == kNone) {
        if (event.button() != Qt::RightButton)
            m_view.selectNone();
        return true;
    }
    auto mode = BrowserSelection::modeOf(event.modifiers());
    // Ctrl deselects a selected image, also together with Shift.
    if (event.modifiers() & Qt::ControlModifier && m_view.isIndexSelected(index))
        mode = BrowserSelection::Mode::Extend;
    m_view.changeSelection([&](BrowserSelection &selection) { selection.press(index, mode); });
    return true;
}

void ImageBrowserInput::move(const QMouseEvent &event)
{
    m_autoscroll.setPointer(event.position());
    const QPointF point = m_view.gridPoint(event.position());
    if (!(event.buttons() & Qt::LeftButton)) {
        endRubberBand(true); // another window, such as a message that came up, received the release
        if (event.buttons() == Qt::NoButton)
            setShowOriginalAtIndex(m_showsOriginalOnMouseOver ? m_view.cellIndexAtPoint(point) : kNone);
        return;
    }
    if (m_isBandAllowed) {
        stretchRubberBand();
        m_autoscroll.start();
        return;
    }
    ImageBrowserDelegate *delegate = m_view.delegate();
    if (m_mouseDownAtImage && delegate && !m_view.selectionIndexes().isEmpty() &&
        (point - m_mouseDownPoint).manhattanLength() >= QApplication::startDragDistance() &&
        delegate->shouldDragPromisedFiles()) {
        m_mouseDownAtImage = false;
        m_drags.start();
    }
}

void ImageBrowserInput::release(const QMouseEvent &event)
{
    if (event.buttons() & Qt::LeftButton) // another button was released
        return;
    endRubberBand(true);
    const bool isDoubleClick = std::exchange(m_isDoubleClick, false);
    if (event.button() == Qt::LeftButton && isDoubleClick && m_view.delegate())
        m_view.delegate()->focusImageDoubleClicked();
    const int index = m_view.cellIndexAtPoint(m_view.gridPoint(event.position()));
    if (index != kNone && index == m_view.focusImageIndex())
        m_view.scrollFocusImageToVisible();
}

void ImageBrowserInput::stretchRubberBand()
{
    m_rubberBand = QRectF(m_mouseDownPoint, m_view.gridPoint(m_autoscroll.pointer())).normalized();
    m_view.refresh();
}

void ImageBrowserInput::endRubberBand(bool selects)
{
    m_autoscroll.stop();
    const auto band = std::exchange(m_rubberBand, std::nullopt);
    if (!band)
        return;
    m_view.refresh();
    if (!selects)
        return;
    QList<int> caught;
    const GridGeometry::Range range = m_view.geometry().cellsInRows(*band);
    for (int i = range.first; i < range.end; ++i)
        if (m_view.cellForIndex(i)->intersects(*band))
            caught.append(i);
    if (caught.isEmpty())
        return;
    m_view.changeSelection([&](BrowserSelection &selection) {
        selection.select(caught, true);
        if (selection.focus() == kNone) // for the arrow keys and the preview
            selection.setFocus(caught.first());
    });
}

void ImageBrowserInput::gridScrolled()
{
    if (m_rubberBand)
        stretchRubberBand();
}

void ImageBrowserInput::setShowsOriginalOnMouseOver(bool shows)
{
    m_showsOriginalOnMouseOver = shows;
    if (!shows)
        setShowOriginalAtIndex(kNone);
}

void ImageBrowserInput::setShowOriginalAtIndex(int index)
{
    if (index == m_showOriginalAtIndex)
        return;
    m_showOriginalAtIndex = index;
    m_view.refresh();
}

bool ImageBrowserInput::openContextMenu(const QContextMenuEvent &event)
{
    if (!m_contextMenu)
        return false;
    QPoint at = event.globalPos();
    if (event.reason() == QContextMenuEvent::Keyboard) {
        m_view.scrollFocusImageToVisible();
        const auto cell = m_view.cellForIndex(m_view.focusImageIndex());
        const QWidget &viewport = *m_view.viewport();
        at = viewport.mapToGlobal(cell ? m_view.viewportRect(*cell).center().toPoint()
                                       : viewport.rect().center());
    }
    m_contextMenu->popup(at);
    return true;
}

/// The file name, where the cell does not show all of it.
void ImageBrowserInput::showToolTip(const QHelpEvent &event)
{
    const int index = m_view.cellIndexAtPoint(m_view.gridPoint(event.pos()));
    QString text;
    QRect cell;
    if (index != kNone) {
        cell = m_view.viewportRect(*m_view.cellForIndex(index)).toRect();
        const QString name = m_view.filename(index);
        if (!m_view.showFilenames() || NameLayouts::isShortened(name, NameLayouts::fontOf(m_view.font(), 1),
                                                                qRound(m_view.geometry().cellSize())))
            text = name.toHtmlEscaped();
    }
    QToolTip::showText(event.globalPos(), text, m_view.viewport(), cell);
}

bool ImageBrowserInput::wheel(const QWheelEvent &event)
{
    if (!(event.modifiers() & Qt::ControlModifier))
        return false;
    const auto notches = static_cast<float>(event.angleDelta().y() / kWheelNotch);
    if (m_view.delegate() && notches != 0)
        m_view.delegate()->changedZoomFactorTo(m_view.zoomFactor() + notches * kZoomOfWheelNotch);
    return true;
}

// ---- keyboard

bool ImageBrowserInput::key(const QKeyEvent &event)
{
    if (event.matches(QKeySequence::Copy)) {
        m_view.copy();
        return true;
    }
    if (event.matches(QKeySequence::SelectAll)) {
        m_view.selectAll();
        return true;
    }
    if (!moveFocus(event) && !requestCommand(event))
        return false;
    m_view.scrollFocusImageToVisible();
    return true;
}

bool ImageBrowserInput::moveFocus(const QKeyEvent &event)
{
    const auto mode = BrowserSelection::modeOf(event.modifiers());
    const auto jumpBy = [&](int images) {
        m_view.changeSelection([&](BrowserSelection &selection) { selection.jumpBy(images, mode); });
        return true;
    };
    const auto jumpTo = [&](int index) {
        m_view.changeSelection([&](BrowserSelection &selection) { selection.jumpTo(index, mode); });
        return true;
    };
    switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        m_view.selectNeighbourImage(event.key() == Qt::Key_Right, event.modifiers());
        return true;
    case Qt::Key_Up:
        return jumpBy(-m_view.geometry().columns());
    case Qt::Key_Down:
        return jumpBy(m_view.geometry().columns());
    case Qt::Key_PageUp:
        return jumpBy(-imagesInPage());
    case Qt::Key_PageDown:
        return jumpBy(imagesInPage());
    case Qt::Key_Home:
        return jumpTo(0);
    case Qt::Key_End:
        return jumpTo(m_view.numberImages() - 1);
    default:
        return false;
    }
}

int ImageBrowserInput::imagesInPage() const
{
    const GridGeometry &geometry = m_view.geometry();
    const double pitch = geometry.cellSize() + geometry.verticalSpacing();
    const int rows = static_cast<int>(m_view.visibleRect().height() / std::max(1.0, pitch));
    return std::max(1, rows) * geometry.columns();
}

bool ImageBrowserInput::requestCommand(const QKeyEvent &event)
{
    switch (event.key()) {
    case Qt::Key_Space: {
        const int focus = m_view.focusImageIndex();
        if (!(event.modifiers() & Qt::ControlModifier) || focus == kNone)
            return false;
        m_view.changeSelection(
            [focus](BrowserSelection &selection) { selection.press(focus, BrowserSelection::Mode::Extend); });
        return true;
    }
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (m_view.delegate())
            m_view.delegate()->returnPressed();
        return true;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        // With modifiers they are shortcuts, which arrive here while their commands are disabled.
        if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
            return false;
        if (m_view.delegate())
            m_view.delegate()->deletePressed();
        return true;
    case Qt::Key_Escape:
        if (!m_rubberBand)
            return false;
        endRubberBand(false);
        m_isBandAllowed = false;
        return true;
    default:
        return false;
    }
}

// ---- trackpad

bool ImageBrowserInput::gesture(const QNativeGestureEvent &event)
{
    using Kind = TrackpadGestures::Action::Kind;
    const auto action = m_gestures.read(event);
    if (!action)
        return false;
    ImageBrowserDelegate *delegate = m_view.delegate();
    if (action->kind == Kind::Zoom && delegate)
        delegate->changedZoomFactorTo(m_view.zoomFactor() + action->zoom);
    else if (action->kind == Kind::Rotate && delegate)
        delegate->rotatedSelectedImages90ClockWise(action->isClockwise);
    else if (action->kind == Kind::Swipe)
        swipe(action->isLeft);
    return true;
}

void ImageBrowserInput::swipe(bool isLeft)
{
    const int index = m_view.focusImageIndex() + (isLeft ? -1 : 1);
    if (index < 0 || index >= m_view.numberImages())
        return;
    m_view.changeSelection([index](BrowserSelection &selection) {
        selection.setFocus(index);
        selection.select(index, false);
    });
    m_view.scrollFocusImageToVisible();
}

} // namespace plexa
