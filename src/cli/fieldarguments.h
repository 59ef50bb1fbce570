// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"
#include "presets/savingpresetvalues.h"

#include <QString>

#include <string>

namespace plexa
{

struct WPresetValues;

/// "FIELD=VALUE" taken apart.
struct FieldArgument {
    QString name;
    QString text;

    [[nodiscard]] static Result<FieldArgument> parse(const std::string &argument);
};

/// Sets a field of the quick preset; VALUE is JSON where it parses as such, else a string.
[[nodiscard]] Result<void> applyField(WPresetValues &values, const std::string &argument);

/// Sets a field of the saving preset.
[[nodiscard]] Result<void> applySavingField(SavingPresetValues &preset, const std::string &argument);

/// Can copies be made by it? A failure names the preset.
[[nodiscard]] Result<void> checkSavingPreset(const SavingPresetValues &preset);

} // namespace plexa
