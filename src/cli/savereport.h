// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "saving/savingrun.h"

namespace plexa
{

/// Reports a run: results on standard output, messages and a progress bar on standard error.
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
    void drawProgressBar() const;
    void clearProgressBar() const;

    Form m_form;
    bool m_hasProgressBar; ///< in the last line of standard error, on a terminal only
    qint64 m_maximum = 0;
    qint64 m_failures = 0;
    qint64 m_copies = 0;
};

} // namespace plexa
