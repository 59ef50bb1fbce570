// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/shownwindow.h"

#include <QAbstractItemModelTester>
#include <QFileInfo>
#include <QLineEdit>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// A table of photos that all can be read.
struct Table : ShownWindow {
    explicit Table(int count)
    {
        set.setImageListModeToBrowser(false);
        for (int i = 0; i < count; ++i)
            set.addImage(u"/photos/p%1.jpg"_qs.arg(i), file);
    }

    void click(int row, Qt::KeyboardModifiers modifiers = {})
    {
        const QPoint at = table.visualRect(table.model()->index(row, 0)).center();
        QTest::mouseClick(table.viewport(), Qt::LeftButton, modifiers, at);
    }

    IndexList rows() const
    {
        IndexList rows;
        for (const QModelIndex &index : table.selectionModel()->selectedRows())
            rows.append(index.row());
        std::sort(rows.begin(), rows.end());
        return rows;
    }

    const QString file = files.photo("photo.png");
};

} // namespace

class ImageListViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leadsAndFollowsTheSelection()
    {
        Table f(100);
        f.click(2);
        QCOMPARE(f.set.selection().selectedIndexes(), IndexList({2}));
        f.click(5, Qt::ShiftModifier);
        f.click(3, Qt::ControlModifier);
        QCOMPARE(f.set.selection().selectedIndexes(), IndexList({2, 4, 5}));
        QCOMPARE(f.set.selection().shownImageIndex(), 2);
        QTest::keyClick(&f.table, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(f.set.selection().selectedIndexes().size(), 100);

        QTest::keyClick(&f.table, Qt::Key_End);
        QCOMPARE(f.set.selection().selectedIndexes(), IndexList({99}));
        QTest::keyClick(&f.table, Qt::Key_Home, Qt::ShiftModifier);
        QCOMPARE(f.set.selection().selectedIndexes().size(), 100);

        f.set.selection().selectIndexes({80, 82});
        QCOMPARE(f.rows(), IndexList({80, 82}));
        QVERIFY(f.table.viewport()->rect().contains(f.table.visualRect(f.table.model()->index(80, 0))));
    }

    void followsTheList()
    {
        Table f(12);
        const QAbstractItemModelTester tester(f.table.model(),
                                              QAbstractItemModelTester::FailureReportingMode::QtTest);

        // The photo that followed the removed ones is shown next.
        f.click(4);
        f.click(1, Qt::ControlModifier);
        QTest::keyClick(&f.table, Qt::Key_Backspace);
        QCOMPARE(f.rows(), IndexList({1}));
        QTest::keyClick(&f.table, Qt::Key_Delete);
        QCOMPARE(f.set.images()->size(), std::size_t(9));
        QCOMPARE(f.rows(), f.set.selection().selectedIndexes());

        f.click(3);
        f.click(5, Qt::ShiftModifier);
        f.set.moveIndexes({3, 4, 5}, 0);
        QCOMPARE(f.rows(), IndexList({0, 1, 2}));
        const QModelIndex first = f.table.model()->index(0, 0);
        QCOMPARE(first.data().toString(), (*f.set.images())[0]->path());
        QVERIFY(first.data(Qt::ToolTipRole).toString().contains(first.data().toString()));

        f.set.filterImages(u"P1"_qs);
        QCOMPARE(f.table.model()->rowCount(), 2); // p10 and p11; p1 was removed
        QCOMPARE(f.rows(), IndexList());
        f.set.addImage(u"/photos/P1 again.jpg"_qs, f.file);
        QCOMPARE(f.table.model()->rowCount(), 3);
    }

    /// Rows have room for a picture, which visible photos are loaded for; the name comes before the folder.
    void showsPictures()
    {
        Table f(300);
        const QAbstractItemModel &model = *f.table.model();
        QVERIFY(f.table.rowHeight(0) >= 40);
        const auto picture = [&](int row) {
            return model.index(row, 0).data(Qt::DecorationRole).value<QImage>();
        };
        QTRY_VERIFY(!picture(0).isNull());
        QCOMPARE(picture(0).pixelColor(5, 5), QColor(Qt::darkGreen));
        QVERIFY(f.set.images()->front()->thumbnail().isNull()); // a long list would fill the memory
        QVERIFY(!f.set.images()->at(150)->metadata());
        f.table.scrollTo(model.index(150, 0));
        QTRY_VERIFY(!picture(150).isNull());
        f.table.scrollToTop();
        f.table.viewport()->repaint();
        QVERIFY(!picture(150).isNull()); // for the way back
        QTRY_VERIFY(f.table.viewport()->grab().toImage().pixelColor(36, 20) == QColor(Qt::darkGreen));

        const auto edge = [&](int row) {
            const QRect place = f.table.visualRect(model.index(row, 0));
            return f.table.viewport()->grab().toImage().pixelColor(place.x() + 1, place.center().y());
        };
        const QColor bare = edge(1);
        f.set.selection().selectIndexes({0, 1});
        QVERIFY(edge(1).lightness() + 60 < bare.lightness());
    }

    void renamesPhotos()
    {
        Table f(0);
        f.set.addImage(f.file, {});
        f.click(0);
        const auto rename = [&](const QString &name, Qt::Key end) {
            QTest::keyClick(&f.table, Qt::Key_F2);
            QWidget *const editor = f.table.viewport()->findChild<QLineEdit *>();
            QTest::keyClicks(editor, name);
            QTest::keyClick(editor, end);
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        };
        const std::shared_ptr<ImageObject> image = f.set.images()->front();
        rename(u"sea/side"_qs, Qt::Key_Return); // a name, and no other folder
        QCOMPARE(image->path(), QFileInfo(f.file).path() + u"/seaside.png"_qs);
        rename(QString(300, u'n'), Qt::Key_Return);
        QCOMPARE(image->filename().size(), 255);
        rename(u"seaside"_qs, Qt::Key_Return);
        rename(u"other"_qs, Qt::Key_Escape);
        rename(u"  "_qs, Qt::Key_Return);
        QCOMPARE(image->filename(), u"seaside"_qs);
        QVERIFY(image->loadImageFromDisk()); // of the file, which has its name still
    }
};

QTEST_MAIN(ImageListViewTest)
#include "imagelistview_test.moc"
