// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/appliedpresets.h"
#include "app/batchimageoperation.h"
#include "app/commandrules.h"
#include "app/imageset.h"
#include "app/manualpositions.h"
#include "app/statusmanager.h"
#include "platform/result.h"

#include <functional>

namespace plexa
{

class PresetsStore;

/// The batch save as the commands see it.
struct SavingControl {
    std::function<bool()> isSavingInProgress;
    std::function<void()> terminateOperation;
};

/// What the commands of the main window do, without the window: it brings together the working set, the
/// presets that are drawn on it, and the operations on the selected photos. Main thread.
class AppController final : public QObject
{
    Q_OBJECT

public:
    struct Services {
        const PhotoServices &photos;
        UserDefaults &defaults;
        Alerts &alerts;
        int threads; ///< photos that are worked on at a time
    };

    /// @param services  outlive this object
    explicit AppController(const Services &services);

    StatusManager &statusManager() { return m_status; }
    ImageSet &imageSet() { return m_imageSet; }
    AppliedPresets &appliedPresets() { return m_appliedPresets; }
    ManualPositions &manualPositions() { return m_positions; }

    /// Who saves, as soon as there is somebody.
    void setSaving(const SavingControl &saving) { m_saving = saving; }
    bool isSavingInProgress() const { return m_saving.isSavingInProgress && m_saving.isSavingInProgress(); }

    /// What a start does with presets: reads them, makes the quick preset of the store the one of single
    /// mode, also when it is replaced, and applies what was applied last time, if the user wants that.
    /// @param store  outlives this object
    void readPresets(PresetsStore &store);

    /// Adds the presets of a file to the user's and keeps them; tells the user what came of it. Nothing
    /// before readPresets().
    /// @return whether the file is one of presets, going by its name
    bool importPresetsFile(const QString &path);

    /// Adds a copy of the quick preset to the user's and keeps it; tells the user where it cannot be kept.
    /// Nothing before readPresets().
    void saveQuickAsWPreset();

    /// Saves, when the window closes, the presets and the names of the applied ones.
    void rememberPresets();

    /// What the rules for menus and buttons look at.
    /// @param browserZoomFactor  of the grid, which knows it
    CommandState commandState(float browserZoomFactor) const;

    /// Turns or mirrors the selected photos; nothing while another such operation runs.
    void startBatchOperation(ImageTransform operation);

    enum class Presets { Current, All };
    /// Copies the positions of the one selected photo; nothing when there is not exactly one.
    void copyManualPositioning(Presets presets);
    void pasteManualPositioning();
    void resetManualPositioning(Presets presets);

    /// The stop button: all that runs in the background ends at its next photo.
    void stopAllOperations();
    void abortSaving();

Q_SIGNALS:
    /// Positions have changed, or presets, or turned photos: what is shown has to be drawn anew.
    void previewOutdated();
    /// One photo looks different.
    void imageOutdated(const std::shared_ptr<plexa::ImageObject> &image);
    /// The user wants everything that runs in the background to end.
    void stopAllWanted();
    /// Something that commandState() tells of has changed.
    void commandStateChanged();

private:
    void connectAll();
    void tellUnsaved(const Error &error, const QStringList &more = {});

    SavingControl m_saving;
    Alerts &m_alerts;
    PresetsStore *m_store = nullptr;
    StatusManager m_status;
    AppliedPresets m_appliedPresets;
    ImageSet m_imageSet;
    ManualPositions m_positions;
    BatchImageOperation m_batchOperation;
};

} // namespace plexa
