// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/presetcommands.h"

#include "platform/alerts.h"
#include "platform/filenames.h"
#include "presets/presetsstore.h"

#include <QFileInfo>

namespace plexa
{

namespace
{

void report(Alerts &alerts, Alert::Style style, const QString &title, const QStringList &sentences)
{
    alerts.run({.style = style, .title = title, .text = sentences.join(u'\n')});
}

} // namespace

PresetCommands::PresetCommands(PresetsStore &store, Alerts &alerts)
    : m_store(store)
    , m_alerts(alerts)
{
}

bool PresetCommands::importPresetsFile(const QString &path)
{
    using Kind = PresetsStore::Kind;
    const QString suffix = fileExtensionOf(path).toLower();
    if (suffix != QLatin1String("pxwpr") && suffix != QLatin1String("pxspr"))
        return false;
    const Kind kind = suffix == QLatin1String("pxwpr") ? Kind::Watermark : Kind::Saving;
    const auto imported = m_store.importPresetsFromFile(path, kind);
    if (!imported) // the store has reported it
        return true;
    const Result<void> saved = kind == Kind::Watermark ? m_store.saveWPresets(PresetsStore::Slot::List)
                                                       : m_store.saveSavingPresets(PresetsStore::Slot::List);
    if (!saved) {
        reportUnsaved(saved.error(), imported->notes);
        return true;
    }
    const QString added = imported->count == 1
                              ? tr("One preset of \"%1\" was added to yours.")
                              : tr("%n presets of \"%1\" were added to yours.", nullptr, imported->count);
    report(m_alerts, imported->notes.isEmpty() ? Alert::Style::Informational : Alert::Style::Warning,
           tr("Presets imported"), QStringList(added.arg(QFileInfo(path).fileName())) + imported->notes);
    return true;
}

void PresetCommands::saveQuickAsWPreset()
{
    m_store.saveQuickAsWPreset();
    if (const Result<void> saved = m_store.saveWPresets(PresetsStore::Slot::List); !saved)
        reportUnsaved(saved.error());
}

void PresetCommands::reportUnsaved(const Error &error, const QStringList &more)
{
    report(m_alerts, Alert::Style::Warning, tr("Cannot save the presets"),
           QStringList(PresetsStore::unsavedText(error)) + more);
}

} // namespace plexa
