// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QLatin1String>
#include <QVariant>

#include <vector>

namespace plexa
{

class UserDefaults;

/// How a setting is read.
enum class SettingType { Bool, Integer, Float, String, StringArray };

// All settings, a row each: key, type, registered default. Most defaults are texts, as a user would write
// them into the settings file; NONE means that nothing is registered, PICTURES stands for a folder in the
// user's pictures. These look like mistakes and are not, since settings in use depend on them:
// - "ignoreSavingPresetsInWPresets" is registered, but "ignoreSavingPresetsInSizePresets" is what saving
// reads;
// - "replicationStartDirectory" is read, "fileExportReplicationStartDirectory" is only ever written.
#define PLEXA_SETTINGS(ROW)                                                                                  \
    ROW(defaultSaveSingleOriginalFileLocation, Bool, TEXT("NO"))                                             \
    ROW(rememberWPresetsAppliedLastTime, Bool, TEXT("NO"))                                                   \
    ROW(wPresetsAppliedLastTime, StringArray, NONE)                                                          \
    ROW(imageListIsInBrowserMode, Bool, TEXT("YES"))                                                         \
    ROW(lastUsedMode, Integer, TEXT("0"))                                                                    \
    ROW(imageBrowserZoomFactor, Float, TEXT("0.5"))                                                          \
    ROW(imageBrowserShowsNames, Bool, TEXT("YES"))                                                           \
    ROW(browserShowOriginalOnMouseOver, Bool, NONE)                                                          \
    ROW(combineAllAppliedPresetsInImage, Bool, TEXT("NO"))                                                   \
    ROW(saveAllToOneDirectory, Bool, TEXT("YES"))                                                            \
    ROW(savingDirectory, String, PICTURES)                                                                   \
    ROW(replicateOrigDirStructure, Bool, TEXT("NO"))                                                         \
    ROW(replicationStartDirectory, String, NONE)                                                             \
    ROW(fileExportReplicationStartDirectory, String, NONE)                                                   \
    ROW(ignoreSavingPresetsInWPresets, Bool, TEXT("NO"))                                                     \
    ROW(ignoreSavingPresetsInSizePresets, Bool, NONE)                                                        \
    ROW(exportPreserveOriginalFileCreationDate, Bool, QVariant(true))                                        \
    ROW(lastMetadataPanelTabID, String, TEXT("General"))                                                     \
    ROW(enableExifDataEditing, Bool, TEXT("NO"))                                                             \
    ROW(runNumber, Integer, TEXT("0"))                                                                       \
    ROW(askForMASReview, Bool, TEXT("YES"))                                                                  \
    ROW(askForFeedback, Bool, TEXT("YES"))

/// The settings' keys, each under its own name: `settings::lastUsedMode`.
namespace settings
{
#define PLEXA_SETTING_KEY(name, type, registered) inline constexpr QLatin1String name{#name};
PLEXA_SETTINGS(PLEXA_SETTING_KEY)
#undef PLEXA_SETTING_KEY
} // namespace settings

struct Setting {
    QLatin1String key;
    SettingType type;
    QVariant registeredDefault; ///< invalid: none
};

/// All settings, in the order of the table.
std::vector<Setting> allSettings();

/// Registers all settings that have a default.
void registerDefaults(UserDefaults &defaults);

} // namespace plexa
