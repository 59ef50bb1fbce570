// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/backgroundwait.h"

#include <QEventLoop>

namespace plexa
{

BackgroundWait::BackgroundWait(std::function<void()> work)
    : m_thread([this, work = std::move(work)] {
        work();
        // By name: that leaves nothing behind for the other thread but the event.
        QMetaObject::invokeMethod(this, "finish", Qt::QueuedConnection);
    })
{
}

bool BackgroundWait::wait()
{
    if (m_isDone)
        return true;
    QEventLoop loop;
    connect(this, &BackgroundWait::finished, &loop, &QEventLoop::quit);
    loop.exec();
    return m_isDone;
}

void BackgroundWait::finish()
{
    if (m_isDone)
        return;
    m_thread.join();
    m_isDone = true;
    Q_EMIT finished();
}

} // namespace plexa
