// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commandrules.h"

#include <QTest>

using namespace plexa;

class CommandRulesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void needs_data();
    void needs();
};

namespace
{

/// A state in which everything is possible.
CommandState everything()
{
    CommandState state;
    state.canCopyForCurrentPreset = true;
    state.canCopyForAllPresets = true;
    state.hasCopiedPositions = true;
    state.hasCurrentWPreset = true;
    state.nSelected = 2;
    state.nShown = 3;
    state.nEffectivePresets = 1;
    state.nAppliedPresets = 2;
    state.browserZoomFactor = 0.5F;
    return state;
}

// What may be missing; a letter each.
void takeAway(CommandState &state, QChar what)
{
    switch (what.toLatin1()) {
    case 'S':
        state.nSelected = 0;
        break;
    case 'F':
        state.nShown = 0;
        break;
    case 'B':
        state.isInBrowserMode = false;
        break;
    case 'O':
        state.hasCurrentBatchOperation = true;
        break;
    case 'P':
        state.nEffectivePresets = 0;
        break;
    case 'c':
        state.canCopyForCurrentPreset = false;
        break;
    case 'a':
        state.canCopyForAllPresets = false;
        break;
    case 'v':
        state.hasCopiedPositions = false;
        break;
    case 'w':
        state.hasCurrentWPreset = false;
        break;
    case 'A':
        state.nAppliedPresets = 1;
        break;
    case 'Z':
        state.browserZoomFactor = 1;
        break;
    case 'z':
        state.browserZoomFactor = 0;
        break;
    case '!':
        state.isSavingInProgress = true;
        break;
    }
}

const QString kAll = QStringLiteral("SFBOPcavwAZz!");

} // namespace

void CommandRulesTest::needs_data()
{
    QTest::addColumn<Command>("command");
    QTest::addColumn<int>("tag");
    QTest::addColumn<int>("button"); // -1: none
    QTest::addColumn<QString>("needed");
    const auto row = [](const char *name, Command command, int tag, int button, const char *needed) {
        QTest::newRow(name) << command << tag << button << QString::fromLatin1(needed);
    };
    const auto button = [](CommandButton one) { return static_cast<int>(one); };
    using enum Command;
    using B = CommandButton;
    row("remove", RemoveSelectedImages, 0, button(B::RemoveImages), "S");
    row("metadata panel", ToggleShowImageMetadataPanel, 0, button(B::Info), "SB");
    row("select none", ChangeSelection, 1, -1, "S");
    row("invert", ChangeSelection, 2, -1, "F");
    row("turn right", Rotate90Degree, 1, button(B::TurnRight), "SO");
    row("turn left", Rotate90Degree, 2, button(B::TurnLeft), "SO");
    row("turn by half", Rotate180Degree, 0, button(B::Turn180), "SO");
    row("mirror top to bottom", Flip, 1, button(B::FlipVert), "SO");
    row("mirror left to right", Flip, 0, button(B::FlipHoriz), "SO");
    row("save selected", SaveImages, 0, button(B::SaveSelected), "SP");
    row("save all", SaveImages, 1, button(B::SaveAll), "FP");
    row("selected to companion", OpenInCompanionApplication, 0, -1, "SP");
    row("all to companion", OpenInCompanionApplication, 7, -1, "FP");
    row("copy all", CopyManualPositioning, 1, button(B::CopyManualForAllPresets), "a");
    row("copy current", CopyManualPositioning, 0, button(B::CopyManualForCurrentPreset), "c");
    row("paste", PasteManualPositioning, 0, button(B::PasteManual), "Sv");
    row("reset all", ResetManualPositioning, 1, button(B::ResetManualForAllPresets), "S");
    row("reset current", ResetManualPositioning, 0, button(B::ResetManualForCurrentPreset), "Sw");
    row("zoom in", ZoomBrowser, 1, -1, "BZ");
    row("zoom out", ZoomBrowser, 2, -1, "Bz");
    row("names", ShowBrowserFilenamesDidChange, 0, -1, "B");
    row("show files", ShowFilesInFinder, 0, -1, "S");
    row("neighbour", SelectNeighborAppliedPreset, 1, -1, "A");
    row("anything else", Other, 0, -1, "");
}

/// Each command needs just what its row says; a menu item needs, besides, that nothing is being saved.
void CommandRulesTest::needs()
{
    QFETCH(Command, command);
    QFETCH(int, tag);
    QFETCH(int, button);
    QFETCH(QString, needed);
    QVERIFY(isMenuItemEnabled(command, tag, everything()));
    for (const QChar what : kAll) {
        CommandState state = everything();
        takeAway(state, what);
        const bool isNeeded = needed.contains(what);
        QVERIFY2(isMenuItemEnabled(command, tag, state) == !(isNeeded || what == QLatin1Char('!')),
                 qPrintable(what));
        if (button >= 0)
            QVERIFY2(isButtonEnabled(static_cast<CommandButton>(button), state) == !isNeeded,
                     qPrintable(what));
    }
}

QTEST_GUILESS_MAIN(CommandRulesTest)
#include "commandrules_test.moc"
