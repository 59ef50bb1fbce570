// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/imageresources.h"
#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/pictures.h"
#include "support/bytes.h"
#include "support/datarows.h"

#include <QColor>
#include <QTest>
#include <QtEndian>

#include <cmath>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// In a field: where the data begin.
constexpr quint32 kData = 0xdadada;

/// A little-endian TIFF file of one directory, of long values, in front of the data.
QByteArray tiffOf(const QList<std::pair<quint16, quint32>> &fields, const QByteArray &data, quint32 next = 0)
{
    QByteArray file = QByteArray("II*\0\x08\0\0\0", 8) + little16(fields.size());
    const auto start = quint32(8 + 2 + 12 * fields.size() + 4);
    for (const auto &[tag, value] : fields)
        file += little16(tag) + little16(4) + little32(1) + little32(value == kData ? start : value);
    return file + little32(next) + data;
}

/// The fields of a picture of one strip and 8 bits a sample.
QList<std::pair<quint16, quint32>> tiffFields(QSize size, quint32 photometric, quint32 samples,
                                              quint32 compression, quint32 bytes)
{
    return {{256, quint32(size.width())},
            {257, quint32(size.height())},
            {258, 8},
            {259, compression},
            {262, photometric},
            {273, kData},
            {277, samples},
            {278, quint32(size.height())},
            {279, bytes}};
}

} // namespace

/// Does every kind of TIFF come out whole, in the right colors, or with a reason?
class TiffReaderTest : public QObject
{
    Q_OBJECT

    struct Lab {
        Text name;
        quint32 photometric;
        int depth;
    };

    struct Directories {
        Text name;
        QByteArray file;
        bool isRead;
    };

    struct CutData {
        Text name;
        Text compression; ///< as ImageMagick calls it
        quint32 number;
    };

    struct Iptc {
        Text name;
        int tag;
        int type;
        bool isTurned;
    };

    TestFolder m_folder;

private Q_SLOTS:
    /// A whole JPEG file inside, as TIFF 6.0 had it before it was revised.
    void oldStyleJpegIsRead()
    {
        PLEXA_NEEDS_MAGICK();
        const QSize size(64, 48);
        const QString origin = m_folder.path("origin.png");
        const QString jpeg = m_folder.path("inside.jpg");
        const QString path = m_folder.path("old.tif");
        QVERIFY(detailedPicture(size).save(origin));
        magick("%1 -quality 95 -sampling-factor 1x1 %2", origin, jpeg);
        const QByteArray data = contentsOf(jpeg);
        auto fields = tiffFields(size, 6, 3, 6, quint32(data.size()));
        fields.append({512, 1}); // baseline
        fields.append({513, kData});
        fields.append({514, quint32(data.size())});
        QVERIFY(writeFile(path, tiffOf(fields, data)));
        QString error;
        const QImage image = decoded(path, &error);
        QVERIFY2(!image.isNull(), qPrintable(error));
        const double difference = meanDifference(image, decoded(jpeg));
        QVERIFY2(difference < 2, qPrintable(QString::number(difference)));
    }

    void firstOfManyIsRead()
    {
        PLEXA_NEEDS_MAGICK();
        const QString origin = m_folder.path("origin.png");
        const QString path = m_folder.path("pages.tif");
        const QImage first = detailedPicture({61, 43}, QImage::Format_RGB32);
        QVERIFY(first.save(origin));
        magick("%1 ( +clone -negate -resize 200% ) ( +clone ) %2", origin, path);
        QCOMPARE(decoded(path), first);
        QCOMPARE(ImageSource::open(path)->imageCount(), 3);
        QCOMPARE(droppedPictures(*ImageSource::open(path)), QStringList{u"further pages"_qs});
        const auto mark = [&](const char *tags) {
            outputOf(u"exiftool"_qs, words("-q -overwrite_original") + words(tags) + QStringList{path});
        };
        // Pictures of the first one, smaller and as a mask, are no pages.
        mark("-IFD1:SubfileType#=1 -IFD2:SubfileType#=4");
        QCOMPARE(droppedPictures(*ImageSource::open(path)), QStringList());
        // No camera: the first picture is read although it says that it is a reduced one.
        mark("-IFD0:SubfileType#=1");
        QCOMPARE(decoded(path), first);
        mark("-IFD0:Make=Maker");
        QCOMPARE(decoded(path), first);
    }

