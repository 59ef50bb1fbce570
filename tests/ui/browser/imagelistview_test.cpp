// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/workingset.h"
#include "ui/browser/imagelistmodel.h"
#include "ui/browser/imagelistview.h"
#include "ui/browser/promisedfiles.h"
#include "ui/widgets/filedrops.h"

#include <QAbstractItemModelTester>
#include <QFileInfo>
#include <QLineEdit>
#include <QMimeData>
#include <QSignalSpy>
#include <QUrl>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// A shown table of photos that all can be read.
struct Fixture {
    explicit Fixture(int count)
        : file(files.photo("photo.png"))
    {
        set.setImageListModeToBrowser(false);
        for (int i = 0; i < count; ++i)
            set.addImage(u"/photos/p%1.jpg"_qs.arg(i), file);
        view.resize(400, 300);
        view.show();
    }

    void click(int row, Qt::KeyboardModifiers modifiers = {})
    {
        const QPoint at = view.visualRect(view.model()->index(row, 0)).center();
        QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, at);
    }

    IndexList viewRows() const
    {
        IndexList rows;
        for (const QModelIndex &index : view.selectionModel()->selectedRows())
            rows.append(index.row());
        std::sort(rows.begin(), rows.end());
        return rows;
    }

    WorkingSet files;
    QString file;
    ImageSet set{files.services()};
    ImageListView view{set};
};

} // namespace

class ImageListViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leadsAndFollowsTheSelection()
    {
        Fixture f(100);
        f.click(2);
        QCOMPARE(f.set.selection().selectedIndexes(), IndexList({2}));
        f.click(5, Qt::ShiftModifier);
        f.click(3, Qt::ControlModifier);
        QCOMPARE(f.set.selection().selectedIndexes(), IndexList({2, 4, 5}));
        QCOMPARE(f.set.selection().shownImageIndex(), 2);
        QTest::keyClick(&f.view, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(f.set.selection().selectedIndexes().size(), 100);

        QTest::keyClick(&f.view, Qt::Key_End);
        QCOMPARE(f.set.selection().selectedIndexes(), IndexList({99}));
        QTest::keyClick(&f.view, Qt::Key_Home, Qt::ShiftModifier);
        QCOMPARE(f.set.selection().selectedIndexes().size(), 100);

        f.set.selection().selectIndexes({80, 82});
        QCOMPARE(f.viewRows(), IndexList({80, 82}));
        QVERIFY(f.view.viewport()->rect().contains(f.view.visualRect(f.view.model()->index(80, 0))));
        f.set.selection().invertSelection();
        QCOMPARE(f.viewRows().size(), 98);
        f.set.selection().selectNone();
        QCOMPARE(f.viewRows(), IndexList());
    }

    void followsTheList()
    {
        Fixture f(12);
        const QAbstractItemModelTester tester(f.view.model(),
                                              QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy deletePressed(&f.view, &ImageListView::deletePressed);
        connect(&f.view, &ImageListView::deletePressed, &f.set, &ImageSet::removeSelectedImages);

        // The photo that followed the removed ones is shown next.
        f.click(4);
        f.click(1, Qt::ControlModifier);
        QTest::keyClick(&f.view, Qt::Key_Backspace);
        QCOMPARE(f.viewRows(), IndexList({1}));
        QTest::keyClick(&f.view, Qt::Key_Delete);
        QCOMPARE(deletePressed.count(), 2);
        QCOMPARE(f.set.images()->size(), std::size_t(9));
        QCOMPARE(f.viewRows(), f.set.selection().selectedIndexes());

        f.click(3);
        f.click(5, Qt::ShiftModifier);
        f.set.moveIndexes({3, 4, 5}, 0);
        QCOMPARE(f.viewRows(), IndexList({0, 1, 2}));
        QCOMPARE(f.view.model()->index(0, 0).data().toString(), (*f.set.images())[0]->path());

        f.set.filterImages(u"P1"_qs);
        QCOMPARE(f.view.model()->rowCount(), 2); // p10 and p11; p1 is gone
        QCOMPARE(f.viewRows(), IndexList());
        f.set.addImage(u"/photos/P1 again.jpg"_qs, f.file);
        QCOMPARE(f.view.model()->rowCount(), 3);
        f.set.disableImageFilters();
        QTest::keyClick(&f.view, Qt::Key_A, Qt::ControlModifier);
        f.set.removeSelectedImages();
        QCOMPARE(f.view.model()->rowCount(), 0);
        QTest::keyClick(&f.view, Qt::Key_Delete); // nothing is there to be removed
    }

    void renamesPhotos()
    {
        Fixture f(0);
        f.set.addImage(f.file, {});
        f.click(0);
        const auto rename = [&](const QString &name, Qt::Key end) {
            QTest::keyClick(&f.view, Qt::Key_F2);
            QWidget *const editor = f.view.viewport()->findChild<QLineEdit *>();
            QTest::keyClicks(editor, name);
            QTest::keyClick(editor, end);
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        };
        const std::shared_ptr<ImageObject> image = f.set.images()->front();
        rename(u"sea/side"_qs, Qt::Key_Return); // a name, and no other folder
        QCOMPARE(image->path(), QFileInfo(f.file).path() + u"/seaside.png"_qs);
        rename(u"other"_qs, Qt::Key_Escape);
        rename(u"  "_qs, Qt::Key_Return);
        QCOMPARE(image->filename(), u"seaside"_qs);
        QVERIFY(image->loadImageFromDisk()); // of the file, which has its name still
    }

    void takesDroppedFiles()
    {
        Fixture f(0);
        QSignalSpy dropped(&f.view, &ImageListView::filesDropped);
        QMimeData mime;
        mime.setUrls({QUrl::fromLocalFile(f.file), QUrl(u"https://www.example.com/a.jpg"_qs)});
        const auto send = [&](auto &&event) {
            event.setDropAction(Qt::MoveAction);
            QCoreApplication::sendEvent(f.view.viewport(), &event);
            return event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
        };
        const QPoint at(50, 50);
        const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
        QCOMPARE(send(QDragEnterEvent(at, actions, &mime, Qt::LeftButton, {})), Qt::CopyAction);
        QCOMPARE(send(QDragMoveEvent(at, actions, &mime, Qt::LeftButton, {})), Qt::CopyAction);
        // Whoever dragged the files must not remove them: the drop is not accepted although they were taken.
        QCOMPARE(send(QDropEvent(at, actions, &mime, Qt::LeftButton, {})), Qt::IgnoreAction);
        QCOMPARE(dropped.count(), 1);
        QCOMPARE(dropped.first().first().toStringList(), QStringList{f.file});

        // Photos of the grid are in the list already.
        QMimeData own;
        own.setUrls({QUrl::fromLocalFile(f.file)});
        own.setData(kPhotoSelectionType, "0");
        QCOMPARE(send(QDragEnterEvent(at, actions, &own, Qt::LeftButton, {})), Qt::IgnoreAction);

        QMimeData text;
        text.setText(u"not a file"_qs);
        QCOMPARE(send(QDragEnterEvent(at, actions, &text, Qt::LeftButton, {})), Qt::IgnoreAction);
    }
};

QTEST_MAIN(ImageListViewTest)
#include "imagelistview_test.moc"
