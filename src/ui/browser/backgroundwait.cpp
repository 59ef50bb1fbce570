// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/backgroundwait.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

namespace plexa
{
namespace
{

constexpr int kPauseMilliseconds = 50;

} // namespace

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
    bool isQuitting = false;
    while (!m_isDone && !isQuitting) {
        isQuitting = true;
        QEventLoop loop;
        const auto leave = [&] {
            isQuitting = false;
            loop.quit();
        };
        connect(this, &BackgroundWait::finished, &loop, leave);
        QTimer::singleShot(kPauseMilliseconds, &loop, leave);
        loop.exec();
        // Between two loops, since Qt keeps objects that are to be deleted later until a loop ends, and such
        // an object may be what cancels the work.
        QCoreApplication::sendPostedEvents();
    }
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
