// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/pictures.h"

#include <QColor>
#include <QTest>
#include <QtEndian>

#include <cmath>

using namespace plexa;
using namespace plexa::test;

/// Windows bitmaps both ways, and what Qt's plugins read.
class OtherFormatsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void kindsAreRead_data();
    void kindsAreRead();
    void bitmapsOfOtherPrograms_data();
    void bitmapsOfOtherPrograms();
    void fewBitsReachWhite_data();
    void fewBitsReachWhite();
    void tgaOfOtherPrograms_data();
    void tgaOfOtherPrograms();
    void skippedPixelsAreBlank();
    void hugeFileOfLittleDataFails_data();
    void hugeFileOfLittleDataFails();
    void factsNeedNoMemory_data();
    void factsNeedNoMemory();
    void cutFileIsWholeOrFails_data();
    void cutFileIsWholeOrFails();
    void largestIconIsRead_data();
    void largestIconIsRead();
    void webpCarriesMetadata();
    void bmpIsWrittenExactly_data();
    void bmpIsWrittenExactly();
    void bmpSaysWhatItHolds();
    void tooLargeBmpIsRefused();

private:
    TestFolder m_folder;
    QString m_origin;      ///< a picture of detail and colours
    QString m_translucent; ///< the same with alpha
    QString m_srgb;
};

#define NEEDS_MAGICK()                                                                                       \
    if (magickConvert().isEmpty())                                                                           \
    QSKIP("ImageMagick is not installed")

namespace
{

QImage detailedPicture(QSize size, bool hasAlpha)
{
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y,
                           qRgba(x * 255 / size.width(), y * 255 / size.height(), (x * 7 + y * 13) % 256,
                                 hasAlpha ? 255 - x * 200 / size.width() : 255));
    }
    return image.convertToFormat(hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
}

QByteArray littleEndian(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

/// @param headerBytes  40, 108 or 124
/// @param masks        of red, green, blue and alpha; empty where the header has none
/// @param pixels       rows from the bottom up
QByteArray bitmap(QSize size, int depth, quint32 headerBytes, quint32 compression, const QByteArray &masks,
                  const QByteArray &pixels)
{
    QByteArray header = littleEndian(headerBytes) + littleEndian(quint32(size.width())) +
                        littleEndian(quint32(size.height())) + littleEndian(quint32(1 | depth << 16)) +
                        littleEndian(compression) + QByteArray(20, '\0') + masks;
    header.append(qMax<qsizetype>(0, qsizetype(headerBytes) - header.size()), '\0');
    const auto start = quint32(14 + header.size());
    return "BM" + littleEndian(start + quint32(pixels.size())) + littleEndian(0) + littleEndian(start) +
           header + pixels;
}

QByteArray deepBitmap(const QImage &image, quint32 headerBytes, quint32 compression, const QByteArray &masks)
{
    QByteArray pixels;
    for (int y = image.height() - 1; y >= 0; --y)
        pixels.append(reinterpret_cast<const char *>(image.constScanLine(y)), image.width() * 4);
    return bitmap(image.size(), 32, headerBytes, compression, masks, pixels);
}

} // namespace

void OtherFormatsTest::initTestCase()
{
    m_origin = m_folder.path(u"origin.png"_qs);
    m_translucent = m_folder.path(u"translucent.png"_qs);
    m_srgb = m_folder.path(u"srgb.icc"_qs);
    QVERIFY(detailedPicture({61, 43}, false).save(m_origin));
    QVERIFY(detailedPicture({61, 43}, true).save(m_translucent));
    if (!photosFolder().isEmpty())
        QVERIFY(writeFile(m_srgb,
                          ImageSource::open(photosFolder() + u"/jpeg/htc-desire.jpg"_qs)->info().iccProfile));
}

