// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/commandrules.h"

#include <QString>

#include <optional>
#include <vector>

namespace plexa
{

/// Everything that menus, shortcuts and buttons ask for.
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

    CopyImages,
    SelectAll,
    SelectNone,
    InvertSelection,
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
    SwitchBatchMode,

    SingleMode,
    PresetsMode,
    NextPreset,
    PreviousPreset,
    ApplyPresets,
    RemoveAppliedPresets,
    ClearAppliedPresets,
    SaveQuickPreset,
    LoadPreset,

    Minimize,
    ToggleFullScreen,
    ShowMainWindow,
    ToggleWatermarkPresets,
    ToggleSavingPresets,
    ToggleMetadata,

    UserGuide,
    ContextHelp,
    Feedback,
    About,
};

enum class MenuId { File, Edit, Image, View, Watermark, Window, Help };

/// One command: how it looks, where it stands and when it is possible.
struct CommandRow {
    ActionId id;
    MenuId menu;
    bool startsGroup;     ///< a separator stands before it
    const char *name;     ///< object name of its action; its buttons add "Button"
    const char *text;     ///< with the mnemonic
    const char *toolTip;  ///< a sentence; the shortcut is added where it is shown
    const char *shortcut; ///< portable text, empty: none
    const char *icon;     ///< file of resources/icons without its suffix, empty: none
    Command rule = Command::Other;
    int tag = 0;
    std::optional<CommandButton> button = {}; ///< whose rule its buttons follow; none: they follow the menu's
    bool isInImageMenu = false;               ///< stands in the context menu of the photos, too
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
