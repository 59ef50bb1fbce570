// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/manualpositions.h"

#include "app/lockedimages.h"
#include "app/statusmanager.h"

#include <algorithm>

namespace plexa
{

namespace
{

/// The place as fractions of the photo's size; none where there is no place, or no photo.
std::optional<QPointF> relativePosition(ImageObject &image, const WPreset *preset)
{
    const std::optional<QPointF> origin = image.customWatermarkRectOriginForWPreset(preset);
    if (!preset || !origin)
        return std::nullopt;
    const Result<PhotoFacts> facts = image.readFacts();
    if (!facts || facts->pixelSize().isEmpty())
        return std::nullopt;
    const QSizeF size = facts->pixelSize();
    return QPointF(origin->x() / size.width(), origin->y() / size.height());
}

} // namespace

ManualPositions::ManualPositions(StatusManager &status, int threads)
    : m_status(status)
    , m_threads(threads)
{
}

ManualPositions::~ManualPositions()
{
    stopPastingSettings();
}

bool ManualPositions::canCopyForPreset(const ImageObject &image, const WPreset *preset)
{
    return preset && image.customWatermarkRectOriginForWPreset(preset).has_value();
}

bool ManualPositions::canCopyForPresets(const ImageObject &image, const WPresetList &presets)
{
    return std::any_of(presets.begin(), presets.end(),
                       [&](const auto &preset) { return canCopyForPreset(image, preset.get()); });
}

void ManualPositions::copyForPreset(ImageObject &image, const WPreset *preset)
{
    m_copyForAllPresets.clear();
    m_copyForCurrentPreset = relativePosition(image, preset);
    Q_EMIT copyChanged();
}

void ManualPositions::copyForPresets(ImageObject &image, const WPresetList &presets)
{
    m_copyForAllPresets.clear();
    m_copyForCurrentPreset.reset();
    for (const std::shared_ptr<WPreset> &preset : presets) {
        if (const std::optional<QPointF> relative = relativePosition(image, preset.get()))
            m_copyForAllPresets.push_back({preset, *relative});
    }
    Q_EMIT copyChanged();
}

void ManualPositions::purgeCopiedManualPositioning(bool all)
{
    if (all)
        m_copyForAllPresets.clear();
    else
        m_copyForCurrentPreset.reset();
    Q_EMIT copyChanged();
}

void ManualPositions::pasteManualPositioning(const ImageList &images,
                                             const std::shared_ptr<const WPreset> &currentPreset)
{
    if (!hasCopy())
        return;
    Job job;
    job.images = images;
    job.replacesAll = !m_copyForAllPresets.empty();
    if (job.replacesAll)
        job.positions = m_copyForAllPresets;
    else if (currentPreset)
        job.positions = {{currentPreset, *m_copyForCurrentPreset}};
    m_jobs.push_back(std::move(job));
    if (m_jobs.size() == 1)
        startJob();
}

void ManualPositions::startJob()
{
    m_isStopped = false;
    m_status.startOperation(StatusOperation::Pasting);
    m_thread = std::jthread([this, &job = m_jobs.front()] { pasteThread(job); });
}

/// @param job  stays where it is until the thread is joined
void ManualPositions::pasteThread(const Job &job)
{
    LockedImagesWork work;
    work.images = job.images;
    work.threads = m_threads;
    work.work = [&job](ImageObject &image, bool) {
        // Its size is all that is needed of the photo, and stands in the file's headers.
        const Result<PhotoFacts> facts = image.readFacts();
        if (!facts)
            return;
        const QSizeF size = facts->pixelSize();
        if (job.replacesAll)
            image.resetAllCustomWatermarkRectOrigins();
        for (const Position &position : job.positions) {
            image.setCustomWatermarkRectOrigin(
                {position.relative.x() * size.width(), position.relative.y() * size.height()},
                position.preset);
        }
    };
    std::size_t done = 0;
    work.done = [&](const std::shared_ptr<ImageObject> &) {
        ++done;
        m_status.setProgress(static_cast<float>(done) / static_cast<float>(job.images.size()),
                             StatusOperation::Pasting);
    };
    work.isStopped = [this] { return m_isStopped.load(); };
    runOnLockedImages(work);
    m_calls.post([this] { finishedJob(); });
}

void ManualPositions::finishedJob()
{
    m_thread.join();
    m_jobs.pop_front();
    if (m_isStopped)
        m_jobs.clear();
    m_status.endOperation(StatusOperation::Pasting);
    Q_EMIT pasteFinished();
    if (!m_jobs.empty() && !m_thread.joinable())
        startJob();
}

} // namespace plexa
