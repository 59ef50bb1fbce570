// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

namespace plexa
{

/// Asks the desktop not to end the session or suspend the machine for a while, by the desktop portal
/// (org.freedesktop.portal.Inhibit). The desktop shows the reason when the user logs out. Without the portal
/// nothing happens. Main thread.
class LogoutInhibitor final : public QObject
{
    Q_OBJECT

public:
    explicit LogoutInhibitor(QObject *parent = nullptr);

    /// Returns at once.
    /// @param reason  a sentence for the user
    void hold(const QString &reason);
    void release();

private:
    int m_count = 0;
    QString m_request; ///< its object in the portal; empty: nothing is held
};

} // namespace plexa
