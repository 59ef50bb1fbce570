// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/imagescan.h"

#include "images/folderwalk.h"

#include <chrono>
#include <utility>

namespace plexa
{

namespace
{

using Clock = std::chrono::steady_clock;

// Often enough to see the list grow, seldom enough not to keep the window busy.
constexpr auto kBatchInterval = std::chrono::milliseconds(50);

} // namespace

ImageScan::ImageScan(MainThreadCalls &calls, Handlers handlers)
    : m_calls(calls)
    , m_handlers(std::move(handlers))
{
}

ImageScan::~ImageScan()
{
    stop();
}

void ImageScan::start(const QStringList &paths)
{
    if (m_thread.joinable())
        m_thread.join();
    m_isStopped = false;
    m_thread = std::jthread([this, paths] { run(paths); });
}

void ImageScan::run(const QStringList &paths)
{
    QStringList batch;
    QStringList unreadable;
    Clock::time_point lastBatch; // the first file is shown at once
    const auto handOver = [&] {
        if (!batch.isEmpty())
            m_calls.post([this, found = std::exchange(batch, {})] { m_handlers.found(found); });
        lastBatch = Clock::now();
    };
    FolderWalk::Visitor visitor;
    visitor.found = [&](const QString &path) {
        batch.append(path);
        if (Clock::now() - lastBatch > kBatchInterval)
            handOver();
    };
    visitor.unreadable = [&](const FolderWalk::Unreadable &what) { unreadable.append(what.path); };
    visitor.isStopped = [this] { return isStopped(); };
    for (const QString &path : paths) {
        if (isStopped())
            break;
        // A walk of its own: a folder that is given twice counts twice.
        FolderWalk(visitor).scanImagesAtPath(path, true);
    }
    handOver();
    m_calls.post([this, unreadable] {
        if (!unreadable.isEmpty())
            m_handlers.unreadable(unreadable);
        m_handlers.finished();
    });
}

} // namespace plexa
