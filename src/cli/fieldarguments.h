// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"
#include "presets/savingpresetvalues.h"

#include <string>

namespace plexa
{

struct WPresetValues;

// Arguments have the form "FIELD=VALUE".

/// Sets a field of the quick preset; VALUE is JSON if it is valid JSON, else a string.
[[nodiscard]] Result<void> applyField(WPresetValues &values, const std::string &argument);

/// Sets a field of the saving preset.
[[nodiscard]] Result<void> applySavingField(SavingPresetValues &preset, const std::string &argument);

/// Can copies be written with it? A failure names the preset.
[[nodiscard]] Result<void> checkSavingPreset(const SavingPresetValues &preset);

} // namespace plexa
