// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/alerts.h"
#include "saving/savingrun.h"

#include <QStringList>

#include <atomic>
#include <mutex>
#include <optional>

namespace plexa
{

/// Saves watermarked copies of many photos. To people it looks as if one copy was made after another:
/// numbers, names, questions, progress and results come in order. In fact names are decided in order on the
/// thread of the run, and the making of the copies overlaps on as many threads as the run allows.
///
/// One run at a time. begin(), terminateOperation() and the readers may be called from any thread.
class Saving final
{
public:
    /// @param alerts  is asked about names that are taken, on the thread of the run; outlives the object
    explicit Saving(Alerts &alerts);

    /// A run is about to start on another thread: from now on it is in progress and can be stopped.
    void begin();

    /// Runs it, on the calling thread and threads of its own, until all copies that were begun are made. Then
    /// finishedSavingImages() has to be called.
    void saveImages(const SavingRun &run, SavingObserver &observer);

    /// No further photo is begun; those under way get all their copies.
    void terminateOperation() { m_terminateOperation = true; }

    /// From begin() or saveImages() to the end of finishedSavingImages().
    bool isSavingInProgress() const { return m_isSavingInProgress; }

    /// File names of the photos whose copies failed, in order, once for each copy.
    QStringList savingFailedImages() const;

    /// What remains to be done at the end of a run.
    struct End {
        std::optional<Alert> failures; ///< to be shown: names of the photos whose copies failed
        /// What was asked for the companion application: of each written copy its path and its source's.
        std::optional<QStringList> savedImagesInfo;
    };

    /// The end of a run, which is then forgotten.
    End finishedSavingImages();

private:
    Alerts &m_alerts;
    std::atomic_bool m_terminateOperation = false;
    std::atomic_bool m_isSavingInProgress = false;
    mutable std::mutex m_mutex;
    QStringList m_savingFailedImages;             // guarded
    std::optional<QStringList> m_savedImagesInfo; // guarded
};

} // namespace plexa
