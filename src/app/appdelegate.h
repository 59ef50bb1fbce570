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

/// What happens when the application starts, gets files from outside, closes its window and quits. Main
/// thread.
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

    /// Files from the command line or from the desktop: photos and folders join the working set, the presets
    /// of preset files join the user's. If the first one is an exchange info file, all of them belong to the
    /// exchange of a companion application, and none is a photo of its own.
    void openFiles(const QStringList &paths);

    /// Stores what the next run needs. To be called when the main window closes, and at quit if it is open.
    void windowWillClose();

    /// Before the program ends on the user's request: asks for feedback now and then.
    void applicationWillTerminate();

    /// The maker's page for the users' opinions.
    static QUrl feedbackPage();

Q_SIGNALS:
    /// The main window is to be shown, whatever state it is in.
    void windowWanted();

private:
    const Services m_services;
};

} // namespace plexa
