// SPDX-License-Identifier: GPL-3.0-or-later

// Where cells are, and what presses and keys select, without a widget.

#include "ui/browser/browserselection.h"
#include "ui/browser/gridgeometry.h"

#include <QTest>

using namespace plexa;
using Mode = BrowserSelection::Mode;

class GridRulesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void layout_data();
    void layout();
    void pointsBetweenCells();
    void scrollBar();
    void selection_data();
    void selection();
};

void GridRulesTest::layout_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QSizeF>("visible");
    QTest::addColumn<float>("zoom");
    QTest::addColumn<int>("columns");
    QTest::addColumn<double>("cellSize");
    QTest::addColumn<double>("spacing");
    QTest::addColumn<double>("height");

    const QSizeF wide(800, 500);
    // (780 - 4) / 54 = 14.4; (780 - 14 * 50) / 15; 36 rows * 50 + 37 * 4 + 20
    QTest::newRow("smallest") << 500 << wide << 0.0F << 14 << 50.0 << 80.0 / 15 << 1968.0;
    QTest::newRow("largest") << 3 << wide << 1.0F << 1 << 472.0 << 154.0 << 3 * 472.0 + 4 * 4 + 20;
    // 0.125 * 472 + 0.875 * 50
    QTest::newRow("half") << 12 << wide << 0.5F << 7 << 102.75 << (780 - 7 * 102.75) / 8 << 500.0;
    QTest::newRow("one cell in a square") << 1 << QSizeF(300, 300) << 1.0F << 1 << 272.0 << 4.0 << 300.0;
    QTest::newRow("low") << 10 << QSizeF(800, 70) << 1.0F << 14 << 50.0 << 80.0 / 15 << 78.0;
    QTest::newRow("too narrow") << 2 << QSizeF(60, 500) << 0.5F << 1 << 50.0 << 4.0 << 500.0;
    QTest::newRow("no width") << 2 << QSizeF(0, 0) << 1.0F << 1 << 50.0 << 4.0 << 132.0;
    QTest::newRow("nothing") << 0 << wide << 0.0F << 14 << 50.0 << 80.0 / 15 << 500.0;
    QTest::newRow("out of range") << 500 << wide << -3.0F << 14 << 50.0 << 80.0 / 15 << 1968.0;
}

void GridRulesTest::layout()
{
    QFETCH(int, count);
    QFETCH(QSizeF, visible);
    QFETCH(float, zoom);
    const GridGeometry grid(count, visible, zoom);
    QTEST(grid.columns(), "columns");
    QTEST(grid.cellSize(), "cellSize");
    QTEST(grid.horizontalSpacing(), "spacing");
    QTEST(grid.height(), "height");

    // Every cell is found again at its corners and its middle, in no gap, and in the rows of its rectangle.
    QCOMPARE(grid.insertionIndexAt({0, grid.height() + 100}), count);
    QVERIFY(!grid.cell(-1) && !grid.cell(count));
    for (int i = 0; i < count; ++i) {
        const QRectF cell = *grid.cell(i);
        for (const QPointF point : {cell.topLeft(), cell.center(), cell.bottomRight() - QPointF(0.1, 0.1)})
            QCOMPARE(grid.cellAt(point), i);
        QCOMPARE(grid.cellAt(cell.topLeft() - QPointF(1, 0)), GridGeometry::kNone);
        QCOMPARE(grid.cellAt(cell.bottomLeft() + QPointF(0, 1)), GridGeometry::kNone);
        QCOMPARE(grid.insertionIndexAt(cell.center() - QPointF(cell.width() / 4, 0)), i);
        QCOMPARE(grid.insertionIndexAt(cell.center() + QPointF(cell.width() / 4, 0)), i + 1);
        const auto range = grid.cellsInRows(cell);
        QVERIFY(range.first <= i && i < range.end && range.end - range.first <= grid.columns());
    }
}

void GridRulesTest::pointsBetweenCells()
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
    QCOMPARE(grid.insertionBar(1, 4).center().x(), (first.right() + grid.cell(1)->left()) / 2);
    QVERIFY(grid.insertionBar(20, 4).left() > grid.cell(19)->right());
    QCOMPARE(grid.insertionBar(20, 4).height(), 50.0);
}

/// What does not fit without a scroll bar keeps it, even where the smaller cells beside it would fit.
void GridRulesTest::scrollBar()
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

