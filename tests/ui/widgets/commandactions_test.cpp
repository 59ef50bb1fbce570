// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/datarows.h"
#include "ui/widgets/commandactions.h"

#include <QAction>
#include <QPushButton>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// What a state can lack, a letter each.
struct Lack {
    char letter;
    void (*apply)(CommandState &state);
};
constexpr Lack kLacks[] = {
    {'S', [](CommandState &state) { state.nSelected = 0; }},
    {'F', [](CommandState &state) { state.nShown = 0; }},
    {'B', [](CommandState &state) { state.isInBrowserMode = false; }},
    {'O', [](CommandState &state) { state.hasCurrentBatchOperation = true; }},
    {'P', [](CommandState &state) { state.nEffectivePresets = 0; }},
    {'c', [](CommandState &state) { state.canCopyForCurrentPreset = false; }},
    {'a', [](CommandState &state) { state.canCopyForAllPresets = false; }},
    {'v', [](CommandState &state) { state.hasCopiedPositions = false; }},
    {'w', [](CommandState &state) { state.hasCurrentWPreset = false; }},
    {'A', [](CommandState &state) { state.nAppliedPresets = 1; }},
    {'C', [](CommandState &state) { state.nAppliedPresets = 0; }},
    {'r', [](CommandState &state) { state.nSelectedApplied = 0; }},
    {'l', [](CommandState &state) { state.nSelectedWPresets = 0; }},
    {'L', [](CommandState &state) { state.nSelectedWPresets = 2; }},
    {'Z', [](CommandState &state) { state.browserZoomFactor = 1; }},
    {'z', [](CommandState &state) { state.browserZoomFactor = 0; }},
    {'!', [](CommandState &state) { state.isSavingInProgress = true; }},
};

/// A state in which everything is possible.
CommandState everything()
{
    CommandState state;
    state.canCopyForCurrentPreset = state.canCopyForAllPresets = true;
    state.hasCopiedPositions = state.hasCurrentWPreset = true;
    state.nSelected = 2;
    state.nShown = 3;
    state.nEffectivePresets = state.nSelectedApplied = state.nSelectedWPresets = 1;
    state.nAppliedPresets = 2;
    state.browserZoomFactor = 0.5F;
    return state;
}

struct Needs {
    Text name; ///< the letters of what is needed; "program": nothing, not even that no save is running
    QList<ActionId> ids;
};

} // namespace

class CommandActionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void needs_data()
    {
        using enum ActionId;
        addRows<Needs>({{"-", {AddImages}},
                        {"program", {Quit, UserGuide}},
                        {"S", {RemoveSelected, SelectNone, ResetAllPositions, ShowInFileManager}},
                        {"SB", {ToggleMetadata}},
                        {"F", {SelectAll, InvertSelection}},
                        {"SO", {TurnRight, TurnLeft, Turn180, FlipVertical, FlipHorizontal}},
                        {"SP", {CopyImages, OpenSelectedInCompanion}},
                        {"FP", {OpenAllInCompanion}},
                        {"!SP", {SaveSelected}},
                        {"!FP", {SaveAll}},
                        {"a", {CopyAllPositions}},
                        {"c", {CopyPosition}},
                        {"Sv", {PastePositions}},
                        {"Sw", {ResetPosition}},
                        {"BZ", {BrowserZoomIn}},
                        {"Bz", {BrowserZoomOut}},
                        {"B", {ToggleFilenames}},
                        {"AC", {NextPreset, PreviousPreset}},
                        {"l", {ApplyPresets}},
                        {"r", {RemoveAppliedPresets}},
                        {"C", {ClearAppliedPresets}},
                        {"lL", {LoadPreset}}});
    }

    /// Each command has exactly the needs of its row. A menu item is also disabled during a save, unless it
    /// is about the program. A command that is not possible does not run.
    void needs()
    {
        const auto [needed, ids] = currentRow<Needs>();
        for (const ActionId id : ids)
            checkNeeds(id, needed);
    }

private:
    static void checkNeeds(ActionId id, const QString &needed)
    {
        const bool isOfProgram = needed == u"program";
        CommandState state;
        int runs = 0;
        QWidget owner;
        QPushButton button;
        CommandActions actions(&owner, [&] { return state; });
        actions.bindButton(id, &button);
        const QAction &action = *actions.action(id);
        state = everything();
        actions.update();
        QVERIFY(!action.isEnabled()); // without a handler
        actions.setHandler(id, [&] { ++runs; });
        actions.update();
        QVERIFY(action.isEnabled() && button.isEnabled());
        const QString toolTip = action.toolTip();
        for (const Lack &lack : kLacks) {
            state = everything();
            lack.apply(state);
            actions.update();
            const bool isNeeded = !isOfProgram && needed.contains(QLatin1Char(lack.letter));
            const bool isPossible = !isNeeded && (lack.letter != '!' || isOfProgram);
            QVERIFY2(action.isEnabled() == isPossible && button.isEnabled() == !isNeeded, &lack.letter);
            QVERIFY2((action.toolTip() == toolTip) == isPossible, &lack.letter);
            runs = 0;
            actions.run(id);
            QCOMPARE(runs, isPossible ? 1 : 0);
            button.setEnabled(true); // a state that the event loop has not shown yet
            button.click();
            QCOMPARE(runs, (isPossible ? 1 : 0) + (isNeeded ? 0 : 1));
        }
    }
};

QTEST_MAIN(CommandActionsTest)
#include "commandactions_test.moc"
