// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QLatin1String>

namespace plexa
{

class UserDefaults;

// All settings, a row each: key, registered default. Most defaults are texts, as a user would write
// them into the settings file; NONE: nothing is registered; PICTURES: a folder in the user's pictures.
// These look like mistakes and are not, since settings in use depend on them:
// - "ignoreSavingPresetsInWPresets" is registered, but "ignoreSavingPresetsInSizePresets" is what saving
// reads;
// - "replicationStartDirectory" is read, "fileExportReplicationStartDirectory" is only ever written.
#define PLEXA_SETTINGS(ROW)                                                                                  \
    ROW(defaultSaveSingleOriginalFileLocation, TEXT("NO"))                                                   \
    ROW(rememberWPresetsAppliedLastTime, TEXT("NO"))                                                         \
    ROW(wPresetsAppliedLastTime, NONE)                                                                       \
    ROW(imageListIsInBrowserMode, TEXT("YES"))                                                               \
    ROW(lastUsedMode, TEXT("0"))                                                                             \
    ROW(imageBrowserZoomFactor, TEXT("0.5"))                                                                 \
    ROW(imageBrowserShowsNames, TEXT("YES"))                                                                 \
    ROW(browserShowOriginalOnMouseOver, NONE)                                                                \
    ROW(watermarksOnThumbnails, TEXT("YES"))                                                                 \
    ROW(combineAllAppliedPresetsInImage, TEXT("NO"))                                                         \
    ROW(saveAllToOneDirectory, TEXT("YES"))                                                                  \
    ROW(savingDirectory, PICTURES)                                                                           \
    ROW(replicateOrigDirStructure, TEXT("NO"))                                                               \
    ROW(replicationStartDirectory, NONE)                                                                     \
    ROW(fileExportReplicationStartDirectory, NONE)                                                           \
    ROW(ignoreSavingPresetsInWPresets, TEXT("NO"))                                                           \
    ROW(ignoreSavingPresetsInSizePresets, NONE)                                                              \
    ROW(exportPreserveOriginalFileCreationDate, QVariant(true))                                              \
    ROW(lastMetadataPanelTabID, TEXT("General"))                                                             \
    ROW(enableExifDataEditing, TEXT("NO"))                                                                   \
    ROW(runNumber, TEXT("0"))                                                                                \
    ROW(askForMASReview, TEXT("YES"))                                                                        \
    ROW(askForFeedback, TEXT("YES"))                                                                         \
    ROW(hasExplainedClosing, TEXT("NO"))                                                                     \
    ROW(agreedLicense, NONE)                                                                                 \
    ROW(lastShownBulletinDate, NONE)                                                                         \
    ROW(ShownBulletins, NONE)                                                                                \
    ROW(SuppressedBulletins, NONE)                                                                           \
    ROW(checksForUpdates, TEXT("YES"))                                                                       \
    ROW(lastUpdateCheckDate, NONE)                                                                           \
    ROW(skippedVersion, NONE)

/// The keys of the settings, each under its own name: `settings::lastUsedMode`.
namespace settings
{
#define PLEXA_SETTING_KEY(name, registered) inline constexpr QLatin1String name{#name};
PLEXA_SETTINGS(PLEXA_SETTING_KEY)
#undef PLEXA_SETTING_KEY
} // namespace settings

/// Registers all settings that have a default.
void registerDefaults(UserDefaults &defaults);

} // namespace plexa
