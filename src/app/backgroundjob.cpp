// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/backgroundjob.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

namespace plexa
{
namespace
{

constexpr int kPauseMilliseconds = 50;

} // namespace

BackgroundJob::~BackgroundJob()
{
    cancel();
    if (m_thread.joinable())
        m_thread.join();
}

bool BackgroundJob::start(Work work)
{
    if (isRunning())
        return false;
    m_isRunning = true;
    m_isCanceled = false;
    m_work = std::move(work);
    m_thread = std::jthread([this] {
        const bool isSuccess = m_work();
        post([this, isSuccess] { end(isSuccess); });
    });
    return true;
}

void BackgroundJob::post(std::function<void()> report)
{
    const std::lock_guard lock(m_mutex);
    m_reports.push_back(std::move(report));
    QMetaObject::invokeMethod(this, "deliverNext", Qt::QueuedConnection);
}

bool BackgroundJob::deliverNext()
{
    std::function<void()> report;
    {
        const std::lock_guard lock(m_mutex);
        if (m_reports.empty())
            return false;
        report = std::move(m_reports.front());
        m_reports.pop_front();
    }
    report();
    return true;
}

void BackgroundJob::end(bool isSuccess)
{
    if (m_thread.joinable())
        m_thread.join();
    m_work = nullptr;
    m_isRunning = false;
    Q_EMIT ended(m_isCanceled ? End::Canceled : isSuccess ? End::Done : End::Failed);
}

bool BackgroundJob::wait()
{
    bool isQuitting = false;
    while (isRunning() && !isQuitting) {
        isQuitting = true;
        QEventLoop loop;
        const auto leave = [&] {
            isQuitting = false;
            loop.quit();
        };
        connect(this, &BackgroundJob::ended, &loop, leave);
        QTimer::singleShot(kPauseMilliseconds, &loop, leave);
        loop.exec();
        // Between two loops: Qt deletes objects later only at a loop's end, and such an object may cancel the
        // work.
        QCoreApplication::sendPostedEvents();
    }
    return !isRunning();
}

void BackgroundJob::finish()
{
    if (m_thread.joinable())
        m_thread.join();
    while (isRunning() && deliverNext()) {
    }
}

} // namespace plexa
