// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/pictures.h"
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
constexpr const char *kTiff = "image/tiff";

/// Smooth colors with every alpha.
QImage colorfulPicture(QSize size, QImage::Format format)
{
    QImage image(size, QImage::Format_ARGB32);
    const auto wave = [](int x) { return std::abs(255 - x % 510); };
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y,
                           qRgba(x * 255 / size.width(), y * 255 / size.height(), wave(x + y), wave(x * 3)));
    }
    return image.convertToFormat(format);
}

/// The CRC of ISO 3309 bit by bit, as annex D of the PNG standard defines it.
quint32 plainCrc(const QByteArray &bytes)
{
    quint32 crc = 0xffffffff;
    for (const char byte : bytes) {
        crc ^= uchar(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? 0xedb88320 ^ (crc >> 1) : crc >> 1;
    }
    return ~crc;
}

} // namespace

namespace
{

/// A disk with room for so many bytes.
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

/// Do copies hold the same picture, what belongs to it, and nothing of the source that shows it unmarked?
class ImageDestinationTest : public QObject
{
    Q_OBJECT

    struct JpegKeepsItsKindRow {
        Text name;
        Text file;
        double quality;
        QByteArray sampling; ///< as exiftool prints it
        QByteArray process;
    };

    struct ThumbnailShowsTheCopyRow {
        Text name;
        QByteArray type;
        Text suffix;
    };

    struct PngIsExactRow {
        Text name;
        QImage::Format format;
    };

    struct FullDiskIsReportedRow {
        Text name;
        QByteArray type;
        int room;
    };

    TestFolder m_folder;

private Q_SLOTS:
    void initTestCase() { photosFolder() = photosFolder(); }
    void jpegKeepsItsKind_data()
    {
        const auto add = [](const char *name, double quality, const char *sampling, int process) {
            addRow<JpegKeepsItsKindRow>({QString::asprintf("%s %g", name, quality), name, quality,
                                         QByteArray(sampling), QByteArray::number(process)});
        };
        constexpr int kBaseline = 0;
        constexpr int kProgressive = 2;
        add("jpeg/htc-desire.jpg", 0.95, "2 2", kBaseline);
        add("jpeg/canon-s5-furnace-creek.jpg", 0.9, "2 1", kBaseline);
        add("jpeg/canon-s5-furnace-creek.jpg", 0.89, "2 2", kBaseline);
        add("jpeg/fujifilm-mx-2900-440.jpg", 0.95, "1 2", kBaseline);
        add("jpeg/thompson-springs-gps-city.jpg", 1, "1 1", kBaseline);
        add("jpeg/panasonic-dmc-lc70-progressive.jpg", 0.95, "1 1", kProgressive);
        add("jpeg/panasonic-dmc-lc70-progressive.jpg", 0.5, "2 2", kProgressive);
        add("jpeg/gray-concert.jpg", 0.95, "1 1", kBaseline);
        add("jpeg/cmyk-ycck-small.jpg", 0.95, "1 1", kBaseline);
        add("png/alpha-paper.png", 0.95, "1 1", kBaseline);
        add("png/alpha-paper.png", 0.8, "2 2", kBaseline);
        add("webp/htc-desire.webp", 0.95, "1 1", kBaseline);
    }

    void jpegKeepsItsKind()
    {
        auto [name, file, quality, sampling, process] = currentRow<JpegKeepsItsKindRow>();
        PLEXA_NEEDS_PHOTOS();
        QString error;
        const QByteArray copy = copied(realPhoto(file), kJpeg, quality, &error);
        QVERIFY2(!copy.isEmpty(), qPrintable(error));
        const QString path = m_folder.path(u"copy.jpg"_qs);
        QVERIFY(writeFile(path, copy));
        const QByteArray printed =
            outputOf(u"exiftool"_qs, {u"-n"_qs, u"-s3"_qs, u"-YCbCrSubSampling"_qs, u"-EncodingProcess"_qs,
                                      u"-ProfileDescription"_qs, path});
        QCOMPARE(printed, sampling + '\n' + process + "\nsRGB IEC61966-2.1\n");
    }

    void jpegReadsTheSameElsewhere()
    {
        // djpeg is another way through the library: other color order, other buffers, whole rows.
        PLEXA_NEEDS_PHOTOS();
        for (const QString &name : {u"jpeg/sony-dsc-hx5v-gps.jpg"_qs, u"jpeg/silver-fir-511x323.jpg"_qs}) {
            const QString path = m_folder.path(u"copy.jpg"_qs);
            QVERIFY(writeFile(path, copied(realPhoto(name), kJpeg, 0.95)));
            const QString djpeg = firstProgram({u"djpeg"_qs});
            if (djpeg.isEmpty())
                QSKIP("djpeg is not installed");
            const QImage theirs = QImage::fromData(outputOf(djpeg, {path}), "ppm");
            QVERIFY(!theirs.isNull());
            QCOMPARE(decoded(path), theirs.convertToFormat(QImage::Format_RGB32));
        }
    }

