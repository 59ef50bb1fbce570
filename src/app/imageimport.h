// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "app/imageset.h"

#include <unordered_set>

namespace plexa
{

/// Loads the photos of a set on several threads and reports them in the set's order. Photos that join the set
/// meanwhile are loaded as well, photos that leave it are skipped. Main thread.
class ImageImport final : public QObject
{
    Q_OBJECT

public:
    enum class Outcome { Loaded, Unreadable, Skipped };

    /// @param set      outlives this object
    /// @param threads  photos that are loaded at a time
    ImageImport(const ImageSet &set, int threads);

    /// Begins with all photos of the set. No import may run.
    void start();

    /// No further photo is begun; finished() is still sent. Any thread.
    void stop() { m_job.cancel(); }

Q_SIGNALS:
    void delivered(const std::shared_ptr<plexa::ImageObject> &image, plexa::ImageImport::Outcome outcome);
    /// Sent after the last photo, even if the import was stopped.
    void finished();

private:
    ImageList nextRound();
    void load(const ImageList &round);

    const ImageSet &m_set;
    const int m_threads;
    // Kept until the end: photos are objects of the main thread, which has to destroy them.
    ImageList m_begun;
    std::unordered_set<const ImageObject *> m_isBegun;
    BackgroundJob m_job;
};

} // namespace plexa
