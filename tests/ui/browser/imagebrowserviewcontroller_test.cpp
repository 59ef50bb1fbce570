// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appcontroller.h"
#include "app/workingset.h"
#include "platform/settings.h"
#include "ui/browser/imagebrowserview.h"
#include "ui/browser/imagebrowserviewcontroller.h"
#include "ui/browser/promisedfiles.h"
#include "ui/widgets/commandactions.h"
#include "ui/window/mainwindow.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include <atomic>
#include <thread>

using namespace plexa;
using namespace plexa::test;

namespace
{

std::shared_ptr<WPreset> textPreset(const FontCatalog &fonts)
{
    WPresetValues values = WPresetValues::forNewPreset(fonts);
    values.textTokens = {u"mark"_qs};
    return std::make_shared<WPreset>(values);
}

/// A set of photos a to f in a shown grid.
struct Browser {
    Browser()
    {
        app.appliedPresets().setQuickWPreset(textPreset(work.fonts));
        view.resize(700, 500);
        view.show();
        QStringList paths;
        for (const QString &name : words("a.png b.png c.png d.png e.png f.png"))
            paths.append(work.photo(name));
        app.gathering().scanImagesAtPaths(paths);
    }

    bool isReady()
    {
        return QTest::qWaitFor([this] { return isIdle(app.gathering()) && view.numberImages() == 6; });
    }
    void click(int index, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers,
                          view.viewportRect(*view.cellForIndex(index)).center().toPoint());
    }
    /// Set and grid agree on it.
    bool isSelected(const IndexList &indexes, int focus) const
    {
        return view.selectionIndexes() == indexes && view.focusImageIndex() == focus &&
               set.selection().selectedIndexes() == indexes && set.selection().focusIndex() == focus;
    }

    WorkingSet work;
    AppController app{{work.photos, work.defaults, work.alerts, work.store, 2}};
    ImageSet &set = app.imageSet();
    ImageBrowserView view;
    ImageBrowserViewController controller{app, view, work.defaults, 2};
};

} // namespace

class ImageBrowserViewControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void setAndGridAgree()
    {
        Browser browser;
        QVERIFY(browser.isReady());
        browser.click(1);
        QVERIFY(browser.isSelected({1}, 1));
        browser.click(3, Qt::ShiftModifier);
        QVERIFY(browser.isSelected({1, 2, 3}, 3));

        // Dragged to the end, they stay selected, and the focus stays on its photo.
        browser.controller.movedIndexes({1, 2, 3}, 6);
        QCOMPARE(shownNames(browser.set), u"a e f b c d"_qs);
        QVERIFY(browser.isSelected({3, 4, 5}, 5));
        QCOMPARE(browser.view.filename(5), u"d"_qs);

        browser.set.selection().selectIndexes({0, 4});
        QVERIFY(browser.isSelected({0, 4}, 0));
        QTest::keyClick(&browser.view, Qt::Key_Delete);
        QCOMPARE(shownNames(browser.set), u"e f b d"_qs);
        QCOMPARE(browser.view.numberImages(), 4);
        QVERIFY(browser.isSelected({0}, 0));

        browser.set.filterImages(u"B"_qs);
        QCOMPARE(browser.view.numberImages(), 1);
        QVERIFY(browser.isSelected({}, -1));
        browser.click(0);
        QVERIFY(browser.isSelected({0}, 0));
        browser.set.disableImageFilters();
        QCOMPARE(browser.view.numberImages(), 4);
        QVERIFY(browser.isSelected({}, -1));

        QTest::keyClick(&browser.view, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&browser.view, Qt::Key_Backspace);
        QCOMPARE(browser.view.numberImages(), 0);
        QVERIFY(browser.isSelected({}, -1));
    }

    void zoomAndNamesAreRemembered()
    {
        WorkingSet work;
        AppController app({work.photos, work.defaults, work.alerts, work.store, 2});
        {
            ImageBrowserView view;
            ImageBrowserViewController controller(app, view, work.defaults, 2);
            QCOMPARE(view.zoomFactor(), 0.5F);
            QVERIFY(view.showFilenames());
            QSignalSpy zooms(&controller, &ImageBrowserViewController::browserZoomFactorChanged);
            for (int i = 0; i < 9; ++i)
                controller.zoomBrowser(ImageBrowserViewController::Zoom::In);
            QCOMPARE(zooms.size(), 9);
            QCOMPARE(controller.browserZoomFactor(), 1.0F);
            controller.zoomBrowser(ImageBrowserViewController::Zoom::Out);
            controller.setShowBrowserFilenames(false);
        }
        ImageBrowserView view;
        const ImageBrowserViewController controller(app, view, work.defaults, 2);
        QCOMPARE(view.zoomFactor(), 0.9F);
        QVERIFY(!view.showFilenames());
    }

    void copiesForOthers()
    {
        QClipboard *clipboard = QGuiApplication::clipboard();
        clipboard->setText(u"words"_qs);
        auto keeper = std::make_unique<Browser>();
        Browser &browser = *keeper;
        QVERIFY(browser.isReady());
        browser.controller.copy();
        QCOMPARE(clipboard->text(), u"words"_qs); // nothing was selected
        browser.set.selection().selectIndexes({0, 2});
        QTest::keyClick(&browser.view, Qt::Key_C, Qt::ControlModifier);
        QVERIFY(clipboard->mimeData()->hasFormat(u"image/png"_qs));
        const QList<QUrl> urls = clipboard->mimeData()->urls();
        QCOMPARE(urls.size(), 2);
        QCOMPARE(QImage(urls.last().toLocalFile()).size(), QSize(64, 48));

        // The status line shows it, and its button stops it.
        std::atomic<bool> mayGoOn = false;
        FilePromise::Outcome outcome;
        auto many = browser.controller.promisedFiles({0, 1, 2, 3, 4, 5});
        std::thread making([&] {
            outcome = many->makeFiles(browser.work.folder.path(), [&] {
                mayGoOn.wait(false);
                return false;
            });
        });
        const bool isShown = QTest::qWaitFor([&] {
            return browser.app.statusManager().line().text == u"Processing images..."_qs &&
                   browser.app.statusManager().line().canBeStopped;
        });
        browser.app.stopAllOperations();
        mayGoOn = true;
        mayGoOn.notify_all();
        making.join();
        QVERIFY(isShown && outcome.isStopped && outcome.failures.isEmpty());
        QVERIFY(!QFile::exists(browser.work.folder.path("image5")));
        QTRY_VERIFY(!browser.app.statusManager().line().canBeStopped);

        // A file that has gone is reported, later.
        QSignalSpy failures(&browser.controller, &ImageBrowserViewController::copiesFailed);
        auto gone = browser.set.imagesFiltered()->at(1);
        gone->releaseImagesData();
        QVERIFY(QFile::remove(gone->path()));
        auto promise = browser.controller.promisedFiles({1});
        promise->report(promise->makeFiles(browser.work.folder.path(), [] { return false; }).failures);
        QCOMPARE(failures.size(), 0);
        QTRY_COMPARE(failures.size(), 1);

        // Into a folder of another program, the batch save writes them, and that folder becomes the user's.
        const QString folder = browser.work.folder.path("target");
        QSignalSpy saved(&browser.app.batchSave(), &BatchSave::finished);
        auto dropped = browser.controller.promisedFiles({0, 2});
        QVERIFY(dropped->canSaveInto() && dropped->saveInto(folder));
        QVERIFY(!dropped->saveInto(browser.work.folder.path())); // one at a time
        QCOMPARE(browser.work.defaults.stringForKey(settings::savingDirectory), folder);
        QVERIFY(saved.wait());
        QCOMPARE(QDir(folder).entryList({u"[ac]*.jpg"_qs}, QDir::Files).size(), 2);
        QTRY_COMPARE(failures.size(), 2);

        // Without watermarks there is nothing to copy, nor is what was copied before.
        browser.app.appliedPresets().modeDidChange(AppliedPresets::Mode::Presets);
        browser.controller.copy();
        QVERIFY(!clipboard->mimeData() || !clipboard->mimeData()->hasUrls());
        browser.app.appliedPresets().modeDidChange(AppliedPresets::Mode::Single);
        browser.controller.copy();

        // The photos do not stay behind on the clipboard.
        many.reset();
        promise.reset();
        dropped.reset();
        gone.reset();
        QVERIFY(clipboard->mimeData()->hasUrls());
        keeper.reset();
        QVERIFY(!clipboard->mimeData() || !clipboard->mimeData()->hasUrls());
    }

    /// A dragged copy has its photo's date where the setting is on.
    void datesAreKept()
    {
        Browser browser;
        QVERIFY(browser.isReady());
        QFile photo(browser.set.imagesFiltered()->front()->path());
        QVERIFY(photo.open(QIODevice::ReadWrite));
        QVERIFY(photo.setFileTime(QDate(2001, 2, 3).startOfDay(), QFileDevice::FileModificationTime));
        const QString copy = browser.work.folder.path("image0");
        for (const bool keeps : {true, false}) {
            browser.work.defaults.setObject(settings::exportPreserveOriginalFileCreationDate, keeps);
            auto promise = browser.controller.promisedFiles({0});
            QVERIFY(promise->makeFiles(browser.work.folder.path(), [] { return false; }).failures.isEmpty());
            QCOMPARE(QFileInfo(copy).lastModified().date() == QDate(2001, 2, 3), keeps);
            QVERIFY(QFile::remove(copy));
        }
    }

    /// The window reports the first of them with file and reason.
    void failedCopiesAreReported()
    {
        WorkingSet work;
        AppController app({work.photos, work.defaults, work.alerts, work.store, 2});
        app.appliedPresets().setQuickWPreset(textPreset(work.fonts));
        MainWindow window({app, work.defaults, work.alerts, 2});
        for (int i = 0; i < 12; ++i)
            app.imageSet().addImage(work.brokenPhoto(u"%1.png"_qs.arg(i)), {});
        app.imageSet().selection().selectAll();
        window.actions().run(ActionId::CopyImages);
        work.alerts.expect(u"Not all copies could be written"_qs);
        QCOMPARE(QGuiApplication::clipboard()->mimeData()->urls(), QList<QUrl>());
        QTRY_COMPARE(work.alerts.complaints(), QStringList());
        const QStringList lines = work.alerts.shown().first().text.split(u'\n');
        QVERIFY(lines.size() > 3 && lines.size() < 12);
        QVERIFY(lines.first().startsWith(work.folder.path("in/0.png: ")));
        QCOMPARE(lines.last(), u"  ...and %1 more..."_qs.arg(13 - lines.size()));
    }
};

QTEST_MAIN(ImageBrowserViewControllerTest)
#include "imagebrowserviewcontroller_test.moc"
