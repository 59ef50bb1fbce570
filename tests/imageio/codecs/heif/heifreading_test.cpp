// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/pictures.h"

#include <QColorSpace>
#include <QTest>
#include <QtEndian>

#include <cmath>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::Literals::StringLiterals;

/// Are HEIC and AVIF files shown as their encoders meant them, and told by their contents?
class HeifReadingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void photosLookAsElsewhere_data();
    void photosLookAsElsewhere();
    void madeFilesLookAsTheirSource_data();
    void madeFilesLookAsTheirSource();
    void brightPartsOfHdrKeepTheirOrder_data();
    void brightPartsOfHdrKeepTheirOrder();
    void orientationIsFollowedOnce_data();
    void orientationIsFollowedOnce();
    void liesAreFoundBeforeDecoding_data();
    void liesAreFoundBeforeDecoding();
    void damageNeverCrashes_data();
    void damageNeverCrashes();

private:
    /// Encodes m_picture, or `source`, with one of the encoders. @return empty when that failed
    QString encoded(const QString &options, const QString &name, const QString &source = {})
    {
        const bool isAvif = name.endsWith(u"avif");
        const QString to = m_folder.path(name);
        QStringList arguments = options.split(u' ', Qt::SkipEmptyParts);
        if (isAvif)
            arguments += {u"-s"_s, u"10"_s};
        else
            arguments += {u"-o"_s, to};
        arguments += source.isEmpty() ? m_folder.path(u"source.png"_s) : source;
        if (isAvif)
            arguments += to;
        QFile::remove(to);
        outputOf(isAvif ? u"avifenc"_s : u"heif-enc"_s, arguments);
        return QFile::exists(to) ? to : QString();
    }

    TestFolder m_folder;
    QString m_photos;
    QImage m_picture;
};

namespace
{

/// Smooth colours, each corner another one; alpha from clear to opaque.
QImage smoothPicture(QSize size, bool hasAlpha)
{
    QImage image(size, hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y,
                           qRgba(40 + 180 * x / size.width(), 60 + 150 * y / size.height(),
                                 200 - 150 * x / size.width(), hasAlpha ? 255 * y / size.height() : 255));
    }
    return image;
}

QColorSpace bt2020()
{
    return QColorSpace({0.3127, 0.3290}, {0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046},
                       QColorSpace::TransferFunction::SRgb);
}

/// `image` with its numbers taken for colours of that space, as sRGB.
QImage meantAs(QImage image, const QColorSpace &space)
{
    image.setColorSpace(space);
    image.convertToColorSpace(QColorSpace::SRgb);
    return image;
}

/// A little-endian TIFF structure that holds an orientation and a camera's maker.
QByteArray exifWithOrientation(char orientation)
{
    QByteArray exif("II*\0\x08\0\0\0\x02\0"
                    "\x0F\x01\x02\0\x08\0\0\0\x26\0\0\0"
                    "\x12\x01\x03\0\x01\0\0\0?\0\0\0"
                    "\0\0\0\0Quorvel\0",
                    46);
    exif[30] = orientation;
    return exif;
}

} // namespace

void HeifReadingTest::initTestCase()
{
    m_photos = photosFolder();
    m_picture = smoothPicture({96, 64}, false);
    QVERIFY(m_picture.save(m_folder.path(u"source.png"_s)));
    QVERIFY(smoothPicture({96, 64}, true).save(m_folder.path(u"alpha.png"_s)));
    if (firstProgram({u"avifenc"_s}).isEmpty() || firstProgram({u"heif-enc"_s}).isEmpty())
        QSKIP("avifenc and heif-enc are not installed (libavif-bin, libheif-examples)");
}

void HeifReadingTest::photosLookAsElsewhere_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("depth");
    QTest::addColumn<bool>("hasAlpha");
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("isCompared");
    const auto add = [](const char *name, QSize size, int depth = 8, bool hasAlpha = false, int count = 1) {
        QTest::newRow(name) << size << depth << hasAlpha << count << (size.width() < 4000);
    };
    add("heic/alpha-512x512.heic", {512, 512}, 8, true);
    add("heic/iphone-8.heic", {4032, 3024});
    add("heic/iphone-xr-rotated.heic", {3024, 4032});
    add("heic/libheif-example.heic", {1280, 854}, 8, false, 2);
    add("heic/sony-a7c2-portrait.hif", {4672, 7008}, 10);
    add("heic/stonehenge-nikon-d5300.heic", {300, 200});
}

