// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/preview/imageviewwithwatermarkcontrol.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace plexa
{
namespace
{

constexpr int kDash = 10; // points
constexpr double kFastSteps = 10;

} // namespace

ImageViewWithWatermarkControl::ImageViewWithWatermarkControl(QWidget *parent)
    : ImageView(parent)
{
}

void ImageViewWithWatermarkControl::setWatermarkRect(const QRectF &rect)
{
    if (m_isMouseDown || m_watermarkRect == rect)
        return;
    m_watermarkRect = rect;
    update();
    updateCursor();
}

void ImageViewWithWatermarkControl::setShowWatermarkRect(bool show)
{
    if (m_showWatermarkRect == show)
        return;
    m_showWatermarkRect = show;
    if (!show) {
        m_isSelected = false;
        cancelDrag();
    }
    update();
    updateCursor();
}

bool ImageViewWithWatermarkControl::isPointInsideWatermarkRect(QPointF point) const
{
    return m_showWatermarkRect && m_isMouseOverView && imageIsShown() && rectInView().contains(point);
}

void ImageViewWithWatermarkControl::paintEvent(QPaintEvent *event)
{
    ImageView::paintEvent(event);
    if (!m_showWatermarkRect || !imageIsShown() || !(m_isMouseOverView || m_isSelected))
        return;
    QPainter painter(this);
    const QRectF outline = rectInView();
    if (m_isSelected) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 3));
        painter.drawRect(outline);
    }
    // Dashes of two colors, seen on any photo.
    QPen pen(Qt::black, 1);
    pen.setDashPattern({kDash, kDash});
    painter.setPen(pen);
    painter.drawRect(outline);
    pen.setColor(Qt::white);
    pen.setDashOffset(kDash);
    painter.setPen(pen);
    painter.drawRect(outline);
}

void ImageViewWithWatermarkControl::updateCursor()
{
    const QPointF pointer = mapFromGlobal(QPointF(QCursor::pos()));
    if (m_isMouseDown)
        setCursor(Qt::ClosedHandCursor);
    else if (isPointInsideWatermarkRect(pointer) && !isCommandPressed() && !isSpacePressed())
        setCursor(Qt::OpenHandCursor);
    else
        ImageView::updateCursor();
}

void ImageViewWithWatermarkControl::mousePressEvent(QMouseEvent *event)
{
    m_isMouseOverView = true;
    m_mousePosition = event->position();
    const bool isHit = event->button() == Qt::LeftButton && isPointInsideWatermarkRect(event->position()) &&
                       !event->modifiers().testFlag(Qt::ControlModifier);
    if (m_isSelected != isHit && event->button() == Qt::LeftButton) {
        m_isSelected = isHit;
        update();
    }
    if (!isHit || isSpacePressed()) {
        ImageView::mousePressEvent(event);
        return;
    }
    m_isMouseDown = true;
    m_rectBefore = m_watermarkRect;
    updateCursor();
    Q_EMIT draggedWatermarkRectTo(m_watermarkRect);
}

void ImageViewWithWatermarkControl::mouseDoubleClickEvent(QMouseEvent *event)
{
    mousePressEvent(event);
}

/// Moves the rectangle unless too little of it would stay on the photo.
bool ImageViewWithWatermarkControl::moveBy(QPointF points)
{
    const QRectF moved = rectInView().translated(points);
    if (!isQuarterOnImage(moved, geometry().layerRectInView()))
        return false;
    m_watermarkRect = QRectF(geometry().viewToImage(moved).topLeft(), m_watermarkRect.size());
    update();
    return true;
}

void ImageViewWithWatermarkControl::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_isMouseDown || isSpacePressed()) {
        ImageView::mouseMoveEvent(event);
        return;
    }
    // A refused step is lost: the watermark moves again as soon as the pointer comes back.
    if (moveBy(event->position() - std::exchange(m_mousePosition, event->position())))
        Q_EMIT draggedWatermarkRectTo(m_watermarkRect);
}

void ImageViewWithWatermarkControl::mouseReleaseEvent(QMouseEvent *event)
{
    if (m_isMouseDown && event->button() == Qt::LeftButton) {
        if (isSpacePressed()) {
            cancelDrag();
        } else {
            endDrag();
            Q_EMIT didMoveWatermarkRectTo(m_watermarkRect);
        }
    }
    ImageView::mouseReleaseEvent(event);
}

void ImageViewWithWatermarkControl::endDrag()
{
    m_isMouseDown = false;
    updateCursor();
}

void ImageViewWithWatermarkControl::cancelDrag()
{
    if (!m_isMouseDown)
        return;
    m_watermarkRect = m_rectBefore;
    endDrag();
    Q_EMIT dragCanceled();
}

void ImageViewWithWatermarkControl::enterEvent(QEnterEvent *event)
{
    m_isMouseOverView = true;
    update();
    ImageView::enterEvent(event);
}

void ImageViewWithWatermarkControl::leaveEvent(QEvent *event)
{
    m_isMouseOverView = false;
    update();
    ImageView::leaveEvent(event);
}

void ImageViewWithWatermarkControl::keyPressEvent(QKeyEvent *event)
{
    const bool isPlain = (event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == Qt::NoModifier;
    if (isPlain && m_showWatermarkRect && imageIsShown() &&
        handleKey(event->key(), event->modifiers().testFlag(Qt::ShiftModifier)))
        return;
    ImageView::keyPressEvent(event);
}

/// @return whether the key is one of the watermark's
bool ImageViewWithWatermarkControl::handleKey(int key, bool isFast)
{
    if (m_isMouseDown) {
        if (key == Qt::Key_Escape)
            cancelDrag();
        return key == Qt::Key_Escape;
    }
    if (key == Qt::Key_Return || key == Qt::Key_Enter || (key == Qt::Key_Escape && m_isSelected)) {
        m_isSelected = key != Qt::Key_Escape;
        update();
        return true;
    }
    if (!m_isSelected)
        return false;
    QPointF step;
    switch (key) {
    case Qt::Key_Left:
        step = {-1, 0};
        break;
    case Qt::Key_Right:
        step = {1, 0};
        break;
    case Qt::Key_Up:
        step = {0, -1};
        break;
    case Qt::Key_Down:
        step = {0, 1};
        break;
    default:
        return false;
    }
    if (moveBy(step * (isFast ? kFastSteps : 1) / devicePixelRatioF()))
        Q_EMIT didMoveWatermarkRectTo(m_watermarkRect);
    return true;
}

void ImageViewWithWatermarkControl::focusOutEvent(QFocusEvent *event)
{
    cancelDrag();
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
        m_isSelected = false;
    update();
    ImageView::focusOutEvent(event);
}

} // namespace plexa
