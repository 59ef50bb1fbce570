// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/presetcommands.h"

#include "app/appliedpresets.h"
#include "app/statusmanager.h"
#include "platform/alerts.h"
#include "platform/filenames.h"
#include "presets/presetsfilereading.h"
#include "presets/presetsstore.h"

#include <QFileInfo>

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

namespace plexa
{

namespace
{

using Kind = PresetsStore::Kind;

/// By the file's suffix; none if it is not a preset file.
std::optional<Kind> kindOf(const QString &path)
{
    const QString suffix = fileExtensionOf(path).toLower();
    if (suffix == QLatin1String("pxwpr"))
        return Kind::Watermark;
    return suffix == QLatin1String("pxspr") ? std::optional(Kind::Saving) : std::nullopt;
}

void report(Alerts &alerts, Alert::Style style, const QString &title, const QStringList &sentences)
{
    alerts.run({.style = style, .title = title, .text = sentences.join(u'\n')});
}

} // namespace

PresetCommands::PresetCommands(const Services &services)
    : m_services(services)
{
    connect(&m_job, &BackgroundJob::ended, this, &PresetCommands::readingEnded);
}

QStringList PresetCommands::importPresetsFiles(const QStringList &paths)
{
    QStringList others;
    for (const QString &path : paths) {
        if (const std::optional<Kind> kind = kindOf(path))
            m_waiting.append({path, *kind});
        else
            others.append(path);
    }
    startReading();
    return others;
}

void PresetCommands::importPresetsFile(const QString &path, Kind kind)
{
    m_waiting.append({path, kind});
    startReading();
}

void PresetCommands::startReading()
{
    if (m_waiting.isEmpty() || std::exchange(m_isImporting, true))
        return;
    m_nRead = 0;
    m_services.status.startOperation(StatusOperation::ImportingPresets);
    readNext();
}

void PresetCommands::stopImporting()
{
    m_waiting.clear();
    m_job.cancel();
}

void PresetCommands::readNext()
{
    if (m_waiting.isEmpty()) {
        m_isImporting = false;
        m_services.status.endOperation(StatusOperation::ImportingPresets);
        Q_EMIT importFinished();
        return;
    }
    m_file = m_waiting.takeFirst();
    const float files = m_nRead + 1 + static_cast<float>(m_waiting.size());
    m_job.start([this, file = m_file, before = m_nRead, files, owner = thread()] {
        const auto progress = [&](float share) {
            m_services.status.setProgress((before + share) / files, StatusOperation::ImportingPresets);
            return !m_job.isCanceled();
        };
        try {
            const auto reading = std::make_shared<PresetsFileReading>(
                readForeignPresetsFile(file.path, file.kind == Kind::Watermark, progress));
            reading->moveToThread(owner);
            m_job.post([this, reading] { m_reading = reading; });
            return true;
        } catch (const std::bad_alloc &) {
            return false;
        }
    });
}

void PresetCommands::readingEnded(BackgroundJob::End end)
{
    const std::shared_ptr<PresetsFileReading> reading = std::move(m_reading);
    ++m_nRead;
    if (end == BackgroundJob::End::Done)
        add(m_file, *reading);
    else if (end == BackgroundJob::End::Failed)
        report(m_services.alerts, Alert::Style::Warning, tr("Presets import failed"),
               {tr("There is not enough memory for \"%1\".").arg(QFileInfo(m_file.path).fileName())});
    readNext();
}

void PresetCommands::add(const File &file, const PresetsFileReading &reading)
{
    PresetsStore &store = m_services.store;
    std::optional<PresetsStore::Imported> imported;
    const auto import = [&](auto &list) {
        const auto before = list.presets();
        imported = store.importPresets(reading, file.kind);
        const auto set = [&list](const auto &presets) {
            return [&list, presets] {
                list.restore(presets);
                return true;
            };
        };
        if (list.presets() != before)
            Q_EMIT edited(tr("Import Presets"), set(before), set(list.presets()));
    };
    if (file.kind == Kind::Watermark)
        import(store.wPresetList());
    else
        import(store.savingPresetList());
    if (!imported) // the store has reported it
        return;
    const Result<void> saved = file.kind == Kind::Watermark
                                   ? store.saveWPresets(PresetsStore::Slot::List)
                                   : store.saveSavingPresets(PresetsStore::Slot::List);
    if (!saved) {
        reportUnsaved(saved.error(), imported->notes);
        return;
    }
    const QString added = imported->count == 1
                              ? tr("One preset of \"%1\" was added to yours.")
                              : tr("%n presets of \"%1\" were added to yours.", nullptr, imported->count);
    report(m_services.alerts, imported->notes.isEmpty() ? Alert::Style::Informational : Alert::Style::Warning,
           tr("Presets imported"), QStringList(added.arg(QFileInfo(file.path).fileName())) + imported->notes);
}

bool PresetCommands::hasWPreset(const std::shared_ptr<WPreset> &preset) const
{
    const WPresetList &all = m_services.store.wPresets();
    return preset && std::find(all.begin(), all.end(), preset) != all.end();
}

std::shared_ptr<WPreset> PresetCommands::loadedWPreset() const
{
    std::shared_ptr<WPreset> loaded = m_loadedWPreset.lock();
    return hasWPreset(loaded) ? loaded : nullptr;
}

void PresetCommands::setLoaded(const std::shared_ptr<WPreset> &preset)
{
    m_loadedWPreset = preset;
    Q_EMIT loadedWPresetChanged();
}

std::shared_ptr<WPreset> PresetCommands::saveQuickAsWPreset()
{
    PresetsStore &store = m_services.store;
    store.saveQuickAsWPreset();
    const std::shared_ptr<WPreset> saved = store.wPresets().back();
    const std::shared_ptr<WPreset> before = loadedWPreset();
    setLoaded(saved);
    saveWPresets();
    Q_EMIT edited(
        tr("Save as New Preset"),
        [this, saved, before] {
            if (!hasWPreset(saved))
                return false;
            const WPresetList &all = m_services.store.wPresets();
            const auto row = static_cast<int>(std::find(all.begin(), all.end(), saved) - all.begin());
            m_services.store.wPresetList().remove({row});
            setLoaded(before);
            return true;
        },
        [this, saved] {
            m_services.store.wPresetList().append({saved});
            setLoaded(saved);
            return true;
        });
    return saved;
}

void PresetCommands::loadWPreset(const std::shared_ptr<WPreset> &preset)
{
    PresetsStore &store = m_services.store;
    const std::shared_ptr<WPreset> before = store.quickWPreset();
    const std::shared_ptr<WPreset> loadedBefore = loadedWPreset();
    store.loadWPreset(*preset);
    const std::shared_ptr<WPreset> now = store.quickWPreset();
    const auto use = [this](const std::shared_ptr<WPreset> &quick, const std::shared_ptr<WPreset> &loaded) {
        if (m_services.store.quickWPreset() != quick)
            m_services.store.replaceQuickWPreset(quick);
        setLoaded(loaded);
        m_services.applied.modeDidChange(AppliedPresets::Mode::Single);
        return true;
    };
    use(now, preset);
    Q_EMIT edited(
        tr("Load Preset"), [use, before, loadedBefore] { return use(before, loadedBefore); },
        [use, now, preset] { return use(now, preset); });
}

void PresetCommands::updateLoadedWPreset()
{
    const std::shared_ptr<WPreset> preset = loadedWPreset();
    if (!preset)
        return;
    const WPresetValues before = preset->values();
    WPresetValues now = m_services.store.quickWPreset()->values();
    now.name = before.name;
    if (!now.assignedSavingPreset)
        now.assignedSavingPreset = before.assignedSavingPreset;
    if (now == before)
        return;
    preset->setValues(now);
    saveWPresets();
    const auto exchange = [this, preset](const WPresetValues &expected, const WPresetValues &wanted) {
        if (!hasWPreset(preset) || preset->values() != expected)
            return false;
        preset->setValues(wanted);
        return true;
    };
    Q_EMIT edited(
        tr("Update Preset"), [exchange, before, now] { return exchange(now, before); },
        [exchange, before, now] { return exchange(before, now); });
}

void PresetCommands::saveWPresets()
{
    if (const Result<void> saved = m_services.store.saveWPresets(PresetsStore::Slot::List); !saved)
        reportUnsaved(saved.error());
}

void PresetCommands::reportUnsaved(const Error &error, const QStringList &more)
{
    report(m_services.alerts, Alert::Style::Warning, tr("Cannot save the presets"),
           QStringList(PresetsStore::unsavedText(error)) + more);
}

} // namespace plexa
