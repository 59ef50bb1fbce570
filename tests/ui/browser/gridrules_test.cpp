// SPDX-License-Identifier: GPL-3.0-or-later

// Where cells are, and what presses and keys select, without a widget.

#include "support/datarows.h"
#include "ui/browser/browserselection.h"
#include "ui/browser/gridgeometry.h"

#include <functional>
#include <map>

using namespace plexa;
using namespace plexa::test;
using Mode = BrowserSelection::Mode;

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

struct Steps {
    Text name;
    Text steps;
    QList<int> indexes;
    int focus;
};

/// Plays a line of steps on ten images in rows of four: "p3" a press, "r" and "l" one image on and back, "d"
/// and "u" a row, "h" and "e" the first and last image, "a" all, "n" none, "i" inverted, "c5" a list of five;
/// before it "+" for Ctrl, "^" for Shift.
BrowserSelection played(const QString &steps)
{
    BrowserSelection selection;
    selection.setCount(10);
    for (QString word : steps.split(u' ')) {
        Mode mode = Mode::Replace;
        if (word.startsWith(u'+') || word.startsWith(u'^')) {
            mode = word.at(0) == u'+' ? Mode::Extend : Mode::Range;
            word.remove(0, 1);
        }
        const int number = word.mid(1).toInt();
        const std::map<char, std::function<void()>> actions{
            {'p', [&] { selection.press(number, mode); }}, {'r', [&] { selection.stepTo(true, mode); }},
            {'l', [&] { selection.stepTo(false, mode); }}, {'d', [&] { selection.jumpBy(4, mode); }},
            {'u', [&] { selection.jumpBy(-4, mode); }},    {'h', [&] { selection.jumpTo(0, mode); }},
            {'e', [&] { selection.jumpTo(9, mode); }},     {'a', [&] { selection.selectAll(); }},
            {'n', [&] { selection.selectNone(); }},        {'i', [&] { selection.invert(); }},
            {'c', [&] { selection.setCount(number); }},
        };
        actions.at(word.at(0).toLatin1())();
    }
    return selection;
}

} // namespace

class GridRulesTest : public QObject
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

    void pointsBetweenCells()
    {
        const GridGeometry grid(20, QSizeF(800, 500), 0); // 14 columns
        const QRectF first = *grid.cell(0);
        const QRectF last = *grid.cell(13);
        const QPointF gap(first.right() + 1, first.center().y());
        QCOMPARE(grid.cellAt(gap), GridGeometry::kNone);
        QCOMPARE(grid.insertionIndexAt(gap), 1);
        QCOMPARE(grid.insertionIndexAt(QPointF(first.left() - 3, 0)), 0);
        QCOMPARE(grid.insertionIndexAt(QPointF(0, grid.cell(14)->center().y())), 14);
        QCOMPARE(grid.insertionIndexAt(QPointF(5000, last.center().y())), 14);
        QCOMPARE(grid.insertionIndexAt(QPointF(700, grid.cell(14)->center().y())), 20);
        QCOMPARE(grid.cellAt(QPointF(700, grid.cell(14)->center().y())), GridGeometry::kNone);
        QCOMPARE(GridGeometry().insertionIndexAt({5, 5}), 0);

        // The bar stands in the middle of the gap before a cell, behind the last one at the end.
        QCOMPARE(grid.insertionBar(1).center().x(), (first.right() + grid.cell(1)->left()) / 2);
        QVERIFY(grid.insertionBar(20).left() > grid.cell(19)->right());
        QCOMPARE(grid.insertionBar(20).height(), 50.0);
    }

    /// What does not fit without a scroll bar keeps it, even where the smaller cells beside it would fit.
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

    void selection_data()
    {
        addRows<Steps>({
            {"press one of several", "p3 +p5 p3", {3, 5}, 3},
            {"ctrl takes out", "p3 +p5 +p3", {5}, 3},
            {"shift, backwards", "p5 ^p3", {3, 4, 5}, 3},
            {"shift adds", "p1 +p5 ^p7", {1, 5, 6, 7}, 7},
            {"shift without focus", "^p4", {4}, 4},
            {"a selected one with shift", "p1 ^p5 ^p3", {1, 2, 3, 4, 5}, 3},
            {"press beyond the list", "p3 p10", {3}, 3},

            {"right, first", "r", {0}, 0},
            {"left, first", "l", {9}, 9},
            {"right at the end", "p9 r", {9}, 9},
            {"ctrl right", "p3 +r", {3, 4}, 4},
            {"shift right grows", "p2 ^p5 ^r", {2, 3, 4, 5, 6}, 6},
            {"shift left shrinks", "p2 ^p5 ^l", {2, 3, 4}, 4},
            {"shift right at the end", "p8 ^r ^r", {8, 9}, 9},

            {"up, first", "u", {9}, 9},
            {"down to the last", "p7 d", {9}, 9},
            {"up to the first", "p2 u", {0}, 0},
            {"shift down grows", "p1 ^d", {1, 2, 3, 4, 5}, 5},
            {"shift up shrinks", "p1 ^d ^u", {1}, 1},
            {"shift down at the end", "p9 ^d", {9}, 9},
            {"shift back to the first", "p6 ^e ^h", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 0},

            {"all", "p3 a", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 3},
            {"none", "p3 n", {}, -1},
            {"inverted", "p0 ^p7 i", {8, 9}, 8},
            {"all inverted", "p3 a i", {}, -1},
            {"a shorter list", "p3 ^p7 c5", {3, 4}, -1},
            {"an empty list", "p3 c0 r d ^u h a i", {}, -1},
        });
    }
    void selection()
    {
        const auto [name, steps, indexes, focus] = currentRow<Steps>();
        const BrowserSelection selection = played(steps);
        QCOMPARE(selection.indexes(), indexes);
        QCOMPARE(selection.focus(), focus);
    }
};

QTEST_GUILESS_MAIN(GridRulesTest)
#include "gridrules_test.moc"
