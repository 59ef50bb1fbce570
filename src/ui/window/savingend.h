// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

namespace plexa
{

class Alerts;
class AppController;
class DesktopNotification;
class MainWindow;

/// The end of a save in the window: its report, and a message of the desktop where another window is active.
/// While the main window is closed, the report waits for it.
class SavingEnd final : public QObject
{
    Q_OBJECT

public:
    struct Services {
        AppController &controller;
        Alerts &alerts;
    };

    /// @param window  owns the object
    SavingEnd(const Services &services, MainWindow &window);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void report();
    void showReport();

    const Services m_services;
    MainWindow &m_window;
    DesktopNotification *const m_notification;
    bool m_isWaiting = false;
};

} // namespace plexa
