// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/commandtable.h"

#include <QCoreApplication>

namespace plexa
{

namespace
{

constexpr char kContext[] = "Commands";

#define TEXT(text) QT_TRANSLATE_NOOP("Commands", text)

std::vector<CommandRow> makeTable()
{
    using enum ActionId;
    using M = MenuId;
    using N = Need;
    // clang-format off
    return {
        {AddImages, M::File, false, "addImages", TEXT("&Add Photos…"), TEXT("Add photos to the list"), "Ctrl+O", "add-photos"},
        {AddFolder, M::File, false, "addFolder", TEXT("Add &Folder…"), TEXT("Add all photos of a folder and of the folders in it"), "Ctrl+Shift+O", "add-folder"},
        {SaveSelected, M::File, true, "saveSelected", TEXT("&Save Selected…"), TEXT("Save watermarked copies of the selected photos"), "Ctrl+S", "save", {N::NoSave, N::Selection, N::Watermark}, true},
        {SaveAll, M::File, false, "saveAll", TEXT("Save A&ll…"), TEXT("Save watermarked copies of all photos in the list"), "Ctrl+Shift+S", "save-all", {N::NoSave, N::Photos, N::Watermark}},
        {OpenSelectedInCompanion, M::File, true, "openSelectedInCompanion", TEXT("&Open Selected in Brevix"), TEXT("Open watermarked copies of the selected photos in Brevix for resizing"), "", "", {N::Selection, N::Watermark}, true},
        {OpenAllInCompanion, M::File, false, "openAllInCompanion", TEXT("Open All in &Brevix"), TEXT("Open watermarked copies of all photos in the list in Brevix for resizing"), "", "", {N::Photos, N::Watermark}},
        {ShowInFileManager, M::File, true, "showInFileManager", TEXT("Show in File &Manager"), TEXT("Show the selected photos in their folders"), "Ctrl+Shift+E", "show-folder", {N::Selection}, true},
        {CloseWindow, M::File, true, "closeWindow", TEXT("&Close Window"), TEXT("Close this window"), "Ctrl+W", "", {}, false, true},
        {Quit, M::File, false, "quit", TEXT("&Quit"), TEXT("Quit Plexa"), "Ctrl+Q", "quit", {}, false, true},

        {Undo, M::Edit, false, "undo", TEXT("&Undo"), TEXT("Undo the last change to photos, watermarks or presets"), "Ctrl+Z", "undo", {N::NoRotation, N::NoPasting, N::ToUndo}},
        {Redo, M::Edit, false, "redo", TEXT("Re&do"), TEXT("Make the last undone change again"), "Ctrl+Shift+Z", "redo", {N::NoRotation, N::NoPasting, N::ToRedo}},
        {CopyImages, M::Edit, true, "copyImages", TEXT("&Copy"), TEXT("Copy the selected photos with their watermarks to the clipboard"), "Ctrl+C", "copy", {N::Selection, N::Watermark}, true},
        {SelectAll, M::Edit, true, "selectAll", TEXT("Select &All"), TEXT("Select all photos in the list"), "Ctrl+A", "", {N::Photos}},
        {SelectNone, M::Edit, false, "selectNone", TEXT("Select &None"), TEXT("Select no photo"), "Ctrl+Shift+A", "", {N::Selection}},
        {InvertSelection, M::Edit, false, "invertSelection", TEXT("&Invert Selection"), TEXT("Select the photos that are not selected"), "Ctrl+I", "", {N::Photos}},
        {MovePhotosUp, M::Edit, true, "movePhotosUp", TEXT("&Move Up"), TEXT("Move the selected photos one place towards the beginning of the list"), "Alt+Shift+Up", "move-up", {N::Selection, N::RoomToMovePhotosUp}},
        {MovePhotosDown, M::Edit, false, "movePhotosDown", TEXT("M&ove Down"), TEXT("Move the selected photos one place towards the end of the list"), "Alt+Shift+Down", "move-down", {N::Selection, N::RoomToMovePhotosDown}},
        {RemoveSelected, M::Edit, true, "removeSelected", TEXT("Remo&ve from List"), TEXT("Remove the selected photos from the list; the files stay"), "Del", "remove-photos", {N::Selection}, true},
        {Find, M::Edit, true, "find", TEXT("&Find…"), TEXT("Show only photos whose names contain a text"), "Ctrl+F", "search"},
        {Preferences, M::Edit, true, "preferences", TEXT("&Preferences…"), TEXT("Change how Plexa works"), "Ctrl+,", "preferences"},

        {TurnLeft, M::Image, false, "turnLeft", TEXT("Turn &Left"), TEXT("Rotate the selected photos counter-clockwise"), "Ctrl+L", "turn-left", {N::Selection, N::NoRotation}, true},
        {TurnRight, M::Image, false, "turnRight", TEXT("Turn &Right"), TEXT("Rotate the selected photos clockwise"), "Ctrl+R", "turn-right", {N::Selection, N::NoRotation}, true},
        {Turn180, M::Image, false, "turn180", TEXT("Turn &Upside Down"), TEXT("Rotate the selected photos by 180°"), "Ctrl+Shift+R", "turn-180", {N::Selection, N::NoRotation}, true},
        {FlipHorizontal, M::Image, true, "flipHorizontal", TEXT("Mirror L&eft to Right"), TEXT("Mirror the selected photos left to right"), "Ctrl+Shift+H", "flip-horizontal", {N::Selection, N::NoRotation}, true},
        {FlipVertical, M::Image, false, "flipVertical", TEXT("Mirror &Top to Bottom"), TEXT("Mirror the selected photos top to bottom"), "Ctrl+Shift+J", "flip-vertical", {N::Selection, N::NoRotation}, true},
        {CopyPosition, M::Image, true, "copyPosition", TEXT("&Copy Position"), TEXT("Copy the position to which the current watermark was dragged on this photo"), "Ctrl+Shift+C", "copy-position", {N::CurrentPosition}},
        {CopyAllPositions, M::Image, false, "copyAllPositions", TEXT("Copy &All Positions"), TEXT("Copy the positions to which all watermarks were dragged on this photo"), "Ctrl+Alt+C", "copy-positions", {N::AnyPosition}},
        {PastePositions, M::Image, false, "pastePositions", TEXT("&Paste Positions"), TEXT("Move the watermarks of the selected photos to the copied positions"), "Ctrl+Shift+V", "paste-position", {N::Selection, N::CopiedPosition}},
        {ResetPosition, M::Image, true, "resetPosition", TEXT("Reset Positio&n"), TEXT("Move the current watermark of the selected photos back to its own position"), "Ctrl+Shift+Backspace", "reset-position", {N::Selection, N::CurrentPreset}},
        {ResetAllPositions, M::Image, false, "resetAllPositions", TEXT("Reset All Po&sitions"), TEXT("Move all watermarks of the selected photos back to their own positions"), "Alt+Shift+Backspace", "reset-positions", {N::Selection}},

        {PreviewZoomIn, M::View, false, "previewZoomIn", TEXT("Zoom &In"), TEXT("Show the preview larger"), "Ctrl++; Ctrl+=", "zoom-in", {N::RoomToZoomInPreview}},
        {PreviewZoomOut, M::View, false, "previewZoomOut", TEXT("Zoom &Out"), TEXT("Show the preview smaller"), "Ctrl+-", "zoom-out", {N::RoomToZoomOutPreview}},
        {PreviewFit, M::View, false, "previewFit", TEXT("&Fit in Preview"), TEXT("Show the whole photo in the preview"), "Ctrl+0", "fit", {N::RoomToZoomOutPreview}},
        {PreviewFullSize, M::View, false, "previewFullSize", TEXT("&100 %"), TEXT("Show the photo in the preview at its full size"), "Ctrl+1", "full-size", {N::RoomToZoomInPreview}},
        {BrowserZoomIn, M::View, true, "browserZoomIn", TEXT("&Larger Thumbnails"), TEXT("Show larger thumbnails"), "Alt++; Alt+=", "thumbnails-large", {N::SmallBatchMode, N::RoomToZoomIn}},
        {BrowserZoomOut, M::View, false, "browserZoomOut", TEXT("&Smaller Thumbnails"), TEXT("Show smaller thumbnails"), "Alt+-", "thumbnails-small", {N::SmallBatchMode, N::RoomToZoomOut}},
        {ToggleFilenames, M::View, false, "toggleFilenames", TEXT("Hide File&names in Browser"), TEXT("Show or hide the file names under the thumbnails"), "", "", {N::SmallBatchMode}},
        {ToggleThumbnailWatermarks, M::View, false, "toggleThumbnailWatermarks", TEXT("&Watermarks on Thumbnails"), TEXT("Show the watermarks on the thumbnails"), "", "", {N::SmallBatchMode}},
        {SortByName, M::View, true, "sortByName", TEXT("Sort by Na&me"), TEXT("Sort all photos by their file names, 2 before 10"), "", "", {N::Photos, N::SeveralPhotos, N::NoSorting}},
        {SortByDate, M::View, false, "sortByDate", TEXT("Sort by Capture &Date"), TEXT("Sort all photos by the dates on which they were taken; photos without a date come last"), "", "", {N::Photos, N::SeveralPhotos, N::NoSorting}},
        {ReverseOrder, M::View, false, "reverseOrder", TEXT("&Reverse Order"), TEXT("Make the last photo the first one"), "", "", {N::Photos, N::SeveralPhotos, N::NoSorting}},
        {SwitchBatchMode, M::View, true, "switchBatchMode", TEXT("Switch to Large &Batch Mode"), TEXT("Switch to the Large Batch mode. Recommended if you work with many images."), "Ctrl+B", "list"},

        {SingleMode, M::Watermark, false, "singleMode", TEXT("&Single Watermark"), TEXT("Draw one watermark and edit it here"), "Ctrl+Shift+1", ""},
        {PresetsMode, M::Watermark, false, "presetsMode", TEXT("&Presets"), TEXT("Draw the applied presets together"), "Ctrl+Shift+2", ""},
        {NextPreset, M::Watermark, true, "nextPreset", TEXT("&Next Applied Preset"), TEXT("Select the next applied preset"), "Alt+Down", "", {N::SeveralAppliedPresets}},
        {PreviousPreset, M::Watermark, false, "previousPreset", TEXT("Pre&vious Applied Preset"), TEXT("Select the previous applied preset"), "Alt+Up", "", {N::SeveralAppliedPresets}},
        {ApplyPresets, M::Watermark, true, "applyPresets", TEXT("&Apply Selected Presets"), TEXT("Also draw the selected presets on the photos"), "", "apply", {N::PresetSelection}},
        {MovePresetsUp, M::Watermark, false, "movePresetsUp", TEXT("Move &Up"), TEXT("Draw the selected applied presets earlier, below others"), "Alt+Shift+Up", "move-up", {N::AppliedSelection, N::RoomToMovePresetsUp}},
        {MovePresetsDown, M::Watermark, false, "movePresetsDown", TEXT("Move &Down"), TEXT("Draw the selected applied presets later, above others"), "Alt+Shift+Down", "move-down", {N::AppliedSelection, N::RoomToMovePresetsDown}},
        {RemoveAppliedPresets, M::Watermark, false, "removeAppliedPresets", TEXT("&Remove Selected Presets"), TEXT("Stop drawing the selected presets"), "", "list-remove", {N::AppliedSelection}},
        {ClearAppliedPresets, M::Watermark, false, "clearAppliedPresets", TEXT("&Clear Applied Presets"), TEXT("Stop drawing all presets"), "", "list-clear", {N::AppliedPreset}},
        {SaveQuickPreset, M::Watermark, true, "saveQuickPreset", TEXT("Sav&e as New Preset"), TEXT("Keep the single watermark as a preset"), "", ""},
        {UpdatePreset, M::Watermark, false, "updatePreset", TEXT("Upda&te Loaded Preset"), TEXT("Give the preset that was loaded last the settings of the single watermark"), "", "", {N::LoadedPreset}},
        {LoadPreset, M::Watermark, false, "loadPreset", TEXT("&Load into Single Watermark"), TEXT("Edit a copy of the selected preset as the single watermark"), "", "load-preset", {N::OneSelectedPreset}},

        {ShowWatermarkPresets, M::Watermark, true, "showWatermarkPresets", TEXT("&Manage Presets…"), TEXT("Create, edit and remove watermark presets"), "", "manage"},
        {ShowSavingPresets, M::Watermark, false, "showSavingPresets", TEXT("Mana&ge Saving Presets…"), TEXT("Create, edit and remove saving presets"), "", ""},

        {Minimize, M::Window, false, "minimize", TEXT("&Minimize"), TEXT("Minimize this window"), "Ctrl+M", "", {}, false, true},
        {ToggleFullScreen, M::Window, false, "toggleFullScreen", TEXT("&Full Screen"), TEXT("Fill the screen with this window"), "F11", "", {}, false, true},
        {ShowMainWindow, M::Window, false, "showMainWindow", TEXT("Main &Window"), TEXT("Bring this window to the front"), "", "", {}, false, true},
        {ToggleWatermarkPresets, M::Window, true, "toggleWatermarkPresets", TEXT("Watermark &Presets"), TEXT("Show or close the window of all watermark presets"), "Ctrl+Shift+W", ""},
        {ToggleSavingPresets, M::Window, false, "toggleSavingPresets", TEXT("&Saving Presets"), TEXT("Show or close the window of all saving presets"), "Ctrl+Shift+P", ""},
        {ToggleMetadata, M::Window, false, "toggleMetadata", TEXT("Image Meta&data"), TEXT("Show and edit the metadata of the selected photos"), "Ctrl+Shift+I", "info", {N::SmallBatchMode, N::Selection}, true},

        {UserGuide, M::Help, false, "userGuide", TEXT("Plexa &Help"), TEXT("Read how Plexa works"), "F1", "help", {}, false, true},
        {ContextHelp, M::Help, false, "contextHelp", TEXT("&What’s This?"), TEXT("Explain the item that you click next"), "Shift+F1", "", {}, false, true},
        {ContactSupport, M::Help, true, "contactSupport", TEXT("Contact &Support…"), TEXT("Write a message to the makers of Plexa in your mail program"), "", "", {}, false, true},
        {Feedback, M::Help, false, "feedback", TEXT("Give &Feedback"), TEXT("Tell the makers of Plexa what to improve"), "", "", {}, false, true},
        {CheckForUpdates, M::Help, true, "checkForUpdates", TEXT("Check for &Updates…"), TEXT("Ask the maker whether there is a newer version"), "", "", {}, false, true},
        {License, M::Help, false, "license", TEXT("&License"), TEXT("Read the license of Plexa"), "", "", {}, false, true},
        {About, M::Help, false, "about", TEXT("&About Plexa"), TEXT("Show the version and the license"), "", "", {}, false, true},
    };
    // clang-format on
}

#undef TEXT

QString translated(const char *text)
{
    return QCoreApplication::translate(kContext, text);
}

} // namespace

const std::vector<CommandRow> &commandTable()
{
    static const std::vector<CommandRow> table = makeTable();
    return table;
}

const CommandRow &commandRow(ActionId id)
{
    const CommandRow &row = commandTable()[static_cast<std::size_t>(id)];
    Q_ASSERT(row.id == id);
    return row;
}

QString menuTitle(MenuId menu)
{
    switch (menu) {
    case MenuId::File:
        return translated(QT_TRANSLATE_NOOP("Commands", "&File"));
    case MenuId::Edit:
        return translated(QT_TRANSLATE_NOOP("Commands", "&Edit"));
    case MenuId::Image:
        return translated(QT_TRANSLATE_NOOP("Commands", "&Image"));
    case MenuId::View:
        return translated(QT_TRANSLATE_NOOP("Commands", "&View"));
    case MenuId::Watermark:
        return translated(QT_TRANSLATE_NOOP("Commands", "Wa&termark"));
    case MenuId::Window:
        return translated(QT_TRANSLATE_NOOP("Commands", "&Window"));
    case MenuId::Help:
        break;
    }
    return translated(QT_TRANSLATE_NOOP("Commands", "&Help"));
}

QString commandText(const CommandRow &row)
{
    return translated(row.text);
}

QString commandToolTip(const CommandRow &row)
{
    return translated(row.toolTip);
}

} // namespace plexa
