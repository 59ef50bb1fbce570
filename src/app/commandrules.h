// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

namespace plexa
{

/// The commands of the main window whose enabling depends on something. A tag tells the variants of one
/// command apart.
enum class Command {
    RemoveSelectedImages,
    ToggleShowImageMetadataPanel,
    ChangeSelection, ///< 1: select none, other tags: invert
    Rotate90Degree,  ///< 1: clockwise, other tags: counter-clockwise
    Rotate180Degree,
    Flip,                       ///< 1: top to bottom, other tags: left to right
    SaveImages,                 ///< 0: the selected ones, other tags: all
    OpenInCompanionApplication, ///< likewise
    CopyManualPositioning,      ///< 1: of all presets, other tags: of the current one
    PasteManualPositioning,
    ResetManualPositioning, ///< 1: of all presets, other tags: of the current one
    ZoomBrowser,            ///< 1: in, other tags: out
    ShowBrowserFilenamesDidChange,
    ShowFilesInFinder,
    SelectNeighborAppliedPreset, ///< 1: next, other tags: previous
    Other,                       ///< everything that is always possible
};

/// The buttons that stand for commands.
enum class CommandButton {
    RemoveImages,
    SaveSelected,
    SaveAll,
    Info,
    TurnLeft,
    TurnRight,
    Turn180,
    FlipHoriz,
    FlipVert,
    CopyManualForCurrentPreset,
    CopyManualForAllPresets,
    PasteManual,
    ResetManualForCurrentPreset,
    ResetManualForAllPresets,
};

/// All that the rules look at.
struct CommandState {
    bool isSavingInProgress = false;
    bool isInBrowserMode = true;
    bool hasCurrentBatchOperation = false;
    bool canCopyForCurrentPreset = false;
    bool canCopyForAllPresets = false;
    bool hasCopiedPositions = false;
    bool hasCurrentWPreset = false;
    qsizetype nSelected = 0; ///< photos
    qsizetype nShown = 0;    ///< photos
    qsizetype nEffectivePresets = 0;
    qsizetype nAppliedPresets = 0;
    float browserZoomFactor = 0; ///< 0..1
};

/// May this menu item be chosen? Nothing may while copies are being saved.
bool isMenuItemEnabled(Command command, int tag, const CommandState &state);

/// May this button be pressed? By the rule of its command; unlike menu items, also while copies are being
/// saved.
bool isButtonEnabled(CommandButton button, const CommandState &state);

} // namespace plexa
