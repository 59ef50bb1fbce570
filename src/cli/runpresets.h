// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/imageobject.h"
#include "presets/savingpresetvalues.h"

namespace plexa
{

class FontCatalog;
struct SaveOptions;

// The presets of a run, with the fields that the command line sets. Notices go to standard error.

/// The watermarks: stored presets, or the quick preset of --text, --image and --set. At least one.
[[nodiscard]] Result<std::vector<AppliedPreset>> watermarksOf(const SaveOptions &options,
                                                              const FontCatalog &fonts);

/// The saving preset of a run without stored presets and options.
SavingPresetValues plainSavingPreset();

/// The saving preset for the copies of watermarks without one of their own; copies can be written with it.
[[nodiscard]] Result<SavingPresetValues> savingPresetOf(const SaveOptions &options);

} // namespace plexa
