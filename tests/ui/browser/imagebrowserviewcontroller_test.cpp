// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/filepromise.h"
#include "ui/browser/imagebrowserdelegate.h"
#include "ui/browser/imagebrowserviewcontroller.h"
#include "ui/browser/imagelistpane.h"
#include "ui/shownwindow.h"
#include "ui/widgets/filedrops.h"

#include <QClipboard>
#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include <atomic>
#include <thread>

using namespace plexa;
using namespace plexa::test;

namespace
{

std::shared_ptr<WPreset> textPreset(const FontCatalog &fonts, const QString &text)
{
    WPresetValues values = WPresetValues::forNewPreset(fonts);
    values.textTokens = {text};
    return std::make_shared<WPreset>(values);
}

/// Photos a to f in the grid, with a text as the single watermark.
struct Browser : ShownWindow {
    Browser()
    {
        presets.setQuickWPreset(textPreset(files.fonts, u"mark"_qs));
        addPhotos(words("a.png b.png c.png d.png e.png f.png"));
    }

    void click(int index, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, modifiers,
                          grid.viewportRect(*grid.cellForIndex(index)).center().toPoint());
    }
    /// Set and grid agree on it.
    bool isSelected(const IndexList &indexes, int focus) const
    {
        return grid.selectionIndexes() == indexes && grid.focusImageIndex() == focus &&
               set.selection().selectedIndexes() == indexes && set.selection().focusIndex() == focus;
    }

    AppliedPresets &presets = controller.appliedPresets();
    ImageBrowserDelegate &delegate = *grid.delegate();
};

} // namespace

class ImageBrowserViewControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void setAndGridAgree()
    {
        Browser browser;
        browser.click(1);
        QVERIFY(browser.isSelected({1}, 1));
        browser.click(3, Qt::ShiftModifier);
        QVERIFY(browser.isSelected({1, 2, 3}, 3));
        QCOMPARE(browser.grid.images()->indexOf(browser.set.images()->at(3).get()), 3);
        QCOMPARE(browser.grid.images()->indexOf(nullptr), -1);

        // Dragged to the end, they stay selected, and the focus stays on its photo.
        browser.delegate.movedIndexes({1, 2, 3}, 6);
        QCOMPARE(shownNames(browser.set), u"a e f b c d"_qs);
        QVERIFY(browser.isSelected({3, 4, 5}, 5));
        QCOMPARE(browser.grid.filename(5), u"d"_qs);

        browser.set.selection().selectIndexes({0, 4});
        QVERIFY(browser.isSelected({0, 4}, 0));
        QTest::keyClick(&browser.grid, Qt::Key_Delete);
        QCOMPARE(shownNames(browser.set), u"e f b d"_qs);
        QCOMPARE(browser.grid.numberImages(), 4);
        QVERIFY(browser.isSelected({0}, 0));

        browser.set.filterImages(u"B"_qs);
        QCOMPARE(browser.grid.numberImages(), 1);
        QVERIFY(browser.isSelected({}, -1));
        browser.click(0);
        QVERIFY(browser.isSelected({0}, 0));
        browser.set.disableImageFilters();
        QCOMPARE(browser.grid.numberImages(), 4);
        QVERIFY(browser.isSelected({}, -1));

        QTest::keyClick(&browser.grid, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&browser.grid, Qt::Key_Backspace);
        QCOMPARE(browser.grid.numberImages(), 0);
        QVERIFY(browser.isSelected({}, -1));
    }

    /// The grid shows them over the thumbnails, where they are on the photo, and not below the pointer if the
    /// user wants that.
    void watermarksOnThumbnails()
    {
        Browser browser;
        QTRY_VERIFY(isIdle(browser.controller.gathering()));
        browser.controller.gathering().importMissingImages();
        QTRY_VERIFY(isIdle(browser.controller.gathering()));
        const Thumbnails &thumbnails =
            browser.window.findChild<ImageListPane *>()->browserController().thumbnails();
        WPreset &preset = *browser.presets.quickWPreset();
        preset.setFillColor(Qt::red);
        preset.setWidth(90);
        preset.setFontSize(40);
        preset.setOpacity(100);
        constexpr int None = 0, Above = 1, Below = 2;
        const auto mark = [&](int index) {
            if (!QTest::qWaitFor([&] { return thumbnails.isIdle(); }))
                return -1;
            QTest::qWait(20); // drawn again
            const QRect cell = browser.grid.viewportRect(*browser.grid.cellForIndex(index)).toRect();
            const QImage seen = browser.grid.viewport()->grab().toImage().copy(cell);
            double sum = 0;
            int count = 0;
            for (int y = 0; y < seen.height(); ++y) {
                for (int x = 0; x < seen.width(); ++x) {
                    const QColor color = seen.pixelColor(x, y);
                    if (color.red() > color.green() + 40) {
                        sum += y;
                        ++count;
                    }
                }
            }
            return count < 5 ? None : sum / count < seen.height() * 0.45 ? Above : Below;
        };
        QCOMPARE(mark(0), Below);
        browser.click(0);
        browser.controller.placeWatermark(browser.set.images()->front(), {2, 34},
                                          ManualPositions::EditKind::Drag);
        QCOMPARE(mark(0), Above);
        QCOMPARE(mark(1), Below);
        browser.window.actions().run(ActionId::CopyPosition);
        browser.click(1);
        browser.window.actions().run(ActionId::PastePositions);
        QTRY_COMPARE(mark(1), Above);
        browser.window.actions().run(ActionId::ResetPosition);
        QCOMPARE(mark(1), Below);
        browser.click(0);
        browser.window.actions().run(ActionId::Turn180);
        QTRY_COMPARE(mark(0), Below);

        browser.grid.setShowsOriginalOnMouseOver(true);
        QTest::mouseMove(browser.grid.viewport(),
                         browser.grid.viewportRect(*browser.grid.cellForIndex(1)).center().toPoint());
        QCOMPARE(mark(1), None);
        QCOMPARE(mark(0), Below);

        QAction *const action = browser.window.actions().action(ActionId::ToggleThumbnailWatermarks);
        QVERIFY(action->isChecked());
        for (const bool isOn : {false, true}) {
            action->trigger();
            QCOMPARE(action->isChecked(), isOn);
            QCOMPARE(browser.files.defaults.boolForKey(settings::watermarksOnThumbnails), isOn);
            QCOMPARE(mark(0), isOn ? Below : None);
        }
    }

    /// Files from other programs show a frame on the pane that accepts them, and nothing else does.
    void hoveringFilesAreFramed()
    {
        Browser browser;
        QMimeData files;
        files.setUrls({QUrl(u"file:///photos/a.jpg"_qs)});
        QMimeData words;
        words.setText(u"words"_qs);
        QMimeData photos;
        photos.setUrls(files.urls());
        photos.setData(kPhotoSelectionType, "from a grid");
        const auto isFramed = [](const QWidget &pane) {
            const auto *frame = pane.findChild<QWidget *>(u"dropFrame"_qs, Qt::FindDirectChildrenOnly);
            return frame->isVisible() && frame->geometry() == pane.rect();
        };
        const auto hover = [](QWidget &target, const QMimeData &data) {
            QDragEnterEvent enter({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, {});
            QCoreApplication::sendEvent(&target, &enter);
        };
        const auto check = [&](QWidget &target, const QWidget &pane) {
            for (const QMimeData *data : {&words, &photos, &files}) {
                hover(target, *data);
                QCOMPARE(isFramed(pane), data == &files);
            }
            browser.window.resize(browser.window.size() + QSize(40, 40));
            QTRY_VERIFY(isFramed(pane));
            QDragLeaveEvent leave;
            QCoreApplication::sendEvent(&target, &leave);
            QVERIFY(!isFramed(pane));
        };
        check(*browser.grid.viewport(), browser.grid);
        check(browser.window, *browser.window.centralWidget());
        browser.set.setImageListModeToBrowser(false);
        check(*browser.table.viewport(), browser.table);
        hover(browser.window, files);
        QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &words, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&browser.window, &drop);
        QVERIFY(!isFramed(*browser.window.centralWidget()));
    }

    /// The clipboard offers a file for each photo and preset, and the first of them in several formats.
    void clipboard()
    {
        QClipboard *clipboard = QGuiApplication::clipboard();
        clipboard->setText(u"words"_qs);
        auto keeper = std::make_unique<Browser>();
        Browser &browser = *keeper;
        browser.delegate.copy();
        QCOMPARE(clipboard->text(), u"words"_qs); // nothing was selected
        browser.files.store.quickSavingPreset()->setImageFormat(u"PNG"_qs);
        browser.presets.modeDidChange(AppliedPresets::Mode::Presets);
        browser.presets.addWPresetsToApplied(
            {textPreset(browser.files.fonts, u"first"_qs), textPreset(browser.files.fonts, u"second"_qs)});
        ImageObject &photo = *browser.set.images()->at(0);
        ImageObject &broken = *browser.set.images()->at(2);
        broken.releaseImagesData();
        QVERIFY(QFile::resize(broken.path(), 100));
        browser.files.alerts.expect(u"Not all copies could be written"_qs);
        browser.set.selection().selectIndexes({0, 2});
        QTest::keyClick(&browser.grid, Qt::Key_C, Qt::ControlModifier);

        const QMimeData *data = clipboard->mimeData();
        const QList<QUrl> urls = data->urls();
        QVERIFY(browser.files.alerts.shown().isEmpty()); // not while the target waits
        QTRY_COMPARE(browser.files.alerts.complaints(), QStringList());
        const QStringList lines = browser.files.alerts.shown().first().text.split(u'\n');
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines.first().startsWith(broken.path() + u": "_qs));
        QCOMPARE(urls.size(), 2);
        QList<QImage> expected;
        for (const AppliedPreset &preset : browser.presets.effectivePresetsNow()) {
            expected.append(pixelsOf(photo.createWatermarkedImage(preset).value()));
            const QString path = urls.at(expected.size() - 1).toLocalFile();
            QCOMPARE(QFileInfo(path).fileName(), u"image%1"_qs.arg(expected.size() - 1));
            QCOMPARE(pixelsOf(QImage(path)), expected.last());
        }
        QVERIFY(expected[0] != expected[1] && expected[0] != pixelsOf(photo.originalCGImage()));
        for (const QString &type : words("png bmp jpeg tiff gif"))
            QCOMPARE(QImage::fromData(data->data(u"image/"_qs + type)).size(), QSize(64, 48));
        QCOMPARE(pixelsOf(QImage::fromData(data->data(u"image/png"_qs))), expected[0]);

        // Without watermarks nothing can be copied, and the clipboard becomes empty.
        browser.presets.clearAppliedPresets();
        browser.delegate.copy();
        QVERIFY(!clipboard->mimeData() || !clipboard->mimeData()->hasUrls());
        // The photos do not stay on the clipboard without their set.
        browser.presets.modeDidChange(AppliedPresets::Mode::Single);
        browser.delegate.copy();
        QVERIFY(clipboard->mimeData()->hasUrls());
        keeper.reset();
        QVERIFY(!clipboard->mimeData() || !clipboard->mimeData()->hasUrls());
    }

    void draggedCopies()
    {
        Browser browser;
        // The status line shows them, and its button stops them.
        std::atomic<bool> mayGoOn = false;
        FilePromise::Outcome outcome;
        auto many = browser.delegate.promisedFiles({0, 1, 2, 3, 4, 5});
        std::thread making([&] {
            outcome = many->makeFiles(browser.files.folder.path(), [&] {
                mayGoOn.wait(false);
                return false;
            });
        });
        const auto &line = [&]() -> const StatusLine & { return browser.controller.statusManager().line(); };
        const bool isShown =
            QTest::qWaitFor([&] { return line().text == u"Processing images..."_qs && line().canBeStopped; });
        browser.controller.stopAllOperations();
        mayGoOn = true;
        mayGoOn.notify_all();
        making.join();
        QVERIFY(isShown && outcome.isStopped && outcome.failures.isEmpty());
        QVERIFY(!QFile::exists(browser.files.folder.path("image5")));
        QTRY_VERIFY(!line().canBeStopped);

        // The batch save writes them to the folder of another program, which becomes the user's own.
        const QString folder = browser.files.folder.path("target");
        QSignalSpy saved(&browser.controller.batchSave(), &BatchSave::finished);
        browser.files.alerts.expect(u"Not all copies could be written"_qs);
        QVERIFY(many->saveInto(folder));
        QVERIFY(!many->saveInto(browser.files.folder.path())); // one at a time
        QCOMPARE(browser.files.defaults.stringForKey(settings::savingDirectory), folder);
        QVERIFY(saved.wait());
        QCOMPARE(QDir(folder).entryList({u"[a-f]*.jpg"_qs}, QDir::Files).size(), 6);
        QTRY_COMPARE(browser.files.alerts.complaints(), QStringList()); // of the second save
    }

    /// A dragged copy has its photo's date where the setting is on.
    void datesAreKept()
    {
        Browser browser;
        QFile photo(browser.set.imagesFiltered()->front()->path());
        QVERIFY(photo.open(QIODevice::ReadWrite));
        QVERIFY(photo.setFileTime(QDate(2001, 2, 3).startOfDay(), QFileDevice::FileModificationTime));
        const QString copy = browser.files.folder.path("image0");
        for (const bool keeps : {true, false}) {
            browser.files.defaults.setObject(settings::exportPreserveOriginalFileCreationDate, keeps);
            auto promise = browser.delegate.promisedFiles({0});
            QVERIFY(promise->makeFiles(browser.files.folder.path(), [] { return false; }).failures.isEmpty());
            QCOMPARE(QFileInfo(copy).lastModified().date() == QDate(2001, 2, 3), keeps);
            QVERIFY(QFile::remove(copy));
        }
    }

    /// The window lists the first ones with file and reason.
    void manyFailures()
    {
        ShownWindow f;
        f.controller.appliedPresets().setQuickWPreset(textPreset(f.files.fonts, u"mark"_qs));
        for (int i = 0; i < 12; ++i)
            f.set.addImage(f.files.brokenPhoto(u"%1.png"_qs.arg(i)), {});
        f.set.selection().selectAll();
        f.window.actions().run(ActionId::CopyImages);
        f.files.alerts.expect(u"Not all copies could be written"_qs);
        QCOMPARE(QGuiApplication::clipboard()->mimeData()->urls(), QList<QUrl>());
        QTRY_COMPARE(f.files.alerts.complaints(), QStringList());
        const QStringList lines = f.files.alerts.shown().first().text.split(u'\n');
        QVERIFY(lines.size() > 3 && lines.size() < 12);
        QVERIFY(lines.first().startsWith(f.files.folder.path("in/0.png: ")));
        QCOMPARE(lines.last(), u"  ...and %1 more..."_qs.arg(13 - lines.size()));
    }
};

QTEST_MAIN(ImageBrowserViewControllerTest)
#include "imagebrowserviewcontroller_test.moc"
