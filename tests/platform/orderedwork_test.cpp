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
    void deliversInOrder_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("threads");
        QTest::newRow("nothing to do") << 0 << 4;
        QTest::newRow("one thread") << 20 << 1;
        QTest::newRow("more threads than items") << 3 << 8;
        QTest::newRow("many items") << 500 << 5;
        QTest::newRow("no thread asked for") << 4 << 0;
    }

    void deliversInOrder()
    {
        QFETCH(int, count);
        QFETCH(int, threads);
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
};

QTEST_GUILESS_MAIN(OrderedWorkTest)
#include "orderedwork_test.moc"
