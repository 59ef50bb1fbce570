// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/presetsfilereading.h"
#include "support/realpointer.h"
#include "ui/editors/wpresetviewcontroller.h"
#include "ui/presets/presetsmanagerwindow.h"
#include "ui/shownwindow.h"
#include "ui/widgets/look.h"
#include "ui/widgets/presetlistview.h"

#include <QComboBox>
#include <QDrag>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QToolButton>

using namespace plexa;
using namespace plexa::test;

namespace
{

using Kind = PresetsStore::Kind;

/// The window and the manager of one kind, with presets of these names.
struct Manager : ShownWindow {
    Manager(Kind kind, const char *presetNames)
        : isWatermark(kind == Kind::Watermark)
        , key(isWatermark ? u"WatermarkPresetsManagement"_qs : u"SavingPresetsManagement"_qs)
    {
        files.defaults.setObject(key, {});
        for (const QString &name : words(presetNames)) {
            if (isWatermark) {
                files.store.wPresetList().append({namedPreset(name)});
            } else {
                files.store.savingPresetList().insertNew({});
                files.store.savingPresets().back()->setName(name);
            }
        }
        run(isWatermark ? ActionId::ShowWatermarkPresets : ActionId::ShowSavingPresets);
        for (QWidget *const widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == key)
                manager = qobject_cast<PresetsManagerWindow *>(widget);
        }
        active = active && QTest::qWaitForWindowActive(manager);
    }
    ~Manager() { files.defaults.setObject(key, {}); }

    void run(ActionId id)
    {
        window.actions().update();
        window.actions().run(id);
    }
    template<class Widget>
    Widget &part(const char *name) const
    {
        return *manager->findChild<Widget *>(QLatin1StringView(name));
    }
    bool isShown(const char *name) const { return part<QWidget>(name).isVisible(); }
    PresetListView &list() const { return part<PresetListView>("presetsListTable"); }
    QPoint at(int row) const { return list().visualRect(list().model()->index(row, 0)).center(); }
    void select(int row, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::mouseClick(list().viewport(), Qt::LeftButton, modifiers, at(row));
    }
    void press(const char *name) const { QTest::mouseClick(&part<QAbstractButton>(name), Qt::LeftButton); }
    void undo(int times = 1)
    {
        for (int i = 0; i < times; ++i)
            run(ActionId::Undo);
    }

    /// Of the presets that are shown.
    QString shown() const
    {
        QStringList names;
        for (int row = 0; row < list().model()->rowCount(); ++row)
            names.append(list().model()->index(row, 0).data().toString());
        return names.join(u' ');
    }

    const bool isWatermark;
    const QString key; // of the geometry, and the window's name
    PresetsManagerWindow *manager = nullptr;
};

} // namespace

class PresetsManagersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsAndToggles()
    {
        Manager f(Kind::Watermark, "One");
        QVERIFY(f.active);
        QCOMPARE(f.manager->windowTitle(), u"Watermark Presets Management"_qs);
        const QAction &toggle = *f.window.actions().action(ActionId::ToggleWatermarkPresets);
        f.run(ActionId::ShowWatermarkPresets); // never closes it
        QVERIFY(f.manager->isVisible() && toggle.isChecked());
        f.run(ActionId::SaveQuickPreset); // which is to be named
        QTest::keyClicks(f.manager->focusWidget(), u"Web"_qs);
        QCOMPARE(names(f.files.store.wPresets()), u"One Web"_qs);
        f.files.store.wPresetList().remove({1});
        f.manager->resize(911, 555);
        f.files.store.wPresets().front()->setName(u"Renamed"_qs);
        f.run(ActionId::ToggleWatermarkPresets);
        QVERIFY(!f.manager->isVisible() && !toggle.isChecked());
        QVERIFY(f.files.defaults.stringForKey(f.key).size() > 0);
        const QString file =
            f.files.store.presetsFileNameForWatermark(Kind::Watermark, PresetsStore::Slot::List);
        QCOMPARE(names(readForeignPresetsFile(file, true).wPresets), u"Renamed"_qs); // closing has saved
        PresetsManagerWindow again(Kind::Watermark,
                                   {f.controller, f.files.defaults, f.files.alerts, f.window.actions()});
        QCOMPARE(again.size(), QSize(911, 555));
        f.run(ActionId::ToggleWatermarkPresets);
        QVERIFY(f.manager->isVisible());
        f.window.close();
        QVERIFY(!f.manager->isVisible());
    }

    void searchesAndEdits()
    {
        Manager f(Kind::Watermark, "Logo Hello Text");
        QVERIFY(f.isShown("noSelectedPresetsLabel") && f.isShown("importExamplePresetsButton"));
        QVERIFY(!f.isShown("presetViewContainer") && !f.isShown("presetNameField"));
        QVERIFY(!f.part<QWidget>("removePresetsButton").isEnabled());
        QVERIFY(!f.part<QWidget>("exportPresetsButton").isEnabled());

        f.list().setFocus();
        QTest::keyClick(&f.list(), Qt::Key_Slash);
        QVERIFY(f.part<QLineEdit>("searchField").hasFocus());
        QTest::keyClicks(&f.part<QLineEdit>("searchField"), u"lo"_qs);
        QCOMPARE(f.shown(), u"Logo Hello"_qs);
        // A row of the search is the preset that it shows; one that is hidden is not selected.
        f.part<QLineEdit>("searchField").setText(u"HELL"_qs);
        f.select(0);
        auto &name = f.part<QLineEdit>("presetNameField");
        QCOMPARE(name.text(), u"Hello"_qs);
        QVERIFY(f.isShown("presetViewContainer") && !f.isShown("noSelectedPresetsLabel"));

        // A new one is below the selected one, ends the search, and waits for its name.
        QTest::keyClick(f.manager, Qt::Key_N, Qt::ControlModifier);
        QTRY_VERIFY(name.hasFocus());
        QTest::keyClicks(&name, u"New"_qs);
        QCOMPARE(f.shown(), u"Logo Hello New Text"_qs);
        f.press("duplicatePresetsButton");
        f.press("duplicatePresetsButton");
        QCOMPARE(f.shown(), u"Logo Hello New New - copy New - copy - copy Text"_qs);
        QCOMPARE(f.list().selectedRows(), IndexList({4}));
        f.select(2, Qt::ShiftModifier);
        QVERIFY(f.isShown("multiplePresetsWarningLabel"));
        QTest::keyClick(&f.list(), Qt::Key_Delete);
        QCOMPARE(f.shown(), u"Logo Hello Text"_qs);
        QCOMPARE(f.list().selectedRows(), IndexList({2}));

        // Undone in the order in which it was done; the typed letters of the name are one step.
        f.undo();
        QCOMPARE(f.list().selectedRows(), IndexList({2, 3, 4})); // what has come back
        f.undo(2);
        QCOMPARE(f.shown(), u"Logo Hello New Text"_qs);
        f.undo();
        QCOMPARE(f.shown(), u"Logo Hello New Preset Text"_qs);
        f.undo();
        QCOMPARE(f.shown(), u"Logo Hello Text"_qs);
        f.run(ActionId::Redo);
        f.run(ActionId::Redo);
        QCOMPARE(f.shown(), u"Logo Hello New Text"_qs);
    }

    void reorders()
    {
        Manager f(Kind::Watermark, "0 1 2 3 4");
        f.select(1);
        f.select(2, Qt::ShiftModifier);
        QVERIFY(QTest::qWaitForWindowExposed(f.manager));
        const auto onScreen = [&](int row, int y) {
            return f.list().viewport()->mapToGlobal(f.at(row) + QPoint(0, y));
        };
        RealPointer pointer;
        pointer.moveTo(onScreen(1, 0));
        pointer.press();
        pointer.moveTo(onScreen(1, 15));
        pointer.moveTo(onScreen(1, 20));
        pointer.waitFor([&] { return f.list().findChild<QDrag *>(); });
        pointer.moveTo(onScreen(3, 0));
        pointer.moveTo(onScreen(4, -4));
        pointer.waitFor([&] { return f.list().findChild<QDrag *>()->target() == f.list().viewport(); });
        pointer.release();
        QVERIFY(pointer.play());
        QTRY_COMPARE(f.shown(), u"0 3 1 2 4"_qs);

        // The selected ones by keys, up to the end.
        const auto step = [&](Qt::Key key) {
            QTest::keyClick(&f.list(), key, Qt::AltModifier | Qt::ShiftModifier);
            return f.shown();
        };
        QCOMPARE(step(Qt::Key_Down), u"0 3 4 1 2"_qs);
        QCOMPARE(step(Qt::Key_Down), u"0 3 4 1 2"_qs);
        QCOMPARE(step(Qt::Key_Up), u"0 3 1 2 4"_qs);
        f.select(0);
        f.select(4, Qt::ControlModifier);
        QCOMPARE(step(Qt::Key_Up), u"0 3 1 4 2"_qs);
        f.undo(4);
        QCOMPARE(f.shown(), u"0 1 2 3 4"_qs);
    }

    /// A removed preset is applied, or assigned, again when it comes back.
    void removedPresets()
    {
        {
            Manager f(Kind::Watermark, "a b c");
            AppliedPresets &applied = f.controller.appliedPresets();
            applied.addWPresetsToApplied(f.files.store.wPresets());
            f.select(1);
            f.press("removePresetsButton");
            QCOMPARE(names(applied.wPresetsApplied()), u"a c"_qs);
            f.undo();
            QCOMPARE(names(applied.wPresetsApplied()), u"a b c"_qs);
        }
        Manager f(Kind::Saving, "Web Print");
        f.files.store.wPresetList().append(
            {namedPreset(u"1"_qs), namedPreset(u"2"_qs), namedPreset(u"3"_qs)});
        const WPresetList &marks = f.files.store.wPresets();
        for (int i = 0; i < 3; ++i)
            marks[std::size_t(i)]->setAssignedSavingPreset(f.files.store.savingPresets()[i < 2 ? 0 : 1]);
        f.select(0);
        f.press("removePresetsButton");
        QVERIFY(!marks[0]->assignedSavingPreset() && !marks[1]->assignedSavingPreset());
        QVERIFY(marks[2]->assignedSavingPreset());
        f.undo();
        QCOMPARE(marks[1]->assignedSavingPreset().get(), f.files.store.savingPresets().front().get());
    }

    void savingPresets()
    {
        Manager f(Kind::Saving, "Web Print");
        QCOMPARE(f.manager->windowTitle(), u"Saving Presets Management"_qs);
        const auto color = [&](int row) { return f.list().model()->index(row, 0).data(Qt::ForegroundRole); };
        SavingPreset &web = *f.files.store.savingPresets().front();
        web.setJpegQuality(30);
        QCOMPARE(color(0).value<QColor>(), look::kWarningText);
        QVERIFY(!color(1).isValid());
        f.select(0);
        auto &slider = f.part<QSlider>("jpegQualitySlider");
        slider.setFocus();
        QTest::keyClick(&slider, Qt::Key_End);
        for (int i = 0; i < 3; ++i)
            QTest::keyClick(&slider, Qt::Key_Left);
        QCOMPARE(web.jpegQuality(), 97);
        QVERIFY(!color(0).isValid());
        f.undo();
        QCOMPARE(web.jpegQuality(), 30);
        f.run(ActionId::Redo);
        QCOMPARE(web.jpegQuality(), 97);
        f.press("duplicatePresetsButton");
        QVERIFY(f.files.store.savingPresets()[1]->presetID() != web.presetID());
    }

    void exportsAndImports()
    {
        for (const Kind kind : {Kind::Watermark, Kind::Saving}) {
            Manager f(kind, "a b c");
            const QString file = f.files.folder.path("some presets.xml"); // whatever its name is
            const auto choose = [&](const char *button) {
                f.press(button);
                auto *const dialog = f.manager->findChild<QFileDialog *>();
                dialog->selectFile(file);
                QMetaObject::invokeMethod(dialog, "accept");
                QTRY_VERIFY(!f.manager->findChild<QFileDialog *>());
            };
            f.select(0);
            f.select(2, Qt::ControlModifier);
            choose("exportPresetsButton");
            QVERIFY(QFileInfo(file).size() > 0);
            f.files.alerts.expect(u"Presets imported"_qs);
            choose("importPresetsButton");
            QTRY_COMPARE(f.shown(), u"a b c a c"_qs);
            QTRY_VERIFY(!f.controller.presetCommands().isImporting());
            f.undo();
            QCOMPARE(f.shown(), u"a b c"_qs);
            // A folder that is not there is reported.
            f.files.alerts.expect(u"The presets are not exported"_qs);
            f.press("exportPresetsButton");
            Q_EMIT f.manager->findChild<QFileDialog *>()->fileSelected(f.files.folder.path("none/x.xml"));
            f.manager->findChild<QFileDialog *>()->reject();
            // The examples are added when nothing is selected.
            f.list().clearSelection();
            f.press("importExamplePresetsButton");
            const QString withExamples = f.shown();
            QVERIFY(withExamples.startsWith(u"a b c "_qs));
            f.undo();
            QCOMPARE(f.shown(), u"a b c"_qs);
            QCOMPARE(f.files.alerts.complaints(), QStringList());
        }
    }
};

int main(int argc, char **argv)
{
    return runOnXServer<PresetsManagersTest>(argc, argv);
}

#include "presetsmanagers_test.moc"
