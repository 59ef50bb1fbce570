// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/saving/remainingtime.h"

#include <algorithm>

namespace plexa
{
namespace
{

constexpr std::size_t kPoints = 40;
constexpr qint64 kBetweenPoints = 250; // milliseconds
constexpr qint64 kShortest = 2000;     // milliseconds from which on an estimate is fair

} // namespace

void RemainingTime::add(qint64 now, qint64 finished)
{
    if (!m_points.empty() &&
        (m_points.back().finished == finished || now - m_points.back().time < kBetweenPoints))
        return;
    m_points.push_back({now, finished});
    if (m_points.size() > kPoints)
        m_points.pop_front();
}

std::optional<qint64> RemainingTime::seconds(qint64 now, qint64 maximum) const
{
    if (m_points.size() < 2)
        return std::nullopt;
    const Point &first = m_points.front();
    const Point &last = m_points.back();
    const qint64 time = last.time - first.time;
    const qint64 steps = last.finished - first.finished;
    if (now - first.time < kShortest || time <= 0 || steps <= 0)
        return std::nullopt;
    const double perStep = static_cast<double>(time) / static_cast<double>(steps);
    const double left = perStep * static_cast<double>(maximum - last.finished);
    return std::max<qint64>(static_cast<qint64>(left - static_cast<double>(now - last.time)) / 1000, 0);
}

} // namespace plexa
