// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/alerts.h"

#include <QList>

#include <mutex>

namespace plexa::test
{

/// Answers alerts from a script and records what differs from it. A test ends with
/// `QCOMPARE(alerts.complaints(), QStringList())`. Any thread.
class ScriptedAlerts final : public Alerts
{
public:
    /// The next alert has this title and gets this answer.
    void expect(const QString &title, AlertAnswer answer = {})
    {
        const std::lock_guard lock(m_mutex);
        m_script.append({title, answer});
    }

    AlertAnswer run(const Alert &alert) override
    {
        const std::lock_guard lock(m_mutex);
        m_shown.append(alert);
        if (m_script.isEmpty() || m_script.first().title != alert.title) {
            m_complaints.append(QStringLiteral("unexpected alert \"%1\"").arg(alert.title));
            return {std::max(alert.escapeButton, 0), false};
        }
        const AlertAnswer answer = m_script.takeFirst().answer;
        if (answer.button < 0 || answer.button >= std::max<qsizetype>(alert.buttons.size(), 1))
            m_complaints.append(
                QStringLiteral("\"%1\" has no button %2").arg(alert.title).arg(answer.button));
        if (answer.suppressed && !alert.hasSuppressionBox)
            m_complaints.append(QStringLiteral("\"%1\" has no suppression box").arg(alert.title));
        return answer;
    }

    /// All alerts so far.
    QList<Alert> shown() const
    {
        const std::lock_guard lock(m_mutex);
        return m_shown;
    }

    /// All differences so far, including expected alerts that did not come.
    QStringList complaints() const
    {
        const std::lock_guard lock(m_mutex);
        QStringList all = m_complaints;
        for (const Step &step : m_script)
            all.append(QStringLiteral("missing alert \"%1\"").arg(step.title));
        return all;
    }

private:
    struct Step {
        QString title;
        AlertAnswer answer;
    };

    mutable std::mutex m_mutex;
    QList<Step> m_script;
    QList<Alert> m_shown;
    QStringList m_complaints;
};

} // namespace plexa::test
