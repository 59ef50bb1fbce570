// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/pictures.h"
#include "support/bytes.h"
#include "support/datarows.h"

#include <QColor>
#include <QTest>
#include <QtEndian>

using namespace plexa;
using namespace plexa::test;

/// Is JPEG 2000 read as by OpenJPEG's own program, and refused if damaged?
class Jp2ReaderTest : public QObject
{
    Q_OBJECT

    struct Limit {
        quint32 side;
        quint32 tile;
        const char *reason;
    };

    struct Memory {
        Text name;
        int side;
        Text format;
        QStringList options;
        bool isRead;
    };

    /// Creates a file of a picture by ImageMagick. The last word of `source` is the format in between.
    QString compressed(const QString &name, const QByteArray &source, const QByteArray &options = "") const
    {
        const QStringList picture = words(source.constData());
        const QString between = m_folder.path(u"between."_qs + picture.constLast());
        outputOf(magickConvert(), picture.mid(0, picture.size() - 1) + QStringList{between});
        const QString path = m_folder.path(name);
        outputOf(u"opj_compress"_qs, words("-i %1 -o %2", between, path) + words(options));
        return path;
    }

    void checkPalette(int columns, bool isRead)
    {
        const QString path = compressed(u"palette.jp2"_qs, "-size 60x40 xc:black -depth 8 pgm");
        const auto box = [](const char *type, const QByteArray &contents) {
            return big32(contents.size() + 8) + type + contents;
        };
        QByteArray table("\0\2", 2), map; // two entries of a byte in each column
        table +=
            char(columns) + QByteArray(columns, 7) + QByteArray(columns, char(90)) + QByteArray(columns, 0);
        for (int i = 0; i < columns; ++i)
            map += QByteArray("\0\0\1", 3) + char(i);
        const QByteArray resolution = big16(5906) + big16(1) + big16(11811) + big16(1) + big16(0);
        const QByteArray added = box("pclr", table) + box("cmap", map) + box("res ", box("resc", resolution));
        QByteArray contents = contentsOf(path);
        const qsizetype colors = contents.indexOf("colr");
        const qsizetype header = contents.indexOf("jp2h") - 4;
        QVERIFY(colors > header && header > 0);
        contents[colors + 10] = 16; // sRGB
        char *length = contents.data() + header;
        const auto end = qFromBigEndian<quint32>(length);
        qToBigEndian(quint32(end + added.size()), length);
        contents.insert(header + end, added);
        QVERIFY(writeFile(path, contents));
        QString error;
        const QImage image = decoded(path, &error);
        QCOMPARE(!image.isNull(), isRead);
        if (!isRead) {
            QVERIFY2(error.contains(u"this kind of JPEG 2000"_qs), qPrintable(error));
            return;
        }
        QCOMPARE(image.pixelColor(30, 20), QColor(90, 90, 90));
        const QVariantMap properties = *ImageSource::open(path)->properties();
        QCOMPARE(std::lround(properties.value(u"DPIWidth"_qs).toDouble()), 300L);
        QCOMPARE(std::lround(properties.value(u"DPIHeight"_qs).toDouble()), 150L);
    }

    TestFolder m_folder;

private Q_SLOTS:
    void initTestCase()
    {
        PLEXA_NEEDS_PROGRAMS("opj_compress opj_decompress");
        PLEXA_NEEDS_MAGICK();
    }

    void colorsAreThoseOfTheLibrarysProgram()
    {
        const QString png = m_folder.path("expected.png");
        for (const auto &[kind, options] : {std::pair{"8 ppm", ""},
                                            {"16 ppm", ""},
                                            {"8 pgm", ""},
                                            {"8 ppm", "-t 40,33"},
                                            {"8 ppm", "-d 13,7"}}) {
            const QString path = compressed(
                u"photo.jp2"_qs, QByteArray("-size 151x97 -seed 5 plasma:red-blue -depth ") + kind, options);
            outputOf("opj_decompress -i %1 -o %2", path, png);
            const QImage image = decoded(path);
            QCOMPARE(image.size(), QSize(151, 97));
            const double difference = meanDifference(image, QImage(png));
            QVERIFY2(difference < 0.6, qPrintable(QString::number(difference)));
        }
    }

