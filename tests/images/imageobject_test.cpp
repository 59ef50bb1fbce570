// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/imageobject.h"
#include "raster/bitmaputilities.h"
#include "support/testenvironment.h"

#include <QBuffer>
#include <QColorSpace>
#include <QSignalSpy>
#include <QTest>

#include <atomic>
#include <cstdio>
#include <thread>

using namespace plexa;
using namespace plexa::test;

namespace
{

constexpr qsizetype kLargeCache = 64 * 1024 * 1024;

/// What photos share, with a cache of the given size.
struct Services {
    explicit Services(qsizetype cacheBytes)
        : cache(cacheBytes)
    {
    }

    FontCatalog fonts;
    LocaleFormat locale{QStringLiteral("en_US")};
    PixelCache cache;
    ByteBudget budget{1'000'000'000};
    PhotoServices all{fonts, locale, cache, budget, {}};
};

/// No two pixels alike, so that every turn shows.
QImage pattern(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixelColor(x, y, QColor(x * 255 / size.width(), y * 255 / size.height(), (x ^ y) & 255));
    }
    return image;
}

AppliedPreset textPreset(const FontCatalog &fonts, const QString &text)
{
    WPresetValues values = WPresetValues::forNewPreset(fonts);
    values.textTokens = {text};
    return {std::make_shared<WPreset>(values), values};
}

/// The mean difference of two pictures, 0..255, on a small scale; 255 when their sizes differ.
double difference(const QImage &one, const QImage &other)
{
    if (one.isNull() || one.size() != other.size())
        return 255;
    const QImage a = createImageScaledToSize(one, 90, 90, true);
    const QImage b = createImageScaledToSize(other, 90, 90, true);
    double sum = 0;
    for (int y = 0; y < 90; ++y) {
        for (int x = 0; x < 90; ++x)
            sum += qAbs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y)));
    }
    return sum / (90 * 90);
}

bool saves(ImageObject &photo, const QString &target, const std::vector<AppliedPreset> &presets)
{
    SavingPresetValues png;
    png.imageFormat = QStringLiteral("PNG");
    const auto saved = photo.saveImageAtPath({target}, presets, png, true);
    if (!saved)
        qWarning() << saved.error().text;
    return saved.has_value();
}

} // namespace

class ImageObjectTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void copyShowsWhatThePreviewShows_data();
    void copyShowsWhatThePreviewShows();
    void turns_data();
    void turns();
    void releasingForgetsTurns();
    void customOrigins();
    void unreadableFiles_data();
    void unreadableFiles();
    void failedSaveLeavesNothing_data();
    void failedSaveLeavesNothing();
    void nonSquarePixelsAreSquared();
    void renaming();
    void everyOrientationComesUpright();
    void ownCopyTakesItsPlace_data();
    void ownCopyTakesItsPlace();
    void anotherFileTakesItsPlace();
    void newerFileIsNotOverwritten();
    void manyThreads();

private:
    QString writtenPattern(QSize size);

    std::unique_ptr<TestFolder> m_folder;
};

void ImageObjectTest::init()
{
    m_folder = std::make_unique<TestFolder>();
}

QString ImageObjectTest::writtenPattern(QSize size)
{
    const QString path = m_folder->path(QStringLiteral("photo.png"));
    return pattern(size).save(path) ? path : QString();
}

void ImageObjectTest::copyShowsWhatThePreviewShows_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<bool>("isLoadedFirst");
    QTest::newRow("streamed") << 0 << false;
    QTest::newRow("from the cache") << 0 << true;
    QTest::newRow("turned while decoding") << 1 << false;
    QTest::newRow("mirrored, from the cache") << 5 << true;
}

