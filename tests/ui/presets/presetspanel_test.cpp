// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/realpointer.h"
#include "ui/shownwindow.h"
#include "ui/widgets/elidedlabel.h"
#include "ui/widgets/foldingsection.h"
#include "ui/widgets/presetlistmodel.h"
#include "ui/widgets/presetlistview.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QDrag>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QTimer>
#include <QToolButton>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// The window in presets mode, with four presets.
struct Panel : ShownWindow {
    Panel()
    {
        for (const QString &name : words("One Two Three Four"))
            presets.push_back(namedPreset(name));
        applied.modeDidChange(AppliedPresets::Mode::Presets);
        files.store.wPresetList().append(presets);
    }

    static void mouse(PresetListView &view, int row, bool isDouble, Qt::KeyboardModifiers modifiers = {})
    {
        const QPoint at = view.visualRect(view.model()->index(row, 0)).center();
        QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, at);
        if (isDouble)
            QTest::mouseDClick(view.viewport(), Qt::LeftButton, modifiers, at);
    }

    QString appliedNames() const { return names(applied.wPresetsApplied()); }

    WPresetList presets;
    AppliedPresets &applied = controller.appliedPresets();
    PresetListView &allTable = find<PresetListView>("wPresetsAllTable");
    PresetListView &appliedTable = find<PresetListView>("wPresetsAppliedTable");
};

} // namespace

class PresetsPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void changesTheMode()
    {
        Panel f;
        auto &single = f.find<QPushButton>("singleModeButton");
        auto &presets = f.find<QPushButton>("presetsModeButton");
        QTRY_VERIFY(single.isEnabled() && f.allTable.isVisible());
        QTest::mouseClick(&single, Qt::LeftButton);
        QVERIFY(f.applied.isInSingleMode());
        QVERIFY(f.find<QWidget>("quickWPresetEditor").isVisible() && !f.allTable.isVisible());
        QVERIFY(f.window.actions().action(ActionId::SingleMode)->isChecked());
        // The Tab key reaches the checked one, an arrow key goes on from there.
        QVERIFY(!(presets.focusPolicy() & Qt::TabFocus));
        QTest::keyClick(&single, Qt::Key_Right);
        QVERIFY(!f.applied.isInSingleMode() && f.allTable.isVisible());
        f.applied.modeDidChange(AppliedPresets::Mode::Single); // by the menu
        QVERIFY(single.isChecked() && !f.allTable.isVisible());
    }

    void appliesAndRemoves()
    {
        Panel f;
        PresetListView &all = f.allTable;
        PresetListView &applied = f.appliedTable;
        const QAbstractItemModelTester tester(applied.model());
        Panel::mouse(all, 1, false);
        QTRY_VERIFY(f.isEnabled(ActionId::ApplyPresets));
        all.clearSelection();
        QTRY_VERIFY(!f.isEnabled(ActionId::ApplyPresets));
        Panel::mouse(all, 1, false);
        Panel::mouse(all, 3, false, Qt::ControlModifier);
        QTest::keyClick(&all, Qt::Key_Return);
        Panel::mouse(all, 0, false);
        Panel::mouse(all, 1, false, Qt::ShiftModifier);
        f.files.store.wPresetList().append(
            {std::make_shared<WPreset>(WPresetValues{})}); // the selection stays
        QTest::keyClick(&all, Qt::Key_Return);
        QCOMPARE(f.appliedNames(), u"Two Four One"_qs);
        QCOMPARE(applied.model()->rowCount(), 3);
        QCOMPARE(applied.selectedRows(), IndexList({2})); // the preview shows it

        f.applied.selectRows({});
        f.applied.selectNeighborAppliedPreset(AppliedPresets::Neighbor::Previous);
        QCOMPARE(applied.selectedRows(), IndexList({2}));
        f.applied.selectNeighborAppliedPreset(AppliedPresets::Neighbor::Next);
        QCOMPARE(applied.selectedRows(), IndexList({0}));
        f.presets[1]->setName(u"2"_qs);
        QCOMPARE(applied.model()->index(0, 0).data().toString(), u"2"_qs);

        Panel::mouse(applied, 2, false, Qt::ControlModifier);
        QCOMPARE(f.applied.selectedRows(), IndexList({0, 2}));
        QTest::keyClick(&applied, Qt::Key_Delete);
        QCOMPARE(f.appliedNames(), u"Four"_qs);
        QCOMPARE(f.applied.selectedRows(), IndexList({0})); // the preview shows it

        qsizetype commands = 0;
        QTimer::singleShot(0, [&commands] {
            if (QWidget *const menu = QApplication::activePopupWidget()) {
                commands = menu->actions().size();
                menu->close();
            }
        });
        QContextMenuEvent rightClick(QContextMenuEvent::Mouse, {5, 5}, applied.mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(applied.viewport(), &rightClick);
        QCOMPARE(commands, 5);

        // A double click applies.
        Panel::mouse(all, 2, true);
        QCOMPARE(f.appliedNames(), u"Four Three"_qs);
        Panel::mouse(applied, 1, false);
        QTest::keyClick(&applied, Qt::Key_Delete);

        // One on an applied preset finds it among all, and opens their manager.
        int opened = 0;
        f.window.actions().setHandler(ActionId::ShowWatermarkPresets, [&] { ++opened; });
        f.mouse(applied, 0, true);
        QCOMPARE(all.selectedRows(), IndexList({3}));
        QCOMPARE(opened, 1);

        // The list follows the store.
        const QAbstractItemModelTester allTester(all.model());
        f.files.store.wPresetList().move({3}, 0);
        QCOMPARE(all.selectedRows(), IndexList({0}));
        f.files.store.wPresetList().remove({0, 1});
        QCOMPARE(all.selectedRows(), IndexList());
        QCOMPARE(all.model()->index(0, 0).data().toString(), u"2"_qs);
    }

    void showsWhatCommandsDid()
    {
        Panel f;
        const auto &hint = f.find<ElidedLabel>("statusHint");
        Panel::mouse(f.allTable, 1, false);
        QTRY_VERIFY(f.isEnabled(ActionId::LoadPreset));
        f.window.actions().action(ActionId::LoadPreset)->trigger();
        QVERIFY(f.applied.isInSingleMode());
        QCOMPARE(hint.text(), u"The single watermark is now a copy of “Two”"_qs);
        f.window.actions().action(ActionId::SaveQuickPreset)->trigger();
        QCOMPARE(f.allTable.selectedRows(), IndexList({4}));
        QCOMPARE(hint.text(), u"“Saved Quick Preset” was added to all presets"_qs);
        QVERIFY(f.applied.isInSingleMode()); // the photos keep their watermark
        f.applied.modeDidChange(AppliedPresets::Mode::Presets);
        f.window.actions().setHandler(ActionId::ShowWatermarkPresets, {});
        f.applied.addWPresetsToApplied(f.presets);
        Panel::mouse(f.appliedTable, 0, true);
        QVERIFY(hint.text().contains(u"does not have this command"));
    }

    /// The single watermark as a new preset, loaded from one, and written back; each with undo.
    void storesTheSingleWatermark()
    {
        Panel f;
        f.presets[1]->setFontSize(7);
        f.applied.modeDidChange(AppliedPresets::Mode::Single);
        const auto quick = [&] { return f.applied.quickWPreset(); };
        const auto list = [&] { return names(f.files.store.wPresets()); };
        const auto run = [&](ActionId id) {
            f.window.actions().update();
            f.window.actions().action(id)->trigger();
        };
        auto &update = f.find<QPushButton>("updatePresetButton");
        const auto text = [&] { return f.window.actions().action(ActionId::UpdatePreset)->text(); };
        QTRY_VERIFY(f.find<QPushButton>("saveQuickPresetButton").isEnabled() && !update.isEnabled());

        const std::shared_ptr<WPreset> first = quick();
        QMenu &menu = *f.find<QPushButton>("loadPresetMenuButton").menu();
        menu.popup({});
        QCOMPARE(menu.actions().size(), 4);
        QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(menu.actions()[1]).center());
        QCOMPARE(quick()->fontSize(), 7);
        QCOMPARE(quick()->name(), u"Quick Preset"_qs);
        QVERIFY(text().contains(u"“Two”"));
        f.presets[1]->setName(u"2"_qs);
        QVERIFY(text().contains(u"“2”"));

        // What is written back: all but the name.
        quick()->setFontSize(9);
        QTRY_VERIFY(update.isEnabled());
        QTest::mouseClick(&update, Qt::LeftButton);
        QCOMPARE(f.presets[1]->fontSize(), 9);
        QCOMPARE(f.presets[1]->name(), u"2"_qs);
        run(ActionId::Undo);
        QCOMPARE(f.presets[1]->fontSize(), 7);
        run(ActionId::Redo);
        QCOMPARE(f.presets[1]->fontSize(), 9);
        run(ActionId::Undo);
        f.applied.modeDidChange(AppliedPresets::Mode::Presets);
        run(ActionId::Undo); // of the loading
        QVERIFY(quick() == first && f.applied.isInSingleMode());
        QVERIFY(!text().contains(u'“'));
        run(ActionId::Redo);
        QCOMPARE(quick()->fontSize(), 9);

        run(ActionId::SaveQuickPreset);
        QCOMPARE(list(), u"One 2 Three Four Saved Quick Preset"_qs);
        QVERIFY(text().contains(u"“Saved Quick Preset”"));
        run(ActionId::Undo);
        QCOMPARE(list(), u"One 2 Three Four"_qs);
        QVERIFY(text().contains(u"“2”"));
        run(ActionId::Redo);
        QCOMPARE(list(), u"One 2 Three Four Saved Quick Preset"_qs);
        // A preset that is gone is not written to.
        f.files.store.wPresetList().remove({4});
        f.window.actions().update();
        QVERIFY(!update.isEnabled() && !text().contains(u'“'));
    }

    void searchesAndFoldsAllPresets()
    {
        Panel f;
        auto &search = f.find<QLineEdit>("allPresetsSearchField");
        auto &section = f.find<FoldingSection>("allPresetsSection");
        search.setFocus();
        QTest::keyClicks(&search, u"O"_qs);
        QCOMPARE(f.allTable.model()->rowCount(), 3); // One Two Four
        QTest::keyClick(&search, Qt::Key_Down);
        QVERIFY(f.allTable.hasFocus());
        QCOMPARE(f.allTable.selectedRows(), IndexList({0}));
        auto &edited = f.find<ElidedLabel>("editedPresetLabel");
        QCOMPARE(edited.text(), u"“One” (not applied)"_qs);
        QTest::keyClick(&search, Qt::Key_Return);
        QCOMPARE(f.appliedNames(), u"One"_qs);
        QCOMPARE(edited.text(), u"“One”"_qs);
        f.presets[0]->setName(u"One now"_qs);
        QCOMPARE(edited.text(), u"“One now”"_qs);
        f.window.actions().action(ActionId::SaveQuickPreset)->trigger(); // which the search would hide
        QVERIFY(search.text().isEmpty());
        QCOMPARE(f.allTable.selectedRows(), IndexList({4}));

        auto &editor = f.find<QWidget>("wPresetEditor");
        QVERIFY(QTest::qWaitFor([&] { return editor.isVisible(); }));
        const int height = editor.height();
        QToolButton &title = *section.findChild<QToolButton *>({}, Qt::FindDirectChildrenOnly);
        QTest::mouseClick(&title, Qt::LeftButton);
        QVERIFY(!f.allTable.isVisible() && !search.isVisible());
        QTRY_VERIFY(section.height() < 40 && editor.height() > height + 80);
        QVERIFY(f.files.defaults.boolForKey(u"allPresetsFolded"_qs));
        QTest::mouseClick(&title, Qt::LeftButton);
        QTRY_COMPARE(editor.height(), height);
        QVERIFY(f.allTable.isVisible() && search.isVisible());
        QVERIFY(!f.files.defaults.boolForKey(u"allPresetsFolded"_qs));
    }

    /// The pictures of the list follow its presets.
    void showsPictures()
    {
        Panel f;
        f.presets[0]->setTextTokens({u"XXXX"_qs});
        f.presets[0]->setFontSize(90);
        const auto row = [&](int index) {
            const QRect place = f.allTable.visualRect(f.allTable.model()->index(index, 0));
            return f.allTable.viewport()->grab(place.adjusted(0, 0, -place.width() / 2, 0)).toImage();
        };
        const auto isDrawn = [&](int index) { // neither the ground of the row alone nor that of the photo
            return row(index).pixelColor(20, 24).lightness() < 200;
        };
        QTRY_VERIFY(isDrawn(0) && isDrawn(1));
        const QImage before = row(0);
        f.presets[0]->setTextTokens({u"IIII"_qs});
        QTRY_VERIFY(row(0) != before);
    }

    /// The last one that the user pressed, even where that one was selected already.
    void editsTheLastSelected()
    {
        Panel f;
        const auto &edited = f.find<ElidedLabel>("editedPresetLabel");
        Panel::mouse(f.allTable, 1, true);
        Panel::mouse(f.allTable, 0, false);
        QCOMPARE(edited.text(), u"“One” (not applied)"_qs);
        Panel::mouse(f.appliedTable, 0, false);
        QCOMPARE(edited.text(), u"“Two”"_qs);
        QTest::keyClick(&f.allTable, Qt::Key_Space);
        QCOMPARE(edited.text(), u"“One” (not applied)"_qs);
        QTest::keyClick(&f.allTable, Qt::Key_A, Qt::ControlModifier);
        Panel::mouse(f.allTable, 0, false);
        Panel::mouse(f.allTable, 1, false, Qt::ControlModifier);
        f.applied.selectRows({0});
        QTest::keyClick(&f.allTable, Qt::Key_Return);
        QCOMPARE(f.appliedNames(), u"Two One"_qs);
        QCOMPARE(edited.text(), u"“One”"_qs);
        // Another preset in the selected row.
        f.applied.addWPresetsToApplied({f.presets[2]}, 0);
        QCOMPARE(edited.text(), u"“Three”"_qs);
    }

    /// Even where the user holds the slider still in between.
    void undoesADragOfASlider()
    {
        Panel f;
        f.applied.modeDidChange(AppliedPresets::Mode::Single);
        auto &editor = f.find<QScrollArea>("quickWPresetEditor");
        auto &slider = *editor.findChild<QSlider *>(u"opacitySlider"_qs);
        for (QWidget *part = &slider; part != &editor; part = part->parentWidget()) {
            if (auto *const section = qobject_cast<FoldingSection *>(part); section && section->isFolded())
                QTest::mouseClick(section->findChild<QToolButton *>({}, Qt::FindDirectChildrenOnly),
                                  Qt::LeftButton);
        }
        QTRY_VERIFY(slider.isVisible() && slider.width() > 50);
        editor.ensureWidgetVisible(&slider);
        QWindow *const window = f.window.windowHandle();
        const auto at = [&](int x) { return slider.mapTo(&f.window, QPoint(x, slider.height() / 2)); };
        QTest::mousePress(window, Qt::LeftButton, {}, at(slider.width() - 7));
        QTest::mouseMove(window, at(slider.width() / 2));
        QTRY_VERIFY(f.applied.quickWPreset()->opacity() < 90);
        QTest::qWait(1200);
        QTest::mouseMove(window, at(slider.width() / 3));
        QTest::mouseRelease(window, Qt::LeftButton, {}, at(slider.width() / 3));
        QTRY_VERIFY(f.applied.quickWPreset()->opacity() < 45);
        f.controller.undoHistory().undo();
        QCOMPARE(f.applied.quickWPreset()->opacity(), 100);
    }

    void drawsAllOnOneCopy()
    {
        Panel f;
        auto &check = f.find<QCheckBox>("combineAppliedCheckBox");
        f.applied.addWPresetsToApplied({f.presets[0]});
        QVERIFY(!check.isVisible());
        f.applied.addWPresetsToApplied({f.presets[1]});
        QVERIFY(check.isVisible() && !check.isChecked());
        QTest::mouseClick(&check, Qt::LeftButton, {}, {10, check.height() / 2});
        QVERIFY(f.applied.areCombined());
        f.applied.setCombined(false); // by the preferences
        QVERIFY(!check.isChecked());
    }

    /// From the list of all presets to a place between the applied ones, as one step.
    void appliesByDrag()
    {
        Panel f;
        f.applied.addWPresetsToApplied({f.presets[1], f.presets[2]});
        QVERIFY(QTest::qWaitForWindowExposed(&f.window));
        QCoreApplication::processEvents(); // the lists have their places
        const auto center = [](PresetListView &table, int row) {
            return table.viewport()->mapToGlobal(table.visualRect(table.model()->index(row, 0)).center());
        };
        RealPointer pointer;
        pointer.moveTo(center(f.allTable, 0));
        pointer.press();
        pointer.moveTo(center(f.allTable, 0) + QPoint(0, 15));
        pointer.moveTo(center(f.allTable, 0) + QPoint(0, 20));
        pointer.waitFor([&] { return f.allTable.findChild<QDrag *>(); });
        pointer.moveTo(center(f.appliedTable, 1));
        pointer.moveTo(center(f.appliedTable, 1) - QPoint(0, 6));
        pointer.waitFor(
            [&] { return f.allTable.findChild<QDrag *>()->target() == f.appliedTable.viewport(); });
        pointer.release();
        QVERIFY(pointer.play());
        QTRY_COMPARE(f.appliedNames(), u"Two One Three"_qs);
        QCOMPARE(f.applied.selectedRows(), IndexList({1}));
        f.controller.undoHistory().undo();
        QCOMPARE(f.appliedNames(), u"Two Three"_qs);
        f.controller.undoHistory().redo();
        QCOMPARE(f.applied.selectedRows(), IndexList({1}));
    }

    void showsTheAddedPresets()
    {
        Panel f;
        for (int i = 0; i < 40; ++i)
            f.applied.addWPresetsToApplied({namedPreset(u"more"_qs)});
        QScrollBar &bar = *f.appliedTable.verticalScrollBar();
        QTRY_VERIFY(bar.maximum() > 3);
        QCOMPARE(bar.value(), bar.maximum());
        // Any other change leaves the place.
        f.applied.selectRows({0});
        const int middle = bar.maximum() / 2;
        bar.setValue(middle);
        f.applied.moveAppliedPresets({0}, 2);
        QCOMPARE(bar.value(), middle);
        f.applied.addWPresetsToApplied({f.presets[0]}, 0); // by a drag
        QCOMPARE(bar.value(), 0);
    }

    void reordersOnlyItsOwnRows()
    {
        Panel f;
        f.applied.addWPresetsToApplied(f.presets);
        PresetListView &applied = f.appliedTable;
        auto &model = *applied.model();
        const std::unique_ptr<QMimeData> rows(model.mimeData({model.index(1, 0), model.index(2, 0)}));
        QCOMPARE(PresetRowsModel::draggedRows(rows.get()), IndexList({1, 2}));
        QCOMPARE(model.flags(model.index(0, 0)).testFlag(Qt::ItemIsDropEnabled), false); // only between rows

        // A drag from elsewhere, even of another list of presets, moves nothing.
        QSignalSpy rowsDropped(&applied, &PresetListView::rowsDropped);
        QDropEvent drop(QPoint(10, 10), Qt::MoveAction, rows.get(), Qt::LeftButton, {});
        QCoreApplication::sendEvent(applied.viewport(), &drop);
        QCOMPARE(rowsDropped.count(), 0);

        QMimeData broken;
        broken.setData(u"draggedPrests"_qs, QByteArray("\x7f\xff\xff\xff\x00", 5));
        QCOMPARE(PresetRowsModel::draggedRows(&broken), IndexList());

        // Two rows by the pointer below the last one.
        applied.selectRows({1, 2});
        QVERIFY(QTest::qWaitForWindowExposed(&f.window));
        QCoreApplication::processEvents(); // the lists have their places
        const auto at = [&](int row, int y) {
            return applied.viewport()->mapToGlobal(applied.visualRect(model.index(row, 0)).center() +
                                                   QPoint(0, y));
        };
        RealPointer pointer;
        pointer.moveTo(at(1, 0));
        pointer.press();
        pointer.moveTo(at(1, 15));
        pointer.moveTo(at(1, 20));
        pointer.waitFor([&] { return applied.findChild<QDrag *>(); });
        pointer.moveTo(at(3, 0));
        pointer.moveTo(at(3, 4));
        pointer.waitFor([&] { return applied.findChild<QDrag *>()->target() == applied.viewport(); });
        pointer.release();
        QVERIFY(pointer.play());
        QTRY_COMPARE(rowsDropped.count(), 1);
        QCOMPARE(f.appliedNames(), u"One Four Two Three"_qs);
        QCOMPARE(applied.selectedRows(), IndexList({2, 3}));
    }
};

int main(int argc, char **argv)
{
    return runOnXServer<PresetsPanelTest>(argc, argv);
}

#include "presetspanel_test.moc"