void HeifReadingTest::photosLookAsElsewhere()
{
    if (m_photos.isEmpty())
        QSKIP("there is no folder of photos (PLEXA_PHOTOS)");
    QFETCH(QSize, size);
    QFETCH(int, depth);
    QFETCH(bool, hasAlpha);
    QFETCH(int, count);
    QFETCH(bool, isCompared);
    const QString path = m_photos + u'/' + QString::fromLatin1(QTest::currentDataTag());
    const auto source = ImageSource::open(path);
    QVERIFY2(source, source ? "" : qPrintable(source.error().text));
    QCOMPARE(source->type(), u"image/heic"_s);
    QCOMPARE(source->info().rows.size, size);
    QCOMPARE(source->info().depth, depth);
    QCOMPARE(source->info().rows.hasAlpha, hasAlpha);
    QCOMPARE(source->imageCount(), count);
    QCOMPARE(source->properties().value(u"Orientation"_s, 1).toInt(), 1);
    if (!isCompared)
        return;
    const QString theirs = m_folder.path(u"theirs.png"_s);
    const QString srgb = m_folder.path(u"srgb.icc"_s);
    QVERIFY(writeFile(srgb, QColorSpace(QColorSpace::SRgb).iccProfile()));
    QFile::remove(theirs);
    outputOf(u"heif-convert"_s, {path, theirs});
    if (!QFile::exists(theirs)) // it numbers the pictures of a file with several
        QVERIFY(QFile::rename(m_folder.path(u"theirs-1.png"_s), theirs));
    const auto image = source->createImage();
    QVERIFY2(image, image ? "" : qPrintable(image.error().text));
    const double difference = meanDifference(*image, decodedByMagick(theirs, size, srgb));
    QVERIFY2(difference < 2, qPrintable(QString::number(difference)));
}

void HeifReadingTest::madeFilesLookAsTheirSource_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QImage>("expected");
    QTest::addColumn<int>("depth");
    const auto add = [](const char *row, const char *options, const char *name, const QImage &expected,
                        int depth = 8) {
        QTest::newRow(row) << QString::fromLatin1(options) << QString::fromLatin1(name) << expected << depth;
    };
    const auto turned = [this](int degrees) { return m_picture.transformed(QTransform().rotate(degrees)); };
    const QImage upsideDown = m_picture.mirrored(false, true);
    QImage gray = m_picture;
    for (int y = 0; y < gray.height(); ++y) {
        for (int x = 0; x < gray.width(); ++x) {
            const QColor color = gray.pixelColor(x, y);
            // The weights of BT.601, which the encoder uses.
            const int light =
                int(std::lround(0.299 * color.red() + 0.587 * color.green() + 0.114 * color.blue()));
            gray.setPixel(x, y, qRgb(light, light, light));
        }
    }
    add("AVIF", "-y 420", "a.avif", m_picture);
    add("AVIF, 10 bit", "-y 444 -d 10", "a.avif", m_picture, 10);
    add("AVIF, 12 bit", "-y 422 -d 12", "a.avif", m_picture, 12);
    add("AVIF, limited range", "-y 444 -r limited", "a.avif", m_picture);
    add("AVIF, BT.709 matrix", "-y 444 --cicp 1/13/1", "a.avif", m_picture);
    add("AVIF, grey", "-y 400", "a.avif", gray);
    add("AVIF, grey, 10 bit", "-y 400 -d 10", "a.avif", gray, 10);
    add("AVIF, tiles", "-y 444 -g 1x1", "a.avif", m_picture);
    add("AVIF, a quarter turn", "-y 444 --irot 1", "a.avif", turned(-90));
    add("AVIF, half a turn, 10 bit", "-y 444 -d 10 --irot 2", "a.avif", turned(180), 10);
    add("AVIF, three quarters", "-y 444 --irot 3", "a.avif", turned(90));
    add("AVIF, upside down", "-y 444 --imir 0", "a.avif", upsideDown);
    add("AVIF, mirrored, 10 bit", "-y 444 -d 10 --imir 1", "a.avif", m_picture.mirrored(true, false), 10);
    add("AVIF, turned and mirrored", "-y 444 --irot 1 --imir 0", "a.avif", turned(-90).mirrored(false, true));
    add("AVIF, cropped", "-y 444 --crop 10,6,40,22", "a.avif", m_picture.copy(10, 6, 40, 22));
    add("AVIF, cropped and turned", "-y 444 --crop 10,6,41,23 --irot 3", "a.avif",
        m_picture.copy(10, 6, 41, 23).transformed(QTransform().rotate(90)));
    add("AVIF, Display P3", "-y 444 --cicp 12/13/1", "a.avif",
        meantAs(m_picture, QColorSpace(QColorSpace::DisplayP3)));
    add("AVIF, BT.2020, 10 bit", "-y 444 -d 10 --cicp 9/13/9", "a.avif", meantAs(m_picture, bt2020()), 10);
    add("AVIF, linear light", "-y 444 --cicp 1/8/1", "a.avif",
        meantAs(m_picture, QColorSpace(QColorSpace::SRgbLinear)));
    add("AVIF, curve of BT.709", "-y 444 --cicp 1/1/1", "a.avif", m_picture);
    add("HEIC", "-q 95", "a.heic", m_picture);
    add("HEIC, 4:4:4", "-q 95 -p chroma=444", "a.heic", m_picture);
    const QImage alpha = smoothPicture({96, 64}, true);
    add("AVIF, alpha", "-y 444 alpha", "a.avif", alpha);
    add("AVIF, alpha, 10 bit", "-y 444 -d 10 alpha", "a.avif", alpha, 10);
    add("AVIF, premultiplied", "-y 444 -p alpha", "a.avif", alpha);
    add("AVIF, premultiplied, Display P3", "-y 444 -p --cicp 12/13/1 alpha", "a.avif",
        meantAs(alpha, QColorSpace(QColorSpace::DisplayP3)));
    add("HEIC, alpha", "-q 95 alpha", "a.heic", alpha);
}

