// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

#include <memory>

namespace plexa
{

/// All that a watermark preset knows of the saving preset that is assigned to it: its identity. Saving
/// presets implement it; they live in their own list and are shared, never copied, by watermark presets.
class SavingPresetReference
{
public:
    virtual ~SavingPresetReference() = default;

    virtual qint64 presetID() const = 0;
};

using SavingPresetPtr = std::shared_ptr<const SavingPresetReference>;

} // namespace plexa
