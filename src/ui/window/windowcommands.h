// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

namespace plexa
{

class AppController;
class CommandActions;
class ImageListPane;
class MainWindow;
class UserDefaults;

/// The commands of the main window itself: how it is shown, and the dialogs that it opens.
class WindowCommands final : public QObject
{
    Q_OBJECT

public:
    /// Sets the handlers. All objects outlive this one or are destroyed with it.
    WindowCommands(MainWindow &window, ImageListPane &imageListPane, CommandActions &actions,
                   AppController &controller, UserDefaults &defaults);

private:
    void setWindowHandlers(CommandActions &actions);
    void showPreferences();
    void showAbout();

    MainWindow &m_window;
    ImageListPane &m_imageListPane;
    AppController &m_controller;
    UserDefaults &m_defaults;
};

} // namespace plexa
