// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

#include <chrono>
#include <optional>
#include <string>

namespace plexa
{

/// The text of a progress line: a bar, the numbers and the remaining time, or as many of these as fit.
/// @param total    0: there is nothing to do
/// @param left     none: not known yet
/// @param columns  the width of the terminal; the text is shorter
std::string progressText(qint64 done, qint64 total, std::optional<std::chrono::seconds> left, int columns);

/// The progress of a run in the last line of standard error, if that is a terminal.
class ProgressLine final
{
public:
    /// @param isWanted  else nothing is ever drawn
    explicit ProgressLine(bool isWanted);

    /// Starts the clock and draws the line.
    void begin(qint64 total);

    void advance() { ++m_done; }

    void draw() const;

    /// Before anything else is printed.
    void clear() const;

private:
    std::optional<std::chrono::seconds> timeLeft() const;

    const bool m_isShown;
    qint64 m_total = 0;
    qint64 m_done = 0;
    std::chrono::steady_clock::time_point m_begin;
};

} // namespace plexa
