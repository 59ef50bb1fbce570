// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/pictures.h"
#include "support/bytes.h"
#include "support/datarows.h"

#include <QTest>
#include <QtEndian>

#include <array>
#include <cmath>

using namespace plexa;
using namespace plexa::test;

namespace
{

constexpr const char *kJpeg = "image/jpeg";
constexpr const char *kPng = "image/png";

/// A disk with limited room in bytes.
class FullDisk : public QBuffer
{
public:
    explicit FullDisk(qint64 room)
        : m_room(room)
    {
    }

protected:
    qint64 writeData(const char *data, qint64 length) override
    {
        if (pos() + length > m_room) {
            setErrorString(u"No space left on device"_qs);
            return -1;
        }
        return QBuffer::writeData(data, length);
    }

private:
    qint64 m_room;
};

} // namespace

/// Do copies contain the same picture with its facts, and no unmarked picture of the source?
class ImageDestinationTest : public QObject
{
    Q_OBJECT

    struct Kind {
        const char *file;
        double quality;
        const char *printed; ///< sampling and process (0: baseline, 2: progressive) by exiftool
    };

    struct TooLarge {
        const char *type;
        QSize size;
        const char *name;
    };

    TestFolder m_folder;

private Q_SLOTS:
    void jpegKeepsItsKind()
    {
        PLEXA_NEEDS_PHOTOS();
        for (const auto &[file, quality, printed] :
             {Kind{"jpeg/htc-desire.jpg", 0.95, "2 2\n0"},
              {"jpeg/canon-s5-furnace-creek.jpg", 0.9, "2 1\n0"},
              {"jpeg/canon-s5-furnace-creek.jpg", 0.89, "2 2\n0"},
              {"jpeg/fujifilm-mx-2900-440.jpg", 0.95, "1 2\n0"},
              {"jpeg/thompson-springs-gps-city.jpg", 1, "1 1\n0"},
              {"jpeg/panasonic-dmc-lc70-progressive.jpg", 0.95, "1 1\n2"},
              {"jpeg/panasonic-dmc-lc70-progressive.jpg", 0.5, "2 2\n2"},
              {"jpeg/gray-concert.jpg", 0.95, "1 1\n0"},
              {"jpeg/cmyk-ycck-small.jpg", 0.95, "1 1\n0"},
              {"png/alpha-paper.png", 0.8, "2 2\n0"}}) {
            const QString path = m_folder.path("copy.jpg");
            QString error;
            QVERIFY2(writeFile(path, copied(realPhoto(file), kJpeg, quality, &error)), qPrintable(error));
            QCOMPARE(
                outputOf("exiftool -n -s3 -YCbCrSubSampling -EncodingProcess -ProfileDescription %1", path),
                QByteArray(printed) + "\nsRGB IEC61966-2.1\n");
        }
    }

    void thumbnailShowsTheCopy()
    {
        PLEXA_NEEDS_PHOTOS();
        const auto source = ImageSource::open(realPhoto("jpeg/canon-eos-450d.jpg"));
        QVERIFY(source && (*source->metadata())->hasThumbnail());
        // The next page of a TIFF is not a thumbnail.
        QVERIFY(!(*ImageSource::open(realPhoto("tiff/multipage.tif"))->metadata())->hasThumbnail());
        // Not the photo, so that a thumbnail of the source would be noticed.
        const QImage image = smoothPicture({1999, 1333});
        for (const char *type : {kJpeg, kPng}) {
            QBuffer file;
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(writeImage(file, image, {QString::fromLatin1(type), *source->properties(), &*source}));
            const QString path = m_folder.path("copy");
            QVERIFY(writeFile(path, file.data()));
            QCOMPARE(decoded(path).size(), image.size());
            const QByteArray thumbnail = exiftoolValue(path, u"ThumbnailImage"_qs);
            QCOMPARE(thumbnail.size(), exiftoolValue(path, u"ThumbnailLength"_qs).toInt());
            QVERIFY(thumbnail.startsWith("\xff\xd8\xff") && thumbnail.endsWith("\xff\xd9"));
            const QImage small = QImage::fromData(thumbnail, "jpg");
            QCOMPARE(small.size(), QSize(160, 107));
            const QImage scaled = image.scaled(small.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
            QVERIFY(meanDifference(small, scaled) < 5);
            // The checksum of a PNG's chunk, which was written twice.
            const qsizetype exif = file.data().indexOf("eXIf");
            QCOMPARE(exif > 0, type == kPng);
            if (exif < 0)
                continue;
            const auto length = qFromBigEndian<quint32>(file.data().constData() + exif - 4);
            QCOMPARE(crc32Of(file.data().mid(exif, qsizetype(length) + 4)),
                     qFromBigEndian<quint32>(file.data().constData() + exif + 4 + length));
        }
    }

    void longMetadataFitIntoJpeg()
    {
        WriteOptions options;
        for (int i = 0; i < 1500; ++i) // keywords (2:25) of 64 bytes
            options.iptc += QByteArray("\x1c\x02\x19\x00\x40", 5) + QByteArray(64, char('a' + i % 26));
        options.comment = QByteArray(70'000, 'c');
        const QImage image = detailedPicture({16, 16});
        QBuffer file;
        QVERIFY(file.open(QIODevice::ReadWrite));
        const auto writer =
            imageFormatOfType(u"image/jpeg"_qs)->codec->openWriter(file, {image.size(), false}, options);
        QVERIFY(writer);
        QVERIFY((*writer)->writeRows(image, image.height()));
        QVERIFY((*writer)->finish());
        const QString path = m_folder.path("long.jpg");
        QVERIFY(writeFile(path, file.data()));
        const QByteArray keywords = outputOf("exiftool -s3 -sep | -IPTC:Keywords %1", path);
        QCOMPARE(keywords.count('|'), 1499);
        QCOMPARE(decoded(path).size(), image.size());
        QVERIFY(exiftoolValue(path, u"Warning"_qs).isEmpty());
    }

    void pngIsExact()
    {
        for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied}) {
            const QImage image = detailedPicture({301, 203}, format);
            const QString path = m_folder.path("exact.png");
            QVERIFY(writePicture(path, kPng, image, {{u"DPIWidth"_qs, 300}, {u"DPIHeight"_qs, 150}}));
            QCOMPARE(decoded(path), image);
            const QImage theirs = QImage(path).convertToFormat(format); // by Qt's own plugin
            QVERIFY(meanDifference(theirs, image) < 0.5);
            const QVariantMap properties = *ImageSource::open(path)->properties();
            QCOMPARE(std::lround(properties.value(u"DPIWidth"_qs).toDouble()), 300L);
            QCOMPARE(std::lround(properties.value(u"DPIHeight"_qs).toDouble()), 150L);
            QCOMPARE(properties.value(u"ProfileName"_qs).toString(), u"sRGB IEC61966-2.1"_qs);
        }
    }

