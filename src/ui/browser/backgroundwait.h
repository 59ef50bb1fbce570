// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

#include <functional>
#include <thread>

namespace plexa
{

/// Work on a thread of its own that callers wait for while the event loop goes on: the window can be used,
/// and a second caller may come to wait for the same work. Held by a shared pointer, of which each caller
/// that waits keeps one. Main thread.
class BackgroundWait final : public QObject
{
    Q_OBJECT

public:
    /// Begins it. @param work  must not throw
    explicit BackgroundWait(std::function<void()> work);

    /// Returns when the work is done, or when the program has been told to quit.
    /// @return whether it is done
    bool wait();
    bool isDone() const { return m_isDone; }

    /// Waits without an event loop.
    Q_INVOKABLE void finish();

Q_SIGNALS:
    void finished();

private:
    bool m_isDone = false;
    std::jthread m_thread; // joined before all else goes
};

} // namespace plexa
