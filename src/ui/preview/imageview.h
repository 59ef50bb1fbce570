// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/preview/previewgeometry.h"
#include "ui/widgets/trackpadgestures.h"

#include <QImage>
#include <QRect>
#include <QWidget>

#include <functional>

namespace plexa
{

/// Shows a photo in its room, with tools to zoom and to move it. It knows the photo's size and says which
/// part of it is visible at which scale; its user renders the pixels. Until they arrive, it shows those
/// that it has, scaled. Main thread.
class ImageView : public QWidget
{
    Q_OBJECT

public:
    enum class ToolMode { None, Pan, Zoom };

    /// Pixels of the screen: the photo at the size of `layer`, of which `part` is wanted.
    struct Wanted {
        QSize layer; ///< at most the photo's own size
        QRect part;  ///< origin at the top left
        bool operator==(const Wanted &) const = default;
    };

    explicit ImageView(QWidget *parent = nullptr);

    /// Another photo of this size, fitted into the view; an empty size: none.
    void setImageSize(QSize pixels);
    bool imageIsShown() const { return m_geometry.hasImage(); }
    /// Are there pixels of the photo already?
    bool hasPicture() const { return !m_picture.isNull(); }

    /// A picture that was wanted. A picture of the whole photo is kept as the ground for later parts.
    void setPicture(const QImage &picture, const Wanted &place);
    /// What is visible, and something around it.
    Wanted wantedPicture() const;
    /// Forgets the pixels.
    void purgeCaches();

    const PreviewGeometry &geometry() const { return m_geometry; }
    double zoomFactor() const { return m_geometry.zoomFactor(); }
    /// Clamped to 0..1; the point in the middle stays.
    void setZoomFactor(double factor);
    bool fullImageFitsInView() const { return m_geometry.fullImageFitsInView(); }
    QPointF centeredImagePoint() const { return m_geometry.centeredImagePoint(); }
    void setCenteredImagePoint(QPointF point);

    void setToolMode(ToolMode mode);
    /// The tool under the keys that are held: the space bar pans, Ctrl zooms while panning.
    ToolMode activeTool() const;
    void setImagePadding(double points);
    /// The text that is shown without a photo.
    void setNoImageInfoString(const QString &text);

Q_SIGNALS:
    /// wantedPicture() is no longer covered by the last picture, or has another scale.
    void pictureWanted();
    void didChangeZoomFactorTo(double factor);
    /// Whether there is anything to zoom may have changed.
    void canZoomStatusDidChange();
    void didMoveCenteredImagePointTo(QPointF point);
    void mouseClickedTheImagePoint(QPointF point);
    /// A key that is not used here; the receiver may accept the event.
    void unsupportedKey(QKeyEvent *event);
    /// A swipe: 1 for the next photo, -1 for the previous one.
    void requestsImage(int step);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

    bool isSpacePressed() const { return m_isSpacePressed; }
    bool isCommandPressed() const { return m_modifiers.testFlag(Qt::ControlModifier); }
    /// Sets the cursor for the place of the pointer and the keys that are held.
    virtual void updateCursor();

private:
    QSize layerPixels() const;
    QRect visiblePart(double margin) const;
    void changeGeometry(const std::function<void(PreviewGeometry &)> &change);
    void setModifiers(Qt::KeyboardModifiers modifiers);
    void zoomByClick(QPointF point, bool isDouble);
    QRectF targetOf(const Wanted &place) const;
    void drawChecks(QPainter &painter) const;
    void drawPicture(QPainter &painter, const QImage &picture, const Wanted &place) const;

    PreviewGeometry m_geometry;
    QImage m_picture;
    Wanted m_place;
    QImage m_ground; ///< the whole photo
    Wanted m_groundPlace;
    QString m_noImageInfoString;
    ToolMode m_toolMode = ToolMode::None;
    bool m_isSpacePressed = false;
    Qt::KeyboardModifiers m_modifiers;
    bool m_isPanning = false;
    QPointF m_mousePosition;
    TrackpadGestures m_gestures;
};

} // namespace plexa
