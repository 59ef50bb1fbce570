// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/fileversion.h"
#include "raster/bitmaputilities.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/photofolder.h"
#include "support/picturedifference.h"
#include "support/testpictures.h"
#include "support/testservices.h"

#include <QDateTime>
#include <QSignalSpy>

#include <atomic>
#include <cstdio>
#include <thread>

using namespace plexa;
using namespace plexa::test;

namespace
{

using enum ImageTransform;
using Transform = std::optional<ImageTransform>;

constexpr qsizetype kLargeCache = 64 * 1024 * 1024;

AppliedPreset textPreset(const FontCatalog &fonts, const QString &text)
{
    WPresetValues values = WPresetValues::forNewPreset(fonts);
    values.textTokens = {text};
    return {std::make_shared<WPreset>(values), values};
}

/// Of two pictures on a small scale, 0..255; 256 when their sizes differ.
double difference(const QImage &one, const QImage &other)
{
    if (one.size() != other.size())
        return 256;
    return meanDifference(createImageScaledToSize(one, 90, 90, true),
                          createImageScaledToSize(other, 90, 90, true));
}

bool saves(ImageObject &photo, const QString &target, const std::vector<AppliedPreset> &presets)
{
    SavingPresetValues png;
    png.imageFormat = QStringLiteral("PNG");
    const auto saved = photo.saveImageAtPath({target}, presets, png, {});
    if (!saved)
        qWarning() << saved.error().text;
    return saved.has_value();
}

using CopyOfPreview = Row<Transform, bool>; // operation, isLoadedFirst
// expected: of the photo, y downwards as QImage has it
using Turn = Row<ImageTransform, QTransform>; // operation, expected
using Unreadable = Row<QByteArray>;           // contents
using FailedSave = Row<Text, int>;            // folder, stripsBeforeStop
// dpiHeight: beside 300 across
using Reduced = Row<const char *, Transform, int>; // format, operation, dpiHeight
// daysModified: from today
using Dates = Row<int, bool, int>;               // daysModified, preserves, daysExpected
using OwnCopy = Row<Text, Transform, Transform>; // file, before, after

} // namespace

class ImageObjectTest : public QObject
{
    Q_OBJECT

private:
    QString writtenPattern(QSize size)
    {
        const QString path = m_folder->path("photo.png");
        return detailedPicture(size).save(path) ? path : QString();
    }

    std::unique_ptr<TestFolder> m_folder;

private Q_SLOTS:
    void init() { m_folder = std::make_unique<TestFolder>(); }

    void copyShowsWhatThePreviewShows_data()
    {
        addRows<CopyOfPreview>({{"streamed", {}, false},
                                {"from the cache", {}, true},
                                {"turned while decoding", RotateClockwise, false},
                                {"mirrored, from the cache", MirrorTopBottom, true}});
    }
    void copyShowsWhatThePreviewShows()
    {
        const auto [name, operation, isLoadedFirst] = currentRow<CopyOfPreview>();
        TestPhotoServices services(isLoadedFirst ? kLargeCache : 0);
        ImageObject photo(writtenPattern({700, 531}), services.all);
        if (operation)
            QVERIFY(photo.transformOriginalImageWithOperation(*operation));

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

        const QString target = m_folder->path("copy.png");
        QVERIFY(saves(photo, target, presets));
        const QImage copy = pixelsOf(QImage(target));
        const auto preview = photo.readReduced(700);
        const QImage tiles = preview->drawn(preview->pixels, tiled, services.fonts).value();
        QCOMPARE(copy, preview->drawn(tiles, band, services.fonts).value());
        QVERIFY(copy != photo.originalCGImage());
    }

