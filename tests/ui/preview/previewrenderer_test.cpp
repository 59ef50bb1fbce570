// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/picturedifference.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"
#include "support/testservices.h"
#include "ui/preview/previewrenderer.h"
#include "watermark/watermarkpicture.h"

#include <QSignalSpy>
#include <QTest>

using namespace plexa;
using namespace plexa::test;

namespace
{

using Change = std::function<void(WPresetValues &)>;
using Pictures = std::vector<PreviewPicture>;

constexpr QSize kPhoto(2400, 1600);

AppliedPreset textPreset(const FontCatalog &fonts, const Change &change)
{
    WPresetValues values = WPresetValues::forNewPreset(fonts);
    values.textTokens = {QStringLiteral("Proof 42")};
    values.width = 60;
    values.fontSize = 20;
    values.anchorPoint = 4;
    change(values);
    return {std::make_shared<WPreset>(values), values};
}

/// A photo on the disk, and the renderer.
struct Scene {
    explicit Scene(QSize size = kPhoto)
        : photo(written(size), services.all)
    {
        QObject::connect(&renderer, &PreviewRenderer::rendered, &renderer,
                         [this](const PreviewPicture &picture) { pictures.push_back(picture); });
        photo.loadImageFromDisk();
        request.photo = std::shared_ptr<ImageObject>(std::shared_ptr<void>(), &photo);
        request.photoVersion = 1;
    }

    QString written(QSize size)
    {
        smoothPicture(size).save(folder.path("photo.png"));
        return folder.path("photo.png");
    }

    PreviewPicture drawn(QSize layer, const QRect &part)
    {
        request.layer = layer;
        request.part = part;
        renderer.request(request);
        if (!QTest::qWaitFor([&] { return !renderer.isBusy(); }))
            return {};
        return pictures.back();
    }

    TestFolder folder;
    TestPhotoServices services;
    ImageObject photo;
    PreviewRenderer renderer{services.fonts};
    PreviewRequest request;
    Pictures pictures;
};

} // namespace

class PreviewRendererTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// While a watermark is dragged, it is the one that is saved there.
    void drag()
    {
        Scene scene;
        scene.request.presets = {textPreset(scene.services.fonts, [](WPresetValues &) {})};
        const QRect whole(0, 0, 600, 400);
        const QImage before = scene.drawn(whole.size(), whole).image;
        scene.request.draggedTo = QPointF(600, 700);
        const PreviewPicture dragged = scene.drawn(whole.size(), whole);
        QCOMPARE(dragged.watermarkRect->topLeft(), QPointF(600, 700));
        QVERIFY(dragged.image != before);
        scene.request.draggedTo.reset();
        scene.photo.setCustomWatermarkRectOrigin({600, 700}, scene.request.presets.front().preset);
        QCOMPARE(scene.drawn(whole.size(), whole).image, dragged.image);
        scene.photo.resetAllCustomWatermarkRectOrigins();
        QCOMPARE(scene.drawn(whole.size(), whole).image, before);
    }

    /// The thumbnail is shown first; of requests that wait, the newest is drawn; a photo that is no longer
    /// wanted is never shown.
    void newestWins()
    {
        Scene scene;
        scene.request.presets = {textPreset(scene.services.fonts, [](WPresetValues &) {})};
        const QRect whole(0, 0, 600, 400);
        scene.drawn(whole.size(), whole);
        QCOMPARE(scene.pictures.size(), 2);
        QVERIFY(scene.pictures[0].isPlaceholder && !scene.pictures[1].isPlaceholder);
        QVERIFY(meanDifference(scene.pictures[0].image, scene.pictures[1].image) < 5);

        scene.pictures.clear();
        for (int x = 0; x < 50; ++x) {
            scene.request.draggedTo = QPointF(x, 0);
            scene.renderer.request(scene.request);
        }
        scene.drawn(whole.size(), whole);
        QVERIFY(scene.pictures.size() <= 3);
        QCOMPARE(scene.pictures.back().watermarkRect->x(), 49.0);

        scene.pictures.clear();
        scene.renderer.request(scene.request);
        scene.renderer.cancel();
        QVERIFY(QTest::qWaitFor([&] { return !scene.renderer.isBusy(); }));
        QVERIFY(scene.pictures.empty());
    }

    /// A pass over all pixels that a newer request cancels shows nothing, and the photo stays decoded.
    void passOverAllPixelsIsCanceled()
    {
        Scene scene;
        scene.request.presets = {textPreset(scene.services.fonts, [](WPresetValues &) {})};
        const QRect whole(0, 0, 600, 400);
        scene.drawn(whole.size(), whole);
        scene.pictures.clear();
        for (int i = 0; i < 5; ++i) {
            scene.request.presets.front().values.opacity = 90 - i;
            scene.request.quality = PreviewRequest::Quality::Full;
            scene.renderer.request(scene.request);
            QTest::qWait(5 * i);
            scene.request.quality = PreviewRequest::Quality::Screen;
            scene.drawn(whole.size(), whole);
        }
        QVERIFY(scene.pictures.size() >= 5);
        for (const PreviewPicture &picture : scene.pictures)
            QVERIFY(!picture.isPlaceholder && picture.watermarkRect && picture.messages.isEmpty());
    }

    void tallPhoto()
    {
        Scene scene({41, 2000});
        scene.request.presets = {textPreset(scene.services.fonts, [](WPresetValues &v) {
            v.type = QStringLiteral("Image");
            v.image = WatermarkPicture::fromImage(flatPicture({8, 8}, Qt::red));
            v.width = 100;
            v.anchorPoint = 7; // at the bottom
            v.offsetVertical = v.offsetHorizontal = 0;
        })};
        const QImage image = scene.drawn({6, 300}, {0, 0, 6, 300}).image;
        QVERIFY(image.pixelColor(2, 298).red() > 200 && image.pixelColor(2, 298).green() < 80);
    }

    void failures()
    {
        Scene scene;
        QFile::remove(scene.folder.path("photo.png"));
        const PreviewPicture picture = scene.drawn({600, 400}, {0, 0, 600, 400});
        QVERIFY(picture.image.isNull());
        QCOMPARE(picture.messages.size(), 1);
    }
};

QTEST_MAIN(PreviewRendererTest)
#include "previewrenderer_test.moc"
