// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QCoreApplication>
#include <QStringList>

namespace plexa
{

class Alerts;
class PresetsStore;
struct Error;

/// Changes of the user's presets that are saved at once, and the messages about them. Main thread.
class PresetCommands final
{
    Q_DECLARE_TR_FUNCTIONS(plexa::PresetCommands)

public:
    /// @param store   outlives this object, like the alerts
    PresetCommands(PresetsStore &store, Alerts &alerts);

    /// Adds the presets of a file to the user's and saves them; reports the result.
    /// @return whether the file has the suffix of a preset file
    bool importPresetsFile(const QString &path);

    /// Adds a copy of the quick preset to the user's and saves them; reports a failure.
    void saveQuickAsWPreset();

private:
    void reportUnsaved(const Error &error, const QStringList &more = {});

    PresetsStore &m_store;
    Alerts &m_alerts;
};

} // namespace plexa
