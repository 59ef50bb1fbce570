// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/appliedpresets.h"
#include "app/batchimageoperation.h"
#include "app/batchsave.h"
#include "app/commandrules.h"
#include "app/imagegathering.h"
#include "app/imageset.h"
#include "app/manualpositions.h"
#include "app/presetcommands.h"
#include "app/statusmanager.h"

namespace plexa
{

class PresetsStore;

/// What the commands of the main window do, without the window: it owns the working set, the presets that are
/// drawn on it, and the operations on its photos, and connects them. Main thread.
class AppController final : public QObject
{
    Q_OBJECT

public:
    struct Services {
        const PhotoServices &photos;
        UserDefaults &defaults;
        Alerts &alerts; ///< may be called on any thread
        PresetsStore &store;
        int threads; ///< photos that are worked on at a time
    };

    /// @param services  outlive this object
    explicit AppController(const Services &services);

    StatusManager &statusManager() { return m_status; }
    ImageSet &imageSet() { return m_imageSet; }
    ImageGathering &gathering() { return m_gathering; }
    AppliedPresets &appliedPresets() { return m_appliedPresets; }
    ManualPositions &manualPositions() { return m_positions; }
    BatchSave &batchSave() { return m_save; }
    PresetsStore &presetsStore() { return m_services.store; }
    PresetCommands &presetCommands() { return m_presetCommands; }

    /// Reads the presets at start and, if the user wants that, applies those of the last time.
    void readPresets();

    /// Saves, when the window closes, the presets and the names of the applied ones.
    void rememberPresets();

    /// The state that the rules of the commands depend on, but for what is selected in the lists of a window.
    CommandState commandState() const;

    /// Saves copies of these photos with the presets, the saving preset and the settings of now.
    /// @return false, and nothing happens, while another save runs or without photos or presets
    bool startSaving(const ImageList &photos);

    /// Rotates or mirrors the selected photos; nothing while another such operation runs.
    void startBatchOperation(ImageTransform operation);

    enum class Presets { Current, All };
    /// Copies the positions of the one selected photo; nothing when there is not exactly one.
    void copyManualPositioning(Presets presets);
    void pasteManualPositioning();
    void resetManualPositioning(Presets presets);

    /// The stop button: everything in the background ends at its next photo.
    void stopAllOperations();

Q_SIGNALS:
    /// Positions, presets or rotated photos have changed: the preview has to be drawn again.
    void previewOutdated();
    /// One photo looks different.
    void imageOutdated(const std::shared_ptr<plexa::ImageObject> &image);
    /// The user wants everything that runs in the background to end.
    void stopAllWanted();
    /// Something in commandState() has changed.
    void commandStateChanged();

private:
    void connectChanges();
    void useQuickPreset();

    const Services m_services;
    StatusManager m_status;
    AppliedPresets m_appliedPresets;
    PresetCommands m_presetCommands;
    ImageSet m_imageSet;
    ImageGathering m_gathering;
    ManualPositions m_positions;
    BatchImageOperation m_batchOperation;
    BatchSave m_save; // handles events when it is destroyed: before the others
};

} // namespace plexa
