// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/pictures.h"

#include <QDirIterator>
#include <QRandomGenerator>
#include <QTest>

#include <atomic>
#include <cmath>
#include <thread>

using namespace plexa;
using namespace plexa::test;

/// Does every kind of picture come out whole, in the right colours, or with a reason?
class PictureReadingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void threadsDoNotDisturbEachOther(); // first: the thread sanitizer allows no thread after a fork
    void colorsAreThoseOfImageMagick_data();
    void colorsAreThoseOfImageMagick();
    void kindsOfPngAreRead_data();
    void kindsOfPngAreRead();
    void gammaFollowsTheFormula();
    void deepSamplesAreRounded();
    void factsOfTheContainer_data();
    void factsOfTheContainer();
    void reducedPictureLooksTheSame();
    void brokenFilesGiveAReason_data();
    void brokenFilesGiveAReason();
    void announcedSizeIsKeptTo();
    void cutFileIsWholeOrFails_data();
    void cutFileIsWholeOrFails();
    void lastChecksumOfPngIsProved();
    void flippedBytesDoNoHarm_data();
    void flippedBytesDoNoHarm();
    void limitsHold_data();
    void limitsHold();
    void unmarkedPicturesAreNamed_data();
    void unmarkedPicturesAreNamed();

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

void PictureReadingTest::initTestCase()
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

