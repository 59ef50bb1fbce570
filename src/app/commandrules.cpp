// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commandrules.h"

#include <QCoreApplication>

#include <algorithm>

namespace plexa
{

namespace
{

using State = CommandState;

struct Rule {
    Need need;
    bool (*isMet)(const State &state);
    const char *reason;
};

#define TEXT(text) QT_TRANSLATE_NOOP("Commands", text)

constexpr Rule kRules[] = {
    {Need::NoSave, [](const State &state) { return !state.isSavingInProgress; },
     TEXT("Photos are being saved.")},
    {Need::Photos, [](const State &state) { return state.nShown > 0; }, TEXT("There are no photos.")},
    {Need::SeveralPhotos, [](const State &state) { return state.nShown > 1; },
     TEXT("There is only one photo.")},
    {Need::Selection, [](const State &state) { return state.nSelected > 0; },
     TEXT("Select at least one photo first.")},
    {Need::SmallBatchMode, [](const State &state) { return state.isInBrowserMode; },
     TEXT("Switch to the Small Batch mode first.")},
    {Need::NoRotation, [](const State &state) { return !state.hasCurrentBatchOperation; },
     TEXT("Photos are being rotated.")},
    {Need::NoPasting, [](const State &state) { return !state.isPasting; },
     TEXT("Positions are being pasted.")},
    {Need::ToUndo, [](const State &state) { return state.canUndo; }, TEXT("There is nothing to undo.")},
    {Need::ToRedo, [](const State &state) { return state.canRedo; }, TEXT("There is nothing to redo.")},
    {Need::NoSorting, [](const State &state) { return !state.isSorting; }, TEXT("Photos are being sorted.")},
    {Need::Watermark, [](const State &state) { return state.nEffectivePresets > 0; },
     TEXT("Apply at least one preset first.")},
    {Need::CurrentPreset, [](const State &state) { return state.hasCurrentWPreset; },
     TEXT("Select one applied preset first.")},
    {Need::CurrentPosition, [](const State &state) { return state.canCopyForCurrentPreset; },
     TEXT("Select one photo on which the current watermark has a manual position.")},
    {Need::AnyPosition, [](const State &state) { return state.canCopyForAllPresets; },
     TEXT("Select one photo on which a watermark has a manual position.")},
    {Need::CopiedPosition, [](const State &state) { return state.hasCopiedPositions; },
     TEXT("Copy a position first.")},
    {Need::AppliedPreset, [](const State &state) { return state.nAppliedPresets > 0; },
     TEXT("No preset is applied.")},
    {Need::SeveralAppliedPresets, [](const State &state) { return state.nAppliedPresets > 1; },
     TEXT("Apply at least two presets first.")},
    {Need::AppliedSelection, [](const State &state) { return state.nSelectedApplied > 0; },
     TEXT("Select at least one applied preset first.")},
    {Need::PresetSelection, [](const State &state) { return state.nSelectedWPresets > 0; },
     TEXT("Select at least one preset in the list of all presets first.")},
    {Need::OneSelectedPreset, [](const State &state) { return state.nSelectedWPresets == 1; },
     TEXT("Select one preset in the list of all presets first.")},
    {Need::LoadedPreset, [](const State &state) { return state.hasLoadedWPreset; },
     TEXT("Load a preset into the single watermark first, or save that as a new one.")},
    {Need::RoomToMovePhotosUp, [](const State &state) { return state.canMovePhotosUp; },
     TEXT("The selected photos are the first ones.")},
    {Need::RoomToMovePhotosDown, [](const State &state) { return state.canMovePhotosDown; },
     TEXT("The selected photos are the last ones.")},
    {Need::RoomToMovePresetsUp, [](const State &state) { return state.canMovePresetsUp; },
     TEXT("The selected presets are the first ones.")},
    {Need::RoomToMovePresetsDown, [](const State &state) { return state.canMovePresetsDown; },
     TEXT("The selected presets are the last ones.")},
    {Need::RoomToZoomIn, [](const State &state) { return state.browserZoomFactor < 1; },
     TEXT("The thumbnails have their largest size.")},
    {Need::RoomToZoomOut, [](const State &state) { return state.browserZoomFactor > 0; },
     TEXT("The thumbnails have their smallest size.")},
    {Need::RoomToZoomInPreview, [](const State &state) { return state.canZoomInPreview; },
     TEXT("There is no photo, or it is shown at its full size.")},
    {Need::RoomToZoomOutPreview, [](const State &state) { return state.canZoomOutPreview; },
     TEXT("The whole photo is shown.")},
};

#undef TEXT

const Rule &ruleOf(Need need)
{
    const Rule &rule = kRules[static_cast<std::size_t>(need)];
    Q_ASSERT(rule.need == need);
    return rule;
}

} // namespace

std::optional<Need> missingNeed(const std::vector<Need> &needs, const CommandState &state)
{
    const auto missing =
        std::find_if(needs.begin(), needs.end(), [&](Need need) { return !ruleOf(need).isMet(state); });
    return missing == needs.end() ? std::nullopt : std::optional(*missing);
}

QString reasonFor(Need missing)
{
    return QCoreApplication::translate("Commands", ruleOf(missing).reason);
}

} // namespace plexa
