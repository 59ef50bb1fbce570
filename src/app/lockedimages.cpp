// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/lockedimages.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace plexa
{

namespace
{

// The pause while all photos are locked by others: too short to be noticed, too long to be a load.
constexpr auto kPause = std::chrono::milliseconds(5);

class Round
{
public:
    explicit Round(const LockedImagesWork &job)
        : m_job(job)
        , m_pending(job.images.begin(), job.images.end())
    {
    }

    void run()
    {
        const std::size_t threads =
            std::min(m_pending.size(), static_cast<std::size_t>(std::max(m_job.threads, 1)));
        std::vector<std::jthread> workers;
        for (std::size_t i = 0; i < threads; ++i)
            workers.emplace_back([this] { workOnImages(); });
    }

private:
    void workOnImages()
    {
        std::unique_lock lock(m_mutex);
        while (!m_pending.empty() && !m_job.isStopped()) {
            const std::shared_ptr<ImageObject> image = m_pending.front();
            m_pending.pop_front();
            lock.unlock();
            const bool isDone = tryOn(image);
            lock.lock();
            if (isDone) {
                m_busyInARow = 0;
                m_job.done(image);
            } else {
                m_pending.push_back(image);
                if (++m_busyInARow >= m_pending.size())
                    m_changed.wait_for(lock, kPause);
            }
        }
    }

    /// @return false if the photo is locked
    bool tryOn(const std::shared_ptr<ImageObject> &image)
    {
        using enum LoadedPhoto::LoadOutcome;
        const auto outcome = m_job.loadsImages ? image->tryLoadImageFromDisk() : Unreadable;
        if (outcome == Busy || !image->tryLock())
            return false;
        const bool isLoaded = image->isLoaded();
        // It may have been released before its lock was taken.
        const bool isReady = outcome != Loaded || isLoaded;
        if (isReady)
            m_job.work(image, isLoaded);
        image->unlock();
        return isReady;
    }

    const LockedImagesWork &m_job;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::shared_ptr<ImageObject>> m_pending;
    std::size_t m_busyInARow = 0;
};

} // namespace

void runOnLockedImages(const LockedImagesWork &job)
{
    Round(job).run();
}

} // namespace plexa
