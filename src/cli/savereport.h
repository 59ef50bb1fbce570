// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "cli/progressline.h"
#include "saving/savingrun.h"

#include <optional>

namespace plexa
{

/// Reports a run: results on standard output, messages and progress on standard error.
class SaveReport final : public SavingObserver
{
public:
    struct Form {
        bool json = false;
        bool quiet = false;                ///< failures only
        bool hasSeveralWatermarks = false; ///< messages name the watermark
    };

    explicit SaveReport(Form form);

    void begun(qint64 maximum, const QString &message) override;
    void copyFinished(const SavingOutput &output) override;

    /// Removes the progress bar and prints the numbers of failed and missing copies.
    void end();

    /// Were all copies started, and did none fail?
    bool isComplete() const { return m_failures == 0 && m_copies == m_maximum; }

private:
    Form m_form;
    std::optional<ProgressLine> m_progress;
    qint64 m_maximum = 0;
    qint64 m_failures = 0;
    qint64 m_copies = 0;
};

} // namespace plexa
