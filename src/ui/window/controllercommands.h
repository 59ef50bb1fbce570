// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace plexa
{

class AppController;
class CommandActions;

/// Sets the handlers of the commands that the controller carries out without a window.
/// @param controller  outlives the actions
void connectControllerCommands(CommandActions &actions, AppController &controller);

} // namespace plexa