namespace
{

/// Plays a line of steps on ten images in rows of four: "p3" a press, "r" and "l" one image on and back, "d"
/// and "u" a row, "h" and "e" the first and last image, "a" all, "n" none, "i" inverted; before it "+" for
/// Ctrl,
/// "^" for Shift.
BrowserSelection played(const QString &steps)
{
    BrowserSelection selection;
    selection.setCount(10);
    const auto words = steps.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (QString word : words) {
        Mode mode = Mode::Replace;
        if (word.startsWith(QLatin1Char('+')) || word.startsWith(QLatin1Char('^'))) {
            mode = word.at(0) == QLatin1Char('+') ? Mode::Extend : Mode::Range;
            word.remove(0, 1);
        }
        switch (word.at(0).toLatin1()) {
        case 'p':
            selection.press(word.mid(1).toInt(), mode);
            break;
        case 'r':
            selection.stepTo(true, mode);
            break;
        case 'l':
            selection.stepTo(false, mode);
            break;
        case 'd':
            selection.jumpBy(4, mode);
            break;
        case 'u':
            selection.jumpBy(-4, mode);
            break;
        case 'h':
            selection.jumpTo(0, mode);
            break;
        case 'e':
            selection.jumpTo(9, mode);
            break;
        case 'a':
            selection.selectAll();
            break;
        case 'n':
            selection.selectNone();
            break;
        case 'i':
            selection.invert();
            break;
        case 'c':
            selection.setCount(word.mid(1).toInt());
            break;
        default:
            qFatal("unknown step");
        }
    }
    return selection;
}

} // namespace

void GridRulesTest::selection_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QList<int>>("indexes");
    QTest::addColumn<int>("focus");

    using L = QList<int>;
    QTest::newRow("press") << "p3 p5" << L{5} << 5;
    QTest::newRow("press one of several") << "p3 +p5 p3" << L{3, 5} << 3;
    QTest::newRow("ctrl takes out") << "p3 +p5 +p3" << L{5} << 3;
    QTest::newRow("shift, forwards") << "p3 ^p5" << L{3, 4, 5} << 5;
    QTest::newRow("shift, backwards") << "p5 ^p3" << L{3, 4, 5} << 3;
    QTest::newRow("shift adds") << "p1 +p5 ^p7" << L{1, 5, 6, 7} << 7;
    QTest::newRow("shift without focus") << "^p4" << L{4} << 4;
    QTest::newRow("a selected one with shift") << "p1 ^p5 ^p3" << L{1, 2, 3, 4, 5} << 3;
    QTest::newRow("press beyond the list") << "p3 p10" << L{3} << 3;

    QTest::newRow("right, first") << "r" << L{0} << 0;
    QTest::newRow("left, first") << "l" << L{9} << 9;
    QTest::newRow("right at the end") << "p9 r" << L{9} << 9;
    QTest::newRow("ctrl right") << "p3 +r" << L{3, 4} << 4;
    QTest::newRow("shift right grows") << "p2 ^p5 ^r" << L{2, 3, 4, 5, 6} << 6;
    QTest::newRow("shift left shrinks") << "p2 ^p5 ^l" << L{2, 3, 4} << 4;
    QTest::newRow("shift right shrinks") << "p5 ^p2 ^r" << L{3, 4, 5} << 3;
    QTest::newRow("shift right at the end") << "p8 ^r ^r" << L{8, 9} << 9;
    QTest::newRow("shift left, first") << "^l" << L{9} << 9;

    QTest::newRow("down, first") << "d" << L{0} << 0;
    QTest::newRow("up, first") << "u" << L{9} << 9;
    QTest::newRow("down to the last") << "p7 d" << L{9} << 9;
    QTest::newRow("up to the first") << "p2 u" << L{0} << 0;
    QTest::newRow("ctrl down") << "p1 +d" << L{1, 5} << 5;
    QTest::newRow("shift down grows") << "p1 ^d" << L{1, 2, 3, 4, 5} << 5;
    QTest::newRow("shift up shrinks") << "p1 ^d ^u" << L{1} << 1;
    QTest::newRow("shift down shrinks") << "p9 ^u ^d" << L{9} << 9;
    QTest::newRow("shift down at the end") << "p9 ^d" << L{9} << 9;
    QTest::newRow("shift to the end") << "p6 ^e" << L{6, 7, 8, 9} << 9;
    QTest::newRow("shift back to the first") << "p6 ^e ^h" << L{0, 1, 2, 3, 4, 5, 6, 7, 8, 9} << 0;

    QTest::newRow("all") << "p3 a" << L{0, 1, 2, 3, 4, 5, 6, 7, 8, 9} << 3;
    QTest::newRow("none") << "p3 n" << L{} << -1;
    QTest::newRow("inverted") << "p0 ^p7 i" << L{8, 9} << 8;
    QTest::newRow("all inverted") << "p3 a i" << L{} << -1;
    QTest::newRow("a shorter list") << "p3 ^p7 c5" << L{3, 4} << -1;
    QTest::newRow("an empty list") << "p3 c0 r d ^u h a i" << L{} << -1;
}

void GridRulesTest::selection()
{
    QFETCH(QString, steps);
    const BrowserSelection selection = played(steps);
    QTEST(selection.indexes(), "indexes");
    QTEST(selection.focus(), "focus");
}

QTEST_GUILESS_MAIN(GridRulesTest)
#include "gridrules_test.moc"
