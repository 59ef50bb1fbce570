// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdio>

namespace plexa
{

/// A progress bar in the last line of standard error, on a terminal only. One thread.
class ProgressLine final
{
public:
    /// @param isShown  false: nothing is ever drawn
    ProgressLine(std::size_t total, bool isShown);
    ~ProgressLine();
    ProgressLine(const ProgressLine &) = delete;
    ProgressLine &operator=(const ProgressLine &) = delete;

    void setDone(std::size_t done);

    /// Removes the bar, so that other output starts on a clean line. setDone() draws it again.
    void clear();

private:
    std::size_t m_total;
    bool m_isShown;
};

} // namespace plexa
