// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/mainthreadcalls.h"

#include <QStringList>

#include <atomic>
#include <functional>
#include <thread>

namespace plexa
{

/// A walk over many paths on a thread of its own, which hands the files over in batches.
class ImageScan final
{
public:
    /// Called on the main thread.
    struct Handlers {
        std::function<void(const QStringList &paths)> found;
        std::function<void(const QStringList &paths)> unreadable; ///< before finished(), when there are any
        std::function<void()> finished; ///< after the last batch, also when the scan was stopped
    };

    /// @param calls  of the main thread; outlives this object
    ImageScan(MainThreadCalls &calls, Handlers handlers);
    /// Stops and waits for the thread.
    ~ImageScan();

    /// Begins to walk over these paths, in order. Nothing may run.
    void start(const QStringList &paths);

    /// No further file is looked at; finished() is still called. Any thread.
    void stop() { m_isStopped = true; }
    bool isStopped() const { return m_isStopped; }

private:
    void run(const QStringList &paths);

    MainThreadCalls &m_calls;
    const Handlers m_handlers;
    std::atomic_bool m_isStopped = false;
    std::jthread m_thread;
};

} // namespace plexa
