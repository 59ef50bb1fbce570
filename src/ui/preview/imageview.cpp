// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/preview/imageview.h"

#include "ui/widgets/look.h"

#include <QIcon>
#include <QKeyEvent>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace plexa
{
namespace
{

constexpr double kClickStep = 0.2;
constexpr double kWheelStep = 0.1; // for each notch
constexpr double kNotch = 120;     // of QWheelEvent::angleDelta
constexpr double kCheckSide = 20;
constexpr int kInfoFontSize = 18;
constexpr double kMargin = 0.25; // of the view, drawn on each side for the next movement
constexpr int kCursorSide = 24;

/// None for other keys than those of the tools.
Qt::KeyboardModifiers modifierOf(int key)
{
    switch (key) {
    case Qt::Key_Control:
        return Qt::ControlModifier;
    case Qt::Key_Alt:
        return Qt::AltModifier;
    case Qt::Key_Shift:
        return Qt::ShiftModifier;
    default:
        return {};
    }
}

QCursor zoomCursor(const char *name)
{
    constexpr QPoint kHotSpot(10, 10); // the middle of the lens
    const QIcon icon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
    return QCursor(icon.pixmap(kCursorSide, kCursorSide), kHotSpot.x(), kHotSpot.y());
}

} // namespace

ImageView::ImageView(QWidget *parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(100, 60);
}

void ImageView::changeGeometry(const std::function<void(PreviewGeometry &)> &change)
{
    const double zoom = zoomFactor();
    const QPointF center = centeredImagePoint();
    change(m_geometry);
    update();
    if (!imageIsShown())
        return;
    if (zoomFactor() != zoom)
        Q_EMIT didChangeZoomFactorTo(zoomFactor());
    if (centeredImagePoint() != center)
        Q_EMIT didMoveCenteredImagePointTo(centeredImagePoint());
    if (layerPixels() != m_place.layer || !m_place.part.contains(visiblePart(0)))
        Q_EMIT pictureWanted();
    updateCursor();
}

void ImageView::setImageSize(QSize pixels)
{
    purgeCaches();
    m_isPanning = false;
    changeGeometry([&](PreviewGeometry &geometry) { geometry.setImageSize(pixels); });
    Q_EMIT canZoomStatusDidChange();
}

void ImageView::setPicture(const QImage &picture, const Wanted &place)
{
    m_picture = picture;
    m_place = place;
    if (place.part == QRect(QPoint(0, 0), place.layer)) {
        m_ground = picture;
        m_groundPlace = place;
    }
    update();
}

void ImageView::purgeCaches()
{
    m_picture = {};
    m_place = {};
    m_ground = {};
    update();
}

/// The size of the layer in pixels of the screen.
QSize ImageView::layerPixels() const
{
    const double scale = std::min(1.0, m_geometry.zoomedToOriginalRatio() * devicePixelRatioF());
    const QSizeF image = m_geometry.imageSize();
    return QSizeF(image * scale).toSize().expandedTo(QSize(1, 1));
}

/// @param margin  added on each side, as a fraction of the view
/// @return pixels of the layer, inside of it
QRect ImageView::visiblePart(double margin) const
{
    const QRectF layer = m_geometry.layerRectInView();
    const QSize pixels = layerPixels();
    const double across = pixels.width() / layer.width();
    const double down = pixels.height() / layer.height();
    const QRectF view =
        QRectF(rect()).adjusted(-margin * width(), -margin * height(), margin * width(), margin * height());
    const QRectF part = view.translated(-layer.topLeft());
    return QRectF(part.left() * across, part.top() * down, part.width() * across, part.height() * down)
        .toAlignedRect()
        .intersected(QRect(QPoint(0, 0), pixels));
}

ImageView::Wanted ImageView::wantedPicture() const
{
    return imageIsShown() ? Wanted{layerPixels(), visiblePart(kMargin)} : Wanted();
}

void ImageView::setZoomFactor(double factor)
{
    changeGeometry([&](PreviewGeometry &geometry) { geometry.setZoomFactor(factor); });
}

void ImageView::setCenteredImagePoint(QPointF point)
{
    changeGeometry([&](PreviewGeometry &geometry) { geometry.setCenteredImagePoint(point); });
}

void ImageView::setImagePadding(double points)
{
    changeGeometry([&](PreviewGeometry &geometry) { geometry.setImagePadding(points); });
}

void ImageView::setToolMode(ToolMode mode)
{
    m_toolMode = mode;
    updateCursor();
}

ImageView::ToolMode ImageView::activeTool() const
{
    if (!imageIsShown())
        return ToolMode::None;
    const bool isPan = m_toolMode == ToolMode::Pan || (m_toolMode == ToolMode::Zoom && m_isSpacePressed);
    if (isPan)
        return isCommandPressed() ? ToolMode::Zoom : ToolMode::Pan;
    return m_toolMode;
}

void ImageView::setNoImageInfoString(const QString &text)
{
    m_noImageInfoString = text;
    update();
}

void ImageView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), look::kPreviewGround);
    if (!imageIsShown()) {
        QFont infoFont = font();
        infoFont.setPixelSize(kInfoFontSize);
        painter.setFont(infoFont);
        painter.setPen(look::kPreviewText);
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, m_noImageInfoString);
        return;
    }
    if (m_picture.isNull() || m_picture.hasAlphaChannel())
        drawChecks(painter);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (m_picture.isNull() || m_picture.cacheKey() != m_ground.cacheKey()) {
        painter.save(); // the ground must not be seen through a transparent part
        painter.setClipRegion(QRegion(rect()) - targetOf(m_place).toRect());
        drawPicture(painter, m_ground, m_groundPlace);
        painter.restore();
    }
    drawPicture(painter, m_picture, m_place);
}

