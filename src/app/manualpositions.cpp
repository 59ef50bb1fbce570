// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/manualpositions.h"

#include "app/lockedimages.h"
#include "app/statusmanager.h"

#include <algorithm>

namespace plexa
{

namespace
{

/// The place as fractions of the photo's size; none without a place or a photo.
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

/// Carries out an edit and appends it to the list, if it changes anything.
template<class Edit>
void record(PlacesEdits &edits, const std::shared_ptr<ImageObject> &image, const Edit &edit)
{
    const CustomOrigins before = image->customWatermarkRectOrigins();
    edit();
    const CustomOrigins after = image->customWatermarkRectOrigins();
    if (before != after)
        edits.push_back({image, before, after});
}

} // namespace

ManualPositions::ManualPositions(StatusManager &status, int threads)
    : m_status(status)
    , m_threads(threads)
{
    connect(&m_job, &BackgroundJob::ended, this, &ManualPositions::finishedPaste);
}

void ManualPositions::place(const std::shared_ptr<ImageObject> &image, QPointF origin,
                            const std::shared_ptr<const WPreset> &preset, EditKind kind)
{
    PlacesEdits edits;
    record(edits, image, [&] { image->setCustomWatermarkRectOrigin(origin, preset); });
    if (!edits.empty())
        Q_EMIT edited(kind, edits);
}

void ManualPositions::reset(const ImageList &images, const WPreset *preset)
{
    PlacesEdits edits;
    for (const std::shared_ptr<ImageObject> &image : images) {
        record(edits, image, [&] {
            if (preset)
                image->resetCustomWatermarkRectOriginForWPreset(preset);
            else
                image->resetAllCustomWatermarkRectOrigins();
        });
    }
    if (!edits.empty())
        Q_EMIT edited(EditKind::Reset, edits);
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
    auto paste = std::make_unique<Paste>();
    paste->images = images;
    paste->replacesAll = !m_copyForAllPresets.empty();
    if (paste->replacesAll)
        paste->positions = m_copyForAllPresets;
    else if (currentPreset)
        paste->positions = {{currentPreset, *m_copyForCurrentPreset}};
    m_pastes.push_back(std::move(paste));
    if (m_pastes.size() == 1)
        startPaste();
}

void ManualPositions::startPaste()
{
    m_status.startOperation(StatusOperation::Pasting);
    // The first one stays in the queue until the end.
    m_job.start([this, &paste = *m_pastes.front()] {
        runPaste(paste);
        return true;
    });
}

/// Thread of the job.
void ManualPositions::runPaste(Paste &paste)
{
    LockedImagesWork work;
    work.images = paste.images;
    work.threads = m_threads;
    work.work = [&paste](const std::shared_ptr<ImageObject> &image, bool) {
        // Reads the headers of the file only.
        const Result<PhotoFacts> facts = image->readFacts();
        if (!facts)
            return;
        const QSizeF size = facts->pixelSize();
        PlacesEdits edits;
        record(edits, image, [&] {
            if (paste.replacesAll)
                image->resetAllCustomWatermarkRectOrigins();
            for (const Position &position : paste.positions) {
                image->setCustomWatermarkRectOrigin(
                    {position.relative.x() * size.width(), position.relative.y() * size.height()},
                    position.preset);
            }
        });
        const std::lock_guard lock(paste.mutex);
        paste.edits.insert(paste.edits.end(), edits.begin(), edits.end());
    };
    std::size_t done = 0;
    work.done = [&](const std::shared_ptr<ImageObject> &) {
        ++done;
        m_status.setProgress(static_cast<float>(done) / static_cast<float>(paste.images.size()),
                             StatusOperation::Pasting);
    };
    work.isStopped = [this] { return m_job.isCanceled(); };
    runOnLockedImages(work);
}

void ManualPositions::finishedPaste(BackgroundJob::End end)
{
    const std::unique_ptr<Paste> paste = std::move(m_pastes.front());
    m_pastes.pop_front();
    if (end == BackgroundJob::End::Canceled)
        m_pastes.clear();
    m_status.endOperation(StatusOperation::Pasting);
    if (!paste->edits.empty())
        Q_EMIT edited(EditKind::Paste, paste->edits);
    Q_EMIT pasteFinished();
    if (!m_pastes.empty() && !m_job.isRunning())
        startPaste();
}

} // namespace plexa
