// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/presetsstore.h"

#include "platform/alerts.h"
#include "platform/applicationname.h"
#include "platform/atomicfile.h"
#include "platform/folderlock.h"
#include "presets/presetsfilereading.h"
#include "presets/presetsmigration.h"

#include <QDebug>
#include <QFileInfo>

#include <new>
#include <utility>

namespace plexa
{
namespace
{

const QString kQuickName = QStringLiteral("Quick Preset");
constexpr int kMaxBackups = 1000;
constexpr int kLongestDelay = 10;    // of saving, in usual delays
constexpr qsizetype kMaxReasons = 3; // in one message
constexpr qsizetype kLongestReason = 300;

QString fileName(PresetsStore::Kind kind, PresetsStore::Slot slot, const PresetsStore::Places &places)
{
    const QLatin1StringView form(slot == PresetsStore::Slot::Quick ? "/Quick%1Preset.px%2pr"
                                                                   : "/%1Presets.px%2pr");
    const bool isWatermark = kind == PresetsStore::Kind::Watermark;
    return places.supportFolder + QString(form).arg(QLatin1StringView(isWatermark ? "W" : "S"),
                                                    QLatin1StringView(isWatermark ? "w" : "s"));
}

QString exampleFile(PresetsStore::Kind kind, const PresetsStore::Places &places)
{
    return places.examplesFolder + (kind == PresetsStore::Kind::Watermark
                                        ? QStringLiteral("/example_wpresets.pxwpr")
                                        : QStringLiteral("/example_spresets.pxspr"));
}

/// "SPresets-replaced.pxspr", or with a number.
QString backupPath(const QString &path, int number = 1)
{
    const QFileInfo info(path);
    const QString suffix = number > 1 ? QStringLiteral("-%1").arg(number) : QString();
    return QStringLiteral("%1/%2-replaced%3.%4")
        .arg(info.path(), info.completeBaseName(), suffix, info.suffix());
}

Result<void> logged(Result<void> saved)
{
    if (!saved)
        qCritical().noquote()
            << QStringLiteral("ERROR: the presets are not saved: %1").arg(saved.error().text);
    return saved;
}

/// The first reasons, shortened to fit into a message.
QString inShort(QStringList reasons)
{
    const qsizetype more = reasons.size() - kMaxReasons;
    if (more > 0)
        reasons.resize(kMaxReasons);
    for (QString &reason : reasons) {
        if (reason.size() > kLongestReason)
            reason = reason.left(kLongestReason) + u'\u2026';
    }
    if (more > 0)
        reasons.append(PresetsStore::tr("and %n more", nullptr, static_cast<int>(more)));
    return reasons.join(QStringLiteral("; "));
}

} // namespace

PresetsStore::Places PresetsStore::Places::own()
{
    const QString place = QStringLiteral(":/plexa/");
    //: The name of a folder in resources, which has other examples for each language.
    const QString examples = place + PresetsStore::tr("presets");
    return {applicationSupportSubdirectory(),
            QFileInfo::exists(examples) ? examples : place + QStringLiteral("presets")};
}

PresetsStore::PresetsStore(Alerts &alerts, const FontCatalog &fonts, Places places,
                           std::chrono::milliseconds saveDelay)
    : m_alerts(alerts)
    , m_fonts(fonts)
    , m_places(std::move(places))
    , m_wPresets([&fonts] { return std::make_shared<WPreset>(fonts); })
    , m_savingPresets([] { return std::make_shared<SavingPreset>(); })
    , m_quickSavingPreset(std::make_shared<SavingPreset>())
{
    m_quickSavingPreset->setName(kQuickName);
    observeQuickSavingPreset();
    auto quickWPreset = std::make_shared<WPreset>(fonts);
    quickWPreset->setName(kQuickName);
    setQuickWPreset(std::move(quickWPreset));
    m_saveTimer.setSingleShot(true);
    m_saveTimer.setInterval(saveDelay);
    connect(&m_saveTimer, &QTimer::timeout, this, &PresetsStore::saveChanges);
    observe(Kind::Watermark, m_wPresets);
    observe(Kind::Saving, m_savingPresets);
    connect(&m_savingPresets, &PresetListSignals::aboutToRemove, this, &PresetsStore::removeAssignments);
}

void PresetsStore::observe(Kind kind, PresetListSignals &list)
{
    const auto changed = [this, kind] { markChanged(kind, Slot::List); };
    connect(&list, &PresetListSignals::inserted, this, changed);
    connect(&list, &PresetListSignals::removed, this, changed);
    connect(&list, &PresetListSignals::moved, this, changed);
    connect(&list, &PresetListSignals::edited, this, changed);
}

void PresetsStore::setQuickWPreset(std::shared_ptr<WPreset> preset)
{
    if (m_quickWPreset)
        m_quickWPreset->disconnect(this);
    m_quickWPreset = std::move(preset);
    connect(m_quickWPreset.get(), &WPreset::fieldChanged, this,
            [this] { markChanged(Kind::Watermark, Slot::Quick); });
}

void PresetsStore::observeQuickSavingPreset()
{
    connect(m_quickSavingPreset.get(), &SavingPreset::fieldChanged, this,
            [this] { markChanged(Kind::Saving, Slot::Quick); });
}

/// A file with large pictures takes its time to be written: not while a slider moves, unless that takes long.
void PresetsStore::markChanged(Kind kind, Slot slot)
{
    state(kind, slot).isChanged = true;
    if (!m_saveTimer.isActive())
        m_unsaved.start();
    if (m_unsaved.elapsed() < kLongestDelay * m_saveTimer.interval())
        m_saveTimer.start();
}

/// @param first,last  rows of saving presets that are about to be removed
void PresetsStore::removeAssignments(int first, int last)
{
    WPresetList presets = wPresets();
    presets.push_back(m_quickWPreset);
    for (int row = first; row <= last; ++row) {
        const qint64 presetID = savingPresets()[static_cast<std::size_t>(row)]->presetID();
        for (const auto &preset : presets) {
            if (preset->assignedSavingPreset() && preset->assignedSavingPreset()->presetID() == presetID)
                preset->setAssignedSavingPreset({});
        }
    }
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

PresetsFileReading PresetsStore::readFile(const QString &path, Kind kind) const
{
    const PresetsFileReading reading =
        kind == Kind::Saving
            ? readSavingPresetsFile(path)
            : readWPresetsFile(path, [this](qint64 presetID) { return savingPresetWithID(presetID); });
    logFaults(path, reading);
    return reading;
}

bool PresetsStore::createListFromExamples(Kind kind) const
{
    QFile example(exampleFile(kind, m_places));
    if (!example.open(QIODevice::ReadOnly))
        return false;
    AtomicFile file(presetsFileNameForWatermark(kind, Slot::List), AtomicFile::IfExists::Fail);
    if (!file.open())
        return false;
    file.device().write(example.readAll()); // commit() reports a failure
    return file.commit().has_value();
}

bool PresetsStore::readPresets(Kind kind, Slot slot)
try {
    const QString path = presetsFileNameForWatermark(kind, slot);
    PresetsFileReading reading;
    QString warning;
    {
        // No other process may save between the reading of a bad file and its move.
        const FolderLock lock(m_places.supportFolder);
        if (!QFileInfo::exists(path) && (slot == Slot::Quick || !createListFromExamples(kind)))
            return false;
        reading = readFile(path, kind);
        const bool isUnreadable = reading.code != ReadCode::Success;
        if (slot == Slot::List && isUnreadable)
            warning = backupWrongPresetsFile(path, reading.code);
        const bool isPartlyRead = reading.isLater || !reading.faults.isEmpty();
        found(kind, slot) = isPartlyRead && !isUnreadable ? Found::PartlyRead : Found::Whole;
        if (isUnreadable && QFileInfo::exists(path))
            found(kind, slot) = Found::Unreadable;
    }
    if (!warning.isEmpty())
        warn(tr("Cannot read the presets file"), warning);
    const bool isGood = reading.hasList && reading.code == ReadCode::Success;
    if (isGood || (reading.hasList && slot == Slot::List)) {
        const bool wasChanged = state(kind, slot).isChanged;
        adopt(reading, kind, slot);
        state(kind, slot).isChanged = wasChanged;
    }
    return isGood;
} catch (const std::bad_alloc &) {
    // Its presets are unknown: the file is backed up before another one is written.
    found(kind, slot) = Found::Unreadable;
    // lupdate does not see that the function goes on here, so the class is named.
    warn(PresetsStore::tr("Cannot read the presets file"),
         PresetsStore::tr("There is not enough memory for its presets."));
    return false;
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

PresetsStore::FileState &PresetsStore::state(Kind kind, Slot slot)
{
    return m_states[static_cast<std::size_t>(kind)][static_cast<std::size_t>(slot)];
}

/// Backs up a file whose contents would be lost when it is written: a file that was read in part, and an
/// unreadable one that is still in its place.
Result<void> PresetsStore::makeRoomForFile(Kind kind, Slot slot)
{
    const QString path = presetsFileNameForWatermark(kind, slot);
    Found &file = found(kind, slot);
    if (!QFileInfo::exists(path))
        file = Found::Whole;
    for (int number = 1; file != Found::Whole && number < kMaxBackups; ++number) {
        const QString backup = backupPath(path, number);
        if (file == Found::Unreadable ? QFile::rename(path, backup) : QFile::copy(path, backup)) {
            file = Found::Whole;
            qWarning().noquote() << QStringLiteral(
                                        "\"%1\" is backed up as \"%2\": it contains more than is saved")
                                        .arg(path, backup);
        } else if (!QFileInfo::exists(backup)) {
            break; // disk full or access denied: another name would fail, too
        }
    }
    if (file != Found::Whole)
        return fail(tr("\"%1\" cannot be backed up").arg(path));
    return {};
}

void PresetsStore::adopt(const PresetsFileReading &reading, Kind kind, Slot slot)
{
    if (kind == Kind::Watermark ? reading.wPresets.empty() : reading.savingPresets.empty())
        return;
    if (kind == Kind::Watermark && slot == Slot::Quick) {
        setQuickWPreset(reading.wPresets.front());
        Q_EMIT quickWPresetChanged();
    } else if (kind == Kind::Watermark) {
        m_wPresets.append(reading.wPresets);
    } else if (slot == Slot::Quick) {
        m_quickSavingPreset = reading.savingPresets.front();
        observeQuickSavingPreset();
        Q_EMIT quickSavingPresetChanged();
    } else {
        m_savingPresets.append(reading.savingPresets);
    }
}

/// @param write  writes the file
Result<void> PresetsStore::save(Kind kind, Slot slot, const std::function<Result<void>()> &write)
{
    Result<void> saved;
    {
        const FolderLock lock(m_places.supportFolder);
        saved = makeRoomForFile(kind, slot).and_then(write);
    }
    state(kind, slot) = {!saved, !saved};
    return logged(std::move(saved));
}

Result<void> PresetsStore::saveWPresets(Slot slot)
{
    return save(Kind::Watermark, slot, [this, slot] {
        return writeWPresets(slot == Slot::Quick ? WPresetList{m_quickWPreset} : wPresets(),
                             presetsFileNameForWatermark(Kind::Watermark, slot));
    });
}

Result<void> PresetsStore::saveSavingPresets(Slot slot)
{
    // Checked before the former file is moved.
    if (slot == Slot::Quick) {
        if (Result<void> checked = m_quickSavingPreset->checkWritable(); !checked) {
            state(Kind::Saving, slot) = {true, true};
            return logged(std::move(checked));
        }
    }
    return save(Kind::Saving, slot, [this, slot] {
        return SavingPreset::writeObjects(
            slot == Slot::Quick ? SavingPresetList{m_quickSavingPreset} : savingPresets(),
            presetsFileNameForWatermark(Kind::Saving, slot), presetsApplicationID());
    });
}

void PresetsStore::saveChanges()
{
    m_saveTimer.stop();
    QStringList reasons;
    const auto save = [&](Kind kind, Slot slot) {
        const FileState before = state(kind, slot);
        if (!before.isChanged)
            return;
        const Result<void> saved = kind == Kind::Watermark ? saveWPresets(slot) : saveSavingPresets(slot);
        if (!saved && !before.isFailureTold)
            reasons.append(saved.error().text);
    };
    for (const Slot slot : {Slot::List, Slot::Quick}) {
        save(Kind::Saving, slot);
        save(Kind::Watermark, slot);
    }
    reasons.removeDuplicates();
    if (!reasons.isEmpty())
        warn(tr("Cannot save the presets"), unsavedText({inShort(reasons)}));
}

void PresetsStore::saveAll()
{
    for (const Kind kind : {Kind::Saving, Kind::Watermark})
        state(kind, Slot::Quick).isChanged = true;
    saveChanges();
}

QString PresetsStore::unsavedText(const Error &error)
{
    return tr("Your preset changes will be lost when you quit: %1.").arg(error.text);
}

std::optional<PresetsStore::Imported> PresetsStore::importPresetsFromFile(const QString &path, Kind kind)
{
    return importPresets(readForeignPresetsFile(path, kind == Kind::Watermark), kind);
}

std::optional<PresetsStore::Imported> PresetsStore::importPresets(const PresetsFileReading &reading,
                                                                  Kind kind)
try {
    if (!reading.hasList || reading.code != ReadCode::Success) {
        warn(tr("Presets import failed"),
             reading.code == ReadCode::LaterVersion
                 ? tr("The presets file was generated by a later application version.")
                 : tr("The presets file has a wrong format."));
        return std::nullopt;
    }
    for (const auto &preset : reading.savingPresets)
        preset->selfAssignNewID();
    adopt(reading, kind, Slot::List);
    Imported imported{static_cast<int>(reading.wPresets.size() + reading.savingPresets.size()), {}};
    if (reading.isLater)
        imported.notes.append(tr("A later application version has written the file; what that version added "
                                 "to it is not read."));
    if (!reading.faults.isEmpty())
        imported.notes.append(tr("Not all of the file could be read: %1.").arg(inShort(reading.faults)));
    return imported;
} catch (const std::bad_alloc &) {
    warn(PresetsStore::tr("Presets import failed"),
         PresetsStore::tr("There is not enough memory for its presets."));
    return std::nullopt;
}

bool PresetsStore::importExamplePresets(Kind kind)
{
    return importPresetsFromFile(exampleFile(kind, m_places), kind).has_value();
}

void PresetsStore::saveQuickAsWPreset()
{
    std::shared_ptr<WPreset> copy = m_quickWPreset->copy();
    copy->setName(QStringLiteral("Saved Quick Preset"));
    m_wPresets.append({std::move(copy)});
}

void PresetsStore::loadWPreset(const WPreset &preset)
{
    std::shared_ptr<WPreset> copy = preset.copy();
    copy->setName(kQuickName);
    copy->setAssignedSavingPreset({});
    replaceQuickWPreset(copy);
}

void PresetsStore::replaceQuickWPreset(const std::shared_ptr<WPreset> &preset)
{
    setQuickWPreset(preset);
    markChanged(Kind::Watermark, Slot::Quick);
    Q_EMIT quickWPresetChanged();
}

std::shared_ptr<SavingPreset> PresetsStore::savingPresetWithID(qint64 presetID) const
{
    for (const auto &preset : savingPresets()) {
        if (preset->presetID() == presetID)
            return preset;
    }
    return nullptr;
}

void PresetsStore::warn(const QString &title, const QString &text)
{
    m_alerts.run({.style = Alert::Style::Warning, .title = title, .text = text});
}

} // namespace plexa
