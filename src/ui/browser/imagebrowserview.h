// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/browser/browserselection.h"
#include "ui/browser/gridgeometry.h"
#include "ui/browser/imagebrowsersource.h"

#include <QAbstractScrollArea>

#include <array>
#include <functional>
#include <memory>
#include <optional>

class QMenu;

namespace plexa
{

class ImageBrowserDelegate;
class ImageBrowserDrags;
class ImageBrowserDrawing;
class ImageBrowserInput;

/// Images as a scrolling grid of square cells. Shows a source, keeps selection, focus and zoom, and reports
/// to its delegate what the user does. Knows nothing of the application. Main thread.
///
/// Points and rectangles are those of the whole grid, in points: origin at its top left, y downwards. An
/// index of -1 is no image.
class ImageBrowserView final : public QAbstractScrollArea
{
    Q_OBJECT

public:
    static constexpr int kNone = BrowserSelection::kNone;

    explicit ImageBrowserView(QWidget *parent = nullptr);
    ~ImageBrowserView() override;

    /// Not owned; must outlive the grid or be removed. May be null.
    void setDelegate(ImageBrowserDelegate *delegate) { m_delegate = delegate; }
    ImageBrowserDelegate *delegate() const { return m_delegate; }
    /// Opened by a right click; not owned.
    void setContextMenu(QMenu *menu);

    // ---- what is shown
    /// Another source clears the selection; the same one changes nothing.
    void setImages(std::shared_ptr<const ImageBrowserSource> images);
    /// May be null.
    const ImageBrowserSource *images() const { return m_images.get(); }
    int numberImages() const;
    /// Empty for an index outside the list.
    QString filename(int index) const;

    /// 0: the smallest cells; 1: one cell fills the shorter side. Keeps the focus image in view, or else the
    /// middle of the visible area.
    void setZoomFactor(float zoomFactor);
    float zoomFactor() const { return m_zoomFactor; }
    void setShowFilenames(bool show);
    bool showFilenames() const { return m_showFilenames; }
    /// Whether a drag within the grid may copy where it cannot move. Initially true.
    void setAllowCopying(bool allow);
    /// Whether the image below the pointer shows its original's thumbnail. Initially false.
    void setShowsOriginalOnMouseOver(bool shows);

    /// Redraws the visible area, for new thumbnails.
    void refresh();
    /// Lays out again, for a changed list.
    void fullRefresh();
    void refreshImageAtIndex(int index);
    /// By identity; does nothing for an image that is not shown.
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

    // ---- selection and focus; changes are reported to the delegate unless stated otherwise
    /// Ascending.
    const QList<int> &selectionIndexes() const { return m_selection.indexes(); }
    int focusImageIndex() const { return m_selection.focus(); }
    bool isIndexSelected(int index) const { return m_selection.isSelected(index); }
    /// Changes selection and focus together, and reports the differences.
    void changeSelection(const std::function<void(BrowserSelection &)> &change);
    void selectAll();
    void selectNone();
    /// Without a report: the selection of the owner of the list.
    void takeSelection(const QList<int> &indexes, int focus);
    /// One step, as by the left or right arrow key with these modifiers.
    void selectNeighbourImage(bool next, Qt::KeyboardModifiers modifiers);

    /// Asks the delegate to copy the selected images to the clipboard.
    void copy();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool viewportEvent(QEvent *event) override;

    void keyPressEvent(QKeyEvent *event) override;

private:
    void computeGridAndFrame();
    void scrollTo(double top);
    void reportVisibleImages();

    ImageBrowserDelegate *m_delegate = nullptr;
    std::shared_ptr<const ImageBrowserSource> m_images;
    BrowserSelection m_selection;
    GridGeometry m_geometry;
    bool m_showFilenames = true;
    float m_zoomFactor = 0.5F;
    bool m_isComputing = false;
    std::array<int, 3> m_visible{}; // as reported

    const std::unique_ptr<ImageBrowserDrags> m_drags;
    const std::unique_ptr<ImageBrowserInput> m_input;
    const std::unique_ptr<ImageBrowserDrawing> m_drawing;
};

} // namespace plexa
