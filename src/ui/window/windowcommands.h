// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace plexa
{

class AppController;
class CommandActions;

/// Lets the controller carry out the commands that need no window. Both outlive each other's use.
void connectControllerCommands(CommandActions &actions, AppController &controller);

} // namespace plexa
