// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/thumbnails.h"
#include "app/workingset.h"
#include "raster/resampling.h"
#include "support/picturedifference.h"

using namespace plexa;
using namespace plexa::test;

namespace
{

constexpr QSize kPhoto(600, 400);

AppliedPreset textPreset(const FontCatalog &fonts, float angle = 0)
{
    WPresetValues values = WPresetValues::forNewPreset(fonts);
    values.textTokens = {u"Proof of "_qs, u"filename"_qs};
    values.width = 60;
    values.fontSize = 20;
    values.stroke = false;
    values.anchorPoint = 4;
    values.angle = angle;
    return {std::make_shared<WPreset>(values), values};
}

/// Photos, and the thumbnails of those that are visible.
struct Scene {
    explicit Scene(int count, Thumbnails::Photos photos = Thumbnails::Photos::Loaded)
        : thumbnails(work.fonts, 2, photos)
    {
        for (int i = 0; i < count; ++i) {
            const QString path = work.photo(u"%1.png"_qs.arg(i), {1, 1});
            smoothPicture(kPhoto).save(path);
            list.push_back(std::make_shared<ImageObject>(path, work.photos));
            if (photos == Thumbnails::Photos::Loaded)
                list.back()->loadImageFromDisk();
        }
        QObject::connect(&thumbnails, &Thumbnails::changed, &thumbnails, [this](const ImageObject *photo) {
            changes.append(int(std::find_if(list.begin(), list.end(),
                                            [photo](const auto &one) { return one.get() == photo; }) -
                               list.begin()));
        });
    }

    bool isIdleSoon()
    {
        return QTest::qWaitFor([this] { return thumbnails.isIdle(); }, 20'000);
    }
    /// Upright.
    QImage shown(int index = 0) const
    {
        return pixelsOf(thumbnails.thumbnail(*list.at(std::size_t(index)))).mirrored();
    }

    /// A saved copy, as large as the thumbnail.
    QImage copy()
    {
        SavingPresetValues png;
        png.imageFormat = u"PNG"_qs;
        const QString path = work.folder.path("copy.png");
        QFile::remove(path);
        (void)list.front()->saveImageAtPath({path}, presets, png, {});
        return resampled(pixelsOf(QImage(path)), shown().size(), Quality::High);
    }

    WorkingSet work;
    ImageList list;
    std::vector<AppliedPreset> presets{textPreset(work.fonts), textPreset(work.fonts, 30)};
    Thumbnails thumbnails;
    QList<int> changes; // indexes of photos
};

} // namespace

class ThumbnailsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// After each change of presets, place, name and orientation they look like the copy.
    void areTheCopies()
    {
        for (const int side : {400, 200}) {
            Scene f(1);
            ImageObject &photo = *f.list.front();
            photo.setPathToImportFrom(photo.path());
            f.thumbnails.setWanted({f.list, {}, side});
            QCOMPARE(f.shown(), pixelsOf(photo.thumbnail()).mirrored());
            const QList<std::function<void()>> changes{
                [&] { f.thumbnails.setPresets(f.presets); },
                [&] {
                    f.presets.front().values.opacity = 60;
                    f.thumbnails.setPresets(f.presets);
                },
                [&] {
                    photo.setCustomWatermarkRectOrigin({15, 250}, f.presets[0].preset);
                },
                [&] { photo.setFilename(u"another"_qs); },
                [&] {
                    photo.transformOriginalImageWithOperation(ImageTransform::RotateClockwise);
                    f.thumbnails.outdate(&photo);
                },
                [&] { photo.resetAllCustomWatermarkRectOrigins(); },
            };
            for (qsizetype i = 0; i < changes.size(); ++i) {
                const QImage former = f.shown();
                changes[i]();
                if (i > 0)
                    QCOMPARE(f.shown(), former); // until the new one is there
                QVERIFY(f.isIdleSoon());
                const QImage copy = f.copy();
                QCOMPARE(std::max(copy.width(), copy.height()), side);
                const double mean = differenceOf(f.shown(), copy).mean;
                QVERIFY2(mean < 3, qPrintable(u"%1 after %2"_qs.arg(mean).arg(i)));
                const QImage bare =
                    resampled(pixelsOf(photo.thumbnail()).mirrored(), copy.size(), Quality::High);
                QVERIFY(mean * 1.5 < differenceOf(bare, copy).mean);
            }
            f.thumbnails.setPresets({});
            QCOMPARE(f.shown(), pixelsOf(photo.thumbnail()).mirrored());
        }
    }

