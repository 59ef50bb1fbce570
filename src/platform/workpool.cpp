// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/workpool.h"

#include <algorithm>
#include <utility>

namespace plexa
{

WorkPool::WorkPool(int threads)
{
    for (int i = 0; i < std::max(threads, 1); ++i)
        m_threads.emplace_back([this] { workUntilEnd(); });
}

WorkPool::~WorkPool()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_all();
    m_threads.clear(); // joins
}

void WorkPool::add(std::function<void()> work)
{
    {
        const std::lock_guard lock(m_mutex);
        m_work.push_back(std::move(work));
    }
    m_changed.notify_one();
}

void WorkPool::workUntilEnd()
{
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return !m_work.empty() || m_isEnding; });
        if (m_work.empty())
            return;
        {
            const std::function<void()> work = std::move(m_work.front());
            m_work.pop_front();
            lock.unlock();
            work();
        } // what the work held on to goes without the lock
        lock.lock();
    }
}

} // namespace plexa
