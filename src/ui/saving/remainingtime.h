// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

#include <deque>
#include <optional>

namespace plexa
{

/// Estimates the rest of a run from its latest steps, so that a pause (a question that waits for its answer)
/// is soon forgotten.
class RemainingTime final
{
public:
    /// @param now       milliseconds of any clock
    /// @param finished  steps so far
    void add(qint64 now, qint64 finished);

    /// Seconds until `maximum` steps are finished; nothing as long as too little is known.
    std::optional<qint64> seconds(qint64 now, qint64 maximum) const;

private:
    struct Point {
        qint64 time;
        qint64 finished;
    };
    std::deque<Point> m_points;
};

} // namespace plexa
