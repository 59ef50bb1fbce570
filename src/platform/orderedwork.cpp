// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/orderedwork.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace plexa
{

namespace
{

class Run
{
public:
    explicit Run(const OrderedWork &job)
        : m_job(job)
        , m_isDone(job.count, false)
        , m_running(std::min<std::size_t>(job.count, static_cast<std::size_t>(std::max(job.threads, 1))))
    {
    }

    std::size_t operator()()
    {
        {
            std::vector<std::jthread> workers; // joined when they have nothing more to begin
            for (std::size_t i = 0, count = m_running; i < count; ++i)
                workers.emplace_back([this] { workOnItems(); });
            deliverInOrder();
        }
        return m_begun;
    }

private:
    void workOnItems()
    {
        std::unique_lock lock(m_mutex);
        while (m_begun < m_job.count && !(m_job.isStopped && m_job.isStopped())) {
            const std::size_t index = m_begun++;
            lock.unlock();
            m_job.work(index);
            lock.lock();
            m_isDone[index] = true;
            m_changed.notify_one();
        }
        --m_running;
        m_changed.notify_one();
    }

    void deliverInOrder()
    {
        std::unique_lock lock(m_mutex);
        for (std::size_t next = 0; next < m_job.count; ++next) {
            m_changed.wait(lock, [&] { return m_isDone[next] || m_running == 0; });
            if (!m_isDone[next])
                return;
            lock.unlock();
            m_job.deliver(next);
            lock.lock();
        }
    }

    const OrderedWork &m_job;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<bool> m_isDone;
    std::size_t m_begun = 0;
    std::size_t m_running;
};

} // namespace

std::size_t runOrdered(const OrderedWork &job)
{
    return Run(job)();
}

} // namespace plexa
