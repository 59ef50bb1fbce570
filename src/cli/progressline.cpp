// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/progressline.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace plexa
{
namespace
{

/// The width of the terminal of standard error. It may change at any time.
int terminalColumns()
{
    constexpr int kUsualColumns = 80;
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualColumns;
}

std::string twoDigits(std::chrono::seconds::rep number)
{
    return (number < 10 ? "0" : "") + std::to_string(number);
}

/// "0:05", "12:34", "1:00:00".
std::string clockText(std::chrono::seconds time)
{
    const auto seconds = time.count();
    const std::string end = ":" + twoDigits(seconds % 60);
    const auto minutes = seconds / 60;
    return minutes < 60 ? std::to_string(minutes) + end
                        : std::to_string(minutes / 60) + ":" + twoDigits(minutes % 60) + end;
}

} // namespace

std::string progressText(qint64 done, qint64 total, std::optional<std::chrono::seconds> left, int columns)
{
    constexpr std::size_t kMinBar = 5;
    constexpr std::size_t kMaxBar = 40;
    // A full last column would make some terminals begin a new line.
    const auto room = static_cast<std::size_t>(std::max(columns - 1, 0));
    const std::string numbers = std::to_string(done) + "/" + std::to_string(total);
    std::string text = left ? numbers + ", " + clockText(*left) + " left" : numbers;
    if (text.size() > room)
        text = numbers;
    if (text.size() > room)
        return {};
    const std::size_t barRoom = room - text.size();
    constexpr std::size_t kFrame = 3; // brackets and a blank
    if (barRoom < kMinBar + kFrame)
        return text;
    const std::size_t bar = std::min(barRoom - kFrame, kMaxBar);
    const auto filled = static_cast<std::size_t>(static_cast<qint64>(bar) * std::min(done, total) /
                                                 std::max(total, qint64{1}));
    return "[" + std::string(filled, '=') + std::string(bar - filled, ' ') + "] " + text;
}

ProgressLine::ProgressLine(bool isWanted)
    : m_isShown(isWanted && isatty(STDERR_FILENO) == 1)
{
}

void ProgressLine::begin(qint64 total)
{
    m_total = total;
    m_begin = std::chrono::steady_clock::now();
    draw();
}

std::optional<std::chrono::seconds> ProgressLine::timeLeft() const
{
    using Seconds = std::chrono::duration<double>;
    if (m_done == 0)
        return std::nullopt;
    const Seconds each = Seconds(std::chrono::steady_clock::now() - m_begin) / static_cast<double>(m_done);
    return std::chrono::round<std::chrono::seconds>(each * static_cast<double>(m_total - m_done));
}

void ProgressLine::draw() const
{
    if (!m_isShown)
        return;
    std::fprintf(stderr, "\r%s\033[K", progressText(m_done, m_total, timeLeft(), terminalColumns()).c_str());
    std::fflush(stderr);
}

void ProgressLine::clear() const
{
    if (!m_isShown)
        return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
}

} // namespace plexa