void ImageObjectTest::copyShowsWhatThePreviewShows()
{
    QFETCH(int, operation);
    QFETCH(bool, isLoadedFirst);
    Services services(isLoadedFirst ? kLargeCache : 0);
    ImageObject photo(writtenPattern({700, 531}), services.all);
    if (operation != 0)
        QVERIFY(photo.transformOriginalImageWithOperation(operation));

    // Tiles, a shadow and a blend mode with alpha cross the borders of strips.
    AppliedPreset tiled = textPreset(services.fonts, QStringLiteral("PROOF"));
    tiled.values.width = 30;
    tiled.values.replicateHorizontal = true;
    tiled.values.replicateVertical = true;
    tiled.values.shadow = true;
    tiled.values.opacity = 60;
    tiled.values.angle = 20;
    AppliedPreset band = textPreset(services.fonts, QStringLiteral("Ein Band mit \u00c4"));
    band.values.background = true;
    band.values.blendMode = QStringLiteral("Difference");
    const std::vector<AppliedPreset> presets{tiled, band};
    photo.setCustomWatermarkRectOrigin({33.4, 120.6}, band.preset);

    const QString target = m_folder->path(QStringLiteral("copy.png"));
    QVERIFY(saves(photo, target, presets));
    QImage copy = QImage(target).convertToFormat(QImage::Format_RGB32);
    copy.setColorSpace({}); // the file is tagged, a picture in memory is sRGB without saying so
    const QImage preview = photo.createWatermarkedImageForAllAppliedWPresets(presets);
    QCOMPARE(copy.size(), preview.size());
    QCOMPARE(copy, preview);
    QVERIFY(copy != photo.originalCGImage());
}

void ImageObjectTest::turns_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<QTransform>("expected"); // of the photo, y downwards as QImage has it
    QTest::newRow("clockwise") << 1 << QTransform().rotate(90);
    QTest::newRow("counter-clockwise") << 2 << QTransform().rotate(-90);
    QTest::newRow("half") << 3 << QTransform().rotate(180);
    QTest::newRow("left to right") << 4 << QTransform::fromScale(-1, 1);
    QTest::newRow("top to bottom") << 5 << QTransform::fromScale(1, -1);
}

void ImageObjectTest::turns()
{
    QFETCH(int, operation);
    QFETCH(QTransform, expected);
    const QImage source = pattern({70, 40});
    for (const qsizetype cacheBytes : {qsizetype(0), kLargeCache}) { // decoded again, or kept
        Services services(cacheBytes);
        ImageObject photo(writtenPattern(source.size()), services.all);
        const AppliedPreset preset = textPreset(services.fonts, QStringLiteral("x"));
        photo.setCustomWatermarkRectOrigin({1, 2}, preset.preset);
        QVERIFY(photo.transformOriginalImageWithOperation(operation));
        const QImage turned = source.transformed(expected);
        QCOMPARE(photo.originalCGImage(), turned);
        QCOMPARE(photo.originalImageSize(), turned.size());
        QCOMPARE(photo.thumbnail(), turned.mirrored());
        QVERIFY(!photo.customWatermarkRectOriginForWPreset(preset.preset.get()));
        // A mirroring in between makes the order of turns matter.
        QVERIFY(photo.transformOriginalImageWithOperation(4));
        QVERIFY(photo.transformOriginalImageWithOperation(1));
        QCOMPARE(photo.originalCGImage(), turned.mirrored(true, false).transformed(QTransform().rotate(90)));
        QVERIFY(!photo.transformOriginalImageWithOperation(0));
        QVERIFY(!photo.transformOriginalImageWithOperation(6));
    }
}

void ImageObjectTest::releasingForgetsTurns()
{
    Services services(kLargeCache);
    ImageObject photo(writtenPattern({50, 30}), services.all);
    QVERIFY(photo.transformOriginalImageWithOperation(1));
    photo.releaseImagesData();
    QVERIFY(photo.thumbnail().isNull());
    QVERIFY(photo.metadata().has_value());
    QCOMPARE(services.cache.bytes(), 0);
    QCOMPARE(photo.originalCGImage(), pattern({50, 30}));
}

void ImageObjectTest::customOrigins()
{
    Services services(kLargeCache);
    ImageObject photo(writtenPattern({50, 30}), services.all);
    const AppliedPreset one = textPreset(services.fonts, QStringLiteral("one"));
    const AppliedPreset same = {std::make_shared<WPreset>(one.values),
                                one.values}; // equal, but another preset
    photo.setCustomWatermarkRectOrigin({1, 2}, one.preset);
    photo.setCustomWatermarkRectOrigin({3, 4}, one.preset);
    QVERIFY(!photo.customWatermarkRectOriginForWPreset(same.preset.get()));
    QRectF rect;
    QVERIFY(!photo.createWatermarkedImage({}, one, &rect).isNull());
    QCOMPARE(rect.topLeft(), QPointF(3, 4));
    QVERIFY(photo.resetCustomWatermarkRectOriginForWPreset(one.preset.get()));
    QVERIFY(!photo.resetCustomWatermarkRectOriginForWPreset(one.preset.get()));

    // Without a text there is no watermark, and the very photo comes back.
    const AppliedPreset none = textPreset(services.fonts, QStringLiteral("city"));
    QCOMPARE(photo.createWatermarkedImage({}, none).constBits(), photo.originalCGImage().constBits());
}

