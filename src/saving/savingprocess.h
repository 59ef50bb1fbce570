// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/workpool.h"
#include "saving/savingrun.h"
#include "watermark/texttokens.h"

#include <QHash>
#include <QSet>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

namespace plexa
{

class Alerts;

/// One run of Saving. The thread that calls run() goes through the photos in order, decides everything about
/// their copies and reports the results; a pool reads ahead what names are made of, and makes the copies. A
/// photo is begun when the pool would run out of work otherwise.
///
/// Copies that touch the same file wait for each other, so that every file ends up as if one copy was made
/// after another: where a copy under way has the name of the next one, it is waited for to see whether there
/// will be a file (unless all names are to be unique); one that overwrites a file waits until nobody reads or
/// writes it any more, and a photo that is being overwritten is begun afterwards.
class SavingProcess final
{
public:
    /// All of them outlive the object.
    SavingProcess(const SavingRun &run, SavingObserver &observer, Alerts &alerts,
                  const std::atomic_bool &terminateOperation);
    ~SavingProcess();

    void run();

private:
    struct AheadOfTime; // what was read of a photo before its turn
    struct PhotoInWork; // a photo some copies of which are not made yet
    struct Pending;     // a copy that is not reported yet
    struct Order;       // which presets go into a copy, and how it is saved

    OutputNaming::Wait waitForOutcome();
    bool isStopped() const;
    void readAhead(std::size_t untilIndex);
    std::shared_ptr<AheadOfTime> next();
    void read(AheadOfTime &photo) const;
    void savePhoto();
    void saveCopy(const std::shared_ptr<PhotoInWork> &photo, const AheadOfTime &ahead, const Order &order);
    void decide(Pending &pending, const AheadOfTime &ahead, const Order &order, const QString &folder);
    void startWriting(Pending &pending, const std::shared_ptr<PhotoInWork> &photo, const Order &order);
    std::function<std::optional<QString>()> alternativesFor(Pending &pending);
    void giveNameBack(const Pending &pending);
    void finish(Pending &pending, Result<CopyReport> result, const QString &sourceKey, const QString &target);
    Result<void> checkPlace(const Pending &pending) const;
    QStringList emptyTokens(const AheadOfTime &ahead, const Order &order) const;
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
    QSet<QString> m_overwritten; // files as keys
    QSet<QString> m_visitedFolders;
    OutputNaming::ConflictCode m_conflictCode;
    qint64 m_counter = 0;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_unfinished = 0;            // guarded; copies that the pool has
    QHash<QString, int> m_beingRead; // guarded; files as keys
    QSet<QString> m_beingWritten;    // guarded

    std::optional<WorkPool> m_pool; // last: its threads use all of the above
};

} // namespace plexa
