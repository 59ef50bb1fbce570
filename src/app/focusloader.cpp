// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/focusloader.h"

namespace plexa
{

FocusLoader::FocusLoader(MainThreadCalls &calls, Handler handler)
    : m_calls(calls)
    , m_handler(std::move(handler))
{
}

FocusLoader::~FocusLoader() = default;

void FocusLoader::load(const std::shared_ptr<ImageObject> &image)
{
    std::shared_ptr<ImageObject> former = image; // destroyed outside of the lock
    {
        const std::lock_guard lock(m_mutex);
        std::swap(m_wanted, former);
    }
    m_changed.notify_one();
    if (!m_thread.joinable())
        m_thread = std::jthread([this](const std::stop_token &stop) { run(stop); });
}

void FocusLoader::cancel()
{
    std::shared_ptr<ImageObject> former;
    const std::lock_guard lock(m_mutex);
    std::swap(m_wanted, former);
}

void FocusLoader::run(const std::stop_token &stop)
{
    std::unique_lock lock(m_mutex);
    while (m_changed.wait(lock, stop, [this] { return m_wanted != nullptr; })) {
        std::shared_ptr<ImageObject> image = std::exchange(m_wanted, nullptr);
        lock.unlock();
        const bool isLoaded = image->loadImageFromDisk();
        // Handed over whole: the photo may go with it, and has to go on the main thread.
        m_calls.post([this, image = std::move(image), isLoaded] { m_handler(image, isLoaded); });
        lock.lock();
    }
}

} // namespace plexa