void ImageObjectTest::unreadableFiles_data()
{
    QTest::addColumn<QByteArray>("contents");
    QByteArray png;
    QBuffer buffer(&png);
    pattern({60, 60}).save(&buffer, "PNG");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("this is no picture");
    QTest::newRow("cut short") << png.left(png.size() / 2);
}

void ImageObjectTest::unreadableFiles()
{
    QFETCH(QByteArray, contents);
    const QString path = m_folder->path(QStringLiteral("photo.jpg"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(contents);
    file.close();
    Services services(kLargeCache);
    ImageObject photo(path, services.all);
    for (int i = 0; i < 2; ++i) {
        QVERIFY(!photo.loadImageFromDisk());
        QVERIFY(!photo.imageHasBeenLoaded());
        QVERIFY(!photo.loadError().isEmpty());
        QVERIFY(photo.originalCGImage().isNull());
    }
    QVERIFY(!photo.transformOriginalImageWithOperation(1));
}

void ImageObjectTest::failedSaveLeavesNothing_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<int>("stripsBeforeStop");
    QTest::newRow("no such folder") << QStringLiteral("missing/") << -1;
    QTest::newRow("the copy exists") << QStringLiteral("taken/") << -1;
    QTest::newRow("stopped before the first strip") << QStringLiteral("out/") << 0;
    QTest::newRow("stopped in the middle") << QStringLiteral("out/") << 1;
}

void ImageObjectTest::failedSaveLeavesNothing()
{
    QFETCH(QString, folder);
    QFETCH(int, stripsBeforeStop);
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("taken")));
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("out")));
    QFile taken(m_folder->path(QStringLiteral("taken/copy.png")));
    QVERIFY(taken.open(QIODevice::WriteOnly));
    taken.write("mine");
    taken.close();

    Services services(kLargeCache);
    ImageObject photo(writtenPattern({900, 900}), services.all);
    int strips = 0;
    SavingPresetValues png;
    png.imageFormat = QStringLiteral("PNG");
    const auto saved =
        photo.saveImageAtPath({m_folder->path(folder + QStringLiteral("copy.png"))},
                              {textPreset(services.fonts, QStringLiteral("x"))}, png, true,
                              [&] { return stripsBeforeStop >= 0 && strips++ >= stripsBeforeStop; });
    QVERIFY(!saved);
    QVERIFY(!saved.error().text.isEmpty());
    const auto everything = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
    QCOMPARE(QDir(m_folder->path(QStringLiteral("out"))).entryList(everything), QStringList());
    QCOMPARE(QDir(m_folder->path(QStringLiteral("taken"))).entryList(everything),
             QStringList{QStringLiteral("copy.png")});
    QVERIFY(taken.open(QIODevice::ReadOnly));
    QCOMPARE(taken.readAll(), "mine");
}

void ImageObjectTest::nonSquarePixelsAreSquared()
{
    QImage stored = pattern({60, 40});
    stored.setDotsPerMeterX(11811); // 300 per inch
    stored.setDotsPerMeterY(5906);  // 150 per inch
    const QString path = m_folder->path(QStringLiteral("photo.png"));
    QVERIFY(stored.save(path));
    Services services(kLargeCache);
    ImageObject photo(path, services.all);
    QCOMPARE(photo.originalImageSize(), QSize(60, 80));
    QCOMPARE(photo.facts().stringForInfoToken(QStringLiteral("dimensions")), QStringLiteral("60 x 40"));
    QCOMPARE(photo.originalImageSizeAsString(), QStringLiteral("60 x 80"));

    const QString target = m_folder->path(QStringLiteral("copy.png"));
    QVERIFY(saves(photo, target, {}));
    const QImage copy(target);
    QCOMPARE(copy.size(), QSize(60, 80));
    QVERIFY(qAbs(copy.dotsPerMeterX() - copy.dotsPerMeterY()) <= 1);
}

