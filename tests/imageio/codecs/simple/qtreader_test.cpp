// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/pictures.h"
#include "support/bytes.h"
#include "support/datarows.h"

#include <QTest>
#include <QtEndian>

#include <cmath>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// @param headerBytes  40, 108 or 124
/// @param masks        of red, green, blue and alpha; empty where the header has none
/// @param pixels       rows from the bottom up
QByteArray bitmap(QSize size, int depth, quint32 headerBytes, quint32 compression, const QByteArray &masks,
                  const QByteArray &pixels)
{
    QByteArray header = little32(headerBytes) + little32(quint32(size.width())) +
                        little32(quint32(size.height())) + little32(quint32(1 | depth << 16)) +
                        little32(compression) + QByteArray(20, '\0') + masks;
    header.append(qMax<qsizetype>(0, qsizetype(headerBytes) - header.size()), '\0');
    const auto start = quint32(14 + header.size());
    return "BM" + little32(start + quint32(pixels.size())) + little32(0) + little32(start) + header + pixels;
}

QByteArray deepBitmap(const QImage &image, quint32 headerBytes, quint32 compression, const QByteArray &masks)
{
    QByteArray pixels;
    for (int y = image.height() - 1; y >= 0; --y)
        pixels.append(reinterpret_cast<const char *>(image.constScanLine(y)), image.width() * 4);
    return bitmap(image.size(), 32, headerBytes, compression, masks, pixels);
}

} // namespace

/// Windows bitmaps both ways, TGA, and the formats of Qt's plugins.
class QtReaderTest : public QObject
{
    Q_OBJECT

    struct Bitmap {
        QByteArray file;
        bool keepsAlpha = false;
    };

    struct Tga {
        QByteArray file;
        QList<QRgb> colors; ///< of two rows of two; empty: not a picture
    };

    struct Huge {
        Text name;
        QByteArray file;
    };

    void checkLargestIcon(const QString &suffix)
    {
        const QImage small = detailedPicture({32, 32}, QImage::Format_ARGB32);
        const QImage large = detailedPicture({128, 128}, QImage::Format_ARGB32);
        const QString path = m_folder.path(u"icon."_qs + suffix);
        QByteArray parts[2]; // files of one picture each
        for (int i = 0; i < 2; ++i) {
            QVERIFY((i == 0 ? small : large).save(path));
            parts[i] = contentsOf(path);
        }
        if (suffix == u"icns"_qs) {
            const QByteArray both = parts[0].mid(8) + parts[1].mid(8);
            QVERIFY(writeFile(path, "icns" + big32(both.size() + 8) + both));
        } else {
            for (QByteArray &part : parts)
                part = part.mid(6);
            parts[0].replace(12, 4, little32(6 + 32));
            parts[1].replace(12, 4, little32(quint32(6 + 32 + parts[0].size() - 16)));
            QVERIFY(writeFile(path, QByteArray("\0\0\1\0\2\0", 6) + parts[0].first(16) + parts[1].first(16) +
                                        parts[0].mid(16) + parts[1].mid(16)));
        }
        const auto source = ImageSource::open(path);
        QVERIFY(source);
        QCOMPARE(droppedPictures(*source), QStringList{u"other sizes"_qs});
        QCOMPARE(source->info().rows.size, large.size());
        QVERIFY(meanDifference(decoded(path), large) < 1);
    }

    TestFolder m_folder;
    QString m_origin; ///< a picture of detail and colors

private Q_SLOTS:
    void initTestCase()
    {
        m_origin = m_folder.path("origin.png");
        QVERIFY(detailedPicture({61, 43}).save(m_origin));
    }

    void bitmapsOfOtherPrograms()
    {
        const QImage origin = detailedPicture({13, 9}, QImage::Format_ARGB32);
        const QByteArray colors = little32(0xff0000) + little32(0xff00) + little32(0xff);
        const QByteArray masks = colors + little32(0xff000000);
        QByteArray topDown = deepBitmap(origin.mirrored(), 40, 0, {});
        topDown.replace(22, 4, little32(quint32(-origin.height())));
        const QString path = m_folder.path("other.bmp");
        for (const auto &[file, keepsAlpha] : {Bitmap{deepBitmap(origin, 40, 0, {})}, // fourth byte unused
                                               {deepBitmap(origin, 40, 3, colors)},
                                               {deepBitmap(origin, 108, 3, masks), true},
                                               {deepBitmap(origin, 124, 3, masks), true},
                                               {deepBitmap(origin, 124, 3, colors + little32(0))},
                                               {topDown}}) {
            QVERIFY(writeFile(path, file));
            const QImage image = decoded(path);
            QCOMPARE(image.hasAlphaChannel(), keepsAlpha);
            QCOMPARE(image, keepsAlpha ? origin.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                                       : detailedPicture({13, 9}));
        }
    }

