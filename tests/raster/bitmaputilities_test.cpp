// SPDX-License-Identifier: GPL-3.0-or-later

#include "raster/bitmaputilities.h"
#include "raster/orientation.h"
#include "support/datarows.h"
#include "support/picturedifference.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"

#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// Every pixel's middle sent through the transform, one by one; origin at the bottom left.
QImage mapped(const QImage &image, const QTransform &t, QSize size)
{
    QImage result(size, image.format());
    result.fill(0U);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const double px = x + 0.5;
            const double py = image.height() - (y + 0.5);
            const int toX = int(std::floor(t.m11() * px + t.m21() * py + t.dx()));
            const int toY = size.height() - 1 - int(std::floor(t.m12() * px + t.m22() * py + t.dy()));
            if (toX >= 0 && toX < size.width() && toY >= 0 && toY < size.height())
                result.setPixel(toX, toY, image.pixel(x, y));
        }
    }
    return result;
}

/// Circles that get finer from the middle outwards, down to two pixels.
QImage zonePlate(int side)
{
    return paintedPicture({side, side}, QImage::Format_RGB32, [side](int x, int y) {
        const double dx = x - side / 2.0;
        const double dy = y - side / 2.0;
        const double wave = std::cos(std::numbers::pi * (dx * dx + dy * dy) / side);
        const int value = int(std::lround(127.5 + 120 * wave));
        return qRgb(value, 255 * x / side, 255 - value);
    });
}

using Formats = Row<QImage::Format, QImage::Format>; // source, expected
using Sized = Row<QSize>;                            // size
using Stretch = Row<int, double, double>;            // orientation, sx, sy
using ScaledToMaxSize = Row<QSize, int, QSize>;      // size, maxSize, expected

} // namespace

class BitmapUtilitiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formats_data()
    {
        addRows<Formats>({
            {"no alpha", QImage::Format_RGB888, QImage::Format_RGB32},
            {"gray", QImage::Format_Grayscale8, QImage::Format_RGB32},
            {"alpha", QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied},
            {"16 bits, no alpha", QImage::Format_RGBX64, QImage::Format_ARGB32_Premultiplied},
            {"16 bits, gray", QImage::Format_Grayscale16, QImage::Format_ARGB32_Premultiplied},
            {"float", QImage::Format_RGBX32FPx4, QImage::Format_ARGB32_Premultiplied},
        });
    }

    void formats()
    {
        const auto [name, source, expected] = currentRow<Formats>();
        const QImage image = randomPicture(QSize(7, 5), source);
        const QImage context = createBitmapContext(3, 2, expected != QImage::Format_RGB32);
        QCOMPARE(context.format(), expected);
        QCOMPARE(context.pixel(2, 1), expected == QImage::Format_RGB32 ? qRgb(0, 0, 0) : qRgba(0, 0, 0, 0));
        QCOMPARE(createImageUpright(image, 6, 1, 1),
                 mapped(image.convertToFormat(expected), QTransform(0, -1, 1, 0, 0, 7), QSize(5, 7)));
        QCOMPARE(createImageScaledToMaxSize(image, 3, false).format(), expected);
    }

    void orientations_data()
    {
        addRows<Sized>({
            {"one pixel", QSize(1, 1)},
            {"row", QSize(67, 1)},
            {"column", QSize(1, 67)},
            {"odd", QSize(131, 77)},
            {"whole tiles", QSize(64, 128)},
        });
    }

    void orientations()
    {
        const auto [name, stored] = currentRow<Sized>();
        const double w = stored.width();
        const double h = stored.height();
        const QTransform transforms[] = {{1, 0, 0, 1, 0, 0},  {-1, 0, 0, 1, w, 0},  {-1, 0, 0, -1, w, h},
                                         {1, 0, 0, -1, 0, h}, {0, -1, -1, 0, h, w}, {0, -1, 1, 0, 0, w},
                                         {0, 1, 1, 0, 0, 0},  {0, 1, -1, 0, h, 0}};
        const QImage image = randomPicture(stored);
        for (int orientation = 1; orientation <= 8; ++orientation) {
            const QSize size = orientation > 4 ? stored.transposed() : stored;
            const QImage expected = mapped(image, transforms[orientation - 1], size);
            QCOMPARE(createImageUpright(image, orientation, 1, 1), expected);
            for (const int height : {1, 16, 70}) {
                QImage target(size, QImage::Format_RGB32);
                for (int y = 0; y < stored.height(); y += height) {
                    // The last strip has more rows than the picture has left; they belong nowhere.
                    const QImage strip = image.copy(0, y, stored.width(), height);
                    placeOrientedRows(target, strip, height, y, stored, orientation);
                }
                QCOMPARE(target, expected);
            }
        }
    }

    void stretches_data()
    {
        for (int o = 1; o <= 8; ++o)
            addRow(Stretch{u"orientation %1, higher"_qs.arg(o), o, 1, 2});
        addRow(Stretch{"wider by a fraction", 6, 1.37, 1});
    }

    void stretches()
    {
        const auto [name, orientation, sx, sy] = currentRow<Stretch>();
        // One plain color a quarter: it must come out where the unstretched picture has it.
        const QSize stored(61, 40);
        const QImage image = paintedPicture(stored, QImage::Format_RGB32, [](int x, int y) {
            return qRgb(x < 30 ? 250 : 20, y < 20 ? 200 : 10, 99);
        });
        const QImage upright = createImageUpright(image, orientation, 1, 1);
        const QImage result = createImageUpright(image, orientation, sx, sy);
        const QSize expected(int(std::lround(stored.width() * sx)), int(std::lround(stored.height() * sy)));
        QCOMPARE(result.size(), orientedSize(expected, orientation));
        for (const double x : {0.2, 0.8}) {
            for (const double y : {0.2, 0.8})
                QCOMPARE(result.pixel(int(result.width() * x), int(result.height() * y)),
                         upright.pixel(int(upright.width() * x), int(upright.height() * y)));
        }
    }

    void scaledToMaxSize_data()
    {
        addRows<ScaledToMaxSize>({
            {"half", QSize(600, 400), 300, QSize(300, 200)},
            {"fractions are cut off", QSize(400, 299), 100, QSize(100, 74)},
            {"high", QSize(33, 100), 10, QSize(3, 10)},
            {"whole though doubles would cut", QSize(490, 7), 70, QSize(70, 1)},
            {"thin", QSize(1000, 3), 100, QSize(100, 1)},
            {"to one pixel", QSize(600, 400), 1, QSize(1, 1)},
            {"no size", QSize(600, 400), 0, QSize()},
        });
    }

    void scaledToMaxSize()
    {
        const auto [name, size, maxSize, expected] = currentRow<ScaledToMaxSize>();
        const QImage image = randomPicture(size);
        const QImage plain = createImageScaledToMaxSize(image, maxSize, false);
        QCOMPARE(plain.isNull() ? QSize() : plain.size(), expected);
        QCOMPARE(createImageScaledToMaxSize(image, maxSize, true), createImageUpright(plain, 4, 1, 1));

        const int longer = std::max(size.width(), size.height());
        QCOMPARE(createImageScaledToMaxSize(image, longer, false).constBits(), image.constBits());
        QCOMPARE(createImageScaledToMaxSize(image, longer + 1, true), createImageUpright(image, 4, 1, 1));
    }

    void scalesLikeImageMagick_data()
    {
        addRows<Sized>({
            {"much smaller", QSize(40, 40)},
            {"smaller by a fraction", QSize(351, 257)},
            {"little smaller", QSize(431, 480)},
            {"larger", QSize(1000, 1111)},
            {"narrower and higher", QSize(100, 1000)},
        });
    }

    void scalesLikeImageMagick()
    {
        const auto [name, size] = currentRow<Sized>();
        PLEXA_NEEDS_MAGICK();
        const TestFolder folder;
        const QImage image = zonePlate(500);
        const QString out = folder.path("out.png");
        QVERIFY(image.save(folder.path("in.png")));
        magick("%1 -filter Catrom -resize %2x%3! -depth 8 %4", folder.path("in.png"),
               QString::number(size.width()), QString::number(size.height()), out);
        const QImage expected(out);
        QCOMPARE(expected.size(), size);

        const QImage result = createImageScaledToSize(image, size.width(), size.height(), true);
        // The outermost pixels depend on what a program takes to lie beyond the edge.
        const QRect inside = result.rect().adjusted(2, 2, -2, -2);
        const PictureDifference found = differenceOf(result.copy(inside), expected.copy(inside));
        // ImageMagick cuts fractions of a level off: half a level on average. When shrinking a lot, blocks
        // are averaged before the filter: nearly, not exactly, the same filter.
        QVERIFY2(found.mean < 1, qPrintable(QString::number(found.mean)));
        QVERIFY2(found.worst <= 4, qPrintable(QString::number(found.worst)));
    }

    void plainAreasStayPlain_data()
    {
        addRows<Sized>({
            {"smaller", QSize(31, 17)},
            {"much smaller", QSize(3, 2)},
            {"larger", QSize(1234, 777)},
            {"one pixel", QSize(1, 1)},
        });
    }

    void plainAreasStayPlain()
    {
        const auto [name, size] = currentRow<Sized>();
        const QColor color(255, 128, 7, 201);
        const auto format = QImage::Format_ARGB32_Premultiplied;
        const QImage image = flatPicture({333, 222}, color, format);
        for (const bool highQuality : {true, false}) {
            QCOMPARE(createImageScaledToSize(image, size.width(), size.height(), highQuality),
                     flatPicture(size, color, format));
        }
    }

    void rotatedByAngle_data()
    {
        QTest::addColumn<double>("degrees");
        for (const double degrees : {1.0, 30.0, 89.0, 117.0, 200.0, 333.0, -45.0, 750.0})
            QTest::addRow("%g", degrees) << degrees;
    }

    void rotatedByAngle()
    {
        QFETCH(double, degrees);
        const double angle = degrees / 180 * std::numbers::pi;
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const QImage image = paintedPicture({90, 50}, QImage::Format_ARGB32_Premultiplied,
                                            [](int x, int y) { return qRgb(2 * x, 5 * y, 255 - x - y); });
        const QImage result = createImageRotatedByAngle(image, angle);
        const double boxWidth = 90 * std::abs(c) + 50 * std::abs(s);
        const double boxHeight = 90 * std::abs(s) + 50 * std::abs(c);
        QCOMPARE(result.size(), QSize(int(boxWidth), int(boxHeight)));

        double covered = 0;
        for (int y = 0; y < result.height(); ++y) {
            for (int x = 0; x < result.width(); ++x) {
                // The pixel's place in the unturned image, measured from the common middle: y upwards. The
                // box stands on its lower left corner, the fraction that is cut off lies at the right and the
                // top.
                const double px = x + 0.5 - boxWidth / 2;
                const double py = result.height() - (y + 0.5) - boxHeight / 2;
                const double u = c * px + s * py + 45;
                const double v = 25 - (-s * px + c * py);
                const QRgb pixel = result.pixel(x, y);
                covered += qAlpha(pixel) / 255.0;
                const double inside = std::min({u, v, 90 - u, 50 - v});
                if (inside > 1) {
                    QVERIFY(std::abs(qRed(pixel) - 2 * (u - 0.5)) < 2);
                    QVERIFY(std::abs(qGreen(pixel) - 5 * (v - 0.5)) < 2.5);
                    QCOMPARE(qAlpha(pixel), 255);
                } else if (inside < -1) {
                    QCOMPARE(pixel, 0U);
                }
            }
        }
        // Softened edges leave the area as it is.
        QVERIFY2(std::abs(covered - 90 * 50) < 45, qPrintable(QString::number(covered)));

        for (int quarter = -4; quarter <= 4; ++quarter) {
            QImage turned = image;
            for (int i = 0; i < (quarter + 8) % 4; ++i)
                turned = createImageUpright(turned, 8, 1, 1);
            QCOMPARE(createImageRotatedByAngle(image, quarter * std::numbers::pi / 2), turned);
        }
    }

    void impossibleSizes()
    {
        constexpr int kHuge = std::numeric_limits<int>::max();
        const QImage image = randomPicture(QSize(40, 30));
        const std::function<QImage()> calls[] = {
            [&] { return createBitmapContext(kHuge, kHuge, true); },
            [&] { return createBitmapContext(0, 5, true); },
            [&] { return createBitmapContext(-5, 5, false); },
            [&] { return createImageScaledToSize(image, kHuge, 3, true); },
            [&] { return createImageRotatedByAngle(image, std::numeric_limits<double>::infinity()); },
            [&] { return createImageRotatedByAngle(QImage(), 1); },
            [&] { return createImageUpright(QImage(), 3, 1, 1); },
            [&] { return createImageScaledToMaxSize(QImage(), 10, true); },
            [&] { return createImageScaledToMaxSize(image, -1, true); },
        };
        for (const auto &call : calls)
            QVERIFY(call().isNull());
    }
};

QTEST_GUILESS_MAIN(BitmapUtilitiesTest)

#include "bitmaputilities_test.moc"
