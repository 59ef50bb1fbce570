// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/imageimport.h"

#include "platform/orderedwork.h"

namespace plexa
{

ImageImport::ImageImport(const ImageSet &set, int threads)
    : m_set(set)
    , m_threads(threads)
{
    connect(&m_job, &BackgroundJob::ended, this, [this] {
        m_begun.clear();
        m_isBegun.clear();
        Q_EMIT finished();
    });
}

void ImageImport::start()
{
    m_job.start([this] {
        for (ImageList round = nextRound(); !round.empty() && !m_job.isCanceled(); round = nextRound())
            load(round);
        return true;
    });
}

/// The photos that have joined the set since the last round.
ImageList ImageImport::nextRound()
{
    ImageList round;
    for (const std::shared_ptr<ImageObject> &image : m_set.imagesNow()) {
        if (!m_isBegun.insert(image.get()).second)
            continue;
        m_begun.push_back(image);
        round.push_back(image);
    }
    return round;
}

void ImageImport::load(const ImageList &round)
{
    std::vector<Outcome> outcomes(round.size(), Outcome::Skipped);
    OrderedWork job;
    job.count = round.size();
    job.threads = m_threads;
    job.isStopped = [this] { return m_job.isCanceled(); };
    job.work = [&](std::size_t index) {
        ImageObject &image = *round[index];
        if (m_set.contains(&image))
            outcomes[index] = image.loadImageFromDisk() ? Outcome::Loaded : Outcome::Unreadable;
    };
    job.deliver = [&](std::size_t index) {
        m_job.post(
            [this, image = round[index], outcome = outcomes[index]] { Q_EMIT delivered(image, outcome); });
    };
    runOrdered(job);
}

} // namespace plexa
