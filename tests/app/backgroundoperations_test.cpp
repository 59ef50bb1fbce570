// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appcontroller.h"
#include "app/batchsave.h"
#include "app/workingset.h"

#include <QSignalSpy>

using namespace plexa;
using namespace plexa::test;

using enum StatusOperation;

namespace
{

} // namespace

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

    void statusLine()
    {
        using enum StatusLine::Bar;
        using Row = std::tuple<QList<QPair<StatusOperation, float>>, Text, StatusLine::Bar, float>;
        for (const auto &[operations, text, bar, fraction] :
             std::initializer_list<Row>{{{}, "2 out of 3 images (1 selected)", Hidden, 0},
                                        {{{Counting, 12.9F}}, "Counting images to import (12)...", Busy, 0},
                                        {{{Importing, 0.25F}, {Pasting, 0.75F}},
                                         "Importing images & Pasting configuration...",
                                         Fraction,
                                         0.25F}}) {
            const auto image = std::make_shared<ImageObject>(QString(), m_work->photos);
            StatusManager status;
            QCOMPARE(status.line().text, u"No images"_qs);
            status.setImages(std::make_shared<ImageList>(ImageList{image, image, image}),
                             std::make_shared<ImageList>(ImageList{image, image}), 1);
            for (const auto &[operation, progress] : operations) {
                QVERIFY(!status.setProgress(progress, operation));
                status.startOperation(operation);
                QVERIFY(status.setProgress(progress, operation));
                status.startOperation(operation); // no second entry
            }
            const QSignalSpy changes(&status, &StatusManager::lineChanged);
            QTRY_COMPARE(changes.size(), 1); // many changes are one
            QCOMPARE(status.line().text, text);
            QCOMPARE(status.line().bar, bar);
            QCOMPARE(status.line().fraction, fraction);
            QCOMPARE(status.line().canBeStopped, !operations.isEmpty());
            for (const auto &[operation, progress] : operations)
                QVERIFY(status.endOperation(operation) && !status.endOperation(operation));
            QTRY_VERIFY(!status.line().canBeStopped);
        }
    }

    void severalSavesAreOneOperation()
    {
        StatusManager status;
        status.startProcessing();
        status.startProcessing();
        status.endProcessing();
        QTRY_COMPARE(status.line().text, u"Processing images..."_qs);
        status.endProcessing();
        QTRY_COMPARE(status.line().text, u"No images"_qs);
    }

    void rotatesFreePhotosFirst()
    {
        addPhotos({{40, 20}, {41, 21}, {42, 22}});
        m_app->imageSet().addImage(m_work->brokenPhoto(u"broken.png"_qs), {});
        m_app->imageSet().selection().selectAll();
        QVERIFY(photo(1).loadImageFromDisk());
        photo(0).lock(); // not loaded: no thread may wait for that either
        photo(1).lock();
        QSignalSpy outdated(m_app.get(), &AppController::imageOutdated);
        m_app->startBatchOperation(ImageTransform::RotateClockwise);
        QVERIFY(isRunning());
        m_app->startBatchOperation(ImageTransform::RotateClockwise); // one at a time
        QTRY_COMPARE(outdated.size(), 2);
        QCOMPARE(photo(2).readFacts()->pixelSize(), QSize(22, 42));
        QCOMPARE(photo(1).readFacts()->pixelSize(), QSize(41, 21));
        QTRY_COMPARE(m_app->statusManager().line().fraction, 0.5F);
        QVERIFY(isRunning());
        photo(1).unlock();
        photo(0).unlock();
        QTRY_VERIFY(!isRunning());
        QCOMPARE(outdated.size(), 4);
        QCOMPARE(photo(0).readFacts()->pixelSize(), QSize(20, 40));
        QCOMPARE(photo(1).readFacts()->pixelSize(), QSize(21, 41));
        QTRY_COMPARE(m_app->statusManager().line().text, u"4 images (4 selected)"_qs);

        // With nothing selected the operation ends at once.
        m_app->imageSet().selection().selectNone();
        m_app->startBatchOperation(ImageTransform::RotateHalf);
        QTRY_VERIFY(!isRunning());
    }

    /// In Large Batch mode the memory does not depend on how many photos were rotated or shown. Back in Small
    /// Batch mode the thumbnails are created again, and rotations and edits are kept.
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
        QCOMPARE(photo(0).readFacts()->pixelSize(), QSize(20, 40));
        ImageMetadata edited = *photo(0).metadata();
        edited.setIptcCreator(u"somebody"_qs);
        photo(0).setMetadata(edited);

        set.setImageListModeToBrowser(true);
        QTRY_VERIFY(!m_app->gathering().isImportingImages());
        QCOMPARE(photo(0).thumbnail().size(), QSize(20, 40));
        QCOMPARE(photo(0).originalCGImage().size(), QSize(20, 40));
        QCOMPARE(photo(0).metadata()->iptcCreator().toString(), u"somebody"_qs);
    }

    void pastesRelativePositions()
    {
        addPhotos({{1000, 500}, {2000, 1000}, {300, 400}});
        const WPresetList presets{namedPreset(u"a"_qs), namedPreset(u"b"_qs), namedPreset(u"c"_qs)};
        m_app->appliedPresets().addWPresetsToApplied(presets);
        m_app->appliedPresets().selectRows({});
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
        QCOMPARE(at(1, 2), std::nullopt); // the place from before is removed
        QCOMPARE(at(2, 0), QPointF(75, 80));
        QVERIFY(!photo(2).metadata()); // its size needs no pixels

        m_app->resetManualPositioning(AppController::Presets::All);
        QCOMPARE(at(2, 0), std::nullopt);
        QCOMPARE(at(0, 0), QPointF(250, 100)); // not selected
    }

    void pastesTheCurrentPreset()
    {
        addPhotos({{100, 100}, {200, 50}});
        const WPresetList presets{namedPreset(u"a"_qs), namedPreset(u"b"_qs)};
        AppliedPresets &applied = m_app->appliedPresets();
        applied.addWPresetsToApplied(presets);
        applied.selectRows({1});
        photo(0).setCustomWatermarkRectOrigin({10, 20}, presets[1]);
        photo(1).setCustomWatermarkRectOrigin({7, 7}, presets[0]);
        ImageSelection &selection = m_app->imageSet().selection();
        m_app->copyManualPositioning(AppController::Presets::All); // two are selected
        QVERIFY(!m_app->manualPositions().hasCopy());
        selection.selectIndexes({0});
        m_app->copyManualPositioning(AppController::Presets::All);
        m_app->copyManualPositioning(AppController::Presets::Current); // replaces the other copy
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
        m_app->copyManualPositioning(AppController::Presets::Current); // nothing, which replaces the copy
        QVERIFY(!m_app->manualPositions().hasCopy());
    }

    void pastesOntoALockedPhoto()
    {
        addPhotos({{100, 100}, {100, 100}, {100, 100}});
        const auto preset = namedPreset(u"a"_qs);
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

        // A pasting that waits for a stopped one does not begin.
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

    void savesMeanwhile()
    {
        addPhotos({{640, 480}, {480, 640}, {640, 480}});
        const QString folder = m_work->folder.path("copies");
        QVERIFY(QDir().mkpath(folder));
        m_work->defaults.setObject(settings::saveAllToOneDirectory, true);
        m_work->defaults.setObject(settings::savingDirectory, folder);
        const auto preset = namedPreset(u"mark"_qs);
        preset->setType(u"Image"_qs);
        preset->setImage(WatermarkPicture::fromImage(flatPicture({20, 20}, Qt::red)));
        m_app->appliedPresets().addWPresetsToApplied({preset});
        BatchSave::Order order;
        order.photos = *m_app->imageSet().images();
        order.defaultSavingPreset.filenameTokens = {u"filename"_qs};
        BatchSave save({m_app->statusManager(), m_work->alerts, m_work->defaults, 2});
        QVERIFY(!save.start(order)); // without a watermark
        order.effectivePresets = m_app->appliedPresets().effectivePresetsNow();

        // A missing photo is reported at the end; the others are saved.
        QVERIFY(QFile::remove(order.photos[1]->path()));
        QSignalSpy finished(&save, &BatchSave::finished);
        QVERIFY(save.start(order));
        QVERIFY(save.isSavingInProgress());
        QVERIFY(!save.start(order));
        QVERIFY(finished.wait());
        QVERIFY(!save.isSavingInProgress());
        QCOMPARE(QDir(folder).entryList(QDir::Files), (QStringList{u"0.jpg"_qs, u"2.jpg"_qs}));
        QCOMPARE(save.report().title(), u"Failed to save 1 image(s)!"_qs);
        QCOMPARE(save.report().summary(), u"2 copies saved, 1 failed"_qs);
        QVERIFY(save.progress().finished == 3 && save.progress().maximum == 3);

        // For the companion application, by its own rules.
        order.exchangeFolder = m_work->folder.path("exchange");
        QVERIFY(save.start(order) && finished.wait());
        QCOMPARE(save.savedImagesInfo(),
                 QStringList({order.exchangeFolder + u"/img0001.tif"_qs, order.photos[0]->path(),
                              order.exchangeFolder + u"/img0003.tif"_qs, order.photos[2]->path()}));
        order.exchangeFolder.clear();

        // Destroyed in the middle, it leaves whole files.
        QVERIFY(QDir(folder).removeRecursively() && QDir().mkpath(folder));
        {
            BatchSave other({m_app->statusManager(), m_work->alerts, m_work->defaults, 2});
            order.photos.erase(order.photos.begin() + 1);
            QVERIFY(other.start(order));
        }
        for (const QString &name : QDir(folder).entryList(QDir::Files | QDir::Hidden))
            QVERIFY2(!QImage(folder + u'/' + name).isNull(), qPrintable(name));
    }

    void destroyedMeanwhile()
    {
        addPhotos(QList<QSize>(30, {400, 300}));
        const auto preset = namedPreset(u"a"_qs);
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
            set.addImage(m_work->photo(u"%1.png"_qs.arg(set.images()->size()), size), {});
        IndexList all;
        for (int i = 0; i < sizes.size(); ++i)
            all.append(i);
        set.selection().select(all, ImageSelection::kNone);
    }

    ImageObject &photo(std::size_t index) { return *(*m_app->imageSet().images())[index]; }

    bool isRunning() const { return m_app->commandState().hasCurrentBatchOperation; }

    std::unique_ptr<WorkingSet> m_work;
    std::unique_ptr<AppController> m_app;
};

QTEST_GUILESS_MAIN(BackgroundOperationsTest)
#include "backgroundoperations_test.moc"