    void turns_data()
    {
        addRows<Turn>({{"clockwise", RotateClockwise, QTransform().rotate(90)},
                       {"counter-clockwise", RotateCounterClockwise, QTransform().rotate(-90)},
                       {"half", RotateHalf, QTransform().rotate(180)},
                       {"left to right", MirrorLeftRight, QTransform::fromScale(-1, 1)},
                       {"top to bottom", MirrorTopBottom, QTransform::fromScale(1, -1)}});
    }
    void turns()
    {
        const auto [name, operation, expected] = currentRow<Turn>();
        const QImage source = detailedPicture({70, 40});
        for (const qsizetype cacheBytes : {qsizetype(0), kLargeCache}) { // decoded again, or kept
            TestPhotoServices services(cacheBytes);
            ImageObject photo(writtenPattern(source.size()), services.all);
            const AppliedPreset preset = textPreset(services.fonts, QStringLiteral("x"));
            photo.setCustomWatermarkRectOrigin({1, 2}, preset.preset);
            const QSignalSpy places(&photo, &ImageObject::customWatermarkRectOriginsChanged);
            QVERIFY(photo.transformOriginalImageWithOperation(operation));
            QCOMPARE(places.size(), 1);
            const QImage turned = source.transformed(expected);
            QCOMPARE(photo.originalCGImage(), turned);
            QCOMPARE(photo.facts().pixelSize(), turned.size());
            QCOMPARE(photo.thumbnail(), turned.mirrored());
            QVERIFY(!photo.customWatermarkRectOriginForWPreset(preset.preset.get()));
            // A mirroring in between makes the order of turns matter.
            QVERIFY(photo.transformOriginalImageWithOperation(MirrorLeftRight));
            QVERIFY(photo.transformOriginalImageWithOperation(RotateClockwise));
            QCOMPARE(photo.originalCGImage(),
                     turned.mirrored(true, false).transformed(QTransform().rotate(90)));
        }
    }

    void releasingForgetsTurns()
    {
        TestPhotoServices services;
        ImageObject photo(writtenPattern({50, 30}), services.all);
        QVERIFY(photo.transformOriginalImageWithOperation(RotateClockwise));
        photo.releaseImagesData();
        QVERIFY(photo.thumbnail().isNull());
        QVERIFY(photo.metadata().has_value());
        QCOMPARE(services.cache.bytes(), 0);
        QCOMPARE(photo.originalCGImage(), detailedPicture({50, 30}));
    }

    void customOrigins()
    {
        TestPhotoServices services;
        ImageObject photo(writtenPattern({50, 30}), services.all);
        const AppliedPreset one = textPreset(services.fonts, QStringLiteral("one"));
        const AppliedPreset same = {std::make_shared<WPreset>(one.values),
                                    one.values}; // equal, but another preset
        const QSignalSpy changes(&photo, &ImageObject::customWatermarkRectOriginsChanged);
        photo.setCustomWatermarkRectOrigin({1, 2}, one.preset);
        photo.setCustomWatermarkRectOrigin({3, 4}, one.preset);
        photo.setCustomWatermarkRectOrigin({3, 4}, one.preset);
        QCOMPARE(changes.size(), 2);
        QVERIFY(!photo.customWatermarkRectOriginForWPreset(same.preset.get()));
        QRectF rect;
        const auto snapshot = photo.readReduced(50);
        QVERIFY(snapshot->drawn(snapshot->pixels, one, services.fonts, &rect));
        QCOMPARE(rect.topLeft(), QPointF(3, 4));
        QVERIFY(photo.resetCustomWatermarkRectOriginForWPreset(one.preset.get()));
        QVERIFY(!photo.resetCustomWatermarkRectOriginForWPreset(one.preset.get()));
        photo.resetAllCustomWatermarkRectOrigins(); // there is none
        QCOMPARE(changes.size(), 3);

        // Without a text there is no watermark, and the very photo comes back.
        const AppliedPreset none = textPreset(services.fonts, QStringLiteral("city"));
        QCOMPARE(photo.createWatermarkedImage(none)->constBits(), photo.originalCGImage().constBits());
    }

