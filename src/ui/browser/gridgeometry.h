// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <optional>

namespace plexa
{

/// Where the cells of a grid are. Coordinates are those of the whole grid, in points: origin at its top left,
/// y downwards. A value; knows no widget.
class GridGeometry
{
public:
    static constexpr int kNone = -1;

    GridGeometry() = default;

    /// Lays out `count` cells in rows.
    /// @param zoomFactor  0: the smallest cells; 1: one cell fills the shorter side of the visible area
    GridGeometry(int count, QSizeF visible, float zoomFactor);

    /// As above; where the rows do not fit, beside a scroll bar of this width.
    static GridGeometry besideScrollBar(int count, QSizeF full, double scrollBarWidth, float zoomFactor);

    /// The least zoom factor with cells of this size.
    static float zoomFactorFor(double cellSize, QSizeF visible);

    int count() const { return m_count; }
    double cellSize() const { return m_cellSize; }
    /// At least 1: a view too narrow for one cell shows a part of it.
    int columns() const { return m_columns; }
    double horizontalSpacing() const { return m_horizontalSpacing; }
    double verticalSpacing() const { return m_verticalSpacing; }
    /// Of all rows, but at least that of the visible area.
    double height() const { return m_height; }
    /// Not all rows fit in the visible area, or would not without the bar.
    bool needsScrollBar() const { return m_needsScrollBar; }

    /// Nothing for an index without a cell.
    std::optional<QRectF> cell(int index) const;

    /// The cell at a point; kNone in gaps, in margins and after the last cell.
    int cellAt(QPointF point) const;

    /// The cell before which a drop at this point inserts; count(): at the end.
    int insertionIndexAt(QPointF point) const;

    /// The mark in the gap before a cell, where a drop would insert: as high as a cell. Empty for an index
    /// beyond count() and for an empty grid.
    QRectF insertionBar(int index) const;

    /// The cells of the rows that meet the rectangle, as a range: first, and one past the last.
    struct Range {
        int first = 0;
        int end = 0;
    };
    Range cellsInRows(const QRectF &rect) const;

private:
    double left() const;
    double top() const;

    int m_count = 0;
    int m_columns = 1;
    int m_rows = 0;
    double m_cellSize = 0;
    double m_horizontalSpacing = 0;
    double m_verticalSpacing = 0;
    double m_height = 0;
    bool m_needsScrollBar = false;
};

} // namespace plexa