    void tgaOfOtherPrograms()
    {
        const auto tga = [](int type, int bits, int descriptor, const QByteArray &pixels) {
            return "\0\0"_qba + char(type) + QByteArray(9, '\0') + "\2\0\2\0"_qba + char(bits) +
                   char(descriptor) + pixels;
        };
        const QByteArray four = "\0\0\xff\0\xff\0\xff\0\0\xff\xff\xff"_qba;
        const QRgb red = 0xffff0000, green = 0xff00ff00, blue = 0xff0000ff, white = 0xffffffff;
        const QString path = m_folder.path("other.tga");
        for (const auto &[file, colors] :
             {Tga{tga(2, 24, 0, four), {blue, white, red, green}},
              {tga(2, 24, 0x20, four), {red, green, blue, white}},
              {tga(2, 24, 0x30, four), {green, red, white, blue}},
              {tga(2, 15, 0x20, "\0\x7c\xe0\3\x1f\0\xff\x7f"_qba), {red, green, blue, white}},
              {tga(2, 16, 0x21, "\0\xfc\xe0\x83\x1f\0\xff\xff"_qba), {red, green, 0, white}},
              // fourth byte unused
              {tga(2, 32, 0x20, "\0\0\xff\0\0\xff\0\1\xff\0\0\2\xff\xff\xff\3"_qba),
               {red, green, blue, white}},
              // a run beyond the end of a row and of the picture
              {tga(10, 24, 0x20, "\0\0\0\xff\xff\xff\0\0"_qba), {red, blue, blue, blue}},
              {tga(32, 24, 0x20, four), {}},
              {tga(1, 8, 0x20, four), {}}}) {
            QVERIFY(writeFile(path, file));
            QString error;
            const QImage image = decoded(path, &error);
            QCOMPARE(error, colors.isEmpty() ? u"not a picture that can be read"_qs : QString());
            for (int i = 0; i < colors.size(); ++i)
                QCOMPARE(QString::number(image.pixel(i % 2, i / 2), 16), QString::number(colors[i], 16));
        }
    }

    void hugeFileOfLittleDataFails_data()
    {
        addRow<Huge>({"TGA", QByteArray("\0\0\x0a\0\0\0\0\0\0\0\0\0\x30\x75\x30\x75\x18\0", 18) +
                                 QByteArray(8000, 'x')});
        for (int kind = 1; kind <= 6; ++kind)
            addRow<Huge>({QString::asprintf("P%d", kind),
                          "P" + QByteArray::number(kind) +
                              (kind % 3 == 1 ? " 30000 30000\n" : "# 1 1\n30000 30000 255\n") +
                              QByteArray(8000, '1')});
    }

    /// They would need gigabytes.
    void hugeFileOfLittleDataFails()
    {
        auto [name, file] = currentRow<Huge>();
        const QString path = m_folder.path(file.startsWith('P') ? u"huge.pnm"_qs : u"huge.tga"_qs);
        QVERIFY(writeFile(path, file));
        const auto source = ImageSource::open(path);
        QVERIFY(!source);
        QCOMPARE(source.error().text, u"the file is truncated"_qs);
    }

    void largestIconIsRead()
    {
        for (const QString &suffix : {u"ico"_qs, u"icns"_qs})
            checkLargestIcon(suffix);
    }

    /// Each row is padded to four bytes.
    void bmpIsWrittenExactly()
    {
        for (const int width : {1, 2, 3, 4, 301}) {
            const QString path = m_folder.path("exact.bmp");
            const QImage image = detailedPicture({width, 203});
            QVERIFY(image.save(m_folder.path("source.bmp")));
            QVERIFY(writeFile(path, copied(m_folder.path("source.bmp"), "image/bmp", 1)));
            QCOMPARE(decoded(path), image);
            QCOMPARE(QImage(path).convertToFormat(QImage::Format_RGB32), image);
        }
    }

    void bmpHeaderIsCorrect()
    {
        const QString path = m_folder.path("facts.bmp");
        QVERIFY(writePicture(path, "image/bmp", detailedPicture({31, 20}),
                             {{u"DPIWidth"_qs, 300}, {u"DPIHeight"_qs, 150}}));
        QCOMPARE(outputOf("exiftool -s3 -PixelsPerMeterX -PixelsPerMeterY -ColorSpace -BitDepth -Compression "
                          "-ImageLength -Warning %1",
                          path),
                 QByteArray("11811\n5906\nsRGB\n24\nNone\n1920\n"));
        QCOMPARE(std::lround(ImageSource::open(path)->properties()->value(u"DPIWidth"_qs).toDouble()), 300L);
        QCOMPARE(qFromLittleEndian<qint32>(contentsOf(path).constData() + 2), QFileInfo(path).size());
    }
};

QTEST_GUILESS_MAIN(QtReaderTest)

#include "qtreader_test.moc"
