// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/alerts.h"
#include "saving/savingrun.h"

#include <QHash>

#include <optional>

namespace plexa
{

/// The result of a run for people: the copies that are not as the user may expect, each with its path and the
/// reason, and those that were written.
class SavingReport final
{
public:
    /// @param maximum  copies of the whole run
    explicit SavingReport(qint64 maximum = 0)
        : m_maximum(maximum)
    {
    }

    /// In the order of the copies.
    void add(const SavingOutput &output);
    /// What the engine reports as failures.
    void setFailureAlert(const std::optional<Alert> &alert) { m_failureAlert = alert; }

    const QStringList &writtenPaths() const { return m_written; }
    /// Every copy was written, with its own name and a visible watermark, and there is nothing to remark.
    bool isClean() const;
    bool hasFailures() const { return !m_failed.isEmpty(); }

    /// "12 copies saved, 2 skipped, 1 failed".
    QString summary() const;
    /// What happened beside the counts, for a heading: the failures, or where the copies are.
    QString explanation() const;
    QString title() const { return m_failureAlert ? m_failureAlert->title : summary(); }
    /// All lists; without `withWritten`, only of copies that are not as the user may expect.
    QString text(bool withWritten) const;

private:
    void addConflict(const SavingOutput &output);
    /// The photo whose copy of this run has the name that this copy should have; empty: none.
    QString rivalOf(const SavingOutput &output) const;

    qint64 m_maximum;
    qint64 m_finished = 0;
    std::optional<Alert> m_failureAlert;
    QHash<QString, QString> m_sources; // of the copies of this run, by the key of their path
    // Lines.
    QStringList m_failed;
    QStringList m_skipped;
    QStringList m_conflicts; // with other copies of this run
    QStringList m_unmarked;
    QStringList m_notices;
    QStringList m_written; // paths
};

} // namespace plexa
