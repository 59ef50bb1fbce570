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
constexpr qsizetype kMostReasons = 3; // in one message
constexpr qsizetype kLongestReason = 300;

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

Result<void> logged(Result<void> &&written)
{
    if (!written)
        qCritical().noquote()
            << QStringLiteral("ERROR: the presets are not saved: %1").arg(written.error().text);
    return std::move(written);
}

/// As many of the reasons as a message has room for.
QString inShort(QStringList reasons)
{
    const qsizetype more = reasons.size() - kMostReasons;
    if (more > 0)
        reasons.resize(kMostReasons);
    for (QString &reason : reasons) {
        if (reason.size() > kLongestReason)
            reason = reason.left(kLongestReason) + u'\u2026';
    }
    if (more > 0)
        reasons.append(PresetsStore::tr("and %n more", nullptr, static_cast<int>(more)));
    return reasons.join(QStringLiteral("; "));
}

QString unkept(const QStringList &reasons)
{
    return PresetsStore::tr("Not all of your saving presets can be kept after you quit: %1.")
        .arg(inShort(reasons));
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
    bool isLater = false; ///< a later version of the program wrote the file, whatever the code says
    QStringList faults;   ///< what of the file could not be read
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
        const auto note = [&reading](const QByteArray &line) {
            XMLParser::writeErrorLine(line);
            QByteArrayView fault = line;
            constexpr QByteArrayView start = "ERROR:";
            if (fault.startsWith(start))
                fault = fault.sliced(start.size());
            reading.faults.append(QString::fromUtf8(fault).simplified());
        };
        auto list = SavingPreset::readObjectsFromFile(path, appID(), reading.code, note, &reading.isLater);
        reading.hasList = list.has_value();
        reading.savingPresets = std::move(list).value_or(SavingPresetList());
        return reading;
    }
    auto list = readWPresetsFromFile(
        path, &reading.isLater, [this](qint64 presetID) { return savingPresetWithID(presetID); },
        &reading.faults);
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
        const bool isUnreadable = reading.code != ReadCode::Success;
        if (slot == Slot::List && isUnreadable)
            warning = backupWrongPresetsFile(path, reading.code);
        found(kind, slot) = {isUnreadable && QFileInfo::exists(path),
                             !isUnreadable && (reading.isLater || !reading.faults.isEmpty())};
    }
    if (!warning.isEmpty())
        warn(tr("Cannot read the presets file"), warning);
    const bool isGood = reading.hasList && reading.code == ReadCode::Success;
    if (kind == Kind::Saving && slot == Slot::List)
        setSavingPresetsInFile(reading.savingPresets);
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

PresetsStore::Found &PresetsStore::found(Kind kind, Slot slot)
{
    return m_found[static_cast<std::size_t>(kind)][static_cast<std::size_t>(slot)];
}

/// Keeps what would get lost when the file is written now. One that a read left in place, as quick presets
/// are, or because an earlier one has its place aside, gets another name.
Result<void> PresetsStore::makeRoomForFile(Kind kind, Slot slot)
{
    const QString path = presetsFileNameForWatermark(kind, slot);
    Found &file = found(kind, slot);
    for (int number = 1; file.isUnreadable && number < kMaxBackups; ++number)
        file.isUnreadable = !QFile::rename(path, backupPath(path, number)) && QFileInfo::exists(path);
    for (int number = 1; file.isPartlyRead && number < kMaxBackups; ++number) {
        const QString backup = backupPath(path, number);
        if (QFile::copy(path, backup)) {
            file.isPartlyRead = false;
            qWarning().noquote()
                << QStringLiteral("\"%1\" is kept as \"%2\": it holds more than is saved").arg(path, backup);
        } else if (!QFileInfo::exists(path)) {
            file.isPartlyRead = false;
        } else if (!QFileInfo::exists(backup)) {
            break; // no room, or no right to write: the next name would do no better
        }
    }
    if (file.isPartlyRead)
        return fail(tr("\"%1\" cannot be copied aside").arg(path));
    return {};
}

/// The list without what no file can hold, which is said once.
SavingPresetList PresetsStore::writableSavingPresets()
{
    SavingPresetList list;
    QStringList news;
    for (const auto &preset : m_savingPresets) {
        const Result<void> checked = preset->checkWritable();
        if (checked) {
            list.push_back(preset);
            continue;
        }
        if (m_savingPresetsInFile.contains(preset->presetID()))
            found(Kind::Saving, Slot::List).isPartlyRead = true;
        if (!m_toldUnwritable.contains(checked.error().text)) {
            m_toldUnwritable.insert(checked.error().text);
            news.append(checked.error().text);
        }
    }
    if (!news.isEmpty()) {
        qCritical().noquote() << QStringLiteral("ERROR: presets are left out: %1").arg(inShort(news));
        warn(tr("Cannot save all presets"), unkept(news));
    }
    return list;
}

void PresetsStore::setSavingPresetsInFile(const SavingPresetList &presets)
{
    m_savingPresetsInFile.clear();
    for (const auto &preset : presets)
        m_savingPresetsInFile.insert(preset->presetID());
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

Result<void> PresetsStore::saveWPresets(Slot slot)
{
    const QString path = presetsFileNameForWatermark(Kind::Watermark, slot);
    const FolderLock lock(m_places.supportFolder);
    return logged(makeRoomForFile(Kind::Watermark, slot).and_then([&] {
        return writeWPresets(slot == Slot::Quick ? WPresetList{m_quickWPreset} : m_wPresets, path);
    }));
}

Result<void> PresetsStore::saveSavingPresets(Slot slot)
{
    const QString path = presetsFileNameForWatermark(Kind::Saving, slot);
    // Before the folder is locked, and before a file is moved for one that is not written.
    const SavingPresetList list =
        slot == Slot::Quick ? SavingPresetList{m_quickSavingPreset} : writableSavingPresets();
    if (slot == Slot::Quick) {
        if (Result<void> checked = m_quickSavingPreset->checkWritable(); !checked)
            return logged(std::move(checked));
    }
    const FolderLock lock(m_places.supportFolder);
    Result<void> saved = makeRoomForFile(Kind::Saving, slot).and_then([&] {
        return SavingPreset::writeObjects(list, path, appID());
    });
    if (saved && slot == Slot::List)
        setSavingPresetsInFile(list);
    return logged(std::move(saved));
}

std::optional<PresetsStore::Imported> PresetsStore::importPresetsFromFile(const QString &path, Kind kind)
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
        return std::nullopt;
    }
    QStringList unwritable;
    for (const auto &preset : reading.savingPresets) {
        preset->selfAssignNewID();
        if (const Result<void> checked = preset->checkWritable(); !checked) {
            unwritable.append(checked.error().text);
            m_toldUnwritable.insert(checked.error().text);
        }
    }
    for (const auto &preset : reading.wPresets)
        preset->setAssignedSavingPreset({});
    take(reading, kind, Slot::List);
    Imported imported{static_cast<int>(reading.wPresets.size() + reading.savingPresets.size()), {}};
    if (reading.isLater)
        imported.notes.append(tr("A later application version has written the file; what that version added "
                                 "to it is not read."));
    if (!reading.faults.isEmpty())
        imported.notes.append(tr("Not all of the file could be read: %1.").arg(inShort(reading.faults)));
    if (!unwritable.isEmpty())
        imported.notes.append(unkept(unwritable));
    return imported;
}

bool PresetsStore::importExamplePresets(Kind kind)
{
    return importPresetsFromFile(exampleFile(kind, m_places), kind).has_value();
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
