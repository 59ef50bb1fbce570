// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

#include <memory>

namespace plexa
{

/// The identity of the saving preset that is assigned to a watermark preset. Saving presets implement it;
/// they belong to their own list and are shared, never copied, by watermark presets.
class SavingPresetReference
{
public:
    virtual ~SavingPresetReference() = default;

    virtual qint64 presetID() const = 0;
};

using SavingPresetPtr = std::shared_ptr<const SavingPresetReference>;

} // namespace plexa
