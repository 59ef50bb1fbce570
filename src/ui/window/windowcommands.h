// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/window/mainwindow.h"

namespace plexa
{

/// Sets the handlers of the commands that belong to no pane: those of the controller, and those of the window
/// with its dialogs.
/// @param window  outlives the actions, like the services and the panes
void connectWindowCommands(CommandActions &actions, const MainWindow::Services &services, MainWindow &window,
                           ImageListPane &imageListPane, PresetsPanel &presetsPanel);

} // namespace plexa
