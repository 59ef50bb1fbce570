// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/imagelist.h"
#include "app/mainthreadcalls.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace plexa
{

/// Loads the photo that the user looks at, without holding up the window. Who walks through a long list is
/// served with the photo where he stops: a photo that was asked for and not begun yet gives way to the next.
class FocusLoader final
{
public:
    /// Called on the main thread, for every photo that was begun.
    using Handler = std::function<void(const std::shared_ptr<ImageObject> &image, bool isLoaded)>;

    /// @param calls  of the main thread; outlives this object
    FocusLoader(MainThreadCalls &calls, Handler handler);
    /// Waits for the photo in work.
    ~FocusLoader();

    /// Main thread.
    void load(const std::shared_ptr<ImageObject> &image);

    /// Nothing is wanted any more. Main thread.
    void cancel();

private:
    void run(const std::stop_token &stop);

    MainThreadCalls &m_calls;
    const Handler m_handler;
    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    std::shared_ptr<ImageObject> m_wanted; // guarded by m_mutex
    std::jthread m_thread;                 // begins with the first photo
};

} // namespace plexa