    void unreadableFiles_data()
    {
        const QByteArray png = encoded(detailedPicture({60, 60}), "PNG");
        addRows<Unreadable>(
            {{"empty", {}}, {"text", "this is not a picture"}, {"truncated", png.left(png.size() / 2)}});
    }
    void unreadableFiles()
    {
        const auto [name, contents] = currentRow<Unreadable>();
        const QString path = m_folder->path("photo.jpg");
        QVERIFY(writeFile(path, contents));
        TestPhotoServices services;
        ImageObject photo(path, services.all);
        for (int i = 0; i < 2; ++i) {
            QVERIFY(!photo.loadImageFromDisk());
            QVERIFY(!photo.isLoaded());
            QVERIFY(!photo.loadError().isEmpty());
            QVERIFY(photo.originalCGImage().isNull());
        }
        QVERIFY(!photo.transformOriginalImageWithOperation(RotateClockwise));
        const auto reduced = photo.readReduced(30);
        QVERIFY(!reduced);
        QCOMPARE(reduced.error().text, photo.loadError());
    }

    void failedSaveLeavesNothing_data()
    {
        addRows<FailedSave>({{"no such folder", "missing/", -1},
                             {"the copy exists", "taken/", -1},
                             {"stopped before the first strip", "out/", 0},
                             {"stopped in the middle", "out/", 1}});
    }
    void failedSaveLeavesNothing()
    {
        const auto [name, folder, row] = currentRow<FailedSave>();
        const int stripsBeforeStop = row;
        QVERIFY(writeFile(m_folder->path("taken/copy.png"), "mine"));
        QVERIFY(QDir().mkpath(m_folder->path("out")));

        TestPhotoServices services;
        ImageObject photo(writtenPattern({900, 900}), services.all);
        int strips = 0;
        SavingPresetValues png;
        png.imageFormat = QStringLiteral("PNG");
        const auto saved =
            photo.saveImageAtPath({m_folder->path(folder + QStringLiteral("copy.png"))},
                                  {textPreset(services.fonts, QStringLiteral("x"))}, png, {},
                                  [&] { return stripsBeforeStop >= 0 && strips++ >= stripsBeforeStop; });
        QVERIFY(!saved);
        QVERIFY(!saved.error().text.isEmpty());
        QCOMPARE(namesIn(m_folder->path("out")), QStringList());
        QCOMPARE(namesIn(m_folder->path("taken")), QStringList{u"copy.png"_qs});
        QCOMPARE(contentsOf(m_folder->path("taken/copy.png")), "mine");
    }

    void reducedForTheScreen_data()
    {
        addRows<Reduced>({{"JPEG", "JPEG", {}, 300},
                          {"mirrored JPEG", "JPEG", MirrorLeftRight, 300},
                          {"turned JPEG of flat pixels", "JPEG", RotateCounterClockwise, 150},
                          {"a format that cannot reduce, turned", "PNG", RotateCounterClockwise, 300}});
    }
    void reducedForTheScreen()
    {
        const auto [name, format, operation, dpiHeight] = currentRow<Reduced>();
        QImage stored = smoothPicture({1203, 801});
        stored.setDotsPerMeterX(11811);
        stored.setDotsPerMeterY(qRound(dpiHeight / 0.0254));
        const QString path = m_folder->path("photo");
        QVERIFY(stored.save(path, format, 95));
        for (const qsizetype cacheBytes : {qsizetype(0), kLargeCache}) {
            TestPhotoServices services(cacheBytes);
            ImageObject photo(path, services.all);
            if (operation)
                QVERIFY(photo.transformOriginalImageWithOperation(*operation));
            // All memory is in use by others, who may wait for a question to be answered.
            auto taken = services.budget.reserve(services.budget.total());
            const auto reduced = photo.readReduced(301);
            QVERIFY(reduced);
            const auto again = photo.readReduced(160); // 1203 / 8 is too small, so it is 1/4 again
            QVERIFY(again && photo.imageAtHand().isNull());
            QCOMPARE(again->pixels.constBits() == reduced->pixels.constBits(), cacheBytes > 0);
            taken->release();
            const QImage whole = photo.originalCGImage();
            QCOMPARE(reduced->facts.pixelSize(), whole.size());
            // Sides are rounded up before they are stretched.
            QVERIFY(qAbs(reduced->pixels.width() - whole.width() / 4.0) < 2);
            QVERIFY(qAbs(reduced->pixels.height() - whole.height() / 4.0) < 2);
            const QImage expected =
                createImageScaledToSize(whole, reduced->pixels.width(), reduced->pixels.height(), true);
            const auto off = differenceOf(reduced->pixels, expected);
            QVERIFY2(off.mean < 1 && off.worst < 12, qPrintable(u"%1, %2"_qs.arg(off.mean).arg(off.worst)));
            QCOMPARE(photo.readReduced(1203)->pixels, whole);

            QVERIFY(photo.transformOriginalImageWithOperation(RotateHalf));
            QVERIFY(meanDifference(photo.readReduced(301)->pixels, expected.mirrored(true, true)) < 1);
        }
    }

