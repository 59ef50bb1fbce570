// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appcontroller.h"

#include "platform/alerts.h"
#include "platform/filenames.h"
#include "presets/presetsstore.h"

#include <QFileInfo>

namespace plexa
{

namespace
{

void tell(Alerts &alerts, Alert::Style style, const QString &title, const QStringList &sentences)
{
    Alert alert;
    alert.style = style;
    alert.title = title;
    alert.text = sentences.join(u'\n');
    alerts.run(alert);
}

} // namespace

AppController::AppController(const Services &services)
    : m_alerts(services.alerts)
    , m_appliedPresets(services.defaults)
    , m_imageSet({services.photos, services.defaults, services.alerts, m_status, services.threads})
    , m_positions(m_status, services.threads)
    , m_batchOperation(m_status, services.threads)
{
    connectAll();
}

void AppController::connectAll()
{
    connect(&m_batchOperation, &BatchImageOperation::finishedOperationForImage, this,
            [this](const std::shared_ptr<ImageObject> &image) {
                m_imageSet.refreshImageList(ImageSet::Refresh::Light);
                Q_EMIT imageOutdated(image);
                m_imageSet.forgetThumbnail(*image);
            });
    connect(&m_positions, &ManualPositions::pasteFinished, this, &AppController::previewOutdated);
    connect(&m_appliedPresets, &AppliedPresets::previewOutdated, this, &AppController::previewOutdated);

    const auto changed = &AppController::commandStateChanged;
    connect(&m_batchOperation, &BatchImageOperation::operationFinished, this, changed);
    connect(&m_positions, &ManualPositions::copyChanged, this, changed);
    connect(&m_positions, &ManualPositions::pasteFinished, this, changed);
    connect(&m_appliedPresets, &AppliedPresets::appliedChanged, this, changed);
    connect(&m_appliedPresets, &AppliedPresets::selectedRowsChanged, this, changed);
    connect(&m_appliedPresets, &AppliedPresets::modeChanged, this, changed);
    connect(&m_appliedPresets, &AppliedPresets::previewOutdated, this,
            changed); // an edit may make it invalid
    connect(&m_appliedPresets, &AppliedPresets::quickWPresetChanged, this, changed);
    connect(&m_imageSet.selection(), &ImageSelection::selectionChanged, this, changed);
    connect(&m_imageSet, &ImageSet::imageListModeChanged, this, changed);
    connect(&m_imageSet, &ImageSet::imagesInserted, this, changed);
    connect(&m_imageSet, &ImageSet::imagesRemoved, this, changed);
    connect(&m_imageSet, &ImageSet::listReset, this, changed);
}

void AppController::readPresets(PresetsStore &store)
{
    m_store = &store;
    store.readAll();
    const auto takeQuickPreset = [this] { m_appliedPresets.setQuickWPreset(m_store->quickWPreset()); };
    takeQuickPreset();
    connect(&store, &PresetsStore::quickWPresetChanged, this, takeQuickPreset);
    connect(&store.wPresetList(), &PresetListSignals::aboutToRemove, this, [this](int first, int last) {
        for (int row = first; row <= last; ++row)
            m_appliedPresets.removeFromApplied(m_store->wPresets()[static_cast<std::size_t>(row)].get());
    });
    m_appliedPresets.restoreAppliedPresets(store.wPresets());
}

bool AppController::importPresetsFile(const QString &path)
{
    using Kind = PresetsStore::Kind;
    const QString suffix = fileExtensionOf(path).toLower();
    if (suffix != QLatin1String("pxwpr") && suffix != QLatin1String("pxspr"))
        return false;
    if (!m_store)
        return true;
    const Kind kind = suffix == QLatin1String("pxwpr") ? Kind::Watermark : Kind::Saving;
    const auto imported = m_store->importPresetsFromFile(path, kind);
    if (!imported)
        return true; // the store has told the user
    const Result<void> saved = kind == Kind::Watermark ? m_store->saveWPresets(PresetsStore::Slot::List)
                                                       : m_store->saveSavingPresets(PresetsStore::Slot::List);
    if (!saved) {
        tellUnsaved(saved.error(), imported->notes);
        return true;
    }
    const QString added = imported->count == 1
                              ? tr("One preset of \"%1\" was added to yours.")
                              : tr("%n presets of \"%1\" were added to yours.", nullptr, imported->count);
    tell(m_alerts, imported->notes.isEmpty() ? Alert::Style::Informational : Alert::Style::Warning,
         tr("Presets imported"), QStringList(added.arg(QFileInfo(path).fileName())) + imported->notes);
    return true;
}

void AppController::saveQuickAsWPreset()
{
    if (!m_store)
        return;
    m_store->saveQuickAsWPreset();
    if (const Result<void> saved = m_store->saveWPresets(PresetsStore::Slot::List); !saved)
        tellUnsaved(saved.error());
}

void AppController::tellUnsaved(const Error &error, const QStringList &more)
{
    tell(m_alerts, Alert::Style::Warning, tr("Cannot save the presets"),
         QStringList(PresetsStore::unsavedText(error)) + more);
}

void AppController::rememberPresets()
{
    if (m_store) {
        m_store->saveWPresets(PresetsStore::Slot::Quick);
        m_store->saveSavingPresets(PresetsStore::Slot::Quick);
        m_store->saveChangedLists();
    }
    m_appliedPresets.rememberAppliedPresets();
}

CommandState AppController::commandState(float browserZoomFactor) const
{
    const std::shared_ptr<WPreset> current = m_appliedPresets.currentWPreset();
    const WPresetList effective = m_appliedPresets.effectivePresets();
    CommandState state;
    state.isSavingInProgress = isSavingInProgress();
    state.isInBrowserMode = m_imageSet.imageListIsInBrowserMode();
    state.hasCurrentBatchOperation = m_batchOperation.isRunning();
    state.hasCopiedPositions = m_positions.hasCopy();
    state.hasCurrentWPreset = current != nullptr;
    state.nSelected = m_imageSet.selection().selectedIndexes().size();
    state.nShown = static_cast<qsizetype>(m_imageSet.imagesFiltered()->size());
    state.nEffectivePresets = static_cast<qsizetype>(effective.size());
    state.nAppliedPresets = static_cast<qsizetype>(m_appliedPresets.wPresetsApplied().size());
    state.browserZoomFactor = browserZoomFactor;
    if (state.nSelected == 1) {
        const std::shared_ptr<ImageObject> image = m_imageSet.selectedImages().front();
        state.canCopyForCurrentPreset = ManualPositions::canCopyForPreset(*image, current.get());
        state.canCopyForAllPresets = ManualPositions::canCopyForPresets(*image, effective);
    }
    return state;
}

void AppController::startBatchOperation(ImageTransform operation)
{
    if (m_batchOperation.performOperation(static_cast<int>(operation), m_imageSet.selectedImages()))
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

void AppController::resetManualPositioning(Presets presets)
{
    const std::shared_ptr<WPreset> current = m_appliedPresets.currentWPreset();
    for (const std::shared_ptr<ImageObject> &image : m_imageSet.selectedImages()) {
        if (presets == Presets::All)
            image->resetAllCustomWatermarkRectOrigins();
        else if (current)
            image->resetCustomWatermarkRectOriginForWPreset(current.get());
    }
    Q_EMIT previewOutdated();
    Q_EMIT commandStateChanged();
}

void AppController::stopAllOperations()
{
    m_imageSet.stopImportingImages();
    m_positions.stopPastingSettings();
    m_batchOperation.abortOperation();
    abortSaving();
    Q_EMIT stopAllWanted();
}

void AppController::abortSaving()
{
    if (m_saving.terminateOperation)
        m_saving.terminateOperation();
}

} // namespace plexa
