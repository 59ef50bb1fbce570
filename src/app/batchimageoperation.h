// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "app/imagelist.h"
#include "images/uprighting.h"

#include <QObject>

#include <map>
#include <mutex>

namespace plexa
{

class StatusManager;

/// A photo that was rotated or mirrored, as it was before.
struct TurnedImage {
    std::shared_ptr<ImageObject> image;
    QSize size;           ///< photo pixels
    CustomOrigins places; ///< chosen by hand, which the rotation has discarded
};
using TurnedImages = std::vector<TurnedImage>;

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
    /// Performs the inverse of an operation on the photos of its turned(), and restores their places.
    bool undoOperation(ImageTransform operation, const TurnedImages &before);

    /// No further photo is begun. Any thread.
    void abortOperation() { m_job.cancel(); }

Q_SIGNALS:
    /// A photo that cannot be read or rotated is unchanged.
    void finishedOperationForImage(const std::shared_ptr<plexa::ImageObject> &image);
    /// The photos that the run has changed, in their order. Sent before operationFinished().
    void turned(plexa::ImageTransform operation, const plexa::TurnedImages &before);
    /// The run is complete or stopped.
    void operationFinished();

private:
    void finishedImage(const std::shared_ptr<ImageObject> &image);
    void finishOperation();

    using Records = std::map<const ImageObject *, TurnedImage>;
    bool run(ImageTransform operation, const ImageList &images, const Records &wanted);

    StatusManager &m_status;
    const int m_threads;
    ImageTransform m_operation = ImageTransform::RotateHalf;
    ImageList m_images;
    std::mutex m_mutex;
    Records m_turned; // guarded by m_mutex while the job runs
    std::size_t m_numFinishedImages = 0;
    BackgroundJob m_job;
};

} // namespace plexa
