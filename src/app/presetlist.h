// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "watermark/wpreset.h"

#include <memory>
#include <vector>

namespace plexa
{

/// Watermark presets in the order in which they are drawn. A preset is known by its identity.
using WPresetList = std::vector<std::shared_ptr<WPreset>>;

} // namespace plexa
