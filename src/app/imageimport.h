// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/imagelist.h"
#include "app/mainthreadcalls.h"

#include <atomic>
#include <functional>
#include <thread>
#include <unordered_set>

namespace plexa
{

/// Loads the photos of a set in the background: on as many threads as asked for, but reported in the set's
/// order. Photos that join the set meanwhile are loaded as well, photos that leave it are passed over.
class ImageImport final
{
public:
    enum class Outcome { Loaded, Unreadable, PassedOver };

    struct Source {
        std::function<ImageList()> images; ///< the set at this moment. Called on the import's threads
        std::function<bool(const ImageObject *)> contains; ///< likewise
    };

    /// Called on the main thread.
    struct Handlers {
        std::function<void(const std::shared_ptr<ImageObject> &image, Outcome outcome)> delivered;
        std::function<void()> finished; ///< after the last photo, also when the import was stopped
    };

    /// @param calls  of the main thread; outlives this object
    ImageImport(MainThreadCalls &calls, Source source, Handlers handlers, int threads);
    /// Stops, and waits for the photos in work.
    ~ImageImport();

    /// Begins with all photos of the set. Nothing may run.
    void start();

    /// No further photo is begun; finished() is still called. Any thread.
    void stop() { m_isStopped = true; }

private:
    void run();
    ImageList nextRound();
    void load(const ImageList &round);

    MainThreadCalls &m_calls;
    const Source m_source;
    const Handlers m_handlers;
    const int m_threads;
    std::atomic_bool m_isStopped = false;
    // Kept until the thread is joined: photos are objects of the main thread and have to be destroyed there.
    ImageList m_taken;
    std::unordered_set<const ImageObject *> m_isTaken;
    std::jthread m_thread;
};

} // namespace plexa
