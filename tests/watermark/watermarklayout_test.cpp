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

QList<QPointF> copiesOf(const WatermarkLayout &layout)
{
    QList<QPointF> copies;
    for (qint64 column = 0; column < layout.repeats.columns; ++column) {
        for (qint64 row = 0; row < layout.repeats.rows; ++row)
            copies.append(layout.repeats.at(column, row));
    }
    return copies;
}

} // namespace

class WatermarkLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lengthsFollowTheirUnits()
    {
        for (const auto &[value, unit, pixels] : {std::tuple(98.0F, u"% of width"_qs, 3920.0F),
                                                  {1.0F, u"% of height"_qs, 30.0F},
                                                  {8.0F, u"% of long edge"_qs, 320.0F},
                                                  {8.0F, u"% of short edge"_qs, 240.0F},
                                                  {8.0F, u"Pixels"_qs, 8.0F},
                                                  {-8.5F, u"% OF WIDTH"_qs, -8.5F},
                                                  {8.0F, QString(), 8.0F}})
            QCOMPARE(absoluteValueForSize(value, unit, kPhoto), pixels);
    }

    void anchorsAndOffsetsGiveTheOrigin()
    {
        WPresetValues values;
        values.offsetHorizontal = 5;
        values.offsetVertical = 40;
        values.offsetVerticalUnit = u"Pixels"_qs;
        const QPointF origins[] = {{200, 2860},  {1800, 2860}, {3400, 2860}, {200, 1450}, {1800, 1450},
                                   {3400, 1450}, {200, 40},    {1800, 40},   {3400, 40},  {200, 40}};
        for (int anchor = 0; anchor <= 9; ++anchor) { // 9 is unknown
            values.anchorPoint = anchor;
            QCOMPARE(layoutOf(values).rect, QRectF(origins[anchor], QSizeF(kMark)));
        }
        values.anchorPoint.reset();
        QCOMPARE(layoutOf(values).rect.topLeft(), origins[0]);
        // Without a box and repeats there is the one copy.
        QCOMPARE(copiesOf(layoutOf(values)).size(), 1);
        QVERIFY(!layoutOf(values).box);
        QCOMPARE(layoutOf(WPresetValues(), {3920, 240}).rect, QRectF(40, 30, 3920, 240));
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

    void theBoxIsClippedToThePhoto()
    {
        WPresetValues values;
        values.background = true;
        values.backgroundPaddingTop = 10;
        values.backgroundPaddingBottom = 20;
        values.backgroundPaddingLeft = 40;
        values.backgroundPaddingRight = 50;
        for (const auto &[at, isFullWidth, box] :
             {std::tuple(QPointF(1000, 500), false, QRectF(960, 480, 490, 130)),
              {QPointF(1000, 500), true, QRectF(0, 480, 4000, 130)},
              {QPointF(1000, 10), true, QRectF(0, 0, 4000, 120)},
              {QPointF(-100, 2950), false, QRectF(0, 2930, 350, 70)},
              {QPointF(3900, 500), false, QRectF(3860, 480, 140, 130)},
              {QPointF(4100, 500), false, QRectF()},
              {QPointF(0, -200), true, QRectF()}}) {
            values.backgroundFullWidth = isFullWidth;
            QCOMPARE(layoutWatermark(values, kPhoto, kMark, at).box.value_or(QRectF()), box);
        }
        values.backgroundPaddingTop = -120; // nothing is left
        QVERIFY(!layoutWatermark(values, kPhoto, kMark, QPointF(1000, 500)).box);
    }

    void repeatsRunRightAndUp()
    {
        using Copies = QList<QPointF>;
        using Row = std::tuple<bool, bool, int, int, QList<QPointF>>;
        for (const auto &[isAcross, isUp, gapX, gapY, copies] : std::initializer_list<Row>{
                 {true, false, 1600, 0, Copies{{-100, 1400}, {1900, 1400}, {3900, 1400}}},
                 {false, true, 0, 700, Copies{{-100, 1400}, {-100, 2200}}},
                 {true, true, 2000, 700, Copies{{-100, 1400}, {-100, 2200}, {2300, 1400}, {2300, 2200}}},
                 {true, true, 3700, 1500, Copies{{-100, 1400}}},
                 {true, false, -399 + 1499, 0, Copies{{-100, 1400}, {1400, 1400}, {2900, 1400}}},
                 {true, true, -400, -100, Copies{{-100, 1400}}},
                 {true, true, -500, -3000, Copies{{-100, 1400}}}}) {
            WPresetValues values;
            values.replicateHorizontal = isAcross;
            values.replicateVertical = isUp;
            values.replicateHorizontalDistance = gapX;
            values.replicateHorizontalDistanceUnit = u"Pixels"_qs;
            values.replicateVerticalDistance = gapY;
            values.replicateVerticalDistanceUnit = u"Pixels"_qs;
            const WatermarkLayout layout = layoutWatermark(values, kPhoto, kMark, QPointF(-100, 1400));
            QCOMPARE(copiesOf(layout), copies);
            QVERIFY(!layout.tooManyRepeats);
        }
    }

    void aColumnRunsUpToThePhotosEdge()
    {
        const QRectF first(20, 5, 30, 10);
        // The edge itself is outside.
        QCOMPARE(replicateVerticallyWatermark(first, 25, QSizeF(100, 105)), 4);
        for (const double step : {0.0, -3.0, std::nan(""), 1e300})
            QCOMPARE(replicateVerticallyWatermark(first, step, QSizeF(100, 105)), 1);
    }

    void absurdTilingIsGivenUp()
    {
        using Row = std::tuple<QSize, int, double, bool>;
        for (const auto &[mark, gap, start, isGivenUp] :
             std::initializer_list<Row>{{QSize(10, 10), 10, 0.0, false},
                                        {QSize(100, 100), -99, 0.0, true},
                                        {QSize(3000, 2000), -1990, 0.0, true},
                                        {QSize(3000, 2000), -1900, 0.0, false},
                                        {QSize(5, 5), 0, 0.0, false},
                                        {QSize(1, 1), 0, 0.0, false},
                                        {QSize(3, 3), -2, 0.0, false},
                                        {QSize(10, 10), 10, -1e300, true},
                                        {QSize(10, 10), 10, -std::numeric_limits<double>::infinity(), true},
                                        {QSize(10, 10), 10, std::nan(""), false},
                                        {QSize(10, 10), 10, 1e300, false}}) {
            WPresetValues values;
            values.replicateHorizontal = values.replicateVertical = true;
            values.replicateHorizontalDistance = values.replicateVerticalDistance = gap;
            values.replicateHorizontalDistanceUnit = values.replicateVerticalDistanceUnit = u"Pixels"_qs;
            const WatermarkLayout layout = layoutWatermark(values, kPhoto, mark, QPointF(start, start));
            QCOMPARE(layout.tooManyRepeats, isGivenUp);
            QVERIFY(!isGivenUp || copiesOf(layout).size() == 1);
        }
    }

    void theShadowFallsAlongItsAngle()
    {
        WPresetValues values;
        QCOMPARE(layoutOf(values).shadowOffset, QPointF());
        values.shadow = true;
        const double diagonal = 30 * std::sqrt(0.5);
        for (const auto &[degrees, offset] : {std::pair(0.0F, QPointF(30, 0)),
                                              {90.0F, QPointF(0, 30)},
                                              {-45.0F, QPointF(diagonal, -diagonal)},
                                              {180.0F, QPointF(-30, 0)}}) {
            values.shadowAngle = degrees;
            const QPointF found = layoutOf(values).shadowOffset;
            // The angle is in single precision.
            QVERIFY2((found - offset).manhattanLength() < 1e-4, qPrintable(QDebug::toString(found)));
        }
    }
};

QTEST_GUILESS_MAIN(WatermarkLayoutTest)
#include "watermarklayout_test.moc"
