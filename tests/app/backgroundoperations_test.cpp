// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appcontroller.h"
#include "app/batchsave.h"
#include "app/workingset.h"

#include <QSignalSpy>

#include <thread>

using namespace plexa;
using namespace plexa::test;

using enum StatusOperation;

using Operations = QList<QPair<StatusOperation, float>>;

class BackgroundOperationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_work = std::make_unique<WorkingSet>();
        m_work->defaults.setObject(settings::lastUsedMode, 1);
        m_app = std::make_unique<AppController>(
            AppController::Services{m_work->photos, m_work->defaults, m_work->alerts, m_work->store, 2});
        m_app->imageSet().setImageListModeToBrowser(false);
    }

    void cleanup()
    {
        QCOMPARE(m_work->alerts.complaints(), QStringList());
        m_app.reset();
        m_work.reset();
    }

    void statusLine_data()
    {
        QTest::addColumn<Operations>("operations");
        QTest::addColumn<QString>("text");
        QTest::addColumn<StatusLine::Bar>("bar");
        QTest::addColumn<float>("fraction");
        using enum StatusLine::Bar;
        QTest::newRow("idle") << Operations() << "2 out of 3 images (1 selected)" << Hidden << 0.0F;
        QTest::newRow("counting") << Operations{{Counting, 12.9F}} << "Counting images to import (12)..."
                                  << Busy << 0.0F;
        QTest::newRow("the first one has the bar")
            << Operations{{Importing, 0.25F}, {Pasting, 0.75F}}
            << "Importing images & Pasting configuration..." << Fraction << 0.25F;
        QTest::newRow("three") << Operations{{Rotating, 0.5F}, {Counting, 3}, {Processing, 0}}
                               << "Rotating images & Counting images to import (3) & Processing images..."
                               << Fraction << 0.5F;
    }

    void statusLine()
    {
        QFETCH(Operations, operations);
        const auto image = std::make_shared<ImageObject>(QString(), m_work->photos);
        StatusManager status;
        QCOMPARE(status.line().text, QStringLiteral("No images"));
        status.setImages(std::make_shared<ImageList>(ImageList{image, image, image}),
                         std::make_shared<ImageList>(ImageList{image, image}), 1);
        for (const auto &[operation, progress] : operations) {
            status.startOperation(operation);
            QVERIFY(status.setProgress(progress, operation));
            status.startOperation(operation); // no second entry
        }
        const QSignalSpy changes(&status, &StatusManager::lineChanged);
        QTRY_COMPARE(changes.size(), 1); // many changes are one
        QTEST(status.line().text, "text");
        QTEST(status.line().bar, "bar");
        QTEST(status.line().fraction, "fraction");
        QCOMPARE(status.line().canBeStopped, !operations.isEmpty());
    }

    void statusOperations()
    {
        StatusManager status;
        QVERIFY(!status.endOperation(Importing));
        QVERIFY(!status.setProgress(0.5F, Importing));
        status.startOperation(Importing);
        QTRY_VERIFY(status.line().canBeStopped);
        QVERIFY(status.endOperation(Importing));
        QVERIFY(!status.endOperation(Importing));
        QTRY_VERIFY(!status.line().canBeStopped);
    }

    void turnsWhatIsFreeFirst()
    {
        addPhotos({{40, 20}, {41, 21}, {42, 22}});
        m_app->imageSet().addImage(m_work->brokenPhoto(QStringLiteral("broken.png")), {});
        m_app->imageSet().selection().selectAll();
        QVERIFY(photo(1).loadImageFromDisk());
        photo(0).lock(); // not loaded: nobody may wait for that either
        photo(1).lock();
        QSignalSpy outdated(m_app.get(), &AppController::imageOutdated);
        m_app->startBatchOperation(ImageTransform::RotateClockwise);
        QVERIFY(isRunning());
        m_app->startBatchOperation(ImageTransform::RotateClockwise); // one at a time
        QTRY_COMPARE(outdated.size(), 2);
        QCOMPARE(photo(2).pixelSize(), QSize(22, 42));
        QCOMPARE(photo(1).pixelSize(), QSize(41, 21));
        QTRY_COMPARE(m_app->statusManager().line().fraction, 0.5F);
        QVERIFY(isRunning());
        photo(1).unlock();
        photo(0).unlock();
        QTRY_VERIFY(!isRunning());
        QCOMPARE(outdated.size(), 4);
        QCOMPARE(photo(0).pixelSize(), QSize(20, 40));
        QCOMPARE(photo(1).pixelSize(), QSize(21, 41));
        QTRY_COMPARE(m_app->statusManager().line().text, QStringLiteral("4 images (4 selected)"));
    }

    void stopsTurning()
    {
        addPhotos({{40, 20}, {42, 22}});
        photo(0).lock();
        m_app->startBatchOperation(ImageTransform::RotateClockwise);
        QTRY_VERIFY(photo(1).pixelSize() == QSize(22, 42));
        m_app->stopAllOperations();
        QTRY_VERIFY(!isRunning());
        photo(0).unlock();
        QTRY_VERIFY(!m_app->statusManager().line().canBeStopped);
        QCOMPARE(photo(0).originalImageSize(), QSize(40, 20));
        QCOMPARE(photo(1).originalImageSize(), QSize(22, 42));

        // With nothing selected it is over at once.
        m_app->imageSet().selection().selectNone();
        m_app->startBatchOperation(ImageTransform::RotateHalf);
        QTRY_VERIFY(!isRunning());
    }

    /// A turn forgets the places chosen by hand, in every photo of the batch and however often.
    void turnsAllTheWaysThatExist()
    {
        addPhotos(QList<QSize>(12, {30, 20}));
        const auto preset = newPreset(QStringLiteral("p"));
        for (const auto transform :
             {ImageTransform::RotateClockwise, ImageTransform::MirrorTopBottom, ImageTransform::RotateHalf,
              ImageTransform::MirrorLeftRight, ImageTransform::RotateCounterClockwise}) {
            for (std::size_t i = 0; i < 12; ++i)
                photo(i).setCustomWatermarkRectOrigin({1, 2}, preset);
            m_app->startBatchOperation(transform);
            QTRY_VERIFY(!isRunning());
            for (std::size_t i = 0; i < 12; ++i)
                QVERIFY(!photo(i).customWatermarkRectOriginForWPreset(preset.get()));
        }
        // Clockwise and back with a half turn and both mirrors between: nothing is left of it.
        QCOMPARE(photo(5).pixelSize(), QSize(30, 20));
    }

    /// A save releases photos of a long list while they are being turned: that must end.
    void turnsWhatIsBeingReleased()
    {
        addPhotos(QList<QSize>(12, {30, 20}));
        const ImageList images = *m_app->imageSet().images();
        const std::jthread save([&images](const std::stop_token &stop) {
            for (std::size_t i = 0; !stop.stop_requested(); ++i) {
                images[i % images.size()]->releaseImagesData();
                images[(i + 6) % images.size()]->releaseThumbnail();
            }
        });
        for (int i = 0; i < 5; ++i) {
            m_app->startBatchOperation(ImageTransform::RotateClockwise);
            QTRY_VERIFY_WITH_TIMEOUT(!isRunning(), 30'000);
        }
    }

    /// In Large Batch mode the memory does not depend on how many photos were turned or looked at. Back in
    /// Small Batch mode the thumbnails are made anew, and turns and edits are still there.
    void keepsNoThumbnailsOfALongList()
    {
        addPhotos({{40, 20}, {42, 22}, {44, 24}});
        ImageSet &set = m_app->imageSet();
        m_app->startBatchOperation(ImageTransform::RotateClockwise);
        QTRY_VERIFY(!isRunning());
        for (const int index : {0, 1, 2}) {
            set.selection().selectIndexes({index});
            QTRY_VERIFY(set.shownImage() == (*set.images())[static_cast<std::size_t>(index)]);
        }
        QVERIFY(photo(0).thumbnail().isNull() && photo(1).thumbnail().isNull());
        QCOMPARE(photo(2).thumbnail().size(), QSize(24, 44));
        QCOMPARE(photo(0).pixelSize(), QSize(20, 40));
        ImageMetadata edited = *photo(0).metadata();
        edited.setIptcCreator(QStringLiteral("somebody"));
        photo(0).setMetadata(edited);

        set.setImageListModeToBrowser(true);
        QTRY_VERIFY(!m_app->gathering().isImportingImages());
        QCOMPARE(photo(0).thumbnail().size(), QSize(20, 40));
        QCOMPARE(photo(0).originalCGImage().size(), QSize(20, 40));
        QCOMPARE(photo(0).metadata()->iptcCreator().toString(), QStringLiteral("somebody"));
    }

    void pastesRelativePositions()
    {
        addPhotos({{1000, 500}, {2000, 1000}, {300, 400}});
        const WPresetList presets{newPreset(QStringLiteral("a")), newPreset(QStringLiteral("b")),
                                  newPreset(QStringLiteral("c"))};
        m_app->appliedPresets().addWPresetsToApplied(presets);
        photo(0).setCustomWatermarkRectOrigin({250, 100}, presets[0]);
        photo(0).setCustomWatermarkRectOrigin({500, -50}, presets[1]);
        photo(1).setCustomWatermarkRectOrigin({1, 1}, presets[2]);
        ImageSelection &selection = m_app->imageSet().selection();

        m_app->pasteManualPositioning(); // nothing copied yet
        QVERIFY(!m_app->manualPositions().isPasting());
        selection.selectIndexes({0});
        QVERIFY(m_app->commandState().canCopyForAllPresets && !m_app->commandState().canCopyForCurrentPreset);
        m_app->copyManualPositioning(AppController::Presets::All);
        selection.selectIndexes({1, 2});
        QVERIFY(m_app->commandState().hasCopiedPositions);
        const QSignalSpy previews(m_app.get(), &AppController::previewOutdated);
        m_app->pasteManualPositioning();
        QTRY_VERIFY(!m_app->manualPositions().isPasting());
        QVERIFY(!previews.isEmpty());
        const auto at = [&](std::size_t image, std::size_t preset) {
            return photo(image).customWatermarkRectOriginForWPreset(presets[preset].get());
        };
        QCOMPARE(at(1, 0), QPointF(500, 200));
        QCOMPARE(at(1, 1), QPointF(1000, -100));
        QCOMPARE(at(1, 2), std::nullopt); // what stood there is gone
        QCOMPARE(at(2, 0), QPointF(75, 80));
        QVERIFY(!photo(2).imageHasBeenLoaded()); // its size needs no pixels

        m_app->resetManualPositioning(AppController::Presets::All);
        QCOMPARE(at(2, 0), std::nullopt);
        QCOMPARE(at(0, 0), QPointF(250, 100)); // not selected
    }

    void pastesTheCurrentPreset()
    {
        addPhotos({{100, 100}, {200, 50}});
        const WPresetList presets{newPreset(QStringLiteral("a")), newPreset(QStringLiteral("b"))};
        AppliedPresets &applied = m_app->appliedPresets();
        applied.addWPresetsToApplied(presets);
        applied.selectRows({1});
        photo(0).setCustomWatermarkRectOrigin({10, 20}, presets[1]);
        photo(1).setCustomWatermarkRectOrigin({7, 7}, presets[0]);
        ImageSelection &selection = m_app->imageSet().selection();
        selection.selectIndexes({0});
        m_app->copyManualPositioning(AppController::Presets::All);
        m_app->copyManualPositioning(AppController::Presets::Current); // takes the other copy's place
        // The preset that is current when it is pasted gets the place; other presets keep theirs.
        selection.selectIndexes({1});
        m_app->pasteManualPositioning();
        applied.selectRows({0});
        QTRY_VERIFY(!m_app->manualPositions().isPasting());
        QCOMPARE(photo(1).customWatermarkRectOriginForWPreset(presets[1].get()), QPointF(20, 10));
        QCOMPARE(photo(1).customWatermarkRectOriginForWPreset(presets[0].get()), QPointF(7, 7));

        m_app->resetManualPositioning(AppController::Presets::Current);
        QVERIFY(!photo(1).customWatermarkRectOriginForWPreset(presets[0].get()));
        QVERIFY(photo(1).customWatermarkRectOriginForWPreset(presets[1].get()));
    }

    void pastesOntoALockedPhoto()
    {
        addPhotos({{100, 100}, {100, 100}, {100, 100}});
        const auto preset = newPreset(QStringLiteral("a"));
        m_app->appliedPresets().addWPresetsToApplied({preset});
        photo(0).setCustomWatermarkRectOrigin({10, 20}, preset);
        m_app->imageSet().selection().selectIndexes({0});
        m_app->copyManualPositioning(AppController::Presets::All);
        const auto has = [&](std::size_t image) {
            return photo(image).customWatermarkRectOriginForWPreset(preset.get()).has_value();
        };

        photo(1).lock();
        m_app->imageSet().selection().selectIndexes({1, 2});
        m_app->pasteManualPositioning();
        QTRY_VERIFY(has(2));
        QVERIFY(m_app->manualPositions().isPasting() && !has(1));
        photo(1).unlock();
        QTRY_VERIFY(!m_app->manualPositions().isPasting());
        QVERIFY(has(1));

        // What waits behind a pasting that is stopped does not begin.
        m_app->resetManualPositioning(AppController::Presets::All);
        photo(1).lock();
        m_app->imageSet().selection().selectIndexes({1});
        m_app->pasteManualPositioning();
        m_app->imageSet().selection().selectIndexes({2});
        m_app->pasteManualPositioning();
        m_app->stopAllOperations();
        QTRY_VERIFY(!m_app->manualPositions().isPasting());
        photo(1).unlock();
        QVERIFY(!has(1) && !has(2));
        QTRY_VERIFY(!m_app->statusManager().line().canBeStopped);
    }

    void copiesOnlyFromOnePhoto()
    {
        addPhotos({{100, 100}, {100, 100}});
        const auto preset = newPreset(QStringLiteral("a"));
        m_app->appliedPresets().addWPresetsToApplied({preset});
        photo(0).setCustomWatermarkRectOrigin({10, 20}, preset);
        m_app->copyManualPositioning(AppController::Presets::All); // two are selected
        QVERIFY(!m_app->manualPositions().hasCopy());
        m_app->imageSet().selection().selectIndexes({0});
        m_app->copyManualPositioning(AppController::Presets::All);
        QVERIFY(m_app->manualPositions().hasCopy());
        m_app->imageSet().selection().selectIndexes({1});
        m_app->copyManualPositioning(
            AppController::Presets::Current); // has none, and forgets the former copy
        QVERIFY(!m_app->manualPositions().hasCopy());
    }

    void savesMeanwhile()
    {
        addPhotos({{640, 480}, {480, 640}, {640, 480}});
        const QString folder = m_work->folder.path(QStringLiteral("copies"));
        QVERIFY(QDir().mkpath(folder));
        m_work->defaults.setObject(settings::saveAllToOneDirectory, true);
        m_work->defaults.setObject(settings::savingDirectory, folder);
        const auto preset = newPreset(QStringLiteral("mark"));
        preset->setType(QStringLiteral("Image"));
        QImage logo(20, 20, QImage::Format_RGB32);
        logo.fill(Qt::red);
        preset->setImage(WatermarkPicture::fromImage(logo));
        m_app->appliedPresets().addWPresetsToApplied({preset});
        BatchSave::Order order;
        order.photos = *m_app->imageSet().images();
        order.defaultSavingPreset.filenameTokens = {QStringLiteral("filename")};
        BatchSave save({m_app->statusManager(), m_work->alerts, m_work->defaults, 2});
        QVERIFY(!save.start(order)); // without a watermark
        order.effectivePresets = m_app->appliedPresets().effectivePresetsNow();

        // A photo that has gone is told of at the end; the others are there.
        QVERIFY(QFile::remove(order.photos[1]->path()));
        m_work->alerts.expect(QStringLiteral("Failed to save 1 image(s)!"));
        QSignalSpy finished(&save, &BatchSave::finished);
        QVERIFY(save.start(order));
        QVERIFY(save.isSavingInProgress());
        QVERIFY(!save.start(order));
        QTRY_COMPARE(m_app->statusManager().line().text, QStringLiteral("Processing images..."));
        QVERIFY(finished.wait());
        QVERIFY(!save.isSavingInProgress());
        QCOMPARE(QDir(folder).entryList(QDir::Files),
                 (QStringList{QStringLiteral("0.jpg"), QStringLiteral("2.jpg")}));

        // Destroyed in the middle, it leaves whole files.
        QVERIFY(QDir(folder).removeRecursively() && QDir().mkpath(folder));
        {
            BatchSave other({m_app->statusManager(), m_work->alerts, m_work->defaults, 2});
            order.photos.erase(order.photos.begin() + 1);
            QVERIFY(other.start(order));
        }
        for (const QString &name : QDir(folder).entryList(QDir::Files | QDir::Hidden))
            QVERIFY2(!QImage(folder + QLatin1Char('/') + name).isNull(), qPrintable(name));
    }

    void destroyedMeanwhile()
    {
        addPhotos(QList<QSize>(30, {400, 300}));
        const auto preset = newPreset(QStringLiteral("a"));
        m_app->appliedPresets().addWPresetsToApplied({preset});
        photo(0).setCustomWatermarkRectOrigin({10, 20}, preset);
        m_app->manualPositions().copyForPresets(photo(0), {preset});
        m_app->startBatchOperation(ImageTransform::RotateClockwise);
        m_app->pasteManualPositioning();
        m_app.reset();
        QCoreApplication::processEvents();
    }

private:
    /// Adds photos of these sizes, in Large Batch mode so that none is loaded, and selects all of them.
    void addPhotos(const QList<QSize> &sizes)
    {
        ImageSet &set = m_app->imageSet();
        for (const QSize &size : sizes)
            set.addImage(m_work->photo(QStringLiteral("%1.png").arg(set.images()->size()), size), {});
        IndexList all;
        for (int i = 0; i < sizes.size(); ++i)
            all.append(i);
        set.selection().select(all, ImageSelection::kNone);
    }

    ImageObject &photo(std::size_t index) { return *(*m_app->imageSet().images())[index]; }
    std::shared_ptr<WPreset> newPreset(const QString &name)
    {
        auto preset = std::make_shared<WPreset>(m_work->fonts);
        preset->setName(name);
        return preset;
    }

    bool isRunning() const { return m_app->commandState().hasCurrentBatchOperation; }

    std::unique_ptr<WorkingSet> m_work;
    std::unique_ptr<AppController> m_app;
};

QTEST_GUILESS_MAIN(BackgroundOperationsTest)
#include "backgroundoperations_test.moc"
