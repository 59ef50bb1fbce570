// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/fontcatalog.h"
#include "raster/bitmaputilities.h"
#include "support/datarows.h"
#include "support/picturedifference.h"
#include "support/testpictures.h"
#include "watermark/fakephoto.h"
#include "watermark/textwatermark.h"
#include "watermark/watermarkdrawing.h"
#include "watermark/wpresetvalues.h"

#include <QPainter>
#include <QtTest>

#include <cmath>
#include <random>

using namespace plexa;
using namespace plexa::test;

namespace
{

constexpr QSize kSize(400, 300);

QImage flatPhoto(QColor color = QColor(128, 128, 128), QSize size = kSize)
{
    return flatPicture(size, color);
}

WPresetValues textPreset(const QString &text)
{
    WPresetValues values;
    values.textTokens = {text};
    values.fontSize = 20;
    return values;
}

/// A picture of four colors: red, green above blue, yellow; 40 x 20.
WPresetValues fourColors()
{
    QImage image(40, 20, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.fillRect(0, 0, 20, 10, QColor(255, 0, 0));
    painter.fillRect(20, 0, 20, 10, QColor(0, 255, 0));
    painter.fillRect(0, 10, 20, 10, QColor(0, 0, 255));
    painter.fillRect(20, 10, 20, 10, QColor(255, 255, 0));
    painter.end();
    WPresetValues values;
    values.type = u"Image"_qs;
    values.image = WatermarkPicture::fromImage(image);
    values.width = 40;
    values.widthUnit = u"Pixels"_qs;
    values.anchorPoint = 0;
    values.offsetHorizontal = values.offsetVertical = 0;
    return values;
}

/// Presets of every kind, alike in each run.
class RandomPresets
{
public:
    MarkOrder next()
    {
        WPresetValues values = isOneIn(2) ? textPreset(u"Reduced\nin \u00dcbersee for all"_qs) : fourColors();
        values.fontSize = number(4, 16);
        values.textAlignment = number(0, 2);
        values.fillColor = QColor(255, 240, 100);
        values.width = number(15, 90);
        values.widthUnit = u"% of width"_qs;
        values.anchorPoint = number(0, 8);
        values.offsetHorizontal = number(0, 12);
        values.offsetVertical = number(0, 12);
        values.angle = isOneIn(3) ? float(number(-180, 180)) : 0.0F;
        values.rotation = number(0, 3);
        values.flip = number(0, 3);
        values.replicateHorizontal = isOneIn(4);
        values.replicateVertical = isOneIn(4);
        values.opacity = number(40, 100);
        values.shadow = isOneIn(3);
        values.shadowBlur = number(0, 20);
        values.shadowOffset = number(0, 5);
        values.shadowAngle = float(number(-180, 180));
        values.background = isOneIn(3);
        values.backgroundColor = QColor(0, 60, 120);
        values.backgroundFullWidth = isOneIn(2);
        std::optional<QPointF> origin;
        if (isOneIn(5))
            origin = QPointF(number(-50, 500) + 0.3, number(-50, 400) + 0.7);
        return {values, origin};
    }

private:
    int number(int low, int high) { return low + static_cast<int>(m_random() % unsigned(high - low + 1)); }
    bool isOneIn(int count) { return number(1, count) == 1; }

    std::mt19937 m_random{20};
};

/// How much the drawings differ, in proportion to how much the expected one differs from the gray photo.
/// Blocks of pixels are compared: glyphs need not be on the same fraction of a pixel.
double unlikeness(const QImage &found, const QImage &expected)
{
    const auto blocksOf = [](const QImage &image) {
        return image.scaled(image.size() / 4, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    const QImage wanted = blocksOf(expected);
    const double all = meanDifference(wanted, flatPhoto(QColor(128, 128, 128), wanted.size()));
    return meanDifference(blocksOf(found), wanted) / std::max(all, 0.01);
}

} // namespace

class WatermarkDrawingTest : public QObject
{
    Q_OBJECT

private:
    QImage drawn(const QImage &photo, const WPresetValues &values, QRectF *rect = nullptr)
    {
        const PhotoFacts source = fakePhoto(photo.size());
        const Result<QImage> result = createWatermarkOnImage(photo, values, source, m_fonts, false, rect);
        if (!result)
            qWarning("%s", qPrintable(result.error().text));
        return result.value_or(QImage());
    }

    FontCatalog m_fonts;

private Q_SLOTS:
    void nothingToDrawGivesTheSameImage()
    {
        const QImage photo = flatPhoto();
        for (const auto &[type, pieces, width] :
             {std::tuple(u"Text"_qs, QStringList(), 98),
              {u"Text"_qs, QStringList(u"city"_qs), 98}, // a token without a value
              {u"Image"_qs, QStringList(u"text"_qs), 98},
              {u"Text"_qs, QStringList(u"text"_qs), 0},
              {u"Text"_qs, QStringList(u"text"_qs), -20}}) {
            WPresetValues values;
            values.type = type;
            values.textTokens = pieces;
            values.width = width;
            values.background = true;
            QCOMPARE(drawn(photo, values).constBits(), photo.constBits());
        }
    }

    void theRectangleIsReported()
    {
        WPresetValues values = fourColors();
        values.offsetHorizontal = 1;
        values.offsetHorizontalUnit = u"Pixels"_qs;
        QRectF rect;
        const QImage photo = flatPhoto();
        const QImage marked = drawn(photo, values, &rect);
        QCOMPARE(rect, QRectF(1, 280, 40, 20));
        QCOMPARE(differenceOf(photo, marked).rect, QRect(1, 0, 40, 20));

        rect = QRectF(-10.4, 99.6, 0, 0);
        const Result<QImage> moved =
            createWatermarkOnImage(photo, values, fakePhoto(kSize), m_fonts, true, &rect);
        QVERIFY(moved.has_value());
        QCOMPARE(rect, QRectF(-10.4, 99.6, 40, 20));
        QCOMPARE(differenceOf(photo, *moved).rect, QRect(0, 180, 30, 20));
        QCOMPARE(photo, flatPhoto());
    }

    void quarterTurnsAndMirrors()
    {
        using Row = std::tuple<float, int, int, Text>;
        for (const auto &[angle, rotation, flip, colors] :
             std::initializer_list<Row>{{0.0F, 0, 0, "RGBY"},
                                        {0.0F, 1, 0, "GYRB"},
                                        {0.0F, 2, 0, "BRYG"},
                                        {0.0F, 3, 0, "YBGR"},
                                        {0.0F, 4, 4, "RGBY"},
                                        {0.0F, 0, 1, "GRYB"},
                                        {0.0F, 0, 2, "BYRG"},
                                        {0.0F, 0, 3, "YBGR"},
                                        {0.0F, 1, 1, "YGBR"},
                                        {90.0F, 0, 0, "GYRB"},
                                        {-90.0F, 0, 0, "BRYG"},
                                        {90.0F, 1, 0, "YBGR"},
                                        {360.0F, 0, 0, "RGBY"},
                                        {-450.0F, 0, 0, "RGBY"}}) {
            WPresetValues values = fourColors();
            values.angle = angle;
            values.rotation = rotation;
            values.flip = flip;
            QRectF rect;
            const QImage marked = drawn(flatPhoto(), values, &rect);
            const QHash<QRgb, QChar> names{{qRgb(255, 0, 0), u'R'},
                                           {qRgb(0, 255, 0), u'G'},
                                           {qRgb(0, 0, 255), u'B'},
                                           {qRgb(255, 255, 0), u'Y'}};
            QString found;
            for (const double y : {0.1, 0.9}) {
                for (const double x : {0.1, 0.9})
                    found += names.value(marked.pixel(int(x * rect.width()), int(y * rect.height())), u'?');
            }
            QCOMPARE(found, colors);
            QCOMPARE(differenceOf(flatPhoto(), marked).rect.size(), rect.size().toSize());
        }
    }

    /// Only the ink is tilted; the text must be where tilting the whole frame would put it.
    void inkTiltsLikeTheWholeBitmap()
    {
        // Two empty lines below put the ink far from the frame's center.
        const QString text = u"Turn\n\n\u00a0"_qs;
        WPresetValues values = textPreset(text);
        values.width = 300;
        values.widthUnit = u"Pixels"_qs;
        values.textAlignment = 2;
        values.anchorPoint = 4;
        const auto bitmap = createTextWatermarkOfWidth(300, values, text, m_fonts, {kSize});
        QVERIFY(bitmap && *bitmap);
        QImage whole = createBitmapContext((*bitmap)->size.width(), (*bitmap)->size.height(), true);
        QPainter(&whole).drawImage((*bitmap)->inkAt, (*bitmap)->ink);
        const auto center = [](const QImage &image) {
            QPointF sum;
            double weight = 0;
            for (int i = 0; i < image.width() * image.height(); ++i) {
                const QPoint at(i % image.width(), i / image.width());
                sum += QPointF(at) * qGray(image.pixel(at));
                weight += qGray(image.pixel(at));
            }
            return sum / weight;
        };
        for (const float angle : {1.0F, 30.0F, -45.0F, 100.0F, 200.5F, 359.0F}) {
            const double radians = static_cast<double>(angle < 0 ? angle + 360 : angle) * M_PI / 180;
            const QImage tilted = createImageRotatedByAngle(whole, radians);
            values.angle = angle;
            QRectF rect;
            const QImage black = flatPhoto(qRgb(0, 0, 0));
            const QImage marked = drawn(black, values, &rect);
            QCOMPARE(rect.size().toSize(), tilted.size());
            QImage expected = black;
            QPainter(&expected).drawImage(qRound(rect.x()), qRound(300 - rect.y() - rect.height()), tilted);
            const QPointF off = center(marked) - center(expected);
            // Each of the two is moved to whole pixels once.
            QVERIFY2(std::abs(off.x()) <= 1.01 && std::abs(off.y()) <= 1.01,
                     qPrintable(QDebug::toString(off)));
        }
    }

    /// Against the same mark in a photo twice as large, whose pixels are averaged.
    void tiltedMarksAreSharp()
    {
        const QByteArray svg = "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 20 10'>"
                               "<path d='M0 0H2V10H0zM4 0H5V10H4zM8 1L19 9' stroke='black'/></svg>";
        for (const bool isText : {true, false}) {
            WPresetValues values = textPreset(u"Tilted"_qs);
            values.fontSize = 20;
            values.fontSizeUnit = u"% of height"_qs;
            values.width = 80;
            values.widthUnit = u"% of width"_qs;
            values.anchorPoint = 4;
            values.angle = 17;
            if (!isText) {
                values.type = u"Image"_qs;
                values.width = 40;
                values.image = *WatermarkPicture::fromSvg(svg);
            }
            const QImage found = drawn(flatPhoto(), values);
            const QSize twice = kSize * 2;
            const auto large = createWatermarkOnImage(flatPhoto(QColor(128, 128, 128), twice), values,
                                                      fakePhoto(twice), m_fonts, false, nullptr);
            const QImage truth = large->scaled(kSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
            const auto edges = [](const QImage &image) {
                double sum = 0;
                for (int y = 1; y < image.height(); ++y) {
                    for (int x = 1; x < image.width(); ++x) {
                        const int gray = qGray(image.pixel(x, y));
                        sum += std::pow(gray - qGray(image.pixel(x - 1, y)), 2) +
                               std::pow(gray - qGray(image.pixel(x, y - 1)), 2);
                    }
                }
                return sum;
            };
            const double ratio = edges(found) / edges(truth);
            QVERIFY2(ratio > 0.97 && ratio < 1.05, QByteArray::number(ratio));
        }
    }

    void theBoxIgnoresTheWatermarksOpacity()
    {
        WPresetValues values = fourColors();
        values.opacity = 0;
        values.blendMode = u"Difference"_qs;
        values.shadow = true;
        values.background = true;
        values.backgroundFullWidth = false;
        values.backgroundColor = QColor(255, 0, 0, 20);
        values.backgroundOpacity = 100;
        values.anchorPoint = 4;
        const QImage photo = flatPhoto();
        QImage expected = photo;
        QPainter(&expected).fillRect(QRect(180 - 20, 140 - 20, 80, 60), QColor(255, 0, 0));
        QCOMPARE(drawn(photo, values), expected);
    }

    void multiplyingByWhiteChangesNothing()
    {
        WPresetValues values = textPreset(u"white"_qs);
        values.stroke = false;
        values.blendMode = u"Multiply"_qs;
        const QImage photo = detailedPicture(kSize);
        QCOMPARE(drawn(photo, values), photo);
        // In another letter case the name is unknown, and white text shows.
        values.blendMode = u"multiply"_qs;
        QVERIFY(drawn(photo, values) != photo);
    }

    void theShadowFallsUp()
    {
        WPresetValues values = fourColors();
        values.anchorPoint = 4;
        values.shadow = true;
        values.shadowAngle = 90;
        values.shadowOffset = 30;
        values.shadowOffsetUnit = u"Pixels"_qs;
        values.shadowBlur = 0;
        const QImage marked = drawn(flatPhoto(qRgb(240, 240, 240)), values);
        QVERIFY(std::abs(qRed(marked.pixel(200, 115)) - 160) <= 1); // a third darker
        QCOMPARE(marked.pixel(200, 185), qRgb(240, 240, 240));
        QCOMPARE(marked.pixel(200 - 10, 150 - 5), qRgb(255, 0, 0));
    }

    void markAndShadowReachInAlone()
    {
        WPresetValues values = fourColors();
        values.shadow = true;
        values.shadowAngle = 0;
        values.shadowOffset = 100;
        values.shadowOffsetUnit = u"Pixels"_qs;
        values.shadowBlur = 0;
        const QImage photo = flatPhoto();
        for (const int x : {-60, 350}) { // the shadow alone is inside, or the mark alone
            QRectF rect(x, 140, 0, 0);
            const auto marked = createWatermarkOnImage(photo, values, fakePhoto(kSize), m_fonts, true, &rect);
            QCOMPARE(differenceOf(photo, marked.value_or(QImage())).rect,
                     QRect(x < 0 ? 40 : 350, 140, 40, 20));
        }
    }

    void stripsEqualTheWhole()
    {
        WPresetValues values = textPreset(u"Strips of\nfew rows"_qs);
        values.angle = 20;
        values.opacity = 70;
        values.blendMode = u"Overlay"_qs;
        values.shadow = true;
        values.shadowBlur = 9;
        values.background = true;
        values.backgroundPaddingUnit = u"% of height"_qs;
        values.backgroundPaddingTop = 1;
        values.replicateHorizontal = values.replicateVertical = true;
        values.replicateHorizontalDistance = -60;
        const QImage photo = detailedPicture(kSize);
        const QImage whole = drawn(photo, values);
        QVERIFY(whole != photo);
        const Result<std::optional<WatermarkDrawing>> drawing =
            WatermarkDrawing::prepare({values}, fakePhoto(kSize), m_fonts);
        QVERIFY(drawing && *drawing);
        for (const int height : {1, 7, 299}) {
            for (int first = 0; first < photo.height(); first += height) {
                QImage strip = photo.copy(0, first, photo.width(), std::min(height, photo.height() - first));
                (*drawing)->drawRows(strip, first);
                QCOMPARE(strip, whole.copy(QRect(QPoint(0, first), strip.size())));
            }
        }
    }

    void repeatsAreSeparateDraws()
    {
        WPresetValues values = fourColors();
        values.anchorPoint = 6;
        values.opacity = 50;
        values.replicateHorizontal = true;
        values.replicateHorizontalDistance = -10;
        values.replicateHorizontalDistanceUnit = u"Pixels"_qs;
        const QImage marked = drawn(flatPhoto(qRgb(0, 0, 0)), values);
        // Top rows: red and green in turn, 20 wide, a step of 30: they overlap for 10.
        QVERIFY(std::abs(qRed(marked.pixel(5, 285)) - 128) <= 1);
        QVERIFY(std::abs(qGreen(marked.pixel(25, 285)) - 128) <= 1);
        const QRgb both = marked.pixel(35, 285);
        QVERIFY(std::abs(qRed(both) - 128) <= 1 && std::abs(qGreen(both) - 64) <= 1);
    }

    /// Everything is where the full drawing has it, at each scale; so is a drawing that was moved. Two pixels
    /// aside would be noticed.
    void aReducedDrawingIsTheFullOneReduced()
    {
        constexpr QSize size(640, 480); // whole pixels at each scale
        const PhotoFacts facts = fakePhoto(size);
        const QImage photo = flatPhoto(QColor(128, 128, 128), size);
        RandomPresets presets;
        double sum = 0;
        double sumOfMisplaced = 0;
        for (int i = 0; i < 150; ++i) {
            const MarkOrder order = presets.next();
            const auto full = WatermarkDrawing::prepare(order, facts, m_fonts);
            QVERIFY(full && *full);
            const WatermarkLayout &layout = (*full)->layout();
            QImage marked = photo;
            (*full)->drawRows(marked, 0);
            for (const double scale : {0.75, 0.5, 0.35, 0.25, 0.125}) {
                const QByteArray name = QByteArray::number(i) + " at " + QByteArray::number(scale);
                const auto elsewhere =
                    WatermarkDrawing::prepare({order.values, QPointF(7, 9)}, facts, m_fonts, {scale});
                const auto reduced = (*elsewhere)->movedTo(layout.rect.topLeft());
                QVERIFY2(reduced.layout().rect == layout.rect && reduced.layout().box == layout.box &&
                             reduced.layout().repeats == layout.repeats,
                         name);
                const QSize target = (QSizeF(size) * scale).toSize();
                const QImage bare = flatPhoto(QColor(128, 128, 128), target);
                QImage found = bare;
                reduced.drawRows(found, 0);
                const QRect covered = reduced.coveredRect();
                QVERIFY2((covered | differenceOf(bare, found).rect) == covered, name);
                const QImage expected =
                    marked.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
                const double unlike = unlikeness(found, expected);
                QVERIFY2(unlike < 0.6,
                         name + ": " + QByteArray::number(unlike)); // half a pixel beside thin text
                sum += unlike;
                if (scale != 0.5)
                    continue;

                QImage misplaced = bare;
                reduced.movedTo(layout.rect.topLeft() + QPointF(2, 0) / scale).drawRows(misplaced, 0);
                sumOfMisplaced += unlikeness(misplaced, expected);

                const auto direct = WatermarkDrawing::prepare(order, facts, m_fonts, {scale});
                QImage again = bare;
                (*direct)->drawRows(again, 0);
                QVERIFY2(again == found, name);
            }
        }
        QVERIFY2(sum / 750 < 0.07, QByteArray::number(sum / 750));
        QVERIFY2(sumOfMisplaced / 150 > 0.22, QByteArray::number(sumOfMisplaced / 150));
    }

    /// What is too large or too much is left out, with a notice; the rest is drawn.
    void oneFailureLeavesTheOthers()
    {
        const MarkOrder good{fourColors()};
        const MarkOrder nothing{textPreset(QString())};
        const MarkOrder failing{textPreset(QString(10'001, u'W'))};
        MarkOrder tooLarge = good;
        tooLarge.values.width = 2'000'000'000;
        MarkOrder repeats = good;
        repeats.values.anchorPoint = 6;
        repeats.values.replicateHorizontal = repeats.values.replicateVertical = true;
        repeats.values.replicateHorizontalDistanceUnit = repeats.values.replicateVerticalDistanceUnit =
            u"Pixels"_qs;
        repeats.values.replicateHorizontalDistance = -39;
        repeats.values.replicateVerticalDistance = -19;
        MarkOrder shadow = good;
        shadow.values.shadow = true;
        shadow.values.shadowBlur = 2'000'000'000;
        MarkOrder tilted = good; // too large only when it is tilted
        tilted.values.width = 11'000;
        tilted.values.angle = 45;
        MarkOrder text = MarkOrder{textPreset(u"W"_qs)};
        text.values.fontSize = 50'000;
        text.values.fontSizeUnit = u"Points"_qs;
        text.values.width = 50'000;
        text.values.widthUnit = u"Pixels"_qs;
        const std::vector orders{good, failing, nothing, tooLarge, text, tilted, repeats, shadow};
        const auto drawings = WatermarkDrawing::prepareEach(orders, fakePhoto(kSize), m_fonts);
        QCOMPARE(drawings.size(), orders.size());
        QVERIFY(!drawings[1] && drawings[1].error().text.contains(u"10001"));
        QVERIFY(drawings[2] && !*drawings[2]);
        QVERIFY((*drawings[0])->notices().isEmpty());
        const auto drawn = [&](std::size_t i) {
            QImage photo = flatPhoto(Qt::gray, kSize);
            (*drawings[i])->drawRows(photo, 0);
            return photo;
        };
        using Row = std::tuple<std::size_t, bool, QString>;
        for (const auto &[i, isVisible, notice] : std::initializer_list<Row>{{3, false, u"2000000000"_qs},
                                                                             {4, false, u"left out"_qs},
                                                                             {5, false, u"left out"_qs},
                                                                             {6, true, u"too many times"_qs},
                                                                             {7, true, u"shadow"_qs}}) {
            QVERIFY(drawings[i] && *drawings[i]);
            QVERIFY2((*drawings[i])->notices().join(u' ').contains(notice), qPrintable(notice));
            QCOMPARE((*drawings[i])->isVisible(), isVisible);
            if (i != 6)
                QCOMPARE(drawn(i), isVisible ? drawn(0) : flatPhoto(Qt::gray, kSize));
        }
    }

    /// As many as the photo has pixels, in strips.
    void millionsOfRepeats()
    {
        constexpr QSize size(2500, 2000);
        WPresetValues values = fourColors();
        values.image = WatermarkPicture::fromImage(flatPhoto(Qt::red, {1, 1}));
        values.width = 1;
        values.widthUnit = u"Pixels"_qs;
        values.offsetHorizontal = values.offsetVertical = 0;
        values.anchorPoint = 6;
        values.replicateHorizontal = values.replicateVertical = true;
        values.replicateHorizontalDistance = values.replicateVerticalDistance = 0;
        const auto drawing = WatermarkDrawing::prepare({values}, fakePhoto(size), m_fonts);
        QVERIFY(drawing && *drawing);
        QCOMPARE((*drawing)->coveredRect(), QRect(QPoint(), size));
        QImage photo = flatPhoto(Qt::gray, size);
        for (int y = 0; y < size.height(); y += 300) {
            QImage strip(photo.scanLine(y), size.width(), std::min(300, size.height() - y),
                         photo.bytesPerLine(), photo.format());
            (*drawing)->drawRows(strip, y);
        }
        QCOMPARE(photo, flatPhoto(Qt::red, size));
    }

    void workStopsWhenCanceled()
    {
        WPresetValues logo = fourColors();
        logo.width = 3000;
        WPresetValues wideShadow = fourColors();
        wideShadow.shadow = true;
        wideShadow.shadowBlur = 100;
        WPresetValues narrowShadow = wideShadow;
        narrowShadow.shadowBlur = 4;
        narrowShadow.image =
            WatermarkPicture::fromImage(QImage(40, 200, QImage::Format_ARGB32_Premultiplied));
        // Thousands of marks at one place.
        const WPresetValues pile = textPreset(QString(3000, QChar(0x0489)));
        for (const WPresetValues &values :
             {textPreset(QString(400, u'W')), pile, logo, wideShadow, narrowShadow}) {
            int calls = 0;
            int last = std::numeric_limits<int>::max();
            const auto outcome = [&] {
                MarkOrder order{values};
                if (values.type == u"Image"_qs) // no size of this one is cached
                    order.values.image = WatermarkPicture::fromImage(values.image.image());
                calls = 0;
                return WatermarkDrawing::prepare(order, fakePhoto(kSize), m_fonts,
                                                 {.isCanceled = [&] { return ++calls > last; }});
            };
            QVERIFY(outcome().has_value());
            const int all = calls;
            QVERIFY2(all > 10, QByteArray::number(all));
            for (const int before : {0, all / 3, all / 2, all - 1}) {
                last = before;
                const auto canceled = outcome();
                QVERIFY(!canceled.has_value());
                QCOMPARE(canceled.error().text, canceledText());
                QVERIFY2(calls <= before + 8, QByteArray::number(calls));
            }
        }
    }
};

QTEST_MAIN(WatermarkDrawingTest)
#include "watermarkdrawing_test.moc"
