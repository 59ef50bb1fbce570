// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/alerts.h"

#include <QObject>

#include <deque>
#include <future>
#include <mutex>

class QWidget;

namespace plexa
{

/// Shows questions as message boxes of a window. Any thread may ask: the box is shown on the main thread, to
/// which this object belongs, and the asking thread waits for the answer. Outlives these threads.
class MessageBoxAlerts final : public QObject, public Alerts
{
    Q_OBJECT

public:
    MessageBoxAlerts() = default;

    /// The window that the boxes belong to; has to be reset before it is destroyed.
    void setWindow(QWidget *window) { m_window = window; }

    /// From now on all questions are answered as by the Escape key, and not shown. Main thread.
    void stopAsking() { m_isSilent = true; }

    AlertAnswer run(const Alert &alert) override;

private:
    Q_INVOKABLE void askNext();
    AlertAnswer show(const Alert &alert);

    std::mutex m_mutex;
    std::deque<std::packaged_task<AlertAnswer()>> m_questions; // of other threads, guarded by m_mutex
    QWidget *m_window = nullptr;
    bool m_isSilent = false;
};

} // namespace plexa
