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
    /// @param threads  photos that are processed at a time
    BatchImageOperation(StatusManager &status, int threads);

    bool isRunning() const { return m_job.isRunning(); }

    /// @return false, and nothing happens, during another run
    bool performOperation(ImageTransform operation, const ImageList &images);

    /// No further photo is begun. Any thread.
    void abortOperation() { m_job.cancel(); }

Q_SIGNALS:
    /// A photo that cannot be read or rotated is unchanged.
    void finishedOperationForImage(const std::shared_ptr<plexa::ImageObject> &image);
    /// The run is complete or stopped.
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
