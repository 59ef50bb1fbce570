// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/savingprocess.h"

#include "imageio/base/picturefailures.h"
#include "platform/atomicfile.h"
#include "platform/systemerror.h"
#include "platform/workpool.h"
#include "raster/bitmaputilities.h"
#include "saving/namingtokens.h"
#include "saving/targetfolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <mutex>
#include <utility>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::Saving)
};

constexpr int kProgressPictureSide = 180;

using Use = FilesUnderWay::Use;

bool isCombining(const SavingRun &run)
{
    return run.combineAllAppliedPresetsInImage && !run.isInSingleMode;
}

/// Tokens other than the photo's own name are read from the photo.
bool needPhoto(const QStringList &tokens)
{
    return std::any_of(tokens.begin(), tokens.end(), [](const QString &token) {
        return token != QLatin1StringView("filename") && tokenNames().contains(token);
    });
}

struct AheadOfTime {
    SavingPhoto photo;
    std::optional<PhotoFacts> facts; ///< none where they are not needed, or cannot be read
    QString failure;                 ///< why they cannot
    QImage picture;                  ///< small; null when the photo is not loaded
    bool isDone = false;             // guarded by the process's mutex
};

struct PhotoInWork {
    ~PhotoInWork()
    {
        if (isReleased && image)
            image->releaseImagesData();
    }

    std::shared_ptr<ImageObject> image;
    QString key;
    bool isReleased = false;
    std::unique_ptr<QFile> original; ///< the open file, where a copy replaces it before the last one is made
};

struct Pending {
    SavingOutput output;
    QStringList alternatives; ///< paths that were tried in place of output.path
    bool overwrites = false;
    bool followsLink = false; ///< the path is a symbolic link to the photo itself
    /// If another program takes the path meanwhile; kNoChoice: the copy fails.
    OutputNaming::Choice ifTakenMeanwhile = OutputNaming::kNoChoice;
    bool isTakenMeanwhile = false;
    /// Also when it fails: other copies have chosen their names already.
    bool keepsName = false;
    bool isFinished = true; // guarded by the process's mutex
};

struct Order {
    std::vector<AppliedPreset> presets; ///< all of them, or the one
    SavingPresetValues savingPreset;
    bool isCombined = false;
    bool isLastOfPhoto = false;
};

AtomicFile::IfExists ifExists(const Pending &pending)
{
    if (pending.ifTakenMeanwhile != OutputNaming::kOverwrite)
        return AtomicFile::IfExists::Fail;
    return pending.followsLink ? AtomicFile::IfExists::Replace : AtomicFile::IfExists::ReplaceLink;
}

std::vector<Order> ordersOf(const SavingRun &run)
{
    std::vector<Order> orders;
    const bool combines = isCombining(run);
    for (const PresetToSave &preset : run.effectivePresets) {
        if (combines && !orders.empty()) {
            orders.front().presets.push_back(preset.applied);
            continue;
        }
        const bool hasOwn = preset.assignedSavingPreset && !run.ignoreAssignedSavingPresets && !combines;
        orders.push_back(
            {{preset.applied}, hasOwn ? *preset.assignedSavingPreset : run.defaultSavingPreset, combines});
    }
    if (!orders.empty())
        orders.back().isLastOfPhoto = true;
    return orders;
}

OutputFolders foldersOf(const SavingRun &run)
{
    OutputFolders folders = run.folders;
    folders.makesFolders = !run.isDryRun;
    return folders;
}

/// For a dry run: what of a failure to write can be known beforehand.
Result<void> checkPlace(const Pending &pending)
{
    const QString &path = pending.output.path;
    if (const QString folder = QFileInfo(path).path(); !QFileInfo(folder).isDir())
        return checkFolderCanBeMade(folder);
    return AtomicFile(path, ifExists(pending)).check();
}

/// Is no watermark visible, as far as that is known without drawing?
bool isKnownUnmarked(const PhotoFacts &facts, const Order &order)
{
    return std::all_of(order.presets.begin(), order.presets.end(), [&](const AppliedPreset &preset) {
        const WPresetValues &values = preset.values;
        const std::optional<QString> text = values.type == QLatin1StringView("Text")
                                                ? watermarkTextForImage(values, facts)
                                                : QStringLiteral("picture");
        return !text ||
               (!values.background && (values.opacity.value_or(0) <= 0 || text->trimmed().isEmpty()));
    });
}