/// Squares behind transparent pixels; columns alternate, counted from the bottom left of the photo.
void ImageView::drawChecks(QPainter &painter) const
{
    const QRectF layer = m_geometry.layerRectInView();
    const QRectF shown = layer.intersected(rect());
    painter.fillRect(shown, look::kCheckGray);
    const int firstColumn = int((shown.left() - layer.left()) / kCheckSide);
    const int firstRow = int((layer.bottom() - shown.bottom()) / kCheckSide);
    painter.save();
    painter.setClipRect(shown);
    for (int column = firstColumn; layer.left() + column * kCheckSide < shown.right(); ++column) {
        for (int row = firstRow; layer.bottom() - row * kCheckSide > shown.top(); ++row) {
            if ((column + row) % 2 == 0)
                painter.fillRect(QRectF(layer.left() + column * kCheckSide,
                                        layer.bottom() - (row + 1) * kCheckSide, kCheckSide, kCheckSide),
                                 Qt::white);
        }
    }
    painter.restore();
}

/// Where a picture belongs, in the view.
QRectF ImageView::targetOf(const Wanted &place) const
{
    if (place.part.isEmpty())
        return {};
    const QRectF layer = m_geometry.layerRectInView();
    const double ratio = devicePixelRatioF();
    // Points for each pixel of the picture.
    const double across = layer.width() / place.layer.width();
    const double down = layer.height() / place.layer.height();
    const QPointF corner = layer.topLeft() + QPointF(place.part.left() * across, place.part.top() * down);
    const double longer = std::max(place.layer.width(), place.layer.height());
    if (std::abs((longer == place.layer.width() ? across : down) * ratio - 1) >= 1 / longer)
        return {corner, QSizeF(place.part.width() * across, place.part.height() * down)};
    // Made for this zoom: one pixel of the picture is one of the screen.
    return {QPointF(std::round(corner.x() * ratio), std::round(corner.y() * ratio)) / ratio,
            QSizeF(place.part.size()) / ratio};
}

void ImageView::drawPicture(QPainter &painter, const QImage &picture, const Wanted &place) const
{
    if (!picture.isNull())
        painter.drawImage(targetOf(place), picture, QRectF(picture.rect()));
}

void ImageView::resizeEvent(QResizeEvent *)
{
    changeGeometry([&](PreviewGeometry &geometry) { geometry.setViewSize(size()); });
    Q_EMIT canZoomStatusDidChange();
}

