// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/browser/autoscroll.h"
#include "ui/browser/browserselection.h"

#include <QMimeData>
#include <QPointer>

#include <memory>

class QDragMoveEvent;
class QDropEvent;
class QEvent;
class QPixmap;

namespace plexa
{

class ImageBrowserView;
class PrivateFolders;

/// The drags of a grid: those that begin in it carry the selected images, as files and, within the grid, as
/// indexes; those that reach it reorder the images or bring files. Main thread.
class ImageBrowserDrags final
{
public:
    /// @param view  outlives this object
    explicit ImageBrowserDrags(ImageBrowserView &view);
    Q_DISABLE_COPY_MOVE(ImageBrowserDrags)

    /// Whether a drag within the grid may copy where it cannot move.
    void setAllowCopying(bool allow) { m_allowCopying = allow; }
    /// The indexes of a drag under way are no longer valid.
    void listChanged() { m_isStale = true; }

    /// Drags the selected images and returns after the drop. Does nothing while a drag runs. The view and
    /// this object may be destroyed meanwhile.
    void start();

    /// Handles an event of the viewport. @return false for an event of another kind
    bool handle(QEvent &event);

    /// The grid has moved below the resting pointer.
    void gridScrolled();

    /// Before which image a drop now would insert; -1: none is expected.
    int insertionIndex() const { return m_insertionIndex; }

private:
    QPixmap dragImage() const;
    Qt::DropAction actionFor(const QDropEvent &event) const;
    void move(QDragMoveEvent &event);
    void leave();
    void drop(QDropEvent &event);
    void setInsertionIndex(int index);

    ImageBrowserView &m_view;
    const std::shared_ptr<PrivateFolders> m_folders;
    QPointer<const QMimeData> m_draggedFiles; // of the last drag
    Autoscroll m_autoscroll;
    int m_insertionIndex = BrowserSelection::kNone;
    bool m_allowCopying = true;
    bool m_isDragging = false;
    bool m_isStale = false;
};

} // namespace plexa