void HeifReadingTest::madeFilesLookAsTheirSource()
{
    QFETCH(QString, options);
    QFETCH(QString, name);
    QFETCH(QImage, expected);
    QFETCH(int, depth);
    const bool hasAlpha = options.endsWith(u" alpha");
    if (hasAlpha)
        options.chop(6);
    const QString path = encoded(options, name, hasAlpha ? m_folder.path(u"alpha.png"_s) : QString());
    QVERIFY(!path.isEmpty());
    const auto source = ImageSource::open(path);
    QVERIFY2(source, source ? "" : qPrintable(source.error().text));
    QCOMPARE(source->type(), name.endsWith(u"avif") ? u"image/avif"_s : u"image/heic"_s);
    QCOMPARE(source->info().rows.size, expected.size());
    QCOMPARE(source->info().depth, depth);
    QCOMPARE(source->info().rows.hasAlpha, hasAlpha);
    QCOMPARE(source->info().colorModel, options.contains(u"400") ? u"Gray"_s : u"RGB"_s);
    const auto image = source->createImage();
    QVERIFY2(image, image ? "" : qPrintable(image.error().text));
    const double difference = meanDifference(*image, expected);
    QVERIFY2(difference < 3, qPrintable(QString::number(difference)));
}

void HeifReadingTest::brightPartsOfHdrKeepTheirOrder_data()
{
    QTest::addColumn<int>("transfer");
    QTest::addColumn<double>("white"); // the signal of reference white, BT.2408
    QTest::newRow("PQ") << 16 << 0.58;
    QTest::newRow("HLG") << 18 << 0.75;
}

void HeifReadingTest::brightPartsOfHdrKeepTheirOrder()
{
    QFETCH(int, transfer);
    QFETCH(double, white);
    QImage ramp(256, 16, QImage::Format_RGB32);
    for (int x = 0; x < 256; ++x) {
        for (int y = 0; y < 16; ++y)
            ramp.setPixel(x, y, qRgb(x, x, x));
    }
    const QString png = m_folder.path(u"ramp.png"_s);
    QVERIFY(ramp.save(png));
    const QString path =
        encoded(u"-y 444 -d 10 --min 0 --max 0 --cicp 9/%1/9"_s.arg(transfer), u"hdr.avif"_s, png);
    const QImage shown = decoded(path);
    QVERIFY(!shown.isNull());
    // Grey stays grey, brighter never gets darker, black is black and the greatest light nearly white.
    for (int x = 1; x < 256; ++x) {
        const QColor color = shown.pixelColor(x, 8);
        QVERIFY(color.green() + 1 >= shown.pixelColor(x - 1, 8).green());
        QVERIFY(std::abs(color.red() - color.green()) < 4 && std::abs(color.blue() - color.green()) < 4);
    }
    QVERIFY(shown.pixelColor(0, 8).green() < 4);
    QVERIFY(shown.pixelColor(255, 8).green() > 235);
    const int reference = shown.pixelColor(int(std::lround(white * 255)), 8).green();
    QVERIFY2(reference > 185 && reference < 240, qPrintable(QString::number(reference)));
}

void HeifReadingTest::orientationIsFollowedOnce_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QSize>("size");
    QTest::newRow("EXIF alone does not turn") << QString() << QSize(96, 64);
    QTest::newRow("both turn once") << u"--irot 3"_s << QSize(64, 96);
}