void OtherFormatsTest::kindsAreRead_data()
{
    QTest::addColumn<QString>("options"); // ImageMagick's, with the kind and the suffix at the end
    QTest::addColumn<bool>("hasAlpha");   // of the origin
    const auto add = [](const char *options, bool hasAlpha = false) {
        QTest::newRow(options) << QString::fromLatin1(options) << hasAlpha;
    };
    add("-monochrome bmp3:bmp");
    add("-colors 16 -type Palette bmp3:bmp");
    add("-colors 200 -type Palette bmp3:bmp");
    add("-colors 200 -type Palette -compress RLE bmp3:bmp");
    add("-type TrueColor bmp3:bmp");
    add("-type TrueColor bmp2:bmp"); // of OS/2
    add("-colors 200 -type Palette bmp2:bmp");
    add("-type TrueColor bmp:bmp"); // version 5
    add("-type TrueColorAlpha bmp:bmp", true);
    add("-define webp:lossless=true webp:webp");
    add("-define webp:lossless=true webp:webp", true);
    add("-quality 80 webp:webp");
    add("-quality 80 webp:webp", true);
    add("-quality 90 -profile %1 webp:webp");
    add("-profile %1 -define webp:lossless=true webp:webp", true);
    add("ico:ico");
    add("-monochrome ico:ico");
    add("-colors 16 -type Palette ico:ico");
    add("ico:ico", true);
    add("-resize 256x256! ico:ico", true); // PNG inside
    add("ppm:ppm");
    add("-compress None ppm:ppm");
    add("-depth 16 ppm:ppm");
    add("pgm:pgm");
    add("-depth 16 -compress None pgm:pgm");
    add("-monochrome pbm:pbm");
    add("-monochrome -compress None pbm:pbm");
    add("-colors 40 xpm:xpm");
    add("-channel A -threshold 50% +channel -colors 40 xpm:xpm", true);
    add("-type TrueColor -compress None tga:tga");
    add("-type TrueColor -compress RLE tga:tga");
    add("-type TrueColorAlpha -compress None tga:tga", true);
    add("-type TrueColorAlpha -compress RLE tga:tga", true);
    add("-colors 100 -type Palette -compress None tga:tga");
    add("-colors 100 -type Palette -compress RLE tga:tga");
    add("-colorspace Gray -compress None tga:tga");
    add("-colorspace Gray -compress RLE tga:tga");
    add("-monochrome xbm:xbm");
    add("-monochrome wbmp:wbmp");
}

void OtherFormatsTest::kindsAreRead()
{
    NEEDS_MAGICK();
    if (photosFolder().isEmpty())
        QSKIP("there is no folder of photos (PLEXA_PHOTOS)");
    QFETCH(QString, options);
    QFETCH(bool, hasAlpha);
    const QString adobe = m_folder.path(u"adobe.icc"_qs);
    QVERIFY(writeFile(
        adobe, ImageSource::open(photosFolder() + u"/jpeg/adobe-rgb-uss-reagan.jpg"_qs)->info().iccProfile));
    QStringList arguments = options.split(u' ');
    arguments.replaceInStrings(u"%1"_qs, adobe);
    const QStringList kind = arguments.takeLast().split(u':');
    const QString path = m_folder.path(u"kind."_qs + kind[1]);
    outputOf(magickConvert(), QStringList{hasAlpha ? m_translucent : m_origin} + arguments +
                                  QStringList{kind[0] + u':' + path});
    QString error;
    const QImage ours = decoded(path, &error);
    QVERIFY2(!ours.isNull(), qPrintable(error));
    if (hasAlpha)
        QVERIFY(ours.hasAlphaChannel());
    QImage theirs = decodedByMagick(path, ours.size(), m_srgb);
    if (kind[1] == u"tga"_qs) // it leaves the rows in the file's order, from the bottom up
        theirs = theirs.mirrored();
    const double difference = meanDifference(ours, theirs);
    QVERIFY2(difference < 2, qPrintable(QString::number(difference)));
    QFile::remove(path);
}

