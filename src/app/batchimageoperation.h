// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/imagelist.h"
#include "app/mainthreadcalls.h"

#include <QObject>

#include <atomic>
#include <thread>

namespace plexa
{

class StatusManager;

/// Turns or mirrors many photos in the background; see ImageTransform for the codes. One run at a time. Lives
/// on the main thread.
class BatchImageOperation final : public QObject
{
    Q_OBJECT

public:
    /// @param status   outlives this object
    /// @param threads  photos that are worked on at a time
    BatchImageOperation(StatusManager &status, int threads);
    /// Stops, and waits for the photos in work.
    ~BatchImageOperation() override;

    bool isRunning() const { return m_isRunning; }

    /// Begins. @return false, and nothing happens, while another run goes on
    bool performOperation(int operation, const ImageList &images);

    /// No further photo is begun; those that are turned stay so. Any thread.
    void abortOperation() { m_isAborted = true; }

Q_SIGNALS:
    /// One photo is turned, or cannot be.
    void finishedOperationForImage(const std::shared_ptr<plexa::ImageObject> &image);
    /// The run has ended, by itself or by a stop.
    void operationFinished();

private:
    void performOperationThread(int operation);
    void finishedImage(const std::shared_ptr<ImageObject> &image);
    void finishOperation();

    StatusManager &m_status;
    const int m_threads;
    bool m_isRunning = false;
    std::atomic_bool m_isAborted = false;
    ImageList m_allImages; // unchanged while the thread runs
    std::size_t m_numFinishedImages = 0;
    MainThreadCalls m_calls;
    std::jthread m_thread;
};

} // namespace plexa
