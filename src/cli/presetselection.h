// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/imageobject.h"
#include "presets/savingpresetvalues.h"

#include <optional>

namespace plexa
{

struct SaveOptions;

/// Do the options ask for stored watermark presets?
bool isPresetsMode(const SaveOptions &options);

/// The watermark presets that the options name, in that order, or all of the file. From the user's own list
/// when there is no file. Their assigned saving presets are those of the file of saving presets; the user's
/// own belong to the user's own list only.
[[nodiscard]] Result<std::vector<AppliedPreset>> appliedPresets(const SaveOptions &options);

/// The saving preset that the options name, or the only one of the file; none where they name neither.
[[nodiscard]] Result<std::optional<SavingPresetValues>> chosenSavingPreset(const SaveOptions &options);

} // namespace plexa
