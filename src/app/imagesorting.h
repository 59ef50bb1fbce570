// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "app/imagelist.h"

#include <QObject>

namespace plexa
{

class ImageSet;
class StatusManager;

/// Sorts the working set, the photos that a filter hides included. Runs in the background: the capture dates
/// of photos that are not loaded are read from their files. Main thread.
class ImageSorting final : public QObject
{
    Q_OBJECT

public:
    enum class Key {
        Name,       ///< of the file, numbers by their value
        CaptureDate ///< earliest first; photos without one at the end, by name
    };

    /// @param set      outlives this object, like the status
    /// @param threads  files that are read at a time
    ImageSorting(ImageSet &set, StatusManager &status, int threads);

    bool isRunning() const { return m_job.isRunning(); }

    /// Photos with equal keys keep their order. Photos that are added meanwhile stay at the end. Nothing
    /// happens during another sorting.
    void sort(Key key);
    /// The last photo becomes the first. At once.
    void reverse();

    /// The order stays as it is. Any thread.
    void stop() { m_job.cancel(); }

Q_SIGNALS:
    /// The set is sorted, or the sorting was stopped.
    void finished();

private:
    ImageList sortedByDate(const ImageList &images);
    void finish(BackgroundJob::End end);

    ImageSet &m_set;
    StatusManager &m_status;
    const int m_threads;
    ImageList m_sorted; // written by the job
    BackgroundJob m_job;
};

} // namespace plexa
