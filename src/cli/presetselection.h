// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/imageobject.h"
#include "presets/savingpresetvalues.h"

#include <optional>

namespace plexa
{

struct SaveOptions;

/// The watermark presets that the options name, in that order, or all of the file; without a file, those of
/// the user's own list. Their assigned saving presets come from the file of saving presets; for the user's
/// own list also from the user's own saving presets.
[[nodiscard]] Result<std::vector<AppliedPreset>> appliedPresets(const SaveOptions &options);

/// The saving preset that the options name, or the only one of the file; none if they name neither.
[[nodiscard]] Result<std::optional<SavingPresetValues>> chosenSavingPreset(const SaveOptions &options);

} // namespace plexa
