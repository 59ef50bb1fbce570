// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/imagebrowserdrags.h"

#include "ui/browser/imagebrowserdelegate.h"
#include "ui/browser/imagebrowserview.h"
#include "ui/browser/promisedfiles.h"
#include "ui/browser/x11drag.h"
#include "ui/widgets/filedrops.h"

#include <QDrag>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QPainter>

namespace plexa
{
namespace
{

constexpr int kNone = BrowserSelection::kNone;
constexpr double kScrollMargin = 24; // points
constexpr int kDragImageSize = 150;  // points
constexpr int kDragImageStep = 5;
constexpr int kMaxDragImageOffset = 50;
constexpr double kDragImageOpacity = 0.6;
/// From the pointer to the picture, which must not hide where a drop goes.
constexpr QPoint kBesidePointer(16, 16);

} // namespace

ImageBrowserDrags::ImageBrowserDrags(ImageBrowserView &view)
    : m_view(view)
    , m_folders(std::make_shared<PrivateFolders>())
    , m_autoscroll(view, kScrollMargin)
{
}

/// A pile of thumbnails, each a little further down to the right.
QPixmap ImageBrowserDrags::dragImage() const
{
    const auto count = static_cast<int>(m_view.selectionIndexes().size());
    QList<std::pair<QRectF, QImage>> pile;
    QRectF bounds;
    int offset = 0;
    for (int k = 0; k < count; ++k) {
        // The first images of the list, not the selected ones: the pile shows how many there are, not which.
        const QImage thumbnail =
            m_view.images()->thumbnail(k, ImageBrowserSource::ThumbnailKind::Watermarked);
        // Of several at the same place only the uppermost is visible.
        const bool isCovered = offset >= kMaxDragImageOffset && k + 1 < count;
        if (!thumbnail.isNull() && !isCovered) {
            const QSize size = thumbnail.size().scaled(kDragImageSize, kDragImageSize, Qt::KeepAspectRatio);
            pile.append({QRectF(QPointF(offset, offset), QSizeF(size)), thumbnail.mirrored()});
            bounds |= pile.last().first;
        }
        if (offset < kMaxDragImageOffset)
            offset += kDragImageStep;
    }

    // No larger than needed: where windows cannot be transparent, the rest would be visible, too.
    const double ratio = m_view.viewport()->devicePixelRatioF();
    QPixmap pixmap((QSizeF(bounds.right(), bounds.bottom()) * ratio).toSize());
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (const auto &[place, picture] : pile)
        painter.drawImage(place, picture);
    // The pile is translucent, not its pictures one upon the other.
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.setOpacity(kDragImageOpacity);
    painter.fillRect(bounds.adjusted(-offset, -offset, 0, 0), Qt::black);
    return pixmap;
}

void ImageBrowserDrags::start()
{
    if (m_isDragging)
        return;
    m_isDragging = true;
    m_isStale = false;
    const QPointer<ImageBrowserView> view(&m_view);
    ImageBrowserDelegate &delegate = *m_view.delegate();
    auto *drag = new QDrag(m_view.viewport());
    // Owned by the drag, which deletes itself when control returns to the event loop.
    auto *files = new PromisedFiles(delegate.promisedFiles(m_view.selectionIndexes()), m_folders,
                                    PromisedFiles::Use::Drag, m_view.selectionIndexes());
    drag->setMimeData(files);
    m_draggedFiles = files;
    if (const QPixmap image = dragImage(); !image.isNull())
        drag->setPixmap(image);
    drag->setHotSpot(-kBesidePointer);
    // Once the drag has its window.
    if (!files->firstName().isEmpty())
        QTimer::singleShot(0, files, [files] { X11Drag::offerName(files->firstName()); });

    const Qt::DropActions outside = delegate.externalDraggingSourceOperationMask();
    const Qt::DropAction done =
        drag->exec(outside, outside & Qt::CopyAction ? Qt::CopyAction : Qt::IgnoreAction);
    if (!view) // and with it the drag and this object
        return;
    m_isDragging = false;
    leave();
    if (done != Qt::IgnoreAction && !drag->target())
        files->dropped(); // runs the event loop, so nothing may follow
}

bool ImageBrowserDrags::handle(QEvent &event)
{
    switch (event.type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
        move(static_cast<QDragMoveEvent &>(event));
        return true;
    case QEvent::DragLeave:
        leave();
        return true;
    case QEvent::Drop:
        drop(static_cast<QDropEvent &>(event));
        return true;
    default:
        return false;
    }
}

/// What dropping it here would do; IgnoreAction: the grid refuses it.
Qt::DropAction ImageBrowserDrags::actionFor(const QDropEvent &event) const
{
    Qt::DropActions possible = event.possibleActions();
    // A drag of the grid offers files as well.
    if (event.mimeData()->hasFormat(kPhotoSelectionType)) {
        if (event.mimeData() != m_draggedFiles || m_isStale)
            return Qt::IgnoreAction;
        if (event.source() == m_view.viewport()) // its own actions are those for other programs
            possible |= Qt::CopyAction | Qt::MoveAction;
        if (possible & Qt::MoveAction)
            return Qt::MoveAction;
        return possible & Qt::CopyAction && m_allowCopying ? Qt::CopyAction : Qt::IgnoreAction;
    }
    return possible & Qt::CopyAction && !droppedFiles(event.mimeData()).isEmpty() ? Qt::CopyAction
                                                                                  : Qt::IgnoreAction;
}

void ImageBrowserDrags::move(QDragMoveEvent &event)
{
    m_autoscroll.setPointer(event.position());
    const Qt::DropAction action = actionFor(event);
    event.setDropAction(action);
    event.setAccepted(action != Qt::IgnoreAction);
    const bool reorders = event.isAccepted() && event.mimeData()->hasFormat(kPhotoSelectionType);
    setInsertionIndex(reorders ? m_view.insertionIndexAtPoint(m_view.gridPoint(event.position())) : kNone);
    if (reorders)
        m_autoscroll.start();
}

void ImageBrowserDrags::leave()
{
    m_autoscroll.stop();
    setInsertionIndex(kNone);
}

void ImageBrowserDrags::drop(QDropEvent &event)
{
    leave();
    const Qt::DropAction action = actionFor(event);
    event.setDropAction(action);
    event.setAccepted(action != Qt::IgnoreAction);
    ImageBrowserDelegate *delegate = m_view.delegate();
    if (!event.isAccepted() || !delegate)
        return;
    if (!event.mimeData()->hasFormat(kPhotoSelectionType)) {
        delegate->receivedDraggedFiles(droppedFiles(event.mimeData()));
        return;
    }
    const QList<int> indexes = PromisedFiles::indexes(*event.mimeData());
    const int to = m_view.insertionIndexAtPoint(m_view.gridPoint(event.position()));
    if (action == Qt::MoveAction)
        delegate->movedIndexes(indexes, to);
    else
        delegate->copiedIndexes(indexes, to);
}

void ImageBrowserDrags::gridScrolled()
{
    if (m_insertionIndex != kNone)
        setInsertionIndex(m_view.insertionIndexAtPoint(m_view.gridPoint(m_autoscroll.pointer())));
}

void ImageBrowserDrags::setInsertionIndex(int index)
{
    if (index == m_insertionIndex)
        return;
    m_insertionIndex = index;
    m_view.refresh();
}

} // namespace plexa
