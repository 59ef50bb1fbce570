// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/tokenfieldwithinsertpopup.h"
#include "ui/editors/wpresetviewcontroller.h"
#include "ui/preview/imageviewwithwatermarkcontrol.h"
#include "ui/shownwindow.h"
#include "ui/widgets/colorwell.h"

#include <QApplication>
#include <QColorDialog>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>

using namespace plexa;
using namespace plexa::test;

class WindowCommandsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// The keys move the entries of the list that has the focus.
    void movesUpAndDown()
    {
        ShownWindow f;
        QVERIFY(f.active);
        AppliedPresets &applied = f.controller.appliedPresets();
        applied.modeDidChange(AppliedPresets::Mode::Presets);
        applied.addWPresetsToApplied({namedPreset(u"one"_qs), namedPreset(u"two"_qs)});
        applied.selectRows({1});
        f.addPhotos(words("a.png b.png c.png"));
        f.set.selection().selectIndexes({2});
        const auto press = [&](Qt::Key key) {
            QCoreApplication::processEvents(); // updates the commands
            QTest::keyClick(QApplication::focusWidget(), key, Qt::AltModifier | Qt::ShiftModifier);
        };
        for (const bool isGrid : {true, false}) {
            f.set.setImageListModeToBrowser(isGrid);
            (isGrid ? static_cast<QWidget &>(f.grid) : f.table).setFocus();
            press(Qt::Key_Up);
            QCOMPARE(shownNames(f.set), u"a c b"_qs);
            QCOMPARE(f.set.selection().selectedIndexes(), IndexList({1}));
            press(Qt::Key_Down);
            QCOMPARE(shownNames(f.set), u"a b c"_qs);
            press(Qt::Key_Down);
            QCOMPARE(shownNames(f.set), u"a b c"_qs);
        }
        QVERIFY(!f.isEnabled(ActionId::MovePhotosDown));
        QVERIFY(f.window.actions().action(ActionId::MovePhotosDown)->toolTip().contains(u"last"));
        QCOMPARE(names(applied.wPresetsApplied()), u"one two"_qs);

        f.find<QWidget>("wPresetsAppliedTable").setFocus();
        press(Qt::Key_Up);
        QCOMPARE(names(applied.wPresetsApplied()), u"two one"_qs);
        QCOMPARE(shownNames(f.set), u"a b c"_qs);
    }

    /// One step for a slider that moves, in the editor of the watermark that is drawn.
    void undoesEditsOfWatermarks()
    {
        ShownWindow f;
        QVERIFY(f.active);
        f.addPhotos(words("a.png"));
        AppliedPresets &applied = f.controller.appliedPresets();
        applied.modeDidChange(AppliedPresets::Mode::Single);
        const std::shared_ptr<WPreset> quick = applied.quickWPreset();
        auto &editor = f.find<WPresetViewController>("quickWPresetEditor");
        auto &slider = *editor.findChild<QSlider *>(u"opacitySlider"_qs);
        auto &shadow = *editor.findChild<QAbstractButton *>(u"shadowCheckBox"_qs);
        slider.setFocus();
        for (int i = 0; i < 5; ++i)
            QTest::keyClick(&slider, Qt::Key_Left);
        QTest::keyClick(&shadow, Qt::Key_Space);
        QVERIFY(quick->opacity() == 95 && quick->shadow());
        const auto press = [&](Qt::KeyboardModifiers modifiers) {
            QCoreApplication::processEvents(); // updates the commands
            slider.setFocus();
            QTest::keyClick(&slider, Qt::Key_Z, modifiers);
        };
        press(Qt::ControlModifier);
        QVERIFY(quick->opacity() == 95 && !quick->shadow() && !shadow.isChecked());
        applied.modeDidChange(AppliedPresets::Mode::Presets);
        f.controller.undoHistory().undo(); // shows what it changes
        QVERIFY(quick->opacity() == 100 && slider.value() == 100 && applied.isInSingleMode());
        press(Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(quick->opacity(), 95);
        // Another watermark, or a value from elsewhere, is left alone.
        quick->setOpacity(50);
        press(Qt::ControlModifier);
        QCOMPARE(quick->opacity(), 50);
        QVERIFY(!f.controller.undoHistory().canUndo());
    }

    /// The field undoes single changes; for the window they are one step, which undo in the field takes back.
    void undoesTexts()
    {
        ShownWindow f;
        QVERIFY(f.active);
        f.addPhotos(words("a.png"));
        f.controller.appliedPresets().modeDidChange(AppliedPresets::Mode::Single);
        auto &editor = f.find<WPresetViewController>("quickWPresetEditor");
        auto &tokens = *editor.findChild<TokenFieldWithInsertPopup *>(u"textTokensField"_qs);
        const UndoHistory &history = f.controller.undoHistory();
        const QStringList before = tokens.textTokens();
        const auto type = [&tokens](const QString &text) {
            tokens.setFocus();
            tokens.selectAll();
            QTest::keyClicks(&tokens, text);
            QTest::qWait(1200); // a number would begin a step
        };
        const auto undoInField = [&tokens] { QTest::keyClick(&tokens, Qt::Key_Z, Qt::ControlModifier); };
        type(u"one"_qs);
        type(u"two"_qs);
        QVERIFY(history.canUndo());
        while (tokens.document()->isUndoAvailable())
            undoInField();
        QCOMPARE(tokens.textTokens(), before);
        QVERIFY(!history.canUndo());
        type(u"three"_qs);
        undoInField();
        type(u"four"_qs);
        f.grid.setFocus();
        tokens.setFocus();
        QCoreApplication::processEvents();
        undoInField(); // it is the window that does it now
        QCOMPARE(tokens.textTokens(), before);
        QVERIFY(!history.canUndo());
    }

    /// Not the text of the field, and not the colors that the dialog has shown on the way.
    void undoesNumbersAndColors()
    {
        ShownWindow f;
        QVERIFY(f.active);
        f.addPhotos(words("a.png"));
        f.controller.appliedPresets().modeDidChange(AppliedPresets::Mode::Single);
        auto &editor = f.find<WPresetViewController>("quickWPresetEditor");
        auto &size = *editor.findChild<QSpinBox *>(u"fontSizeTextField"_qs);
        const UndoHistory &history = f.controller.undoHistory();
        const int before = size.value();
        size.setFocus();
        QTest::keyClick(&size, Qt::Key_Up);
        QTest::keyClick(&size, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(&size, u"20"_qs);
        QCOMPARE(size.value(), 20);
        for (int i = 0; i < 3 && history.canUndo(); ++i) { // one, on a machine that is not slow
            QCoreApplication::processEvents();
            QTest::keyClick(&size, Qt::Key_Z, Qt::ControlModifier);
        }
        QVERIFY(!history.canUndo());
        QCOMPARE(size.value(), before);

        auto &well = *editor.findChild<ColorWell *>(u"fillColorWell"_qs);
        const std::shared_ptr<WPreset> quick = f.controller.appliedPresets().quickWPreset();
        for (const bool isAccepted : {false, true}) {
            QTest::mouseClick(&well, Qt::LeftButton, {}, QPoint(10, 10));
            auto *const dialog = well.findChild<QColorDialog *>();
            QVERIFY(dialog);
            dialog->setCurrentColor(Qt::red);
            QTest::qWait(1200);
            dialog->setCurrentColor(Qt::green);
            QCOMPARE(quick->fillColor(), QColor(Qt::green));
            QTest::keyClick(dialog, isAccepted ? Qt::Key_Return : Qt::Key_Escape);
            QCOMPARE(history.canUndo(), isAccepted);
            QTRY_VERIFY(!well.findChild<QColorDialog *>());
        }
        f.controller.undoHistory().undo();
        QVERIFY(!history.canUndo() && quick->fillColor() != QColor(Qt::red));
    }

    void undoes()
    {
        ShownWindow f;
        QVERIFY(f.active);
        f.addPhotos(words("a.png b.png c.png"));
        f.set.selection().selectIndexes({0, 1});
        const QAction &undo = *f.window.actions().action(ActionId::Undo);
        const auto press = [](QWidget &focus, Qt::KeyboardModifiers modifiers) {
            QCoreApplication::processEvents(); // updates the commands
            focus.setFocus();
            QTest::keyClick(&focus, Qt::Key_Z, modifiers);
        };
        QVERIFY(!undo.isEnabled() && undo.toolTip().contains(u"nothing to undo"));
        f.grid.setFocus();
        QTest::keyClick(&f.grid, Qt::Key_Delete);
        QCOMPARE(shownNames(f.set), u"c"_qs);
        QCOMPARE(undo.text(), u"&Undo Remove 2 Photos"_qs);

        // In a text field the keys are about its text.
        auto &search = f.find<QLineEdit>("searchField");
        QTest::keyClicks(&search, u"c"_qs);
        press(search, Qt::ControlModifier);
        QCOMPARE(search.text(), QString());
        QCOMPARE(shownNames(f.set), u"c"_qs);

        press(f.grid, Qt::ControlModifier);
        QCOMPARE(shownNames(f.set), u"a b c"_qs);
        QCOMPARE(undo.text(), u"&Undo"_qs);
        press(f.grid, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(shownNames(f.set), u"c"_qs);

        // Not while photos are saved; the save itself is no step.
        f.files.defaults.setObject(settings::savingDirectory, f.files.folder.path());
        f.files.defaults.setObject(settings::saveAllToOneDirectory, true);
        QVERIFY(f.controller.startSaving(*f.set.images()));
        f.window.actions().update();
        QVERIFY(!undo.isEnabled() && undo.toolTip().contains(u"being saved"));
        f.window.actions().run(ActionId::Undo);
        QCOMPARE(shownNames(f.set), u"c"_qs);
        QTRY_VERIFY(f.window.findChild<QWidget *>(u"savingReportPanel"_qs));
        QTest::keyClick(f.window.findChild<QWidget *>(u"savingReportPanel"_qs), Qt::Key_Escape);
        f.window.activateWindow(); // as a window manager does
        QVERIFY(QTest::qWaitForWindowActive(&f.window));
        press(f.grid, Qt::ControlModifier);
        QCOMPARE(shownNames(f.set), u"a b c"_qs);
    }

    /// A drag in the preview is one step, and so is a run of arrow keys.
    void undoesPositions()
    {
        ShownWindow f;
        QVERIFY(f.active);
        AppliedPresets &applied = f.controller.appliedPresets();
        const auto mark = namedPreset(u"mark"_qs);
        mark->setType(u"Image"_qs);
        mark->setImage(WatermarkPicture::fromImage(flatPicture({40, 20}, Qt::red)));
        f.files.store.wPresetList().append({mark});
        applied.modeDidChange(AppliedPresets::Mode::Presets);
        applied.addWPresetsToApplied({mark});
        applied.selectRows({0});
        f.set.addImage(f.files.photo("a.png", {400, 300}), {});
        f.set.selection().selectIndexes({0});
        auto &view = f.find<ImageViewWithWatermarkControl>("imageView");
        QTRY_VERIFY(view.showWatermarkRect());
        const std::shared_ptr<ImageObject> photo = f.set.images()->front();
        const auto place = [&] { return photo->customWatermarkRectOriginForWPreset(mark.get()); };
        const QPointF start = view.watermarkRect().topLeft();

        const QPoint at = view.geometry().imageToView(view.watermarkRect()).center().toPoint();
        QTest::mousePress(&view, Qt::LeftButton, {}, at);
        QTest::mouseMove(&view, at + QPoint(5, -5));
        QTest::mouseMove(&view, at + QPoint(20, -30));
        QTest::mouseRelease(&view, Qt::LeftButton, {}, at + QPoint(20, -30));
        const std::optional<QPointF> dragged = place();
        QVERIFY(dragged && *dragged != start);
        view.setFocus();
        for (int i = 0; i < 3; ++i)
            QTest::keyClick(&view, Qt::Key_Up);
        QVERIFY(place() && place() != dragged);
        QCoreApplication::processEvents();
        QTest::keyClick(&view, Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(place() == dragged);
        QTRY_COMPARE(view.watermarkRect().topLeft(), *dragged);
        QTest::keyClick(&view, Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(!place());
        QTRY_COMPARE(view.watermarkRect().topLeft(), start);
    }

    /// A long table shows the selected photo after a new order, and otherwise stays where it is.
    void sortsALongTable()
    {
        ShownWindow f;
        f.set.setImageListModeToBrowser(false);
        ImageList many;
        for (int i = 10'000; i > 0; --i)
            many.push_back(std::make_shared<ImageObject>(u"/x/IMG_%1.jpg"_qs.arg(i), f.files.photos));
        f.set.addImages(many);
        f.set.selection().select({500}, ImageSelection::kNone); // a focus would load a photo
        f.table.scrollTo(f.table.model()->index(500, 0));
        const auto isSelectionVisible = [&] {
            const QModelIndex row = f.table.model()->index(f.set.selection().selectedIndexes().first(), 0);
            return f.table.viewport()->rect().contains(f.table.visualRect(row).center());
        };
        const int scrolledTo = f.table.verticalScrollBar()->value();
        QVERIFY(scrolledTo > 0);
        QCoreApplication::processEvents();
        f.window.actions().run(ActionId::MovePhotosUp);
        QCOMPARE(f.table.verticalScrollBar()->value(), scrolledTo);

        f.window.actions().run(ActionId::SortByName);
        QTRY_COMPARE(f.set.images()->back(), many.front());
        QCOMPARE(f.set.selection().selectedIndexes(), IndexList({9'499}));
        QVERIFY(isSelectionVisible());
        QElapsedTimer timer;
        timer.start();
        f.window.actions().run(ActionId::ReverseOrder);
        QCoreApplication::processEvents();
        qInfo() << "ms for a new order of 10,000 photos:" << timer.elapsed();
        QVERIFY(*f.set.images() == many);
        QVERIFY(isSelectionVisible());
    }
};

QTEST_MAIN(WindowCommandsTest)
#include "windowcommands_test.moc"
