// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "presets/presetsstore.h"
#include "watermark/wpreset.h"

#include <QStringList>

#include <functional>
#include <memory>

namespace plexa
{

class Alerts;
class AppliedPresets;
class StatusManager;
struct Error;
struct PresetsFileReading;

/// Changes of the user's presets that are saved at once, and the messages about them. Main thread.
class PresetCommands final : public QObject
{
    Q_OBJECT

public:
    struct Services {
        PresetsStore &store;
        AppliedPresets &applied;
        Alerts &alerts;
        StatusManager &status;
    };

    /// @param services  outlive this object
    explicit PresetCommands(const Services &services);

    /// Adds the presets of the preset files among the paths to the user's. The files are read in the
    /// background, one after the other; the presets of each are added together, saved, and reported.
    /// @return the other paths, in their order
    QStringList importPresetsFiles(const QStringList &paths);
    /// The same for one file of this kind, whatever its name.
    void importPresetsFile(const QString &path, PresetsStore::Kind kind);
    bool isImporting() const { return m_isImporting; }

    /// Files that are not read completely add nothing.
    void stopImporting();

    // The user's presets are saved at once; a failure is reported. Each is one step to undo.
    /// Adds a copy of the quick preset to the user's. @return the copy, whose edits updateLoadedWPreset()
    /// keeps
    std::shared_ptr<WPreset> saveQuickAsWPreset();
    /// Makes a copy of one of the user's presets the quick preset, and draws that.
    void loadWPreset(const std::shared_ptr<WPreset> &preset);
    /// Gives the preset that was loaded last the values of the quick preset. It keeps its name, and its
    /// saving preset unless the quick preset has one.
    void updateLoadedWPreset();

    /// The preset that the quick preset was loaded from or saved as, while that is one of the user's; null:
    /// none in this session.
    std::shared_ptr<WPreset> loadedWPreset() const;

Q_SIGNALS:
    void importFinished();
    void loadedWPresetChanged();
    /// The user has changed presets. The functions change them back and again, and return whether they could.
    void edited(const QString &text, const std::function<bool()> &restore,
                const std::function<bool()> &repeat);

private:
    struct File {
        QString path;
        PresetsStore::Kind kind = PresetsStore::Kind::Watermark;
    };

    void startReading();
    void readNext();
    void readingEnded(BackgroundJob::End end);
    void add(const File &file, const PresetsFileReading &reading);
    bool hasWPreset(const std::shared_ptr<WPreset> &preset) const;
    void setLoaded(const std::shared_ptr<WPreset> &preset);
    void saveWPresets();
    void reportUnsaved(const Error &error, const QStringList &more = {});

    const Services m_services;
    bool m_isImporting = false; // a message may be open
    QList<File> m_waiting;
    float m_nRead = 0; // files
    std::weak_ptr<WPreset> m_loadedWPreset;
    File m_file; // that is being read
    std::shared_ptr<PresetsFileReading> m_reading;
    BackgroundJob m_job;
};

} // namespace plexa
