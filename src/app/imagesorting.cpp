// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/imagesorting.h"

#include "app/imageset.h"
#include "app/statusmanager.h"
#include "platform/naturalorder.h"
#include "platform/orderedwork.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace plexa
{

namespace
{

ImageList sortedByName(const ImageList &images)
{
    const NaturalOrder order;
    std::vector<std::pair<NaturalOrder::Key, std::shared_ptr<ImageObject>>> keyed;
    keyed.reserve(images.size());
    for (const std::shared_ptr<ImageObject> &image : images)
        keyed.emplace_back(order.keyOf(image->path().section(u'/', -1)), image);
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto &one, const auto &other) { return one.first.compare(other.first) < 0; });
    ImageList sorted;
    sorted.reserve(keyed.size());
    for (auto &[key, image] : keyed)
        sorted.push_back(std::move(image));
    return sorted;
}

/// Milliseconds on the clock of the camera; none without a date.
std::optional<double> captureTimeOf(const ImageObject &image)
{
    std::optional<ImageMetadata> metadata = image.metadata();
    if (!metadata) {
        const Result<PhotoFacts> facts = image.readFacts();
        if (!facts)
            return std::nullopt;
        metadata = facts->metadata();
    }
    const QDateTime date = metadata->exifDateTimeOriginal();
    if (!date.isValid())
        return std::nullopt;
    const auto wallClock = QDateTime(date.date(), date.time(), Qt::UTC).toMSecsSinceEpoch();
    const QString fraction = metadata->exifSubsecTimeOriginal().toString().trimmed();
    return static_cast<double>(wallClock) + 1000 * (QStringLiteral("0.") + fraction).toDouble();
}

} // namespace

ImageSorting::ImageSorting(ImageSet &set, StatusManager &status, int threads)
    : m_set(set)
    , m_status(status)
    , m_threads(threads)
{
    connect(&m_job, &BackgroundJob::ended, this, &ImageSorting::finish);
}

void ImageSorting::sort(Key key)
{
    if (isRunning())
        return;
    m_status.startOperation(StatusOperation::Sorting);
    m_job.start([this, key, images = *m_set.images()] {
        m_sorted = key == Key::Name ? sortedByName(images) : sortedByDate(images);
        return true;
    });
}

/// Thread of the job.
ImageList ImageSorting::sortedByDate(const ImageList &images)
{
    std::vector<std::optional<double>> dates(images.size());
    OrderedWork reading;
    reading.count = images.size();
    reading.threads = m_threads;
    reading.isStopped = [this] { return m_job.isCanceled(); };
    reading.work = [&](std::size_t index) { dates[index] = captureTimeOf(*images[index]); };
    reading.deliver = [&](std::size_t index) {
        m_status.setProgress(static_cast<float>(index + 1) / static_cast<float>(images.size()),
                             StatusOperation::Sorting);
    };
    runOrdered(reading);

    std::vector<std::pair<double, std::shared_ptr<ImageObject>>> dated;
    ImageList undated;
    for (std::size_t index = 0; index < images.size(); ++index) {
        if (dates[index])
            dated.emplace_back(*dates[index], images[index]);
        else
            undated.push_back(images[index]);
    }
    std::stable_sort(dated.begin(), dated.end(),
                     [](const auto &one, const auto &other) { return one.first < other.first; });
    ImageList sorted;
    sorted.reserve(images.size());
    for (auto &[date, image] : dated)
        sorted.push_back(std::move(image));
    undated = sortedByName(undated);
    sorted.insert(sorted.end(), undated.begin(), undated.end());
    return sorted;
}

void ImageSorting::finish(BackgroundJob::End end)
{
    const ImageList sorted = std::exchange(m_sorted, {});
    if (end == BackgroundJob::End::Done)
        m_set.sortImages(sorted);
    m_status.endOperation(StatusOperation::Sorting);
    Q_EMIT finished();
}

void ImageSorting::reverse()
{
    m_set.sortImages({m_set.images()->rbegin(), m_set.images()->rend()});
}

} // namespace plexa