    void labIsThatOfPrint_data()
    {
        addRows<Lab>(
            {{"CIE, 8 bit", 8u, 8}, {"CIE, 16 bit", 8u, 16}, {"ICC, 8 bit", 9u, 8}, {"ICC, 16 bit", 9u, 16}});
    }

    /// Lab values under D50 and what they are in sRGB by the CIE formulas with Bradford's adaptation.
    /// Encodings: TIFF 6.0, section 23, and for ICC's TIFF Technical Note 4.
    void labIsThatOfPrint()
    {
        auto [name, photometric, depth] = currentRow<Lab>();
        const bool isIcc = photometric == 9;
        const struct {
            int l, a, b; // lightness of 100, a and b in their own units
            QRgb color;
        } colors[] = {{100, 0, 0, qRgb(255, 255, 255)},  {0, 0, 0, qRgb(0, 0, 0)},
                      {53, 0, 0, qRgb(126, 126, 126)},   {55, 39, 31, qRgb(201, 101, 80)},
                      {60, -36, 23, qRgb(80, 161, 102)}, {40, 14, -51, qRgb(68, 89, 179)},
                      {81, -2, 56, qRgb(222, 201, 92)}};
        QByteArray pixels;
        for (const auto &color : colors) {
            const int steps = depth == 8 ? 1 : 256;
            const double white = depth == 8 ? 255 : isIcc ? 0xff00 : 0xffff;
            for (const int number : {qRound(color.l * white / 100), (color.a + (isIcc ? 128 : 0)) * steps,
                                     (color.b + (isIcc ? 128 : 0)) * steps})
                pixels += littleEndian(number, depth / 8);
        }
        const QString path = m_folder.path("lab.tif");
        const QSize size(int(std::size(colors)), 1);
        auto fields = tiffFields(size, photometric, 3, 1, quint32(pixels.size()));
        fields[2].second = quint32(depth);
        QVERIFY(writeFile(path, tiffOf(fields, pixels)));
        QString error;
        const QImage image = decoded(path, &error);
        QVERIFY2(image.size() == size, qPrintable(error));
        for (int x = 0; x < size.width(); ++x) {
            const QRgb is = image.pixel(x, 0);
            const QRgb wanted = colors[x].color;
            QVERIFY2(std::abs(qRed(is) - qRed(wanted)) < 4 && std::abs(qGreen(is) - qGreen(wanted)) < 4 &&
                         std::abs(qBlue(is) - qBlue(wanted)) < 4,
                     qPrintable(QColor(is).name() + u' ' + QColor(wanted).name()));
        }
    }

