// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "cli/progressline.h"
#include "saving/savingrun.h"

#include <cstddef>

namespace plexa
{

/// Tells how a run goes: results on standard output, messages and progress on standard error.
class SaveReport final : public SavingObserver
{
public:
    struct Form {
        bool json = false;
        bool quiet = false;
    };

    SaveReport(std::size_t copies, Form form);

    void copyFinished(const SavingOutput &output) override;

    /// Takes the progress away, and sums up what failed.
    void end();

    bool hasFailures() const { return m_failures > 0; }

    /// How many copies were finished, in whatever way.
    std::size_t copies() const { return m_copies; }

private:
    Form m_form;
    ProgressLine m_progress;
    std::size_t m_failures = 0;
    std::size_t m_copies = 0;
};

} // namespace plexa
