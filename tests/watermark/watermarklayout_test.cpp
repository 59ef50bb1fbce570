// SPDX-License-Identifier: GPL-3.0-or-later

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

WPresetValues centred()
{
    WPresetValues values;
    values.anchorPoint = 4;
    return values;
}

} // namespace

class WatermarkLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lengthsFollowTheirUnits_data();
    void lengthsFollowTheirUnits();
    void anchorsAndOffsetsGiveTheOrigin_data();
    void anchorsAndOffsetsGiveTheOrigin();
    void aPlaceChosenByHandIsUsedAsItStands();
    void theBoxIsClippedToThePhoto_data();
    void theBoxIsClippedToThePhoto();
    void repeatsRunRightAndUp_data();
    void repeatsRunRightAndUp();
    void aColumnRunsUpToThePhotosEdge();
    void absurdTilingIsGivenUp_data();
    void absurdTilingIsGivenUp();
    void theShadowFallsAlongItsAngle_data();
    void theShadowFallsAlongItsAngle();
};

void WatermarkLayoutTest::lengthsFollowTheirUnits_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<float>("pixels");
    QTest::newRow("width") << 98.0F << "% of width" << 3920.0F;
    QTest::newRow("height") << 1.0F << "% of height" << 30.0F;
    QTest::newRow("long edge") << 8.0F << "% of long edge" << 320.0F;
    QTest::newRow("short edge") << 8.0F << "% of short edge" << 240.0F;
    QTest::newRow("pixels") << 8.0F << "Pixels" << 8.0F;
    QTest::newRow("unknown") << -8.5F << "% OF WIDTH" << -8.5F;
    QTest::newRow("no unit") << 8.0F << "" << 8.0F;
}

void WatermarkLayoutTest::lengthsFollowTheirUnits()
{
    QFETCH(float, value);
    QFETCH(QString, unit);
    QTEST(absoluteValueForSize(value, unit, kPhoto), "pixels");
}

void WatermarkLayoutTest::anchorsAndOffsetsGiveTheOrigin_data()
{
    QTest::addColumn<WholeNumber>("anchor");
    QTest::addColumn<QPointF>("origin");
    QTest::newRow("top left") << WholeNumber(0) << QPointF(200, 2860);
    QTest::newRow("top centre") << WholeNumber(1) << QPointF(1800, 2860);
    QTest::newRow("top right") << WholeNumber(2) << QPointF(3400, 2860);
    QTest::newRow("middle left") << WholeNumber(3) << QPointF(200, 1450);
    QTest::newRow("centre") << WholeNumber(4) << QPointF(1800, 1450);
    QTest::newRow("middle right") << WholeNumber(5) << QPointF(3400, 1450);
    QTest::newRow("bottom left") << WholeNumber(6) << QPointF(200, 40);
    QTest::newRow("bottom centre") << WholeNumber(7) << QPointF(1800, 40);
    QTest::newRow("bottom right") << WholeNumber(8) << QPointF(3400, 40);
    QTest::newRow("unknown") << WholeNumber(9) << QPointF(200, 40);
    QTest::newRow("absent") << WholeNumber() << QPointF(200, 2860);
}

void WatermarkLayoutTest::anchorsAndOffsetsGiveTheOrigin()
{
    QFETCH(WholeNumber, anchor);
    WPresetValues values;
    values.anchorPoint = anchor;
    values.offsetHorizontal = 5;
    values.offsetVertical = 40;
    values.offsetVerticalUnit = u"Pixels"_qs;
    QTEST(layoutOf(values).rect.topLeft(), "origin");
    QCOMPARE(layoutOf(values).rect.size(), QSizeF(kMark));
    // Without a box and repeats there is the one copy.
    QCOMPARE(layoutOf(values).repeats.size(), 1U);
    QVERIFY(!layoutOf(values).box);

    const WatermarkLayout ofDefaults = layoutWatermark(WPresetValues(), kPhoto, {3920, 240}, std::nullopt);
    QCOMPARE(ofDefaults.rect, QRectF(40, 30, 3920, 240));
}

void WatermarkLayoutTest::aPlaceChosenByHandIsUsedAsItStands()
{
    const QPointF chosen(-70000.25, 1e7);
    WPresetValues values;
    values.background = true;
    const WatermarkLayout layout = layoutWatermark(values, kPhoto, kMark, chosen);
    QCOMPARE(layout.rect, QRectF(chosen, QSizeF(kMark)));
    QVERIFY(!layout.box);
}

void WatermarkLayoutTest::theBoxIsClippedToThePhoto_data()
{
    QTest::addColumn<QPointF>("at");
    QTest::addColumn<bool>("isFullWidth");
    QTest::addColumn<QRectF>("box"); // empty: none
    QTest::newRow("inside") << QPointF(1000, 500) << false << QRectF(960, 480, 490, 130);
    QTest::newRow("full width") << QPointF(1000, 500) << true << QRectF(0, 480, 4000, 130);
    QTest::newRow("below") << QPointF(1000, 10) << true << QRectF(0, 0, 4000, 120);
    QTest::newRow("left and above") << QPointF(-100, 2950) << false << QRectF(0, 2930, 350, 70);
    QTest::newRow("right") << QPointF(3900, 500) << false << QRectF(3860, 480, 140, 130);
    QTest::newRow("outside, right") << QPointF(4100, 500) << false << QRectF();
    QTest::newRow("outside, below") << QPointF(0, -200) << true << QRectF();
}