void ImageObjectTest::renaming()
{
    Services services(0);
    ImageObject photo(QStringLiteral("/x/a.b.jpg"), services.all);
    QCOMPARE(photo.filename(), QStringLiteral("a.b"));
    QSignalSpy changes(&photo, &ImageObject::pathChanged);
    photo.setFilename(QStringLiteral("b"));
    QCOMPARE(photo.path(), QStringLiteral("/x/b.jpg"));
    photo.setFilename(QStringLiteral("b"));
    QCOMPARE(changes.count(), 1);
    ImageObject hidden(QStringLiteral("/x/.hidden"), services.all);
    QCOMPARE(hidden.filename(), QStringLiteral(".hidden"));
    hidden.setFilename(QStringLiteral("seen"));
    QCOMPARE(hidden.path(), QStringLiteral("/x/seen"));
}

void ImageObjectTest::everyOrientationComesUpright()
{
    const QString photos = photosFolder();
    if (photos.isEmpty())
        QSKIP("the folder of real photos is not here");
    Services services(kLargeCache);
    // All eight files show the same scene; only their pixels are stored differently.
    for (const char *shape : {"landscape", "portrait"}) {
        QImage first;
        for (int orientation = 1; orientation <= 8; ++orientation) {
            const QString path = QStringLiteral("%1/jpeg/orientation/%2-%3.jpg")
                                     .arg(photos, QLatin1String(shape))
                                     .arg(orientation);
            if (!QFile::exists(path))
                continue;
            ImageObject photo(path, services.all);
            const QImage upright = photo.originalCGImage();
            QVERIFY2(!upright.isNull(), qPrintable(photo.loadError()));
            if (first.isNull())
                first = upright;
            QVERIFY2(difference(upright, first) < 8, qPrintable(path));
        }
    }
}

void ImageObjectTest::ownCopyTakesItsPlace_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("before"); // operations, 0: none
    QTest::addColumn<int>("after");
    QTest::newRow("upside down") << QStringLiteral("landscape-3.jpg") << 0 << 0;
    QTest::newRow("on its side") << QStringLiteral("landscape-6.jpg") << 0 << 0;
    QTest::newRow("turned") << QStringLiteral("landscape-8.jpg") << 1 << 0;
    QTest::newRow("turned on") << QStringLiteral("landscape-5.jpg") << 1 << 4;
}

void ImageObjectTest::ownCopyTakesItsPlace()
{
    QFETCH(QString, name);
    QFETCH(int, before);
    QFETCH(int, after);
    if (photosFolder().isEmpty())
        QSKIP("the folder of real photos is not here");
    const QString path = m_folder->path(name);
    QVERIFY(QFile::copy(photosFolder() + QStringLiteral("/jpeg/orientation/") + name, path));
    Services services(0);
    ImageObject photo(path, services.all);
    QVERIFY(photo.loadImageFromDisk());
    QVERIFY(before == 0 || photo.transformOriginalImageWithOperation(before));
    const QImage saved = photo.originalCGImage();
    QFile original(path); // for copies to come
    QVERIFY(original.open(QIODevice::ReadOnly));
    SavingPresetValues same;
    same.imageFormat = QStringLiteral("Original");
    QVERIFY(photo.saveImageAtPath({path, AtomicFile::IfExists::Replace}, {}, same, true));
    QVERIFY(after == 0 || photo.transformOriginalImageWithOperation(after));

    const QImage expected = after == 0 ? saved : saved.mirrored(true, false);
    const QSignalSpy changes(&photo, &ImageObject::metadataChanged);
    const QImage seen = photo.originalCGImage();
    QVERIFY(difference(seen, expected) < 3);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(photo.originalImageSize(), seen.size());
    QVERIFY(difference(photo.thumbnail().mirrored(), createImageScaledToMaxSize(seen, 400, false)) < 3);
    QCOMPARE(photo.metadata()->orientationCorrected(), 1);

    // A copy of the file that was replaced shows the same.
    const QString late = m_folder->path(QStringLiteral("late.jpg"));
    const QString readFrom = QStringLiteral("/proc/self/fd/%1").arg(original.handle());
    QVERIFY(photo.saveImageAtPath({late}, {}, same, true, {}, readFrom));
    QVERIFY(difference(ImageObject(late, services.all).originalCGImage(), expected) < 3);
}

