// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QStringList>
#include <QUrl>

#include <functional>

namespace plexa
{

class Alerts;
class AppController;
class UserDefaults;

/// The start of the application, files from outside, the closing of its window, and its end. Main thread.
class AppDelegate final : public QObject
{
    Q_OBJECT

public:
    struct Services {
        UserDefaults &defaults;
        Alerts &alerts;
        AppController &controller;
        std::function<void(const QUrl &)> openUrl; ///< in the browser
    };

    /// @param services  outlive this object
    explicit AppDelegate(const Services &services);

    /// Counts the run.
    void applicationDidFinishLaunching();

    /// Adds photos and folders from the command line or the desktop to the working set, and the presets of
    /// preset files to the user's. If the first file is an exchange info file, all of them belong to the
    /// exchange of a companion application, and none is added.
    void openFiles(const QStringList &paths);

    /// Stores the state for the next run. Called when the main window closes, and at quit if it is open.
    void windowWillClose();

    /// Called before the user's quit ends the program: asks for feedback now and then.
    void applicationWillTerminate();

    static QUrl feedbackPage();

Q_SIGNALS:
    /// The main window is to be shown.
    void windowWanted();

private:
    const Services m_services;
};

} // namespace plexa
