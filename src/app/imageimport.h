// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "app/imageset.h"

#include <condition_variable>
#include <mutex>
#include <unordered_map>

namespace plexa
{

/// Loads the photos of a set on several threads and reports them in the set's order. Photos that join the set
/// meanwhile are loaded as well, photos that leave it are skipped. Main thread.
class ImageImport final : public QObject
{
    Q_OBJECT

public:
    enum class Outcome { Loaded, Unreadable, Skipped };

    /// @param set      outlives this object
    /// @param threads  photos that are loaded at a time
    ImageImport(const ImageSet &set, int threads);
    ~ImageImport() override;

    /// Begins with all photos of the set. No import may run.
    void start();

    /// Whether a running import waits for photos that join the set, even when all others are loaded.
    void setExpectsMore(bool expects);

    /// To be called after photos have joined the set.
    /// @return whether the running import loads them; else a new one has to
    bool loadJoined();

    /// Loads these photos before the others, the first ones first.
    void loadFirst(const ImageList &photos);

    /// No further photo is begun; finished() is still sent.
    void stop();

Q_SIGNALS:
    /// A photo can be shown. Sent at once, in no order.
    void loaded(const std::shared_ptr<plexa::ImageObject> &image);
    /// In the order of the set.
    void delivered(const std::shared_ptr<plexa::ImageObject> &image, plexa::ImageImport::Outcome outcome);
    /// Sent after the last photo, even if the import was stopped.
    void finished();

private:
    struct Item {
        std::shared_ptr<ImageObject> image;
        bool isBegun = false;
        bool isDone = false;
        Outcome outcome = Outcome::Skipped;
    };

    void work();
    Item *next();
    void adoptJoined();
    void end(Item &item, Outcome outcome);

    const ImageSet &m_set;
    const int m_threads;

    std::mutex m_mutex; // guards what follows
    std::condition_variable m_changed;
    // Kept until the end: photos are objects of the main thread, which has to destroy them.
    std::deque<Item> m_items; // in the order of the set
    std::unordered_map<const ImageObject *, std::size_t> m_indexes;
    std::vector<const ImageObject *> m_urgent;
    std::size_t m_nextInOrder = 0;   // no item before it waits
    std::size_t m_nextToDeliver = 0; // all items before it are reported
    int m_workers = 0;
    bool m_expectsMore = false;

    BackgroundJob m_job;
};

} // namespace plexa
