// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/presetsstore.h"

#include "platform/alerts.h"
#include "platform/applicationname.h"
#include "platform/atomicfile.h"
#include "platform/folderlock.h"
#include "platform/leftovers.h"
#include "presets/presetsmigration.h"
#include "presets/wpresetarchive.h"

#include <QDebug>
#include <QFileInfo>

#include <utility>

namespace plexa
{
namespace
{

const QString kQuickName = QStringLiteral("Quick Preset");
constexpr int kMaxBackups = 1000;

QString appID()
{
    return applicationNameWithCompany(true, false, true);
}

QString extensionOf(PresetsStore::Kind kind)
{
    return kind == PresetsStore::Kind::Watermark ? QStringLiteral("pxwpr") : QStringLiteral("pxspr");
}

QString fileName(PresetsStore::Kind kind, PresetsStore::Slot slot, const PresetsStore::Places &places)
{
    const QLatin1StringView initial(kind == PresetsStore::Kind::Watermark ? "W" : "S");
    const QString name = slot == PresetsStore::Slot::Quick ? QStringLiteral("Quick%1Preset").arg(initial)
                                                           : QStringLiteral("%1Presets").arg(initial);
    return places.supportFolder + u'/' + name + u'.' + extensionOf(kind);
}

QString exampleFile(PresetsStore::Kind kind, const PresetsStore::Places &places)
{
    const QLatin1StringView name(kind == PresetsStore::Kind::Watermark ? "example_wpresets"
                                                                       : "example_spresets");
    return places.examplesFolder + u'/' + name + u'.' + extensionOf(kind);
}

/// "SPresets-replaced.pxspr", or with a number.
QString backupPath(const QString &path, int number = 1)
{
    const QFileInfo info(path);
    const QString suffix = number > 1 ? QStringLiteral("-%1").arg(number) : QString();
    return QStringLiteral("%1/%2-replaced%3.%4")
        .arg(info.path(), info.completeBaseName(), suffix, info.suffix());
}

/// @return was it written?
bool isWritten(const Result<void> &written)
{
    if (!written)
        qCritical().noquote()
            << QStringLiteral("ERROR: the presets are not saved: %1").arg(written.error().text);
    return written.has_value();
}

template<class List>
void append(List &list, const List &more)
{
    list.insert(list.end(), more.begin(), more.end());
}

} // namespace

struct PresetsStore::Reading {
    ReadCode code = ReadCode::Failed;
    bool hasList = false;
    bool isPartial = false; ///< saved again, the list would be without what could not be read
    WPresetList wPresets;
    SavingPresetList savingPresets;
};

PresetsStore::Places PresetsStore::Places::own()
{
    return {applicationSupportSubdirectory(), QStringLiteral(":/plexa/presets")};
}

PresetsStore::PresetsStore(Alerts &alerts, const FontCatalog &fonts, Places places)
    : m_alerts(alerts)
    , m_fonts(fonts)
    , m_places(std::move(places))
    , m_quickWPreset(std::make_shared<WPreset>(fonts))
    , m_quickSavingPreset(std::make_shared<SavingPreset>())
{
    m_quickWPreset->setName(kQuickName);
    m_quickSavingPreset->setName(kQuickName);
}

QString PresetsStore::presetsFileNameForWatermark(Kind kind, Slot slot) const
{
    return fileName(kind, slot, m_places);
}

QString PresetsStore::listOrExamplesFile(Kind kind, const Places &places)
{
    const QString list = fileName(kind, Slot::List, places);
    return QFileInfo::exists(list) ? list : exampleFile(kind, places);
}

void PresetsStore::readAll()
{
    {
        const FolderLock lock(m_places.supportFolder);
        updateOldApplicationSupportDirectoryIfNeeded(m_places.supportFolder);
    }
    removeLeftovers(m_places.supportFolder);
    for (const Kind kind : {Kind::Saving, Kind::Watermark}) {
        readPresets(kind, Slot::Quick);
        readPresets(kind, Slot::List);
    }
}

PresetsStore::Reading PresetsStore::readFile(const QString &path, Kind kind) const
{
    Reading reading;
    if (kind == Kind::Saving) {
        auto list = SavingPreset::readObjectsFromFile(path, appID(), reading.code);
        reading.hasList = list.has_value();
        reading.savingPresets = std::move(list).value_or(SavingPresetList());
        return reading;
    }
    bool isLater = false;
    QStringList faults;
    auto list = readWPresetsFromFile(
        path, &isLater, [this](qint64 presetID) { return savingPresetWithID(presetID); }, &faults);
    reading.isPartial = list && !faults.isEmpty();
    if (!list)
        faults = {list.error().text};
    for (const QString &fault : std::as_const(faults))
        qCritical().noquote() << QStringLiteral("ERROR: \"%1\": %2").arg(path, fault);
    reading.hasList = list.has_value();
    if (isLater)
        reading.code = ReadCode::LaterVersion;
    else if (list)
        reading.code = ReadCode::Success;
    reading.wPresets = std::move(list).value_or(WPresetList());
    return reading;
}

bool PresetsStore::makeListFromExamples(Kind kind) const
{
    QFile example(exampleFile(kind, m_places));
    if (!example.open(QIODevice::ReadOnly))
        return false;
    AtomicFile file(presetsFileNameForWatermark(kind, Slot::List), AtomicFile::IfExists::Fail,
                    AtomicFile::Durability::Synced);
    if (!file.open())
        return false;
    file.device().write(example.readAll()); // a failure comes out of commit()
    return file.commit().has_value();
}

bool PresetsStore::readPresets(Kind kind, Slot slot)
{
    const QString path = presetsFileNameForWatermark(kind, slot);
    Reading reading;
    QString warning;
    {
        // Others must not save between our finding a file bad and our moving it.
        const FolderLock lock(m_places.supportFolder);
        if (!QFileInfo::exists(path) && (slot == Slot::Quick || !makeListFromExamples(kind)))
            return false;
        reading = readFile(path, kind);
        if (slot == Slot::List && reading.code != ReadCode::Success) {
            warning = backupWrongPresetsFile(path, reading.code);
            m_isUnreadableInPlace[static_cast<std::size_t>(kind)] = QFileInfo::exists(path);
        } else if (slot == Slot::List && kind == Kind::Watermark) {
            m_isPartlyRead = reading.isPartial;
        }
    }
    if (!warning.isEmpty())
        warn(tr("Cannot read the presets file"), warning);
    const bool isGood = reading.hasList && reading.code == ReadCode::Success;
    if (isGood || (reading.hasList && slot == Slot::List))
        take(reading, kind, slot);
    return isGood;
}

/// @return the text of the report
QString PresetsStore::backupWrongPresetsFile(const QString &path, ReadCode readingReturnCode)
{
    QString text =
        readingReturnCode == ReadCode::LaterVersion
            ? tr("The presets file is generated by a later application version and will be replaced.")
            : tr("The presets file is invalid and cannot be read. It will be replaced with a new file.");
    const QString backup = backupPath(path);
    if (QFile::rename(path, backup))
        text += tr(" The original file backup has been saved in \"%1\".").arg(backup);
    return text;
}

/// The list that a read left in place, because an earlier one has its place aside, is kept under another
/// name.
void PresetsStore::makeRoomForFile(const QString &path, Kind kind)
{
    bool &isUnreadable = m_isUnreadableInPlace[static_cast<std::size_t>(kind)];
    for (int number = 2; isUnreadable && number < kMaxBackups; ++number)
        isUnreadable = !QFile::rename(path, backupPath(path, number)) && QFileInfo::exists(path);
}

/// @return whether nothing is lost when the list is written now
bool PresetsStore::keepCopyOfFile(const QString &path)
{
    for (int number = 1; m_isPartlyRead && number < kMaxBackups; ++number) {
        const QString backup = backupPath(path, number);
        if (QFile::copy(path, backup) || !QFileInfo::exists(path))
            m_isPartlyRead = false;
        else if (!QFileInfo::exists(backup))
            break; // no room, or no right to write: the next name would do no better
    }
    if (m_isPartlyRead)
        qCritical().noquote() << QStringLiteral("ERROR: \"%1\" cannot be copied aside").arg(path);
    return !m_isPartlyRead;
}

void PresetsStore::take(const Reading &reading, Kind kind, Slot slot)
{
    const bool isEmpty = kind == Kind::Watermark ? reading.wPresets.empty() : reading.savingPresets.empty();
    if (isEmpty)
        return;
    if (kind == Kind::Watermark && slot == Slot::Quick) {
        m_quickWPreset = reading.wPresets.front();
        Q_EMIT quickWPresetChanged();
    } else if (kind == Kind::Watermark) {
        append(m_wPresets, reading.wPresets);
        Q_EMIT wPresetsChanged();
    } else if (slot == Slot::Quick) {
        m_quickSavingPreset = reading.savingPresets.front();
        Q_EMIT quickSavingPresetChanged();
    } else {
        append(m_savingPresets, reading.savingPresets);
        Q_EMIT savingPresetsChanged();
    }
}

bool PresetsStore::saveWPresets(Slot slot)
{
    const QString path = presetsFileNameForWatermark(Kind::Watermark, slot);
    const FolderLock lock(m_places.supportFolder);
    if (slot == Slot::List)
        makeRoomForFile(path, Kind::Watermark);
    if (slot == Slot::List && !keepCopyOfFile(path))
        return false;
    return isWritten(writeWPresets(slot == Slot::Quick ? WPresetList{m_quickWPreset} : m_wPresets, path));
}

bool PresetsStore::saveSavingPresets(Slot slot)
{
    const QString path = presetsFileNameForWatermark(Kind::Saving, slot);
    const FolderLock lock(m_places.supportFolder);
    if (slot == Slot::List)
        makeRoomForFile(path, Kind::Saving);
    const SavingPresetList list =
        slot == Slot::Quick ? SavingPresetList{m_quickSavingPreset} : m_savingPresets;
    return isWritten(SavingPreset::writeObjects(list, path, appID()));
}

bool PresetsStore::importPresetsFromFile(const QString &path, Kind kind)
{
    const qint64 lastUsedPresetID = SavingPreset::lastUsedPresetID();
    const Reading reading = readFile(path, kind);
    // The IDs of the file are those of somebody else's list.
    SavingPreset::setLastUsedPresetID(lastUsedPresetID);
    if (!reading.hasList || reading.code != ReadCode::Success) {
        warn(tr("Presets import failed"),
             reading.code == ReadCode::LaterVersion
                 ? tr("The presets file was generated by a later application version.")
                 : tr("The presets file has a wrong format."));
        return false;
    }
    for (const auto &preset : reading.savingPresets)
        preset->selfAssignNewID();
    for (const auto &preset : reading.wPresets)
        preset->setAssignedSavingPreset({});
    take(reading, kind, Slot::List);
    return true;
}

bool PresetsStore::importExamplePresets(Kind kind)
{
    return importPresetsFromFile(exampleFile(kind, m_places), kind);
}

void PresetsStore::saveQuickAsWPreset()
{
    std::shared_ptr<WPreset> copy = m_quickWPreset->copy();
    copy->setName(QStringLiteral("Saved Quick Preset"));
    m_wPresets.push_back(std::move(copy));
    Q_EMIT wPresetsChanged();
}

void PresetsStore::loadWPreset(const WPreset &preset)
{
    std::shared_ptr<WPreset> copy = preset.copy();
    copy->setName(kQuickName);
    copy->setAssignedSavingPreset({});
    m_quickWPreset = std::move(copy);
    Q_EMIT quickWPresetChanged();
}

std::shared_ptr<SavingPreset> PresetsStore::savingPresetWithID(qint64 presetID) const
{
    for (const auto &preset : m_savingPresets) {
        if (preset->presetID() == presetID)
            return preset;
    }
    return nullptr;
}

void PresetsStore::setWPresets(WPresetList presets)
{
    m_wPresets = std::move(presets);
    Q_EMIT wPresetsChanged();
}

void PresetsStore::setSavingPresets(SavingPresetList presets)
{
    m_savingPresets = std::move(presets);
    Q_EMIT savingPresetsChanged();
}

void PresetsStore::warn(const QString &title, const QString &text)
{
    Alert alert;
    alert.style = Alert::Style::Warning;
    alert.title = title;
    alert.text = text;
    m_alerts.run(alert);
}

} // namespace plexa
