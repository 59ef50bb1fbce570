// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/pictures.h"
#include "support/datarows.h"
#include "support/exiftool.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

using namespace plexa;
using namespace plexa::test;

namespace
{

constexpr const char *kType = "image/tiff";

/// Smooth colours and noise, with every alpha.
QImage picture(QSize size, bool hasAlpha)
{
    QImage image(size, QImage::Format_ARGB32);
    QRandomGenerator random(5);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y,
                           qRgba((x + y) % 256, y * 255 / size.height(), random.bounded(256), x * 3 % 256));
    }
    return image.convertToFormat(hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
}

QVariantMap compressedBy(int compression)
{
    return {{u"{TIFF}"_qs, QVariantMap{{u"Compression"_qs, compression}}}};
}

/// What a program says beside its results.
QByteArray complaintsOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60'000) || process.exitStatus() != QProcess::NormalExit)
        return "did not run";
    const QByteArray complaints = process.readAllStandardError();
    return complaints.isEmpty() && process.exitCode() != 0 ? "failed" : complaints;
}

} // namespace

/// What a copy says differently, by "family 0:family 1:tag" of exiftool.
bool mayDiffer(const QString &tag)
{
    static const QRegularExpression expected(QStringLiteral(
        "^SourceFile$"
        // other pictures of the file, and how the pixels lie in it
        "|^EXIF:(IFD[1-9]|SubIFD[0-9]*):|^MakerNotes:.*Preview(Image|IFD)"
        "|^EXIF:IFD0:(SubfileType|OldSubfileType|Image(Width|Height)|BitsPerSample|Compression"
        "|PhotometricInterpretation|FillOrder|Thresholding|Strip.*|RowsPerStrip|SamplesPerPixel"
        "|PlanarConfiguration|Tile.*|ExtraSamples|SampleFormat|InkSet|NumberofInks|ColorMap|PageNumber"
        "|Predictor|M(in|ax)SampleValue|DocumentName|YCbCrSubSampling|Matteing)$"
        // the picture is upright, sRGB, and another program's
        "|^EXIF:IFD0:(Orientation|Software|WhitePoint|PrimaryChromaticities|YCbCrCoefficients"
        "|TransferFunction)$"
        "|^EXIF:ExifIFD:(ColorSpace|ExifImageWidth|ExifImageHeight|Gamma)$|^EXIF:InteropIFD:InteropIndex$"
        "|^XMP:XMP-tiff:(ImageWidth|ImageHeight|Orientation)$|^XMP:XMP-exif:(ColorSpace|ExifImage.*)$"
        "|^XMP:XMP-photoshop:(ICCProfileName|ColorMode)$|^XMP:XMP-x:XMPToolkit$"
        // pictures beside it that are not there any more
        "|^XMP:XMP-(hdrgm|apdi|semanticSegmentationMatte|GContainer.*|HDRGainMap):"));
    return expected.match(tag).hasMatch();
}

/// Does a TIFF copy hold the same picture and all that its source says, at places where others find it?
class TiffWriterTest : public QObject
{
    Q_OBJECT

    struct PixelsAreExactRow {
        Text name;
        QSize size;
        bool hasAlpha;
        int compression;
    };

    struct ResolutionIsKeptRow {
        Text name;
        QVariantMap properties;
        QByteArray printed; ///< XResolution, YResolution, ResolutionUnit
    };

    /// Photos of all formats whose metadata are to be found again.
    QStringList sources() const
    {
        QStringList paths;
        for (const QString &path : photoPaths()) {
            static const QRegularExpression wanted(u"/(jpeg|tiff|webp|png)/"_qs);
            if (wanted.match(path).hasMatch())
                paths += path;
        }
        return paths;
    }