QStringList emptyTokens(const AheadOfTime &ahead, const Order &order)
{
    QStringList empty;
    for (const QString &token : order.savingPreset.filenameTokens) {
        const auto text =
            namingTokenText(token, 0, order.presets.front().values.name, order.savingPreset.name);
        if (text && text->isEmpty() && !empty.contains(token))
            empty.append(token);
    }
    QStringList tokens = order.savingPreset.filenameTokens;
    for (const AppliedPreset &preset : order.presets) {
        if (preset.values.type == QLatin1StringView("Text"))
            tokens += preset.values.textTokens;
    }
    for (const QString &token : std::as_const(tokens)) {
        bool isToken = false;
        if (ahead.facts && ahead.facts->stringForInfoToken(token, &isToken).value_or(QString()).isEmpty() &&
            isToken && !empty.contains(token))
            empty.append(token);
    }
    return empty;
}

/// One run of Saving.
class SavingProcess final
{
public:
    /// All of them outlive the object.
    SavingProcess(const SavingRun &run, SavingObserver &observer, Alerts &alerts,
                  const std::atomic_bool &terminateOperation);

    void run();

private:
    OutputNaming::Wait waitForOutcome();
    bool isStopped() const;
    void readAhead(std::size_t untilIndex);
    std::shared_ptr<AheadOfTime> next();
    void read(AheadOfTime &photo) const;
    void savePhoto();
    void saveCopy(const std::shared_ptr<PhotoInWork> &photo, const AheadOfTime &ahead, const Order &order);
    void decide(Pending &pending, const AheadOfTime &ahead, const Order &order, const QString &photoKey);
    void setDestination(Pending &pending, const OutputNaming::Destination &destination,
                        const QString &photoKey) const;
    Result<void> checkPlan(const Pending &pending, const AheadOfTime &ahead) const;
    void startWriting(Pending &pending, const std::shared_ptr<PhotoInWork> &photo, const Order &order);
    std::function<std::optional<QString>()> alternativesFor(Pending &pending);
    void giveNameBack(const Pending &pending);
    void failBeforehand(Pending &pending, const QString &reason);
    void finish(Pending &pending, Result<CopyReport> result, const QString &sourceKey, const QString &target);
    void removeLeftoversIn(const QString &folder);

    /// Reports results that are due until the condition holds, which is asked with the lock held.
    template<class Condition>
    void waitUntil(Condition condition);

    const SavingRun &m_run;
    SavingObserver &m_observer;
    const std::atomic_bool &m_terminateOperation;
    OutputNaming m_naming;
    const std::vector<Order> m_orders; // for each photo
    const qint64 m_total;
    const bool m_namesNeedPhotos;

    // The run's thread only.
    std::deque<std::shared_ptr<AheadOfTime>> m_ahead;
    std::size_t m_nextToRead = 0;
    std::deque<std::unique_ptr<Pending>> m_pending;
    QSet<QString> m_overwritten; // keys of files
    QSet<QString> m_visitedFolders;
    OutputNaming::ConflictCode m_conflictCode;
    qint64 m_counter = 0;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_unfinished = 0; // guarded; copies that the pool has

    std::optional<WorkPool> m_pool; // last: its threads use all of the above
};

SavingProcess::SavingProcess(const SavingRun &run, SavingObserver &observer, Alerts &alerts,
                             const std::atomic_bool &terminateOperation)
    : m_run(run)
    , m_observer(observer)
    , m_terminateOperation(terminateOperation)
    , m_naming(foldersOf(run), alerts, run.isDryRun ? OutputNaming::Wait() : waitForOutcome(),
               run.conflictScope)
    , m_orders(ordersOf(run))
    , m_total(static_cast<qint64>(run.photoCount * m_orders.size()))
    , m_namesNeedPhotos(run.isDryRun || std::any_of(m_orders.begin(), m_orders.end(),
                                                    [](const Order &order) {
                                                        return needPhoto(order.savingPreset.filenameTokens);
                                                    }))
    , m_conflictCode(run.conflictCode)
{
}

OutputNaming::Wait SavingProcess::waitForOutcome()
{
    return [this](const QString &path) { waitUntil([&] { return !m_naming.isBeingWritten(path); }); };
}