    void directoriesOfTiffAreBounded_data()
    {
        const QByteArray data(12, 'x');
        const auto small = tiffFields({4, 3}, 1, 1, 1, 12);
        addRows<Directories>(
            {{"whole", tiffOf(small, data), true},
             {"loop of directories", tiffOf(small, data, 8), true},
             {"strip larger than the file", tiffOf(tiffFields({40'000, 20'000}, 1, 1, 1, 800'000'000), data),
              false},
             {"compressed strip larger than the file", tiffOf(tiffFields({4, 3}, 1, 1, 5, 0xfffffff0), data),
              false},
             {"too many pixels", tiffOf(tiffFields({2'000'000'000, 2'000'000'000}, 1, 1, 5, 12), data),
              false}});
        auto fax = tiffFields({3'000, 3'000}, 1, 20'000, 4, 12);
        fax[2].second = 1;
        addRows<Directories>(
            {{"many samples of a bit", tiffOf(fax, data), false},
             {"many samples", tiffOf(tiffFields({30'000, 30'000}, 1, 65535, 5, 12), data), false}});
        auto tiles = tiffFields({4, 3}, 1, 1, 5, 12);
        tiles[5] = {322, 0x40000000};
        tiles[7] = {323, 0x40000000};
        tiles[8] = {324, kData};
        tiles.append({325, 12});
        addRows<Directories>(
            {{"huge tile", tiffOf(tiles, data), false},
             {"inks that are none of ours", tiffOf(tiffFields({1, 1}, 5, 3, 1, 12), data), false}});
    }

    void directoriesOfTiffAreBounded()
    {
        auto [name, file, isRead] = currentRow<Directories>();
        const QString path = m_folder.path("bounds.tif");
        QVERIFY(writeFile(path, file));
        QString error;
        const QImage image = decoded(path, &error);
        QCOMPARE(!image.isNull(), isRead);
        QCOMPARE(error.isEmpty(), isRead);
        if (isRead)
            QCOMPARE(ImageSource::open(path)->imageCount(), 1);
    }

    void cutTiffDataFail_data()
    {
        addRows<CutData>({{"none", "None", 1u},
                          {"LZW", "LZW", 5u},
                          {"deflate", "Zip", 8u},
                          {"PackBits", "RLE", 32773u},
                          {"JPEG", "JPEG", 7u},
                          {"fax", "Group4", 4u}});
    }

    /// The data of a strip end early, and the file with them or not.
    void cutTiffDataFail()
    {
        auto [name, compression, number] = currentRow<CutData>();
        PLEXA_NEEDS_MAGICK();
        const QSize size(64, 48);
        const QString origin = m_folder.path("origin.png");
        const QString path = m_folder.path("strip.tif");
        QVERIFY(detailedPicture(size).save(origin));
        outputOf(magickConvert(),
                 QStringList{origin} + words(number == 4 ? "-monochrome" : "-colorspace Gray -depth 8") +
                     words("-compress %1 -define tiff:predictor=1 -define tiff:rows-per-strip=48 %2",
                           compression, path));
        const qsizetype start = exiftoolValue(path, u"StripOffsets"_qs).toLongLong();
        const qsizetype bytes = exiftoolValue(path, u"StripByteCounts"_qs).toLongLong();
        QByteArray data = contentsOf(path).mid(start, bytes);
        if (number == 7) { // the tables stand in a field of their own
            magick("%1 %2", path, m_folder.path("strip.jpg"));
            data = contentsOf(m_folder.path("strip.jpg"));
        }
        QVERIFY(data.size() > 100);
        const auto fields = [&](qsizetype count) {
            auto list = tiffFields(size, 1, 1, number, quint32(count));
            list[2].second = number == 4 ? 1 : 8;
            return list;
        };
        QVERIFY(writeFile(path, tiffOf(fields(data.size()), data)));
        QVERIFY(!decoded(path).isNull());
        for (qsizetype length = 1; length < data.size() - 8; length += 1 + data.size() / 60) {
            QVERIFY(writeFile(path, tiffOf(fields(data.size()), data.first(length))));
            QVERIFY2(decoded(path).isNull(), qPrintable(QString::number(length)));
            QVERIFY(writeFile(path, tiffOf(fields(length), data.first(length))));
            QVERIFY2(decoded(path).isNull(), qPrintable(QString::number(length)));
        }
    }

    void iptcIsFoundInAllForms_data()
    {
        addRows<Iptc>({{"bytes", 33723, 1, false},
                       {"undefined", 33723, 7, false},
                       {"numbers", 33723, 4, false},
                       {"numbers turned around", 33723, 4, true},
                       {"image resources", 34377, 7, false}});
    }

    /// Records that no encoder would write like this come out as they are.
    void iptcIsFoundInAllForms()
    {
        auto [name, tag, type, isTurned] = currentRow<Iptc>();
        const QByteArray records =
            QByteArray("\x1c\x02\x5a\x00\x05Paris", 10) + // city, without a version before
            QByteArray("\x1c\x02\x3c\x00\x06"
                       "101112",
                       11); // time, without a zone
        QByteArray stored = tag == 34377 ? imageResourceBlocks(records, {}) : records;
        stored.append((4 - stored.size() % 4) % 4, '\0');
        if (isTurned) {
            for (qsizetype at = 0; at < stored.size(); at += 4)
                std::reverse(stored.begin() + at, stored.begin() + at + 4);
        }
        // A picture of stored.size() gray pixels, which are the records, too.
        auto fields = tiffFields({int(stored.size()), 1}, 1, 1, 1, quint32(stored.size()));
        fields.append({quint16(tag), kData});
        QByteArray file = tiffOf(fields, stored);
        char *field = file.data() + 8 + 2 + 12 * (fields.size() - 1);
        qToLittleEndian(quint16(type), field + 2);
        qToLittleEndian(quint32(type == 4 ? stored.size() / 4 : stored.size()), field + 4);
        const QString path = m_folder.path("records.tif");
        QVERIFY(writeFile(path, file));
        const auto source = ImageSource::open(path);
        QVERIFY(source);
        QCOMPARE(source->properties().value(u"{IPTC}"_qs).toMap().value(u"City"_qs).toString(), u"Paris"_qs);
        const auto metadata = source->metadata();
        QCOMPARE(metadata->encodeForCopy(metadata->properties(), {QSize(8, 8), 0}).iptc, records);
    }
};

QTEST_GUILESS_MAIN(TiffReaderTest)

#include "tiffreader_test.moc"