void OtherFormatsTest::bitmapsOfOtherPrograms_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("keepsAlpha");
    const QImage image = detailedPicture({13, 9}, true);
    const QByteArray colors =
        littleEndian(0xff0000) + littleEndian(0xff00) + littleEndian(0xff) + QByteArray();
    const QByteArray masks = colors + littleEndian(0xff000000);
    QTest::newRow("version 3, fourth byte unused") << deepBitmap(image, 40, 0, {}) << false;
    QTest::newRow("version 3, masks") << deepBitmap(image, 40, 3, colors) << false;
    QTest::newRow("version 4, masks") << deepBitmap(image, 108, 3, masks) << true;
    QTest::newRow("version 5, masks") << deepBitmap(image, 124, 3, masks) << true;
    QTest::newRow("version 5, masks without alpha")
        << deepBitmap(image, 124, 3, colors + littleEndian(0)) << false;
    QByteArray topDown = deepBitmap(image.mirrored(), 40, 0, {});
    topDown.replace(22, 4, littleEndian(quint32(-image.height())));
    QTest::newRow("from the top down") << topDown << false;
}

void OtherFormatsTest::bitmapsOfOtherPrograms()
{
    QFETCH(QByteArray, file);
    QFETCH(bool, keepsAlpha);
    const QString path = m_folder.path(u"other.bmp"_qs);
    QVERIFY(writeFile(path, file));
    QString error;
    const QImage image = decoded(path, &error);
    QVERIFY2(!image.isNull(), qPrintable(error));
    QCOMPARE(image.hasAlphaChannel(), keepsAlpha);
    const QImage origin = detailedPicture({13, 9}, true);
    QCOMPARE(image, keepsAlpha ? origin.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                               : detailedPicture({13, 9}, false));
}

void OtherFormatsTest::fewBitsReachWhite_data()
{
    QTest::addColumn<QByteArray>("masks");
    QTest::addColumn<QByteArray>("pixels"); // black, white, the middle of red, and transparent if that can be
    QTest::addColumn<QList<QRgb>>("colors");
    const auto maskOf = [](std::initializer_list<quint32> masks) {
        QByteArray bytes;
        for (const quint32 mask : masks)
            bytes += littleEndian(mask);
        return bytes;
    };
    const QRgb half5 = qRgb(0x84, 0, 0);
    QTest::newRow("555") << QByteArray() << QByteArray("\0\0\xff\x7f\0\x40\0\0", 8)
                         << QList<QRgb>{0xff000000, 0xffffffff, half5, 0xff000000};
    QTest::newRow("565") << maskOf({0xf800, 0x7e0, 0x1f}) << QByteArray("\0\0\xff\xff\0\x80\0\0", 8)
                         << QList<QRgb>{0xff000000, 0xffffffff, half5, 0xff000000};
    QTest::newRow("4444") << maskOf({0xf00, 0xf0, 0xf, 0xf000}) << QByteArray("\0\xf0\xff\xff\0\xf8\0\0", 8)
                          << QList<QRgb>{0xff000000, 0xffffffff, qRgb(0x88, 0, 0), 0};
    QTest::newRow("1555") << maskOf({0x7c00, 0x3e0, 0x1f, 0x8000})
                          << QByteArray("\0\x80\xff\xff\0\xc0\0\0", 8)
                          << QList<QRgb>{0xff000000, 0xffffffff, half5, 0};
}

void OtherFormatsTest::fewBitsReachWhite()
{
    QFETCH(QByteArray, masks);
    QFETCH(QByteArray, pixels);
    QFETCH(QList<QRgb>, colors);
    const quint32 headerBytes = masks.size() == 16 ? 108 : 40;
    const QString path = m_folder.path(u"few.bmp"_qs);
    QVERIFY(writeFile(path, bitmap({4, 1}, 16, headerBytes, masks.isEmpty() ? 0 : 3, masks, pixels)));
    const QImage image = decoded(path);
    QCOMPARE(image.size(), QSize(4, 1));
    for (int x = 0; x < 4; ++x)
        QCOMPARE(QString::number(image.pixel(x, 0), 16), QString::number(colors[x], 16));
}

