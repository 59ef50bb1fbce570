// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/savingpreset.h"
#include "presets/wpresetarchive.h"

namespace plexa
{

/// The name of the program in preset files.
QString presetsApplicationID();

/// The result of reading a file of presets of one kind.
struct PresetsFileReading {
    ReadCode code = ReadCode::Failed;
    bool hasList = false;
    bool isLater = false; ///< a later version of the program wrote the file, whatever the code is
    QStringList faults;   ///< the parts of the file that could not be read; they are logged
    WPresetList wPresets;
    SavingPresetList savingPresets;
};

PresetsFileReading readSavingPresetsFile(const QString &path);
PresetsFileReading readWPresetsFile(const QString &path, const SavingPresetLookup &savingPresetWithID);

} // namespace plexa
