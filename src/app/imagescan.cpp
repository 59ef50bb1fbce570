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

// The user sees the list grow, and the window stays responsive.
constexpr auto kBatchInterval = std::chrono::milliseconds(50);

} // namespace

ImageScan::ImageScan()
{
    connect(&m_job, &BackgroundJob::ended, this, &ImageScan::finished);
}

void ImageScan::start(const QStringList &paths)
{
    m_job.start([this, paths] {
        run(paths);
        return true;
    });
}

/// Thread of the job.
void ImageScan::run(const QStringList &paths)
{
    QStringList batch;
    QStringList notRead;
    Clock::time_point lastBatch; // the first file is handed over at once
    const auto handOver = [&] {
        if (!batch.isEmpty())
            m_job.post([this, files = std::exchange(batch, {})] { Q_EMIT found(files); });
        lastBatch = Clock::now();
    };
    FolderWalk::Visitor visitor;
    visitor.found = [&](const QString &path) {
        batch.append(path);
        if (Clock::now() - lastBatch > kBatchInterval)
            handOver();
    };
    visitor.unreadable = [&](const FolderWalk::Unreadable &what) { notRead.append(what.path); };
    visitor.isStopped = [this] { return isStopped(); };
    for (const QString &path : paths) {
        if (isStopped())
            break;
        // A separate walk for each path: the photos of a folder that is given twice are added twice.
        FolderWalk(visitor).scanImagesAtPath(path, true);
    }
    handOver();
    if (!notRead.isEmpty())
        m_job.post([this, notRead] { Q_EMIT unreadable(notRead); });
}

} // namespace plexa
