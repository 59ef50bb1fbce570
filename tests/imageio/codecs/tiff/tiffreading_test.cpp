// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/imageresources.h"
#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/pictures.h"

#include <QColor>
#include <QTest>
#include <QtEndian>

#include <cmath>

using namespace plexa;
using namespace plexa::test;

/// Does every kind of TIFF come out whole, in the right colours, or with a reason?
class TiffReadingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void kindsOfTiffAreRead_data();
    void kindsOfTiffAreRead();
    void samplesOfThreeBytesAreRead_data();
    void samplesOfThreeBytesAreRead();
    void oldStyleJpegIsRead();
    void firstOfManyIsRead();
    void labIsThatOfPrint_data();
    void labIsThatOfPrint();
    void directoriesOfTiffAreBounded_data();
    void directoriesOfTiffAreBounded();
    void cutTiffDataFail_data();
    void cutTiffDataFail();
    void iptcIsFoundInAllForms_data();
    void iptcIsFoundInAllForms();

private:
    QString photo(const QString &name) const { return m_photos + QLatin1Char('/') + name; }
    bool skipsWithoutPhotos() const { return m_photos.isEmpty(); }

    TestFolder m_folder;
    QString m_photos;
    QString m_srgb; ///< an sRGB profile that is not of our making
};

#define NEEDS_PHOTOS()                                                                                       \
    if (skipsWithoutPhotos())                                                                                \
    QSKIP("there is no folder of photos (PLEXA_PHOTOS)")

