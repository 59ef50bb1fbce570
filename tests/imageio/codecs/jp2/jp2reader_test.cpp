// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/pictures.h"
#include "support/datarows.h"

#include <QColor>
#include <QRandomGenerator>
#include <QTest>
#include <QtEndian>

using namespace plexa;
using namespace plexa::test;

/// Is JPEG 2000 read as OpenJPEG's own program reads it, and refused where it is damaged?
class Jp2ReaderTest : public QObject
{
    Q_OBJECT

    struct LimitsHoldRow {
        Text name;
        quint32 side;
        quint32 tile;
        Text reason;
    };

    struct PaletteIsBoundedRow {
        Text name;
        int columns;
        bool isRead;
    };

    struct MemoryOfSmallFilesIsCountedRow {
        Text name;
        int side;
        Text format;
        QStringList options;
        bool isRead;
    };

    void addFiles() const
    {
        QTest::addColumn<QString>("path");
        const QStringList noise{u"-size"_qs, u"151x97"_qs,          u"-seed"_qs,
                                u"5"_qs,     u"plasma:red-blue"_qs, u"-depth"_qs};
        const auto add = [this](const char *name, const QStringList &source, const QStringList &options) {
            QTest::newRow(name) << compressed(QLatin1String(name), source, options);
        };
        add("rgb.jp2", noise + QStringList{u"8"_qs, u"ppm"_qs}, {});
        add("deep.jp2", noise + QStringList{u"16"_qs, u"ppm"_qs}, {});
        add("gray.jp2", noise + QStringList{u"8"_qs, u"pgm"_qs}, {});
        add("lossy.j2k", noise + QStringList{u"8"_qs, u"ppm"_qs}, {u"-r"_qs, u"12"_qs, u"-I"_qs});
        add("tiles.jp2", noise + QStringList{u"8"_qs, u"ppm"_qs}, {u"-t"_qs, u"40,33"_qs});
        add("one resolution.jp2", noise + QStringList{u"8"_qs, u"ppm"_qs}, {u"-n"_qs, u"1"_qs});
        add("moved.jp2", noise + QStringList{u"8"_qs, u"ppm"_qs}, {u"-d"_qs, u"13,7"_qs});
    }
    /// Makes a file: `source` tells ImageMagick what the picture is, its last word the format on the way.
    QString compressed(const QString &name, const QStringList &source, const QStringList &options) const
    {
        const QString between = m_folder.path(u"between."_qs + source.constLast());
        outputOf(magickConvert(), source.mid(0, source.size() - 1) + QStringList{between});
        const QString path = m_folder.path(name);
        outputOf(u"opj_compress"_qs, QStringList{u"-i"_qs, between, u"-o"_qs, path} + options);
        return path;
    }

