// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/presetsstore.h"
#include "presets/wpresetarchive.h"

namespace plexa
{

/// The presets of one file.
struct PresetsFile {
    bool areWatermarks = false;
    WPresetList wPresets;
    SavingPresetList savingPresets;
    QString notice; ///< why the file may contain more than the lists, as text that follows its name; or empty
    bool isIncomplete = false; ///< a part could not be read
    QStringList leftOut;       ///< the parts of the file that are in neither list, likewise
};

/// Reads a file of presets.
/// @param expected            the kind that the file must contain; none: either
/// @param savingPresetWithID  finds the assigned saving presets
/// @return a failure as text that follows the file's name
[[nodiscard]] Result<PresetsFile> presetsIn(const QString &path, std::optional<PresetsStore::Kind> expected,
                                            const SavingPresetLookup &savingPresetWithID = {});

template<class List>
QStringList plainNamesOf(const List &presets)
{
    QStringList names;
    for (const auto &preset : presets)
        names.append(preset->name());
    return names;
}

/// Names as in a message: "one", "two".
template<class List>
QString namesOf(const List &presets)
{
    const QStringList names = plainNamesOf(presets);
    return names.isEmpty() ? QStringLiteral("none") : u'"' + names.join(QLatin1String("\", \"")) + u'"';
}

} // namespace plexa
