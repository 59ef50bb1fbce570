// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>
#include <QUrl>

namespace plexa
{

/// The other applications of the desktop. An application is known by the ID of its desktop file, such as
/// "com.quorvel.Plexa". Main thread.
class Workspace
{
public:
    virtual ~Workspace() = default;

    /// Whether the application is installed and can be started. Takes microseconds after the first call.
    virtual bool hasApplication(const QString &id) const = 0;

    /// Starts the application, or its running process, with all of these files. Does not wait for it.
    /// @return false when it is not installed or cannot be started
    virtual bool openFiles(const QStringList &paths, const QString &id) = 0;

    /// In the browser.
    virtual void openUrl(const QUrl &url) = 0;
};

/// Opens an address in the program that the desktop has for its scheme, in a sandbox through the portal.
/// @return false if there is no such program or it cannot be started
bool openByScheme(const QUrl &url);

/// The path of a file, which may be on a share or a camera that the desktop has mounted. Any thread.
/// @return an empty path if the address has none
QString localPathOf(const QUrl &url);

/// The workspace of the user's desktop. Has no state.
Workspace &desktopWorkspace();

} // namespace plexa
