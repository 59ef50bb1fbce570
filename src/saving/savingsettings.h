// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

struct SavingPresetValues;
struct SavingRun;
class Alerts;
class UserDefaults;

/// Takes over what the user's settings say of a run: folders, combining, dates, and that photos of Large
/// Batch mode forget their pixels. Neither photos nor presets.
void followSettings(SavingRun &run, const UserDefaults &defaults);

/// The same for the companion application, which gets all copies as TIFF files "img0001.tif", ... in the
/// exchange folder, and which is told what was written.
void followSettingsForCompanion(SavingRun &run, const UserDefaults &defaults, const QString &exchangeFolder);

/// A preset that does not say how copies are called gets the names of their originals, and the user is told.
void completeFilenameTokens(SavingPresetValues &preset, Alerts &alerts);

} // namespace plexa
