// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/imageimport.h"

#include <algorithm>
#include <thread>

namespace plexa
{

ImageImport::ImageImport(const ImageSet &set, int threads)
    : m_set(set)
    , m_threads(std::max(1, threads))
{
    connect(&m_job, &BackgroundJob::ended, this, [this] {
        m_items.clear();
        m_indexes.clear();
        Q_EMIT finished();
    });
}

ImageImport::~ImageImport()
{
    stop();
}

void ImageImport::start()
{
    m_nextInOrder = m_nextToDeliver = 0;
    m_workers = m_threads;
    m_job.start([this] {
        std::vector<std::jthread> workers;
        for (int i = 1; i < m_threads; ++i)
            workers.emplace_back([this] { work(); });
        work();
        return true;
    });
}

void ImageImport::stop()
{
    m_job.cancel();
    const std::lock_guard lock(m_mutex); // a worker that has not seen it waits already
    m_changed.notify_all();
}

void ImageImport::setExpectsMore(bool expects)
{
    const std::lock_guard lock(m_mutex);
    m_expectsMore = expects;
    m_changed.notify_all();
}

bool ImageImport::loadJoined()
{
    const std::lock_guard lock(m_mutex);
    m_changed.notify_all();
    return m_workers > 0 && !m_job.isCanceled();
}

void ImageImport::loadFirst(const ImageList &photos)
{
    const std::lock_guard lock(m_mutex);
    m_urgent.clear();
    for (const std::shared_ptr<ImageObject> &photo : photos)
        m_urgent.push_back(photo.get());
}

/// Each thread of the job.
void ImageImport::work()
{
    std::unique_lock lock(m_mutex);
    while (!m_job.isCanceled()) {
        Item *const item = next();
        if (!item && !m_expectsMore)
            break;
        if (!item) {
            m_changed.wait(lock);
            continue;
        }
        item->isBegun = true;
        lock.unlock();
        ImageObject &image = *item->image;
        Outcome outcome = Outcome::Skipped;
        if (m_set.contains(&image))
            outcome = image.loadImageFromDisk() ? Outcome::Loaded : Outcome::Unreadable;
        lock.lock();
        end(*item, outcome);
    }
    --m_workers;
}

/// The photo to be loaded next; null: none waits. Called with the lock held.
ImageImport::Item *ImageImport::next()
{
    for (const bool isSecondLook : {false, true}) {
        if (isSecondLook)
            adoptJoined();
        for (const ImageObject *const image : m_urgent) {
            const auto found = m_indexes.find(image);
            if (found != m_indexes.end() && !m_items[found->second].isBegun)
                return &m_items[found->second];
        }
        while (m_nextInOrder < m_items.size() && m_items[m_nextInOrder].isBegun)
            ++m_nextInOrder;
        if (m_nextInOrder < m_items.size())
            return &m_items[m_nextInOrder];
    }
    return nullptr;
}

/// The photos that have joined the set. Called with the lock held.
void ImageImport::adoptJoined()
{
    for (const std::shared_ptr<ImageObject> &image : m_set.imagesNow()) {
        if (m_indexes.emplace(image.get(), m_items.size()).second)
            m_items.push_back({image});
    }
}

/// Reports what is complete. Called with the lock held, which keeps the reports in order.
void ImageImport::end(Item &item, Outcome outcome)
{
    item.isDone = true;
    item.outcome = outcome;
    if (outcome == Outcome::Loaded)
        m_job.post([this, image = item.image] { Q_EMIT loaded(image); });
    for (; m_nextToDeliver < m_items.size() && m_items[m_nextToDeliver].isDone; ++m_nextToDeliver) {
        const Item &done = m_items[m_nextToDeliver];
        m_job.post([this, image = done.image, outcome = done.outcome] { Q_EMIT delivered(image, outcome); });
    }
}

} // namespace plexa