bool SavingProcess::isStopped() const
{
    return m_terminateOperation || (m_run.isStopped && m_run.isStopped());
}

template<class Condition>
void SavingProcess::waitUntil(Condition condition)
{
    std::unique_lock lock(m_mutex);
    while (true) {
        if (!m_pending.empty() && m_pending.front()->isFinished) {
            const std::unique_ptr<Pending> due = std::move(m_pending.front());
            m_pending.pop_front();
            lock.unlock();
            m_observer.copyFinished(due->output);
            lock.lock();
        } else if (condition()) {
            return;
        } else {
            m_changed.wait(lock);
        }
    }
}

void SavingProcess::run()
{
    m_observer.begun(m_total, Texts::tr("Saving images..."));
    if (m_total == 0)
        return;
    if (!m_run.folders.destDirectory.isEmpty() && !m_run.isDryRun)
        QDir().mkpath(m_run.folders.destDirectory); // without it every copy fails
    for (const QString &photo : m_run.keptPhotos)
        m_naming.files().begin(FilesUnderWay::keyOf(photo), Use::Photo);
    const int jobs = std::max(m_run.jobs, 1);
    m_pool.emplace(static_cast<int>(std::min<qint64>(jobs, m_total)));
    for (std::size_t index = 0; index < m_run.photoCount; ++index) {
        if (isStopped())
            break;
        readAhead(index + static_cast<std::size_t>(jobs));
        waitUntil([&] { return m_unfinished < jobs; });
        if (isStopped())
            break;
        savePhoto();
    }
    waitUntil([this] { return m_pending.empty(); });
    m_pool.reset();
}

void SavingProcess::readAhead(std::size_t untilIndex)
{
    for (; m_nextToRead < m_run.photoCount && m_nextToRead <= untilIndex; ++m_nextToRead) {
        const auto ahead = std::make_shared<AheadOfTime>();
        ahead->photo = m_run.photoAt(m_nextToRead);
        m_ahead.push_back(ahead);
        m_pool->add([this, ahead] {
            read(*ahead);
            const std::lock_guard lock(m_mutex);
            ahead->isDone = true;
            m_changed.notify_all();
        });
    }
}

void SavingProcess::read(AheadOfTime &ahead) const
{
    ahead.failure = ahead.photo.failure;
    if (!ahead.photo.image)
        return;
    if (m_namesNeedPhotos) {
        if (Result<PhotoFacts> facts = ahead.photo.image->readFacts())
            ahead.facts = std::move(*facts);
        else
            ahead.failure = facts.error().text;
    }
    // The cache may have dropped the pixels of a loaded photo.
    QImage loaded = ahead.photo.image->imageAtHand();
    if (loaded.isNull())
        loaded = ahead.photo.image->thumbnail().mirrored();
    if (!loaded.isNull())
        ahead.picture = createImageScaledToMaxSize(loaded, kProgressPictureSide, false);
}

/// The next photo, when its turn has come.
std::shared_ptr<AheadOfTime> SavingProcess::next()
{
    std::shared_ptr<AheadOfTime> ahead = std::move(m_ahead.front());
    m_ahead.pop_front();
    const QString key = FilesUnderWay::keyOf(ahead->photo.path);
    waitUntil([&] { return ahead->isDone && !m_naming.files().isUsed(key, Use::Written); });
    if (m_overwritten.contains(key)) // after it was read
        read(*ahead);
    return ahead;
}

void SavingProcess::savePhoto()
{
    const std::shared_ptr<AheadOfTime> ahead = next();
    const auto photo = std::make_shared<PhotoInWork>();
    photo->image = ahead->photo.image;
    photo->key = FilesUnderWay::keyOf(ahead->photo.path);
    photo->isReleased = m_run.releasesImages && !m_run.isDryRun;
    if (!ahead->picture.isNull())
        m_observer.pictureBegun(ahead->picture);
    for (const Order &order : m_orders)
        saveCopy(photo, *ahead, order);
}

