// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/workingset.h"
#include "imageio/imageformat.h"

#include <QSignalSpy>

#include <sys/stat.h>

using namespace plexa;
using namespace plexa::test;

namespace
{

} // namespace

class ImageSetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_gathered = std::make_unique<GatheredSet>();
        m_work = &m_gathered->work;
        m_set = &m_gathered->set;
    }

    void cleanup()
    {
        QVERIFY(m_gathered->mirror.isTrue());
        QCOMPARE(m_work->alerts.complaints(), QStringList());
        m_gathered.reset();
    }

    void typeTest()
    {
        const QByteArray jpeg = QByteArray::fromHex("ffd8ffe000104a46494600010100000100010000");
        using Row = std::tuple<Text, QByteArray, bool>;
        for (const auto &[name, contents, isImage] :
             std::initializer_list<Row>{{"capitals.JPG", "", true},
                                        {"suffix of the system's list.jpe", "", true},
                                        {"suffix of something else.txt", jpeg, false},
                                        {"no suffix", jpeg, true},
                                        {"no suffix, no picture", "text", false},
                                        {"unknown suffix.q7z1", jpeg, true},
                                        {"Photoshop.PSD", "8BPS", false},
                                        {".hidden.jpg", jpeg, false},
                                        {"empty name of a suffix..", "", false}}) {
            cleanup();
            init();
            const QString path = m_work->folder.path(name);
            QVERIFY(writeFile(path, contents));
            m_set->setImageListModeToBrowser(false); // which opens none of them
            QVERIFY(m_gathered->gather({path}));
            QCOMPARE(m_set->images()->size(), isImage ? 1U : 0U);
        }
    }

    void scansFolders()
    {
        for (const char *name :
             {"a/b/c/deep.jpg", "App.app/inside.jpg", "Sammlung.PhotosLibrary/inside.jpg",
              "folder.jpg/inside.png", "IMG_10-copy.jpg", "IMG_10.jpg", "IMG_9.jpg", "IMG_100.jpg"})
            m_work->photo(name);
        m_work->brokenPhoto(u"notes.txt"_qs);
        const QString top = m_work->folder.path("in");
        // A folder may contain itself, in several ways; opening a pipe would block.
        QVERIFY(QFile::link(top, top + u"/a/b/circle"_qs));
        QVERIFY(QFile::link(u"."_qs, top + u"/self"_qs));
        QVERIFY(QFile::link(u"/nowhere/at/all"_qs, top + u"/dead.jpg"_qs));
        QCOMPARE(::mkfifo(QFile::encodeName(top + u"/pipe"_qs).constData(), 0600), 0);

        QVERIFY(m_gathered->gather({top, top + u"/gone.jpg"_qs}));
        QCOMPARE(shownNames(*m_set), u"deep inside IMG_9 IMG_10 IMG_10-copy IMG_100"_qs); // as people count

        // A folder that is dropped again adds its photos again.
        QVERIFY(m_gathered->gather({top + u"/folder.jpg/"_qs, top + u"/App.app/"_qs}));
        QCOMPARE(m_set->images()->size(), 7U);
        m_gathered->gathering.scanImagesAtPaths({});
        QVERIFY(isIdle(m_gathered->gathering));
    }

    void scansWaitForEachOther()
    {
        const QString many = m_work->manyPhotos(60);
        m_gathered->gathering.scanImagesAtPaths({many});
        QVERIFY(m_gathered->gather({m_work->photo("last.jpg")}));
        QCOMPARE(m_set->images()->size(), 61U);
        QCOMPARE(m_set->images()->back()->filename(), u"last"_qs);
    }

    void limitOfSmallBatchMode()
    {
        using Row = std::tuple<int, int, int, bool>;
        for (const auto &[count, answer, images, isSmallBatch] :
             std::initializer_list<Row>{{500, -1, 500, true}, {503, 1, 500, true}, {503, 0, 503, false}}) {
            cleanup();
            init();
            if (answer >= 0)
                m_work->alerts.expect(u"Adding too many images in the Small Batch mode!"_qs, {answer, false});
            QVERIFY(m_gathered->gather({m_work->manyPhotos(count)}));
            QCOMPARE(m_set->images()->size(), static_cast<std::size_t>(images));
            QCOMPARE(m_set->imageListIsInBrowserMode(), isSmallBatch);
            QCOMPARE(m_work->defaults.boolForKey(settings::imageListIsInBrowserMode), isSmallBatch);
            if (answer < 0)
                continue;
            const Alert alert = m_work->alerts.shown().constFirst();
            QCOMPARE(alert.text,
                     QStringLiteral("You are importing over 500 images in the Small Batch mode. This may "
                                    "slow down your computer. Please either switch to the Large Batch "
                                    "mode, or import only 500 images."));
            QCOMPARE(alert.buttons,
                     QStringList({u"Switch to the Large Batch mode"_qs, u"Import only 500 images"_qs}));
        }
    }

    void filters()
    {
        m_set->setImageListModeToBrowser(false);
        for (const char *name : {"a.jpg", "B.Jpg", "c.png", "\u00c4pfel.tif"})
            m_set->addImage(m_work->folder.path(QString::fromUtf8(name)), {});
        m_set->selection().selectIndexes({1});

        m_set->filterImages(u"JPG"_qs);
        QCOMPARE(shownNames(*m_set), u"a B"_qs);
        QVERIFY(m_set->isFiltered());
        QVERIFY(m_set->selection().selectedIndexes().isEmpty());
        m_set->filterImages(u"a\u0308PF"_qs); // the accent written apart
        QCOMPARE(shownNames(*m_set), QString::fromUtf8("\u00c4pfel"));

        // Photos that are added while the filter is on are filtered as well.
        m_set->addImage(u"/x/zwei \u00e4pfel.jpg"_qs, {});
        m_set->addImage(u"/x/birne.jpg"_qs, {});
        QCOMPARE(m_set->imagesFiltered()->size(), 2U);
        QVERIFY(m_gathered->mirror.isTrue());
        m_set->selection().selectAll();
        m_set->removeSelectedImages();
        QCOMPARE(names(*m_set->images()), u"a B c birne"_qs);

        m_set->filterImages({});
        QCOMPARE(m_set->imagesFiltered().get(), m_set->images().get());
    }

    void moves()
    {
        const Text all = "x1 a x2 b x3 c";
        // The third shown photo has the focus before: x2, or with the filter x3.
        using Row = std::tuple<Text, IndexList, int, Text, Text, IndexList, int>;
        for (const auto &[filter, moved, target, images, shown, selected, focus] :
             std::initializer_list<Row>{{"", {2, 4}, 0, "x2 x3 x1 a b c", "x2 x3 x1 a b c", {0, 1}, 0},
                                        {"", {0}, 6, "a x2 b x3 c x1", "a x2 b x3 c x1", {5}, 1},
                                        {"", {1, 5}, 3, "x1 x2 a c b x3", "x1 x2 a c b x3", {2, 3}, 1},
                                        {"", {2, 3}, 3, all, all, {2, 3}, 2},
                                        {"", {1}, 99, "x1 x2 b x3 c a", "x1 x2 b x3 c a", {5}, 1},
                                        {"", {17, -4}, 0, all, all, {2}, 2},
                                        {"x", {2}, 0, "x3 x1 a x2 b c", "x3 x1 x2", {0}, 0},
                                        {"x", {0}, 2, "a x2 b x1 x3 c", "x2 x1 x3", {1}, 2},
                                        // Three photos are shown, so the end is the fourth place of all; the
                                        // moved one stood before it.
                                        {"x", {0}, 3, "a x2 x1 b x3 c", "x2 x3 x1", {2}, 1}}) {
            cleanup();
            init();
            m_set->setImageListModeToBrowser(false); // which loads none of them
            for (const QString &photo : words("x1.jpg a.jpg x2.jpg b.jpg x3.jpg c.jpg"))
                m_set->addImage(m_work->folder.path(photo), {});
            m_set->filterImages(filter);
            m_set->selection().selectIndexes({2});
            m_set->moveIndexes(moved, target);
            QCOMPARE(names(*m_set->images()), images);
            QCOMPARE(shownNames(*m_set), shown);
            QCOMPARE(m_set->selection().selectedIndexes(), selected);
            QCOMPARE(m_set->selection().focusIndex(), focus);
        }
    }

    void steps()
    {
        using Row = std::tuple<Text, IndexList, Step, Text, Text, IndexList>;
        for (const auto &[filter, selected, step, images, shown, selectedAfter] : std::initializer_list<Row>{
                 {"", {1, 2, 4}, Step::Up, "a x2 x1 x3 b c", "a x2 x1 x3 b c", {0, 1, 3}},
                 {"", {1, 5}, Step::Down, "x1 x2 a b x3 c", "x1 x2 a b x3 c", {2, 5}},
                 // Directly beside the neighbor that is shown.
                 {"x", {1, 2}, Step::Up, "x2 x3 x1 a b c", "x2 x3 x1", {0, 1}},
                 {"x", {0}, Step::Down, "a x2 x1 b x3 c", "x2 x1 x3", {1}},
                 {"x", {1}, Step::Down, "x1 a b x3 x2 c", "x1 x3 x2", {2}}}) {
            cleanup();
            init();
            m_set->setImageListModeToBrowser(false);
            for (const QString &photo : words("x1.jpg a.jpg x2.jpg b.jpg x3.jpg c.jpg"))
                m_set->addImage(m_work->folder.path(photo), {});
            m_set->filterImages(filter);
            m_set->selection().select(selected, 0);
            m_set->stepSelectedImages(step);
            QCOMPARE(names(*m_set->images()), images);
            QCOMPARE(shownNames(*m_set), shown);
            QCOMPARE(m_set->selection().selectedIndexes(), selectedAfter);
        }
    }

    void removes()
    {
        using Row = std::tuple<Text, IndexList, int, Text, Text>;
        for (const auto &[filter, selected, focus, images, shownImage] :
             std::initializer_list<Row>{{"", {0, 1, 3}, 3, "c e", "e"},
                                        {"", {4}, 4, "a b c d", "d"},
                                        {"", {0, 4}, 2, "b c d", "c"},
                                        {"", {0, 1, 2, 3, 4}, 1, "", ""},
                                        {"", {2}, -1, "a b d e", ""},
                                        {"b", {0}, 0, "a c d e", ""}}) {
            cleanup();
            init();
            for (const char *photo : {"a.png", "b.png", "c.png", "d.png", "e.png"})
                m_set->addImage(m_work->photo(photo), {});
            m_set->filterImages(filter);
            std::shared_ptr<ImageObject> shown;
            const QObject context;
            connect(m_set, &ImageSet::shownImageChanged, &context, [&](const auto &image) { shown = image; });
            m_set->selection().select(selected, focus);
            m_set->removeSelectedImages();
            QCOMPARE(names(*m_set->images()), images);
            QTRY_COMPARE(shown ? shown->filename() : QString(), shownImage);
            QCOMPARE(names(m_set->selectedImages()), shownImage);
            QVERIFY(!shown || shown->isLoaded());
        }
    }

    void selectionCommands()
    {
        using enum ImageSelection::View;
        using Row = std::tuple<ImageSelection::View, IndexList, IndexList, int, int>;
        for (const auto &[view, selected, inverted, shownAfterInversion, shownAfterAll] :
             std::initializer_list<Row>{{Grid, {0, 2}, {1, 3}, 1, 1},
                                        {Table, {3}, {0, 1, 2}, 0, 0},
                                        {Grid, {0, 1, 2, 3}, {}, -1, 1}}) {
            ImageSelection selection;
            selection.setView(view);
            selection.reset(4);
            selection.select(selected + IndexList{4, -1} + selected, 1);
            QCOMPARE(selection.selectedIndexes(), selected);
            selection.invertSelection();
            QCOMPARE(selection.selectedIndexes(), inverted);
            QCOMPARE(selection.shownImageIndex(), shownAfterInversion);
            selection.select(selected, 1);
            selection.selectAll();
            QCOMPARE(selection.selectedIndexes(), IndexList({0, 1, 2, 3}));
            QCOMPARE(selection.shownImageIndex(), shownAfterAll);
            selection.selectNone();
            QVERIFY(selection.selectedIndexes().isEmpty() && selection.focusIndex() == ImageSelection::kNone);
        }
    }

    /// In Large Batch mode a photo is loaded when it gets the focus, and removed when it cannot be loaded.
    void followsThePhotoThatHasTheFocus()
    {
        m_set->setImageListModeToBrowser(false);
        m_gathered->gathering.scanImagesAtPaths(
            {m_work->photo("good.jpg"), m_work->brokenPhoto(u"bad.jpg"_qs), m_work->photo("after.jpg")});
        QTRY_COMPARE(shownNames(*m_set), u"good bad after"_qs);
        const ImageList images = *m_set->images();
        ImageList shown;
        const QObject context;
        connect(m_set, &ImageSet::shownImageChanged, &context,
                [&](const auto &image) { shown.push_back(image); });

        m_set->selectAndPreviewImageWithIndex(0);
        QTRY_VERIFY(!shown.empty());
        QVERIFY(shown.back() == images[0]);
        QVERIFY(!images[1]->metadata() && !images[2]->metadata());

        m_work->alerts.expect(u"Unsupported image file"_qs);
        m_set->selection().selectIndexes({1});
        QTRY_COMPARE(shownNames(*m_set), u"good after"_qs);
        QTRY_COMPARE(m_work->alerts.shown().size(), 1);
        QCOMPARE(m_work->alerts.shown().constFirst().text,
                 u"Sorry, could not load the image bad. The format is not supported."_qs);
        QVERIFY(shown.back() == nullptr);
        QCOMPARE(m_set->selection().focusIndex(), -1);
    }

private:
    std::unique_ptr<GatheredSet> m_gathered;
    WorkingSet *m_work = nullptr;
    ImageSet *m_set = nullptr;
};

QTEST_GUILESS_MAIN(ImageSetTest)
#include "imageset_test.moc"