void OtherFormatsTest::tgaOfOtherPrograms_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QList<QRgb>>("colors"); // of two rows of two; empty: not a picture
    const auto tga = [](int type, int bits, int descriptor, const QByteArray &pixels) {
        return QByteArray("\0\0", 2) + char(type) + QByteArray(9, '\0') + QByteArray("\2\0\2\0", 4) +
               char(bits) + char(descriptor) + pixels;
    };
    const QByteArray four("\0\0\xff\0\xff\0\xff\0\0\xff\xff\xff", 12);
    const QRgb red = 0xffff0000;
    const QRgb green = 0xff00ff00;
    const QRgb blue = 0xff0000ff;
    const QRgb white = 0xffffffff;
    QTest::newRow("from the bottom") << tga(2, 24, 0, four) << QList<QRgb>{blue, white, red, green};
    QTest::newRow("from the top") << tga(2, 24, 0x20, four) << QList<QRgb>{red, green, blue, white};
    QTest::newRow("from the right") << tga(2, 24, 0x30, four) << QList<QRgb>{green, red, white, blue};
    QTest::newRow("Qt's kind, with a footer")
        << tga(2, 24, 0x20, four) + QByteArray(8, '\0') + QByteArray("TRUEVISION-XFILE.\0", 18)
        << QList<QRgb>{red, green, blue, white};
    QTest::newRow("15 bit") << tga(2, 15, 0x20, QByteArray("\0\x7c\xe0\3\x1f\0\xff\x7f", 8))
                            << QList<QRgb>{red, green, blue, white};
    QTest::newRow("16 bit, alpha") << tga(2, 16, 0x21, QByteArray("\0\xfc\xe0\x83\x1f\0\xff\xff", 8))
                                   << QList<QRgb>{red, green, 0, white};
    QTest::newRow("32 bit, fourth byte unused")
        << tga(2, 32, 0x20, QByteArray("\0\0\xff\0\0\xff\0\1\xff\0\0\2\xff\xff\xff\3", 16))
        << QList<QRgb>{red, green, blue, white};
    QTest::newRow("run over the end of a row and of the picture")
        << tga(10, 24, 0x20, QByteArray("\0\0\0\xff\xff\xff\0\0", 8)) << QList<QRgb>{red, blue, blue, blue};
    QTest::newRow("unknown type") << tga(32, 24, 0x20, four) << QList<QRgb>();
    QTest::newRow("palette without one") << tga(1, 8, 0x20, four) << QList<QRgb>();
}

void OtherFormatsTest::tgaOfOtherPrograms()
{
    QFETCH(QByteArray, file);
    QFETCH(QList<QRgb>, colors);
    const QString path = m_folder.path(u"other.tga"_qs);
    QVERIFY(writeFile(path, file));
    QString error;
    const QImage image = decoded(path, &error);
    QCOMPARE(error, colors.isEmpty() ? u"not a picture that can be read"_qs : QString());
    for (int i = 0; i < colors.size(); ++i)
        QCOMPARE(QString::number(image.pixel(i % 2, i / 2), 16), QString::number(colors[i], 16));
}

/// Runs may leave pixels out; those are of the palette's first colour.
void OtherFormatsTest::skippedPixelsAreBlank()
{
    const QByteArray palette = littleEndian(0x102030) + littleEndian(0xffffff);
    QByteArray file = bitmap({40, 30}, 8, 40, 1, palette,
                             QByteArray("\0\2\x10\x10"
                                        "\1\1\0\1",
                                        8));
    file.replace(46, 4, littleEndian(2)); // colours used
    const QString path = m_folder.path(u"skips.bmp"_qs);
    QVERIFY(writeFile(path, file));
    const QImage image = decoded(path);
    QCOMPARE(image.size(), QSize(40, 30));
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            QCOMPARE(image.pixel(x, y), x == 16 && y == 13 ? 0xffffffff : 0xff102030);
    }
}

