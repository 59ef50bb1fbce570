// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace plexa
{

/// The one running process of a session: its place on the session bus (org.freedesktop.Application), through
/// which a second start, or the desktop, hands files over. Without a session bus nothing is shared, and every
/// process runs for itself.
class ApplicationService final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    ApplicationService();
    ~ApplicationService() override;

    /// Takes the application's name on the bus. Calls from other processes are answered as soon as the event
    /// loop runs.
    /// @return false: another process has it already
    bool registerOnBus();

    /// Gives the name away: files that come from now on are another process's.
    void release();

    /// Has this process the name, so that it can be reached?
    bool isReachable() const { return m_isReachable; }

    /// Gives files to the process that has the name, or only raises its window.
    /// @param paths  absolute
    /// @return false when it does not answer
    static bool handOver(const QStringList &paths);

public Q_SLOTS:
    // The interface, as the desktop's rules describe it.
    Q_SCRIPTABLE void Activate(const QVariantMap &platformData);
    Q_SCRIPTABLE void Open(const QStringList &uris, const QVariantMap &platformData);
    Q_SCRIPTABLE void ActivateAction(const QString &name, const QVariantList &parameter,
                                     const QVariantMap &platformData);

Q_SIGNALS:
    /// Files to open; none: only the window is wanted.
    void opened(const QStringList &paths);

private:
    bool m_isReachable = false;
};

} // namespace plexa
