// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/scaledpictures.h"

#include <QtTest>

#include <atomic>
#include <latch>
#include <thread>

using namespace plexa;

namespace
{

constexpr QSize kSize(100, 10); // 4,000 bytes

QImage picture(QSize size = kSize)
{
    return QImage(size, QImage::Format_ARGB32_Premultiplied);
}

} // namespace

class ScaledPicturesTest : public QObject
{
    Q_OBJECT

private:
    /// @return whether the picture had to be rendered
    static bool isRendered(ScaledPictures &pictures, const void *owner, QSize size = kSize)
    {
        bool isRendered = false;
        pictures.find(owner, size,
                      [&] {
                          isRendered = true;
                          return picture(size);
                      },
                      {});
        return isRendered;
    }

private Q_SLOTS:
    void theOldestGoFirst()
    {
        ScaledPictures pictures(12'000);
        const int owners[2] = {};
        QVERIFY(isRendered(pictures, &owners[0]));
        QVERIFY(isRendered(pictures, &owners[1]));
        QVERIFY(isRendered(pictures, &owners[0], {10, 100}));
        QVERIFY(!isRendered(pictures, &owners[0]));
        QVERIFY(isRendered(pictures, &owners[0], {11, 90}));
        QVERIFY(isRendered(pictures, &owners[1]));
        QVERIFY(!isRendered(pictures, &owners[0]));
        pictures.remove(&owners[0]);
        QVERIFY(isRendered(pictures, &owners[0]));
        QVERIFY(!isRendered(pictures, &owners[1]));
        QVERIFY(isRendered(pictures, &owners[0], {100, 31}));
        QVERIFY(isRendered(pictures, &owners[0], {100, 31})); // more than all may take
        QVERIFY(!isRendered(pictures, &owners[0]));
    }

    void threadsWaitForTheSameSizeOnly()
    {
        ScaledPictures pictures(100'000);
        std::latch hasBegun(1);
        std::latch mayEnd(1);
        std::atomic<int> count = 0;
        const auto slow = [&] {
            ++count;
            hasBegun.count_down();
            mayEnd.wait();
            return picture();
        };
        const void *const owner = this;
        std::jthread first([&] { pictures.find(owner, kSize, slow, {}); });
        hasBegun.wait();
        std::atomic<bool> isAsked = false;
        std::jthread second([&] {
            pictures.find(owner, kSize, slow, [&] {
                isAsked = true;
                return false;
            });
        });
        QVERIFY(isRendered(pictures, owner, {20, 20}));
        // A thread that waits gives up when it is canceled.
        QVERIFY(pictures.find(owner, kSize, slow, [] { return true; }).isNull());
        QTRY_VERIFY(isAsked);
        mayEnd.count_down();
        first.join();
        second.join();
        QCOMPARE(count.load(), 1);
    }

    /// Also after an exception.
    void aThreadTakesOverAfterAFailure()
    {
        ScaledPictures pictures(100'000);
        QVERIFY(pictures.find(this, kSize, [] { return QImage(); }, {}).isNull());
        QVERIFY_THROWS_EXCEPTION(std::bad_alloc,
                                 pictures.find(this, kSize, []() -> QImage { throw std::bad_alloc(); }, {}));
        QVERIFY(isRendered(pictures, this));
    }
};

QTEST_GUILESS_MAIN(ScaledPicturesTest)
#include "scaledpictures_test.moc"