void SavingProcess::saveCopy(const std::shared_ptr<PhotoInWork> &photo, const AheadOfTime &ahead,
                             const Order &order)
{
    auto made = std::make_unique<Pending>();
    Pending &pending = *made;
    SavingOutput &output = pending.output;
    output.sourcePath = ahead.photo.path;
    output.sequenceNumber = m_run.firstSequenceNumber + m_counter++;
    output.wPresetName = order.presets.front().values.name;
    output.isCombined = order.isCombined;
    if (photo->image) {
        decide(pending, ahead, order, photo->key);
    } else {
        output.status = SavingOutput::Status::Failed;
        output.error = ahead.failure;
    }
    if (output.status == SavingOutput::Status::Planned && m_run.isDryRun) {
        output.emptyTokens = emptyTokens(ahead, order);
        output.isKnownUnmarked = ahead.facts && isKnownUnmarked(*ahead.facts, order);
        if (const Result<void> possible = checkPlan(pending, ahead); !possible)
            failBeforehand(pending, possible.error().text);
    } else if (output.status == SavingOutput::Status::Planned) {
        startWriting(pending, photo, order);
    }
    m_pending.push_back(std::move(made));
}

/// For a dry run: the reasons against the copy that are known beforehand.
Result<void> SavingProcess::checkPlan(const Pending &pending, const AheadOfTime &ahead) const
{
    if (!ahead.failure.isEmpty())
        return fail(ahead.failure);
    if (m_run.copyRules.needsVisibleMark && pending.output.isKnownUnmarked)
        return fail(noVisibleMark());
    return checkPlace(pending);
}

/// Name, question, final path.
void SavingProcess::decide(Pending &pending, const AheadOfTime &ahead, const Order &order,
                           const QString &photoKey)
{
    using Conflict = SavingOutput::Conflict;
    SavingOutput &output = pending.output;
    const PhotoFacts facts = ahead.facts ? *ahead.facts : ahead.photo.image->facts();
    const QString name = OutputNaming::filenameForImage(facts, ahead.photo.path, output.wPresetName,
                                                        order.savingPreset, output.sequenceNumber);
    m_observer.copyBegun(m_counter, Texts::tr("Saving image %1 out of %2:\n%3")
                                        .arg(QString::number(m_counter), QString::number(m_total), name));
    const QString path = m_naming.pathForCopy(ahead.photo.path, name);
    pending.output.wantedPath = path;
    pending.keepsName = m_conflictCode == OutputNaming::always(OutputNaming::kUniqueName);
    if (const auto destination = m_naming.finalDestinationForPath(path, m_conflictCode, photoKey)) {
        setDestination(pending, *destination, photoKey);
        return;
    }
    output.status = SavingOutput::Status::Skipped;
    const auto choice = static_cast<quint32>(m_conflictCode) & ~OutputNaming::kRemembered;
    output.conflict = choice == OutputNaming::kSkip ? Conflict::Skip : Conflict::NoNameIsFree;
}

void SavingProcess::setDestination(Pending &pending, const OutputNaming::Destination &destination,
                                   const QString &photoKey) const
{
    using Conflict = SavingOutput::Conflict;
    SavingOutput &output = pending.output;
    output.path = destination.path;
    pending.overwrites = destination.overwrites;
    pending.followsLink = FilesUnderWay::keyOf(destination.path) == photoKey;
    const auto code = static_cast<quint32>(m_conflictCode);
    if ((code & OutputNaming::kRemembered) != 0)
        pending.ifTakenMeanwhile = static_cast<OutputNaming::Choice>(code & ~OutputNaming::kRemembered);
    if (destination.overwrites) {
        output.conflict = Conflict::Overwrite;
        pending.ifTakenMeanwhile = OutputNaming::kOverwrite;
    } else if (destination.path != pending.output.wantedPath) {
        output.conflict = destination.avoidsOwnFile ? Conflict::UniqueNameInRun : Conflict::UniqueName;
        pending.ifTakenMeanwhile = OutputNaming::kUniqueName;
    }
}

