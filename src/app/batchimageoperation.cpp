// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/batchimageoperation.h"

#include "app/lockedimages.h"
#include "app/statusmanager.h"

#include <utility>

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
    return run(operation, images, {});
}

bool BatchImageOperation::undoOperation(ImageTransform operation, const TurnedImages &before)
{
    ImageList images;
    Records wanted;
    for (const TurnedImage &turned : before) {
        images.push_back(turned.image);
        wanted.emplace(turned.image.get(), turned);
    }
    return run(inverseTransform(operation), images, wanted);
}

/// @param wanted  the places of the photos that get their former ones back
bool BatchImageOperation::run(ImageTransform operation, const ImageList &images, const Records &wanted)
{
    if (isRunning())
        return false;
    m_operation = operation;
    m_images = images;
    m_turned.clear();
    m_numFinishedImages = 0;
    m_status.startOperation(StatusOperation::Rotating);
    LockedImagesWork work;
    work.images = images;
    work.threads = m_threads;
    work.loadsImages = true;
    work.work = [this, operation, wanted](const std::shared_ptr<ImageObject> &image, bool isLoaded) {
        const TurnedImage before{image, image->facts().pixelSize(), image->customWatermarkRectOrigins()};
        if (!isLoaded || !image->transformOriginalImageWithOperation(operation))
            return;
        const auto former = wanted.find(image.get());
        if (former != wanted.end() && former->second.size == image->facts().pixelSize())
            image->exchangeCustomWatermarkRectOrigins({}, former->second.places);
        const std::lock_guard lock(m_mutex);
        m_turned.emplace(image.get(), before);
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
    m_status.setProgress(static_cast<float>(m_numFinishedImages) / static_cast<float>(m_images.size()),
                         StatusOperation::Rotating);
    Q_EMIT finishedOperationForImage(image);
}

void BatchImageOperation::finishOperation()
{
    m_status.endOperation(StatusOperation::Rotating);
    TurnedImages changed;
    for (const std::shared_ptr<ImageObject> &image : std::exchange(m_images, {})) {
        if (const auto before = m_turned.find(image.get()); before != m_turned.end())
            changed.push_back(before->second);
    }
    m_turned.clear();
    Q_EMIT turned(m_operation, changed);
    Q_EMIT operationFinished();
}

} // namespace plexa
