// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/savingpresetvalues.h"

#include <QSet>
#include <QString>

namespace plexa
{

/// Gives the copies of one run their paths: a copy is named as its source and put into one folder. No two
/// copies of a run, and no copy and a file that is there already, share a path. One thread.
class CopyNames final
{
public:
    /// @param folder  where the copies go
    CopyNames(const QString &folder, const SavingPresetValues &savingPreset);

    /// The path for the copy of a source: its name, with the suffix of the format that is written where its
    /// own does not fit; where that name is taken, "NAME-1.jpg", "NAME-2.jpg" and so on up to 9999.
    /// @return empty when all of these are taken, or the format cannot be written
    QString pathForCopyOf(const QString &sourcePath);

private:
    bool isFree(const QString &path) const;

    QString m_folder;
    SavingPresetValues m_savingPreset;
    QSet<QString> m_given;
};

} // namespace plexa
