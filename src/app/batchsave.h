// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "app/imagelist.h"
#include "presets/savingpresetvalues.h"
#include "saving/saving.h"

#include <QObject>

#include <array>
#include <vector>

namespace plexa
{

class StatusManager;
class UserDefaults;

/// Saves copies of photos on a thread of its own, with its progress and the number of copies in the status
/// line and a report of failures at the end. Main thread.
class BatchSave final : public QObject, private SavingObserver
{
    Q_OBJECT

public:
    struct Services {
        StatusManager &status;
        Alerts &alerts; ///< may be called on any thread
        const UserDefaults &defaults;
        int threads; ///< copies that are written at a time
    };

    struct Order {
        ImageList photos;
        std::vector<AppliedPreset> effectivePresets;
        bool isInSingleMode = false;
        SavingPresetValues defaultSavingPreset;
    };

    /// @param services  outlive this object
    explicit BatchSave(const Services &services);
    /// Stops; copies that were begun are completed, and the questions about them asked.
    ~BatchSave() override;

    /// Begins a run with the present settings. Asks nothing before it returns.
    /// @return false, and nothing happens, during another run or without photos or presets
    bool start(const Order &order);

    bool isSavingInProgress() const { return m_saving.isSavingInProgress(); }
    /// No further photo is begun.
    void terminateOperation() { m_saving.terminateOperation(); }

Q_SIGNALS:
    void started();
    /// The user has closed the report at the end.
    void finished();

private:
    void begun(qint64 maximum, const QString &message) override;
    void copyFinished(const SavingOutput &output) override;
    void finish();

    const Services m_services;
    Saving m_saving;
    qint64 m_maximum = 0;             // of the run's thread
    qint64 m_copies = 0;              // likewise
    std::array<int, 4> m_counts = {}; // likewise; by SavingOutput::Status
    BackgroundJob m_job;
};

} // namespace plexa
