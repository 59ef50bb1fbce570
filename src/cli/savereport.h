// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "cli/photopaths.h"
#include "cli/progressline.h"
#include "saving/savingrun.h"

#include <QString>

namespace plexa
{

/// Reports a run: results on standard output, messages and a progress line on standard error.
class SaveReport final : public SavingObserver
{
public:
    struct Form {
        bool json = false;
        bool quiet = false;                ///< failures and notices only
        bool hasSeveralWatermarks = false; ///< messages name the watermark
    };

    explicit SaveReport(Form form);

    /// Reports paths without a file, and folders that cannot be read. Before the run.
    void pathsNotRead(const std::vector<PhotoPath> &paths);

    /// Photos for the summary that are left out: copies of earlier runs, and further names of photos by
    /// links.
    void photosLeftOut(qint64 copies, qint64 links);

    void begun(qint64 maximum, const QString &message) override;
    void copyFinished(const SavingOutput &output) override;

    /// Removes the progress line and prints the summary.
    void end();

    /// Were all copies started, and did none fail?
    bool isComplete() const { return m_counts.failed == 0 && m_counts.notStarted == 0; }

private:
    struct Counts {
        qint64 planned = 0;
        qint64 written = 0;
        qint64 skipped = 0;
        qint64 failed = 0;
        qint64 unmarked = 0; ///< written or planned without a visible watermark
        qint64 notStarted = 0;
    };

    /// Of copies of one photo that failed for the same reason. Printed once, when there are no more of them:
    /// a photo that cannot be read fails once for each preset.
    struct Failure {
        QString sourcePath;
        QString reason;
        int copies = 0;
    };

    /// What the search for photos left.
    struct Search {
        qint64 notRead = 0;
        qint64 copies = 0;
        qint64 links = 0;
    };

    void count(const SavingOutput &output);
    void printMessages(const SavingOutput &output);
    void printFailure();
    void printJsonSummary() const;
    QString summary() const;

    const Form m_form;
    Search m_search;
    ProgressLine m_progress;
    Counts m_counts;
    Failure m_failure; ///< not printed yet
};

} // namespace plexa
