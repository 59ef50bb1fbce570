// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appcontroller.h"

#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "presets/presetsstore.h"
#include "saving/savingsettings.h"

namespace plexa
{

AppController::AppController(const Services &services)
    : m_services(services)
    , m_appliedPresets(services.defaults)
    , m_presetCommands({services.store, m_appliedPresets, services.alerts, m_status})
    , m_wPresetEdits(
          services.store.wPresetList(), [this](const auto &...step) { m_history.record(step...); },
          [this] { return appliedPresetsNow(); })
    , m_savingPresetEdits(
          services.store.savingPresetList(), [this](const auto &...step) { m_history.record(step...); },
          [this] { return assignedSavingPresetsNow(); })
    , m_imageSet({services.photos, services.defaults, services.alerts, m_status, services.threads})
    , m_gathering(m_imageSet,
                  {services.photos, services.defaults, services.alerts, m_status, services.threads})
    , m_sorting(m_imageSet, m_status, services.threads)
    , m_positions(m_status, services.threads)
    , m_batchOperation(m_status, services.threads)
    , m_history({m_imageSet, m_gathering, m_appliedPresets, services.store, m_positions, m_batchOperation})
    , m_metadata({[this](const auto &...step) { m_history.record(step...); },
                  [this](const ImageList &images) { m_history.show(images); },
                  [this] { return *m_imageSet.images(); }})
    , m_exchange({services.photos, m_gathering, m_status, services.alerts, services.workspace, m_save})
    , m_save({m_status, services.alerts, services.defaults, services.threads})
{
    connectChanges();
    connectCommandState();
}

void AppController::connectChanges()
{
    connect(&m_batchOperation, &BatchImageOperation::finishedOperationForImage, this,
            [this](const std::shared_ptr<ImageObject> &image) {
                m_imageSet.refreshImageList(ImageSet::Refresh::Light);
                Q_EMIT imageOutdated(image);
                m_imageSet.forgetThumbnail(*image);
            });
    connect(&m_positions, &ManualPositions::pasteFinished, this, &AppController::previewOutdated);
    connect(&m_presetCommands, &PresetCommands::edited, &m_history, &UndoHistory::record);
    connect(&m_history, &UndoHistory::placesRestored, this, &AppController::previewOutdated);
    connect(&m_appliedPresets, &AppliedPresets::previewOutdated, this, &AppController::previewOutdated);

    connect(&m_history, &UndoHistory::changed, this, [this] {
        m_wPresetEdits.endRun();
        m_savingPresetEdits.endRun();
    });

    connect(&m_save, &BatchSave::finished, &m_exchange, &CompanionExchange::saveEnded);
    connect(&m_save, &BatchSave::finished, this, [this] {
        if (!m_waitingFiles.isEmpty())
            addFiles(std::exchange(m_waitingFiles, {}));
    });
    connect(&m_services.store, &PresetsStore::quickWPresetChanged, this, &AppController::useQuickPreset);
    useQuickPreset();
    connect(&m_services.store.wPresetList(), &PresetListSignals::aboutToRemove, this,
            [this](int first, int last) {
                const WPresetList &presets = m_services.store.wPresets();
                for (int row = first; row <= last; ++row)
                    m_appliedPresets.removeFromApplied(presets[static_cast<std::size_t>(row)].get());
            });
}

void AppController::connectCommandState()
{
    const auto changed = &AppController::commandStateChanged;
    connect(&m_batchOperation, &BatchImageOperation::operationFinished, this, changed);
    connect(&m_sorting, &ImageSorting::finished, this, changed);
    connect(&m_positions, &ManualPositions::copyChanged, this, changed);
    connect(&m_positions, &ManualPositions::pasteFinished, this, changed);
    connect(&m_positions, &ManualPositions::edited, this, changed);
    connect(&m_history, &UndoHistory::changed, this, changed);
    connect(&m_presetCommands, &PresetCommands::loadedWPresetChanged, this, changed);
    for (const auto signal : {&PresetListSignals::inserted, &PresetListSignals::removed})
        connect(&m_services.store.wPresetList(), signal, this, changed);
    connect(&m_appliedPresets, &AppliedPresets::appliedChanged, this, changed);
    connect(&m_appliedPresets, &AppliedPresets::selectedRowsChanged, this, changed);
    connect(&m_appliedPresets, &AppliedPresets::modeChanged, this, changed);
    // An edit may make a preset invalid.
    connect(&m_appliedPresets, &AppliedPresets::previewOutdated, this, changed);
    connect(&m_appliedPresets, &AppliedPresets::quickWPresetChanged, this, changed);
    connect(&m_imageSet.selection(), &ImageSelection::selectionChanged, this, changed);
    connect(&m_imageSet, &ImageSet::imageListModeChanged, this, changed);
    connect(&m_imageSet, &ImageSet::imagesInserted, this, changed);
    connect(&m_imageSet, &ImageSet::imagesRemoved, this, changed);
    connect(&m_imageSet, &ImageSet::listReset, this, changed);
    connect(&m_save, &BatchSave::started, this, changed);
    connect(&m_save, &BatchSave::finished, this, changed);
}

void AppController::useQuickPreset()
{
    m_appliedPresets.setQuickWPreset(m_services.store.quickWPreset());
}

/// A removed watermark preset is no longer applied.
std::function<void()> AppController::appliedPresetsNow()
{
    return [this, applied = m_appliedPresets.applied()] {
        if (m_appliedPresets.wPresetsApplied() != applied.presets)
            m_appliedPresets.restoreApplied(applied);
    };
}

/// A removed saving preset is no longer assigned to watermark presets.
std::function<void()> AppController::assignedSavingPresetsNow()
{
    WPresetList presets = m_services.store.wPresets();
    presets.push_back(m_services.store.quickWPreset());
    std::vector<std::pair<std::shared_ptr<WPreset>, SavingPresetPtr>> assigned;
    for (const std::shared_ptr<WPreset> &preset : presets) {
        if (preset->assignedSavingPreset())
            assigned.emplace_back(preset, preset->assignedSavingPreset());
    }
    return [assigned = std::move(assigned)] {
        for (const auto &[preset, savingPreset] : assigned) {
            if (!preset->assignedSavingPreset())
                preset->setAssignedSavingPreset(savingPreset);
        }
    };
}

void AppController::addFiles(const QStringList &paths)
{
    if (m_save.isSavingInProgress()) {
        m_waitingFiles += paths;
        return;
    }
    m_gathering.scanImagesAtPaths(m_presetCommands.importPresetsFiles(paths));
}

void AppController::readPresets()
{
    m_services.store.readAll();
    m_appliedPresets.restoreAppliedPresets(m_services.store.wPresets());
}

void AppController::rememberPresets()
{
    m_services.store.saveAll();
    m_appliedPresets.rememberAppliedPresets();
}

CommandState AppController::commandState() const
{
    const std::shared_ptr<WPreset> current = m_appliedPresets.currentWPreset();
    const WPresetList effective = m_appliedPresets.effectivePresets();
    CommandState state;
    state.isSavingInProgress = m_save.isSavingInProgress();
    state.isInBrowserMode = m_imageSet.imageListIsInBrowserMode();
    state.hasCurrentBatchOperation = m_batchOperation.isRunning();
    state.isSorting = m_sorting.isRunning();
    state.isPasting = m_positions.isPasting();
    state.canUndo = m_history.canUndo();
    state.canRedo = m_history.canRedo();
    state.hasCopiedPositions = m_positions.hasCopy();
    state.hasLoadedWPreset = m_presetCommands.loadedWPreset() != nullptr;
    state.hasCurrentWPreset = current != nullptr;
    state.nSelected = m_imageSet.selection().selectedIndexes().size();
    state.nShown = static_cast<qsizetype>(m_imageSet.imagesFiltered()->size());
    state.nEffectivePresets = static_cast<qsizetype>(effective.size());
    state.nAppliedPresets = static_cast<qsizetype>(m_appliedPresets.wPresetsApplied().size());
    state.nSelectedApplied = m_appliedPresets.selectedRows().size();
    const IndexList &photos = m_imageSet.selection().selectedIndexes();
    const IndexList &presets = m_appliedPresets.selectedRows();
    state.canMovePhotosUp = canStep(photos, state.nShown, Step::Up);
    state.canMovePhotosDown = canStep(photos, state.nShown, Step::Down);
    state.canMovePresetsUp = canStep(presets, state.nAppliedPresets, Step::Up);
    state.canMovePresetsDown = canStep(presets, state.nAppliedPresets, Step::Down);
    state.browserZoomFactor = m_services.defaults.floatForKey(settings::imageBrowserZoomFactor);
    if (state.nSelected == 1) {
        const std::shared_ptr<ImageObject> image = m_imageSet.selectedImages().front();
        state.canCopyForCurrentPreset = ManualPositions::canCopyForPreset(*image, current.get());
        state.canCopyForAllPresets = ManualPositions::canCopyForPresets(*image, effective);
    }
    return state;
}

ImageList AppController::imagesOf(Photos photos) const
{
    return photos == Photos::Selected ? m_imageSet.selectedImages() : *m_imageSet.imagesFiltered();
}

BatchSave::Order AppController::orderFor(const ImageList &photos)
{
    return {photos, m_appliedPresets.effectivePresetsNow(), m_appliedPresets.isInSingleMode(),
            m_services.store.quickSavingPreset()->values()};
}

void AppController::openInCompanionApplication(Photos photos)
{
    m_exchange.openInCompanionApplication(orderFor(imagesOf(photos)));
}

void AppController::saveImages(Photos photos)
{
    const ImageList images = imagesOf(photos);
    if (!images.empty() && !m_appliedPresets.effectivePresets().empty() && !m_save.isSavingInProgress())
        Q_EMIT savePanelWanted(images);
}

void AppController::didEndSaveMultiplePanel(const ImageList &photos)
{
    SavingPreset &preset = *m_services.store.quickSavingPreset();
    SavingPresetValues values = preset.values();
    completeFilenameTokens(values, m_services.alerts);
    preset.setFilenameTokens(values.filenameTokens);
    startSaving(photos);
}

bool AppController::startSaving(const ImageList &photos)
{
    return m_save.start(orderFor(photos));
}

void AppController::startBatchOperation(ImageTransform operation)
{
    if (m_batchOperation.performOperation(operation, m_imageSet.selectedImages()))
        Q_EMIT commandStateChanged();
}

void AppController::copyManualPositioning(Presets presets)
{
    const ImageList selected = m_imageSet.selectedImages();
    if (selected.size() != 1)
        return;
    if (presets == Presets::All)
        m_positions.copyForPresets(*selected.front(), m_appliedPresets.effectivePresets());
    else
        m_positions.copyForPreset(*selected.front(), m_appliedPresets.currentWPreset().get());
}

void AppController::pasteManualPositioning()
{
    m_positions.pasteManualPositioning(m_imageSet.selectedImages(), m_appliedPresets.currentWPreset());
}

void AppController::placeWatermark(const std::shared_ptr<ImageObject> &image, QPointF origin,
                                   ManualPositions::EditKind kind)
{
    if (const std::shared_ptr<WPreset> current = m_appliedPresets.currentWPreset())
        m_positions.place(image, origin, current, kind);
    Q_EMIT previewOutdated(); // also where a drag ends at its beginning
}

void AppController::resetManualPositioning(Presets presets)
{
    const std::shared_ptr<WPreset> current = m_appliedPresets.currentWPreset();
    if (presets == Presets::All)
        m_positions.reset(m_imageSet.selectedImages(), nullptr);
    else if (current)
        m_positions.reset(m_imageSet.selectedImages(), current.get());
    Q_EMIT previewOutdated();
}

void AppController::stopAllOperations()
{
    m_gathering.stopImportingImages();
    m_sorting.stop();
    m_presetCommands.stopImporting();
    m_positions.stopPastingSettings();
    m_batchOperation.abortOperation();
    m_save.terminateOperation();
    Q_EMIT stopAllWanted();
}

} // namespace plexa
