// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

struct SavingPresetValues;
struct SavingRun;
class Alerts;
class UserDefaults;

/// Applies the user's settings for a run: folders, combining, dates, and that photos of Large
/// Batch mode forget their pixels. Neither photos nor presets.
void followSettings(SavingRun &run, const UserDefaults &defaults);

/// The same for the companion application, which gets all copies as TIFF files "img0001.tif", ... in the
/// exchange folder and a list of them.
void followSettingsForCompanion(SavingRun &run, const UserDefaults &defaults, const QString &exchangeFolder);

/// A preset without tokens for file names gets those of the originals, and an alert reports it.
void completeFilenameTokens(SavingPresetValues &preset, Alerts &alerts);

} // namespace plexa
