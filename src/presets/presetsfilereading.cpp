// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/presetsfilereading.h"

#include "platform/applicationname.h"

#include <QDebug>
#include <QRegularExpression>

namespace plexa
{
namespace
{

/// An error line of the reader as part of a sentence: "line 3: MESSAGE" for one with a place, which has the
/// file's name and the text near it, too.
QString reasonIn(const QByteArray &line)
{
    static const QRegularExpression place(
        QStringLiteral("^ERROR.*? \\(line (\\d+)(?:, near \".*?\")?\\):  "));
    QString reason = QString::fromUtf8(line);
    if (reason.startsWith(QLatin1StringView("ERROR:")))
        reason.remove(0, 6);
    else
        reason.replace(place, QStringLiteral("line \\1: "));
    return reason.simplified();
}

/// @param read  SavingPreset::readObjectsFromFile() or its like
template<typename Read>
PresetsFileReading savingPresetsReading(const QString &path, const Read &read)
{
    PresetsFileReading reading;
    const auto note = [&](const QByteArray &line) { reading.faults.append(reasonIn(line)); };
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

PresetsFileReading readSavingPresetsFile(const QString &path)
{
    return savingPresetsReading(path, SavingPreset::readObjectsFromFile);
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
    const PresetsFileReading reading =
        areWatermarks ? readWPresetsFile(path, {}, progress)
                      : savingPresetsReading(path, SavingPreset::readForeignObjectsFromFile);
    logFaults(path, reading);
    return reading;
}

void logFaults(const QString &path, const PresetsFileReading &reading)
{
    for (const QString &fault : reading.faults)
        qCritical().noquote() << QStringLiteral("ERROR: \"%1\": %2").arg(path, fault);
}

} // namespace plexa
