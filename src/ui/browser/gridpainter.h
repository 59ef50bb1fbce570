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

/// How a grid looks.
struct GridStyle {
    bool showFilenames = true;
    QFont font;
    QColor textColor;
    QColor markColor;  ///< of the marks of selected cells and of drags
    QColor focusColor; ///< of that ring
};

/// What a cell shows.
struct CellContents {
    QImage thumbnail; ///< mirrored top to bottom; may be null
    QString filename;
    bool isSelected = false;
    bool hasFocus = false; ///< as the preview shows it
};

/// File names laid out for the width of a cell, shortened with an ellipsis where they are too long.
class NameLayouts
{
public:
    /// @param font, width  in device pixels
    /// @param makes  false: returns null if the name has not been laid out yet
    const QStaticText *layout(const QString &name, const QFont &font, int width, bool makes);
    static bool isShortened(const QString &name, const QFont &font, int width);
    /// The font of the names: the user's, but of at least 11 points. @param scale  device pixels in a point
    static QFont fontOf(const QFont &font, double scale);

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

/// Draws the parts of a grid. Parameters are points of the whole grid; drawing is in device pixels, so the
/// painter neither scales nor blurs pictures. One for each paint event: after some milliseconds, thumbnails
/// that would have to be scaled and names that would have to be laid out are drawn roughly.
class GridPainter
{
public:
    struct Place {
        QPointF origin;              ///< the grid's point at the viewport's top left
        double devicePixelRatio = 1; ///< of the viewport
    };

    /// Expects the viewport's transform in the painter and restores it at the end.
    GridPainter(QPainter &painter, const GridGeometry &geometry, const GridStyle &style,
                CellPictures &pictures, NameLayouts &names, const Place &place);
    ~GridPainter();
    Q_DISABLE_COPY_MOVE(GridPainter)

    void drawInsertionBar(const QRectF &bar);
    void drawRubberBand(const QRectF &band);
    /// @return false if the cell was drawn roughly and should be drawn again
    bool drawCell(const QRectF &cell, const CellContents &contents);

private:
    QRect toDevice(const QRectF &rect) const;
    void drawOutline(const QRect &cell, const CellContents &contents);
    bool drawThumbnail(const QRect &area, const QImage &thumbnail);
    bool hasTime() const;
    bool drawName(const QRect &area, const QString &name);

    QPainter &m_painter;
    const GridGeometry &m_geometry;
    const GridStyle &m_style;
    CellPictures &m_pictures;
    NameLayouts &m_names;
    const Place m_place;
    QFont m_font;
    int m_textHeight; // of a name
    QElapsedTimer m_clock;
};

} // namespace plexa