void SavingProcess::startWriting(Pending &pending, const std::shared_ptr<PhotoInWork> &photo,
                                 const Order &order)
{
    // A folder that could not be made: the writing would not know why it is not there.
    const QString folder = QFileInfo(pending.output.path).path();
    if (const Result<void> possible = checkFolderCanBeMade(folder); !possible)
        return failBeforehand(pending, possible.error().text);
    removeLeftoversIn(folder);
    FilesUnderWay &files = m_naming.files();
    const QString target = OutputNaming::targetKey(pending.output.path, photo->key);
    if (pending.overwrites) {
        waitUntil([&] { return !files.isUsed(target, Use::Written) && !files.isUsed(target, Use::Read); });
        if (target == photo->key && !order.isLastOfPhoto && !photo->original) {
            // The copies to come are made of the photo as it is now.
            auto original = std::make_unique<QFile>(photo->image->readPath());
            if (!original->open(QIODevice::ReadOnly))
                return failBeforehand(pending, PictureFailures::readError(*original));
            photo->original = std::move(original);
        }
        m_overwritten.insert(target);
    }
    QString readFrom;
    if (photo->original)
        readFrom = QStringLiteral("/proc/self/fd/%1").arg(photo->original->handle());
    {
        const std::lock_guard lock(m_mutex);
        pending.isFinished = false;
        ++m_unfinished;
    }
    files.begin(photo->key, Use::Read);
    files.begin(target, Use::Written);
    m_pool->add([this, &pending, photo, &order, readFrom, target, nextPath = alternativesFor(pending)] {
        Result<CopyReport> result =
            photo->image->saveImageAtPath({pending.output.path, ifExists(pending), nextPath}, order.presets,
                                          order.savingPreset, m_run.copyRules, {}, readFrom);
        finish(pending, std::move(result), photo->key, target);
    });
}

/// If another program has taken the path: another unique path each time, or none for a copy that is skipped
/// then. Called on a thread of the pool.
std::function<std::optional<QString>()> SavingProcess::alternativesFor(Pending &pending)
{
    if (pending.ifTakenMeanwhile == OutputNaming::kSkip)
        return [&pending]() -> std::optional<QString> {
            pending.isTakenMeanwhile = true;
            return std::nullopt;
        };
    if (pending.ifTakenMeanwhile != OutputNaming::kUniqueName)
        return {};
    return [this, &pending, number = 0]() mutable -> std::optional<QString> {
        std::optional<QString> next = m_naming.anotherUniquePath(pending.output.wantedPath, number);
        if (next)
            pending.alternatives.append(*next);
        return next;
    };
}

/// After a failure the next copy may have the name, in a dry run as in the one that follows.
void SavingProcess::giveNameBack(const Pending &pending)
{
    if (!pending.keepsName)
        m_naming.finished(pending.output.path);
}

/// Before the writing has begun.
void SavingProcess::failBeforehand(Pending &pending, const QString &reason)
{
    pending.output.status = SavingOutput::Status::Failed;
    pending.output.error = reason;
    giveNameBack(pending);
}

/// On a thread of the pool. Nothing may touch the copy afterwards.
void SavingProcess::finish(Pending &pending, Result<CopyReport> result, const QString &sourceKey,
                           const QString &target)
{
    SavingOutput &output = pending.output;
    // Whoever waits for one of these finds out now whether there is a file.
    if (result) {
        m_naming.files().begin(
            pending.alternatives.isEmpty() ? target : FilesUnderWay::nameKeyOf(pending.alternatives.last()),
            Use::Made);
        m_naming.finished(output.path);
    } else {
        giveNameBack(pending);
    }
    for (const QString &path : std::as_const(pending.alternatives))
        m_naming.finished(path);
    m_naming.files().end(target, Use::Written);
    m_naming.files().end(sourceKey, Use::Read);
    if (!pending.alternatives.isEmpty()) {
        output.path = pending.alternatives.last();
        output.conflict = SavingOutput::Conflict::UniqueName;
    }
    if (pending.isTakenMeanwhile) {
        output.status = SavingOutput::Status::Skipped;
        output.conflict = SavingOutput::Conflict::Skip;
        output.path.clear();
    } else if (result) {
        output.status = SavingOutput::Status::Written;
        output.report = std::move(*result);
    } else {
        output.status = SavingOutput::Status::Failed;
        output.error = result.error().text;
    }
    const std::lock_guard lock(m_mutex);
    pending.isFinished = true;
    --m_unfinished;
    m_changed.notify_all();
}

/// Once for each folder.
void SavingProcess::removeLeftoversIn(const QString &folder)
{
    if (m_visitedFolders.contains(folder))
        return;
    m_visitedFolders.insert(folder);
    removeLeftovers(folder);
}

} // namespace

void saveCopies(const SavingRun &run, SavingObserver &observer, Alerts &alerts,
                const std::atomic_bool &terminateOperation)
{
    SavingProcess(run, observer, alerts, terminateOperation).run();
}

} // namespace plexa
