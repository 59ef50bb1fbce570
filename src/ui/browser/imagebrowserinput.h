// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/browser/autoscroll.h"
#include "ui/browser/browserselection.h"
#include "ui/browser/trackpadgestures.h"

#include <QPointer>
#include <QRectF>

#include <optional>

class QContextMenuEvent;
class QHelpEvent;
class QKeyEvent;
class QMenu;
class QMouseEvent;
class QNativeGestureEvent;
class QWheelEvent;

namespace plexa
{

class ImageBrowserDrags;
class ImageBrowserView;

/// The mouse, the keyboard and the trackpad in a grid. Presses, the rubber band, keys and swipes change the
/// grid's selection; the delegate receives the rest. Main thread.
///
/// Functions for events return false for events that belong to the standard handling.
class ImageBrowserInput final
{
public:
    /// Both outlive this object.
    ImageBrowserInput(ImageBrowserView &view, ImageBrowserDrags &drags);
    ~ImageBrowserInput();
    Q_DISABLE_COPY_MOVE(ImageBrowserInput)

    bool press(const QMouseEvent &event);
    bool doubleClick(const QMouseEvent &event);
    /// May run a whole drag. The view, and this object with it, may be gone afterwards.
    void move(const QMouseEvent &event);
    void release(const QMouseEvent &event);
    /// Opened by a right click or the menu key; not owned.
    void setContextMenu(QMenu *menu);
    bool openContextMenu(const QContextMenuEvent &event);
    /// The file name, where the cell does not show all of it.
    bool showToolTip(const QHelpEvent &event);
    /// The pointer has left the view.
    void leave() { setShowOriginalAtIndex(BrowserSelection::kNone); }
    bool wheel(const QWheelEvent &event);
    bool key(const QKeyEvent &event);
    bool gesture(const QNativeGestureEvent &event);

    /// The grid has moved below the resting pointer.
    void gridScrolled();

    /// The rectangle between press and pointer, in points of the grid; nothing without a rubber band.
    const std::optional<QRectF> &rubberBand() const { return m_rubberBand; }

    /// The image below the pointer, where its original is shown instead; -1: none.
    int showOriginalAtIndex() const { return m_showOriginalAtIndex; }
    void setShowsOriginalOnMouseOver(bool shows);

private:
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
