// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/gridgeometry.h"

#include <algorithm>
#include <cmath>

namespace plexa
{
namespace
{

// Points.
constexpr double kMinCellSize = 50;
constexpr double kViewPadding = 10; // around the grid
constexpr double kMinSpacing = 4;   // between cells
constexpr double kInsertionBarWidth = 4;

double largestCell(QSizeF visible)
{
    return std::min(visible.width(), visible.height()) - 2 * (kViewPadding + kMinSpacing);
}

} // namespace

GridGeometry::GridGeometry(int count, QSizeF visible, float zoomFactor)
    : m_count(std::max(count, 0))
    , m_verticalSpacing(kMinSpacing)
{
    // The cube gives fine control over small sizes.
    const double zoom = std::clamp(static_cast<double>(zoomFactor), 0.0, 1.0);
    const double share = zoom * zoom * zoom;
    const double largest = largestCell(visible);
    m_cellSize = largest > kMinCellSize ? share * largest + (1 - share) * kMinCellSize : kMinCellSize;

    const double width = visible.width() - 2 * kViewPadding;
    m_columns = std::max(1, static_cast<int>((width - kMinSpacing) / (kMinSpacing + m_cellSize)));
    // The remaining width is distributed between the columns. A single cell that does not fit shows its left
    // side.
    m_horizontalSpacing = std::max(kMinSpacing, (width - m_columns * m_cellSize) / (m_columns + 1));

    m_rows = (m_count + m_columns - 1) / m_columns;
    m_height = m_rows * m_cellSize + (m_rows + 1) * m_verticalSpacing + 2 * kViewPadding;
    m_needsScrollBar = m_rows > 0 && m_height > visible.height();
    if (!m_needsScrollBar)
        m_height = visible.height();
}

float GridGeometry::zoomFactorFor(double cellSize, QSizeF visible)
{
    const double range = largestCell(visible) - kMinCellSize;
    const double share = range > 0 ? (cellSize - kMinCellSize) / range : 0;
    return static_cast<float>(std::cbrt(std::clamp(share, 0.0, 1.0)));
}

GridGeometry GridGeometry::besideScrollBar(int count, QSizeF full, double scrollBarWidth, float zoomFactor)
{
    const GridGeometry geometry(count, full, zoomFactor);
    if (!geometry.needsScrollBar())
        return geometry;
    // Cells may become smaller beside the bar and then fit; without the bar they would not, so it remains.
    GridGeometry beside(count, QSizeF(full.width() - scrollBarWidth, full.height()), zoomFactor);
    beside.m_needsScrollBar = true;
    return beside;
}

double GridGeometry::left() const
{
    return kViewPadding + m_horizontalSpacing;
}

double GridGeometry::top() const
{
    return kViewPadding + m_verticalSpacing;
}

std::optional<QRectF> GridGeometry::cell(int index) const
{
    if (index < 0 || index >= m_count)
        return std::nullopt;
    const int column = index % m_columns;
    const int row = index / m_columns;
    return QRectF(left() + column * (m_cellSize + m_horizontalSpacing),
                  top() + row * (m_cellSize + m_verticalSpacing), m_cellSize, m_cellSize);
}

int GridGeometry::cellAt(QPointF point) const
{
    const double dx = point.x() - left();
    const double dy = point.y() - top();
    if (m_count == 0 || dx < 0 || dy < 0)
        return kNone;
    const double column = std::floor(dx / (m_cellSize + m_horizontalSpacing));
    const double row = std::floor(dy / (m_cellSize + m_verticalSpacing));
    if (column >= m_columns || row >= m_rows)
        return kNone;
    if (dx - column * (m_cellSize + m_horizontalSpacing) > m_cellSize ||
        dy - row * (m_cellSize + m_verticalSpacing) > m_cellSize)
        return kNone;
    const int index = static_cast<int>(row) * m_columns + static_cast<int>(column);
    return index < m_count ? index : kNone;
}

int GridGeometry::insertionIndexAt(QPointF point) const
{
    if (m_count == 0)
        return 0;
    const double row = std::max(0.0, std::floor((point.y() - top()) / (m_cellSize + m_verticalSpacing)));
    if (row >= m_rows)
        return m_count;
    const double dx = point.x() - left();
    int column = 0;
    if (dx >= 0) {
        const double pitch = m_cellSize + m_horizontalSpacing;
        column = static_cast<int>(std::min<double>(dx / pitch, m_columns));
        // The right half of a cell and the gap after it insert after it; counted in whole points.
        const auto wholePitch = static_cast<qint64>(pitch);
        if (2 * (static_cast<qint64>(dx) % wholePitch) > wholePitch)
            ++column;
        column = std::min(column, m_columns);
    }
    return std::min(static_cast<int>(row) * m_columns + column, m_count);
}

QRectF GridGeometry::insertionBar(int index) const
{
    if (m_count == 0 || index < 0 || index > m_count)
        return {};
    const QRectF neighbor = *cell(std::min(index, m_count - 1));
    const double middle = index < m_count ? neighbor.left() - m_horizontalSpacing / 2
                                          : neighbor.right() + m_horizontalSpacing / 2;
    return {middle - kInsertionBarWidth / 2, neighbor.top(), kInsertionBarWidth, neighbor.height()};
}

GridGeometry::Range GridGeometry::cellsInRows(const QRectF &rect) const
{
    if (m_count == 0)
        return {};
    const double pitch = m_cellSize + m_verticalSpacing;
    const double last = m_rows;
    const double first = std::clamp(std::floor((rect.top() - top()) / pitch), 0.0, last);
    const double end = std::clamp(std::floor((rect.bottom() - top()) / pitch) + 1, first, last);
    return {std::min(static_cast<int>(first) * m_columns, m_count),
            std::min(static_cast<int>(end) * m_columns, m_count)};
}

} // namespace plexa
