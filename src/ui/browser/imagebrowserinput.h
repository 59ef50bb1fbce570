// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/browser/autoscroll.h"
#include "ui/browser/browserselection.h"
#include "ui/widgets/trackpadgestures.h"

#include <QMenu>
#include <QPointer>
#include <QRectF>

#include <optional>

class QContextMenuEvent;
class QEvent;
class QHelpEvent;
class QKeyEvent;
class QMouseEvent;
class QNativeGestureEvent;
class QWheelEvent;

namespace plexa
{

class ImageBrowserDrags;
class ImageBrowserView;

/// The mouse, the keyboard and the trackpad in a grid. Presses, the rubber band, keys and swipes change the
/// grid's selection; the delegate receives the rest. Main thread.
class ImageBrowserInput final
{
public:
    /// Both outlive this object.
    ImageBrowserInput(ImageBrowserView &view, ImageBrowserDrags &drags);
    ~ImageBrowserInput();
    Q_DISABLE_COPY_MOVE(ImageBrowserInput)

    /// Handles an event of the viewport. May run a whole drag, during which the view and this object may be
    /// destroyed.
    /// @return false for an event that belongs to the standard handling
    bool handle(QEvent &event);
    /// Likewise for keys.
    bool key(const QKeyEvent &event);

    /// Opened by a right click or the menu key; not owned.
    void setContextMenu(QMenu *menu) { m_contextMenu = menu; }

    /// The grid has moved below the resting pointer.
    void gridScrolled();

    /// The rectangle between press and pointer, in points of the grid; nothing without a rubber band.
    const std::optional<QRectF> &rubberBand() const { return m_rubberBand; }

    /// The image below the pointer, where its original is shown instead; -1: none.
    int showOriginalAtIndex() const { return m_showOriginalAtIndex; }
    void setShowsOriginalOnMouseOver(bool shows);

private:
    bool handlePointer(QEvent &event);
    bool press(const QMouseEvent &event);
    void move(const QMouseEvent &event);
    void release(const QMouseEvent &event);
    bool openContextMenu(const QContextMenuEvent &event);
    void showToolTip(const QHelpEvent &event);
    bool wheel(const QWheelEvent &event);
    bool gesture(const QNativeGestureEvent &event);
    void stretchRubberBand();
    void endRubberBand(bool selects);
    void setShowOriginalAtIndex(int index);
    bool moveFocus(const QKeyEvent &event);
    bool requestCommand(const QKeyEvent &event);
    int imagesInPage() const;
    void swipe(bool isLeft);

    ImageBrowserView &m_view;
    ImageBrowserDrags &m_drags;
    QPointer<QMenu> m_contextMenu;
    TrackpadGestures m_gestures;

    QPointF m_mouseDownPoint; // of the grid
    bool m_mouseDownAtImage = false;
    bool m_isBandAllowed = false; // from a press on empty space until the Escape key
    bool m_isDoubleClick = false;
    std::optional<QRectF> m_rubberBand;
    Autoscroll m_autoscroll; // for the rubber band

    bool m_showsOriginalOnMouseOver = false;
    int m_showOriginalAtIndex = BrowserSelection::kNone;
};

} // namespace plexa
