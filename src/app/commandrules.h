// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <optional>
#include <vector>

namespace plexa
{

/// A condition that commands may have. A command is possible when all of its needs are met.
enum class Need {
    NoSave,         ///< no batch save is running
    Photos,         ///< photos are shown
    SeveralPhotos,  ///< at least two are shown
    Selection,      ///< photos are selected
    SmallBatchMode, ///< the grid is shown
    NoRotation,     ///< no photos are being rotated or mirrored
    NoPasting,
    ToUndo, ///< something can be undone
    ToRedo,
    NoSorting, ///< photos are not being sorted
    Watermark, ///< a preset is drawn on the photos
    CurrentPreset,
    CurrentPosition, ///< one photo is selected, with a position of the current preset
    AnyPosition,     ///< one photo is selected, with a position of a preset
    CopiedPosition,
    AppliedPreset,
    SeveralAppliedPresets,
    AppliedSelection, ///< applied presets are selected
    PresetSelection,  ///< presets are selected in the list of all presets
    OneSelectedPreset,
    LoadedPreset, ///< the quick preset was loaded from a preset, or saved as one
    RoomToMovePhotosUp,
    RoomToMovePhotosDown,
    RoomToMovePresetsUp,
    RoomToMovePresetsDown,
    RoomToZoomIn,  ///< the thumbnails can be larger
    RoomToZoomOut, ///< the thumbnails can be smaller
    RoomToZoomInPreview,
    RoomToZoomOutPreview,
};

/// The state that the needs are checked against.
struct CommandState {
    bool isSavingInProgress = false;
    bool isInBrowserMode = true;
    bool hasCurrentBatchOperation = false;
    bool isSorting = false;
    bool isPasting = false;
    bool canUndo = false;
    bool canRedo = false;
    bool canCopyForCurrentPreset = false;
    bool canCopyForAllPresets = false;
    bool hasCopiedPositions = false;
    bool hasCurrentWPreset = false;
    bool hasLoadedWPreset = false;
    bool canMovePhotosUp = false;
    bool canMovePhotosDown = false;
    bool canMovePresetsUp = false;   ///< applied presets
    bool canMovePresetsDown = false; ///< applied presets
    qsizetype nSelected = 0;         ///< photos
    qsizetype nShown = 0;            ///< photos
    qsizetype nEffectivePresets = 0;
    qsizetype nAppliedPresets = 0;
    qsizetype nSelectedApplied = 0;  ///< applied presets
    qsizetype nSelectedWPresets = 0; ///< in the list of all presets; known to the window alone
    float browserZoomFactor = 0;     ///< 0..1
    bool canZoomInPreview = false;   ///< known to the window alone
    bool canZoomOutPreview = false;  ///< known to the window alone
};

/// The first need that is not met; nullopt: the command is possible.
std::optional<Need> missingNeed(const std::vector<Need> &needs, const CommandState &state);

/// What the user has to do first, or wait for: a sentence, translated.
QString reasonFor(Need missing);

} // namespace plexa