void OtherFormatsTest::hugeFileOfLittleDataFails_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("failure"); // empty: it is whole
    const QString early = u"the picture data end early"_qs;
    QTest::newRow("TGA") << QByteArray("\0\0\x0a\0\0\0\0\0\0\0\0\0\x30\x75\x30\x75\x18\0", 18) +
                                QByteArray(8000, 'x')
                         << early;
    for (int kind = 1; kind <= 6; ++kind)
        QTest::addRow("P%d", kind) << "P" + QByteArray::number(kind) +
                                          (kind % 3 == 1 ? " 30000 30000\n" : "# 1 1\n30000 30000 255\n") +
                                          QByteArray(8000, '1')
                                   << early;
    // As few bytes as a picture can have.
    QTest::newRow("short P1") << QByteArray("P1\n#9\n2 2\n1 0 1 0\n") << QString();
    QTest::newRow("short P2") << QByteArray("P2 2 2 9 1 2 3 4\n") << QString();
    QTest::newRow("short P3") << QByteArray("P3 2 1 9 1 2 3 4 5 6\n") << QString();
    QTest::newRow("short P4") << QByteArray("P4 9 1\n\xff\x80") << QString();
    QTest::newRow("short P5") << QByteArray("P5 2 1 65535\n1122") << QString();
    QTest::newRow("short P6") << QByteArray("P6 1 1 255\nabc") << QString();
}

/// They would take gigabytes.
void OtherFormatsTest::hugeFileOfLittleDataFails()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, failure);
    const QString path = m_folder.path(file.startsWith('P') ? u"huge.pnm"_qs : u"huge.tga"_qs);
    QVERIFY(writeFile(path, file));
    QString error;
    QCOMPARE(decoded(path, &error).isNull(), !failure.isEmpty());
    QCOMPARE(error, failure);
    QCOMPARE(ImageSource::open(path).has_value(), failure.isEmpty());
}

void OtherFormatsTest::factsNeedNoMemory_data()
{
    QTest::addColumn<QString>("suffix");
    for (const char *suffix : {"pbm", "ppm", "xbm", "xpm"})
        QTest::newRow(suffix) << QString::fromLatin1(suffix);
}

/// The memory is asked for where pixels are.
void OtherFormatsTest::factsNeedNoMemory()
{
    QFETCH(QString, suffix);
    const QString path = m_folder.path(u"facts."_qs + suffix);
    QVERIFY(detailedPicture({61, 43}, false).save(path));
    const auto source = ImageSource::open(path, ReadLimits{4'000'000, 61 * 43 * 8 - 1});
    QVERIFY(source);
    QCOMPARE(source->info().rows.size, QSize(61, 43));
    const auto image = source->createImage();
    QVERIFY(!image);
    QVERIFY2(image.error().text.contains(u"MB of memory"_qs), qPrintable(image.error().text));
}

void OtherFormatsTest::cutFileIsWholeOrFails_data()
{
    QTest::addColumn<QString>("options"); // ImageMagick's, with the kind and the suffix at the end
    for (const char *options : {"-type TrueColor bmp3:bmp",
                                "-type TrueColor bmp2:bmp",
                                "-monochrome bmp3:bmp",
                                "-colors 200 -type Palette bmp3:bmp",
                                "-colors 200 -type Palette -compress RLE bmp3:bmp",
                                "-type TrueColor -compress None tga:tga",
                                "-type TrueColor -compress RLE tga:tga",
                                "-define webp:lossless=true webp:webp",
                                "-quality 80 webp:webp",
                                "ico:ico",
                                "-resize 256x256! ico:ico",
                                "icns:icns",
                                "ppm:ppm",
                                "-compress None ppm:ppm",
                                "-depth 16 ppm:ppm",
                                "pgm:pgm",
                                "-depth 16 -compress None pgm:pgm",
                                "-monochrome pbm:pbm",
                                "-monochrome -compress None pbm:pbm",
                                "-colors 40 xpm:xpm",
                                "-monochrome xbm:xbm",
                                "-monochrome wbmp:wbmp"})
        QTest::newRow(options) << QString::fromLatin1(options);
}

