// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/appliedpresets.h"
#include "app/batchimageoperation.h"
#include "app/batchsave.h"
#include "app/commandrules.h"
#include "app/companionexchange.h"
#include "app/imagegathering.h"
#include "app/imageset.h"
#include "app/imagesorting.h"
#include "app/manualpositions.h"
#include "app/metadataediting.h"
#include "app/presetcommands.h"
#include "app/presetedits.h"
#include "app/statusmanager.h"
#include "app/undohistory.h"
#include "platform/workspace.h"

namespace plexa
{

class PresetsStore;

/// The actions of the main window's commands, without the window: owns and connects the working set, the
/// presets that are drawn on it, and the operations on its photos. Main thread.
class AppController final : public QObject
{
    Q_OBJECT

public:
    struct Services {
        const PhotoServices &photos;
        UserDefaults &defaults;
        Alerts &alerts; ///< may be called on any thread
        PresetsStore &store;
        int threads; ///< photos that are processed at a time
        Workspace &workspace = desktopWorkspace();
    };

    /// @param services  outlive this object
    explicit AppController(const Services &services);

    StatusManager &statusManager() { return m_status; }
    ImageSet &imageSet() { return m_imageSet; }
    ImageGathering &gathering() { return m_gathering; }
    ImageSorting &sorting() { return m_sorting; }
    AppliedPresets &appliedPresets() { return m_appliedPresets; }
    ManualPositions &manualPositions() { return m_positions; }
    /// The metadata of the photos that the metadata window shows.
    MetadataEditing &metadataEditing() { return m_metadata; }
    UndoHistory &undoHistory() { return m_history; }
    BatchSave &batchSave() { return m_save; }
    CompanionExchange &companionExchange() { return m_exchange; }
    PresetsStore &presetsStore() { return m_services.store; }
    PresetCommands &presetCommands() { return m_presetCommands; }
    /// The changes of the user's lists of presets, which undoHistory() undoes.
    WPresetEdits &wPresetEdits() { return m_wPresetEdits; }
    SavingPresetEdits &savingPresetEdits() { return m_savingPresetEdits; }
    const PhotoServices &photoServices() const { return m_services.photos; }

    /// Adds photos and folders to the working set, and the presets of preset files to the user's. Both happen
    /// in the background; during a save, after its end.
    void addFiles(const QStringList &paths);

    /// Reads the presets and applies those of the last time, if the settings ask for it.
    void readPresets();

    /// Saves the presets and the names of the applied ones.
    void rememberPresets();

    /// The state that the rules of the commands depend on, except for the selection in lists of a window.
    CommandState commandState() const;

    enum class Photos { Selected, All };
    /// Asks for the save panel for these photos, unless none or no watermark is there.
    void saveImages(Photos photos);
    /// The user has accepted the save panel for these photos.
    void didEndSaveMultiplePanel(const ImageList &photos);

    /// Saves copies of these photos with the present presets and settings. Asks nothing before it returns.
    /// @return false, and nothing happens, while another save runs or without photos or presets
    bool startSaving(const ImageList &photos);

    /// Opens watermarked copies of these photos in the companion application, unless another save runs or
    /// none or no watermark is there.
    void openInCompanionApplication(Photos photos);

    /// Rotates or mirrors the selected photos, unless another such operation runs.
    void startBatchOperation(ImageTransform operation);

    enum class Presets { Current, All };
    /// Copies the positions of the selected photo, if there is exactly one, for pasteManualPositioning().
    void copyManualPositioning(Presets presets);
    /// Sets the copied positions on the selected photos.
    void pasteManualPositioning();
    /// As ManualPositions::place() with the current preset.
    void placeWatermark(const std::shared_ptr<ImageObject> &image, QPointF origin,
                        ManualPositions::EditKind kind);
    /// Removes the positions chosen by hand from the selected photos.
    void resetManualPositioning(Presets presets);

    /// The stop button: everything in the background ends at its next photo.
    void stopAllOperations();

Q_SIGNALS:
    void savePanelWanted(const plexa::ImageList &photos);
    /// The preview has to be drawn again.
    void previewOutdated();
    /// The picture of one photo has changed.
    void imageOutdated(const std::shared_ptr<plexa::ImageObject> &image);
    /// stopAllOperations() was called.
    void stopAllWanted();
    /// Something in commandState() has changed.
    void commandStateChanged();

private:
    void connectChanges();
    void connectCommandState();
    void useQuickPreset();
    ImageList imagesOf(Photos photos) const;
    BatchSave::Order orderFor(const ImageList &photos);
    std::function<void()> appliedPresetsNow();
    std::function<void()> assignedSavingPresetsNow();

    const Services m_services;
    QStringList m_waitingFiles; // for the end of a save
    StatusManager m_status;
    AppliedPresets m_appliedPresets;
    PresetCommands m_presetCommands;
    WPresetEdits m_wPresetEdits;
    SavingPresetEdits m_savingPresetEdits;
    ImageSet m_imageSet;
    ImageGathering m_gathering;
    ImageSorting m_sorting;
    ManualPositions m_positions;
    BatchImageOperation m_batchOperation;
    UndoHistory m_history;
    MetadataEditing m_metadata;
    CompanionExchange m_exchange;
    BatchSave m_save; // handles events when it is destroyed: before the others
};

} // namespace plexa
