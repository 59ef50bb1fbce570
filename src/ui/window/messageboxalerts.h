// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/alerts.h"

#include <QObject>

class QWidget;

namespace plexa
{

/// Questions as message boxes in front of a window. Any thread may ask: the box is shown on the thread of
/// this object, the main one, and the thread that asks waits for the answer.
class MessageBoxAlerts final : public QObject, public Alerts
{
    Q_OBJECT

public:
    MessageBoxAlerts() = default;

    /// The window that the boxes belong to; has to be reset before it is destroyed.
    void setWindow(QWidget *window) { m_window = window; }

    AlertAnswer run(const Alert &alert) override;

private:
    AlertAnswer show(const Alert &alert);

    QWidget *m_window = nullptr;
};

} // namespace plexa
