// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/shownwindow.h"

#include <QApplication>
#include <QSignalSpy>

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
};

QTEST_MAIN(WindowCommandsTest)
#include "windowcommands_test.moc"
