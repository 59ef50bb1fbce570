// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/bytebudget.h"

#include <QtTest>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <limits>
#include <thread>
#include <vector>

using namespace plexa;
using namespace std::chrono_literals;

class ByteBudgetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requests()
    {
        ByteBudget budget(100);
        for (const qint64 bytes : {-5, 0, 40, 100}) {
            auto reservation = budget.reserve(bytes);
            QVERIFY(reservation);
            QCOMPARE(budget.available(), 100 - std::max<qint64>(bytes, 0));
            ByteBudget::Reservation moved = std::move(*reservation);
            moved.release();
            moved.release();
            QCOMPARE(budget.available(), 100);
            moved = *budget.reserve(30);
            QCOMPARE(budget.available(), 70);
        }
        QVERIFY(!budget.reserve(101) && !budget.reserve(std::numeric_limits<qint64>::max()));
        QCOMPARE(budget.available(), 100);
        QVERIFY(ByteBudget(-1).reserve(0));
    }

    void neverOverdrawn()
    {
        ByteBudget budget(100);
        std::atomic<qint64> held = 0;
        std::atomic<qint64> most = 0;
        std::atomic<int> done = 0;
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&, i] {
                for (int n = 0; n < 500; ++n) {
                    const qint64 bytes = (n * 37 + i * 11) % 101;
                    const auto reservation = budget.reserve(bytes);
                    const qint64 now = held += bytes;
                    qint64 before = most;
                    while (now > before && !most.compare_exchange_weak(before, now)) {
                    }
                    std::this_thread::yield();
                    held -= bytes;
                }
                ++done;
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(done, 4);
        QVERIFY(most <= 100);
        QCOMPARE(budget.available(), 100);
    }

    void largeRequestIsNotStarved()
    {
        ByteBudget budget(100);
        std::atomic<bool> largeIsServed = false;
        std::atomic<bool> stop = false;
        // Two threads relieve each other: each keeps its bytes until the other has some, so that all of the
        // budget is never free unless one of them has to queue, and the other one tires of waiting.
        std::array<std::atomic<int>, 2> grants{};
        const auto relieve = [&](std::size_t own) {
            while (!stop) {
                const auto held = budget.reserve(10);
                const int seen = grants[1 - own];
                ++grants[own];
                const auto end = std::chrono::steady_clock::now() + 100ms;
                while (!stop && grants[1 - own] == seen && std::chrono::steady_clock::now() < end)
                    std::this_thread::yield();
            }
        };
        std::thread first(relieve, 0);
        std::thread second(relieve, 1);
        const bool relieving = QTest::qWaitFor([&] { return grants[0] > 10 && grants[1] > 10; }, 20'000);
        std::thread large([&] {
            const auto all = budget.reserve(100);
            largeIsServed = all.has_value();
        });
        const bool served = QTest::qWaitFor([&] { return largeIsServed.load(); }, 5'000);
        stop = true;
        for (std::thread *thread : {&large, &first, &second})
            thread->join();
        QVERIFY(relieving);
        QVERIFY(served);
    }

    void addressLimit() { limit(RLIMIT_AS, 0); }
    void dataLimit() { limit(RLIMIT_DATA, 5); }

private:
    /// What is left of a limit of 100 MB beyond what is mapped.
    /// @param field  of /proc/self/statm: what the limit counts, in pages
    void limit(__rlimit_resource resource, int field)
    {
        rlimit before = {};
        QCOMPARE(getrlimit(resource, &before), 0);
        if (before.rlim_cur != RLIM_INFINITY)
            QSKIP("the tests run under such a limit themselves");
        QVERIFY(!mappableBytes());
        QVERIFY(hasRoomToSpare(std::numeric_limits<qint64>::max()));
        QFile file(u"/proc/self/statm"_qs);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const qint64 mapped =
            file.readAll().simplified().split(' ').value(field).toLongLong() * getpagesize();
        const rlimit limit = {rlim_t(mapped + 100'000'000), before.rlim_max};
        QCOMPARE(setrlimit(resource, &limit), 0);
        const std::optional<qint64> left = mappableBytes();
        const qint64 memory = physicalMemoryBytes();
        const bool hasSome = hasRoomToSpare(20'000'000);
        const bool hasAll = hasRoomToSpare(60'000'000);
        QCOMPARE(setrlimit(resource, &before), 0);
        QVERIFY2(left && *left > 80'000'000 && *left <= 100'000'000,
                 qPrintable(QString::number(left.value_or(-1))));
        QVERIFY2(memory > 80'000'000 && memory <= 100'000'000, qPrintable(QString::number(memory)));
        QVERIFY(hasSome && !hasAll);
    }
};

QTEST_GUILESS_MAIN(ByteBudgetTest)
#include "bytebudget_test.moc"
