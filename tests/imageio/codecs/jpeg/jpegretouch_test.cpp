// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/jpegcoefficientfile.h"
#include "imageio/codecs/jpeg/requantization.h"
#include "imageio/imagedestination.h"
#include "imageio/imagesource.h"
#include "metadata/propertykeys.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/picturedifference.h"
#include "support/testenvironment.h"
#include "support/testfolder.h"
#include "support/testpictures.h"

#include <QBuffer>
#include <QPainter>
#include <QTest>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// Two marks: one at the corner, where MCUs are cut, one across the middle.
QList<QRect> marksOn(QSize size)
{
    return {QRect(size.width() - 37, size.height() - 21, 37, 21),
            QRect(size.width() / 3, size.height() / 2, 40, size.height() / 6)};
}

void drawMarks(QImage &part, QPoint at, QSize size, QColor color = QColor(255, 255, 255, 200))
{
    QPainter painter(&part);
    painter.translate(-at);
    for (const QRect &mark : marksOn(size)) {
        painter.fillRect(mark, color);
        painter.fillRect(mark.adjusted(4, 4, -20, -4), Qt::black);
    }
}

/// Detail, and colors that change from one MCU to the next.
QImage photo(QSize size)
{
    QRandomGenerator random(3);
    return paintedPicture(size, QImage::Format_RGB32, [&](int x, int y) {
        const int light = random.bounded(40);
        return qRgb(20 + 150 * x / size.width() + light, 30 + 150 * y / size.height() + light,
                    x / 24 % 2 * 60 + y / 24 % 3 * 50 + light);
    });
}

QImage upright(const QImage &stored, int orientation)
{
    const QTransform turns[] = {{},
                                {-1, 0, 0, 1, 0, 0},
                                {-1, 0, 0, -1, 0, 0},
                                {1, 0, 0, -1, 0, 0},
                                {0, 1, 1, 0, 0, 0},
                                {0, 1, -1, 0, 0, 0},
                                {0, -1, -1, 0, 0, 0},
                                {0, -1, 1, 0, 0, 0}};
    return stored.transformed(turns[orientation - 1]);
}

struct Case {
    Text name;
    QSize size;
    JpegForm form = {};
    int quality = 95;
    int orientation = 1;
};

} // namespace

class JpegRetouchTest : public QObject
{
    Q_OBJECT

private:
    TestFolder m_folder;
    QString m_notice; ///< of the last copy

