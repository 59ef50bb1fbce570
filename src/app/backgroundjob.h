// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace plexa
{

/// Work on a thread of its own, one piece at a time. The job belongs to the main thread: it is started there,
/// its reports arrive there through the event loop, in order, and it ends there, once. A job that is
/// destroyed is canceled; its work is waited for, its reports are dropped.
class BackgroundJob final : public QObject
{
    Q_OBJECT

public:
    enum class End { Done, Failed, Canceled };

    /// Called on the thread of the job. It ends early when isCanceled(), and must not throw.
    /// @return false: the job has failed
    using Work = std::function<bool()>;

    BackgroundJob() = default;
    ~BackgroundJob() override;

    /// The work is destroyed on the main thread, after its end.
    /// @return false, and nothing happens, while another work runs
    bool start(Work work);
    bool isRunning() const { return m_isRunning; }

    /// Asks the work to end early; it then ends as canceled, even if it was complete. Any thread.
    void cancel() { m_isCanceled = true; }
    bool isCanceled() const { return m_isCanceled; }

    /// Calls a function on the main thread, before ended(), and does not wait for it. For the work; any
    /// thread.
    void post(std::function<void()> report);

    /// Waits in an event loop. The caller keeps the job alive meanwhile; several callers may wait.
    /// @return false: the program was asked to quit before the end
    bool wait();
    /// Waits without an event loop, then delivers the reports and the end.
    void finish();

Q_SIGNALS:
    /// Another work can be started.
    void ended(plexa::BackgroundJob::End end);

private:
    // One event is one report: a report that opens a dialog does not delay the following ones.
    Q_INVOKABLE bool deliverNext();
    void end(bool isSuccess);

    // Reports pass through a lock of our own, since the thread sanitizer cannot see into Qt's event queue.
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_reports; // guarded by m_mutex
    Work m_work;
    bool m_isRunning = false;
    std::atomic_bool m_isCanceled = false;
    std::jthread m_thread;
};

} // namespace plexa
