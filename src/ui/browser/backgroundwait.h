// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

#include <functional>
#include <thread>

namespace plexa
{

/// Work on a thread of its own. Callers wait for it in an event loop, so the window stays usable, and several
/// callers may wait for the same work. Held by a shared pointer, of which each waiting caller keeps a copy.
/// Main thread.
class BackgroundWait final : public QObject
{
    Q_OBJECT

public:
    /// Starts the work. @param work  must not throw
    explicit BackgroundWait(std::function<void()> work);

    /// Returns when the work is done or the program is to quit. Objects whose deletion is due are deleted
    /// meanwhile.
    /// @return whether the work is done
    bool wait();
    bool isDone() const { return m_isDone; }

    /// Waits without an event loop.
    Q_INVOKABLE void finish();

Q_SIGNALS:
    void finished();

private:
    bool m_isDone = false;
    std::jthread m_thread; // last, so that it is joined first
};

} // namespace plexa