    void reducedDecodingStopsAndFollowsTheFile()
    {
        TestPhotoServices services;
        const QString path = writtenPattern({1600, 1200});
        ImageObject photo(path, services.all);
        int asked = 0;
        const auto stopped = photo.readReduced(200, [&] { return ++asked == 2; });
        QVERIFY(!stopped);
        QCOMPARE(asked, 2);
        QVERIFY(photo.isLoaded());

        QVERIFY(detailedPicture({900, 500}).save(path, "PNG"));
        const auto reduced = photo.readReduced(200);
        QVERIFY(reduced);
        QCOMPARE(reduced->facts.pixelSize(), QSize(900, 500));
        QCOMPARE(reduced->pixels.size(), QSize(225, 125));
    }

    void copiesHaveTheDateOfThePhoto_data()
    {
        addRows<Dates>({{"modified long ago", -100, true, -100},
                        {"modified after its birth", 100, true, 0},
                        {"not wanted", -100, false, 0}});
    }
    void copiesHaveTheDateOfThePhoto()
    {
        const auto [name, daysModified, preserves, daysExpected] = currentRow<Dates>();
        TestPhotoServices services;
        const QString path = writtenPattern({40, 30});
        if (daysModified > 0 && !fileVersionAt(path)->born)
            QSKIP("this file system keeps no times of birth");
        const QDateTime now = QDateTime::currentDateTime();
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(now.addDays(daysModified), QFileDevice::FileModificationTime));
        file.close();
        ImageObject photo(path, services.all);
        const QString copy = m_folder->path("copy.png");
        SavingPresetValues png;
        png.imageFormat = u"PNG"_qs;
        QVERIFY(photo.saveImageAtPath({copy}, {}, png, {preserves}));
        const QDateTime expected = now.addDays(daysExpected);
        QVERIFY(qAbs(QFileInfo(copy).lastModified().secsTo(expected)) < 3600);
    }

    void nonSquarePixelsAreSquared()
    {
        QImage stored = detailedPicture({60, 40});
        stored.setDotsPerMeterX(11811); // 300 per inch
        stored.setDotsPerMeterY(5906);  // 150 per inch
        const QString path = m_folder->path("photo.png");
        QVERIFY(stored.save(path));
        TestPhotoServices services;
        ImageObject photo(path, services.all);
        QCOMPARE(photo.originalCGImage().size(), QSize(60, 80));
        QCOMPARE(photo.facts().stringForInfoToken(QStringLiteral("dimensions")), QStringLiteral("60 x 40"));

        const QString target = m_folder->path("copy.png");
        QVERIFY(saves(photo, target, {}));
        const QImage copy(target);
        QCOMPARE(copy.size(), QSize(60, 80));
        QVERIFY(qAbs(copy.dotsPerMeterX() - copy.dotsPerMeterY()) <= 1);
    }

    void renaming()
    {
        TestPhotoServices services(0);
        ImageObject photo(QStringLiteral("/x/a.b.jpg"), services.all);
        QCOMPARE(photo.filename(), QStringLiteral("a.b"));
        QSignalSpy changes(&photo, &ImageObject::pathChanged);
        photo.setFilename(QStringLiteral("b"));
        QCOMPARE(photo.path(), QStringLiteral("/x/b.jpg"));
        photo.setFilename(QStringLiteral("b"));
        QCOMPARE(changes.count(), 1);
        for (const auto &[name, path] : {std::pair("/etc/z", "/x/_etc_z.jpg"),
                                         {"../../z", "/x/.._.._z.jpg"},
                                         {"..", "/x/...jpg"},
                                         {"", "/x/...jpg"}}) {
            photo.setFilename(QLatin1String(name));
            QCOMPARE(photo.path(), QLatin1String(path));
        }
        ImageObject bare(QStringLiteral("/x/bare"), services.all);
        bare.setFilename(QStringLiteral(".."));
        QCOMPARE(bare.path(), QStringLiteral("/x/bare"));
        ImageObject hidden(QStringLiteral("/x/.hidden"), services.all);
        QCOMPARE(hidden.filename(), QStringLiteral(".hidden"));
        hidden.setFilename(QStringLiteral("seen"));
        QCOMPARE(hidden.path(), QStringLiteral("/x/seen"));
    }

    void everyOrientationComesUpright()
    {
        PLEXA_NEEDS_PHOTOS();
        TestPhotoServices services;
        // All eight files show the same scene; only their pixels are stored differently.
        for (const char *shape : {"landscape", "portrait"}) {
            QImage first;
            for (int orientation = 1; orientation <= 8; ++orientation) {
                const QString path =
                    realPhoto(u"jpeg/orientation/%1-%2.jpg"_qs.arg(QLatin1String(shape)).arg(orientation));
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

    void ownCopyTakesItsPlace_data()
    {
        addRows<OwnCopy>({{"on its side", "landscape-6.jpg", {}, {}},
                          {"turned", "landscape-8.jpg", RotateClockwise, {}},
                          {"turned before and after", "landscape-5.jpg", RotateClockwise, MirrorLeftRight}});
    }
    void ownCopyTakesItsPlace()
    {
        PLEXA_NEEDS_PHOTOS();
        const auto [row, name, before, after] = currentRow<OwnCopy>();
        const QString path = m_folder->path(name);
        QVERIFY(QFile::copy(realPhoto(u"jpeg/orientation/"_qs + name), path));
        TestPhotoServices services(0);
        ImageObject photo(path, services.all);
        QVERIFY(photo.loadImageFromDisk());
        QVERIFY(!before || photo.transformOriginalImageWithOperation(*before));
        const QImage saved = photo.originalCGImage();
        QFile original(path); // for copies to come
        QVERIFY(original.open(QIODevice::ReadOnly));
        SavingPresetValues same;
        same.imageFormat = QStringLiteral("Original");
        QVERIFY(photo.saveImageAtPath({path, AtomicFile::IfExists::Replace}, {}, same, {}));
        QVERIFY(!after || photo.transformOriginalImageWithOperation(*after));

        const QImage expected = !after ? saved : saved.mirrored(true, false);
        const QSignalSpy changes(&photo, &ImageObject::metadataChanged);
        const QImage seen = photo.originalCGImage();
        QVERIFY(difference(seen, expected) < 3);
        QCOMPARE(changes.size(), 1);
        QCOMPARE(photo.facts().pixelSize(), seen.size());
        QVERIFY(difference(photo.thumbnail().mirrored(), createImageScaledToMaxSize(seen, 400, false)) < 3);
        QCOMPARE(photo.metadata()->orientationCorrected(), 1);

        // A copy of the file that was replaced shows the same.
        const QString late = m_folder->path("late.jpg");
        const QString readFrom = QStringLiteral("/proc/self/fd/%1").arg(original.handle());
        QVERIFY(photo.saveImageAtPath({late}, {}, same, {}, {}, readFrom));
        QVERIFY(difference(ImageObject(late, services.all).originalCGImage(), expected) < 3);
    }

    void anotherFileTakesItsPlace()
    {
        TestPhotoServices services(0);
        const QString path = writtenPattern({70, 40});
        ImageObject photo(path, services.all);
        QVERIFY(photo.transformOriginalImageWithOperation(RotateClockwise));
        ImageMetadata edited = *photo.metadata();
        edited.setIptcCreator(QStringLiteral("A. Photographer"));
        photo.setMetadata(edited);
        const AppliedPreset preset = textPreset(services.fonts, QStringLiteral("x"));
        photo.setCustomWatermarkRectOrigin({1, 2}, preset.preset);

        writtenPattern({50, 20});
        const QImage turned = detailedPicture({50, 20}).transformed(QTransform().rotate(90));
        const QString copy = m_folder->path("copy.png");
        QVERIFY(saves(photo, copy, {})); // which looks at the file, too
        QCOMPARE(QImage(copy).size(), turned.size());
        QCOMPARE(photo.facts().pixelSize(), turned.size());
        QCOMPARE(photo.thumbnail(), turned.mirrored());
        QCOMPARE(photo.originalCGImage(), turned);
        QCOMPARE(photo.metadata()->iptcCreator(), QVariant(QStringLiteral("A. Photographer")));
        QVERIFY(!photo.customWatermarkRectOriginForWPreset(preset.preset.get()));

        QFile file(path);
        QVERIFY(file.resize(file.size() / 2));
        QVERIFY(photo.originalCGImage().isNull());
        QVERIFY(!photo.isLoaded() && !photo.loadImageFromDisk() && !photo.loadError().isEmpty());
        QVERIFY(photo.thumbnail().isNull());

        writtenPattern({70, 40});
        QCOMPARE(photo.originalCGImage(), detailedPicture({70, 40}).transformed(QTransform().rotate(90)));
        QVERIFY(photo.isLoaded() && photo.loadError().isEmpty());
    }

    /// An editor replaces the photo while its copy is made, which would take its place.
    void newerFileIsNotOverwritten()
    {
        TestPhotoServices services(0);
        const QString path = writtenPattern({70, 40});
        const QString newer = m_folder->path("newer.tmp");
        QVERIFY(detailedPicture({50, 20}).save(newer, "PNG"));
        ImageObject photo(path, services.all);
        SavingPresetValues same;
        same.imageFormat = QStringLiteral("Original");
        const auto replaceOnce = [&] {
            std::rename(QFile::encodeName(newer).constData(), QFile::encodeName(path).constData());
            return false;
        };
        const auto saved =
            photo.saveImageAtPath({path, AtomicFile::IfExists::Replace}, {}, same, {}, replaceOnce);
        QVERIFY(!saved);
        QCOMPARE(saved.error().text, QStringLiteral("the file was changed while it was read"));
        QCOMPARE(QImage(path).size(), QSize(50, 20));
    }

    void manyThreads()
    {
        TestPhotoServices services(3 * 200 * 150 *
                                   4); // room for three photos: some are decoded again and again
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
                            failures += !photo.transformOriginalImageWithOperation(RotateHalf);
                        } else if (t == 1) {
                            photo.releaseImagesData();
                        } else if (t == 2) { // the file of all five
                            const auto saved = photo.saveImageAtPath({path, AtomicFile::IfExists::Replace},
                                                                     {}, SavingPresetValues(), {});
                            failures += !saved;
                        } else if (t == 3) {
                            static_cast<void>(photo.readReduced(40));
                        } else if (photo.loadImageFromDisk()) {
                            photo.setCustomWatermarkRectOrigin({1.0 * i, 2}, preset.preset);
                            // Fails where the file is replaced while it is read.
                            const auto marked = photo.createWatermarkedImage(preset);
                            failures += marked && marked->size() != QSize(200, 150);
                        }
                    }
                });
            }
        }
        QCOMPARE(failures.load(), 0);
        QVERIFY(services.cache.bytes() <= 3 * 200 * 150 * 4);
    }
};

QTEST_MAIN(ImageObjectTest)
#include "imageobject_test.moc"
