// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/presetsfilereading.h"

#include "platform/applicationname.h"

#include <QDebug>

#include <utility>

namespace plexa
{

QString presetsApplicationID()
{
    return applicationNameWithCompany();
}

PresetsFileReading readSavingPresetsFile(const QString &path)
{
    PresetsFileReading reading;
    const auto note = [&reading](const QByteArray &line) {
        XMLParser::writeErrorLine(line);
        QByteArrayView fault = line;
        constexpr QByteArrayView start = "ERROR:";
        if (fault.startsWith(start))
            fault = fault.sliced(start.size());
        reading.faults.append(QString::fromUtf8(fault).simplified());
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
    for (const QString &fault : std::as_const(reading.faults))
        qCritical().noquote() << QStringLiteral("ERROR: \"%1\": %2").arg(path, fault);
    reading.hasList = list.has_value();
    if (reading.isLater)
        reading.code = ReadCode::LaterVersion;
    else if (list)
        reading.code = ReadCode::Success;
    reading.wPresets = std::move(list).value_or(WPresetList());
    return reading;
}

} // namespace plexa
