// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "app/imagelist.h"
#include "images/imageobject.h"

#include <QTimer>

#include <optional>
#include <vector>

namespace plexa
{

/// Estimates how large the copies of a run will be: writes some of them to a temporary folder in the
/// background, for about two seconds, and takes the others to be as large in relation to their photos' files.
/// Main thread.
class SizeEstimate final : public QObject
{
    Q_OBJECT

public:
    /// A copy that each photo gets.
    struct Copy {
        std::vector<AppliedPreset> presets; ///< that are drawn on it
        SavingPresetValues savingPreset;
    };
    struct Run {
        ImageList photos;
        std::vector<Copy> copies;
    };

    SizeEstimate();

    /// Estimates this run instead, after a pause without another call.
    void start(const Run &run);
    /// Nothing more is estimated.
    void stop();

    /// Bytes of all copies; none while nothing is known yet, or if no copy could be written.
    std::optional<qint64> bytes() const { return m_bytes; }
    /// start() was called, and bytes() is not final yet.
    bool isRunning() const { return m_pause.isActive() || m_next || m_job.isRunning(); }

Q_SIGNALS:
    /// bytes() or isRunning() is another one.
    void changed();

private:
    void begin();
    void setBytes(std::optional<qint64> bytes);

    std::optional<Run> m_next;
    std::optional<qint64> m_bytes;
    QTimer m_pause; // since start()
    BackgroundJob m_job;
};

} // namespace plexa