void PictureReadingTest::threadsDoNotDisturbEachOther()
{
    NEEDS_PHOTOS();
    const QStringList names = {u"jpeg/adobe-rgb-uss-reagan.jpg"_qs, u"jpeg/display-p3-iphone-13-mini.jpg"_qs,
                               u"jpeg/cmyk-derived.jpg"_qs,         u"png/rgb8-interlaced.png"_qs,
                               u"png/gray8-gamma.png"_qs,           u"webp/denali-canon-7d.webp"_qs,
                               u"tiff/rgb8-srgb-icc.tif"_qs,        u"gif/animated-cogs.gif"_qs};
    QList<QImage> alone;
    for (const QString &name : names)
        alone.append(decoded(photo(name)));
    std::atomic<int> wrong = 0;
    const auto work = [&] {
        for (qsizetype i = 0; i < names.size(); ++i) {
            if (decoded(photo(names[i])) != alone[i])
                ++wrong;
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
    QCOMPARE(wrong.load(), 0);
}

void PictureReadingTest::colorsAreThoseOfImageMagick_data()
{
    QTest::addColumn<QString>("path");
    for (const char *folder : {"jpeg", "jpeg/orientation", "png", "gif", "bmp", "webp", "tiff", "logos"}) {
        const QDir dir(photo(QLatin1String(folder)));
        for (const QString &name : dir.entryList(QDir::Files)) {
            // ImageMagick does not use a gamma on its way to a profile; see gammaFollowsTheFormula().
            if (name != QLatin1String("gray8-gamma.png"))
                QTest::newRow(qPrintable(name)) << dir.filePath(name);
        }
    }
}

void PictureReadingTest::colorsAreThoseOfImageMagick()
{
    NEEDS_PHOTOS();
    if (magickConvert().isEmpty())
        QSKIP("ImageMagick is not installed");
    QFETCH(QString, path);
    QString error;
    const QImage ours = decoded(path, &error);
    QVERIFY2(!ours.isNull(), qPrintable(error));
    QString assumed;
    if (path.endsWith(u"olympus-e-p3.jpg")) { // Adobe RGB, as only its EXIF says: here by Adobe's own profile
        assumed = m_folder.path(u"adobe rgb.icc"_qs);
        QVERIFY(writeFile(assumed,
                          ImageSource::open(photo(u"jpeg/adobe-rgb-uss-reagan.jpg"_qs))->info().iccProfile));
    }
    const QImage theirs = decodedByMagick(path, ours.size(), m_srgb, assumed);
    QVERIFY2(!theirs.isNull(), "ImageMagick sees another size");
    const double difference = meanDifference(ours, theirs);
    QVERIFY2(difference < 2, qPrintable(QString::number(difference)));
}

void PictureReadingTest::kindsOfPngAreRead_data()
{
    QTest::addColumn<QStringList>("options"); // ImageMagick's; %1 and %2 are profiles of RGB and of grey
    const auto add = [](const char *row, const QString &options) {
        QTest::newRow(row) << options.split(u' ', Qt::SkipEmptyParts);
    };
    add("RGB and alpha, 16 bit", u"-depth 16 -define png:color-type=6"_qs);
    add("RGB and alpha, interlaced", u"-interlace Plane -define png:color-type=6"_qs);
    add("grey and alpha", u"-colorspace Gray -depth 8 -define png:color-type=4"_qs);
    add("grey and alpha, 16 bit", u"-colorspace Gray -depth 16 -define png:color-type=4"_qs);
    add("1 bit", u"-alpha off -monochrome -define png:color-type=0 -define png:bit-depth=1"_qs);
    add("2 bit", u"-alpha off -colorspace Gray -define png:color-type=0 -define png:bit-depth=2 -depth 2"_qs);
    add("palette with alpha", u"-colors 20 -define png:color-type=3"_qs);
    add("transparent colour", u"-alpha off -transparent black -define png:color-type=2"_qs);
    add("Adobe RGB, alpha", u"-profile %1"_qs);
    add("Adobe RGB, 16 bit", u"-depth 16 -profile %1"_qs);
    add("grey profile", u"-alpha off -colorspace Gray -profile %2"_qs);
    add("grey profile, alpha", u"-colorspace Gray -define png:color-type=4 -profile %2"_qs);
    add("grey profile, alpha, 16 bit", u"-colorspace Gray -depth 16 -define png:color-type=4 -profile %2"_qs);
}

void PictureReadingTest::kindsOfPngAreRead()
{
    NEEDS_PHOTOS();
    if (magickConvert().isEmpty())
        QSKIP("ImageMagick is not installed");
    QFETCH(QStringList, options);
    const QString adobe = m_folder.path(u"adobe.icc"_qs);
    const QString gray = m_folder.path(u"gray.icc"_qs);
    QVERIFY(
        writeFile(adobe, ImageSource::open(photo(u"jpeg/adobe-rgb-uss-reagan.jpg"_qs))->info().iccProfile));
    QVERIFY(writeFile(gray, ImageSource::open(photo(u"jpeg/gray-concert.jpg"_qs))->info().iccProfile));
    for (QString &option : options)
        option.replace(u"%1"_qs, adobe).replace(u"%2"_qs, gray);
    const QString origin = m_folder.path(u"origin.png"_qs);
    const QString path = m_folder.path(u"kind.png"_qs);
    QVERIFY(detailedPicture({61, 43}, QImage::Format_ARGB32).save(origin));
    outputOf(magickConvert(), QStringList{origin} + options + QStringList{path});
    QString error;
    const QImage ours = decoded(path, &error);
    QVERIFY2(!ours.isNull(), qPrintable(error));
    const double difference = meanDifference(ours, decodedByMagick(path, ours.size(), m_srgb));
    QVERIFY2(difference < 1, qPrintable(QString::number(difference)));
}

void PictureReadingTest::gammaFollowsTheFormula()
{
    NEEDS_PHOTOS();
    const QString path = photo(QStringLiteral("png/gray8-gamma.png"));
    const double gamma =
        exiftoolValue(path, QStringLiteral("PNG:Gamma")).toDouble(); // of the display: 1/gAMA
    QVERIFY(gamma > 0);
    const QImage ours = decoded(path);
    const QByteArray raw =
        outputOf(magickConvert(), {path, QStringLiteral("-set"), QStringLiteral("gamma"), QStringLiteral("1"),
                                   QStringLiteral("-depth"), QStringLiteral("8"), QStringLiteral("gray:-")});
    QVERIFY(!ours.isNull());
    QCOMPARE(raw.size(), qsizetype(ours.width()) * ours.height());
    const double exponent = gamma < 1 ? 1 / gamma : gamma;
    int worst = 0;
    for (int y = 0; y < ours.height(); ++y) {
        for (int x = 0; x < ours.width(); ++x) {
            const double light = std::pow(uchar(raw[qsizetype(y) * ours.width() + x]) / 255.0, exponent);
            const double encoded =
                light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
            worst = qMax(worst, std::abs(qGreen(ours.pixel(x, y)) - int(std::lround(encoded * 255))));
        }
    }
    QVERIFY2(worst <= 2, qPrintable(QString::number(worst)));
}

void PictureReadingTest::deepSamplesAreRounded()
{
    // A ramp through all steps between two bytes: value v of 65535 is nearest to v / 257.
    QImage ramp(1024, 1, QImage::Format_Grayscale16);
    for (int x = 0; x < ramp.width(); ++x)
        reinterpret_cast<quint16 *>(ramp.bits())[x] = quint16(x * 64);
    const QString path = m_folder.path(QStringLiteral("ramp.png"));
    QVERIFY(ramp.save(path));
    const QImage ours = decoded(path);
    QCOMPARE(ours.width(), 1024);
    for (int x = 0; x < ramp.width(); ++x)
        QCOMPARE(qRed(ours.pixel(x, 0)), int(std::lround(x * 64 / 257.0)));
}

void PictureReadingTest::factsOfTheContainer_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    const auto add = [](const char *name, const char *key, const QVariant &value) {
        QTest::addRow("%s %s", name, key) << QString::fromUtf8(name) << QString::fromUtf8(key) << value;
    };
    add("jpeg/cmyk-derived.jpg", "ColorModel", QStringLiteral("CMYK"));
    add("jpeg/gray-concert.jpg", "ColorModel", QStringLiteral("Gray"));
    add("jpeg/display-p3-iphone-13-mini.jpg", "ProfileName", QStringLiteral("Display P3"));
    add("jpeg/nokia-n70-nonsquare-density.jpg", "DPIWidth", 44.0);
    add("jpeg/nokia-n70-nonsquare-density.jpg", "DPIHeight", 300.0);
    add("png/nonsquare-pixels.png", "DPIWidth", 4.0);
    add("png/nonsquare-pixels.png", "DPIHeight", 1.0);
    add("png/rgb16-photo.png", "Depth", 16);
    add("png/gray16.png", "ColorModel", QStringLiteral("Gray"));
    add("png/alpha-paper.png", "HasAlpha", true);
    add("logos/wordmark-1200x301.png", "DPIWidth", 300.0);
    add("webp/denali-canon-7d.webp", "ProfileName", QStringLiteral("sRGB"));
    add("webp/htc-desire.webp", "HasAlpha", false);
    add("tiff/cmyk8.tif", "ColorModel", QStringLiteral("CMYK"));
    add("tiff/rgba16-srgb.tif", "Depth", 16);
    add("bmp/rgb24.bmp", "PixelWidth", 127);
}

void PictureReadingTest::factsOfTheContainer()
{
    NEEDS_PHOTOS();
    QFETCH(QString, name);
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    const auto source = ImageSource::open(photo(name));
    QVERIFY(source);
    const QVariant found = source->properties().value(key);
    if (value.typeId() == QMetaType::Double)
        QVERIFY2(std::abs(found.toDouble() - value.toDouble()) < 0.05, qPrintable(found.toString()));
    else
        QCOMPARE(found, value);
}

void PictureReadingTest::reducedPictureLooksTheSame()
{
    NEEDS_PHOTOS();
    const QString jpeg = photo(QStringLiteral("jpeg/apple-iphone-5.jpg"));
    const QString png = m_folder.path(QStringLiteral("same.png")); // whose codec cannot reduce
    QVERIFY(ImageSource::open(jpeg)->createImage()->save(png));
    for (const QString &path : {jpeg, png}) {
        const auto source = ImageSource::open(path);
        QVERIFY(source);
        const auto whole = source->createImage();
        const auto reduced = source->createReducedImage(400);
        QVERIFY(whole && reduced);
        QCOMPARE(reduced->size(), QSize(408, 306));
        QCOMPARE(source->imageSize(400), reduced->size());
        const QImage scaled = whole->scaled(reduced->size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        QVERIFY(meanDifference(*reduced, scaled) < 3);
        QCOMPARE(source->createReducedImage(409)->size(), QSize(816, 612));
        QCOMPARE(source->createReducedImage(100'000)->size(), whole->size());
    }
}

void PictureReadingTest::brokenFilesGiveAReason_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason"); // empty: the picture is whole
    const auto add = [](const char *name, const char *reason) {
        QTest::newRow(name) << QString::fromUtf8(name) << QString::fromUtf8(reason);
    };
    add("broken/zero-length.jpg", "the file is empty");
    add("broken/text-named.jpg", "not a picture that can be read");
    add("broken/truncated.heic", "the picture data end early");
    add("broken/truncated.jpg", "the picture data end early");
    add("broken/truncated.png", "the picture data end early");
    add("broken/broken-data-stream.png", "the picture data are damaged");
    add("broken/decompression-bomb.gif",
        "the picture is too large: 65535 x 66601 pixels, at most 1000 megapixels can be read");
    add("broken/3000000x2000000.bmp",
        "the picture is too large: 3000000 x 2000000 pixels, at most 1000 megapixels can be read");
    add("broken/jpeg-named.nef", "");
    add("broken/png-named.jpg", "");
    add("raw/canon-metadata-only.cr2", "it holds no camera raw photo of a known kind");
    add("README.md", "not a picture that can be read");
    add("jpeg", "not a picture that can be read");
    add("absent.jpg", "it cannot be read: No such file or directory");
}

void PictureReadingTest::brokenFilesGiveAReason()
{
    NEEDS_PHOTOS();
    QFETCH(QString, name);
    QFETCH(QString, reason);
    QString error;
    const QImage image = decoded(photo(name), &error);
    QCOMPARE(image.isNull(), !reason.isEmpty());
    QCOMPARE(error, reason);
}

/// Rows are read into strips of the size that was told before.
void PictureReadingTest::announcedSizeIsKeptTo()
{
    const QString corpus = sourceFolder() + u"/tests/fuzz/corpus"_qs;
    int files = 0;
    for (QDirIterator it(corpus, QDir::Files, QDirIterator::Subdirectories); it.hasNext(); ++files) {
        const auto source = ImageSource::open(it.next());
        const Result<std::unique_ptr<RowReader>> reader =
            source ? source->openRows() : fail(u"not opened"_qs);
        QVERIFY2(!reader || (*reader)->format() == source->info().rows, qPrintable(it.filePath()));
    }
    QVERIFY(files > 0);
}

void PictureReadingTest::cutFileIsWholeOrFails_data()
{
    QTest::addColumn<QStringList>("options"); // ImageMagick's
    QTest::addColumn<QString>("suffix");
    const auto add = [](const char *row, const char *suffix, const QString &options) {
        QTest::newRow(row) << options.split(QLatin1Char(' '), Qt::SkipEmptyParts)
                           << QString::fromUtf8(suffix);
    };
    add("baseline", "jpg", {});
    add("half chroma", "jpg", QStringLiteral("-sampling-factor 2x2"));
    add("progressive", "jpg", QStringLiteral("-interlace Plane"));
    add("grey", "jpg", QStringLiteral("-colorspace Gray"));
    add("CMYK", "jpg", QStringLiteral("-colorspace CMYK"));
    add("arithmetic", "jpg", QStringLiteral("cjpeg -arithmetic"));
    add("PNG", "png", {});
    add("PNG, 16 bit", "png", QStringLiteral("-depth 16"));
    add("PNG, interlaced", "png", QStringLiteral("-interlace Plane"));
    add("TIFF", "tif", QStringLiteral("-compress None"));
    add("TIFF, LZW", "tif", QStringLiteral("-compress LZW"));
    add("TIFF, JPEG", "tif", QStringLiteral("-compress JPEG"));
    add("TIFF, tiles", "tif", QStringLiteral("-compress Zip -define tiff:tile-geometry=32x32"));
}

void PictureReadingTest::cutFileIsWholeOrFails()
{
    if (magickConvert().isEmpty())
        QSKIP("ImageMagick is not installed");
    QFETCH(QStringList, options);
    QFETCH(QString, suffix);
    const QString origin = m_folder.path(QStringLiteral("origin.bmp"));
    const QString whole = m_folder.path(QStringLiteral("whole.") + suffix);
    const QString cut = m_folder.path(QStringLiteral("cut.") + suffix);
    QVERIFY(detailedPicture({97, 61}, QImage::Format_RGB32).save(origin));
    if (options.value(0) == u"cjpeg"_qs) { // ImageMagick does not write these
        if (firstProgram({options[0]}).isEmpty())
            QSKIP("cjpeg is not installed");
        outputOf(options[0], options.mid(1) + QStringList{u"-outfile"_qs, whole, origin});
    } else {
        outputOf(magickConvert(), QStringList{origin} + options + QStringList{whole});
    }
    const QByteArray bytes = contentsOf(whole);
    const QImage reference = decoded(whole);
    QVERIFY(!reference.isNull());
    int failures = 0;
    const qsizetype step = qMax<qsizetype>(1, bytes.size() / 100);
    for (qsizetype length = 1; length < bytes.size(); length += length < bytes.size() - 40 ? step : 1) {
        QVERIFY(writeFile(cut, bytes.first(length)));
        QString error;
        const QImage image = decoded(cut, &error);
        failures += image.isNull() ? 1 : 0;
        if (image.isNull())
            QVERIFY2(!error.isEmpty(), qPrintable(QString::number(length)));
        else
            QVERIFY2(image == reference, qPrintable(QString::number(length)));
    }
    QVERIFY(failures > 40);
}

void PictureReadingTest::lastChecksumOfPngIsProved()
{
    // Damage in the last bytes of the data may leave a picture that looks whole.
    const QString path = m_folder.path(u"checksum.png"_qs);
    QVERIFY(detailedPicture({40, 30}, QImage::Format_RGB32).save(path));
    QByteArray bytes = contentsOf(path);
    QVERIFY(!decoded(path).isNull());
    const qsizetype end = bytes.lastIndexOf("IEND") - 4;
    bytes[end - 1] = char(bytes[end - 1] ^ 1); // of the chunk's CRC
    QVERIFY(writeFile(path, bytes));
    QString error;
    QVERIFY(decoded(path, &error).isNull());
    QCOMPARE(error, u"the picture data are damaged"_qs);
}

void PictureReadingTest::flippedBytesDoNoHarm_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"jpeg/adobe-rgb-uss-reagan.jpg",
                             "jpeg/dates-gps-only.jpg",
                             "jpeg/cmyk-ycck-small.jpg",
                             "jpeg/pixel-4a-gain-map.jpg",
                             "jpeg/gray-concert.jpg",
                             "jpeg/silver-fir-511x323.jpg",
                             "jpeg/thompson-springs-gps-city.jpg",
                             "png/gray16.png",
                             "png/rgb8-interlaced.png",
                             "png/palette.png",
                             "png/nonsquare-pixels.png",
                             "logos/stamp-97x61-palette.png",
                             "gif/animated-squares.gif",
                             "bmp/pal8-rle.bmp",
                             "bmp/rgb24-v4.bmp",
                             "webp/denali-canon-7d.webp",
                             "tiff/rgb16.tif",
                             "tiff/multipage.tif",
                             "tiff/rgb8-srgb-icc.tif",
                             "tiff/cmyk8.tif",
                             "tiff/lzw-rgb8.tif",
                             "tiff/rgb8-planar.tif",
                             "tiff/rgba16-srgb.tif"})
        QTest::newRow(name) << QString::fromUtf8(name);
}

