// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/preview/imageview.h"

#include <optional>

namespace plexa
{

/// The preview in which the user drags a watermark, or moves it with the keys, to another place on the photo.
/// The rectangle follows at once; the user of this class draws the watermark there. Main thread.
class ImageViewWithWatermarkControl final : public ImageView
{
    Q_OBJECT

public:
    explicit ImageViewWithWatermarkControl(QWidget *parent = nullptr);

    /// The watermark's rectangle in the shown photo; photo pixels, origin at the bottom left. Kept while the
    /// user drags.
    void setWatermarkRect(const QRectF &rect);
    QRectF watermarkRect() const { return m_watermarkRect; }

    /// Is there one watermark that can be placed?
    void setShowWatermarkRect(bool show);
    bool showWatermarkRect() const { return m_showWatermarkRect; }

    /// Return selects the watermark, and so does a click; the arrow keys then move it, by one pixel of the
    /// screen, with Shift by ten, until Escape.
    bool isWatermarkSelected() const { return m_isSelected; }

    /// Gives up the drag, if there is one.
    void cancelDrag();

    /// @param point  of the view
    bool isPointInsideWatermarkRect(QPointF point) const;

Q_SIGNALS:
    /// The watermark under the pointer; the same rectangle as before at the beginning of a drag.
    void draggedWatermarkRectTo(const QRectF &rect);
    /// The drag was given up: the watermark belongs where it was.
    void dragCanceled();
    /// The user has placed the watermark there.
    void didMoveWatermarkRectTo(const QRectF &rect);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void updateCursor() override;

private:
    QRectF rectInView() const { return geometry().imageToView(m_watermarkRect); }
    bool moveBy(QPointF points);
    void endDrag();
    bool handleKey(int key, bool isFast);

    QRectF m_watermarkRect;
    QRectF m_rectBefore; ///< the drag
    bool m_showWatermarkRect = false;
    bool m_isMouseOverView = false;
    bool m_isMouseDown = false; ///< the watermark is being dragged
    bool m_isSelected = false;
    QPointF m_mousePosition;
};

} // namespace plexa
