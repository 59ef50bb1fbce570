// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/presetpictures.h"
#include "app/workingset.h"
#include "raster/resampling.h"
#include "support/picturedifference.h"

using namespace plexa;
using namespace plexa::test;

namespace
{

constexpr QSize kRoom(120, 80);

/// Two presets on one photo.
struct Scene {
    Scene()
    {
        const QString path = work.photo("photo.png", {1, 1});
        smoothPicture({600, 400}).save(path);
        photo = std::make_shared<ImageObject>(path, work.photos);
        photo->loadImageFromDisk();
        for (const float angle : {10.0F, 30.0F}) {
            WPresetValues values = WPresetValues::forNewPreset(work.fonts);
            values.textTokens = {u"Proof "_qs, u"filename"_qs};
            values.width = 96;
            values.fontSize = 24;
            values.anchorPoint = 4;
            values.angle = angle;
            presets.push_back(std::make_shared<WPreset>(values));
        }
        pictures.setRoom(kRoom);
        pictures.setPhoto(photo);
        isIdleSoon();
    }

    bool isIdleSoon()
    {
        return QTest::qWaitFor([this] { return pictures.isIdle(); }, 20'000);
    }
    /// As a list paints it: asked for, drawn, asked for again.
    QImage drawn(int preset)
    {
        pictures.picture(presets[std::size_t(preset)]);
        return isIdleSoon() ? pixelsOf(pictures.picture(presets[std::size_t(preset)])) : QImage();
    }
    /// A part of the photo with its watermark at full size, reduced.
    QImage expected(int preset, QRect part = {0, 0, 600, 400})
    {
        const auto &one = presets[std::size_t(preset)];
        const auto full = photo->createWatermarkedImage({one, one->values()});
        return resampled(pixelsOf(full->copy(part)), kRoom, Quality::High);
    }

    WorkingSet work;
    std::shared_ptr<ImageObject> photo;
    WPresetList presets;
    PresetPictures pictures{work.photos};
};

} // namespace

class PresetPicturesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Each looks like its own copy of the photo, after each change.
    void areReducedCopies()
    {
        Scene f;
        const QList<std::function<void()>> changes{
            [] {},
            [&] { f.presets[1]->setTextTokens({u"Other text"_qs}); },
            [&] {
                f.photo->setCustomWatermarkRectOrigin({4, 100}, f.presets[1]);
            },
            [&] { f.photo->setFilename(u"renamed"_qs); },
        };
        for (qsizetype i = 0; i < changes.size(); ++i) {
            const QImage former = f.pictures.picture(f.presets[1]);
            changes[i]();
            QCOMPARE(f.pictures.picture(f.presets[1]), former); // until the new one is there
            for (const int preset : {0, 1}) {
                const double own = differenceOf(f.drawn(preset), f.expected(preset)).mean;
                const double other = differenceOf(f.drawn(preset), f.expected(1 - preset)).mean;
                QVERIFY2(own < 4 && own * 1.5 < other,
                         qPrintable(u"%1: %2, %3 after %4"_qs.arg(preset).arg(own).arg(other).arg(i)));
            }
        }
        f.photo->transformOriginalImageWithOperation(ImageTransform::RotateClockwise);
        f.pictures.outdatePhoto();
        QCOMPARE(f.drawn(0).size(), QSize(53, 80));
    }

    /// A small watermark is shown with what is around it.
    void showsSmallMarksLarge()
    {
        Scene f;
        f.presets[0]->setTextTokens({u"X"_qs});
        f.presets[0]->setAngle(0.0F);
        f.presets[0]->setWidth(10);
        f.presets[0]->setFontSize(5);
        f.presets[0]->setAnchorPoint(8);
        const QRect corner(390, 260, 210, 140); // a third of the photo
        QVERIFY(differenceOf(f.drawn(0), f.expected(0, corner)).mean < 6);
        QVERIFY(differenceOf(f.drawn(0), f.expected(0)).mean > 12);
        f.presets[0]->setAnchorPoint(0);
        QVERIFY(differenceOf(f.drawn(0), f.expected(0, {0, 0, 210, 140})).mean < 6);
        f.presets[0]->setWidth(100); // of the box: the text is at its right
        f.presets[0]->setTextAlignment(2);
        QVERIFY(differenceOf(f.drawn(0), f.expected(0, {255, 0, 345, 230})).mean < 6);
        f.presets[0]->setWidth(10);
        f.presets[0]->setReplicateHorizontal(true);
        QVERIFY(differenceOf(f.drawn(0), f.expected(0, {0, 0, 360, 240})).mean < 6);
    }

    /// Only what is asked for is drawn, and of several changes the last.
    void drawsWhatIsAskedFor()
    {
        Scene f;
        int changes = 0;
        QObject::connect(&f.pictures, &PresetPictures::changed, &f.pictures, [&] { ++changes; });
        f.drawn(0);
        QCOMPARE(changes, 1);
        for (int i = 0; i < 50; ++i)
            f.presets[0]->setOpacity(20 + i);
        QVERIFY(f.isIdleSoon());
        QCOMPARE(changes, 51); // who shows it was told, and did not ask
        f.drawn(0);
        QCOMPARE(changes, 52);
        f.pictures.setPhoto(nullptr); // a plain ground
        const QImage plain = f.drawn(0);
        QCOMPARE(plain.size(), kRoom);
        QVERIFY(plain != f.drawn(1));
    }

    /// A preset that is deleted while it is drawn, and more than are kept.
    void survives()
    {
        Scene f;
        f.pictures.picture(f.presets[0]);
        f.presets.erase(f.presets.begin());
        QVERIFY(f.isIdleSoon());
        WPresetList many;
        for (int i = 0; i < 400; ++i) {
            many.push_back(namedPreset(u"one"_qs));
            f.pictures.picture(many.back());
        }
        many.erase(many.begin(), many.begin() + 200);
        f.pictures.setPhoto(nullptr);
        QVERIFY(f.isIdleSoon());
        QVERIFY(!f.drawn(0).isNull());
    }
};

QTEST_MAIN(PresetPicturesTest)
#include "presetpictures_test.moc"
