// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/imageimport.h"

#include "platform/orderedwork.h"

namespace plexa
{

ImageImport::ImageImport(MainThreadCalls &calls, Source source, Handlers handlers, int threads)
    : m_calls(calls)
    , m_source(std::move(source))
    , m_handlers(std::move(handlers))
    , m_threads(threads)
{
}

ImageImport::~ImageImport()
{
    stop();
}

void ImageImport::start()
{
    m_isStopped = false;
    m_thread = std::jthread([this] { run(); });
}

void ImageImport::run()
{
    for (ImageList round = nextRound(); !round.empty() && !m_isStopped; round = nextRound())
        load(round);
    m_calls.post([this] {
        m_thread.join();
        m_taken.clear();
        m_isTaken.clear();
        m_handlers.finished();
    });
}

/// The photos that have joined the set since the last round.
ImageList ImageImport::nextRound()
{
    ImageList round;
    for (const std::shared_ptr<ImageObject> &image : m_source.images()) {
        if (!m_isTaken.insert(image.get()).second)
            continue;
        m_taken.push_back(image);
        round.push_back(image);
    }
    return round;
}

void ImageImport::load(const ImageList &round)
{
    std::vector<Outcome> outcomes(round.size(), Outcome::PassedOver);
    OrderedWork job;
    job.count = round.size();
    job.threads = m_threads;
    job.isStopped = [this] { return m_isStopped.load(); };
    job.work = [&](std::size_t index) {
        ImageObject &image = *round[index];
        if (m_source.contains(&image))
            outcomes[index] = image.loadImageFromDisk() ? Outcome::Loaded : Outcome::Unreadable;
    };
    job.deliver = [&](std::size_t index) {
        m_calls.post([this, image = round[index], outcome = outcomes[index]] {
            m_handlers.delivered(image, outcome);
        });
    };
    runOrdered(job);
}

} // namespace plexa
