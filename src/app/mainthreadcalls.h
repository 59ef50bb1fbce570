// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

#include <deque>
#include <functional>
#include <mutex>

namespace plexa
{

/// How workers report: functions that they hand over are called on this object's thread by its event loop, in
/// the order in which they came, and the worker does not wait. What is still waiting when the object is
/// destroyed is dropped.
///
/// The functions, and the events that call them, pass through a lock of our own, since the thread sanitizer
/// cannot see into Qt's event queue.
class MainThreadCalls final : public QObject
{
    Q_OBJECT

public:
    /// Any thread.
    void post(std::function<void()> call);

private:
    // One event is one call, so that a call which opens a dialog does not hold up those behind it.
    Q_INVOKABLE void runNext();

    std::mutex m_mutex;
    std::deque<std::function<void()>> m_calls; // guarded by m_mutex
};

} // namespace plexa
