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
    connect(&m_job, &BackgroundJob::ended, this, &BatchImageOperation::finishOperation);
}

bool BatchImageOperation::performOperation(ImageTransform operation, const ImageList &images)
{
    if (isRunning())
        return false;
    m_numImages = images.size();
    m_numFinishedImages = 0;
    m_status.startOperation(StatusOperation::Rotating);
    LockedImagesWork work;
    work.images = images;
    work.threads = m_threads;
    work.loadsImages = true;
    work.work = [operation](ImageObject &image, bool isLoaded) {
        if (isLoaded)
            image.transformOriginalImageWithOperation(operation);
    };
    work.done = [this](const std::shared_ptr<ImageObject> &image) {
        m_job.post([this, image] { finishedImage(image); });
    };
    work.isStopped = [this] { return m_job.isCanceled(); };
    return m_job.start([work] {
        runOnLockedImages(work);
        return true;
    });
}

void BatchImageOperation::finishedImage(const std::shared_ptr<ImageObject> &image)
{
    ++m_numFinishedImages;
    m_status.setProgress(static_cast<float>(m_numFinishedImages) / static_cast<float>(m_numImages),
                         StatusOperation::Rotating);
    Q_EMIT finishedOperationForImage(image);
}

void BatchImageOperation::finishOperation()
{
    m_status.endOperation(StatusOperation::Rotating);
    Q_EMIT operationFinished();
}

} // namespace plexa
