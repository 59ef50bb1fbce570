// SPDX-License-Identifier: GPL-3.0-or-later

#include "raster/compositing.h"
#include "support/datarows.h"
#include "support/testpictures.h"

#include <cmath>
#include <limits>
#include <vector>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// Thin and thick bars, a dot and a half-covered area.
QImage bars(int width, int height)
{
    return paintedPicture({width, height}, QImage::Format_ARGB32_Premultiplied, [=](int x, int y) {
        const bool isBar = x % 37 < 2 || (x > width / 2 && x < width * 3 / 4 && y > height / 3);
        const bool isHalf = x > width * 4 / 5 && y < height / 2;
        return isBar ? qRgba(255, 255, 255, 255) : isHalf ? qRgba(120, 0, 200, 128) : 0U;
    });
}

using Plane = std::vector<std::vector<double>>;

/// Convolution with the normal distribution along rows, written out.
Plane blurredAlongRows(const Plane &plane, double deviation)
{
    const int reach = int(std::ceil(5 * deviation));
    std::vector<double> kernel;
    double sum = 0;
    for (int i = -reach; i <= reach; ++i) {
        kernel.push_back(std::exp(-i * i / (2 * deviation * deviation)));
        sum += kernel.back();
    }
    Plane result(plane.size(), std::vector<double>(plane[0].size(), 0.0));
    for (std::size_t y = 0; y < plane.size(); ++y) {
        for (int x = 0; x < int(plane[y].size()); ++x) {
            const double value = plane[y][std::size_t(x)];
            for (int i = -reach; value != 0 && i <= reach; ++i) {
                if (x + i >= 0 && x + i < int(plane[y].size()))
                    result[y][std::size_t(x + i)] += value * kernel[std::size_t(i + reach)] / sum;
            }
        }
    }
    return result;
}

Plane transposed(const Plane &plane)
{
    Plane result(plane[0].size(), std::vector<double>(plane.size()));
    for (std::size_t y = 0; y < plane.size(); ++y) {
        for (std::size_t x = 0; x < plane[y].size(); ++x)
            result[x][y] = plane[y][x];
    }
    return result;
}

using BlursLikeAGaussian = Row<double, QSize>; // blur, size

} // namespace

class ShadowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void blursLikeAGaussian_data()
    {
        addRows<BlursLikeAGaussian>({
            {"less than a pixel", 0.6, QSize(50, 20)},
            {"fraction", 3.3, QSize(120, 31)},
            {"usual", 10.0, QSize(150, 60)},
            {"one pixel a block, widest", 23.9, QSize(131, 40)},
            {"smallest blocks", 24.0, QSize(131, 40)},
            {"blocks that do not divide the margin", 77.0, QSize(97, 33)},
            {"wide", 500.0, QSize(700, 80)},
            {"one pixel", 8.0, QSize(1, 1)},
        });
    }

    void blursLikeAGaussian()
    {
        const auto [name, blur, size] = currentRow<BlursLikeAGaussian>();
        const QImage mark = bars(size.width(), size.height());
        const QColor color(200, 40, 255, 204);
        const Shadow shadow = shadowOf(mark, blur, color);
        QCOMPARE(shadow.image.format(), QImage::Format_ARGB32_Premultiplied);
        QCOMPARE(shadow.image.size(), size + 2 * QSize(shadow.margin, shadow.margin));

        Plane plane(std::size_t(shadow.image.height()),
                    std::vector<double>(std::size_t(shadow.image.width()), 0.0));
        for (int y = 0; y < mark.height(); ++y) {
            for (int x = 0; x < mark.width(); ++x)
                plane[std::size_t(y + shadow.margin)][std::size_t(x + shadow.margin)] =
                    qAlpha(reinterpret_cast<const QRgb *>(mark.constScanLine(y))[x]) / 255.0;
        }
        const Plane expected =
            transposed(blurredAlongRows(transposed(blurredAlongRows(plane, blur / 2)), blur / 2));
        double worst = 0;
        double edge = 0;
        for (int y = 0; y < shadow.image.height(); ++y) {
            const auto *row = reinterpret_cast<const QRgb *>(shadow.image.constScanLine(y));
            for (int x = 0; x < shadow.image.width(); ++x) {
                const double coverage = expected[std::size_t(y)][std::size_t(x)];
                worst = std::max(worst, std::abs(qAlpha(row[x]) - coverage * 204));
                worst = std::max(worst, std::abs(qRed(row[x]) - coverage * 200 * 0.8));
                if (x == 0 || y == 0)
                    edge = std::max(edge, coverage);
            }
        }
        // Half a level of it is rounding.
        QVERIFY2(worst < 1.5, qPrintable(QString::number(worst)));
        // What the margin cuts off would not show.
        QVERIFY2(edge * 255 < 1, qPrintable(QString::number(edge * 255)));
    }

    void extremes()
    {
        const QImage mark = bars(40, 20);
        for (const double blur : {0.0, -3.0, std::numeric_limits<double>::quiet_NaN()}) {
            const Shadow sharp = shadowOf(mark, blur, QColor(0, 0, 0, 85));
            QCOMPARE(sharp.margin, 0);
            QCOMPARE(sharp.image.size(), mark.size());
            QCOMPARE(sharp.image.pixel(0, 0), qRgba(0, 0, 0, 85));
            QCOMPARE(sharp.image.pixel(5, 0), qRgba(0, 0, 0, 0));
        }
        QVERIFY(shadowOf(mark, 1e6, Qt::black).image.isNull());
        QVERIFY(shadowOf(mark, std::numeric_limits<double>::infinity(), Qt::black).image.isNull());
        QVERIFY(shadowOf(QImage(), 5, Qt::black).image.isNull());

        const QImage empty = flatPicture({30, 30}, Qt::transparent, QImage::Format_ARGB32_Premultiplied);
        const Shadow nothing = shadowOf(empty, 4, Qt::black);
        QCOMPARE(nothing.image.pixel(20, 20), qRgba(0, 0, 0, 0));
    }
};

QTEST_GUILESS_MAIN(ShadowTest)

#include "shadow_test.moc"
