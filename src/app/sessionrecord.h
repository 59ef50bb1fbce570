// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "metadata/imagemetadata.h"

#include <QJsonObject>
#include <QLockFile>
#include <QTimer>

#include <chrono>
#include <map>

namespace plexa
{

class Alerts;
class AppController;

/// Keeps the working set and the applied presets in a file while the program runs, so that they survive a
/// crash: the paths of the photos with their turns, the positions chosen by hand and edited metadata, and the
/// received files that are to be deleted. Of several processes at a time, the first one does this. Main
/// thread.
class SessionRecord final : public QObject
{
    Q_OBJECT

public:
    /// @param controller  outlives this object, like the alerts
    /// @param delay       time from a change to its writing
    SessionRecord(AppController &controller, Alerts &alerts,
                  std::chrono::milliseconds delay = std::chrono::seconds(3));
    /// Leaves the file as it is.
    ~SessionRecord() override;

    /// Asks whether the session of a program that did not quit is to be restored, does so, and records from
    /// now on. Once, after the presets were read.
    void begin();
    /// Removes the file: the program quits. During the question of begin() the file stays.
    void end();

    static QString path();

private:
    bool mayRestore(qsizetype photoCount);
    QJsonObject record() const;
    std::map<qsizetype, ImageMetadata> editedMetadata() const;
    void restore(const QJsonObject &session);
    void write();

    AppController &m_controller;
    Alerts &m_alerts;
    QLockFile m_lock; // of the file
    bool m_isRecording = false;
    bool m_hasEnded = false;
    QTimer m_timer;
    QByteArray m_written; // of the writer's thread
    BackgroundJob m_writer;
};

} // namespace plexa
