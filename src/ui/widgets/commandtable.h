// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/commandrules.h"

#include <QString>

#include <vector>

namespace plexa
{

/// The commands of menus, shortcuts and buttons.
enum class ActionId {
    AddImages,
    AddFolder,
    SaveSelected,
    SaveAll,
    OpenSelectedInCompanion,
    OpenAllInCompanion,
    ShowInFileManager,
    CloseWindow,
    Quit,

    Undo,
    Redo,
    CopyImages,
    SelectAll,
    SelectNone,
    InvertSelection,
    MovePhotosUp,
    MovePhotosDown,
    RemoveSelected,
    Find,
    Preferences,

    TurnLeft,
    TurnRight,
    Turn180,
    FlipHorizontal,
    FlipVertical,
    CopyPosition,
    CopyAllPositions,
    PastePositions,
    ResetPosition,
    ResetAllPositions,

    PreviewZoomIn,
    PreviewZoomOut,
    PreviewFit,
    PreviewFullSize,
    BrowserZoomIn,
    BrowserZoomOut,
    ToggleFilenames,
    ToggleThumbnailWatermarks,
    SortByName,
    SortByDate,
    ReverseOrder,
    SwitchBatchMode,

    SingleMode,
    PresetsMode,
    NextPreset,
    PreviousPreset,
    ApplyPresets,
    MovePresetsUp,
    MovePresetsDown,
    RemoveAppliedPresets,
    ClearAppliedPresets,
    SaveQuickPreset,
    UpdatePreset,
    LoadPreset,
    ShowWatermarkPresets,
    ShowSavingPresets,

    Minimize,
    ToggleFullScreen,
    ShowMainWindow,
    ToggleWatermarkPresets,
    ToggleSavingPresets,
    ToggleMetadata,

    UserGuide,
    ContextHelp,
    ContactSupport,
    Feedback,
    CheckForUpdates,
    License,
    About,
};

enum class MenuId { File, Edit, Image, View, Watermark, Window, Help };

/// Everything about one command but the function that carries it out.
struct CommandRow {
    ActionId id;
    MenuId menu;
    bool startsGroup;     ///< a separator is above it
    const char *name;     ///< object name of its action; its buttons add "Button"
    const char *text;     ///< with the mnemonic
    const char *toolTip;  ///< a sentence; the shortcut is added where it is shown
    const char *shortcut; ///< portable text, several separated by "; ", empty: none
    const char *icon;     ///< file of resources/icons without its suffix, empty: none
    std::vector<Need> needs = {};
    bool isInImageMenu = false;        ///< also an item of the context menu of the photos
    bool isPossibleDuringSave = false; ///< about the program or its window
};

/// All commands in the order of the menus; one row for each ActionId, in its order.
const std::vector<CommandRow> &commandTable();
const CommandRow &commandRow(ActionId id);

/// The menu's title, with its mnemonic, translated.
QString menuTitle(MenuId menu);

/// The row's text and tool tip, translated.
QString commandText(const CommandRow &row);
QString commandToolTip(const CommandRow &row);

} // namespace plexa
