// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/presetsfilereading.h"

#include "platform/applicationname.h"

namespace plexa
{
namespace
{

/// An error line of the reader as part of a sentence: without "ERROR" and the file's name.
QString reasonIn(QByteArrayView line, const QByteArray &path)
{
    for (const QByteArray &start : {QByteArray("ERROR:"), "ERROR" + path}) {
        if (line.startsWith(start))
            line = line.sliced(start.size());
    }
    return QString::fromUtf8(line).simplified();
}

} // namespace

QString presetsApplicationID()
{
    return applicationNameWithCompany();
}

PresetsFileReading readSavingPresetsFile(const QString &path, const XMLParser::ErrorSink &log)
{
    PresetsFileReading reading;
    const auto note = [&](const QByteArray &line) {
        log(line);
        reading.faults.append(reasonIn(line, path.toUtf8()));
    };
    auto list =
        SavingPreset::readObjectsFromFile(path, presetsApplicationID(), reading.code, note, &reading.isLater);
    reading.hasList = list.has_value();
    reading.savingPresets = std::move(list).value_or(SavingPresetList());
    return reading;
}

PresetsFileReading readWPresetsFile(const QString &path, const SavingPresetLookup &savingPresetWithID)
{
    PresetsFileReading reading;
    auto list = readWPresetsFromFile(path, &reading.isLater, savingPresetWithID, &reading.faults);
    if (!list)
        reading.faults = {list.error().text};
    reading.hasList = list.has_value();
    if (reading.isLater)
        reading.code = ReadCode::LaterVersion;
    else if (list)
        reading.code = ReadCode::Success;
    reading.wPresets = std::move(list).value_or(WPresetList());
    return reading;
}

} // namespace plexa