void WatermarkLayoutTest::theBoxIsClippedToThePhoto()
{
    QFETCH(QPointF, at);
    QFETCH(bool, isFullWidth);
    WPresetValues values;
    values.background = true;
    values.backgroundFullWidth = isFullWidth;
    values.backgroundPaddingTop = 10;
    values.backgroundPaddingBottom = 20;
    values.backgroundPaddingLeft = 40;
    values.backgroundPaddingRight = 50;
    QTEST(layoutWatermark(values, kPhoto, kMark, at).box.value_or(QRectF()), "box");
}

void WatermarkLayoutTest::repeatsRunRightAndUp_data()
{
    QTest::addColumn<bool>("isAcross");
    QTest::addColumn<bool>("isUp");
    QTest::addColumn<int>("gapX");
    QTest::addColumn<int>("gapY");
    QTest::addColumn<QList<QPointF>>("copies");
    using Copies = QList<QPointF>;
    QTest::newRow("across") << true << false << 1600 << 0 << Copies{{-100, 1400}, {1900, 1400}, {3900, 1400}};
    QTest::newRow("up") << false << true << 0 << 700 << Copies{{-100, 1400}, {-100, 2200}};
    QTest::newRow("both: a column after each")
        << true << true << 2000 << 700 << Copies{{-100, 1400}, {-100, 2200}, {2300, 1400}, {2300, 2200}};
    QTest::newRow("the edge itself is outside") << true << true << 3700 << 1500 << Copies{{-100, 1400}};
    QTest::newRow("overlapping") << true << false << -399 + 1499 << 0
                                 << Copies{{-100, 1400}, {1400, 1400}, {2900, 1400}};
    QTest::newRow("no step") << true << true << -400 << -100 << Copies{{-100, 1400}};
    QTest::newRow("backwards") << true << true << -500 << -3000 << Copies{{-100, 1400}};
}

void WatermarkLayoutTest::repeatsRunRightAndUp()
{
    QFETCH(bool, isAcross);
    QFETCH(bool, isUp);
    QFETCH(int, gapX);
    QFETCH(int, gapY);
    WPresetValues values;
    values.replicateHorizontal = isAcross;
    values.replicateVertical = isUp;
    values.replicateHorizontalDistance = gapX;
    values.replicateHorizontalDistanceUnit = u"Pixels"_qs;
    values.replicateVerticalDistance = gapY;
    values.replicateVerticalDistanceUnit = u"Pixels"_qs;
    const WatermarkLayout layout = layoutWatermark(values, kPhoto, kMark, QPointF(-100, 1400));
    QTEST(QList<QPointF>(layout.repeats.begin(), layout.repeats.end()), "copies");
    QVERIFY(!layout.tooManyRepeats);
}

void WatermarkLayoutTest::aColumnRunsUpToThePhotosEdge()
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

void WatermarkLayoutTest::absurdTilingIsGivenUp_data()
{
    QTest::addColumn<QSize>("mark");
    QTest::addColumn<int>("gap");
    QTest::addColumn<double>("start");
    QTest::addColumn<bool>("isGivenUp");
    QTest::newRow("dense but drawable") << QSize(10, 10) << 10 << 0.0 << false;
    QTest::newRow("a copy a pixel, both ways") << QSize(100, 100) << -99 << 0.0 << true;
    QTest::newRow("large ones, ten pixels apart") << QSize(3000, 2000) << -1990 << 0.0 << true;
    QTest::newRow("large ones, fewer") << QSize(3000, 2000) << -1900 << 0.0 << false;
    QTest::newRow("tiny ones without number") << QSize(1, 1) << 0 << 0.0 << true;
    QTest::newRow("from very far") << QSize(10, 10) << 10 << -1e300 << true;
    QTest::newRow("from infinity") << QSize(10, 10) << 10 << -std::numeric_limits<double>::infinity() << true;
    QTest::newRow("from nowhere") << QSize(10, 10) << 10 << std::nan("") << false;
    QTest::newRow("beyond the photo") << QSize(10, 10) << 10 << 1e300 << false;
}

void WatermarkLayoutTest::absurdTilingIsGivenUp()
{
    QFETCH(QSize, mark);
    QFETCH(int, gap);
    QFETCH(double, start);
    WPresetValues values;
    values.replicateHorizontal = values.replicateVertical = true;
    values.replicateHorizontalDistance = values.replicateVerticalDistance = gap;
    values.replicateHorizontalDistanceUnit = values.replicateVerticalDistanceUnit = u"Pixels"_qs;
    const WatermarkLayout layout = layoutWatermark(values, kPhoto, mark, QPointF(start, start));
    QTEST(layout.tooManyRepeats, "isGivenUp");
    QVERIFY(layout.repeats.size() <= 100'000);
    QVERIFY(!layout.repeats.empty());
}

void WatermarkLayoutTest::theShadowFallsAlongItsAngle_data()
{
    QTest::addColumn<float>("degrees");
    QTest::addColumn<QPointF>("offset");
    QTest::newRow("right") << 0.0F << QPointF(30, 0);
    QTest::newRow("up") << 90.0F << QPointF(0, 30);
    QTest::newRow("down and right") << -45.0F << QPointF(30 * std::sqrt(0.5), -30 * std::sqrt(0.5));
    QTest::newRow("left") << 180.0F << QPointF(-30, 0);
}

void WatermarkLayoutTest::theShadowFallsAlongItsAngle()
{
    QFETCH(float, degrees);
    QFETCH(QPointF, offset);
    WPresetValues values = centred();
    QCOMPARE(layoutOf(values).shadowOffset, QPointF());
    values.shadow = true;
    values.shadowAngle = degrees;
    const QPointF found = layoutOf(values).shadowOffset;
    // The angle is in single precision.
    QVERIFY2((found - offset).manhattanLength() < 1e-4, qPrintable(QDebug::toString(found)));
}

QTEST_GUILESS_MAIN(WatermarkLayoutTest)
#include "watermarklayout_test.moc"
