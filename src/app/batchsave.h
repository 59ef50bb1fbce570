// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "app/imagelist.h"
#include "app/savingreport.h"
#include "presets/savingpresetvalues.h"
#include "saving/saving.h"

#include <QObject>

#include <mutex>
#include <vector>

namespace plexa
{

class StatusManager;
class UserDefaults;

/// What a run is doing.
struct SavingProgress {
    QString message;
    QImage picture;      ///< of the photo that was begun last, at most 180 pixels; null: it is not loaded
    qint64 value = 0;    ///< the number of the copy that was begun last
    qint64 finished = 0; ///< copies that are made, or not
    qint64 maximum = 0;
};

/// Saves copies of photos on a thread of its own. Main thread.
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
        /// Not empty: copies for the companion application, in this folder and by its rules.
        QString exchangeFolder = {};
    };

    /// @param services  outlive this object
    explicit BatchSave(const Services &services);
    /// Stops; copies that were begun are completed, and the questions about them asked.
    ~BatchSave() override;

    /// Begins a run with the present settings. Asks nothing before it returns.
    /// @return false, and nothing happens, during another run or without photos or presets
    bool start(const Order &order);

    bool isSavingInProgress() const { return m_saving.isSavingInProgress(); }
    /// No further photo is begun. Emits progressChanged().
    void terminateOperation();
    /// terminateOperation() was called during the run.
    bool isTerminating() const { return m_isTerminating; }

    /// The copies of the last run are for the companion application.
    bool isForCompanion() const { return m_isForCompanion; }

    SavingProgress progress() const;
    /// Of the last run, once it has finished.
    const SavingReport &report() const { return m_report; }
    /// What the last run has for the companion application: of each written copy its path and its source's.
    const QStringList &savedImagesInfo() const { return m_savedImagesInfo; }

Q_SIGNALS:
    void started();
    /// Once for many changes.
    void progressChanged();
    void finished();

private:
    SavingRun runFor(const Order &order) const;
    void begun(qint64 maximum, const QString &message) override;
    void pictureBegun(const QImage &picture) override;
    void copyBegun(qint64 value, const QString &message) override;
    void copyFinished(const SavingOutput &output) override;
    void finish();
    template<class Change>
    void change(Change change);
    Q_INVOKABLE void reportProgress();

    const Services m_services;
    Saving m_saving;
    bool m_isTerminating = false;
    bool m_isForCompanion = false;
    std::size_t m_photoCount = 1;
    qint64 m_copiesPerPhoto = 1; // of the run's thread
    bool m_hasPicture = false;   // likewise: the photo that begins
    SavingReport m_report;       // likewise, while it runs
    QStringList m_savedImagesInfo;
    mutable std::mutex m_mutex;
    SavingProgress m_progress;     // guarded by m_mutex
    bool m_isReportQueued = false; // guarded by m_mutex
    BackgroundJob m_job;
};

} // namespace plexa
