// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "app/imagelist.h"
#include "images/uprighting.h"

#include <QObject>

namespace plexa
{

class StatusManager;

/// Rotates or mirrors many photos in the background. One run at a time. Main thread.
class BatchImageOperation final : public QObject
{
    Q_OBJECT

public:
    /// @param status   outlives this object
    /// @param threads  photos that are worked on at a time
    BatchImageOperation(StatusManager &status, int threads);

    bool isRunning() const { return m_job.isRunning(); }

    /// Begins. @return false, and nothing happens, while another run goes on
    bool performOperation(ImageTransform operation, const ImageList &images);

    /// No further photo is begun; those that are done stay so. Any thread.
    void abortOperation() { m_job.cancel(); }

Q_SIGNALS:
    /// One photo is done. One that cannot be read or rotated is unchanged.
    void finishedOperationForImage(const std::shared_ptr<plexa::ImageObject> &image);
    /// The run has ended, complete or stopped.
    void operationFinished();

private:
    void finishedImage(const std::shared_ptr<ImageObject> &image);
    void finishOperation();

    StatusManager &m_status;
    const int m_threads;
    std::size_t m_numImages = 0;
    std::size_t m_numFinishedImages = 0;
    BackgroundJob m_job;
};

} // namespace plexa