    /// @return none: not copied in this way
    std::optional<QByteArray> copyOf(const QByteArray &file, int quality, const Retouch &retouch)
    {
        const QString path = m_folder.path("photo.jpg");
        const Result<ImageSource> source =
            writeFile(path, file) ? ImageSource::open(path) : ImageSource::open({});
        if (!source)
            return std::nullopt;
        CopyRequest request{u"image/jpeg"_qs, {}, &*source};
        request.properties.insert(kCGImageDestinationLossyCompressionQuality, quality / 100.0);
        request.orientation = retouch.orientation;
        QBuffer copy;
        copy.open(QIODevice::ReadWrite);
        const std::optional<QString> notice = writeRetouched(copy, request, retouch);
        m_notice = notice.value_or(QString());
        return notice ? std::optional(copy.data()) : std::nullopt;
    }

private Q_SLOTS:
    void untouchedBlocksStay_data()
    {
        addRows<Case>({
            {"4:2:0, same tables", {600, 456}},
            {"4:2:0, odd", {603, 449}, {.quality = 98}, 80},
            {"4:2:0, coarser source", {603, 449}, {.quality = 70}, 95},
            {"4:2:0, lower quality", {600, 456}, {}, 40},
            {"4:2:2", {601, 451}, {.sampling = "21,11,11"}, 90},
            {"4:4:0", {601, 451}, {.sampling = "12,11,11"}, 90},
            {"4:4:4", {601, 451}, {.sampling = "11,11,11"}, 80},
            {"4:4:4, wide MCUs", {601, 451}, {.sampling = "21,21,21"}, 80},
            {"4:1:1", {613, 450}, {.sampling = "41,11,11"}},
            {"4:1:0", {813, 650}, {.sampling = "42,11,11"}},
            {"chroma of two samplings", {613, 450}, {.sampling = "22,21,12"}},
            {"gray", {603, 449}, {.sampling = "11"}, 80},
            {"gray with factors", {603, 449}, {.sampling = "22"}, 80},
            {"progressive", {603, 449}, {.isProgressive = true}, 80},
            {"arithmetic", {603, 449}, {.isArithmetic = true}, 80},
            {"progressive, arithmetic", {603, 449}, {.isProgressive = true, .isArithmetic = true}},
            {"restart", {603, 449}, {.restartInterval = 5}, 80},
            {"higher than a ring of rows", {350, 1000}, {}, 80},
            {"high and progressive", {350, 1000}, {.isProgressive = true}, 80},
            {"quality 100", {603, 449}, {.quality = 100}, 100},
            {"tables that do not divide", {603, 449}, {.quality = 86}, 77},
        });
    }
    /// Those under the marks are the blocks of the whole picture, drawn on and encoded again.
    void untouchedBlocksStay()
    {
        const auto [name, size, form, quality, orientation] = currentRow<Case>();
        const QByteArray file = jpegOf(photo(size), form);
        const auto copy = copyOf(
            file, quality, {1, marksOn(size), [&](QImage &part, QPoint at) { drawMarks(part, at, size); }});
        QVERIFY(copy);
        const auto before = planesOf(file);
        const auto after = planesOf(*copy);
        QImage drawn = QImage::fromData(file).convertToFormat(QImage::Format_RGB32);
        drawMarks(drawn, {}, size);
        JpegForm lower = form;
        lower.quality = qMin(form.quality, quality);
        const auto rendered = planesOf(jpegOf(drawn, lower));
        const auto wanted = planesOf(jpegOf(photo({16, 16}), {.sampling = "11,11,11", .quality = quality}));
        QCOMPARE(after.size(), before.size());
        int touched = 0;
        for (size_t i = 0; i < before.size(); ++i) {
            QCOMPARE(after[i].blocks, before[i].blocks);
            for (size_t k = 0; k < DCTSIZE2; ++k)
                QCOMPARE(after[i].table[k], qMax(before[i].table[k], wanted[i].table[k]));
            for (int y = 0; y < before[i].blocks.height(); ++y) {
                for (int x = 0; x < before[i].blocks.width(); ++x) {
                    const QSize mcu = QSize(before[0].horizontal, before[0].vertical) * 8;
                    const QRect area(
                        QPoint(x / before[i].horizontal * mcu.width(), y / before[i].vertical * mcu.height()),
                        mcu);
                    const QList<QRect> marks = marksOn(size);
                    const bool isTouched = marks[0].intersects(area) || marks[1].intersects(area);
                    touched += isTouched ? 1 : 0;
                    for (size_t k = 0; k < DCTSIZE2; ++k) {
                        const int value = before[i].block(x, y)[k] * before[i].table[k];
                        const int step = after[i].table[k];
                        const int now = after[i].block(x, y)[k];
                        if (isTouched)
                            QCOMPARE(now, int(rendered[i].block(x, y)[k]));
                        else // to the nearest multiple
                            QVERIFY(2 * std::abs(value - now * step) <= step);
                    }
                }
            }
        }
        QVERIFY(touched > 8);
        QCOMPARE(copy->contains("\xff\xc2"), form.isProgressive);
    }

