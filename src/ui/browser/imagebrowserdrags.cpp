// SPDX-License-Identifier: GPL-3.0-or-later

// Drags that begin in the grid, and drags that reach it.

#include "ui/browser/imagebrowserdelegate.h"
#include "ui/browser/imagebrowserview.h"
#include "ui/browser/promisedfiles.h"
#include "ui/browser/x11drag.h"
#include "ui/widgets/filedrops.h"
#include "ui/widgets/localfiles.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QPainter>

namespace plexa
{
namespace
{

constexpr int kDragImageSize = 150; // points
constexpr int kDragImageStep = 5;
constexpr int kMaxDragImageOffset = 50;
constexpr double kDragImageOpacity = 0.9;

} // namespace

/// Thumbnails in a heap, each a little further down to the right.
QPixmap ImageBrowserView::dragImage() const
{
    const auto count = static_cast<int>(selectionIndexes().size());
    QList<std::pair<QRectF, QImage>> heap;
    QRectF bounds;
    int offset = 0;
    for (int k = 0; k < count; ++k) {
        // The first images of the list, not the selected ones: the heap says how many, not which.
        const QImage thumbnail = m_images->thumbnail(k, ImageBrowserSource::ThumbnailKind::Watermarked);
        // Of those that lie at the same place only the uppermost is seen.
        const bool isCovered = offset >= kMaxDragImageOffset && k + 1 < count;
        if (!thumbnail.isNull() && !isCovered) {
            const QSize size = thumbnail.size().scaled(kDragImageSize, kDragImageSize, Qt::KeepAspectRatio);
            heap.append({QRectF(QPointF(offset, offset), QSizeF(size)), thumbnail.mirrored()});
            bounds |= heap.last().first;
        }
        if (offset < kMaxDragImageOffset)
            offset += kDragImageStep;
    }

    // No larger than needed: where windows cannot be transparent the rest is seen, too.
    const double ratio = viewport()->devicePixelRatioF();
    QPixmap pixmap((QSizeF(bounds.right(), bounds.bottom()) * ratio).toSize());
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setOpacity(kDragImageOpacity);
    for (const auto &[place, picture] : heap)
        painter.drawImage(place, picture);
    return pixmap;
}

void ImageBrowserView::startDrag(QPointF viewportPoint)
{
    m_isDraggingImages = true;
    m_isDragStale = false;
    const QPointer<ImageBrowserView> self(this);
    auto *drag = new QDrag(viewport());
    // Owned by the drag, which deletes itself when control is back in the event loop.
    auto *files = new PromisedFiles(m_delegate->promisedFiles(selectionIndexes()), m_folders,
                                    PromisedFiles::Use::Drag, selectionIndexes());
    drag->setMimeData(files);
    m_draggedFiles = files;
    if (const QPixmap image = dragImage(); !image.isNull())
        drag->setPixmap(image);
    drag->setHotSpot((viewportPoint - viewportRect(QRectF(m_mouseDownPoint, QSizeF())).topLeft()).toPoint());
    // Once the drag has its window.
    if (!files->firstName().isEmpty())
        QTimer::singleShot(0, files, [files] { X11Drag::offerName(files->firstName()); });

    const Qt::DropActions outside = m_delegate->externalDraggingSourceOperationMask();
    const Qt::DropAction done =
        drag->exec(outside, outside & Qt::CopyAction ? Qt::CopyAction : Qt::IgnoreAction);
    if (!self) // and with it the drag
        return;
    m_isDraggingImages = false;
    m_mouseDownAtImage = false;
    setDrawnInsertionIndex(kNone);
    m_autoscrollTimer.stop();
    if (done != Qt::IgnoreAction && !drag->target())
        files->dropped(); // the event loop goes on in it: nothing may follow
}

/// What dropping it here would do; IgnoreAction: it is refused.
Qt::DropAction ImageBrowserView::actionFor(const QDropEvent &event) const
{
    Qt::DropActions possible = event.possibleActions();
    // A drag of our own offers files as well.
    if (event.mimeData()->hasFormat(kPhotoSelectionType)) {
        if (event.mimeData() != m_draggedFiles || m_isDragStale)
            return Qt::IgnoreAction;
        if (event.source() == viewport()) // to others it offers what the delegate says
            possible |= Qt::CopyAction | Qt::MoveAction;
        if (possible & Qt::MoveAction)
            return Qt::MoveAction;
        return possible & Qt::CopyAction && m_allowCopying ? Qt::CopyAction : Qt::IgnoreAction;
    }
    return possible & Qt::CopyAction && !localFiles(*event.mimeData()).isEmpty() ? Qt::CopyAction
                                                                                 : Qt::IgnoreAction;
}

void ImageBrowserView::dragEnterEvent(QDragEnterEvent *event)
{
    dragMoveEvent(event);
}

void ImageBrowserView::dragMoveEvent(QDragMoveEvent *event)
{
    m_pointer = event->position();
    const Qt::DropAction action = actionFor(*event);
    event->setDropAction(action);
    event->setAccepted(action != Qt::IgnoreAction);
    const bool reorders = event->isAccepted() && event->mimeData()->hasFormat(kPhotoSelectionType);
    setDrawnInsertionIndex(reorders ? insertionIndexAtPoint(gridPoint(m_pointer)) : kNone);
    if (reorders && !m_autoscrollTimer.isActive())
        m_autoscrollTimer.start();
}

void ImageBrowserView::dragLeaveEvent(QDragLeaveEvent *event)
{
    m_autoscrollTimer.stop();
    setDrawnInsertionIndex(kNone);
    event->accept();
}

void ImageBrowserView::dropEvent(QDropEvent *event)
{
    m_autoscrollTimer.stop();
    setDrawnInsertionIndex(kNone);
    const Qt::DropAction action = actionFor(*event);
    event->setDropAction(action);
    event->setAccepted(action != Qt::IgnoreAction);
    if (!event->isAccepted() || !m_delegate)
        return;
    if (event->mimeData()->hasFormat(kPhotoSelectionType)) {
        const QList<int> indexes = PromisedFiles::indexes(*event->mimeData());
        const int to = insertionIndexAtPoint(gridPoint(event->position()));
        if (action == Qt::MoveAction)
            m_delegate->movedIndexes(indexes, to);
        else
            m_delegate->copiedIndexes(indexes, to);
        return;
    }
    m_delegate->receivedDraggedFiles(localFiles(*event->mimeData()));
}

void ImageBrowserView::setDrawnInsertionIndex(int index)
{
    if (index == m_drawnInsertionIndex)
        return;
    m_drawnInsertionIndex = index;
    refresh();
}

} // namespace plexa
