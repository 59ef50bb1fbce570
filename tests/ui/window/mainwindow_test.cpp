// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/messageboxes.h"
#include "ui/shownwindow.h"
#include "ui/widgets/colorwell.h"
#include "ui/widgets/elidedlabel.h"
#include "ui/widgets/filedrops.h"
#include "ui/widgets/imagewell.h"
#include "ui/widgets/messagepage.h"
#include "ui/window/messageboxalerts.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QScopeGuard>
#include <QScrollArea>
#include <QSignalSpy>
#include <QSlider>
#include <QSplitter>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <thread>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// As assistive technology reads it.
QString nameOf(QWidget &widget)
{
    return QAccessible::queryAccessibleInterface(&widget)->text(QAccessible::Name);
}

QString toText(QSize size)
{
    return u"%1x%2"_qs.arg(size.width()).arg(size.height());
}

/// Is the widget in a part of an editor that is out of sight?
bool isScrolledOut(const QWidget &widget)
{
    for (QWidget *parent = widget.parentWidget(); parent; parent = parent->parentWidget()) {
        const auto *const area = qobject_cast<QScrollArea *>(parent);
        if (area && area->viewport()->isAncestorOf(&widget))
            return !area->viewport()->rect().contains(
                QRect(widget.mapTo(area->viewport(), QPoint()), widget.size()));
    }
    return false;
}

} // namespace

class MainWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandsAreComplete()
    {
        ShownWindow f;
        QSet<QString> names;
        QSet<QPair<QKeySequence, bool>> shortcuts; // and whether one part of the window has them for itself
        for (const CommandRow &row : commandTable()) {
            const QAction &action = *f.window.actions().action(row.id);
            QVERIFY2(!names.contains(action.objectName()), row.name);
            names.insert(action.objectName());
            QVERIFY2(*row.icon == '\0' || !action.icon().pixmap(24).isNull(), row.name);
            QCOMPARE(action.shortcuts().isEmpty(), *row.shortcut == '\0');
            for (const QKeySequence &shortcut : action.shortcuts()) {
                // The two lists share the keys that move their entries.
                const QPair used(shortcut, row.menu == MenuId::Watermark &&
                                               action.shortcutContext() == Qt::WidgetWithChildrenShortcut);
                QVERIFY2(!shortcut.isEmpty() && !shortcuts.contains(used), row.name);
                shortcuts.insert(used);
            }
        }
        // Each letter with Alt chooses one item of a menu.
        for (const QAction *const menu : f.window.menuBar()->actions()) {
            QSet<QChar> letters;
            for (const QAction *const action : menu->menu()->actions()) {
                if (action->isSeparator())
                    continue;
                const QChar letter = action->text().at(action->text().indexOf(u'&') + 1).toLower();
                QVERIFY2(!letters.contains(letter), qPrintable(action->text()));
                letters.insert(letter);
            }
        }
        for (QAbstractButton *const button : f.window.findChildren<QAbstractButton *>()) {
            if (button->objectName().startsWith(u"qt_") || button->inherits("QTableCornerButton"))
                continue;
            QVERIFY2(!nameOf(*button).isEmpty(), qPrintable(button->objectName()));
            QVERIFY2(!button->toolTip().isEmpty() || !button->isVisible(), qPrintable(nameOf(*button)));
        }
    }

    /// Without photos, one page stands in for preview and photos; without a match, one for the photos.
    void pagesStandInForViews()
    {
        ShownWindow f;
        auto &emptyPage = f.find<QWidget>("emptyPage");
        auto &photos = f.find<QWidget>("imageViewBrowserSplitView");
        QVERIFY(emptyPage.isVisible() && !photos.isVisible());
        QCOMPARE(QApplication::focusWidget(), &f.find<QWidget>("emptyPageAddPhotosButton"));
        QTest::mouseClick(&f.find<QAbstractButton>("emptyPageAddFolderButton"), Qt::LeftButton);
        auto *const dialog = f.window.findChild<QFileDialog *>();
        QVERIFY(dialog && dialog->fileMode() == QFileDialog::Directory);
        dialog->reject();
        f.addPhotos(words("a.png b.png"));
        QVERIFY(!emptyPage.isVisible() && photos.isVisible());
        QCOMPARE(QApplication::focusWidget(), &f.grid);
        const QList<int> heights = f.find<QSplitter>("imageViewBrowserSplitView").sizes();
        QVERIFY(std::abs(heights[0] * 45 - heights[1] * 55) < 100);

        for (const bool isGrid : {true, false}) {
            f.set.setImageListModeToBrowser(isGrid);
            QTest::keyClicks(&f.find<QLineEdit>("searchField"), u"<b>"_qs);
            auto &page = f.find<QWidget>("noMatchPage");
            QVERIFY(page.isVisible() && !f.grid.isVisible() && !f.table.isVisible());
            QCOMPARE(page.accessibleName(), u"No photo has “<b>” in its name"_qs);
            QTest::mouseClick(&f.find<QAbstractButton>("showAllPhotosButton"), Qt::LeftButton);
            QCOMPARE(shownNames(f.set), u"a b"_qs);
            QWidget *const view = isGrid ? static_cast<QWidget *>(&f.grid) : &f.table;
            QVERIFY(!page.isVisible() && view->isVisible());
            QCOMPARE(QApplication::focusWidget(), view);
        }
        f.set.selection().selectAll();
        f.set.removeSelectedImages();
        QVERIFY(emptyPage.isVisible());
    }

    void positionsHaveWords()
    {
        ShownWindow f;
        f.addPhotos(words("a.png"));
        f.set.selection().selectAll();
        QTimer::singleShot(0, [&] {
            auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            QVERIFY(menu);
            QStringList texts;
            for (const QAction *const action : menu->actions())
                texts.append(action->text().remove(u'&'));
            menu->close();
            QCOMPARE(texts.join(u'|'), u"Copy Position|Copy All Positions|Paste Positions||Reset Position|"
                                       "Reset All Positions"_qs);
        });
        QTest::mouseClick(&f.find<QAbstractButton>("positionButton"), Qt::LeftButton);
        // Copying changes nothing in sight, so the status line reports it.
        f.controller.appliedPresets().modeDidChange(AppliedPresets::Mode::Single);
        f.controller.appliedPresets().setQuickWPreset(namedPreset(u"a"_qs));
        f.controller.placeWatermark(f.set.images()->front(), {1, 1}, ManualPositions::EditKind::Drag);
        f.window.actions().run(ActionId::CopyPosition);
        QCOMPARE(f.find<ElidedLabel>("statusHint").text(), u"Position copied; select photos to paste it"_qs);
        f.window.actions().run(ActionId::CopyImages);
        QCOMPARE(f.find<ElidedLabel>("statusHint").text(), u"One photo is ready to be pasted"_qs);
    }

    void saysWhatIsMissing()
    {
        ShownWindow f;
        const auto &hint = f.find<ElidedLabel>("statusHint");
        QCOMPARE(hint.text(), u"Add photos to begin"_qs);
        f.controller.gathering().scanImagesAtPaths({f.files.photo("a.png")});
        QTRY_COMPARE(hint.accessibleName(), u"Import finished"_qs); // whose change is announced
        f.set.removeImages(ImageList(*f.set.images()));
        QCOMPARE(hint.text(), u"Add photos to begin"_qs);
        f.addPhotos(words("a.png"));
        f.window.actions().run(ActionId::ApplyPresets); // as the Return key does
        QCOMPARE(hint.text(), reasonFor(Need::PresetSelection));
        f.find<QTimer>("noticeTimer").setInterval(0);
        QTRY_COMPARE(hint.text(), QString());
        WPreset &quick = *f.controller.appliedPresets().quickWPreset();
        const QStringList tokens = quick.textTokens();
        quick.setTextTokens({u" "_qs});
        QTRY_COMPARE(hint.text(), u"Enter a text for the watermark"_qs);
        quick.setType(u"Image"_qs);
        QTRY_COMPARE(hint.text(), u"Choose a picture for the watermark"_qs);
        quick.setType(u"Text"_qs);
        quick.setTextTokens(tokens);
        QTRY_COMPARE(hint.text(), QString());
        f.controller.appliedPresets().modeDidChange(AppliedPresets::Mode::Presets);
        QCOMPARE(hint.text(), u"Apply a preset to save"_qs);
        f.controller.appliedPresets().addWPresetsToApplied({namedPreset(u"a"_qs)});
        QCOMPARE(hint.text(), QString());

        // A disabled button states why, also if its whole pane is disabled.
        auto &button = f.find<QAbstractButton>("turnLeftButton");
        QTRY_VERIFY(button.toolTip().endsWith(reasonFor(Need::Selection)));
        f.set.selection().selectAll();
        QTRY_VERIFY(button.isEnabled());
        QVERIFY(f.controller.startSaving(*f.set.images()));
        QVERIFY(!button.isEnabled());
        f.window.actions().update();
        QVERIFY(button.toolTip().endsWith(reasonFor(Need::NoSave)));
        QTRY_VERIFY(!f.controller.batchSave().isSavingInProgress());
    }

    /// From left to right and from top to bottom, through every control once.
    void tabOrderFollowsTheLayout()
    {
        ShownWindow f;
        f.addPhotos(words("a.png"));
        f.controller.appliedPresets().modeDidChange(AppliedPresets::Mode::Presets);
        f.controller.appliedPresets().addWPresetsToApplied({namedPreset(u"a"_qs)});
        f.controller.appliedPresets().selectRows({0}); // and its editor is shown
        QCoreApplication::processEvents();
        QStringList names;
        const QWidget *former = nullptr;
        for (QWidget *widget = f.window.nextInFocusChain(); widget != &f.window;
             widget = widget->nextInFocusChain()) {
            if (isScrolledOut(*widget) || !widget->isVisible() || !(widget->focusPolicy() & Qt::TabFocus) ||
                widget->focusProxy())
                continue;
            names.append(widget->objectName());
            const auto at = [&](const QWidget *w) { return w->mapTo(&f.window, w->rect().center()); };
            if (former) { // to the right of it or below it
                const bool isBelow = widget->mapTo(&f.window, QPoint()).y() >= at(former).y();
                QVERIFY2(isBelow || at(widget).x() > at(former).x(), qPrintable(names.join(u' ')));
            }
            former = widget;
        }
        QCOMPARE(names.indexOf(u"imageView"_qs), 0);
        const QStringList inOrder = words("imageView positionButton zoomSlider addImagesButton searchField "
                                          "imageBrowser browserZoomSlider presetsModeButton "
                                          "wPresetsAppliedTable wPresetsAllTable saveAllButton");
        QStringList found = names;
        found.removeIf([&](const QString &name) { return !inOrder.contains(name); });
        QCOMPARE(found, inOrder);
    }

    /// Each control has a name for assistive technology and, if it shows no text, a picture and a tool tip.
    void controlsExplainThemselves()
    {
        ShownWindow f;
        f.addPhotos(words("a.png"));
        QStringList unexplained;
        for (QWidget *const widget : f.window.findChildren<QWidget *>()) {
            const bool isInner = widget->objectName().isEmpty() || widget->objectName().startsWith(u"qt_"_qs);
            if (isInner || !(widget->focusPolicy() & Qt::TabFocus) || widget->focusProxy())
                continue;
            const auto *const button = qobject_cast<QAbstractButton *>(widget);
            const bool drawsItsValue = qobject_cast<ColorWell *>(widget) || qobject_cast<ImageWell *>(widget);
            const bool isMute = button && button->text().isEmpty() && !drawsItsValue &&
                                (button->icon().pixmap(16).isNull() || button->toolTip().isEmpty());
            const QAccessibleInterface *const item = QAccessible::queryAccessibleInterface(widget);
            if (item->text(QAccessible::Name).isEmpty() || isMute)
                unexplained.append(QLatin1String(widget->metaObject()->className()) + u' ' +
                                   widget->objectName());
        }
        QCOMPARE(unexplained.join(u", "_qs), QString());
    }

    void assistiveTechnologyKnowsTheGroups()
    {
        ShownWindow f;
        f.controller.appliedPresets().modeDidChange(AppliedPresets::Mode::Single);
        for (const auto &[group, name] : {std::pair{"modeSegments", u"Watermark mode"_qs},
                                          {"imageListModeSwitch", u"View of the photos"_qs}}) {
            QAccessibleInterface *const item = QAccessible::queryAccessibleInterface(&f.find<QWidget>(group));
            QCOMPARE(item->role(), QAccessible::Grouping);
            QCOMPARE(item->text(QAccessible::Name), name);
            QCOMPARE(item->childCount(), 2);
            QCOMPARE(item->child(0)->role(), QAccessible::RadioButton);
            QVERIFY(item->child(0)->state().checked && !item->child(1)->state().checked);
        }
        QStringList labeled;
        for (QLabel *const label : f.window.findChildren<QLabel *>()) {
            QAccessibleInterface *const item = QAccessible::queryAccessibleInterface(label);
            for (const auto &[list, relation] : item->relations(QAccessible::Labelled)) {
                QVERIFY(!list->text(QAccessible::Name).isEmpty());
                if (!list->object()->objectName().startsWith(u"wPresets"_qs))
                    continue; // in an editor, where a control has a longer name than its label
                labeled.append(list->object()->objectName());
                QCOMPARE(list->text(QAccessible::Name), label->text());
            }
        }
        QCOMPARE(labeled, words("wPresetsAppliedTable"));
    }

    void fitsTheSmallestScreen()
    {
        for (const int points : {9, 14}) {
            QFont font = QApplication::font();
            font.setPointSize(points);
            const auto restore =
                qScopeGuard([former = QApplication::font()] { QApplication::setFont(former); });
            QApplication::setFont(font);
            ShownWindow f;
            f.addPhotos(words("a.png"));
            f.controller.appliedPresets().modeDidChange(AppliedPresets::Mode::Presets);
            const QSize least = f.window.minimumSizeHint();
            QVERIFY2(least.width() <= 1180 && least.height() <= 740, qPrintable(toText(least)));
        }
    }

    void stopsWhatRuns()
    {
        ShownWindow f;
        f.set.setImageListModeToBrowser(false);
        auto &stop = f.find<QAbstractButton>("stopAllOperationsButton");
        auto &progress = f.find<QProgressBar>("progressIndicator");
        QVERIFY(!stop.isVisible() && !progress.isVisible());
        f.controller.statusManager().startOperation(StatusOperation::Counting);
        QTRY_VERIFY(progress.isVisible() && progress.maximum() == 0); // busy
        f.controller.statusManager().endOperation(StatusOperation::Counting);
        QTRY_VERIFY(!progress.isVisible());

        f.addPhotos(words("a.png b.png c.png d.png"));
        const std::shared_ptr<ImageObject> held = f.set.images()->front();
        held->lock();
        // The fixture's destructor waits for the photo, even after a failure.
        auto release = qScopeGuard([&] { held->unlock(); });
        f.set.selection().selectAll();
        QTRY_VERIFY(f.isEnabled(ActionId::TurnRight));
        QTest::mouseClick(&f.find<QAbstractButton>("turnRightButton"), Qt::LeftButton);
        QTRY_COMPARE(progress.value() * 4, progress.maximum() * 3);
        QVERIFY(progress.isVisible() && stop.isVisible());
        QTest::mouseClick(&stop, Qt::LeftButton);
        QTRY_VERIFY(!f.controller.commandState().hasCurrentBatchOperation);
        release.dismiss();
        held->unlock();
        QTRY_VERIFY(!stop.isVisible() && !progress.isVisible());
        QCOMPARE(held->readFacts()->pixelSize(), QSize(64, 48));
        QCOMPARE(f.set.images()->back()->readFacts()->pixelSize(), QSize(48, 64));
    }

    void addsWithTheDialogs()
    {
        ShownWindow f;
        const QString photo = f.files.photo("a.png");
        const QString folder = QFileInfo(f.files.photo("folder/b.png")).path();
        for (const auto &[button, path] :
             {std::pair{"addImagesButton", photo}, {"addFolderButton", folder}}) {
            QTest::mouseClick(&f.find<QAbstractButton>(button), Qt::LeftButton);
            auto *const dialog = f.window.findChild<QFileDialog *>();
            QVERIFY(dialog && dialog->isVisible());
            auto *const name = dialog->findChild<QLineEdit *>(u"fileNameEdit"_qs);
            name->setText(path);
            QTest::keyClick(name, Qt::Key_Return);
            QTRY_VERIFY(!f.window.findChild<QFileDialog *>());
        }
        QTRY_COMPARE(shownNames(f.set), u"a b"_qs);
        QTRY_VERIFY(isIdle(f.controller.gathering()));
    }

    void searchFieldFilters()
    {
        ShownWindow f;
        f.set.setImageListModeToBrowser(false);
        f.addPhotos(words("a.png B.png ab.png"));
        auto &search = f.find<QLineEdit>("searchField");
        QVERIFY(f.active);
        f.table.setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Slash);
        QCOMPARE(QApplication::focusWidget(), &search);
        QTest::keyClicks(&search, u"b"_qs);
        QCOMPARE(shownNames(f.set), u"B ab"_qs);
        QTest::keyClick(&search, Qt::Key_Escape);
        QCOMPARE(shownNames(f.set), u"a B ab"_qs);
        f.controller.appliedPresets().modeDidChange(AppliedPresets::Mode::Presets);
        f.find<QWidget>("wPresetsAllTable").setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Slash);
        QTest::keyClicks(QApplication::focusWidget(), u"b"_qs);
        QTest::keyClick(&search, Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), &f.find<QWidget>("imageListTable"));
        QTest::keyClick(&f.window, Qt::Key_F, Qt::ControlModifier);
        QCOMPARE(search.selectedText(), u"b"_qs);
        // New photos are shown, so the search ends.
        f.controller.gathering().scanImagesAtPaths({f.files.photo("new.png")});
        QCOMPARE(search.text(), QString());
        QTRY_COMPARE(shownNames(f.set), u"a B ab new"_qs);
    }

    void gridIsZoomed()
    {
        ShownWindow f;
        f.files.defaults.setObject(settings::imageBrowserZoomFactor, 0.95);
        f.set.setImageListModeToBrowser(true);
        QCOMPARE(f.grid.zoomFactor(), 0.95F); // not rounded to a step of the slider
        QTRY_VERIFY(f.find<QAbstractButton>("browserZoomInButton").isEnabled());
        QTest::mouseClick(&f.find<QAbstractButton>("browserZoomInButton"), Qt::LeftButton);
        QCOMPARE(f.files.defaults.floatForKey(settings::imageBrowserZoomFactor), 1.0F);
        QTRY_VERIFY(!f.isEnabled(ActionId::BrowserZoomIn));
        auto &slider = f.find<QSlider>("browserZoomSlider");
        QTest::keyClick(&slider, Qt::Key_Home);
        QCOMPARE(f.grid.zoomFactor(), 0.0F);
        QTRY_VERIFY(!f.isEnabled(ActionId::BrowserZoomOut));

        const bool showed = f.grid.showFilenames();
        f.window.actions().run(ActionId::ToggleFilenames);
        QCOMPARE(f.grid.showFilenames(), !showed);
        QCOMPARE(f.files.defaults.boolForKey(settings::imageBrowserShowsNames), !showed);
        f.window.actions().run(ActionId::ToggleFilenames);
        QCOMPARE(f.window.actions().action(ActionId::ToggleFilenames)->text().remove(u'&'),
                 showed ? u"Hide Filenames in Browser"_qs : u"Show Filenames in Browser"_qs);
    }

    void filesAreDroppedAnywhere()
    {
        ShownWindow f;
        auto &emptyPage = f.find<MessagePage>("emptyPage");
        const QImage calm = emptyPage.grab().toImage();
        QMimeData files;
        const QUrl folder = QUrl::fromLocalFile(f.files.photo("folder/a.png")).adjusted(QUrl::RemoveFilename);
        files.setUrls({folder, QUrl(u"https://www.example.com/a.jpg"_qs)});
        QMimeData photos; // of the grid, which are in the list already
        photos.setUrls({folder});
        photos.setData(kPhotoSelectionType, "0");
        QMimeData text;
        text.setText(u"no file"_qs);
        const Qt::DropActions both = Qt::CopyAction | Qt::MoveAction;
        const QString presetsFile = f.files.folder.path("a.pxwpr");
        QVERIFY(QFile::copy(u":/plexa/presets/example_wpresets.pxwpr"_qs, presetsFile));
        std::size_t count = 0;
        for (QWidget *const place :
             {static_cast<QWidget *>(&f.window), f.grid.viewport(), f.table.viewport()}) {
            const auto send = [place](auto &&event) {
                event.setDropAction(Qt::MoveAction);
                QCoreApplication::sendEvent(place, &event);
                return event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
            };
            const auto entered = [&](const QMimeData &data, Qt::DropActions actions) {
                return send(QDragEnterEvent(QPoint(20, 20), actions, &data, Qt::LeftButton, {}));
            };
            QCOMPARE(entered(text, both), Qt::IgnoreAction);
            QCOMPARE(entered(photos, both), Qt::IgnoreAction);
            QCOMPARE(entered(files, Qt::MoveAction), Qt::IgnoreAction);
            QCOMPARE(entered(files, both), Qt::CopyAction);
            QCOMPARE(emptyPage.isVisible() && emptyPage.grab().toImage() != calm, count == 0);
            // The source of the drag must not remove the files.
            QVERIFY(send(QDropEvent(QPoint(20, 20), both, &files, Qt::NoButton, {})) != Qt::MoveAction);
            ++count;
            QTRY_COMPARE(f.set.images()->size(), count);
            QTRY_VERIFY(isIdle(f.controller.gathering()));
            QTRY_COMPARE(f.find<ElidedLabel>("statusHint").text(), u"Import finished"_qs);
            // Presets go to the list, unless the stop button comes first. They are read in the background.
            QMimeData presets;
            presets.setUrls({QUrl::fromLocalFile(presetsFile)});
            const std::size_t before = f.files.store.wPresets().size();
            const bool isStopped = place == f.grid.viewport();
            if (!isStopped)
                f.files.alerts.expect(u"Presets imported"_qs);
            QCOMPARE(entered(presets, both), Qt::CopyAction);
            send(QDropEvent(QPoint(20, 20), both, &presets, Qt::NoButton, {}));
            QCOMPARE(f.files.store.wPresets().size(), before);
            QCoreApplication::sendPostedEvents(&f.controller.statusManager());
            auto &stop = f.find<QAbstractButton>("stopAllOperationsButton");
            QVERIFY(stop.isVisible() && f.controller.statusManager().line().text.contains(u"presets"));
            if (isStopped)
                QTest::mouseClick(&stop, Qt::LeftButton);
            QTRY_VERIFY(!f.controller.presetCommands().isImporting());
            QCOMPARE(f.files.store.wPresets().size() > before, !isStopped);
        }
        QCOMPARE(f.files.alerts.complaints(), QStringList());
    }

    void batchModeIsRefused()
    {
        ShownWindow f;
        auto &mode = f.find<QAbstractButton>("imageListModeButton");
        auto &grid = f.find<QAbstractButton>("smallBatchButton");
        QAction &menuItem = *f.window.actions().action(ActionId::SwitchBatchMode);
        f.addPhotos(words("a.png"));
        QTest::mouseClick(&mode, Qt::LeftButton);
        QVERIFY(!f.set.imageListIsInBrowserMode());
        QVERIFY(f.table.isVisible());
        QCOMPARE(menuItem.text().remove(u'&'), u"Switch to Small Batch Mode"_qs);
        for (int i = 0; i < 500; ++i)
            f.set.addImage(u"/p%1.jpg"_qs.arg(i), f.files.folder.path());
        f.files.alerts.expect(u"Too many images for the Small Batch mode!"_qs);
        QTest::mouseClick(&grid, Qt::LeftButton);
        QVERIFY(mode.isChecked() && !grid.isChecked() && !f.set.imageListIsInBrowserMode());
        QVERIFY(f.files.alerts.shown().constFirst().text.startsWith(u"501 images are currently imported. "));
        QCOMPARE(f.files.alerts.complaints(), QStringList());
        f.set.removeImages({f.set.images()->back()});
        QTest::mouseClick(&grid, Qt::LeftButton);
        QVERIFY(f.set.imageListIsInBrowserMode() && grid.isChecked());
    }

    void keysBelongToTheirViews()
    {
        ShownWindow f;
        f.set.setImageListModeToBrowser(false);
        f.controller.appliedPresets().modeDidChange(AppliedPresets::Mode::Presets);
        f.controller.appliedPresets().addWPresetsToApplied({std::make_shared<WPreset>(WPresetValues{})});
        f.addPhotos(words("a.png"));
        f.set.selection().selectAll();
        QVERIFY(f.active);
        auto &applied = f.find<QWidget>("wPresetsAppliedTable");
        applied.setFocus();
        f.controller.appliedPresets().selectRows({0});
        QTRY_VERIFY(f.isEnabled(ActionId::RemoveSelected));
        f.set.selection().selectNone();
        QTest::keyClick(&applied, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(f.set.selection().selectedIndexes(), IndexList());
        f.set.selection().selectAll();
        QTest::keyClick(&applied, Qt::Key_Delete);
        QVERIFY(f.controller.appliedPresets().wPresetsApplied().empty());
        QCOMPARE(f.set.images()->size(), std::size_t(1)); // the key is for the presets
        QTest::keyClick(&f.table, Qt::Key_Delete);
        QVERIFY(f.set.images()->empty());
    }

    void geometryIsRemembered()
    {
        ShownWindow f;
        f.window.resize(900, 620);
        f.find<QSplitter>("imageViewBrowserSplitView").setSizes({200, 400});
        QCoreApplication::processEvents();
        const QList<int> sizes = f.find<QSplitter>("imageViewBrowserSplitView").sizes();
        QSignalSpy closed(&f.window, &MainWindow::closed);
        QTest::keyClick(&f.window, Qt::Key_W, Qt::ControlModifier);
        QCOMPARE(closed.count(), 1);
        QVERIFY(!f.window.isVisible());

        MainWindow again({f.controller, f.files.defaults, f.files.alerts, 2});
        again.show();
        QCOMPARE(again.size(), QSize(900, 620));
        QCOMPARE(again.findChild<QSplitter *>(u"imageViewBrowserSplitView"_qs)->sizes(), sizes);
    }

    void preferencesAreSettings()
    {
        ShownWindow f;
        QSignalSpy previewOutdated(&f.controller, &AppController::previewOutdated);
        QTest::keyClick(&f.window, Qt::Key_Comma, Qt::ControlModifier);
        const QList<QCheckBox *> boxes = f.find<QWidget>("preferences").findChildren<QCheckBox *>();
        QVERIFY(!boxes.isEmpty());
        for (QCheckBox *const box : boxes) {
            const QString key = box->objectName();
            QCOMPARE(box->isChecked(), f.files.defaults.boolForKey(key));
            QTest::keyClick(box, Qt::Key_Space);
            QCOMPARE(box->isChecked(), f.files.defaults.boolForKey(key));
        }
        QVERIFY(f.files.defaults.boolForKey(settings::combineAllAppliedPresetsInImage));
        QCOMPARE(previewOutdated.count(), 1);
    }

    void alertsAreMessageBoxes()
    {
        MessageBoxAlerts alerts;
        Alert alert;
        alert.title = u"Title"_qs;
        alert.text = u"<b>name</b>.jpg"_qs;
        alert.buttons = {u"First"_qs, u"Second"_qs, u"Third"_qs};
        alert.escapeButton = 2;
        alert.hasSuppressionBox = true;
        withNextBox([](QMessageBox &box) {
            for (const QLabel *const label : box.findChildren<QLabel *>())
                QVERIFY(label->textFormat() == Qt::PlainText); // a file's name is no markup
            box.checkBox()->click();
            QTest::keyClick(&box, Qt::Key_Escape);
        });
        QCOMPARE(alerts.run(alert), (AlertAnswer{2, true}));
        alert.text = QStringList(10, u'/' + QStringList(80, u"long folder/"_qs).join(QString())).join(u'\n');
        alert.title = QString(200, u'W'); // the name of a file
        withNextBox([](QMessageBox &box) {
            QVERIFY(box.width() < 800 && box.height() < 600);
            const auto *const title = box.findChild<QLabel *>(u"qt_msgbox_label"_qs);
            QVERIFY(title->height() >= title->heightForWidth(title->width()));
            QVERIFY(title->fontMetrics().horizontalAdvance(title->text()) > 2 * title->width());
            QTest::keyClick(&box, Qt::Key_Return);
        });
        QCOMPARE(alerts.run(alert), (AlertAnswer{0, false}));
        withNextBox([](QMessageBox &box) { box.buttons().at(1)->click(); });
        QCOMPARE(alerts.run(alert).button, 1);
        withNextBox([](QMessageBox &box) { QTest::keyClick(&box, Qt::Key_Escape); });
        QCOMPARE(alerts.run(Alert{}), AlertAnswer{}); // a lone "OK"
    }

    void workersMayAsk()
    {
        MessageBoxAlerts alerts;
        std::atomic_int button = -1;
        withNextBox([](QMessageBox &box) { box.buttons().at(1)->click(); });
        const std::jthread worker([&] {
            Alert alert;
            alert.buttons = {u"No"_qs, u"Yes"_qs};
            button = alerts.run(alert).button;
        });
        QTRY_COMPARE(button.load(), 1);
    }
};

QTEST_MAIN(MainWindowTest)
#include "mainwindow_test.moc"
