// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/mainthreadcalls.h"

namespace plexa
{

void MainThreadCalls::post(std::function<void()> call)
{
    const std::lock_guard lock(m_mutex);
    m_calls.push_back(std::move(call));
    QMetaObject::invokeMethod(this, "runNext", Qt::QueuedConnection);
}

void MainThreadCalls::runNext()
{
    std::function<void()> call;
    {
        const std::lock_guard lock(m_mutex);
        if (m_calls.empty())
            return;
        call = std::move(m_calls.front());
        m_calls.pop_front();
    }
    call();
}

} // namespace plexa
