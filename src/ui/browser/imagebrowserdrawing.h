// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/browser/cellpictures.h"
#include "ui/browser/gridpainter.h"

#include <QRegion>
#include <QTimer>

namespace plexa
{

class ImageBrowserDrags;
class ImageBrowserInput;
class ImageBrowserView;

/// Draws a grid in paint events of limited length: cells for which the time was too short are drawn roughly,
/// and again when the event loop is idle. Keeps the pictures that it draws with. Main thread.
class ImageBrowserDrawing final
{
public:
    /// All outlive this object.
    ImageBrowserDrawing(ImageBrowserView &view, const ImageBrowserInput &input,
                        const ImageBrowserDrags &drags);
    Q_DISABLE_COPY_MOVE(ImageBrowserDrawing)

    /// Draws a rectangle of the viewport, in a paint event.
    void paint(const QRect &rect);

    /// Requests a cell to be drawn again; nothing for an index without a cell.
    void refreshImageAtIndex(int index);

    /// Moves what the viewport shows; the caller guarantees a whole number of device pixels.
    /// @param dy  points, downwards
    void scroll(int dy);

private:
    void drawCells(GridPainter &painter, const QRectF &dirty);
    CellContents contentsOf(int index, const QRectF &cell) const;

    ImageBrowserView &m_view;
    const ImageBrowserInput &m_input;
    const ImageBrowserDrags &m_drags;
    CellPictures m_pictures;
    NameLayouts m_names;
    QRegion m_rough; // of the viewport
    QTimer m_refineTimer;
};

} // namespace plexa