namespace
{

/// In a field: where the data begin.
constexpr quint32 kData = 0xdadada;

/// A little-endian TIFF file of one directory, of long values, in front of the data.
QByteArray tiffOf(const QList<std::pair<quint16, quint32>> &fields, const QByteArray &data, quint32 next = 0)
{
    QByteArray file("II*\0\x08\0\0\0", 8);
    const auto put = [&file](quint32 value, int bytes) {
        for (int i = 0; i < bytes; ++i, value >>= 8)
            file.append(char(value & 0xff));
    };
    const auto start = quint32(8 + 2 + 12 * fields.size() + 4);
    put(quint32(fields.size()), 2);
    for (const auto &[tag, value] : fields) {
        put(tag, 2);
        put(4, 2);
        put(1, 4);
        put(value == kData ? start : value, 4);
    }
    put(next, 4);
    return file + data;
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

void TiffReadingTest::initTestCase()
{
    m_photos = photosFolder();
    if (skipsWithoutPhotos())
        return;
    m_srgb = m_folder.path(QStringLiteral("srgb.icc"));
    const auto source = ImageSource::open(photo(u"jpeg/htc-desire.jpg"_qs));
    QVERIFY(source);
    QVERIFY(writeFile(m_srgb, source->info().iccProfile));
    QVERIFY(QFileInfo(m_srgb).size() > 1000);
}

void TiffReadingTest::kindsOfTiffAreRead_data()
{
    QTest::addColumn<QStringList>("options"); // as for PNG; %3 is a profile of inks
    const auto add = [](const char *row, const QString &options) {
        QTest::newRow(row) << options.split(u' ', Qt::SkipEmptyParts);
    };
    add("RGB, 8 bit, LZW", u"-alpha off -depth 8 -compress LZW"_qs);
    add("RGB, 16 bit, deflate, big-endian", u"-alpha off -depth 16 -compress Zip -endian MSB"_qs);
    add("RGB, 4 bit", u"-alpha off -depth 4 -compress None"_qs);
    add("RGB, float", u"-alpha off -depth 32 -define quantum:format=floating-point"_qs);
    add("RGB, 10 bit", u"-type TrueColor -depth 10 -compress None"_qs);
    add("RGB, 12 bit, LZW", u"-type TrueColor -depth 12 -compress LZW"_qs);
    add("RGB, 12 bit, planes, big-endian", u"-type TrueColor -depth 12 -interlace Plane -endian MSB"_qs);
    add("RGB, 12 bit, tiles", u"-type TrueColor -depth 12 -define tiff:tile-geometry=32x16"_qs);
    add("RGB, 14 bit", u"-type TrueColor -depth 14 -compress None"_qs);
    add("RGB, 32 bit, big-endian", u"-type TrueColor -depth 32 -endian MSB"_qs);
    add("RGB, 16 bit, signed", u"-type TrueColor -depth 16 -define quantum:format=signed"_qs);
    add("RGB, half float", u"-type TrueColor -depth 16 -define quantum:format=floating-point"_qs);
    add("RGB, half float, big-endian, alpha",
        u"-type TrueColorAlpha -depth 16 -endian MSB -define quantum:format=floating-point"_qs);
    add("RGB, double", u"-type TrueColor -depth 64 -define quantum:format=floating-point"_qs);
    add("RGB, float, tiles, profile",
        u"-type TrueColor -depth 32 -define quantum:format=floating-point -profile %1 "
        "-define tiff:tile-geometry=16x16"_qs);
    add("grey, 12 bit", u"-alpha off -colorspace Gray -depth 12"_qs);
    add("grey, float", u"-alpha off -colorspace Gray -depth 32 -define quantum:format=floating-point"_qs);
    add("grey, half float, profile",
        u"-alpha off -colorspace Gray -depth 16 -define quantum:format=floating-point -profile %2"_qs);
    add("Lab", u"-type TrueColor -depth 8 -colorspace Lab"_qs);
    add("Lab, 16 bit, planes", u"-type TrueColor -depth 16 -colorspace Lab -interlace Plane"_qs);
    add("RGB, planes, PackBits", u"-alpha off -depth 8 -interlace Plane -compress RLE"_qs);
    add("RGB, planes, 16 bit", u"-alpha off -depth 16 -interlace Plane -define tiff:rows-per-strip=7"_qs);
    add("tiles", u"-alpha off -depth 8 -define tiff:tile-geometry=16x16 -compress Zip"_qs);
    add("tiles, big-endian, 16 bit", u"-depth 16 -define tiff:tile-geometry=32x16 -endian MSB"_qs);
    add("JPEG", u"-alpha off -depth 8 -compress JPEG -quality 98"_qs);
    add("JPEG, tiles", u"-alpha off -depth 8 -compress JPEG -define tiff:tile-geometry=32x32"_qs);
    add("alpha, straight", u"-depth 8 -define tiff:alpha=unassociated"_qs);
    add("alpha, premultiplied", u"-depth 8 -define tiff:alpha=associated"_qs);
    add("alpha, premultiplied, 16 bit", u"-depth 16 -define tiff:alpha=associated"_qs);
    add("alpha, planes", u"-depth 8 -interlace Plane"_qs);
    add("1 bit, Group 4", u"-alpha off -monochrome -compress Group4"_qs);
    add("1 bit, Group 3", u"-alpha off -monochrome -compress Fax"_qs);
    add("1 bit, min is white", u"-alpha off -monochrome -define quantum:polarity=min-is-white"_qs);
    add("grey, 4 bit", u"-alpha off -colorspace Gray -depth 4"_qs);
    add("grey, min is white",
        u"-alpha off -colorspace Gray -depth 8 -define quantum:polarity=min-is-white"_qs);
    add("grey, 16 bit, alpha", u"-colorspace Gray -depth 16"_qs);
    add("grey profile", u"-alpha off -colorspace Gray -depth 8 -profile %2"_qs);
    add("grey profile, 16 bit", u"-alpha off -colorspace Gray -depth 16 -profile %2"_qs);
    add("palette", u"-alpha off -type Palette -colors 20"_qs);
    add("palette, profile", u"-alpha off -profile %1 -type Palette -colors 20"_qs);
    add("Adobe RGB", u"-alpha off -depth 8 -profile %1"_qs);
    add("Adobe RGB, 16 bit, alpha", u"-depth 16 -profile %1"_qs);
    add("CMYK, profile", u"-alpha off -depth 8 -colorspace CMYK -profile %3"_qs);
    add("CMYK, profile, 16 bit", u"-alpha off -depth 16 -colorspace CMYK -profile %3 -compress LZW"_qs);
    add("CMYK, profile, planes", u"-alpha off -depth 8 -colorspace CMYK -profile %3 -interlace Plane"_qs);
    add("CMYK, plain", u"-alpha off -depth 8 -colorspace CMYK"_qs);
    add("luma and chroma", u"-alpha off -depth 8 -colorspace YCbCr -compress LZW"_qs);
    add("luma and chroma, turned",
        u"-alpha off -depth 8 -colorspace YCbCr -compress Zip -orient RightTop"_qs);
    add("luma and chroma, tiles",
        u"-alpha off -depth 8 -colorspace YCbCr -compress Zip -define tiff:tile-geometry=32x16"_qs);
    add("turned", u"-alpha off -depth 8 -orient RightTop"_qs);
    add("64-bit offsets", u"TIFF64: -alpha off -depth 8"_qs);
}

void TiffReadingTest::kindsOfTiffAreRead()
{
    NEEDS_PHOTOS();
    if (magickConvert().isEmpty())
        QSKIP("ImageMagick is not installed");
    QFETCH(QStringList, options);
    const QStringList profiles = {u"jpeg/adobe-rgb-uss-reagan.jpg"_qs, u"jpeg/gray-concert.jpg"_qs,
                                  u"jpeg/cmyk-derived.jpg"_qs};
    const QString prefix = options[0].endsWith(u':') ? options.takeFirst() : u"TIFF:"_qs;
    for (int i = 0; i < profiles.size(); ++i) {
        const QString file = m_folder.path(QString::number(i) + u".icc"_qs);
        QVERIFY(writeFile(file, ImageSource::open(photo(profiles[i]))->info().iccProfile));
        for (QString &option : options)
            option.replace(u"%"_qs + QString::number(i + 1), file);
    }
    const QString origin = m_folder.path(u"origin.png"_qs);
    const QString path = m_folder.path(u"kind.tif"_qs);
    QVERIFY(detailedPicture({61, 43}, QImage::Format_ARGB32).save(origin));
    outputOf(magickConvert(), QStringList{origin} + options + QStringList{prefix + path});
    QString error;
    const QImage ours = decoded(path, &error);
    QVERIFY2(!ours.isNull(), qPrintable(error));
    const double difference = meanDifference(ours, decodedByMagick(path, ours.size(), m_srgb));
    QVERIFY2(difference < 2, qPrintable(QString::number(difference)));
    QFile::remove(path);
}

void TiffReadingTest::samplesOfThreeBytesAreRead_data()
{
    QTest::addColumn<bool>("isFloat");
    QTest::newRow("whole numbers") << false;
    QTest::newRow("floats") << true;
}

/// ImageMagick misreads these.
void TiffReadingTest::samplesOfThreeBytesAreRead()
{
    QFETCH(bool, isFloat);
    // 0, 1/4, 1/2, 3/4, 1 and, of the floats, 2, -1 and no number; TIFF Technical Note 3.
    const QList<quint32> numbers =
        isFloat ? QList<quint32>{0, 0x3d0000, 0x3e0000, 0x3e8000, 0x3f0000, 0x400000, 0xbf0000, 0x7f0001}
                : QList<quint32>{0, 0x3fffff, 0x7fffff, 0xbfffff, 0xffffff};
    const QList<int> grays{0, 64, 128, 191, 255, 255, 0, 0};
    QByteArray data;
    for (const quint32 number : numbers) {
        for (int shift = 0; shift < 24; shift += 8)
            data.append(char(number >> shift & 0xff));
    }
    auto fields = tiffFields({int(numbers.size()), 1}, 1, 1, 1, quint32(data.size()));
    fields[2].second = 24;
    fields.append({339, isFloat ? 3 : 1});
    const QString path = m_folder.path(u"triples.tif"_qs);
    QVERIFY(writeFile(path, tiffOf(fields, data)));
    QString error;
    const QImage image = decoded(path, &error);
    QVERIFY2(!image.isNull(), qPrintable(error));
    for (int x = 0; x < image.width(); ++x)
        QVERIFY2(std::abs(qGray(image.pixel(x, 0)) - grays[x]) <= 1, qPrintable(QString::number(x)));
}

/// A whole JPEG file inside, as TIFF 6.0 had it before it was revised.
void TiffReadingTest::oldStyleJpegIsRead()
{
    if (magickConvert().isEmpty())
        QSKIP("ImageMagick is not installed");
    const QSize size(64, 48);
    const QString origin = m_folder.path(u"origin.png"_qs);
    const QString jpeg = m_folder.path(u"inside.jpg"_qs);
    const QString path = m_folder.path(u"old.tif"_qs);
    QVERIFY(detailedPicture(size, QImage::Format_RGB32).save(origin));
    outputOf(magickConvert(), {origin, u"-quality"_qs, u"95"_qs, u"-sampling-factor"_qs, u"1x1"_qs, jpeg});
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

void TiffReadingTest::firstOfManyIsRead()
{
    if (magickConvert().isEmpty())
        QSKIP("ImageMagick is not installed");
    const QString origin = m_folder.path(u"origin.png"_qs);
    const QString path = m_folder.path(u"pages.tif"_qs);
    const QImage first = detailedPicture({61, 43}, QImage::Format_RGB32);
    QVERIFY(first.save(origin));
    outputOf(magickConvert(), {origin, u"("_qs, u"+clone"_qs, u"-negate"_qs, u"-resize"_qs, u"200%"_qs,
                               u")"_qs, u"("_qs, u"+clone"_qs, u")"_qs, path});
    QCOMPARE(decoded(path), first);
    QCOMPARE(ImageSource::open(path)->imageCount(), 3);
    QCOMPARE(droppedPictures(*ImageSource::open(path)), QStringList{u"further pages"_qs});
    const auto mark = [&](const QStringList &tags) {
        outputOf(u"exiftool"_qs, QStringList{u"-q"_qs, u"-overwrite_original"_qs} + tags + QStringList{path});
    };
    // Pictures of the first one, smaller and as a mask, are no pages.
    mark({u"-IFD1:SubfileType#=1"_qs, u"-IFD2:SubfileType#=4"_qs});
    QCOMPARE(droppedPictures(*ImageSource::open(path)), QStringList());
    // No camera: the first picture is read although it says that it is a reduced one.
    mark({u"-IFD0:SubfileType#=1"_qs});
    QCOMPARE(decoded(path), first);
    mark({u"-IFD0:Make=Maker"_qs});
    QCOMPARE(decoded(path), first);
}

void TiffReadingTest::labIsThatOfPrint_data()
{
    QTest::addColumn<quint32>("photometric");
    QTest::addColumn<int>("depth");
    QTest::newRow("CIE, 8 bit") << 8u << 8;
    QTest::newRow("CIE, 16 bit") << 8u << 16;
    QTest::newRow("ICC, 8 bit") << 9u << 8;
    QTest::newRow("ICC, 16 bit") << 9u << 16;
}

/// Lab values under D50 and what they are in sRGB by the CIE formulas with Bradford's adaptation. Encodings:
/// TIFF 6.0, section 23, and for ICC's TIFF Technical Note 4.
void TiffReadingTest::labIsThatOfPrint()
{
    QFETCH(quint32, photometric);
    QFETCH(int, depth);
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
                                 (color.b + (isIcc ? 128 : 0)) * steps}) {
            pixels.append(char(number & 0xff));
            if (depth == 16)
                pixels.append(char(number >> 8 & 0xff));
        }
    }
    const QString path = m_folder.path(u"lab.tif"_qs);
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

void TiffReadingTest::directoriesOfTiffAreBounded_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("isRead");
    const QByteArray data(12, 'x');
    const auto small = tiffFields({4, 3}, 1, 1, 1, 12);
    QTest::newRow("whole") << tiffOf(small, data) << true;
    QTest::newRow("loop of directories") << tiffOf(small, data, 8) << true;
    QTest::newRow("strip larger than the file")
        << tiffOf(tiffFields({40'000, 20'000}, 1, 1, 1, 800'000'000), data) << false;
    QTest::newRow("compressed strip larger than the file")
        << tiffOf(tiffFields({4, 3}, 1, 1, 5, 0xfffffff0), data) << false;
    QTest::newRow("too many pixels") << tiffOf(tiffFields({2'000'000'000, 2'000'000'000}, 1, 1, 5, 12), data)
                                     << false;
    auto fax = tiffFields({3'000, 3'000}, 1, 20'000, 4, 12);
    fax[2].second = 1;
    QTest::newRow("many samples of a bit") << tiffOf(fax, data) << false;
    QTest::newRow("many samples") << tiffOf(tiffFields({30'000, 30'000}, 1, 65535, 5, 12), data) << false;
    auto tiles = tiffFields({4, 3}, 1, 1, 5, 12);
    tiles[5] = {322, 0x40000000};
    tiles[7] = {323, 0x40000000};
    tiles[8] = {324, kData};
    tiles.append({325, 12});
    QTest::newRow("huge tile") << tiffOf(tiles, data) << false;
    QTest::newRow("inks that are none of ours") << tiffOf(tiffFields({1, 1}, 5, 3, 1, 12), data) << false;
}

void TiffReadingTest::directoriesOfTiffAreBounded()
{
    QFETCH(QByteArray, file);
    QFETCH(bool, isRead);
    const QString path = m_folder.path(u"bounds.tif"_qs);
    QVERIFY(writeFile(path, file));
    QString error;
    const QImage image = decoded(path, &error);
    QCOMPARE(!image.isNull(), isRead);
    QCOMPARE(error.isEmpty(), isRead);
    if (isRead)
        QCOMPARE(ImageSource::open(path)->imageCount(), 1);
}

void TiffReadingTest::cutTiffDataFail_data()
{
    QTest::addColumn<QString>("compression"); // as ImageMagick calls it
    QTest::addColumn<quint32>("number");
    QTest::newRow("none") << u"None"_qs << 1u;
    QTest::newRow("LZW") << u"LZW"_qs << 5u;
    QTest::newRow("deflate") << u"Zip"_qs << 8u;
    QTest::newRow("PackBits") << u"RLE"_qs << 32773u;
    QTest::newRow("JPEG") << u"JPEG"_qs << 7u;
    QTest::newRow("fax") << u"Group4"_qs << 4u;
}

/// The data of a strip end early, and the file with them or not.
void TiffReadingTest::cutTiffDataFail()
{
    if (magickConvert().isEmpty())
        QSKIP("ImageMagick is not installed");
    QFETCH(QString, compression);
    QFETCH(quint32, number);
    const QSize size(64, 48);
    const QString origin = m_folder.path(u"origin.png"_qs);
    const QString path = m_folder.path(u"strip.tif"_qs);
    QVERIFY(detailedPicture(size, QImage::Format_RGB32).save(origin));
    const QStringList kind = number == 4 ? QStringList{u"-monochrome"_qs}
                                         : QStringList{u"-colorspace"_qs, u"Gray"_qs, u"-depth"_qs, u"8"_qs};
    outputOf(magickConvert(),
             QStringList{origin} + kind +
                 QStringList{u"-compress"_qs, compression, u"-define"_qs, u"tiff:predictor=1"_qs,
                             u"-define"_qs, u"tiff:rows-per-strip=48"_qs, path});
    const qsizetype start = exiftoolValue(path, u"StripOffsets"_qs).toLongLong();
    const qsizetype bytes = exiftoolValue(path, u"StripByteCounts"_qs).toLongLong();
    QByteArray data = contentsOf(path).mid(start, bytes);
    if (number == 7) { // the tables stand in a field of their own
        outputOf(magickConvert(), {path, m_folder.path(u"strip.jpg"_qs)});
        data = contentsOf(m_folder.path(u"strip.jpg"_qs));
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

void TiffReadingTest::iptcIsFoundInAllForms_data()
{
    QTest::addColumn<int>("tag");
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("isTurned");
    QTest::newRow("bytes") << 33723 << 1 << false;
    QTest::newRow("undefined") << 33723 << 7 << false;
    QTest::newRow("numbers") << 33723 << 4 << false;
    QTest::newRow("numbers turned around") << 33723 << 4 << true;
    QTest::newRow("image resources") << 34377 << 7 << false;
}

/// Records that no encoder would write like this come out as they are.
void TiffReadingTest::iptcIsFoundInAllForms()
{
    QFETCH(int, tag);
    QFETCH(int, type);
    QFETCH(bool, isTurned);
    const QByteArray records = QByteArray("\x1c\x02\x5a\x00\x05Paris", 10) + // city, without a version before
                               QByteArray("\x1c\x02\x3c\x00\x06"
                                          "101112",
                                          11); // time, without a zone
    QByteArray stored = tag == 34377 ? imageResourceBlocks(records, {}) : records;
    stored.append((4 - stored.size() % 4) % 4, '\0');
    if (isTurned) {
        for (qsizetype at = 0; at < stored.size(); at += 4)
            std::reverse(stored.begin() + at, stored.begin() + at + 4);
    }
    // A picture of stored.size() grey pixels, which are the records, too.
    auto fields = tiffFields({int(stored.size()), 1}, 1, 1, 1, quint32(stored.size()));
    fields.append({quint16(tag), kData});
    QByteArray file = tiffOf(fields, stored);
    char *field = file.data() + 8 + 2 + 12 * (fields.size() - 1);
    qToLittleEndian(quint16(type), field + 2);
    qToLittleEndian(quint32(type == 4 ? stored.size() / 4 : stored.size()), field + 4);
    const QString path = m_folder.path(u"records.tif"_qs);
    QVERIFY(writeFile(path, file));
    const auto source = ImageSource::open(path);
    QVERIFY(source);
    QCOMPARE(source->properties().value(u"{IPTC}"_qs).toMap().value(u"City"_qs).toString(), u"Paris"_qs);
    const auto metadata = source->metadata();
    QCOMPARE(metadata->encodeForCopy(metadata->properties(), {QSize(8, 8), 0}).iptc, records);
}

QTEST_GUILESS_MAIN(TiffReadingTest)

#include "tiffreading_test.moc"
