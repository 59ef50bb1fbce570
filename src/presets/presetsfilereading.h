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
    QStringList faults;   ///< the reasons why it, or parts of it, could not be read
    WPresetList wPresets;
    SavingPresetList savingPresets;
};

/// @param log  receives the error lines
PresetsFileReading readSavingPresetsFile(const QString &path,
                                         const XMLParser::ErrorSink &log = XMLParser::writeErrorLine);
PresetsFileReading readWPresetsFile(const QString &path, const SavingPresetLookup &savingPresetWithID);

} // namespace plexa