    void alphaIsFlattenedOnWhite()
    {
        const QImage image = smoothPicture({200, 150}, QImage::Format_ARGB32_Premultiplied);
        const QString path = m_folder.path("flat.jpg");
        QVERIFY(writePicture(path, kJpeg, image, {{u"kCGImageDestinationLossyCompressionQuality"_qs, 1.0}}));
        const QImage flat = decoded(path);
        QCOMPARE(flat.format(), QImage::Format_RGB32);
        const QImage straight = image.convertToFormat(QImage::Format_ARGB32);
        const QImage expected = paintedPicture(image.size(), QImage::Format_RGB32, [&](int x, int y) {
            const QRgb color = straight.pixel(x, y);
            const auto onWhite = [&](int value) {
                return (value * qAlpha(color) + 255 * (255 - qAlpha(color))) / 255;
            };
            return qRgb(onWhite(qRed(color)), onWhite(qGreen(color)), onWhite(qBlue(color)));
        });
        QVERIFY2(meanDifference(flat, expected) < 2,
                 qPrintable(QString::number(meanDifference(flat, expected))));
    }

    void fullDiskIsReported()
    {
        const QImage image = detailedPicture({800, 600});
        for (const ImageFormat &format : imageFormats()) {
            for (const int room : {0, 10, 1'000, 20'000}) {
                FullDisk disk(room);
                QVERIFY(disk.open(QIODevice::ReadWrite));
                const auto written = writeImage(
                    disk, image,
                    {QLatin1String(format.type), {{u"kCGImageDestinationLossyCompressionQuality"_qs, 1.0}}});
                QVERIFY(!written);
                QCOMPARE(written.error().text,
                         format.canWrite
                             ? u"it cannot be written: No space left on device"_qs
                             : u"files of type %1 cannot be written"_qs.arg(QLatin1String(format.type)));
            }
        }
    }

    void tooLargePictureIsRefused()
    {
        QBuffer file;
        QVERIFY(file.open(QIODevice::ReadWrite));
        for (const auto &[type, size, name] : {TooLarge{kJpeg, {70'000, 1}, "JPEG"},
                                               {"image/heic", {20'000, 1}, "HEIC"},
                                               {"image/gif", {65536, 1}, "GIF"},
                                               {"image/gif", {1, 65536}, "GIF"},
                                               {"image/gif", {65535, 65535}, "GIF"},
                                               {"image/bmp", {40'000, 40'000}, "BMP"}}) { // 4.8 GB
            const auto written =
                imageFormatOfType(QLatin1String(type))->codec->openWriter(file, {size, false}, {});
            QVERIFY(!written);
            QCOMPARE(written.error().text,
                     u"the picture is too large for a %1 file"_qs.arg(QLatin1String(name)));
        }
        QVERIFY(file.data().isEmpty());
        QVERIFY(imageFormatOfType(u"image/bmp"_qs)->codec->openWriter(file, {{37'000, 37'000}, false}, {}));
    }
};

QTEST_GUILESS_MAIN(ImageDestinationTest)

#include "imagedestination_test.moc"
