// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/progressline.h"

#include <unistd.h>

#include <algorithm>
#include <string>

namespace plexa
{

namespace
{

constexpr std::size_t kBarWidth = 40;

} // namespace

ProgressLine::ProgressLine(std::size_t total, bool isShown)
    : m_total(std::max<std::size_t>(total, 1))
    , m_isShown(isShown && isatty(STDERR_FILENO) == 1)
{
}

ProgressLine::~ProgressLine()
{
    clear();
}

void ProgressLine::setDone(std::size_t done)
{
    if (!m_isShown)
        return;
    const std::size_t filled = std::min(kBarWidth, done * kBarWidth / m_total);
    const std::string bar = std::string(filled, '=') + std::string(kBarWidth - filled, ' ');
    std::fprintf(stderr, "\r[%s] %zu/%zu", bar.c_str(), done, m_total);
    std::fflush(stderr);
}

void ProgressLine::clear()
{
    if (!m_isShown)
        return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
}

} // namespace plexa
