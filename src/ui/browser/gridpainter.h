// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/browser/cellpictures.h"
#include "ui/browser/gridgeometry.h"

#include <QCache>
#include <QColor>
#include <QElapsedTimer>
#include <QFont>
#include <QStaticText>

class QPainter;

namespace plexa
{

/// How a grid looks; lengths in points.
struct GridStyle {
    bool showFilenames = true;
    bool drawCells = false; ///< tint every cell
    bool drawBorders = true;
    bool drawShadows = true;
    double textSize = 10; ///< of a file name: its font's pixels, and the height that is reserved for it
    double insertionHintWidth = 4;
    QColor textColor;  ///< invalid: that of the palette
    QColor focusColor; ///< of the ring around the image that has the keyboard focus
    QFont font;
};

/// What a cell shows.
struct CellContents {
    QImage thumbnail; ///< mirrored top to bottom; may be null
    QString filename;
    bool isSelected = false;
    bool hasFocusRing = false;
};

/// File names laid out for the width of a cell, shortened with an ellipsis where they are too long.
class NameLayouts
{
public:
    /// @param font, width  in device pixels
    /// @param makes        else null where there is none yet
    const QStaticText *layout(const QString &name, const QFont &font, int width, bool makes);
    static bool isShortened(const QString &name, const QFont &font, int width);

private:
    struct Key {
        QString name;
        int width;
        int fontPixels;
        bool operator==(const Key &) const = default;
    };
    friend size_t qHash(const Key &key, size_t seed)
    {
        return qHashMulti(seed, key.name, key.width, key.fontPixels);
    }
    QCache<Key, QStaticText> m_layouts{4000};
};

/// Draws the parts of a grid. Takes points of the whole grid, and works in device pixels, so that pictures
/// are neither scaled nor blurred by the painter. One for each paint event.
class GridPainter
{
public:
    struct Place {
        QPointF origin;              ///< the grid's point at the viewport's top left
        double devicePixelRatio = 1; ///< of the viewport
    };

    /// The painter's transform is that of the viewport, and put back in the end.
    GridPainter(QPainter &painter, const GridGeometry &geometry, const GridStyle &style,
                CellPictures &pictures, NameLayouts &names, const Place &place);
    ~GridPainter();
    Q_DISABLE_COPY_MOVE(GridPainter)

    /// For so long thumbnails are scaled and names laid out as they are shown; later ones are drawn roughly,
    /// so that a frame never takes long.
    void setTime(int milliseconds) { m_time = milliseconds; }

    void drawTint(const QRectF &cell);
    void drawInsertionBar(const QRectF &bar);
    void drawRubberBand(const QRectF &band);
    /// @return false when that was done roughly and is to be done again
    bool drawCell(const QRectF &cell, const CellContents &contents);

    /// In the middle of the visible area.
    static void drawEmptyText(QPainter &painter, const QRectF &visible, const QFont &font,
                              const QString &text);

private:
    QRect toDevice(const QRectF &rect) const;
    bool drawThumbnail(const QRect &area, const QImage &thumbnail);
    bool hasTime() const { return m_clock.elapsed() < m_time; }
    bool drawName(const QRect &area, const QString &name);

    QPainter &m_painter;
    const GridGeometry &m_geometry;
    const GridStyle &m_style;
    CellPictures &m_pictures;
    NameLayouts &m_names;
    const Place m_place;
    QFont m_font;
    QElapsedTimer m_clock;
    int m_time = 1 << 20; // milliseconds
};

} // namespace plexa
