// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/pictures.h"
#include "support/datarows.h"
#include "support/exiftool.h"

#include <QRandomGenerator>
#include <QTest>

using namespace plexa;
using namespace plexa::test;

namespace
{

constexpr const char *kType = "image/tiff";

QImage picture(QSize size, bool hasAlpha)
{
    return detailedPicture(size, RowFormat{size, hasAlpha}.imageFormat());
}

QVariantMap compressedBy(int compression)
{
    return {{u"{TIFF}"_qs, QVariantMap{{u"Compression"_qs, compression}}}};
}

} // namespace

/// Does a TIFF copy hold the same picture and all that its source says, at places where others find it?
class TiffWriterTest : public QObject
{
    Q_OBJECT

    struct Pixels {
        Text name;
        QSize size;
        bool hasAlpha;
        int compression;
    };

    struct Resolution {
        Text name;
        QVariantMap properties;
        QByteArray printed; ///< XResolution, YResolution, ResolutionUnit
    };

    TestFolder m_folder;

private Q_SLOTS:
    void pixelsAreExact_data()
    {
        for (const int compression : {1, 5}) {
            for (const bool hasAlpha : {false, true}) {
                for (const QSize size : {QSize(1, 1), QSize(301, 203), QSize(1, 3001), QSize(130'001, 2)})
                    addRow<Pixels>({QString::asprintf("%d x %d, alpha %d, compression %d", size.width(),
                                                      size.height(), hasAlpha, compression),
                                    size, hasAlpha, compression});
            }
        }
    }

    void pixelsAreExact()
    {
        auto [name, size, hasAlpha, compression] = currentRow<Pixels>();
        const QImage image = picture(size, hasAlpha);
        const QString path = m_folder.path("exact.tif");
        QVERIFY(writePicture(path, kType, image, compressedBy(compression)));
        QCOMPARE(decoded(path), image);
        const auto record = exiftoolRecords({path}, {u"-G1"_qs, u"-all"_qs, u"-validate"_qs}).value(path);
        QCOMPARE(record[u"IFD0:Compression"].toInt(), compression);
        QCOMPARE(record[u"IFD0:ExtraSamples"].toInt(-1), hasAlpha ? 1 : -1); // associated
        QCOMPARE(record[u"ICC-header:ProfileClass"].toString(), u"mntr"_qs);
        QCOMPARE(record[u"ExifTool:Validate"].toString(), u"0 0 0"_qs);
        const QString inspector = firstProgram({u"tiffinfo"_qs});
        if (inspector.isEmpty() || magickConvert().isEmpty())
            QSKIP("libtiff-tools or ImageMagick are not installed");
        const ProgramRun inspection = runProgram(inspector, {u"-D"_qs, path});
        QCOMPARE(inspection.status, 0);
        QCOMPARE(inspection.err, QByteArray());
        // ImageMagick divides by alpha, which loses what is below one step.
        const int widest = 16'000;
        QImage theirs;
        if (size.width() <= widest) {
            const QByteArray pixels = magick("%1 -depth 8 rgba:-", path);
            QCOMPARE(pixels.size(), qsizetype(size.width()) * size.height() * 4);
            theirs = QImage(reinterpret_cast<const uchar *>(pixels.constData()), size.width(), size.height(),
                            QImage::Format_RGBA8888)
                         .copy();
        } else {
            theirs =
                QImage(path, "tiff"); // by Qt's plugin: ImageMagick's settings may refuse so wide a picture
        }
        const double difference = meanDifference(theirs, image);
        QVERIFY2(difference <= (hasAlpha ? 0.5 : 0), qPrintable(QString::number(difference)));
    }

    void resolutionIsKept_data()
    {
        const QVariantMap centimetres = {
            {u"XResolution"_qs, 100.0}, {u"YResolution"_qs, 100.0}, {u"ResolutionUnit"_qs, 3}};
        addRows<Resolution>(
            {{"none", {}, "72\n72\n2\n"},
             {"per inch", {{u"DPIWidth"_qs, 299.5}, {u"DPIHeight"_qs, 150}}, "299.5\n150\n2\n"},
             {"per centimetre",
              {{u"DPIWidth"_qs, 254.0}, {u"DPIHeight"_qs, 254.0}, {u"{TIFF}"_qs, centimetres}},
              "100\n100\n3\n"},
             {"new one",
              {{u"DPIWidth"_qs, 300}, {u"DPIHeight"_qs, 300}, {u"{TIFF}"_qs, centimetres}},
              "300\n300\n2\n"}});
    }

    void resolutionIsKept()
    {
        auto [name, properties, printed] = currentRow<Resolution>();
        const QString path = m_folder.path("resolution.tif");
        QVERIFY(writePicture(path, kType, detailedPicture({9, 5}), properties));
        QCOMPARE(
            outputOf("exiftool -n -s3 -IFD0:XResolution -IFD0:YResolution -IFD0:ResolutionUnit %1", path),
            printed);
    }

    void predictorPays()
    {
        PLEXA_NEEDS_PHOTOS();
        const auto source = ImageSource::open(realPhoto("jpeg/canon-s5-furnace-creek.jpg"));
        QVERIFY(source);
        const auto image = source->createImage();
        QVERIFY(image);
        const QString path = m_folder.path("photo.tif");
        QVERIFY(writePicture(path, kType, *image));
        const qint64 bytes = QFileInfo(path).size();
        const qint64 plain = qint64(image->width()) * image->height() * 3;
        QVERIFY2(bytes < plain * 8 / 10, qPrintable(QString::number(double(bytes) / double(plain))));
    }

    /// A structure that is not of our making must not lead outside of itself, nor cost the picture.
    void foreignStructuresDoNoHarm()
    {
        PLEXA_NEEDS_PHOTOS();
        const QImage image = picture({40, 30}, false);
        const Codec *codec = imageFormatOfType(QLatin1String(kType))->codec;
        const QString path = m_folder.path("foreign.tif");
        for (const QString &name : {u"jpeg/canon-eos-450d.jpg"_qs, u"tiff/uss-reagan-iptc-xmp.tif"_qs}) {
            const auto metadata = EmbeddedMetadata::read(realPhoto(name));
            const QByteArray exif =
                metadata->encodeForCopy(metadata->properties(), {image.size(), 0, 1'000'000}).exif;
            QVERIFY(exif.size() > 1000);
            QRandomGenerator random(3);
            for (int round = 0; round < 200; ++round) {
                WriteOptions options;
                options.exif =
                    exif.first(round % 3 == 0 ? int(random.bounded(quint32(exif.size()))) : exif.size());
                const auto range =
                    quint32(qMin<qsizetype>(options.exif.size(), round % 2 == 0 ? 400 : 1 << 20));
                for (int i = random.bounded(1, 9); i > 0 && range > 0; --i)
                    options.exif[qsizetype(random.bounded(range))] = char(random.bounded(256));
                QBuffer file;
                QVERIFY(file.open(QIODevice::WriteOnly));
                const auto writer = codec->openWriter(file, {image.size(), false}, options);
                QVERIFY(writer);
                QVERIFY((*writer)->writeRows(image, image.height()) && (*writer)->finish());
                QVERIFY(writeFile(path, file.data()));
                QCOMPARE(decoded(path), image);
            }
        }
    }

    void unfinishedWriterStaysQuiet()
    {
        const QImage image = picture({400, 400}, false);
        QBuffer file;
        QVERIFY(file.open(QIODevice::WriteOnly));
        {
            const auto writer = openDestination(file, {image.size(), false}, {QLatin1String(kType), {}});
            QVERIFY(writer);
            QVERIFY((*writer)->writeRows(image, 300));
            file.close();
        }
        QVERIFY(writeFile(m_folder.path("cut.tif"), file.data()));
        QVERIFY(decoded(m_folder.path("cut.tif")).isNull());
    }
};

QTEST_GUILESS_MAIN(TiffWriterTest)

#include "tiffwriter_test.moc"
