// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/orderedwork.h"

#include <QTest>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

using namespace plexa;

class OrderedWorkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void deliversInOrder()
    {
        for (const auto &[count, threads] :
             {std::pair(0, 4), std::pair(20, 1), std::pair(3, 8), std::pair(500, 5), std::pair(4, 0)})
            deliverInOrder(count, threads);
    }

    void stopsBetweenItems()
    {
        std::atomic_bool isStopped = false;
        std::atomic_size_t done = 0;
        std::size_t delivered = 0;
        OrderedWork job;
        job.count = 1000;
        job.threads = 3;
        job.work = [&](std::size_t i) {
            ++done;
            isStopped = isStopped || i == 10;
        };
        job.deliver = [&](std::size_t) { ++delivered; };
        job.isStopped = [&] { return isStopped.load(); };
        const std::size_t begun = runOrdered(job);
        QVERIFY(begun > 10 && begun < 1000);
        QCOMPARE(done.load(), begun);
        QCOMPARE(delivered, begun);
    }

private:
    void deliverInOrder(int count, int threads)
    {
        const auto main = std::this_thread::get_id();
        std::vector<std::size_t> results(static_cast<std::size_t>(count));
        std::vector<std::size_t> delivered;
        OrderedWork job;
        job.count = results.size();
        job.threads = threads;
        job.work = [&](std::size_t i) {
            // The first items take longest, so that the later ones are done before them.
            std::this_thread::sleep_for(std::chrono::microseconds((i % 7 == 0) ? 900 : 10));
            results[i] = i + 1;
        };
        job.deliver = [&](std::size_t i) {
            QCOMPARE(std::this_thread::get_id(), main);
            QCOMPARE(results[i], i + 1);
            delivered.push_back(i);
        };
        QCOMPARE(runOrdered(job), job.count);
        QCOMPARE(delivered.size(), job.count);
        QVERIFY(std::is_sorted(delivered.begin(), delivered.end()));
    }
};

QTEST_GUILESS_MAIN(OrderedWorkTest)
#include "orderedwork_test.moc"