    /// The visible ones are drawn first, the others while nothing changes and as far as memory allows.
    void visibleFirst()
    {
        Scene f(12);
        const ImageList visible(f.list.begin() + 4, f.list.begin() + 8);
        ImageList others(f.list.begin() + 8, f.list.end());
        others.insert(others.end(), f.list.begin(), f.list.begin() + 4);
        f.thumbnails.setPresets(f.presets);
        f.thumbnails.setWanted({visible, others, 400});
        QVERIFY(f.isIdleSoon());
        QCOMPARE(f.changes.size(), 12);
        std::sort(f.changes.begin(), f.changes.begin() + 4);
        QCOMPARE(f.changes.mid(0, 4), (QList<int>{4, 5, 6, 7}));
        QVERIFY(f.thumbnails.thumbnail(*f.list[0]) != f.list[0]->thumbnail());

        f.thumbnails.setWanted({visible, others, 5000});
        QCOMPARE(f.thumbnails.thumbnail(*f.list[0]), f.list[0]->thumbnail());

        // Of many changes the last one counts, and all visible photos follow them meanwhile.
        QVERIFY(f.isIdleSoon());
        f.changes.clear();
        for (int i = 0; i < 100; ++i) {
            f.presets.front().values.opacity = float(i);
            f.thumbnails.setPresets(f.presets);
        }
        QVERIFY(f.isIdleSoon());
        QCOMPARE(f.changes.size(), 4);
        f.presets.front().values.opacity = 99;
        const QImage last = f.shown(5);
        f.presets.front().values.opacity = 98;
        f.thumbnails.setPresets(f.presets);
        f.presets.front().values.opacity = 99;
        f.thumbnails.setPresets(f.presets);
        QVERIFY(f.isIdleSoon());
        QCOMPARE(f.shown(5), last);
    }

    /// Small ones of photos that were not loaded; only those that are visible.
    void loadsPhotos()
    {
        Scene f(3, Thumbnails::Photos::LoadedForThis);
        f.list.push_back(std::make_shared<ImageObject>(f.work.brokenPhoto(u"broken.png"_qs), f.work.photos));
        f.thumbnails.setWanted({{f.list[0], f.list[3]}, {f.list[1]}, 40});
        QVERIFY(f.thumbnails.thumbnail(*f.list[0]).isNull());
        QVERIFY(f.isIdleSoon());
        QCOMPARE(f.shown(0).size(), QSize(50, 33));
        QVERIFY(f.thumbnails.thumbnail(*f.list[3]).isNull());
        QVERIFY(!f.list[1]->isLoaded() && !f.list[2]->isLoaded());
        f.list[0]->releaseThumbnail();
        QCOMPARE(f.shown(0).size(), QSize(50, 33));
    }

    void destroyedMeanwhile()
    {
        auto f = std::make_unique<Scene>(20);
        f->thumbnails.setWanted({f->list, {}, 400});
        f->thumbnails.setPresets(f->presets);
        QTRY_VERIFY(!f->changes.isEmpty());
        f->list.clear();
        f->thumbnails.setWanted({});
        f.reset();
        QCoreApplication::processEvents();
    }
};

QTEST_MAIN(ThumbnailsTest)
#include "thumbnails_test.moc"
