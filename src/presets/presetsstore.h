// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"
#include "presets/savingpreset.h"
#include "watermark/wpreset.h"

#include <QObject>
#include <QSet>

#include <array>
#include <optional>

namespace plexa
{

class Alerts;
class FontCatalog;

using SavingPresetList = std::vector<std::shared_ptr<SavingPreset>>;

/// The user's presets and their files: a list and a quick preset of each kind, four files in the support
/// folder. A file is written whole or not at all, and what cannot be read is never lost: a list is moved
/// aside, and the user is told once. A file of which parts cannot be read, or cannot be written again, is
/// copied aside before it is saved without them. Other processes may use the same files at the same time; who
/// saves last wins. Main thread.
class PresetsStore final : public QObject
{
    Q_OBJECT

public:
    enum class Kind { Watermark, Saving };
    enum class Slot { List, Quick };

    struct Places {
        QString supportFolder;  ///< exists
        QString examplesFolder; ///< with "example_wpresets.pxwpr" and "example_spresets.pxspr"

        /// The user's support folder, which is made where it is missing, and the examples of the program.
        static Places own();
    };

    /// The lists are empty and the quick presets are new ones until readAll(). The services outlive this
    /// object.
    PresetsStore(Alerts &alerts, const FontCatalog &fonts, Places places = Places::own());

    /// What a start reads, in this order: the files of the first major version are taken over, then saving
    /// presets (quick preset, list), then watermark presets, which refer to saving presets. A quick preset
    /// that cannot be read becomes a new one named "Quick Preset".
    void readAll();

    QString presetsFileNameForWatermark(Kind kind, Slot slot) const;

    /// The file of a list, or of the examples as long as there is none: for reading without a store.
    static QString listOrExamplesFile(Kind kind, const Places &places);

    /// Reads one file. A list is added to what is there; without a file it is made from the examples first.
    /// One that cannot be read, or that a later version has written, is moved aside and reported; of the
    /// latter, presets are added all the same.
    /// @return true when everything was as it should be
    bool readPresets(Kind kind, Slot slot);

    /// Write a file. A file that could not be read, or not wholly, gets out of the way first, where it has
    /// not. A saving preset that no file can hold stays out of the list's, which the user is told once.
    /// @return a failure, which is logged, leaves what was there
    Result<void> saveWPresets(Slot slot);
    Result<void> saveSavingPresets(Slot slot);

    /// What an import came to.
    struct Imported {
        int count = 0;     ///< of presets that were added
        QStringList notes; ///< sentences on what of the file is not among them, and what will not be saved
    };

    /// Adds the presets of a file to the list, saving presets with new IDs, watermark presets without
    /// assigned ones. A file that cannot be used is reported and changes nothing.
    /// @return none for such a file
    std::optional<Imported> importPresetsFromFile(const QString &path, Kind kind);
    bool importExamplePresets(Kind kind);

    /// Adds a copy of the quick watermark preset to the list, as "Saved Quick Preset".
    void saveQuickAsWPreset();
    /// Makes a copy of a stored preset the quick watermark preset.
    void loadWPreset(const WPreset &preset);

    /// The first one in the list with that ID; null when there is none.
    std::shared_ptr<SavingPreset> savingPresetWithID(qint64 presetID) const;

    const WPresetList &wPresets() const { return m_wPresets; }
    void setWPresets(WPresetList presets);
    const SavingPresetList &savingPresets() const { return m_savingPresets; }
    void setSavingPresets(SavingPresetList presets);

    /// Never null.
    const std::shared_ptr<WPreset> &quickWPreset() const { return m_quickWPreset; }
    const std::shared_ptr<SavingPreset> &quickSavingPreset() const { return m_quickSavingPreset; }

Q_SIGNALS:
    void wPresetsChanged();
    void savingPresetsChanged();
    /// It is another object now.
    void quickWPresetChanged();
    void quickSavingPresetChanged();

private:
    struct Reading;

    /// What is known of a file on the disk, which saving replaces.
    struct Found {
        bool isUnreadable = false; ///< and it is where it was
        bool isPartlyRead = false; ///< there is more in it than this object has
    };

    Reading readFile(const QString &path, Kind kind) const;
    bool makeListFromExamples(Kind kind) const;
    QString backupWrongPresetsFile(const QString &path, ReadCode readingReturnCode);
    Found &found(Kind kind, Slot slot);
    Result<void> makeRoomForFile(Kind kind, Slot slot);
    SavingPresetList writableSavingPresets();
    void setSavingPresetsInFile(const SavingPresetList &presets);
    void take(const Reading &reading, Kind kind, Slot slot);
    void warn(const QString &title, const QString &text);

    Alerts &m_alerts;
    const FontCatalog &m_fonts;
    Places m_places;
    WPresetList m_wPresets;
    SavingPresetList m_savingPresets;
    std::shared_ptr<WPreset> m_quickWPreset;
    std::shared_ptr<SavingPreset> m_quickSavingPreset;
    std::array<std::array<Found, 2>, 2> m_found; ///< by kind and slot
    QSet<qint64> m_savingPresetsInFile;          ///< the IDs in the list on the disk, as far as is known
    QSet<QString> m_toldUnwritable;              ///< what was said of presets that no file can hold
};

} // namespace plexa
