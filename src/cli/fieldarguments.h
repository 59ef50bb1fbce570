// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"
#include "presets/savingpresetvalues.h"

#include <string>

namespace plexa
{

class FontCatalog;
struct WPresetValues;

// Arguments have the form "FIELD=VALUE".

/// Sets a field of a watermark; VALUE is JSON if it is valid JSON, else a string. A failure states the
/// allowed values and leaves `values` unchanged.
[[nodiscard]] Result<void> applyField(WPresetValues &values, const std::string &argument,
                                      const FontCatalog &fonts);

/// Sets a field of the saving preset.
[[nodiscard]] Result<void> applySavingField(SavingPresetValues &preset, const std::string &argument);

/// Is it an argument for a field that has an effect on texts only?
bool isForText(const std::string &argument);

/// Is it an argument for that field?
bool isForField(const std::string &argument, std::string_view field);

/// Can copies be written with it? A failure names the preset.
[[nodiscard]] Result<void> checkSavingPreset(const SavingPresetValues &preset);

} // namespace plexa