void ImageObjectTest::anotherFileTakesItsPlace()
{
    Services services(0);
    const QString path = writtenPattern({70, 40});
    ImageObject photo(path, services.all);
    QVERIFY(photo.transformOriginalImageWithOperation(1));
    ImageMetadata edited = *photo.metadata();
    edited.setIptcCreator(QStringLiteral("A. Photographer"));
    photo.setMetadata(edited);
    const AppliedPreset preset = textPreset(services.fonts, QStringLiteral("x"));
    photo.setCustomWatermarkRectOrigin({1, 2}, preset.preset);

    writtenPattern({50, 20});
    const QImage turned = pattern({50, 20}).transformed(QTransform().rotate(90));
    const QString copy = m_folder->path(QStringLiteral("copy.png"));
    QVERIFY(saves(photo, copy, {})); // which looks at the file, too
    QCOMPARE(QImage(copy).size(), turned.size());
    QCOMPARE(photo.originalImageSize(), turned.size());
    QCOMPARE(photo.thumbnail(), turned.mirrored());
    QCOMPARE(photo.originalCGImage(), turned);
    QCOMPARE(photo.metadata()->iptcCreator(), QVariant(QStringLiteral("A. Photographer")));
    QVERIFY(!photo.customWatermarkRectOriginForWPreset(preset.preset.get()));

    QFile file(path);
    QVERIFY(file.resize(file.size() / 2));
    QVERIFY(photo.originalCGImage().isNull());
    QVERIFY(!photo.isLoaded() && !photo.loadImageFromDisk() && !photo.loadError().isEmpty());
    QVERIFY(photo.thumbnail().isNull());
    QCOMPARE(photo.originalImageSize(), QSize(0, 0));

    writtenPattern({70, 40});
    QCOMPARE(photo.originalCGImage(), pattern({70, 40}).transformed(QTransform().rotate(90)));
    QVERIFY(photo.isLoaded() && photo.loadError().isEmpty());
}

/// An editor replaces the photo while its copy is made, which would take its place.
void ImageObjectTest::newerFileIsNotOverwritten()
{
    Services services(0);
    const QString path = writtenPattern({70, 40});
    const QString newer = m_folder->path(QStringLiteral("newer.tmp"));
    QVERIFY(pattern({50, 20}).save(newer, "PNG"));
    ImageObject photo(path, services.all);
    SavingPresetValues same;
    same.imageFormat = QStringLiteral("Original");
    const auto replaceOnce = [&] {
        std::rename(QFile::encodeName(newer).constData(), QFile::encodeName(path).constData());
        return false;
    };
    const auto saved =
        photo.saveImageAtPath({path, AtomicFile::IfExists::Replace}, {}, same, true, replaceOnce);
    QVERIFY(!saved);
    QCOMPARE(saved.error().text, QStringLiteral("the file was changed while it was read"));
    QCOMPARE(QImage(path).size(), QSize(50, 20));
}

void ImageObjectTest::manyThreads()
{
    Services services(3 * 200 * 150 * 4); // room for three photos: some are decoded again and again
    std::vector<std::unique_ptr<ImageObject>> photos;
    const QString path = writtenPattern({200, 150});
    for (int i = 0; i < 5; ++i)
        photos.push_back(std::make_unique<ImageObject>(path, services.all));
    const AppliedPreset preset = textPreset(services.fonts, QStringLiteral("shared"));
    std::atomic_int failures = 0;
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < 6; ++t) {
            threads.emplace_back([&, t] {
                for (int i = 0; i < 10; ++i) {
                    ImageObject &photo = *photos[static_cast<std::size_t>((i + t) % 5)];
                    if (t == 0) {
                        failures += !photo.transformOriginalImageWithOperation(3);
                    } else if (t == 1) {
                        photo.releaseImagesData();
                    } else if (t == 2) { // the file of all five
                        const auto saved = photo.saveImageAtPath({path, AtomicFile::IfExists::Replace}, {},
                                                                 SavingPresetValues(), true);
                        failures += !saved;
                    } else if (photo.loadImageFromDisk()) {
                        photo.setCustomWatermarkRectOrigin({1.0 * i, 2}, preset.preset);
                        const QImage marked = photo.createWatermarkedImage({}, preset);
                        failures += !marked.isNull() && marked.size() != QSize(200, 150);
                    }
                }
            });
        }
    }
    QCOMPARE(failures.load(), 0);
    QVERIFY(services.cache.bytes() <= 3 * 200 * 150 * 4);
}

QTEST_MAIN(ImageObjectTest)
#include "imageobject_test.moc"