void HeifReadingTest::orientationIsFollowedOnce()
{
    QFETCH(QString, options);
    QFETCH(QSize, size);
    const QString exif = m_folder.path(u"exif"_s);
    const QString xmp = m_folder.path(u"xmp"_s);
    QVERIFY(writeFile(exif, exifWithOrientation(6)));
    QVERIFY(writeFile(xmp, "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
                           "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description "
                           "rdf:about=\"\" xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\" "
                           "photoshop:City=\"Bregenz\"/></rdf:RDF></x:xmpmeta>"));
    QString path = m_folder.path(u"turned.avif"_s);
    QStringList arguments = options.split(u' ', Qt::SkipEmptyParts);
    arguments += {u"-s"_s, u"10"_s, u"--exif"_s, exif, u"--xmp"_s, xmp, m_folder.path(u"source.png"_s), path};
    outputOf(u"avifenc"_s, arguments);
    if (options.isEmpty()) { // the encoder derives a box from EXIF: made to be one that nobody knows
        QByteArray file = contentsOf(path);
        QVERIFY(writeFile(path, file.replace("irot", "irxx")));
    }
    const auto source = ImageSource::open(path);
    QVERIFY2(source, source ? "" : qPrintable(source.error().text));
    QCOMPARE(source->info().rows.size, size);
    const QVariantMap &properties = source->properties();
    QCOMPARE(properties.value(u"Orientation"_s), QVariant(1));
    const QVariantMap tiff = properties.value(u"{TIFF}"_s).toMap();
    QCOMPARE(tiff.value(u"Orientation"_s), QVariant(1));
    QCOMPARE(tiff.value(u"Make"_s), QVariant(u"Quorvel"_s));
    QCOMPARE(properties.value(u"{IPTC}"_s).toMap().value(u"City"_s), QVariant(u"Bregenz"_s));
}

void HeifReadingTest::liesAreFoundBeforeDecoding_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("lie");
    QTest::newRow("AVIF larger than its box says") << u"-y 420"_s << u"big.avif"_s << "size"_ba;
    QTest::newRow("HEIC larger than its box says") << u"-q 10"_s << u"big.heic"_s << "size"_ba;
    QTest::newRow("grid of itself") << u"-y 420 -g 2x2"_s << u"grid.avif"_s << "loop"_ba;
}

void HeifReadingTest::liesAreFoundBeforeDecoding()
{
    QFETCH(QString, options);
    QFETCH(QString, name);
    QFETCH(QByteArray, lie);
    const QString big = m_folder.path(u"big.png"_s);
    QImage plain(1600, 1200, QImage::Format_RGB32);
    plain.fill(Qt::darkGreen);
    QVERIFY(plain.save(big));
    const QString path = encoded(options, name, big);
    QVERIFY(!path.isEmpty());
    QVERIFY(ImageSource::open(path));
    QByteArray file = contentsOf(path);
    if (lie == "size") {
        for (qsizetype at = file.indexOf("ispe"); at >= 0; at = file.indexOf("ispe", at + 1)) {
            qToBigEndian<quint32>(80, file.data() + at + 8);
            qToBigEndian<quint32>(60, file.data() + at + 12);
        }
    } else {
        const qsizetype at = file.indexOf("dimg"); // from, count, to
        QVERIFY(at > 0);
        file.replace(at + 8, 2, file.mid(at + 4, 2));
    }
    QVERIFY(writeFile(path, file));
    const auto opened = ImageSource::open(path, ReadLimits{.maxPixels = 1'000'000});
    QVERIFY(!opened);
    QVERIFY2(lie != "size" || opened.error().text.contains(u"1600 x 1200"), qPrintable(opened.error().text));
}

void HeifReadingTest::damageNeverCrashes_data()
{
    QTest::addColumn<QString>("path");
    const QString corpus = sourceFolder() + u"/tests/fuzz/corpus/fuzz_heif/"_s;
    for (const QString &name : QDir(corpus).entryList(QDir::Files))
        QTest::newRow(qPrintable(name)) << corpus + name;
}

void HeifReadingTest::damageNeverCrashes()
{
    QFETCH(QString, path);
    const QByteArray whole = contentsOf(path);
    QVERIFY(!whole.isEmpty());
    const QString damaged = m_folder.path(u"damaged.heic"_s);
    int read = 0;
    // As it is, cut off, and with a byte changed, all over the file.
    for (int i = -1; i < 60; ++i) {
        QByteArray bytes = whole;
        const qsizetype at = whole.size() * i / 60;
        if (i >= 0 && i % 2 == 0)
            bytes.truncate(at);
        else if (i >= 0)
            bytes[at] = char(bytes[at] ^ 0x55);
        QVERIFY(writeFile(damaged, bytes));
        QString error;
        const QImage image = decoded(damaged, &error, ReadLimits{4'000'000, 100'000'000});
        QVERIFY(image.isNull() == !error.isEmpty());
        EmbeddedMetadata::read(damaged);
        read += image.isNull() ? 0 : 1;
        QVERIFY2(image.isNull() || i < 0 || i % 2 == 1 || at >= whole.size() - 8, "half a picture");
    }
    qInfo() << read << "of 61 could be read";
}

QTEST_GUILESS_MAIN(HeifReadingTest)

#include "heifreading_test.moc"
