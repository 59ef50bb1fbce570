// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appcontroller.h"
#include "app/workingset.h"

#include <random>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// Everything that undoing brings back.
struct State {
    struct Photo {
        QImage pixels;
        CustomOrigins places;
        QString path;
        bool operator==(const Photo &) const = default;
    };
    ImageList images;
    ImageList shown;
    int filter = 0; // number of changes of the filter before
    WPresetList applied;
    std::map<const ImageObject *, Photo> photos;
};

} // namespace

class UndoHistoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_work = std::make_unique<WorkingSet>();
        m_work->defaults.setObject(settings::lastUsedMode, 1);
        m_app = std::make_unique<AppController>(
            AppController::Services{m_work->photos, m_work->defaults, m_work->alerts, m_work->store, 2});
        m_mirror = std::make_unique<Mirror>(m_app->imageSet());
        WPresetList presets;
        for (const char *name : {"one", "two", "three", "four"})
            presets.push_back(namedPreset(QString::fromLatin1(name)));
        m_work->store.wPresetList().append(presets);
        m_nAdded = 0;
        m_nFilters = 0;
        // Both filter the list again.
        const auto filtered = [this] { ++m_nFilters; };
        connect(&set(), &ImageSet::filterTextChanged, m_app.get(), filtered);
        connect(&set(), &ImageSet::imageListModeChanged, m_app.get(), filtered);
    }

    void cleanup()
    {
        QCOMPARE(m_work->alerts.complaints(), QStringList());
        m_mirror.reset();
        m_app.reset();
        m_work.reset();
    }

    /// Random edits, undone and made again in every order.
    void undoesEverything()
    {
        for (unsigned seed = 1; seed <= 5; ++seed) {
            cleanup();
            init();
            std::mt19937 random(seed);
            for (int i = 0; i < 9; ++i)
                addPhoto();
            QUndoStack &stack = *history().findChild<QUndoStack *>();
            std::vector<State> states{now()}; // by the index in the stack
            const auto isRight = [&](const char *name, void (UndoHistory::*go)()) {
                const int from = stack.index();
                const int count = stack.count();
                (history().*go)();
                if (!isIdleSoon())
                    return false;
                // Steps that changed nothing any more have left the stack.
                const auto first = states.begin() + std::min(from, stack.index()) + 1;
                states.erase(first, first + (count - stack.count()));
                const QString fault = difference(states[static_cast<std::size_t>(stack.index())]);
                if (!fault.isEmpty())
                    qWarning("seed %u, %s to %d: %s", seed, name, stack.index(), qPrintable(fault));
                return fault.isEmpty();
            };
            for (int round = 0; round < 4; ++round) {
                for (int i = 0; i < 30; ++i) {
                    edit(random);
                    QVERIFY(isIdleSoon());
                    states.resize(static_cast<std::size_t>(stack.count()) + 1);
                    states[static_cast<std::size_t>(stack.index())] = now();
                }
                while (history().canUndo())
                    QVERIFY(isRight("undone", &UndoHistory::undo));
                QCOMPARE(stack.index(), 0);
                while (history().canRedo())
                    QVERIFY(isRight("redone", &UndoHistory::redo));
                QCOMPARE(stack.index(), stack.count());
                for (int i = 0; i < 15; ++i)
                    QVERIFY(isRight("walked", random() % 3 == 0 ? &UndoHistory::redo : &UndoHistory::undo));
            }
        }
    }

    void namesTheStep()
    {
        using enum ManualPositions::EditKind;
        for (int i = 0; i < 3; ++i)
            addPhoto();
        AppliedPresets &applied = m_app->appliedPresets();
        applied.addWPresetsToApplied({m_work->store.wPresets().front()});
        QCOMPARE(history().undoText(), u"Apply Presets"_qs);
        applied.selectRows({0});
        const std::shared_ptr<ImageObject> image = set().images()->front();
        const auto place = [&] { return image->customWatermarkRectOrigins(); };
        const CustomOrigins none = place();
        m_app->placeWatermark(image, {1, 1}, Drag);
        const CustomOrigins dragged = place();
        // A run of keys is one step, a drag is another one.
        for (const double x : {2, 3, 4})
            m_app->placeWatermark(image, {x, 1}, Keys);
        const CustomOrigins moved = place();
        m_app->placeWatermark(image, {5, 1}, Drag);
        m_app->placeWatermark(image, {6, 1}, Keys);
        m_app->placeWatermark(image, {5, 1}, Keys); // back again: no step
        QCOMPARE(history().undoText(), u"Move Watermark"_qs);
        history().undo();
        QVERIFY(place() == moved);
        m_app->placeWatermark(image, {7, 1}, Keys); // another run
        history().undo();
        QVERIFY(place() == moved);
        const bool isSingle = applied.isInSingleMode();
        applied.modeDidChange(isSingle ? AppliedPresets::Mode::Presets : AppliedPresets::Mode::Single);
        history().undo(); // shows what it changes
        QCOMPARE(applied.isInSingleMode(), isSingle);
        QVERIFY(place() == dragged);
        history().undo();
        QVERIFY(place() == none && history().undoText() == u"Apply Presets");
        QCOMPARE(history().redoText(), u"Move Watermark"_qs);

        set().selection().selectAll();
        m_app->startBatchOperation(ImageTransform::MirrorLeftRight);
        QVERIFY(!history().canUndo());
        history().undo();
        QVERIFY(isIdleSoon());
        QCOMPARE(history().undoText(), u"Mirror 3 Photos"_qs);
        set().removeSelectedImages();
        QCOMPARE(history().undoText(), u"Remove 3 Photos"_qs);
        QVERIFY(!history().canRedo());

        for (int i = 0; i < UndoHistory::kMaxSteps; ++i)
            i % 2 ? applied.addWPresetsToApplied({m_work->store.wPresets().front()})
                  : applied.clearAppliedPresets();
        int steps = 0;
        for (; history().canUndo(); ++steps)
            history().undo();
        QCOMPARE(steps, UndoHistory::kMaxSteps);
        QVERIFY(set().images()->empty()); // that is forgotten
    }

    /// The order of the shown photos comes back even where it is not that of the whole set.
    void undoesOrdersUnderAFilter()
    {
        for (int i = 0; i < 5; ++i)
            addPhoto();
        set().filterImages(u"a"_qs);
        set().moveIndexes({0}, 3);
        QCOMPARE(names(*set().images()), u"b0 a2 a1 b3 a4"_qs);
        QCOMPARE(shownNames(set()), u"a2 a4 a1"_qs);
        set().moveIndexes({1}, 0);
        history().undo();
        QCOMPARE(names(*set().images()), u"b0 a2 a1 b3 a4"_qs);
        QCOMPARE(shownNames(set()), u"a2 a4 a1"_qs);
    }

    /// Photos and presets that are gone, and places that something else has changed.
    void passesOverWhatIsGone()
    {
        for (int i = 0; i < 3; ++i)
            addPhoto();
        AppliedPresets &applied = m_app->appliedPresets();
        const WPresetList all = m_work->store.wPresets();
        applied.addWPresetsToApplied({all[0]});
        applied.addWPresetsToApplied({all[1]});
        applied.selectRows({1});
        applied.stepSelectedAppliedPresets(Step::Up);
        const ImageList images = *set().images();
        m_app->placeWatermark(images[0], {1, 1}, ManualPositions::EditKind::Drag);
        m_work->store.wPresetList().remove({1});
        images[0]->resetAllCustomWatermarkRectOrigins();
        // The move of the watermark, the order and the deleted preset make no difference any more.
        history().undo();
        QCOMPARE(names(applied.wPresetsApplied()), QString());
        QVERIFY(!history().canUndo());
        history().redo();
        QCOMPARE(names(applied.wPresetsApplied()), u"one"_qs);
        QVERIFY(!history().canRedo());

        set().moveIndexes({2}, 0);
        set().removeImages({images[1]}); // it could not be read
        history().undo();
        QVERIFY(*set().images() == ImageList({images[0], images[2]}));
        // In single mode, the applied presets would not be seen.
        applied.modeDidChange(AppliedPresets::Mode::Single);
        history().undo();
        QVERIFY(!applied.isInSingleMode());
    }

    /// A removed photo keeps its name and its rotation, no pixels, and comes back loaded. Small Batch mode
    /// ends if the photos would be too many.
    void restoresPhotos()
    {
        for (int i = 0; i < 4; ++i)
            addPhoto();
        const ImageList images = *set().images();
        m_app->gathering().importMissingImages();
        QVERIFY(isIdleSoon());
        images[1]->setPathToImportFrom(images[1]->path());
        images[1]->setFilename(u"edited"_qs);
        images[1]->transformOriginalImageWithOperation(ImageTransform::RotateClockwise);
        const QImage pixels = images[1]->originalCGImage();
        set().selection().select({1, 3}, 1);
        set().removeSelectedImages();
        for (const auto &image : {images[1], images[3]}) // one of them was shown
            QVERIFY(image->thumbnail().isNull() && image->imageAtHand().isNull());
        set().filterImages(u"a"_qs);
        history().undo();
        QVERIFY(isIdleSoon());
        QVERIFY(!set().isFiltered()); // it would hide one of them
        QCOMPARE(set().selection().selectedIndexes(), IndexList({1, 3}));
        QCOMPARE(images[1]->filename(), u"edited"_qs);
        QVERIFY(images[1]->isLoaded() && images[1]->originalCGImage() == pixels);

        history().redo();
        QVERIFY(isIdleSoon() && !images[1]->isLoaded());
        const auto many = ImageSet::kMaxImagesInBrowserMode - 3;
        set().addImages(ImageList(many, images.front()));
        QVERIFY(set().imageListIsInBrowserMode());
        history().undo();
        QVERIFY(!set().imageListIsInBrowserMode());
        QCOMPARE(set().images()->size(), many + 4);
    }

    void restoresPhotosDuringAnImport()
    {
        for (int i = 0; i < 4; ++i)
            addPhoto();
        const ImageList images = *set().images();
        images[3]->lock(); // the import waits for it
        m_app->gathering().importMissingImages();
        QTRY_VERIFY(images[0]->isLoaded() && images[1]->isLoaded());
        set().selection().select({0, 1}, 0);
        set().removeSelectedImages();
        history().undo();
        images[3]->unlock();
        QVERIFY(isIdleSoon());
        QVERIFY(images[1]->isLoaded()); // which does not have the focus
    }