    /// Where a coefficient lies halfway between two steps, the decoded pixels, which are rounded, tell which
    /// of the two is nearer.
    void pixelsDecideTies()
    {
        const QSize size(160, 160);
        const QByteArray file = jpegOf(photo(size), {.sampling = "11", .quality = 90});
        const auto copy = copyOf(file, 80, {1, {QRect(0, 0, 1, 1)}, [](QImage &, QPoint) {}});
        QVERIFY(copy);
        const JpegPlane before = planesOf(file)[0];
        const JpegPlane after = planesOf(*copy)[0];
        const QImage pixels = QImage::fromData(file).convertToFormat(QImage::Format_Grayscale8);
        const auto wave = [](int frequency, int place) {
            return std::sqrt(frequency == 0 ? 0.125 : 0.25) *
                   std::cos((2 * place + 1) * frequency * M_PI / 16);
        };
        int right = 0;
        int wrong = 0;
        for (int block = 0; block < 400; ++block) {
            const QPoint at(block % 20, block / 20);
            std::vector<size_t> ties;
            const auto value = [&](size_t k) { return before.block(at.x(), at.y())[k] * before.table[k]; };
            const auto now = [&](size_t k) { return after.block(at.x(), at.y())[k] * after.table[k]; };
            for (size_t k = 0; k < DCTSIZE2; ++k) {
                if (2 * std::abs(value(k) - now(k)) == after.table[k])
                    ties.push_back(k);
            }
            for (const size_t k : ties.size() < 8 ? std::vector<size_t>() : ties) {
                double exact = k == 0 ? -8 * CENTERJSAMPLE : 0;
                for (int pixel = 0; pixel < DCTSIZE2; ++pixel)
                    exact += wave(int(k % 8), pixel % 8) * wave(int(k / 8), pixel / 8) *
                             pixels.constScanLine(at.y() * 8 + pixel / 8)[at.x() * 8 + pixel % 8];
                ++(std::abs(exact - now(k)) <= 0.5 * after.table[k] ? right : wrong);
            }
        }
        QVERIFY(right > 5000);
        QVERIFY(wrong < right / 3); // small gains are left out, and the library's arithmetic is not exact
    }

    void marksAreAsRendered_data()
    {
        untouchedBlocksStay_data();
        const QSize whole(608, 448); // MCUs of all samplings
        for (int orientation = 2; orientation <= 8; ++orientation) {
            const QString name = u"orientation %1, "_qs.arg(orientation);
            addRow(Case{name + u"4:2:0"_qs, whole, {.quality = 98}, 95, orientation});
            addRow(Case{name + u"4:2:2, progressive"_qs,
                        whole,
                        {.sampling = "21,11,11", .quality = 98, .isProgressive = true},
                        95,
                        orientation});
        }
        addRow(Case{"orientation 6, cut at the left", {603, 448}, {.quality = 98}, 95, 6});
        addRow(Case{"orientation 4, gray, cut at the left", {603, 448}, {.sampling = "11"}, 95, 4});
    }
    void marksAreAsRendered()
    {
        const auto [name, size, source, quality, orientation] = currentRow<Case>();
        const QByteArray file = jpegOf(photo(size), source);
        QImage expected = upright(QImage::fromData(file).convertToFormat(QImage::Format_RGB32), orientation);
        const QSize turned = expected.size();
        const Retouch retouch{orientation, marksOn(turned),
                              [&](QImage &part, QPoint at) { drawMarks(part, at, turned); }};
        const auto copy = copyOf(file, quality, retouch);
        QVERIFY(copy);
        const QImage picture = QImage::fromData(*copy).convertToFormat(QImage::Format_RGB32);
        drawMarks(expected, {}, turned);
        // The other way: the whole picture is encoded, with the same tables.
        JpegForm form = source;
        form.quality = qMin(source.quality, quality);
        if (orientation >= 5 && source.sampling == "21,11,11")
            form.sampling = "12,11,11";
        const QImage rendered =
            QImage::fromData(jpegOf(expected, form)).convertToFormat(QImage::Format_RGB32);
        // Turned blocks, and chroma beside a mark, differ a little.
        for (const QRect &mark : marksOn(turned))
            QVERIFY(differenceOf(rendered.copy(mark), picture.copy(mark)).psnr() > 45);
        // Also where many coefficients lie halfway between two steps.
        QVERIFY(differenceOf(expected, picture).psnr() > differenceOf(expected, rendered).psnr() - 0.1);
    }

