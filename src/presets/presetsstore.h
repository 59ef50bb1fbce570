// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"
#include "presets/presetlist.h"
#include "presets/savingpreset.h"
#include "watermark/wpreset.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <array>
#include <chrono>
#include <optional>

namespace plexa
{

class Alerts;
class FontCatalog;
struct PresetsFileReading;

/// The user's presets and their files: a list and a quick preset of each kind, four files in the support
/// folder. A file that cannot be read is never lost: it is backed up before it is replaced. A changed list
/// or quick preset is saved a second after its last change. Other processes may use the same files at the
/// same time; the last one to save wins. Main thread, with an event loop.
class PresetsStore final : public QObject
{
    Q_OBJECT

public:
    enum class Kind { Watermark, Saving };
    enum class Slot { List, Quick };

    struct Places {
        QString supportFolder;  ///< exists
        QString examplesFolder; ///< with "example_wpresets.pxwpr" and "example_spresets.pxspr"

        /// The user's support folder, which is created if missing, and the examples in the language of the
        /// installed translation.
        static Places own();
    };

    /// The lists are empty and the quick presets are new ones until readAll(). The services outlive this
    /// object.
    /// @param saveDelay  time from the last change to its saving; it is ten times that at most from the first
    PresetsStore(Alerts &alerts, const FontCatalog &fonts, Places places = Places::own(),
                 std::chrono::milliseconds saveDelay = std::chrono::seconds(1));

    /// Reads the files at a start: adopts those of the first major version, reads the saving presets, then
    /// the watermark presets, which refer to them. A quick preset that cannot be read is a new one named
    /// "Quick Preset".
    void readAll();

    QString presetsFileNameForWatermark(Kind kind, Slot slot) const;

    /// The file of a list, or of the examples while that is missing: for reading without a store.
    static QString listOrExamplesFile(Kind kind, const Places &places);

    /// Reads one file. The presets of a list are appended; a missing list file is created from the examples
    /// first. A list that cannot be read, or that a later version wrote, is backed up and reported; the
    /// presets of the latter are still appended.
    /// @return true if the whole file was read
    bool readPresets(Kind kind, Slot slot);

    /// Write a file. A file that was not read completely is backed up first.
    /// @return a failure, which is logged and leaves the former file in place; the caller reports it
    Result<void> saveWPresets(Slot slot);
    Result<void> saveSavingPresets(Slot slot);

    /// Saves the lists and the quick presets that have changed since they were read or saved. Reports the
    /// first failure in a row.
    void saveChanges();
    /// The same, and the quick presets even if they have not changed.
    void saveAll();
    /// The message about presets that cannot be saved.
    static QString unsavedText(const Error &error);

    /// The result of an import.
    struct Imported {
        int count = 0;     ///< of presets that were added
        QStringList notes; ///< sentences on what the file contains that was not added
    };

    /// Appends the presets of a file of another list, saving presets with new IDs.
    /// @param reading  of readForeignPresetsFile(); its presets belong to this thread
    /// @return none for a file that cannot be read, which is reported
    std::optional<Imported> importPresets(const PresetsFileReading &reading, Kind kind);
    std::optional<Imported> importPresetsFromFile(const QString &path, Kind kind);
    bool importExamplePresets(Kind kind);

    /// Appends a copy of the quick watermark preset, as "Saved Quick Preset".
    void saveQuickAsWPreset();
    /// Makes a copy of a stored preset the quick watermark preset.
    void loadWPreset(const WPreset &preset);
    /// Makes this object the quick watermark preset; not null.
    void replaceQuickWPreset(const std::shared_ptr<WPreset> &preset);

    /// The first preset in the list with that ID; null when there is none.
    std::shared_ptr<SavingPreset> savingPresetWithID(qint64 presetID) const;

    const WPresetList &wPresets() const { return m_wPresets.presets(); }
    const SavingPresetList &savingPresets() const { return m_savingPresets.presets(); }

    /// The lists, to edit and to observe. Watermark presets lose an assigned saving preset that is removed.
    PresetList<WPreset> &wPresetList() { return m_wPresets; }
    PresetList<SavingPreset> &savingPresetList() { return m_savingPresets; }

    /// Never null.
    const std::shared_ptr<WPreset> &quickWPreset() const { return m_quickWPreset; }
    const std::shared_ptr<SavingPreset> &quickSavingPreset() const { return m_quickSavingPreset; }

Q_SIGNALS:
    /// It is another object now.
    void quickWPresetChanged();
    void quickSavingPresetChanged();

private:
    /// The state of a file on the disk: PartlyRead contains more than this object.
    enum class Found { Whole, PartlyRead, Unreadable };

    /// The state of a file whose presets are edited.
    struct FileState {
        bool isChanged = false;     ///< the presets, since they were read or saved
        bool isFailureTold = false; ///< the last saving failed
    };

    void observe(Kind kind, PresetListSignals &list);
    void observeQuickSavingPreset();
    void markChanged(Kind kind, Slot slot);
    void setQuickWPreset(std::shared_ptr<WPreset> preset);
    void removeAssignments(int first, int last);
    PresetsFileReading readFile(const QString &path, Kind kind) const;
    bool createListFromExamples(Kind kind) const;
    QString backupWrongPresetsFile(const QString &path, ReadCode readingReturnCode);
    Found &found(Kind kind, Slot slot);
    FileState &state(Kind kind, Slot slot);
    Result<void> makeRoomForFile(Kind kind, Slot slot);
    Result<void> save(Kind kind, Slot slot, const std::function<Result<void>()> &write);
    void adopt(const PresetsFileReading &reading, Kind kind, Slot slot);
    void warn(const QString &title, const QString &text);

    Alerts &m_alerts;
    const FontCatalog &m_fonts;
    Places m_places;
    PresetList<WPreset> m_wPresets;
    PresetList<SavingPreset> m_savingPresets;
    std::shared_ptr<WPreset> m_quickWPreset;
    std::shared_ptr<SavingPreset> m_quickSavingPreset;
    std::array<std::array<Found, 2>, 2> m_found = {}; ///< by kind and slot
    std::array<std::array<FileState, 2>, 2> m_states; ///< likewise
    QTimer m_saveTimer;                               ///< since the last change
    QElapsedTimer m_unsaved;                          ///< since the first change that is not saved
};

} // namespace plexa