private:
    static std::size_t pick(std::mt19937 &random, std::size_t count) { return random() % count; }

    UndoHistory &history() { return m_app->undoHistory(); }
    ImageSet &set() { return m_app->imageSet(); }

    void addPhoto()
    {
        // Every rotation and mirroring shows.
        QImage picture(8, 6, QImage::Format_RGB32);
        picture.fill(qRgb(m_nAdded * 20 % 256, 40, 80));
        picture.setPixelColor(0, 1, Qt::white);
        const QString path =
            m_work->folder.path(u"%1%2.png"_qs.arg(m_nAdded % 3 ? u"a"_qs : u"b"_qs).arg(m_nAdded));
        ++m_nAdded;
        QVERIFY(picture.save(path));
        set().addImage(path, {});
    }

    bool isIdleSoon()
    {
        return QTest::qWaitFor([this] {
            const CommandState state = m_app->commandState();
            return !state.hasCurrentBatchOperation && !state.isPasting && !state.isSorting &&
                   isIdle(m_app->gathering());
        });
    }

    State now()
    {
        State state{*set().images(),
                    *set().imagesFiltered(),
                    m_nFilters,
                    m_app->appliedPresets().wPresetsApplied(),
                    {}};
        for (const std::shared_ptr<ImageObject> &image : state.images)
            state.photos[image.get()] = {image->originalCGImage(), image->customWatermarkRectOrigins(),
                                         image->path()};
        return state;
    }

    /// Photos that were added since are not part of it.
    QString difference(const State &wanted)
    {
        State is = now();
        const ImageIdentities known = identitiesOf(wanted.images);
        const auto unknown = [&](const auto &image) { return !known.contains(image.get()); };
        std::erase_if(is.images, unknown);
        std::erase_if(is.shown, unknown);
        if (is.images != wanted.images)
            return u"order: "_qs + names(is.images) + u" instead of "_qs + names(wanted.images);
        if (is.filter == wanted.filter && is.shown != wanted.shown)
            return u"shown: "_qs + names(is.shown) + u" instead of "_qs + names(wanted.shown);
        if (is.applied != wanted.applied)
            return u"applied: "_qs + names(is.applied) + u" instead of "_qs + names(wanted.applied);
        for (const std::shared_ptr<ImageObject> &image : wanted.images) {
            const State::Photo &one = is.photos.at(image.get());
            const State::Photo &other = wanted.photos.at(image.get());
            if (one.pixels != other.pixels || one.path != other.path)
                return u"rotation: "_qs + image->filename();
            if (one.places != other.places)
                return u"places: "_qs + image->filename();
        }
        return m_mirror->isTrue() ? QString() : u"the signals"_qs;
    }

    void select(std::mt19937 &random)
    {
        IndexList indexes;
        const std::size_t count = set().imagesFiltered()->size();
        for (std::size_t i = pick(random, 4); i > 0 && count > 0; --i)
            indexes.append(static_cast<int>(pick(random, count)));
        set().selection().select(indexes, indexes.isEmpty() ? ImageSelection::kNone : indexes.first());
        AppliedPresets &applied = m_app->appliedPresets();
        if (!applied.wPresetsApplied().empty())
            applied.selectRows({static_cast<int>(pick(random, applied.wPresetsApplied().size()))});
    }

    void edit(std::mt19937 &random)
    {
        using Presets = AppController::Presets;
        using Position = ManualPositions::EditKind;
        AppliedPresets &applied = m_app->appliedPresets();
        const WPresetList &all = m_work->store.wPresets();
        const auto step = random() % 2 ? Step::Up : Step::Down;
        const QPointF place(static_cast<double>(pick(random, 8)), static_cast<double>(pick(random, 6)));
        select(random);
        const ImageList selected = set().selectedImages();
        switch (pick(random, 20)) {
        case 0:
            return set().removeSelectedImages();
        case 1:
            return set().moveIndexes(set().selection().selectedIndexes(), static_cast<int>(pick(random, 9)));
        case 2:
            return set().stepSelectedImages(step);
        case 3:
            return m_app->sorting().sort(ImageSorting::Key::Name);
        case 4:
            return m_app->sorting().reverse();
        case 5:
        case 6:
            return m_app->startBatchOperation(static_cast<ImageTransform>(1 + pick(random, 5)));
        case 7:
        case 8:
            if (!selected.empty())
                m_app->placeWatermark(selected.front(), place, Position::Drag);
            return;
        case 9:
        case 10:
            if (!selected.empty())
                m_app->placeWatermark(set().images()->front(), place, Position::Keys);
            return;
        case 11:
            return m_app->resetManualPositioning(random() % 2 ? Presets::All : Presets::Current);
        case 12:
            m_app->copyManualPositioning(random() % 2 ? Presets::All : Presets::Current);
            set().selection().selectAll();
            return m_app->pasteManualPositioning();
        case 13:
            return applied.addWPresetsToApplied({all[pick(random, 4)], all[pick(random, 4)]});
        case 14:
            return applied.removeSelectedAppliedPresets();
        case 15:
            return random() % 3 ? applied.stepSelectedAppliedPresets(step) : applied.clearAppliedPresets();
        case 16: // what follows is not undone
            return set().filterImages(random() % 2 ? u"a"_qs : QString());
        case 17:
            return set().switchImageListMode();
        case 18:
            return m_nAdded < 14 ? addPhoto() : void();
        default:
            return applied.modeDidChange(random() % 4 ? AppliedPresets::Mode::Presets
                                                      : AppliedPresets::Mode::Single);
        }
    }

    std::unique_ptr<WorkingSet> m_work;
    std::unique_ptr<AppController> m_app;
    std::unique_ptr<Mirror> m_mirror;
    int m_nAdded = 0;
    int m_nFilters = 0;
};

QTEST_GUILESS_MAIN(UndoHistoryTest)
#include "undohistory_test.moc"
