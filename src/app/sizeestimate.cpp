// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/sizeestimate.h"

#include "platform/filenames.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <map>
#include <random>
#include <utility>

namespace plexa
{
namespace
{

/// A slider that moves changes the run all the time.
constexpr std::chrono::milliseconds kPause(300);

/// So many copies are written at least, and more of them as long as that takes no longer.
constexpr std::size_t kSamples = 4;
constexpr std::chrono::seconds kPatience(2);

/// Copies that are like each other: of photos of one format, made in the same way.
struct Kind {
    std::vector<ImageObject *> photos; ///< in random order; those that are left to sample
    const SizeEstimate::Copy *copy = nullptr;
    qint64 photoBytes = 0; ///< of those
    qint64 sampledPhotoBytes = 0;
    qint64 sampledBytes = 0;
};

/// On the disk: the usual folder of temporary files may be in the memory, and copies can be large.
QString placeForCopies()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    QDir().mkpath(folder);
    return folder + QStringLiteral("/estimate-XXXXXX");
}

qint64 fileSize(const ImageObject &photo)
{
    return std::max<qint64>(1, QFileInfo(photo.readPath()).size());
}

/// The kinds with the largest photos first.
std::vector<Kind> kindsOf(const SizeEstimate::Run &run)
{
    std::map<QString, Kind> formats;
    for (const std::shared_ptr<ImageObject> &photo : run.photos) {
        Kind &kind = formats[fileExtensionOf(photo->readPath()).toLower()];
        kind.photos.push_back(photo.get());
        kind.photoBytes += fileSize(*photo);
    }
    std::vector<Kind> kinds;
    std::mt19937 random; // the same numbers each time
    for (const SizeEstimate::Copy &copy : run.copies) {
        for (const auto &[format, kind] : formats) {
            kinds.push_back(kind);
            kinds.back().copy = &copy;
            std::shuffle(kinds.back().photos.begin(), kinds.back().photos.end(), random);
        }
    }
    std::stable_sort(kinds.begin(), kinds.end(),
                     [](const Kind &one, const Kind &other) { return one.photoBytes > other.photoBytes; });
    return kinds;
}

/// None before the first sample.
std::optional<qint64> estimateOf(const std::vector<Kind> &kinds)
{
    double photoBytes = 0;
    double bytes = 0;
    for (const Kind &kind : kinds) {
        photoBytes += double(kind.sampledPhotoBytes);
        bytes += double(kind.sampledBytes);
    }
    if (bytes <= 0)
        return std::nullopt;
    double sum = bytes;
    for (const Kind &kind : kinds) {
        const double ratio = kind.sampledBytes > 0
                                 ? double(kind.sampledBytes) / double(kind.sampledPhotoBytes)
                                 : bytes / photoBytes;
        sum += ratio * double(kind.photoBytes);
    }
    return static_cast<qint64>(sum);
}

/// Writes a copy of one of the photos. One that cannot be written takes no room.
void sample(Kind &kind, const QString &path, const CancelCheck &isCanceled)
{
    ImageObject &photo = *kind.photos.back();
    kind.photos.pop_back();
    kind.photoBytes -= fileSize(photo);
    if (photo.saveImageAtPath({path}, kind.copy->presets, kind.copy->savingPreset, {}, isCanceled)) {
        kind.sampledPhotoBytes += fileSize(photo);
        kind.sampledBytes += QFileInfo(path).size();
        QFile::remove(path);
    }
}

} // namespace

SizeEstimate::SizeEstimate()
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(kPause);
    connect(&m_pause, &QTimer::timeout, this, &SizeEstimate::begin);
    connect(&m_job, &BackgroundJob::ended, this, [this] {
        begin();
        Q_EMIT changed();
    });
}

void SizeEstimate::start(const Run &run)
{
    stop();
    m_next = run;
    m_pause.start();
    Q_EMIT changed();
}

void SizeEstimate::stop()
{
    m_pause.stop();
    m_job.cancel();
    m_next.reset();
    m_bytes.reset();
}

/// What waits, when nothing runs and the pause is over.
void SizeEstimate::begin()
{
    if (!m_next || m_pause.isActive() || m_job.isRunning())
        return;
    m_job.start([this, run = *std::exchange(m_next, {})] {
        const QTemporaryDir folder(placeForCopies());
        if (!folder.isValid())
            return false;
        std::vector<Kind> kinds = kindsOf(run);
        const std::size_t minimum = std::max(kSamples, kinds.size());
        const QDeadlineTimer patience(kPatience);
        std::size_t count = 0;
        for (bool isLeft = true; isLeft;) {
            isLeft = false;
            for (Kind &kind : kinds) { // each in turn
                if (m_job.isCanceled() || (count >= minimum && patience.hasExpired()))
                    return true;
                if (kind.photos.empty())
                    continue;
                isLeft = true;
                ++count;
                sample(kind, folder.filePath(QStringLiteral("copy")), [this] { return m_job.isCanceled(); });
                m_job.post([this, bytes = estimateOf(kinds)] { setBytes(bytes); });
            }
        }
        return true;
    });
    Q_EMIT changed();
}

void SizeEstimate::setBytes(std::optional<qint64> bytes)
{
    if (m_job.isCanceled())
        return; // of a former run
    m_bytes = bytes;
    Q_EMIT changed();
}

} // namespace plexa
