// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/presetsstore.h"
#include "presets/wpresetarchive.h"

namespace plexa
{

/// Which presets are in a file, told by how it begins, whatever it is called. A failure is a text that
/// follows the file's name, as with all functions here.
[[nodiscard]] Result<PresetsStore::Kind> kindOfPresetsFile(const QString &path);

/// What was read of a file.
template<class List>
struct PresetsRead {
    List presets;
    QString notice; ///< why the file may hold more than `presets`, as text that follows its name; or empty
    QStringList leftOut; ///< what of the file is not in `presets`, likewise
};

/// The saving presets of a file.
[[nodiscard]] Result<PresetsRead<SavingPresetList>> savingPresetsIn(const QString &path);

/// The watermark presets of a file, with the saving presets that are found for them.
[[nodiscard]] Result<PresetsRead<WPresetList>> wPresetsIn(const QString &path,
                                                          const SavingPresetLookup &savingPresetWithID);

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