/// What lacks rows must not pass for a picture. What stands behind them may lack.
void OtherFormatsTest::cutFileIsWholeOrFails()
{
    NEEDS_MAGICK();
    QFETCH(QString, options);
    QStringList arguments = options.split(u' ');
    const QStringList kind = arguments.takeLast().split(u':');
    const QString path = m_folder.path(u"cut."_qs + kind[1]);
    if (kind[0] == u"icns"_qs)
        QVERIFY(detailedPicture({128, 128}, true).save(path));
    else
        outputOf(magickConvert(), QStringList{m_origin} + arguments + QStringList{kind[0] + u':' + path});
    QByteArray bytes = contentsOf(path);
    if (bytes.endsWith('\n'))
        bytes.chop(1); // which nobody needs
    QVERIFY(writeFile(path, bytes));
    const QImage whole = decoded(path);
    QVERIFY(!whole.isNull());
    QList<qsizetype> lengths = {bytes.size() - 4, bytes.size() - 3, bytes.size() - 2, bytes.size() - 1};
    constexpr int kCuts = 30;
    for (qsizetype i = 1; i < kCuts; ++i)
        lengths.append(bytes.size() * i / kCuts);
    int failures = 0;
    for (const qsizetype length : lengths) {
        QVERIFY(writeFile(path, bytes.first(length)));
        QString error;
        const QImage image = decoded(path, &error);
        QVERIFY2(image.isNull() || image == whole, qPrintable(QString::number(length)));
        QCOMPARE(image.isNull(), !error.isEmpty());
        failures += image.isNull() ? 1 : 0;
    }
    QVERIFY2(failures >= kCuts - 3, qPrintable(QString::number(failures)));
    QFile::remove(path);
}

void OtherFormatsTest::largestIconIsRead_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::newRow("ICO") << u"ico"_qs;
    QTest::newRow("ICNS") << u"icns"_qs;
}

void OtherFormatsTest::largestIconIsRead()
{
    QFETCH(QString, suffix);
    const QImage small = detailedPicture({32, 32}, true);
    const QImage large = detailedPicture({128, 128}, true);
    const QString path = m_folder.path(u"icon."_qs + suffix);
    QByteArray parts[2]; // files of one picture each
    for (int i = 0; i < 2; ++i) {
        QVERIFY((i == 0 ? small : large).save(path));
        parts[i] = contentsOf(path);
    }
    if (suffix == u"icns"_qs) {
        const QByteArray both = parts[0].mid(8) + parts[1].mid(8);
        QByteArray length(4, '\0');
        qToBigEndian(quint32(both.size() + 8), length.data());
        QVERIFY(writeFile(path, "icns" + length + both));
    } else {
        for (QByteArray &part : parts)
            part = part.mid(6);
        parts[0].replace(12, 4, littleEndian(6 + 32));
        parts[1].replace(12, 4, littleEndian(quint32(6 + 32 + parts[0].size() - 16)));
        QVERIFY(writeFile(path, QByteArray("\0\0\1\0\2\0", 6) + parts[0].first(16) + parts[1].first(16) +
                                    parts[0].mid(16) + parts[1].mid(16)));
    }
    const auto source = ImageSource::open(path);
    QVERIFY(source);
    QCOMPARE(source->imageCount(), 2);
    QCOMPARE(source->info().rows.size, large.size());
    QVERIFY(meanDifference(decoded(path), large) < 1);
}

void OtherFormatsTest::webpCarriesMetadata()
{
    NEEDS_MAGICK();
    const QString path = m_folder.path(u"turned.webp"_qs);
    outputOf(magickConvert(), {m_origin, path});
    outputOf(u"exiftool"_qs,
             {u"-overwrite_original"_qs, u"-Orientation#=6"_qs, u"-XMP-dc:Title=Ulm"_qs, path});
    const QVariantMap properties = ImageSource::open(path)->properties();
    QCOMPARE(properties.value(u"Orientation"_qs).toInt(), 6);
    QCOMPARE(properties.value(u"{IPTC}"_qs).toMap().value(u"ObjectName"_qs).toString(), u"Ulm"_qs);
    QCOMPARE(decoded(path).size(), QSize(61, 43)); // as stored
}

void OtherFormatsTest::bmpIsWrittenExactly_data()
{
    QTest::addColumn<QSize>("size");
    for (const int width : {1, 2, 3, 4, 301})
        QTest::addRow("%d wide", width) << QSize(width, 203);
    QTest::newRow("one row") << QSize(5, 1);
}

