// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/batchimageoperation.h"

#include "app/lockedimages.h"
#include "app/statusmanager.h"

namespace plexa
{

BatchImageOperation::BatchImageOperation(StatusManager &status, int threads)
    : m_status(status)
    , m_threads(threads)
{
}

BatchImageOperation::~BatchImageOperation()
{
    abortOperation();
}

bool BatchImageOperation::performOperation(int operation, const ImageList &images)
{
    if (m_isRunning)
        return false;
    m_isRunning = true;
    m_isAborted = false;
    m_allImages = images;
    m_numFinishedImages = 0;
    m_status.startOperation(StatusOperation::Rotating);
    m_thread = std::jthread([this, operation] { performOperationThread(operation); });
    return true;
}

void BatchImageOperation::performOperationThread(int operation)
{
    LockedImagesWork job;
    job.images = m_allImages;
    job.threads = m_threads;
    job.loadsImages = true;
    job.work = [operation](ImageObject &image, bool isLoaded) {
        // A photo that cannot be turned is done all the same.
        if (isLoaded)
            image.transformOriginalImageWithOperation(operation);
    };
    job.done = [this](const std::shared_ptr<ImageObject> &image) {
        m_calls.post([this, image] { finishedImage(image); });
    };
    job.isStopped = [this] { return m_isAborted.load(); };
    runOnLockedImages(job);
    m_calls.post([this] { finishOperation(); });
}

void BatchImageOperation::finishedImage(const std::shared_ptr<ImageObject> &image)
{
    ++m_numFinishedImages;
    m_status.setProgress(static_cast<float>(m_numFinishedImages) / static_cast<float>(m_allImages.size()),
                         StatusOperation::Rotating);
    Q_EMIT finishedOperationForImage(image);
}

void BatchImageOperation::finishOperation()
{
    m_thread.join();
    m_allImages.clear();
    m_isRunning = false;
    m_status.endOperation(StatusOperation::Rotating);
    Q_EMIT operationFinished();
}

} // namespace plexa