void ImageView::updateCursor()
{
    switch (activeTool()) {
    case ToolMode::None:
        unsetCursor();
        break;
    case ToolMode::Pan:
        setCursor(m_isPanning ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
        break;
    case ToolMode::Zoom: {
        static const QCursor larger = zoomCursor("zoomin_cursor");
        static const QCursor smaller = zoomCursor("zoomout_cursor");
        if (fullImageFitsInView())
            unsetCursor();
        else
            setCursor(m_modifiers & (Qt::AltModifier | Qt::ShiftModifier) ? smaller : larger);
        break;
    }
    }
}

void ImageView::setModifiers(Qt::KeyboardModifiers modifiers)
{
    if (m_modifiers == modifiers)
        return;
    m_modifiers = modifiers;
    updateCursor();
    update();
}

void ImageView::mousePressEvent(QMouseEvent *event)
{
    setModifiers(event->modifiers());
    m_mousePosition = event->position();
    if (event->button() != Qt::LeftButton || activeTool() == ToolMode::None)
        return;
    m_isPanning = activeTool() == ToolMode::Pan;
    if (activeTool() == ToolMode::Zoom)
        zoomByClick(event->position(), event->type() == QEvent::MouseButtonDblClick);
    updateCursor();
}

void ImageView::mouseDoubleClickEvent(QMouseEvent *event)
{
    mousePressEvent(event);
}

void ImageView::zoomByClick(QPointF point, bool isDouble)
{
    constexpr double kRounding = 1e-9; // of sums of steps
    double factor = 0;
    if (isDouble) {
        factor = zoomFactor() == 1 ? 0 : 1;
    } else {
        const bool isSmaller = m_modifiers & (Qt::AltModifier | Qt::ShiftModifier);
        factor = zoomFactor() + (isSmaller ? -kClickStep : kClickStep);
        if (factor < -kRounding || factor > 1 + kRounding)
            return;
    }
    changeGeometry([&](PreviewGeometry &geometry) {
        const QPointF clicked = geometry.viewToImage(point);
        geometry.setZoomFactor(factor);
        geometry.setCenteredImagePoint(clicked);
    });
}

void ImageView::mouseMoveEvent(QMouseEvent *event)
{
    setModifiers(event->modifiers());
    const QPointF step = event->position() - std::exchange(m_mousePosition, event->position());
    if (m_isPanning)
        setCenteredImagePoint(centeredImagePoint() -
                              QPointF(step.x(), -step.y()) / m_geometry.zoomedToOriginalRatio());
    updateCursor();
}

void ImageView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_isPanning = false;
    updateCursor();
    const QPointF point = m_geometry.viewToImage(event->position());
    if (imageIsShown() && point.x() > 0 && point.y() > 0)
        Q_EMIT mouseClickedTheImagePoint(point);
}

/// A wheel zooms and keeps the point under the pointer; a trackpad moves the photo.
void ImageView::wheelEvent(QWheelEvent *event)
{
    event->accept();
    if (activeTool() == ToolMode::None)
        return;
    const bool isTrackpad = event->phase() != Qt::NoScrollPhase;
    if (isTrackpad && !event->pixelDelta().isNull() && !event->modifiers().testFlag(Qt::ControlModifier)) {
        const QPointF step = event->pixelDelta();
        setCenteredImagePoint(centeredImagePoint() -
                              QPointF(step.x(), -step.y()) / m_geometry.zoomedToOriginalRatio());
        return;
    }
    changeGeometry([&](PreviewGeometry &geometry) {
        const QPointF under = geometry.viewToImage(event->position());
        geometry.setZoomFactor(geometry.zoomFactor() + event->angleDelta().y() / kNotch * kWheelStep);
        geometry.show(under, event->position());
    });
}

bool ImageView::event(QEvent *event)
{
    if (event->type() == QEvent::ScreenChangeInternal) // other pixels
        changeGeometry([](PreviewGeometry &) {});
    if (event->type() != QEvent::NativeGesture || activeTool() == ToolMode::None)
        return QWidget::event(event);
    const auto action = m_gestures.read(static_cast<const QNativeGestureEvent &>(*event));
    if (!action)
        return QWidget::event(event);
    using Kind = TrackpadGestures::Action::Kind;
    if (action->kind == Kind::Zoom)
        setZoomFactor(zoomFactor() + double(action->zoom));
    else if (action->kind == Kind::Swipe)
        Q_EMIT requestsImage(action->isLeft ? -1 : 1);
    return true;
}

void ImageView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Space && imageIsShown()) {
        m_isSpacePressed = true;
        updateCursor();
        return;
    }
    setModifiers(m_modifiers | modifierOf(event->key()));
    event->ignore();
    Q_EMIT unsupportedKey(event);
}

void ImageView::keyReleaseEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Space) {
        if (!event->isAutoRepeat())
            m_isSpacePressed = false;
        updateCursor();
        return;
    }
    setModifiers(m_modifiers & ~modifierOf(event->key()));
    event->ignore();
    Q_EMIT unsupportedKey(event);
}

void ImageView::focusOutEvent(QFocusEvent *event)
{
    m_isSpacePressed = false;
    m_isPanning = false;
    setModifiers({});
    updateCursor();
    QWidget::focusOutEvent(event);
}

} // namespace plexa
