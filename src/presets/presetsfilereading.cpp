// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/presetsfilereading.h"

#include "platform/applicationname.h"

#include <QDebug>

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

/// @param read  SavingPreset::readObjectsFromFile() or its like
template<typename Read>
PresetsFileReading savingPresetsReading(const QString &path, const XMLParser::ErrorSink &log,
                                        const Read &read)
{
    PresetsFileReading reading;
    const auto note = [&](const QByteArray &line) {
        log(line);
        reading.faults.append(reasonIn(line, path.toUtf8()));
    };
    auto list = read(path, presetsApplicationID(), reading.code, note, &reading.isLater);
    reading.hasList = list.has_value();
    reading.savingPresets = std::move(list).value_or(SavingPresetList());
    return reading;
}

} // namespace

void PresetsFileReading::moveToThread(QThread *thread)
{
    for (const auto &preset : wPresets)
        preset->moveToThread(thread);
    for (const auto &preset : savingPresets)
        preset->moveToThread(thread);
}

QString presetsApplicationID()
{
    return applicationNameWithCompany();
}

PresetsFileReading readSavingPresetsFile(const QString &path, const XMLParser::ErrorSink &log)
{
    return savingPresetsReading(path, log, SavingPreset::readObjectsFromFile);
}

PresetsFileReading readWPresetsFile(const QString &path, const SavingPresetLookup &savingPresetWithID,
                                    const ReadProgress &progress)
{
    PresetsFileReading reading;
    auto list = readWPresetsFromFile(path, &reading.isLater, savingPresetWithID, &reading.faults, progress);
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

PresetsFileReading readForeignPresetsFile(const QString &path, bool areWatermarks,
                                          const ReadProgress &progress)
{
    if (!areWatermarks)
        return savingPresetsReading(path, XMLParser::writeErrorLine,
                                    SavingPreset::readForeignObjectsFromFile);
    const PresetsFileReading reading = readWPresetsFile(path, {}, progress);
    logFaults(path, reading);
    return reading;
}

void logFaults(const QString &path, const PresetsFileReading &reading)
{
    for (const QString &fault : reading.faults)
        qCritical().noquote() << QStringLiteral("ERROR: \"%1\": %2").arg(path, fault);
}

} // namespace plexa