    void jpegCopiesStayCloseToTheSource()
    {
        PLEXA_NEEDS_PHOTOS();
        for (const QString &name : QDir(realPhoto(u"jpeg"_qs)).entryList(QDir::Files)) {
            const QString path = m_folder.path(u"copy.jpg"_qs);
            QString error;
            QVERIFY2(writeFile(path, copied(realPhoto(u"jpeg/"_qs + name), kJpeg, 0.95, &error)),
                     qPrintable(name));
            QVERIFY2(error.isEmpty(), qPrintable(name + error));
            const QImage source = decoded(realPhoto(u"jpeg/"_qs + name));
            const QImage copy = decoded(path);
            QCOMPARE(copy.size(), source.size());
            const double signalToNoise = differenceOf(copy, source).psnr();
            QVERIFY2(signalToNoise > 38, qPrintable(name + QString::number(signalToNoise)));
        }
    }

    void thumbnailShowsTheCopy_data()
    {
        addRow<ThumbnailShowsTheCopyRow>({"JPEG", QByteArray(kJpeg), "jpg"});
        addRow<ThumbnailShowsTheCopyRow>({"PNG", QByteArray(kPng), "png"});
    }

    void thumbnailShowsTheCopy()
    {
        auto [name, type, suffix] = currentRow<ThumbnailShowsTheCopyRow>();
        PLEXA_NEEDS_PHOTOS();
        const auto source = ImageSource::open(realPhoto(u"jpeg/canon-eos-450d.jpg"_qs));
        QVERIFY(source);
        QVERIFY(source->metadata()->hasThumbnail());
        // The next page of a TIFF is none.
        QVERIFY(!ImageSource::open(realPhoto(u"tiff/multipage.tif"_qs))->metadata()->hasThumbnail());
        // Not the photo, so that a thumbnail of the source would be noticed.
        const QImage image = colorfulPicture({1999, 1333}, QImage::Format_RGB32);
        QBuffer file;
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(writeImage(file, image, {QString::fromLatin1(type), source->properties(), &*source}));
        const QString path = m_folder.path(u"copy."_qs + suffix);
        QVERIFY(writeFile(path, file.data()));
        const QByteArray thumbnail = exiftoolValue(path, u"ThumbnailImage"_qs);
        QCOMPARE(thumbnail.size(), exiftoolValue(path, u"ThumbnailLength"_qs).toInt());
        QVERIFY(thumbnail.startsWith("\xff\xd8\xff") && thumbnail.endsWith("\xff\xd9"));
        const QImage small = QImage::fromData(thumbnail, "jpg");
        QCOMPARE(small.size(), QSize(160, 107));
        const QImage scaled = image.scaled(small.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        QVERIFY2(meanDifference(small, scaled) < 5,
                 qPrintable(QString::number(meanDifference(small, scaled))));
        QVERIFY(!decoded(path).isNull());
        // A chunk that was changed afterwards has to have its checksum changed, too.
        const qsizetype exif = file.data().indexOf("eXIf");
        if (suffix == u"png"_qs) {
            QVERIFY(exif > 0);
            const auto length = qFromBigEndian<quint32>(file.data().constData() + exif - 4);
            QCOMPARE(plainCrc(file.data().mid(exif, qsizetype(length) + 4)),
                     qFromBigEndian<quint32>(file.data().constData() + exif + 4 + length));
        }
    }

    void longMetadataFitIntoJpeg()
    {
        // Through the codec itself, as no small photo has so much.
        WriteOptions options;
        const QByteArray text(150'000, 'x');
        options.xmp =
            "<?xpacket begin=\"\xef\xbb\xbf\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?><x:xmpmeta "
            "xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
            "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description rdf:about=\"\" "
            "xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\"><photoshop:Instructions>" +
            text + "</photoshop:Instructions></rdf:Description></rdf:RDF></x:xmpmeta><?xpacket end=\"w\"?>";
        for (int i = 0; i < 1500; ++i) { // keywords (2:25) of 64 bytes
            options.iptc += QByteArray("\x1c\x02\x19\x00\x40", 5) + QByteArray(64, char('a' + i % 26));
        }
        options.comment = QByteArray(70'000, 'c');
        const QImage image = colorfulPicture({16, 16}, QImage::Format_RGB32);
        QBuffer file;
        QVERIFY(file.open(QIODevice::ReadWrite));
        const auto writer =
            imageFormatOfType(u"image/jpeg"_qs)->codec->openWriter(file, {image.size(), false}, options);
        QVERIFY(writer);
        QVERIFY((*writer)->writeRows(image, image.height()));
        QVERIFY((*writer)->finish());
        const QString path = m_folder.path(u"long.jpg"_qs);
        QVERIFY(writeFile(path, file.data()));
        QCOMPARE(exiftoolValue(path, u"XMP-photoshop:Instructions"_qs).trimmed(), text);
        const QByteArray keywords =
            outputOf(u"exiftool"_qs, {u"-s3"_qs, u"-sep"_qs, u"|"_qs, u"-IPTC:Keywords"_qs, path});
        QCOMPARE(keywords.count('|'), 1499);
        QCOMPARE(decoded(path).size(), image.size());
        QVERIFY(exiftoolValue(path, u"Warning"_qs).isEmpty());
    }

    void pngIsExact_data()
    {
        addRow<PngIsExactRow>({"without alpha", QImage::Format_RGB32});
        addRow<PngIsExactRow>({"with alpha", QImage::Format_ARGB32_Premultiplied});
    }

    void pngIsExact()
    {
        auto [name, format] = currentRow<PngIsExactRow>();
        const QImage image = colorfulPicture({301, 203}, format);
        QBuffer file;
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(
            writeImage(file, image, {QLatin1String(kPng), {{u"DPIWidth"_qs, 300}, {u"DPIHeight"_qs, 150}}}));
        const QString path = m_folder.path(u"exact.png"_qs);
        QVERIFY(writeFile(path, file.data()));
        QCOMPARE(decoded(path), image);
        const QImage theirs = QImage(path).convertToFormat(format); // by Qt's own plugin
        QVERIFY(meanDifference(theirs, image) < 0.5);
        const auto source = ImageSource::open(path);
        QCOMPARE(std::lround(source->properties().value(u"DPIWidth"_qs).toDouble()), 300L);
        QCOMPARE(std::lround(source->properties().value(u"DPIHeight"_qs).toDouble()), 150L);
        QCOMPARE(source->properties().value(u"ProfileName"_qs).toString(), u"sRGB IEC61966-2.1"_qs);
    }

    void alphaIsFlattenedOnWhite()
    {
        const QImage image = colorfulPicture({200, 150}, QImage::Format_ARGB32_Premultiplied);
        QBuffer file;
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(writeImage(
            file, image, {QLatin1String(kJpeg), {{u"kCGImageDestinationLossyCompressionQuality"_qs, 1.0}}}));
        const QString path = m_folder.path(u"flat.jpg"_qs);
        QVERIFY(writeFile(path, file.data()));
        const QImage flat = decoded(path);
        QCOMPARE(flat.format(), QImage::Format_RGB32);
        QImage expected(image.size(), QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QRgb color = image.pixelColor(x, y).rgba(); // straight
                const auto onWhite = [&](int value) {
                    return (value * qAlpha(color) + 255 * (255 - qAlpha(color))) / 255;
                };
                expected.setPixel(x, y,
                                  qRgb(onWhite(qRed(color)), onWhite(qGreen(color)), onWhite(qBlue(color))));
            }
        }
        QVERIFY2(meanDifference(flat, expected) < 2,
                 qPrintable(QString::number(meanDifference(flat, expected))));
    }

    void fullDiskIsReported_data()
    {
        for (const char *type : {kJpeg, kPng, kTiff, "image/gif", "image/bmp"}) {
            for (const int room : {0, 10, 1'000, 20'000})
                addRow<FullDiskIsReportedRow>(
                    {QString::asprintf("%s, %d bytes", type, room), QByteArray(type), room});
        }
    }

    void fullDiskIsReported()
    {
        auto [name, type, room] = currentRow<FullDiskIsReportedRow>();
        const QImage image = colorfulPicture({800, 600}, QImage::Format_RGB32);
        FullDisk disk(room);
        QVERIFY(disk.open(QIODevice::ReadWrite));
        const auto written = writeImage(
            disk, image,
            {QString::fromLatin1(type), {{u"kCGImageDestinationLossyCompressionQuality"_qs, 1.0}}});
        QVERIFY(!written);
        QCOMPARE(written.error().text, u"it cannot be written: No space left on device"_qs);
    }

    void unwritableTypeIsReported()
    {
        QBuffer file;
        QVERIFY(file.open(QIODevice::ReadWrite));
        const QImage image = colorfulPicture({10, 10}, QImage::Format_RGB32);
        for (const char *type : {"image/webp", "text/plain", ""}) {
            const auto written = writeImage(file, image, {QLatin1String(type), {}});
            QVERIFY(!written);
        }
        QVERIFY(!writeImage(file, QImage(70'000, 1, QImage::Format_RGB32), {QLatin1String(kJpeg), {}}));
        QVERIFY(file.data().isEmpty());
    }
};

QTEST_GUILESS_MAIN(ImageDestinationTest)

#include "imagedestination_test.moc"