    TestFolder m_folder;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_folder.isValid());
        if (QStandardPaths::findExecutable(u"opj_compress"_qs).isEmpty() || magickConvert().isEmpty())
            QSKIP("there is no opj_compress (libopenjp2-tools), or no ImageMagick");
    }

    void colorsAreThoseOfTheLibrarysProgram_data() { addFiles(); }

    void colorsAreThoseOfTheLibrarysProgram()
    {
        QFETCH(QString, path);
        const QString png = m_folder.path(u"expected.png"_qs);
        outputOf(u"opj_decompress"_qs, {u"-i"_qs, path, u"-o"_qs, png});
        QString error;
        const QImage image = decoded(path, &error);
        QVERIFY2(!image.isNull(), qPrintable(error));
        QCOMPARE(image.size(), QSize(151, 97));
        const double difference = meanDifference(image, QImage(png));
        QVERIFY2(difference < 0.6, qPrintable(QString::number(difference)));
    }

    void opacityIsRead()
    {
        const QString path = compressed(
            u"alpha.jp2"_qs,
            {u"-size"_qs, u"60x40"_qs, u"xc:rgba(200,100,50,0.4)"_qs, u"-depth"_qs, u"8"_qs, u"tif"_qs}, {});
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

    void limitsHold_data()
    {
        addRow<LimitsHoldRow>({"pixels", 40000U, 40000U, "at most 1000 megapixels"});
        addRow<LimitsHoldRow>({"memory", 30000U, 30000U, "MB of memory"});
        addRow<LimitsHoldRow>({"tiles", 9000U, 1U, "damaged"});
        addRow<LimitsHoldRow>({"no tile", 100U, 0U, "damaged"});
    }

    void limitsHold()
    {
        auto [name, side, tile, reason] = currentRow<LimitsHoldRow>();
        const QString path = compressed(
            u"claim.j2k"_qs, {u"-size"_qs, u"60x40"_qs, u"plasma:"_qs, u"-depth"_qs, u"8"_qs, u"ppm"_qs}, {});
        QByteArray contents = contentsOf(path);
        QVERIFY(contents.size() > 60);
        for (const auto &[at, value] : {std::pair{8, side}, {12, side}, {24, tile}, {28, tile}})
            qToBigEndian(value, contents.data() + at);
        QVERIFY(writeFile(path, contents));
        QString error;
        QVERIFY(decoded(path, &error).isNull());
        QVERIFY2(error.contains(reason), qPrintable(error));
    }

    void paletteIsBounded_data()
    {
        addRow<PaletteIsBoundedRow>({"colours", 3, true});
        addRow<PaletteIsBoundedRow>({"most", 255, false});
    }

    void paletteIsBounded()
    {
        auto [name, columns, isRead] = currentRow<PaletteIsBoundedRow>();
        const QString path =
            compressed(u"palette.jp2"_qs,
                       {u"-size"_qs, u"60x40"_qs, u"xc:black"_qs, u"-depth"_qs, u"8"_qs, u"pgm"_qs}, {});
        const auto box = [](const char *type, const QByteArray &contents) {
            QByteArray length(4, 0);
            qToBigEndian(quint32(contents.size() + 8), length.data());
            return length + type + contents;
        };
        QByteArray table("\0\2", 2), map; // two entries of a byte in each column
        table +=
            char(columns) + QByteArray(columns, 7) + QByteArray(columns, char(90)) + QByteArray(columns, 0);
        for (int i = 0; i < columns; ++i)
            map += QByteArray("\0\0\1", 3) + char(i);
        const QByteArray added = box("pclr", table) + box("cmap", map);
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
        if (isRead)
            QCOMPARE(image.pixelColor(30, 20), QColor(90, 90, 90));
        else
            QVERIFY2(error.contains(u"this kind of JPEG 2000"_qs), qPrintable(error));
    }

    void memoryOfSmallFilesIsCounted_data()
    {
        addRow<MemoryOfSmallFilesIsCountedRow>({"usual", 1000, "1,8,u", {}, true});
        addRow<MemoryOfSmallFilesIsCountedRow>(
            {"small precincts",
             1000,
             "1,8,u",
             {u"-n"_qs, u"1"_qs, u"-c"_qs, u"[2,2]"_qs, u"-b"_qs, u"4,4"_qs},
             false});
        addRow<MemoryOfSmallFilesIsCountedRow>(
            {"few samples in the first component", 3000, "3,8,u@16x16:1x1:1x1", {}, false});
    }

    void memoryOfSmallFilesIsCounted()
    {
        auto [name, side, format, options, isRead] = currentRow<MemoryOfSmallFilesIsCountedRow>();
        const QString raw = m_folder.path(u"black.raw"_qs);
        const QString path = m_folder.path(u"black.jp2"_qs);
        QVERIFY(writeFile(raw, QByteArray(qsizetype(side) * side * 3, 0)));
        outputOf(u"opj_compress"_qs,
                 QStringList{u"-i"_qs, raw, u"-o"_qs, path, u"-F"_qs, u"%1,%1,%2"_qs.arg(side).arg(format)} +
                     options);
        const ReadLimits limits = {1'000'000'000, 60'000'000};
        QString error;
        QCOMPARE(!decoded(path, &error, limits).isNull(), isRead);
        QVERIFY2(isRead || error.contains(u"MB of memory"_qs), qPrintable(error));
        if (!options.contains(u"-c"_qs))
            return;

        // The same where only the tile says so.
        QByteArray contents = contentsOf(path);
        const qsizetype style = contents.indexOf("\xff\x52");
        const qsizetype tile = contents.indexOf(QByteArray("\xff\x90\0\x0a", 4));
        QVERIFY(style > 0 && tile > style);
        const QByteArray copy = contents.mid(style, 2 + qFromBigEndian<quint16>(contents.data() + style + 2));
        contents[style + 4] = 0;  // usual precincts,
        contents[style + 10] = 4; // and code blocks of 64 by 64
        contents[style + 11] = 4;
        QVERIFY(writeFile(path, contents));
        QVERIFY(!decoded(path, &error, limits).isNull() || !error.contains(u"MB of memory"_qs));
        char *length = contents.data() + tile + 6;
        qToBigEndian(qFromBigEndian<quint32>(length) + quint32(copy.size()), length);
        contents.insert(tile + 12, copy);
        QVERIFY(writeFile(path, contents));
        QVERIFY(decoded(path, &error, limits).isNull());
        QVERIFY2(error.contains(u"MB of memory"_qs), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(Jp2ReaderTest)
#include "jp2reader_test.moc"
