// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

namespace plexa
{

/// A message of the program outside of its window, by the desktop's notification service
/// (org.freedesktop.Notifications). Without that service nothing happens. Main thread.
class DesktopNotification final : public QObject
{
    Q_OBJECT

public:
    explicit DesktopNotification(QObject *parent = nullptr);

    /// Replaces the former message. Returns at once.
    /// @param title  plain text
    void show(const QString &title);

Q_SIGNALS:
    /// The user has clicked the message.
    void activated();

private:
    Q_SLOT void actionInvoked(uint id, const QString &action);

    uint m_id = 0;
};

} // namespace plexa
