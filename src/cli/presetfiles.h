// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/presetsstore.h"
#include "presets/wpresetarchive.h"

namespace plexa
{

/// The kind of the presets in a file, detected by its first bytes, not by its name. A failure is a text that
/// follows the file's name, as for all functions here.
[[nodiscard]] Result<PresetsStore::Kind> kindOfPresetsFile(const QString &path);

/// The presets that were read from a file.
template<class List>
struct PresetsRead {
    List presets;
    QString notice; ///< why the file may contain more than `presets`, as text that follows its name; or empty
    QStringList leftOut; ///< the parts of the file that are not in `presets`, likewise
};

/// The saving presets of a file.
[[nodiscard]] Result<PresetsRead<SavingPresetList>> savingPresetsIn(const QString &path);

/// The watermark presets of a file, with the saving presets that the function finds for them.
[[nodiscard]] Result<PresetsRead<WPresetList>> wPresetsIn(const QString &path,
                                                          const SavingPresetLookup &savingPresetWithID);

/// The file of the user's own presets of that kind, or of the examples if that is absent. Writes nothing.
QString storedPresetsFile(PresetsStore::Kind kind);

/// Names as in a message: "one", "two".
template<class List>
QString namesOf(const List &presets)
{
    QStringList names;
    for (const auto &preset : presets)
        names.append(QStringLiteral("\"%1\"").arg(preset->name()));
    return names.isEmpty() ? QStringLiteral("none") : names.join(QLatin1String(", "));
}

} // namespace plexa
