// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commandrules.h"

#include <algorithm>
#include <vector>

namespace plexa
{

namespace
{

using State = CommandState;

constexpr int kOtherTags = -1;

struct Rule {
    Command command;
    int tag; ///< kOtherTags: all that have no row of their own
    bool (*isEnabled)(const State &state);
    std::vector<CommandButton> buttons; ///< that stand for it
};

bool hasSelection(const State &state)
{
    return state.nSelected > 0;
}

bool canBeTurned(const State &state)
{
    return state.nSelected > 0 && !state.hasCurrentBatchOperation;
}

bool canSaveSelected(const State &state)
{
    return state.nSelected > 0 && state.nEffectivePresets > 0;
}

bool canSaveAll(const State &state)
{
    return state.nShown > 0 && state.nEffectivePresets > 0;
}

/// The one place that says what is possible when. A row with a tag stands before the row of the other tags.
const std::vector<Rule> &rules()
{
    using enum Command;
    using B = CommandButton;
    static const std::vector<Rule> table = {
        {RemoveSelectedImages, kOtherTags, hasSelection, {B::RemoveImages}},
        {ToggleShowImageMetadataPanel,
         kOtherTags,
         [](const State &state) { return state.nSelected > 0 && state.isInBrowserMode; },
         {B::Info}},
        {ChangeSelection, 1, hasSelection, {}},
        {ChangeSelection, kOtherTags, [](const State &state) { return state.nShown > 0; }, {}},
        {Rotate90Degree, 1, canBeTurned, {B::TurnRight}},
        {Rotate90Degree, kOtherTags, canBeTurned, {B::TurnLeft}},
        {Rotate180Degree, kOtherTags, canBeTurned, {B::Turn180}},
        {Flip, 1, canBeTurned, {B::FlipVert}},
        {Flip, kOtherTags, canBeTurned, {B::FlipHoriz}},
        {SaveImages, 0, canSaveSelected, {B::SaveSelected}},
        {SaveImages, kOtherTags, canSaveAll, {B::SaveAll}},
        {OpenInCompanionApplication, 0, canSaveSelected, {}},
        {OpenInCompanionApplication, kOtherTags, canSaveAll, {}},
        {CopyManualPositioning,
         1,
         [](const State &state) { return state.canCopyForAllPresets; },
         {B::CopyManualForAllPresets}},
        {CopyManualPositioning,
         kOtherTags,
         [](const State &state) { return state.canCopyForCurrentPreset; },
         {B::CopyManualForCurrentPreset}},
        {PasteManualPositioning,
         kOtherTags,
         [](const State &state) { return state.nSelected > 0 && state.hasCopiedPositions; },
         {B::PasteManual}},
        {ResetManualPositioning, 1, hasSelection, {B::ResetManualForAllPresets}},
        {ResetManualPositioning,
         kOtherTags,
         [](const State &state) { return state.nSelected > 0 && state.hasCurrentWPreset; },
         {B::ResetManualForCurrentPreset}},
        {ZoomBrowser,
         1,
         [](const State &state) { return state.isInBrowserMode && state.browserZoomFactor < 1; },
         {}},
        {ZoomBrowser,
         kOtherTags,
         [](const State &state) { return state.isInBrowserMode && state.browserZoomFactor > 0; },
         {}},
        {ShowBrowserFilenamesDidChange,
         kOtherTags,
         [](const State &state) { return state.isInBrowserMode; },
         {}},
        {ShowFilesInFinder, kOtherTags, hasSelection, {}},
        {SelectNeighborAppliedPreset,
         kOtherTags,
         [](const State &state) { return state.nAppliedPresets > 1; },
         {}},
    };
    return table;
}

} // namespace

bool isMenuItemEnabled(Command command, int tag, const CommandState &state)
{
    if (state.isSavingInProgress)
        return false;
    const auto rule = std::find_if(rules().begin(), rules().end(), [=](const Rule &one) {
        return one.command == command && (one.tag == tag || one.tag == kOtherTags);
    });
    return rule == rules().end() || rule->isEnabled(state);
}

bool isButtonEnabled(CommandButton button, const CommandState &state)
{
    const auto rule = std::find_if(rules().begin(), rules().end(), [=](const Rule &one) {
        return std::find(one.buttons.begin(), one.buttons.end(), button) != one.buttons.end();
    });
    Q_ASSERT(rule != rules().end());
    return rule->isEnabled(state);
}

} // namespace plexa
