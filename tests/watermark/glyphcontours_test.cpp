// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/glyphcontours.h"

#include <QtTest>

#include <algorithm>

using namespace plexa;

namespace
{

constexpr double kTouching = 0.01;

/// A thin ring of two contours around (0, 0).
QPainterPath ringOf(double radius)
{
    QPainterPath ring;
    ring.setFillRule(Qt::WindingFill);
    ring.addEllipse(QPointF(0, 0), radius, radius);
    QPainterPath hole;
    hole.addEllipse(QPointF(0, 0), radius - 0.2, radius - 0.2);
    ring.addPath(hole.toReversed());
    return ring;
}

QPainterPath barOf(double length)
{
    QPainterPath bar;
    bar.addRect(0, -1, length, 2);
    return bar;
}

std::ptrdiff_t trimmedIn(const std::vector<PlacedShape> &shapes, const CancelCheck &isCanceled = {})
{
    const auto contours = contoursOfUnion(shapes, kTouching, isCanceled);
    return std::count_if(contours.begin(), contours.end(),
                         [](const auto &contour) { return contour.has_value(); });
}

} // namespace

class GlyphContoursTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tooManyComparisonsLeaveContoursWhole()
    {
        // All rings cross all others: too many pairs, and with fewer rings too many sides.
        const QPainterPath ring = ringOf(100);
        for (const auto &[count, limit] : {std::pair(3'000, 20), {900, 410}}) {
            std::vector<PlacedShape> rings;
            for (int i = 0; i < count; ++i)
                rings.push_back({&ring, QPointF(i * 0.01, 0)});
            int checks = 0;
            QCOMPARE(trimmedIn(rings, [&checks] { return ++checks < 0; }), 0);
            // The checks count the work.
            QVERIFY2(checks > 1 && checks < limit, qPrintable(QString::number(checks)));
        }
    }

    void pointsInNeighborsAreCounted()
    {
        // The bar has few sides, but the rings cut it into many pieces.
        for (const auto &[count, trimmed] : {std::pair(5, 6), {700, 0}}) {
            std::vector<QPainterPath> paths{barOf(count + 11)};
            for (int i = 0; i < count; ++i)
                paths.push_back(ringOf(10 + i));
            std::vector<PlacedShape> shapes;
            for (const QPainterPath &path : paths)
                shapes.push_back({&path, QPointF(0, 0)});
            QCOMPARE(trimmedIn(shapes), trimmed);
        }
    }

    void cancellationEndsWithinAShape()
    {
        const QPainterPath ring = ringOf(10'000);
        const std::vector<PlacedShape> shapes(100, {&ring, QPointF(0, 0)});
        for (const int last : {1, 2, 5}) {
            int checks = 0;
            QCOMPARE(trimmedIn(shapes, [&] { return ++checks >= last; }), 0);
            QCOMPARE(checks, last);
        }
    }
};

QTEST_GUILESS_MAIN(GlyphContoursTest)
#include "glyphcontours_test.moc"
