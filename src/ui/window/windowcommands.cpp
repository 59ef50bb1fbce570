// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/windowcommands.h"

#include "app/appcontroller.h"
#include "ui/widgets/commandactions.h"
#include "ui/window/filemanager.h"

#include <QFileInfo>

namespace plexa
{

namespace
{

void connectSelection(CommandActions &actions, AppController &controller)
{
    ImageSet &set = controller.imageSet();
    actions.setHandler(ActionId::SelectAll, [&set] { set.selection().selectAll(); });
    actions.setHandler(ActionId::SelectNone, [&set] { set.selection().selectNone(); });
    actions.setHandler(ActionId::InvertSelection, [&set] { set.selection().invertSelection(); });
    actions.setHandler(ActionId::RemoveSelected, [&set] { set.removeSelectedImages(); });
    actions.setHandler(ActionId::SwitchBatchMode, [&set] { set.switchImageListMode(); });
    actions.setHandler(ActionId::ShowInFileManager, [&set] {
        QStringList paths;
        for (const std::shared_ptr<ImageObject> &image : set.selectedImages())
            paths.append(QFileInfo::exists(image->path()) ? image->path() : image->pathToImportFrom());
        showFilesInFileManager(paths);
    });
}

void connectPositions(CommandActions &actions, AppController &controller)
{
    using Presets = AppController::Presets;
    const auto copy = [&controller](Presets presets) {
        return [&controller, presets] { controller.copyManualPositioning(presets); };
    };
    const auto reset = [&controller](Presets presets) {
        return [&controller, presets] { controller.resetManualPositioning(presets); };
    };
    actions.setHandler(ActionId::CopyPosition, copy(Presets::Current));
    actions.setHandler(ActionId::CopyAllPositions, copy(Presets::All));
    actions.setHandler(ActionId::PastePositions, [&controller] { controller.pasteManualPositioning(); });
    actions.setHandler(ActionId::ResetPosition, reset(Presets::Current));
    actions.setHandler(ActionId::ResetAllPositions, reset(Presets::All));
}

void connectPresets(CommandActions &actions, AppliedPresets &applied)
{
    actions.setHandler(ActionId::SingleMode, [&applied] { applied.modeDidChange(0); });
    actions.setHandler(ActionId::PresetsMode, [&applied] { applied.modeDidChange(1); });
    actions.setHandler(ActionId::NextPreset,
                       [&applied] { applied.selectNeighborAppliedPreset(AppliedPresets::Neighbor::Next); });
    actions.setHandler(ActionId::PreviousPreset, [&applied] {
        applied.selectNeighborAppliedPreset(AppliedPresets::Neighbor::Previous);
    });
    actions.setHandler(ActionId::RemoveAppliedPresets,
                       [&applied] { applied.removeSelectedAppliedPresets(); });
    actions.setCondition(ActionId::RemoveAppliedPresets,
                         [&applied] { return !applied.selectedRows().isEmpty(); });
    actions.setHandler(ActionId::ClearAppliedPresets, [&applied] { applied.clearAppliedPresets(); });
    actions.setCondition(ActionId::ClearAppliedPresets,
                         [&applied] { return !applied.wPresetsApplied().empty(); });
}

} // namespace

void connectControllerCommands(CommandActions &actions, AppController &controller)
{
    connectSelection(actions, controller);
    connectPositions(actions, controller);
    connectPresets(actions, controller.appliedPresets());

    const auto turn = [&](ActionId id, ImageTransform transform) {
        actions.setHandler(id, [&controller, transform] { controller.startBatchOperation(transform); });
    };
    turn(ActionId::TurnLeft, ImageTransform::RotateCounterClockwise);
    turn(ActionId::TurnRight, ImageTransform::RotateClockwise);
    turn(ActionId::Turn180, ImageTransform::RotateHalf);
    turn(ActionId::FlipHorizontal, ImageTransform::MirrorLeftRight);
    turn(ActionId::FlipVertical, ImageTransform::MirrorTopBottom);
}

} // namespace plexa
