// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/presetsstore.h"

namespace plexa
{

/// The saving presets of a file. A failure is a text that follows the file's name.
[[nodiscard]] Result<SavingPresetList> savingPresetsIn(const QString &path);

/// Where the user's own presets of that kind are read from: their file, or the examples before there is one.
/// Nothing is written.
QString storedPresetsFile(PresetsStore::Kind kind);

/// Names as they stand in a message: "one", "two".
template<class List>
QString namesOf(const List &presets)
{
    QStringList names;
    for (const auto &preset : presets)
        names.append(QStringLiteral("\"%1\"").arg(preset->name()));
    return names.isEmpty() ? QStringLiteral("none") : names.join(QLatin1String(", "));
}

} // namespace plexa