    void opacityIsRead()
    {
        const QString path = compressed(u"alpha.jp2"_qs, "-size 60x40 xc:rgba(200,100,50,0.4) -depth 8 tif");
        const QByteArray contents = contentsOf(path);
        QCOMPARE(contents.count("cdef"), 1);
        for (const char *channels : {"cdef", "free"}) { // the second is no definition
            QVERIFY(writeFile(path, QByteArray(contents).replace("cdef", channels)));
            const auto source = ImageSource::open(path);
            QVERIFY(source);
            QVERIFY(source->info().rows.hasAlpha);
            const auto image = source->createImage();
            QVERIFY(image);
            const QColor color = image->pixelColor(30, 20);
            QCOMPARE(color.alpha(), 102);
            QVERIFY(std::abs(color.red() - 200) <= 2 && std::abs(color.green() - 100) <= 2 &&
                    std::abs(color.blue() - 50) <= 2);
        }
    }

    void limitsHold()
    {
        const QString path = compressed(u"claim.j2k"_qs, "-size 60x40 plasma: -depth 8 ppm");
        QByteArray contents = contentsOf(path);
        const QByteArray whole = contents;
        QVERIFY(whole.size() > 60);
        for (const auto &[side, tile, reason] : {Limit{40000U, 40000U, "at most 1000 megapixels"},
                                                 {30000U, 30000U, "MB of memory"},
                                                 {9000U, 1U, "damaged"},
                                                 {100U, 0U, "damaged"}}) {
            for (const auto &[at, value] : {std::pair{8, side}, {12, side}, {24, tile}, {28, tile}})
                qToBigEndian(value, contents.data() + at);
            QVERIFY(writeFile(path, contents));
            QString error;
            QVERIFY(decoded(path, &error).isNull());
            QVERIFY2(error.contains(QLatin1String(reason)), qPrintable(error));
        }
        // More markers than any program writes.
        QVERIFY(writeFile(path, QByteArray(whole).insert(whole.indexOf("\xFF\x52"),
                                                         QByteArray("\xFF\x64\0\2", 4).repeated(500'000))));
        QString error;
        QVERIFY(decoded(path, &error).isNull());
        QVERIFY2(error.contains(u"this kind of JPEG 2000"_qs), qPrintable(error));
    }

    void paletteIsBounded()
    {
        for (const int columns : {3, 255})
            checkPalette(columns, columns == 3);
    }

    void memoryOfSmallFilesIsCounted_data()
    {
        addRows<Memory>({{"usual", 1000, "1,8,u", {}, true},
                         {"far from the origin of the grid", 100, "1,8,u",
                          words("-n 1 -d 30000,30000 -T 30000,30000 -t 20,20"), true},
                         {"small precincts", 1000, "1,8,u", words("-n 1 -c [2,2] -b 4,4"), false},
                         {"few samples in the first component", 3000, "3,8,u@16x16:1x1:1x1", {}, false}});
    }

    void memoryOfSmallFilesIsCounted()
    {
        auto [name, side, format, options, isRead] = currentRow<Memory>();
        const QString raw = m_folder.path("black.raw");
        const QString path = m_folder.path("black.jp2");
        QVERIFY(writeFile(raw, QByteArray(qsizetype(side) * side * 3, 0)));
        outputOf(u"opj_compress"_qs,
                 words("-i %1 -o %2 -F %3,%3,%4", raw, path, QString::number(side), format) + options);
        const ReadLimits limits = {1'000'000'000, 60'000'000};
        QString error;
        QCOMPARE(!decoded(path, &error, limits).isNull(), isRead);
        QVERIFY2(isRead || error.contains(u"MB of memory"_qs), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(Jp2ReaderTest)
#include "jp2reader_test.moc"
