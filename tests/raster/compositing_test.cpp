// SPDX-License-Identifier: GPL-3.0-or-later

#include "raster/compositing.h"
#include "support/datarows.h"
#include "support/testpictures.h"
#include "w3cblending.h"

#include <limits>
#include <vector>

using namespace plexa;
using namespace plexa::test;

namespace
{

QImage::Format formatFor(bool opaque)
{
    return opaque ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied;
}

QImage randomImage(int width, int height, bool opaque, quint32 seed)
{
    return randomPicture({width, height}, formatFor(opaque), seed);
}

/// Draws on strips of the photo and puts them together again.
template<class Draw>
QImage drawnInStrips(const QImage &photo, int stripHeight, const Draw &draw)
{
    QImage result = photo.copy();
    for (int y = 0; y < photo.height(); y += stripHeight) {
        QImage strip = photo.copy(0, y, photo.width(), std::min(stripHeight, photo.height() - y));
        draw(strip, y);
        for (int row = 0; row < strip.height(); ++row)
            std::copy_n(strip.constScanLine(row), qsizetype(strip.width()) * 4, result.scanLine(y + row));
    }
    return result;
}

std::vector<QRgb> colorGrid()
{
    std::vector<QRgb> colors;
    for (int r : {0, 1, 96, 128, 254, 255}) {
        for (int g : {0, 127, 200, 255}) {
            for (int b : {0, 64, 255})
                colors.push_back(qRgb(r, g, b));
        }
    }
    return colors;
}

constexpr quint32 kAlphas[] = {0, 1, 64, 128, 254, 255};

std::vector<QRgb> premultipliedGrid(bool opaque)
{
    std::vector<QRgb> pixels;
    for (const QRgb color : colorGrid()) {
        for (const quint32 alpha : kAlphas) {
            if (!opaque || alpha == 255)
                pixels.push_back(qPremultiply((color & 0x00ffffffU) | alpha << 24));
        }
    }
    return pixels;
}

using Blend = Row<BlendMode, bool>; // mode, opaque
using Clips = Row<QPoint>;          // at
using Fill = Row<QRectF>;           // rect

} // namespace

class CompositingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void modeNames()
    {
        int mode = 0;
        for (const char *name : {"Normal", "Multiply", "Screen", "Overlay", "Darken", "Lighten",
                                 "Color Dodge", "Color Burn", "Soft Light", "Hard Light", "Difference",
                                 "Exclusion", "Hue", "Saturation", "Color", "Luminosity"})
            QCOMPARE(int(blendModeNamed(QString::fromLatin1(name))), mode++);
        QCOMPARE(blendModeNamed(u"multiply"_qs), BlendMode::Normal);
    }

    void blendsByTheFormulas_data()
    {
        for (int mode = 0; mode < kBlendModeCount; ++mode) {
            for (const bool opaque : {true, false})
                addRow(Blend{QString::number(mode) + (opaque ? u" on opaque"_qs : u" on alpha"_qs),
                             BlendMode(mode), opaque});
        }
    }

    void blendsByTheFormulas()
    {
        const auto [name, mode, opaque] = currentRow<Blend>();
        const std::vector<QRgb> over = premultipliedGrid(false);
        const std::vector<QRgb> under = premultipliedGrid(opaque);
        QImage mark(int(over.size()), 1, QImage::Format_ARGB32_Premultiplied);
        std::copy(over.begin(), over.end(), reinterpret_cast<QRgb *>(mark.bits()));
        for (const double opacity : {1.0, 0.37, 0.004}) {
            for (const QRgb backdrop : under) {
                QImage rows(mark.size(), formatFor(opaque));
                rows.fill(backdrop);
                stampRows(rows, 0, mark, QPoint(0, 0), mode, opacity);
                const auto *result = reinterpret_cast<const QRgb *>(rows.constBits());
                for (std::size_t i = 0; i < over.size(); ++i) {
                    const auto expected = composed(mode, backdrop, over[i], opacity);
                    const int actual[] = {qRed(result[i]), qGreen(result[i]), qBlue(result[i]),
                                          qAlpha(result[i])};
                    for (std::size_t c = 0; c < 4; ++c) {
                        // Half a level is the rounding; the rest is the difference of float and double.
                        if (std::abs(actual[c] - expected[c]) > 0.51)
                            QFAIL(qPrintable(
                                u"%1 over %2 at %3: channel %4 is %5, should be %6"_qs.arg(over[i], 8, 16)
                                    .arg(backdrop, 8, 16)
                                    .arg(opacity)
                                    .arg(c)
                                    .arg(actual[c])
                                    .arg(expected[c])));
                    }
                    QVERIFY(qRed(result[i]) <= qAlpha(result[i]));
                }
            }
        }
    }

    void stripsJoinToTheWhole()
    {
        const QImage mark = randomImage(83, 41, false, 7);
        for (int mode = 0; mode < kBlendModeCount; ++mode) {
            for (const bool opaque : {true, false}) {
                const auto draw = [&](QImage &strip, int first) {
                    stampRows(strip, first, mark, QPoint(5, 9), BlendMode(mode), 0.7);
                };
                const QImage photo = randomImage(101, 60, opaque, 8);
                QImage whole = photo.copy();
                draw(whole, 0);
                for (const int height : {1, 7, 16})
                    QVERIFY2(drawnInStrips(photo, height, draw) == whole, qPrintable(QString::number(mode)));
            }
        }
    }

    void clips_data()
    {
        constexpr int kFar = std::numeric_limits<int>::max();
        addRows<Clips>({
            {"left and above", QPoint(-30, -12)},
            {"right and below", QPoint(70, 40)},
            {"beyond all edges", QPoint(-13, -4)},
            {"last pixel", QPoint(49, 29)},
            {"just outside", QPoint(50, 30)},
            {"far right", QPoint(kFar, kFar)},
            {"far left", QPoint(-kFar - 1, -kFar - 1)},
        });
    }

    void clips()
    {
        const auto [name, at] = currentRow<Clips>();
        constexpr int kRoom = 100;
        const QImage mark = randomImage(80, 45, false, 3);
        const QImage photo = randomImage(50, 30, true, 4);
        QImage clipped = photo.copy();
        stampRows(clipped, 0, mark, at, BlendMode::Multiply, 1);

        // The same on a photo with room for the whole mark.
        QImage roomy = photo.copy(QRect(-kRoom, -kRoom, 50 + 2 * kRoom, 30 + 2 * kRoom));
        if (std::abs(qint64(at.x())) < kRoom)
            stampRows(roomy, 0, mark, at + QPoint(kRoom, kRoom), BlendMode::Multiply, 1);
        QCOMPARE(clipped, roomy.copy(kRoom, kRoom, 50, 30));
    }

    void opacityLimits()
    {
        const QImage mark = randomImage(64, 8, false, 5);
        const QImage photo = randomImage(64, 8, false, 6);
        const auto stamped = [&](double opacity) {
            QImage rows = photo.copy();
            stampRows(rows, 0, mark, QPoint(0, 0), BlendMode::Normal, opacity);
            return rows;
        };
        QCOMPARE(stamped(0), photo);
        QCOMPARE(stamped(-1), photo);
        QCOMPARE(stamped(std::numeric_limits<double>::quiet_NaN()), photo);
        QCOMPARE(stamped(7), stamped(1));
    }

    void fill_data()
    {
        constexpr double kHuge = 1e300;
        addRows<Fill>({
            {"whole pixels", QRectF(3, 4, 10, 5)},
            {"between pixels", QRectF(3.25, 4.5, 10.5, 5.75)},
            {"within one pixel", QRectF(6.25, 7.125, 0.5, 0.25)},
            {"over one border", QRectF(6.75, 7.5, 0.5, 1)},
            {"beyond the left and upper edges", QRectF(-2.5, -3.25, 6.25, 4.5)},
            {"beyond the right and lower edges", QRectF(30.5, 12.25, 100, 100)},
            {"everything", QRectF(-kHuge, -kHuge, 2 * kHuge, 2 * kHuge)},
            {"outside", QRectF(-20, -20, 19, 19)},
            {"empty", QRectF(5, 5, 0, 4)},
            {"not a number", QRectF(std::numeric_limits<double>::quiet_NaN(), 0, 5, 5)},
        });
    }

    void fill()
    {
        const auto [name, rect] = currentRow<Fill>();
        const auto overlap = [](double low, double high, int pixel) {
            const double covered = std::min(high, pixel + 1.0) - std::max(low, double(pixel));
            return covered > 0 ? covered : 0;
        };
        for (const bool opaque : {true, false}) {
            const QImage photo = randomImage(40, 20, opaque, 11);
            for (const QColor &color : {QColor(255, 255, 255), QColor(10, 200, 90, 77), QColor(0, 0, 0, 1)}) {
                QImage whole = photo.copy();
                fillRows(whole, 0, rect, color);
                for (int y = 0; y < photo.height(); ++y) {
                    for (int x = 0; x < photo.width(); ++x) {
                        const QRgb under = reinterpret_cast<const QRgb *>(photo.constScanLine(y))[x];
                        const QRgb result = reinterpret_cast<const QRgb *>(whole.constScanLine(y))[x];
                        const double alpha = color.alphaF() * overlap(rect.left(), rect.right(), x) *
                                             overlap(rect.top(), rect.bottom(), y);
                        const auto expected = [&](int channel, int backdrop) {
                            return channel * alpha + backdrop * (1 - alpha);
                        };
                        QVERIFY(std::abs(qRed(result) - expected(color.red(), qRed(under))) < 0.52);
                        QVERIFY(std::abs(qBlue(result) - expected(color.blue(), qBlue(under))) < 0.52);
                        QVERIFY(std::abs(qAlpha(result) - expected(255, qAlpha(under))) < 0.52);
                    }
                }
                const QImage joined = drawnInStrips(
                    photo, 3, [&](QImage &strip, int first) { fillRows(strip, first, rect, color); });
                QCOMPARE(joined, whole);
            }
        }
    }
};

QTEST_GUILESS_MAIN(CompositingTest)

#include "compositing_test.moc"