    void noticesAreThoseOfTheReader_data()
    {
        const QByteArray plain = jpegOf(photo({603, 449}), {});
        const QByteArray scans = jpegOf(photo({603, 449}), {.isProgressive = true});
        using File = Row<QByteArray>;
        addRows<File>({
            {"intact", plain},
            {"last scan missing", scans.left(scans.lastIndexOf("\xff\xc4")) + "\xff\xd9"},
            {"stray bytes", plain.chopped(2) + QByteArray(40, 's') + "\xff\xd9"},
        });
    }
    void noticesAreThoseOfTheReader()
    {
        const auto [name, file] = currentRow<Row<QByteArray>>();
        const QSize size(603, 449);
        QVERIFY(copyOf(file, 80,
                       {1, marksOn(size), [&](QImage &part, QPoint at) { drawMarks(part, at, size); }}));
        const Result<ImageSource> source = ImageSource::open(m_folder.path("photo.jpg"));
        const Result<std::unique_ptr<RowReader>> rows = source->openRows();
        QImage picture(size, QImage::Format_RGB32);
        QVERIFY((*rows)->readRows(picture, size.height()));
        QCOMPARE(m_notice, (*rows)->notice());
        QCOMPARE(m_notice.isEmpty(), name == u"intact");
    }

    /// The library would write them as data that nobody can read.
    void coefficientsOutOfRange_data()
    {
        using Value = Row<size_t, int, bool>; // index, coefficient, valid
        addRows<Value>({{"mean of black", 0, -1024, true},
                        {"mean below", 0, -1025, false},
                        {"mean above", 0, 1024, false},
                        {"wave", 63, -1023, true},
                        {"wave below", 63, -1024, false},
                        {"wave above", 5, 1024, false}});
    }
    void coefficientsOutOfRange()
    {
        const auto [name, index, value, isValid] = currentRow<Row<size_t, int, bool>>();
        JBLOCK blocks[3] = {};
        blocks[2][index] = JCOEF(value);
        QCOMPARE(Requantization::areValid(blocks, 3), isValid);
    }

    void whatIsNotCopiedSo_data()
    {
        const auto cut = [](QByteArray file, qsizetype bytes) { return file.chopped(bytes); };
        const QByteArray plain = jpegOf(photo({603, 449}), {});
        const QByteArray scans = jpegOf(photo({603, 449}), {.isProgressive = true});
        using Refused = Row<QByteArray, int, Text>; // orientation, what is special about the marks
        addRows<Refused>({
            {"RGB", jpegOf(photo({603, 449}), {.sampling = "11,11,11", .colors = JCS_RGB}), 1, ""},
            {"luma smaller than chroma", jpegOf(photo({608, 448}), {.sampling = "11,21,11"}), 1, ""},
            {"mirrored with cut MCUs", plain, 2, ""},
            {"quarter turn with cut MCUs", plain, 6, ""},
            {"everywhere", plain, 1, "everywhere"},
            {"color on gray", jpegOf(photo({603, 449}), {.sampling = "11"}), 1, "red"},
            {"canceled", plain, 1, "canceled"},
            {"cut", cut(plain, plain.size() / 2), 1, ""},
            {"cut at the end", cut(plain, 40), 1, ""},
            {"zeros at the end", cut(plain, 3000) + QByteArray(3000, '\0'), 1, ""},
            {"scans missing", scans.left(scans.size() / 2), 1, ""},
            {"last scan missing", scans.left(scans.lastIndexOf("\xff\xda") - 30) + "\xff\xd9", 1, ""},
        });
    }
    void whatIsNotCopiedSo()
    {
        const auto [name, file, orientation, special] = currentRow<Row<QByteArray, int, Text>>();
        const QSize size(603, 449);
        Retouch retouch{orientation, marksOn(size), [&](QImage &part, QPoint at) {
                            drawMarks(part, at, size, special == u"red" ? Qt::red : Qt::white);
                        }};
        if (special == u"everywhere")
            retouch.covered = {QRect(QPoint(0, 0), size)};
        if (special == u"canceled")
            retouch.isCanceled = [] { return true; };
        QVERIFY(!copyOf(file, 80, retouch));
    }
};

QTEST_GUILESS_MAIN(JpegRetouchTest)
#include "jpegretouch_test.moc"
