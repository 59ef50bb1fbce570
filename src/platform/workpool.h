// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace plexa
{

/// A few threads that do pieces of work in the order in which they were added. The destructor returns when
/// all of them are done.
class WorkPool final
{
public:
    /// @param threads  at least 1
    explicit WorkPool(int threads);
    ~WorkPool();
    WorkPool(const WorkPool &) = delete;
    WorkPool &operator=(const WorkPool &) = delete;

    /// @param work  must not throw. Any thread.
    void add(std::function<void()> work);

private:
    void workUntilEnd();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_work; // guarded
    bool m_isEnding = false;                  // guarded
    std::vector<std::jthread> m_threads;
};

} // namespace plexa
