// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "app/imagelist.h"
#include "watermark/wpreset.h"

#include <QObject>
#include <QPointF>

#include <deque>
#include <mutex>
#include <optional>

namespace plexa
{

class StatusManager;

/// The places of one photo before and after an edit.
struct PlacesEdit {
    std::shared_ptr<ImageObject> image;
    CustomOrigins before;
    CustomOrigins after;
};
using PlacesEdits = std::vector<PlacesEdit>;

/// Changes the places of watermarks that are chosen by hand, and copies them from one photo to others, as
/// fractions of the photo's width and height. Main thread; pasting runs in the background.
class ManualPositions final : public QObject
{
    Q_OBJECT

public:
    /// @param status   outlives this object
    /// @param threads  photos that are processed at a time
    ManualPositions(StatusManager &status, int threads);

    enum class EditKind { Drag, Keys, Paste, Reset };

    /// @param origin  of the watermark's rectangle: photo pixels, origin at the bottom left
    /// @param kind    Drag, or Keys for one step of a movement with the keyboard
    void place(const std::shared_ptr<ImageObject> &image, QPointF origin,
               const std::shared_ptr<const WPreset> &preset, EditKind kind);
    /// Removes the places of one preset, or of all of them for null.
    void reset(const ImageList &images, const WPreset *preset);

    static bool canCopyForPreset(const ImageObject &image, const WPreset *preset);
    static bool canCopyForPresets(const ImageObject &image, const WPresetList &presets);

    /// Both discard the former copy, even if there is nothing to copy.
    /// @param preset  may be null
    void copyForPreset(ImageObject &image, const WPreset *preset);
    void copyForPresets(ImageObject &image, const WPresetList &presets);

    /// Discards the copy for all presets, or the one for the current preset.
    void purgeCopiedManualPositioning(bool all);
    bool hasCopy() const { return m_copyForCurrentPreset || !m_copyForAllPresets.empty(); }

    /// Pastes the copy to these photos in the background, after pastings that were begun before. A copy for
    /// all presets replaces all positions of a photo.
    /// @param currentPreset  gets a copy for the current preset; may be null
    void pasteManualPositioning(const ImageList &images, const std::shared_ptr<const WPreset> &currentPreset);
    bool isPasting() const { return !m_pastes.empty(); }

    /// No further photo is begun. Any thread.
    void stopPastingSettings() { m_job.cancel(); }

Q_SIGNALS:
    void copyChanged();
    /// The user has changed places of these photos. For a paste, sent before pasteFinished().
    void edited(plexa::ManualPositions::EditKind kind, const plexa::PlacesEdits &edits);
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
        std::mutex mutex;
        PlacesEdits edits; // guarded by mutex
    };

    void startPaste();
    void runPaste(Paste &paste);
    void finishedPaste(BackgroundJob::End end);

    StatusManager &m_status;
    const int m_threads;
    std::optional<QPointF> m_copyForCurrentPreset;
    std::vector<Position> m_copyForAllPresets;
    std::deque<std::unique_ptr<Paste>> m_pastes; // the first one runs
    BackgroundJob m_job;
};

} // namespace plexa
