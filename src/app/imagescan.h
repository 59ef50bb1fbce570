// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"

#include <QStringList>

namespace plexa
{

/// A walk over files and folders in the background that hands the files over in batches. Main thread.
class ImageScan final : public QObject
{
    Q_OBJECT

public:
    ImageScan();

    /// Begins to walk over these paths, in order. No scan may run.
    void start(const QStringList &paths);

    /// No further file is read; finished() is still sent. Any thread.
    void stop() { m_job.cancel(); }
    bool isStopped() const { return m_job.isCanceled(); }

Q_SIGNALS:
    void found(const QStringList &paths);
    /// Sent once, before finished(), if there are any.
    void unreadable(const QStringList &paths);
    /// Sent after the last batch, even if the scan was stopped.
    void finished();

private:
    void run(const QStringList &paths);

    BackgroundJob m_job;
};

} // namespace plexa
