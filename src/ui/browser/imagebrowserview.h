// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/browser/browserselection.h"
#include "ui/browser/cellpictures.h"
#include "ui/browser/gridgeometry.h"
#include "ui/browser/gridpainter.h"
#include "ui/browser/imagebrowsersource.h"

#include <QAbstractScrollArea>
#include <QMimeData>
#include <QPointer>
#include <QRegion>
#include <QTimer>

#include <memory>
#include <optional>

class QMenu;
class QNativeGestureEvent;

namespace plexa
{

class ImageBrowserDelegate;
class PrivateFolders;

/// Images as a scrolling grid of square cells. Shows a source, keeps selection, focus and zoom, and tells its
/// delegate what the user does; knows nothing of the application.
///
/// Points and rectangles of its functions are those of the whole grid, in points: origin at its top left,
/// y downwards. An index of -1 is none.
class ImageBrowserView final : public QAbstractScrollArea
{
    Q_OBJECT

public:
    static constexpr int kNone = BrowserSelection::kNone;

    explicit ImageBrowserView(QWidget *parent = nullptr);
    ~ImageBrowserView() override;

    /// Not owned; has to outlive the grid or be taken away. Null: nobody is told.
    void setDelegate(ImageBrowserDelegate *delegate) { m_delegate = delegate; }
    /// Opened by a right click; not owned.
    void setContextMenu(QMenu *menu);

    // ---- what is shown
    /// Another source clears the selection; the same one changes nothing.
    void setImages(std::shared_ptr<const ImageBrowserSource> images);
    int numberImages() const;
    QString filename(int index) const;

    /// 0: the smallest cells; 1: one cell fills the shorter side. Keeps the focus image in view, or else the
    /// middle of what is seen.
    void setZoomFactor(float zoomFactor);
    float zoomFactor() const { return m_zoomFactor; }
    void setShowFilenames(bool show);
    bool showFilenames() const { return m_style.showFilenames; }
    void setGridStyle(const GridStyle &style);
    const GridStyle &gridStyle() const { return m_style; }
    /// May a drag within the grid copy, where it cannot move?
    void setAllowCopying(bool allow) { m_allowCopying = allow; }
    /// Asks for the original's thumbnail of the image below the pointer.
    void setShowsOriginalOnMouseOver(bool shows);

    /// Redraws what is seen: thumbnails may have changed.
    void refresh();
    /// Lays out anew: the list may have changed.
    void fullRefresh();
    void refreshImageAtIndex(int index);
    /// By identity; nothing when it is not shown.
    void refreshImage(const void *image);

    // ---- where things are
    const GridGeometry &geometry() const { return m_geometry; }
    int cellIndexAtPoint(QPointF point) const { return m_geometry.cellAt(point); }
    std::optional<QRectF> cellForIndex(int index) const { return m_geometry.cell(index); }
    int insertionIndexAtPoint(QPointF point) const { return m_geometry.insertionIndexAt(point); }
    QRectF visibleRect() const;
    QPointF gridPoint(QPointF viewportPoint) const;
    QRectF viewportRect(const QRectF &gridRect) const;
    bool cellIsVisible(int index) const;
    void scrollCellToVisible(int index);
    void scrollFocusImageToVisible() { scrollCellToVisible(focusImageIndex()); }

    // ---- what is selected; the delegate is told of changes, unless said otherwise
    /// Ascending.
    const QList<int> &selectionIndexes() const { return m_selection.indexes(); }
    int focusImageIndex() const { return m_selection.focus(); }
    bool isIndexSelected(int index) const { return m_selection.isSelected(index); }
    void selectIndex(int index, bool extend, int allFromIndex);
    /// Exactly that one; the delegate hears of it twice.
    void selectIndex(int index);
    void selectIndexes(const QList<int> &indexes, bool extend);
    void deselectIndex(int index) { deselectIndexes(index, index); }
    void deselectIndexes(int from, int to);
    void selectAll();
    void selectNone();
    void invertSelection();
    void setFocusImageIndex(int index);
    /// Without telling.
    void purgeFocusImageIndex();
    /// What the owner of the list has decided, without telling him.
    void takeSelection(const QList<int> &indexes, int focus);
    /// One step, as by the left or right arrow key with these modifiers.
    void selectNeighbourImage(bool next, Qt::KeyboardModifiers modifiers);

    /// The selected images to the clipboard, by the delegate.
    void copy();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool viewportEvent(QEvent *event) override;

    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void computeGridAndFrame();
    void scrollTo(double top);
    void lookAgain();
    CellContents contentsOf(int index) const;

    template<class Change>
    void change(const Change &apply);
    void tellOfChange(const BrowserSelection &before);

    void press(int index, Qt::KeyboardModifiers modifiers, Qt::MouseButton button);
    void stretchRubberBand(QPointF viewportPoint);
    void endRubberBand(bool selects);
    void setShowOriginalAtIndex(int index);
    int imagesInPage() const;
    bool handleKey(const QKeyEvent &event);
    bool handleGesture(const QNativeGestureEvent &event);
    void rotateBy(double degreesClockwise);
    void swipeBy(double delta);
    bool showToolTip(QPoint viewportPoint, QPoint globalPoint);
    void autoscroll();

    void startDrag(QPointF viewportPoint);
    QPixmap dragImage() const;
    Qt::DropAction actionFor(const QDropEvent &event) const;
    void setDrawnInsertionIndex(int index);

    ImageBrowserDelegate *m_delegate = nullptr;
    QPointer<QMenu> m_contextMenu;
    std::shared_ptr<const ImageBrowserSource> m_images;
    BrowserSelection m_selection;
    GridGeometry m_geometry;
    GridStyle m_style;
    float m_zoomFactor = 0.5F;
    bool m_allowCopying = true;
    bool m_isComputing = false;

    CellPictures m_pictures;
    NameLayouts m_names;
    QRegion m_rough; // of the viewport, to be drawn again
    QTimer m_refineTimer;

    QPointF m_mouseDownPoint;
    bool m_mouseDownAtImage = false;
    bool m_isBandAllowed = false; // by the press on empty space, until the Escape key
    bool m_isDoubleClick = false;
    std::optional<QRectF> m_mouseSelectionRect; // the rubber band
    QPointF m_pointer;                          // last seen, in the viewport
    QTimer m_autoscrollTimer;
    bool m_showsOriginalOnMouseOver = false;
    int m_showOriginalAtIndex = kNone;

    double m_accumulatedRotation = 0; // degrees clockwise
    QPointF m_accumulatedPan;

    std::shared_ptr<PrivateFolders> m_folders;
    QPointer<const QMimeData> m_draggedFiles; // of the last drag
    bool m_isDraggingImages = false;
    bool m_isDragStale = false; // the list changed since it began
    int m_drawnInsertionIndex = kNone;
};

} // namespace plexa
