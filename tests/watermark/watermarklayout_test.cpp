// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/datarows.h"
#include "watermark/watermarklayout.h"

#include <QtTest>

#include <cmath>
#include <limits>

using namespace plexa;

namespace
{

constexpr QSize kPhoto(4000, 3000);
constexpr QSize kMark(400, 100);

WatermarkLayout layoutOf(const WPresetValues &values, QSize mark = kMark)
{
    return layoutWatermark(values, kPhoto, mark, std::nullopt);
}

WPresetValues centerd()
{
    WPresetValues values;
    values.anchorPoint = 4;
    return values;
}

struct LengthsFollowTheirUnits {
    test::Text name;
    float value;
    test::Text unit;
    float pixels;
};

struct AnchorsAndOffsetsGiveTheOrigin {
    test::Text name;
    WholeNumber anchor;
    QPointF origin;
};

struct TheBoxIsClippedToThePhoto {
    test::Text name;
    QPointF at;
    bool isFullWidth;
    QRectF box;
};

struct RepeatsRunRightAndUp {
    test::Text name;
    bool isAcross;
    bool isUp;
    int gapX;
    int gapY;
    QList<QPointF> copies;
};

struct AbsurdTilingIsGivenUp {
    test::Text name;
    QSize mark;
    int gap;
    double start;
    bool isGivenUp;
};

struct TheShadowFallsAlongItsAngle {
    test::Text name;
    float degrees;
    QPointF offset;
};

} // namespace

class WatermarkLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lengthsFollowTheirUnits_data()
    {
        test::addRows<LengthsFollowTheirUnits>({
            {"width", 98.0F, "% of width", 3920.0F},
            {"height", 1.0F, "% of height", 30.0F},
            {"long edge", 8.0F, "% of long edge", 320.0F},
            {"short edge", 8.0F, "% of short edge", 240.0F},
            {"pixels", 8.0F, "Pixels", 8.0F},
            {"unknown", -8.5F, "% OF WIDTH", -8.5F},
            {"no unit", 8.0F, "", 8.0F},
        });
    }

    void lengthsFollowTheirUnits()
    {
        const auto [name, value, unit, pixels] = test::currentRow<LengthsFollowTheirUnits>();
        QCOMPARE(absoluteValueForSize(value, unit, kPhoto), pixels);
    }

    void anchorsAndOffsetsGiveTheOrigin_data()
    {
        test::addRows<AnchorsAndOffsetsGiveTheOrigin>({
            {"top left", WholeNumber(0), QPointF(200, 2860)},
            {"top center", WholeNumber(1), QPointF(1800, 2860)},
            {"top right", WholeNumber(2), QPointF(3400, 2860)},
            {"middle left", WholeNumber(3), QPointF(200, 1450)},
            {"center", WholeNumber(4), QPointF(1800, 1450)},
            {"middle right", WholeNumber(5), QPointF(3400, 1450)},
            {"bottom left", WholeNumber(6), QPointF(200, 40)},
            {"bottom center", WholeNumber(7), QPointF(1800, 40)},
            {"bottom right", WholeNumber(8), QPointF(3400, 40)},
            {"unknown", WholeNumber(9), QPointF(200, 40)},
            {"absent", WholeNumber(), QPointF(200, 2860)},
        });
    }

    void anchorsAndOffsetsGiveTheOrigin()
    {
        const auto [name, anchor, origin] = test::currentRow<AnchorsAndOffsetsGiveTheOrigin>();
        WPresetValues values;
        values.anchorPoint = anchor;
        values.offsetHorizontal = 5;
        values.offsetVertical = 40;
        values.offsetVerticalUnit = u"Pixels"_qs;
        QCOMPARE(layoutOf(values).rect.topLeft(), origin);
        QCOMPARE(layoutOf(values).rect.size(), QSizeF(kMark));
        // Without a box and repeats there is the one copy.
        QCOMPARE(layoutOf(values).repeats.size(), 1U);
        QVERIFY(!layoutOf(values).box);

        const WatermarkLayout ofDefaults =
            layoutWatermark(WPresetValues(), kPhoto, {3920, 240}, std::nullopt);
        QCOMPARE(ofDefaults.rect, QRectF(40, 30, 3920, 240));
    }

    void aPlaceChosenByHandIsUsedAsItStands()
    {
        const QPointF chosen(-70000.25, 1e7);
        WPresetValues values;
        values.background = true;
        const WatermarkLayout layout = layoutWatermark(values, kPhoto, kMark, chosen);
        QCOMPARE(layout.rect, QRectF(chosen, QSizeF(kMark)));
        QVERIFY(!layout.box);
    }

    void theBoxIsClippedToThePhoto_data()
    {
        test::addRows<TheBoxIsClippedToThePhoto>({
            {"inside", QPointF(1000, 500), false, QRectF(960, 480, 490, 130)},
            {"full width", QPointF(1000, 500), true, QRectF(0, 480, 4000, 130)},
            {"below", QPointF(1000, 10), true, QRectF(0, 0, 4000, 120)},
            {"left and above", QPointF(-100, 2950), false, QRectF(0, 2930, 350, 70)},
            {"right", QPointF(3900, 500), false, QRectF(3860, 480, 140, 130)},
            {"outside, right", QPointF(4100, 500), false, QRectF()},
            {"outside, below", QPointF(0, -200), true, QRectF()},
        });
    }

    void theBoxIsClippedToThePhoto()
    {
        const auto [name, at, isFullWidth, box] = test::currentRow<TheBoxIsClippedToThePhoto>();
        WPresetValues values;
        values.background = true;
        values.backgroundFullWidth = isFullWidth;
        values.backgroundPaddingTop = 10;
        values.backgroundPaddingBottom = 20;
        values.backgroundPaddingLeft = 40;
        values.backgroundPaddingRight = 50;
        QCOMPARE(layoutWatermark(values, kPhoto, kMark, at).box.value_or(QRectF()), box);
    }

    void repeatsRunRightAndUp_data()
    {
        using Copies = QList<QPointF>;
        test::addRows<RepeatsRunRightAndUp>({
            {"across", true, false, 1600, 0, Copies{{-100, 1400}, {1900, 1400}, {3900, 1400}}},
            {"up", false, true, 0, 700, Copies{{-100, 1400}, {-100, 2200}}},
            {"both: a column after each", true, true, 2000, 700,
             Copies{{-100, 1400}, {-100, 2200}, {2300, 1400}, {2300, 2200}}},
            {"the edge itself is outside", true, true, 3700, 1500, Copies{{-100, 1400}}},
            {"overlapping", true, false, -399 + 1499, 0, Copies{{-100, 1400}, {1400, 1400}, {2900, 1400}}},
            {"no step", true, true, -400, -100, Copies{{-100, 1400}}},
            {"backwards", true, true, -500, -3000, Copies{{-100, 1400}}},
        });
    }

    void repeatsRunRightAndUp()
    {
        const auto [name, isAcross, isUp, gapX, gapY, copies] = test::currentRow<RepeatsRunRightAndUp>();
        WPresetValues values;
        values.replicateHorizontal = isAcross;
        values.replicateVertical = isUp;
        values.replicateHorizontalDistance = gapX;
        values.replicateHorizontalDistanceUnit = u"Pixels"_qs;
        values.replicateVerticalDistance = gapY;
        values.replicateVerticalDistanceUnit = u"Pixels"_qs;
        const WatermarkLayout layout = layoutWatermark(values, kPhoto, kMark, QPointF(-100, 1400));
        QCOMPARE(QList<QPointF>(layout.repeats.begin(), layout.repeats.end()), copies);
        QVERIFY(!layout.tooManyRepeats);
    }

    void aColumnRunsUpToThePhotosEdge()
    {
        const QRectF first(20, 5, 30, 10);
        const std::vector<QPointF> expected{{20, 30}, {20, 55}, {20, 80}};
        // The edge itself is outside.
        QVERIFY(replicateVerticallyWatermark(first, 25, QSizeF(100, 105)) == expected);
        for (const double step : {0.0, -3.0, std::nan(""), 1e300})
            QVERIFY(replicateVerticallyWatermark(first, step, QSizeF(100, 105)).empty());
        const QRectF farBelow(0, -1e300, 30, 10);
        QVERIFY(replicateVerticallyWatermark(farBelow, 25, QSizeF(100, 105)).size() <= 100'000);
    }

    void absurdTilingIsGivenUp_data()
    {
        test::addRows<AbsurdTilingIsGivenUp>({
            {"dense but drawable", QSize(10, 10), 10, 0.0, false},
            {"a copy a pixel, both ways", QSize(100, 100), -99, 0.0, true},
            {"large ones, ten pixels apart", QSize(3000, 2000), -1990, 0.0, true},
            {"large ones, fewer", QSize(3000, 2000), -1900, 0.0, false},
            {"tiny ones without number", QSize(1, 1), 0, 0.0, true},
            {"from very far", QSize(10, 10), 10, -1e300, true},
            {"from infinity", QSize(10, 10), 10, -std::numeric_limits<double>::infinity(), true},
            {"from nowhere", QSize(10, 10), 10, std::nan(""), false},
            {"beyond the photo", QSize(10, 10), 10, 1e300, false},
        });
    }

    void absurdTilingIsGivenUp()
    {
        const auto [name, mark, gap, start, isGivenUp] = test::currentRow<AbsurdTilingIsGivenUp>();
        WPresetValues values;
        values.replicateHorizontal = values.replicateVertical = true;
        values.replicateHorizontalDistance = values.replicateVerticalDistance = gap;
        values.replicateHorizontalDistanceUnit = values.replicateVerticalDistanceUnit = u"Pixels"_qs;
        const WatermarkLayout layout = layoutWatermark(values, kPhoto, mark, QPointF(start, start));
        QCOMPARE(layout.tooManyRepeats, isGivenUp);
        QVERIFY(layout.repeats.size() <= 100'000);
        QVERIFY(!layout.repeats.empty());
    }

    void theShadowFallsAlongItsAngle_data()
    {
        test::addRows<TheShadowFallsAlongItsAngle>({
            {"right", 0.0F, QPointF(30, 0)},
            {"up", 90.0F, QPointF(0, 30)},
            {"down and right", -45.0F, QPointF(30 * std::sqrt(0.5), -30 * std::sqrt(0.5))},
            {"left", 180.0F, QPointF(-30, 0)},
        });
    }

    void theShadowFallsAlongItsAngle()
    {
        const auto [name, degrees, offset] = test::currentRow<TheShadowFallsAlongItsAngle>();
        WPresetValues values = centerd();
        QCOMPARE(layoutOf(values).shadowOffset, QPointF());
        values.shadow = true;
        values.shadowAngle = degrees;
        const QPointF found = layoutOf(values).shadowOffset;
        // The angle is in single precision.
        QVERIFY2((found - offset).manhattanLength() < 1e-4, qPrintable(QDebug::toString(found)));
    }
};

QTEST_GUILESS_MAIN(WatermarkLayoutTest)
#include "watermarklayout_test.moc"
