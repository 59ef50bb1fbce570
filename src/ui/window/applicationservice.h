// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace plexa
{

/// The name of the one running process on the session bus (org.freedesktop.Application). A second start, or
/// the desktop, sends its files there. Without a session bus every process runs for itself.
class ApplicationService final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    ~ApplicationService() override { release(); }

    /// Whether there is a session bus. Requesting one from Qt could start it.
    static bool hasSessionBus();

    /// Registers the application's name. Calls from other processes are answered once the event loop runs.
    /// @return false if another process has the name
    bool registerOnBus();

    /// Releases the name: later files go to another process.
    void release();

    /// Whether this process has the name.
    bool isReachable() const { return m_isReachable; }

    /// Sends files to the process that has the name; without files, only raises its window.
    /// @param paths  absolute
    /// @return false if it does not answer
    static bool handOver(const QStringList &paths);

    /// Asks the process that has the name to carry out an action of the desktop file.
    /// @return false if it does not answer
    static bool handOverAction(const QString &name);

public Q_SLOTS:
    // The interface of org.freedesktop.Application.
    Q_SCRIPTABLE void Activate(const QVariantMap &platformData);
    Q_SCRIPTABLE void Open(const QStringList &uris, const QVariantMap &platformData);
    Q_SCRIPTABLE void ActivateAction(const QString &name, const QVariantList &parameter,
                                     const QVariantMap &platformData);

Q_SIGNALS:
    /// Files to open; none: only shows the window.
    void opened(const QStringList &paths);

    /// Addresses that are not of the file system.
    void refused(const QStringList &addresses);

    /// An action of the desktop file, by its name there.
    void actionWanted(const QString &name);

private:
    bool m_isReachable = false;
};

} // namespace plexa