/// Each row is filled up to four bytes.
void OtherFormatsTest::bmpIsWrittenExactly()
{
    NEEDS_MAGICK();
    QFETCH(QSize, size);
    const QImage image = detailedPicture(size, false);
    QBuffer file;
    QVERIFY(file.open(QIODevice::ReadWrite));
    const auto writer = openDestination(file, {size, false}, {u"image/bmp"_qs, {}});
    QVERIFY(writer);
    for (int row = 0; row < size.height(); row += 37)
        QVERIFY((*writer)->writeRows(image.copy(0, row, size.width(), qMin(37, size.height() - row)),
                                     qMin(37, size.height() - row)));
    QVERIFY((*writer)->finish());
    const QString path = m_folder.path(u"exact.bmp"_qs);
    QVERIFY(writeFile(path, file.data()));
    QCOMPARE(decoded(path), image);
    QCOMPARE(QImage(path).convertToFormat(QImage::Format_RGB32), image);
    const QByteArray theirs = outputOf(magickConvert(), {path, u"-depth"_qs, u"8"_qs, u"rgb:-"_qs});
    const QImage packed = image.convertToFormat(QImage::Format_RGB888);
    for (int y = 0; y < size.height(); ++y)
        QCOMPARE(theirs.mid(qsizetype(y) * size.width() * 3, size.width() * 3),
                 QByteArray(reinterpret_cast<const char *>(packed.constScanLine(y)), size.width() * 3));
}

void OtherFormatsTest::bmpSaysWhatItHolds()
{
    QBuffer file;
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(writeImage(file, detailedPicture({31, 20}, true).convertToFormat(QImage::Format_ARGB32),
                       {u"image/bmp"_qs, {{u"DPIWidth"_qs, 300}, {u"DPIHeight"_qs, 150}}}));
    const QString path = m_folder.path(u"facts.bmp"_qs);
    QVERIFY(writeFile(path, file.data()));
    QCOMPARE(exiftoolValue(path, u"PixelsPerMeterX"_qs).trimmed(), QByteArray("11811"));
    QCOMPARE(exiftoolValue(path, u"PixelsPerMeterY"_qs).trimmed(), QByteArray("5906"));
    QCOMPARE(exiftoolValue(path, u"ColorSpace"_qs).trimmed(), QByteArray("sRGB"));
    QCOMPARE(exiftoolValue(path, u"BitDepth"_qs).trimmed(), QByteArray("24"));
    QCOMPARE(exiftoolValue(path, u"Compression"_qs).trimmed(), QByteArray("0"));
    QCOMPARE(exiftoolValue(path, u"ImageLength"_qs).trimmed(), QByteArray("1920"));
    QVERIFY(exiftoolValue(path, u"Warning"_qs).isEmpty());
    QCOMPARE(std::lround(ImageSource::open(path)->properties().value(u"DPIWidth"_qs).toDouble()), 300L);
    QCOMPARE(qFromLittleEndian<quint32>(file.data().constData() + 2), quint32(file.size()));
    // What shows through is put on white.
    QVERIFY(!decoded(path).hasAlphaChannel());
    const QRgb corner = decoded(path).pixel(30, 0);
    const QColor source = detailedPicture({31, 20}, true).pixelColor(30, 0);
    QVERIFY(std::abs(qRed(corner) - (source.red() * source.alpha() + 255 * (255 - source.alpha())) / 255) <=
            1);
}

void OtherFormatsTest::tooLargeBmpIsRefused()
{
    QBuffer file;
    QVERIFY(file.open(QIODevice::ReadWrite));
    const auto *codec = imageFormatOfType(u"image/bmp"_qs)->codec;
    const auto writer = codec->openWriter(file, {{40'000, 40'000}, false}, {}); // 4.8 GB
    QVERIFY(!writer);
    QCOMPARE(writer.error().text, u"the picture is too large for a BMP file"_qs);
    QVERIFY(file.data().isEmpty());
    QVERIFY(codec->openWriter(file, {{37'000, 37'000}, false}, {}));
}

QTEST_GUILESS_MAIN(OtherFormatsTest)

#include "otherformats_test.moc"