    TestFolder m_folder;

private Q_SLOTS:
    void initTestCase() { photosFolder() = photosFolder(); }
    void pixelsAreExact_data()
    {
        for (const int compression : {1, 5}) {
            for (const bool hasAlpha : {false, true}) {
                for (const QSize size : {QSize(1, 1), QSize(301, 203), QSize(1, 3001), QSize(130'001, 2)})
                    addRow<PixelsAreExactRow>(
                        {QString::asprintf("%d x %d, alpha %d, compression %d", size.width(), size.height(),
                                           hasAlpha, compression),
                         size, hasAlpha, compression});
            }
        }
    }

    void pixelsAreExact()
    {
        auto [name, size, hasAlpha, compression] = currentRow<PixelsAreExactRow>();
        const QImage image = picture(size, hasAlpha);
        QBuffer file;
        QVERIFY(file.open(QIODevice::WriteOnly));
        const auto written = writeImage(file, image, {QLatin1String(kType), compressedBy(compression)});
        QVERIFY2(written, written ? "" : qPrintable(written.error().text));
        const QString path = m_folder.path(u"exact.tif"_qs);
        QVERIFY(writeFile(path, file.data()));
        QCOMPARE(decoded(path), image);
        const auto record = exiftoolRecords({path}, {u"-G1"_qs, u"-all"_qs, u"-validate"_qs}).value(path);
        QCOMPARE(record[u"IFD0:Compression"].toInt(), compression);
        QCOMPARE(record[u"IFD0:ExtraSamples"].toInt(-1), hasAlpha ? 1 : -1); // associated
        QCOMPARE(record[u"ICC-header:ProfileClass"].toString(), u"mntr"_qs);
        QCOMPARE(record[u"ExifTool:Validate"].toString(), u"0 0 0"_qs);
        const QString inspector = firstProgram({u"tiffinfo"_qs});
        if (inspector.isEmpty() || magickConvert().isEmpty())
            QSKIP("libtiff-tools or ImageMagick are not installed");
        QCOMPARE(complaintsOf(inspector, {u"-D"_qs, path}), QByteArray());
        // ImageMagick divides by alpha, which loses what is below one step.
        const int widest = 16'000;
        QImage theirs;
        if (size.width() <= widest) {
            const QByteArray pixels = outputOf(magickConvert(), {path, u"-depth"_qs, u"8"_qs, u"rgba:-"_qs});
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

    void copyKeepsEverything()
    {
        PLEXA_NEEDS_PHOTOS();
        QMap<QString, QString> copies;
        for (const QString &path : sources()) {
            const QString copy = m_folder.path(QStringLiteral("%1.tif").arg(copies.size()));
            QString error;
            QVERIFY2(writeFile(copy, copied(path, kType, 1, &error)), qPrintable(path));
            QVERIFY2(error.isEmpty(), qPrintable(path + error));
            copies.insert(path, copy);
        }
        const QStringList options{u"-G0:1"_qs, u"-EXIF:all"_qs, u"-IPTC:all"_qs, u"-XMP:all"_qs,
                                  u"-MakerNotes:all"_qs};
        const auto sourceRecords = exiftoolRecords(copies.keys(), options);
        const auto copyRecords = exiftoolRecords(copies.values(), options);
        int compared = 0;
        QStringList failures;
        for (auto path = copies.begin(); path != copies.end(); ++path) {
            const QJsonObject source = sourceRecords.value(path.key());
            const QJsonObject copy = copyRecords.value(path.value());
            for (auto tag = source.begin(); tag != source.end(); ++tag) {
                const QString text = comparable(tag.value());
                // Nor can a resolution of 0 be meant.
                if (mayDiffer(tag.key()) || text.trimmed().isEmpty() ||
                    (tag.key().endsWith(u"Resolution") && tag.value() == 0))
                    continue;
                ++compared;
                if (copy[tag.key()] != tag.value())
                    failures += QStringLiteral("%1 %2: %3 | %4")
                                    .arg(QFileInfo(path.key()).fileName(), tag.key(), text.left(60),
                                         comparable(copy[tag.key()]).left(60));
            }
            QCOMPARE(copy[u"EXIF:IFD0:Orientation"].toInt(), 1);
        }
        qInfo("%d values of %d photos compared", compared, int(copies.size()));
        QVERIFY2(failures.isEmpty(), qPrintable(u'\n' + failures.join(u'\n')));
        QVERIFY(compared > 2500);
    }

    void copyHoldsNoPicture()
    {
        PLEXA_NEEDS_PHOTOS();
        QStringList copies;
        for (const QString &path : sources()) {
            const QByteArray copy = copied(path, kType, 1);
            copies += m_folder.path(QStringLiteral("bare %1.tif").arg(copies.size()));
            QVERIFY(writeFile(copies.constLast(), copy));
            const auto source = ImageSource::open(copies.constLast());
            QVERIFY2(source, qPrintable(path));
            QCOMPARE(source->info().imageCount, 1);
            QVERIFY(!source->metadata()->hasThumbnail());
            // Compressed pixels may hold any bytes, so these searches want the same metadata around a white
            // one.
            QImage white(64, 64, QImage::Format_RGB32);
            white.fill(Qt::white);
            const auto original = ImageSource::open(path);
            QBuffer file;
            QVERIFY(file.open(QIODevice::WriteOnly));
            QVERIFY(writeImage(file, white, {QLatin1String(kType), original->properties(), &*original}));
            QVERIFY2(!file.data().contains("\xFF\xD8\xFF") && !file.data().contains("/9j/"),
                     qPrintable(path));
        }
        const auto records = exiftoolRecords(copies, {u"-G1"_qs, u"-preview:all"_qs});
        for (const QString &copy : std::as_const(copies)) {
            QCOMPARE(records.value(copy).keys(), QStringList(u"SourceFile"_qs));
        }
    }

    void resolutionIsKept_data()
    {
        const QVariantMap centimetres = {
            {u"XResolution"_qs, 100.0}, {u"YResolution"_qs, 100.0}, {u"ResolutionUnit"_qs, 3}};
        addRow<ResolutionIsKeptRow>({"none", {}, QByteArray("72\n72\n2\n")});
        addRow<ResolutionIsKeptRow>(
            {"per inch", {{u"DPIWidth"_qs, 299.5}, {u"DPIHeight"_qs, 150}}, QByteArray("299.5\n150\n2\n")});
        addRow<ResolutionIsKeptRow>(
            {"per centimetre",
             {{u"DPIWidth"_qs, 254.0}, {u"DPIHeight"_qs, 254.0}, {u"{TIFF}"_qs, centimetres}},
             QByteArray("100\n100\n3\n")});
        addRow<ResolutionIsKeptRow>(
            {"new one",
             {{u"DPIWidth"_qs, 300}, {u"DPIHeight"_qs, 300}, {u"{TIFF}"_qs, centimetres}},
             QByteArray("300\n300\n2\n")});
    }

    void resolutionIsKept()
    {
        auto [name, properties, printed] = currentRow<ResolutionIsKeptRow>();
        QBuffer file;
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(writeImage(file, picture({9, 5}, false), {QLatin1String(kType), properties}));
        const QString path = m_folder.path(u"resolution.tif"_qs);
        QVERIFY(writeFile(path, file.data()));
        QCOMPARE(outputOf(u"exiftool"_qs, {u"-n"_qs, u"-s3"_qs, u"-IFD0:XResolution"_qs,
                                           u"-IFD0:YResolution"_qs, u"-IFD0:ResolutionUnit"_qs, path}),
                 printed);
    }

    void predictorPays()
    {
        PLEXA_NEEDS_PHOTOS();
        const auto source = ImageSource::open(realPhoto(u"jpeg/canon-s5-furnace-creek.jpg"_qs));
        QVERIFY(source);
        const auto image = source->createImage();
        QVERIFY(image);
        QBuffer file;
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(writeImage(file, *image, {QLatin1String(kType), {}}));
        const qint64 plain = qint64(image->width()) * image->height() * 3;
        QVERIFY2(file.size() < plain * 8 / 10,
                 qPrintable(QString::number(double(file.size()) / double(plain))));
    }

    /// A structure that is not of our making must not lead outside of itself, nor cost the picture.
    void foreignStructuresDoNoHarm()
    {
        PLEXA_NEEDS_PHOTOS();
        const QImage image = picture({40, 30}, false);
        const Codec *codec = imageFormatOfType(QLatin1String(kType))->codec;
        const QString path = m_folder.path(u"foreign.tif"_qs);
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
        QVERIFY(writeFile(m_folder.path(u"cut.tif"_qs), file.data()));
        QVERIFY(decoded(m_folder.path(u"cut.tif"_qs)).isNull());
    }
};

QTEST_GUILESS_MAIN(TiffWriterTest)

#include "tiffwriter_test.moc"
