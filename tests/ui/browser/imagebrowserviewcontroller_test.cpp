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

std::shared_ptr<WPreset> textPreset(const FontCatalog &fonts, const QString &text = u"mark"_qs)
{
    WPresetValues values = WPresetValues::forNewPreset(fonts);
    values.textTokens = {text};
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
        QCOMPARE(browser.view.images()->indexOf(browser.set.images()->at(3).get()), 3);
        QCOMPARE(browser.view.images()->indexOf(nullptr), -1);

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

    /// The clipboard offers a file for each photo and preset, and the first of them in several formats.
    void clipboard()
    {
        QClipboard *clipboard = QGuiApplication::clipboard();
        clipboard->setText(u"words"_qs);
        auto keeper = std::make_unique<Browser>();
        Browser &browser = *keeper;
        QVERIFY(browser.isReady());
        browser.controller.copy();
        QCOMPARE(clipboard->text(), u"words"_qs); // nothing was selected
        browser.work.store.quickSavingPreset()->setImageFormat(u"PNG"_qs);
        browser.app.appliedPresets().modeDidChange(1);
        browser.app.appliedPresets().addWPresetsToApplied(
            {textPreset(browser.work.fonts, u"first"_qs), textPreset(browser.work.fonts, u"second"_qs)});
        ImageObject &photo = *browser.set.images()->at(0);
        ImageObject &broken = *browser.set.images()->at(2);
        broken.releaseImagesData();
        QVERIFY(QFile::resize(broken.path(), 100));
        QSignalSpy failures(&browser.controller, &ImageBrowserViewController::copiesFailed);
        browser.set.selection().selectIndexes({0, 2});
        QTest::keyClick(&browser.view, Qt::Key_C, Qt::ControlModifier);

        const QMimeData *data = clipboard->mimeData();
        const QList<QUrl> urls = data->urls();
        QCOMPARE(failures.size(), 0); // not while the target waits
        QTRY_COMPARE(failures.size(), 1);
        const QStringList lines = failures.first().first().toStringList();
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines.first().startsWith(broken.path() + u": "_qs));
        QCOMPARE(urls.size(), 2);
        QList<QImage> expected;
        for (const AppliedPreset &preset : browser.app.appliedPresets().effectivePresetsNow()) {
            expected.append(pixelsOf(photo.savedImage(&preset, {})));
            const QString path = urls.at(expected.size() - 1).toLocalFile();
            QCOMPARE(QFileInfo(path).fileName(), u"image%1"_qs.arg(expected.size() - 1));
            QCOMPARE(pixelsOf(QImage(path)), expected.last());
        }
        QVERIFY(expected[0] != expected[1] && expected[0] != pixelsOf(photo.savedImage(nullptr, {})));
        for (const QString &type : words("png bmp jpeg tiff gif"))
            QCOMPARE(QImage::fromData(data->data(u"image/"_qs + type)).size(), QSize(64, 48));
        QCOMPARE(pixelsOf(QImage::fromData(data->data(u"image/png"_qs))), expected[0]);

        // Without watermarks nothing can be copied, and the clipboard becomes empty.
        browser.app.appliedPresets().clearAppliedPresets();
        browser.controller.copy();
        QVERIFY(!clipboard->mimeData() || !clipboard->mimeData()->hasUrls());
        // The photos do not stay on the clipboard without their set.
        browser.app.appliedPresets().modeDidChange(0);
        browser.controller.copy();
        QVERIFY(clipboard->mimeData()->hasUrls());
        keeper.reset();
        QVERIFY(!clipboard->mimeData() || !clipboard->mimeData()->hasUrls());
    }

    void draggedCopies()
    {
        Browser browser;
        QVERIFY(browser.isReady());
        // The status line shows them, and its button stops them.
        std::atomic<bool> mayGoOn = false;
        FilePromise::Outcome outcome;
        auto many = browser.controller.promisedFiles({0, 1, 2, 3, 4, 5});
        std::thread making([&] {
            outcome = many->makeFiles(browser.work.folder.path(), [&] {
                mayGoOn.wait(false);
                return false;
            });
        });
        const auto &line = [&]() -> const StatusLine & { return browser.app.statusManager().line(); };
        const bool isShown =
            QTest::qWaitFor([&] { return line().text == u"Processing images..."_qs && line().canBeStopped; });
        browser.app.stopAllOperations();
        mayGoOn = true;
        mayGoOn.notify_all();
        making.join();
        QVERIFY(isShown && outcome.isStopped && outcome.failures.isEmpty());
        QVERIFY(!QFile::exists(browser.work.folder.path("image5")));
        QTRY_VERIFY(!line().canBeStopped);

        // The batch save writes them to the folder of another program, which becomes the user's own.
        QFile::remove(browser.set.images()->at(1)->path());
        browser.set.images()->at(1)->releaseImagesData();
        const QString folder = browser.work.folder.path("target");
        QSignalSpy failures(&browser.controller, &ImageBrowserViewController::copiesFailed);
        QSignalSpy saved(&browser.app.batchSave(), &BatchSave::finished);
        QVERIFY(many->saveInto(folder));
        QVERIFY(!many->saveInto(browser.work.folder.path())); // one at a time
        QCOMPARE(browser.work.defaults.stringForKey(settings::savingDirectory), folder);
        QVERIFY(saved.wait());
        QCOMPARE(QDir(folder).entryList({u"[a-f]*.jpg"_qs}, QDir::Files).size(), 5);
        QTRY_COMPARE(failures.size(), 1); // of the second save
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
