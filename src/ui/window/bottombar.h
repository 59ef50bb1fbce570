// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

namespace plexa
{

class AppController;
class CommandActions;

/// The bottom of the main window: the status line with its stop button, and the buttons that save.
class BottomBar final : public QWidget
{
    Q_OBJECT

public:
    /// @param controller  outlives the bar, like the actions
    BottomBar(AppController &controller, CommandActions &actions, QWidget *parent = nullptr);
};

} // namespace plexa
