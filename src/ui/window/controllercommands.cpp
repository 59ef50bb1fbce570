// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/controllercommands.h"

#include "app/appcontroller.h"
#include "ui/widgets/commandactions.h"
#include "ui/window/filemanager.h"

#include <QAction>
#include <QActionGroup>
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

/// The two modes are the items of one choice.
void connectModes(CommandActions &actions, AppliedPresets &applied)
{
    QAction *const single = actions.action(ActionId::SingleMode);
    QAction *const presets = actions.action(ActionId::PresetsMode);
    auto *const modes = new QActionGroup(&actions);
    for (QAction *const mode : {single, presets}) {
        mode->setCheckable(true);
        modes->addAction(mode);
    }
    const auto showMode = [single, presets](bool isSingle) {
        (isSingle ? single : presets)->setChecked(true);
    };
    QObject::connect(&applied, &AppliedPresets::modeChanged, modes, showMode);
    showMode(applied.isInSingleMode());
    using Mode = AppliedPresets::Mode;
    actions.setHandler(ActionId::SingleMode, [&applied] { applied.modeDidChange(Mode::Single); });
    actions.setHandler(ActionId::PresetsMode, [&applied] { applied.modeDidChange(Mode::Presets); });
}

void connectPresets(CommandActions &actions, AppliedPresets &applied)
{
    actions.setHandler(ActionId::NextPreset,
                       [&applied] { applied.selectNeighborAppliedPreset(AppliedPresets::Neighbor::Next); });
    actions.setHandler(ActionId::PreviousPreset, [&applied] {
        applied.selectNeighborAppliedPreset(AppliedPresets::Neighbor::Previous);
    });
    actions.setHandler(ActionId::RemoveAppliedPresets,
                       [&applied] { applied.removeSelectedAppliedPresets(); });
    actions.setHandler(ActionId::ClearAppliedPresets, [&applied] { applied.clearAppliedPresets(); });
}

} // namespace

void connectControllerCommands(CommandActions &actions, AppController &controller)
{
    connectSelection(actions, controller);
    connectPositions(actions, controller);
    connectModes(actions, controller.appliedPresets());
    connectPresets(actions, controller.appliedPresets());
    actions.setHandler(ActionId::SaveQuickPreset,
                       [&controller] { controller.presetCommands().saveQuickAsWPreset(); });

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
