// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/editors/tokenmenu.h"
#include "ui/editors/wpresetviewcontroller.h"

namespace plexa
{

class AppController;

/// The values of tokens on the shown photo. The controller outlives the function.
TokenValue valueOnShownPhoto(AppController &controller);

/// An editor of watermark presets that shows these values. The arguments outlive it; the caller owns it.
WPresetViewController *makeWPresetEditor(AppController &controller, UserDefaults &defaults);

} // namespace plexa
