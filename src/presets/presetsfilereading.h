// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/savingpreset.h"
#include "presets/wpresetarchive.h"

namespace plexa
{

/// The name of the program in preset files.
QString presetsApplicationID();

/// The result of reading a file of presets of one kind. The presets belong to the thread that read them.
struct PresetsFileReading {
    ReadCode code = ReadCode::Failed;
    bool hasList = false;
    bool isLater = false; ///< a later version of the program wrote the file, whatever the code is
    QStringList faults;   ///< the reasons why it, or parts of it, could not be read
    WPresetList wPresets;
    SavingPresetList savingPresets;

    /// Called by the thread that read them.
    void moveToThread(QThread *thread);
};

PresetsFileReading readSavingPresetsFile(const QString &path);
PresetsFileReading readWPresetsFile(const QString &path, const SavingPresetLookup &savingPresetWithID,
                                    const ReadProgress &progress = {});

/// Reads a file of another list: the IDs of its saving presets mean nothing here, nor do the references of
/// its watermark presets. Logs what cannot be read. Any thread.
PresetsFileReading readForeignPresetsFile(const QString &path, bool areWatermarks,
                                          const ReadProgress &progress = {});

/// Writes the faults of a file to the log.
void logFaults(const QString &path, const PresetsFileReading &reading);

} // namespace plexa
