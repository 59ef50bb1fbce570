// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"

#include <QStringList>

#include <memory>

namespace plexa
{

class Alerts;
class PresetsStore;
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
        Alerts &alerts;
        StatusManager &status;
    };

    /// @param services  outlive this object
    explicit PresetCommands(const Services &services);

    /// Adds the presets of the preset files among the paths to the user's. The files are read in the
    /// background, one after the other; the presets of each are added together, saved, and reported.
    /// @return the other paths, in their order
    QStringList importPresetsFiles(const QStringList &paths);
    bool isImporting() const { return m_isImporting; }

    /// Files that are not read completely add nothing.
    void stopImporting();

    /// Adds a copy of the quick preset to the user's and saves them; reports a failure.
    void saveQuickAsWPreset();

Q_SIGNALS:
    void importFinished();

private:
    void readNext();
    void readingEnded(BackgroundJob::End end);
    void add(const QString &path, const PresetsFileReading &reading);
    void reportUnsaved(const Error &error, const QStringList &more = {});

    const Services m_services;
    bool m_isImporting = false; // a message may be open
    QStringList m_waiting;
    float m_nRead = 0; // files
    QString m_path;    // of the file that is being read
    std::shared_ptr<PresetsFileReading> m_reading;
    BackgroundJob m_job;
};

} // namespace plexa
