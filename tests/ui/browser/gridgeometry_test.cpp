// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/datarows.h"
#include "ui/browser/gridgeometry.h"

#include <QTest>

using namespace plexa;
using namespace plexa::test;

namespace
{

struct Layout {
    Text name;
    int count;
    QSizeF visible;
    float zoom;
    int columns;
    double cellSize;
    double spacing;
    double height;
};

} // namespace

class GridGeometryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void layout_data()
    {
        const QSizeF wide(800, 500);
        addRows<Layout>({
            // (780 - 4) / 54 = 14.4; (780 - 14 * 50) / 15; 36 rows * 50 + 37 * 4 + 20
            {"smallest", 500, wide, 0, 14, 50, 80.0 / 15, 1968},
            {"largest", 3, wide, 1, 1, 472, 154, 3 * 472.0 + 4 * 4 + 20},
            // 0.125 * 472 + 0.875 * 50
            {"half", 12, wide, 0.5F, 7, 102.75, (780 - 7 * 102.75) / 8, 500},
            {"one cell in a square", 1, QSizeF(300, 300), 1, 1, 272, 4, 300},
            {"low", 10, QSizeF(800, 70), 1, 14, 50, 80.0 / 15, 78},
            {"no width", 2, QSizeF(0, 0), 1, 1, 50, 4, 132},
            {"out of range", 500, wide, -3, 14, 50, 80.0 / 15, 1968},
        });
    }
    void layout()
    {
        const auto [name, count, visible, zoom, columns, cellSize, spacing, height] = currentRow<Layout>();
        const GridGeometry grid(count, visible, zoom);
        QCOMPARE(grid.columns(), columns);
        QCOMPARE(grid.cellSize(), cellSize);
        QCOMPARE(grid.horizontalSpacing(), spacing);
        QCOMPARE(grid.height(), height);

        // Every cell is found again at its corners and its middle, in no gap, and in the rows of its
        // rectangle.
        QCOMPARE(grid.insertionIndexAt({0, grid.height() + 100}), count);
        QVERIFY(!grid.cell(-1) && !grid.cell(count));
        for (int i = 0; i < count; ++i) {
            const QRectF cell = *grid.cell(i);
            for (const QPointF point :
                 {cell.topLeft(), cell.center(), cell.bottomRight() - QPointF(0.1, 0.1)})
                QCOMPARE(grid.cellAt(point), i);
            QCOMPARE(grid.cellAt(cell.topLeft() - QPointF(1, 0)), GridGeometry::kNone);
            QCOMPARE(grid.cellAt(cell.bottomLeft() + QPointF(0, 1)), GridGeometry::kNone);
            QCOMPARE(grid.insertionIndexAt(cell.center() - QPointF(cell.width() / 4, 0)), i);
            QCOMPARE(grid.insertionIndexAt(cell.center() + QPointF(cell.width() / 4, 0)), i + 1);
            const auto range = grid.cellsInRows(cell);
            QVERIFY(range.first <= i && i < range.end && range.end - range.first <= grid.columns());
        }
    }

    /// Rows that do not fit keep the scroll bar, even if the smaller cells beside it would fit.
    void scrollBar()
    {
        bool hasMetTheBorderline = false;
        for (int height = 100; height < 2000; ++height) {
            const QSizeF full(400, height);
            const GridGeometry alone(5, full, 0.9F);
            const GridGeometry beside = GridGeometry::besideScrollBar(5, full, 15, 0.9F);
            QCOMPARE(beside.needsScrollBar(), alone.needsScrollBar());
            hasMetTheBorderline |= beside.needsScrollBar() && beside.height() <= height;
        }
        QVERIFY(hasMetTheBorderline);
    }
};

QTEST_GUILESS_MAIN(GridGeometryTest)
#include "gridgeometry_test.moc"