void PictureReadingTest::flippedBytesDoNoHarm()
{
    NEEDS_PHOTOS();
    QFETCH(QString, name);
    const QByteArray bytes = contentsOf(photo(name));
    QVERIFY(!bytes.isEmpty());
    const QString path = m_folder.path(QStringLiteral("flipped"));
    const ReadLimits limits = {4'000'000, 64'000'000};
    QRandomGenerator random(11);
    for (int round = 0; round < 60; ++round) {
        QByteArray flipped = bytes;
        // Half of the rounds strike the headers.
        const auto range = quint32(round % 2 == 0 ? flipped.size() : qMin<qsizetype>(flipped.size(), 1024));
        for (int i = random.bounded(1, 9); i > 0; --i)
            flipped[qsizetype(random.bounded(range))] = char(random.bounded(256));
        QVERIFY(writeFile(path, flipped));
        QString error;
        const QImage image = decoded(path, &error, limits);
        QVERIFY(image.isNull() != error.isEmpty());
        QVERIFY(qint64(image.width()) * image.height() <= limits.maxPixels);
    }
}

void PictureReadingTest::limitsHold_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<qint64>("maxPixels");
    QTest::addColumn<qint64>("maxBytes");
    QTest::addColumn<bool>("streams"); // rows may come although the whole picture may not
    constexpr qint64 kMany = 1'000'000'000;
    QTest::newRow("pixels, JPEG") << u"broken/20000x14000-gray.jpg"_qs << qint64(1'000'000) << kMany << false;
    QTest::newRow("pixels, PNG") << u"broken/30000x30000-one-bit.png"_qs << qint64(1'000'000) << kMany
                                 << false;
    QTest::newRow("pixels, BMP") << u"bmp/rgb24.bmp"_qs << qint64(100) << kMany << false;
    QTest::newRow("pixels, TIFF") << u"tiff/lzw-rgb8.tif"_qs << qint64(100) << kMany << false;
    QTest::newRow("bytes, baseline") << u"broken/20000x14000-gray.jpg"_qs << kMany << qint64(1'000'000)
                                     << true;
    QTest::newRow("bytes, one bit") << u"broken/30000x30000-one-bit.png"_qs << kMany << qint64(1'000'000)
                                    << true;
    QTest::newRow("bytes, progressive")
        << u"jpeg/panasonic-dmc-lc70-progressive.jpg"_qs << kMany << qint64(5'000'000) << false;
    QTest::newRow("bytes, interlaced") << u"png/rgb8-interlaced.png"_qs << kMany << qint64(2'000) << false;
    QTest::newRow("bytes, TIFF") << u"tiff/lzw-rgb8.tif"_qs << kMany << qint64(100'000) << true;
    QTest::newRow("bytes, WebP") << u"webp/htc-desire.webp"_qs << kMany << qint64(1'000'000) << false;
}

void PictureReadingTest::limitsHold()
{
    NEEDS_PHOTOS();
    QFETCH(QString, name);
    QFETCH(qint64, maxPixels);
    QFETCH(qint64, maxBytes);
    QFETCH(bool, streams);
    const ReadLimits limits = {maxPixels, maxBytes};
    QString error;
    QVERIFY(decoded(photo(name), &error, limits).isNull());
    QVERIFY2(error.startsWith(u"the picture is too large"), qPrintable(error));
    const auto source = ImageSource::open(photo(name), limits);
    QCOMPARE(source && source->openRows(), streams);
}

void PictureReadingTest::unmarkedPicturesAreNamed_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("pictures");
    QTest::newRow("index of two pictures")
        << u"jpeg/display-p3-iphone-13-mini.jpg"_qs << QStringList{u"gain map"_qs};
    QTest::newRow("packet that tells of one")
        << u"jpeg/pixel-4a-gain-map.jpg"_qs << QStringList{u"gain map"_qs};
    QTest::newRow("only a thumbnail") << u"jpeg/canon-eos-450d.jpg"_qs << QStringList();
    QTest::newRow("WebP") << u"webp/animation-lossy.webp"_qs << QStringList{u"animation"_qs};
    QTest::newRow("TIFF") << u"tiff/multipage.tif"_qs << QStringList{u"further pages"_qs};
    QTest::newRow("HEIC") << u"heic/libheif-example.heic"_qs << QStringList{u"further pictures"_qs};
    QTest::newRow("HEIC in tiles") << u"heic/iphone-8.heic"_qs << QStringList();
}

void PictureReadingTest::unmarkedPicturesAreNamed()
{
    NEEDS_PHOTOS();
    QFETCH(QString, name);
    QFETCH(QStringList, pictures);
    const auto source = ImageSource::open(photo(name));
    QVERIFY(source);
    QCOMPARE(droppedPictures(*source), pictures);
}

QTEST_GUILESS_MAIN(PictureReadingTest)

#include "picturereading_test.moc"
