// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "app/imagelist.h"
#include "watermark/wpreset.h"

#include <QObject>
#include <QPointF>

#include <deque>
#include <optional>

namespace plexa
{

class StatusManager;

/// Places to which watermarks were dragged, copied from one photo to put them on others. They are kept as
/// fractions of the photo's width and height, so that they fit photos of other sizes. Lives on the main
/// thread; pasting goes on in the background.
class ManualPositions final : public QObject
{
    Q_OBJECT

public:
    /// @param status   outlives this object
    /// @param threads  photos that are worked on at a time
    ManualPositions(StatusManager &status, int threads);

    static bool canCopyForPreset(const ImageObject &image, const WPreset *preset);
    static bool canCopyForPresets(const ImageObject &image, const WPresetList &presets);

    /// Each forgets what was copied before, also when there is nothing to copy.
    /// @param preset  null: there is none
    void copyForPreset(ImageObject &image, const WPreset *preset);
    void copyForPresets(ImageObject &image, const WPresetList &presets);

    /// Forgets the copy for all presets, or the one for the current preset.
    void purgeCopiedManualPositioning(bool all);
    bool hasCopy() const { return m_copyForCurrentPreset || !m_copyForAllPresets.empty(); }

    /// Puts what was copied on these photos, in the background. A copy for all presets takes the place of all
    /// positions of a photo, and goes before a copy for the current preset. While another pasting goes on,
    /// this one waits its turn.
    /// @param currentPreset  whom a copy for the current preset is for; null: nobody
    void pasteManualPositioning(const ImageList &images, const std::shared_ptr<const WPreset> &currentPreset);
    bool isPasting() const { return !m_pastes.empty(); }

    /// No further photo is begun; what is pasted stays. Any thread.
    void stopPastingSettings() { m_job.cancel(); }

Q_SIGNALS:
    void copyChanged();
    void pasteFinished();

private:
    struct Position {
        std::shared_ptr<const WPreset> preset;
        QPointF relative;
    };
    struct Paste {
        ImageList images;
        bool replacesAll = false;
        std::vector<Position> positions;
    };

    void startPaste();
    void runPaste(const Paste &paste);
    void finishedPaste(BackgroundJob::End end);

    StatusManager &m_status;
    const int m_threads;
    std::optional<QPointF> m_copyForCurrentPreset;
    std::vector<Position> m_copyForAllPresets;
    std::deque<Paste> m_pastes; // the first one runs
    BackgroundJob m_job;
};

} // namespace plexa
