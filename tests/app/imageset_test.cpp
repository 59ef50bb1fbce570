// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/workingset.h"
#include "imageio/imagefiletype.h"

#include <QSignalSpy>

#include <sys/stat.h>

#include <filesystem>

using namespace plexa;
using namespace plexa::test;

class ImageSetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_work = std::make_unique<WorkingSet>();
        m_work->defaults.removeObjectForKey(settings::imageListIsInBrowserMode); // of the test before
        m_set = std::make_unique<ImageSet>(m_work->services());
        m_gathering = std::make_unique<ImageGathering>(*m_set, m_work->services());
        m_mirror = std::make_unique<Mirror>(*m_set);
    }

    void cleanup()
    {
        QVERIFY(m_mirror->isTrue());
        QCOMPARE(m_work->alerts.complaints(), QStringList());
        m_mirror.reset();
        m_gathering.reset();
        m_set.reset();
        m_work.reset();
    }

    void typeTest_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("contents");
        QTest::addColumn<bool>("isImage");
        const QByteArray jpeg = QByteArray::fromHex("ffd8ffe000104a46494600010100000100010000");
        QTest::newRow("by suffix, in capitals") << "a.JPG" << QByteArray() << true;
        QTest::newRow("by the system's list") << "a.jpe" << QByteArray() << true;
        QTest::newRow("suffix of something else") << "a.txt" << jpeg << false;
        QTest::newRow("no suffix") << "photo" << jpeg << true;
        QTest::newRow("no suffix, no picture") << "photo" << QByteArray("text") << false;
        QTest::newRow("unknown suffix") << "photo.q7z1" << jpeg << true;
        QTest::newRow("Photoshop") << "a.PSD" << QByteArray("8BPS") << false;
        QTest::newRow("hidden") << ".a.jpg" << jpeg << false;
        QTest::newRow("empty name of a suffix") << "b.." << QByteArray() << false;
    }

    void typeTest()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, contents);
        QFETCH(bool, isImage);
        const QString path = m_work->folder.path(name);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(contents);
        file.close();
        m_set->setImageListModeToBrowser(false); // which opens none of them
        m_gathering->scanImagesAtPaths({path});
        QTRY_VERIFY(isIdle(*m_gathering));
        QCOMPARE(m_set->images()->size(), isImage ? 1U : 0U);
    }

    void scansFolders()
    {
        m_work->photo(QStringLiteral("a/b/c/deep.jpg"));
        m_work->photo(QStringLiteral("App.app/inside.jpg"));
        m_work->photo(QStringLiteral("Sammlung.PhotosLibrary/inside.jpg"));
        m_work->photo(QStringLiteral("folder.jpg/inside.png"));
        m_work->brokenPhoto(QStringLiteral("notes.txt"));
        const QString top = m_work->folder.path(QStringLiteral("in"));
        // A folder may be in itself, in several ways; a pipe would block who opens it.
        QVERIFY(QFile::link(top, top + QStringLiteral("/a/b/circle")));
        QVERIFY(QFile::link(QStringLiteral("."), top + QStringLiteral("/self")));
        QVERIFY(QFile::link(QStringLiteral("/nowhere/at/all"), top + QStringLiteral("/dead.jpg")));
        QCOMPARE(::mkfifo(QFile::encodeName(top + QStringLiteral("/pipe")).constData(), 0600), 0);

        m_gathering->scanImagesAtPaths({top, top + QStringLiteral("/gone.jpg")});
        QTRY_VERIFY(isIdle(*m_gathering));
        QStringList found = shownNames(*m_set).split(QLatin1Char(' '));
        found.sort();
        QCOMPARE(found, QStringList({QStringLiteral("deep"), QStringLiteral("inside")}));

        // What is dropped once more is there twice.
        m_gathering->scanImagesAtPaths(
            {top + QStringLiteral("/folder.jpg/"), top + QStringLiteral("/App.app/")});
        QTRY_VERIFY(isIdle(*m_gathering));
        QCOMPARE(m_set->images()->size(), 3U);

        m_gathering->scanImagesAtPaths({});
        QVERIFY(isIdle(*m_gathering));
    }

    void listsInTheFileSystemsOrder()
    {
        for (const char *name : {"q", "b", "z", "a", "m", "k", "c"})
            m_work->photo(QLatin1String(name) + QStringLiteral(".jpg"));
        const QString top = m_work->folder.path(QStringLiteral("in"));
        QStringList listed;
        for (const auto &entry : std::filesystem::directory_iterator(top.toStdString()))
            listed.append(QString::fromStdString(entry.path().stem().string()));
        const QString single = m_work->photo(QStringLiteral("first.png"));
        QFile::rename(single, m_work->folder.path(QStringLiteral("first.png")));
        m_gathering->scanImagesAtPaths({m_work->folder.path(QStringLiteral("first.png")), top});
        QTRY_VERIFY(isIdle(*m_gathering));
        QCOMPARE(shownNames(*m_set), QStringLiteral("first ") + listed.join(QLatin1Char(' ')));
    }

    void scansWaitForEachOther()
    {
        const QString many = m_work->manyPhotos(60);
        const QString last = m_work->photo(QStringLiteral("last.jpg"));
        m_gathering->scanImagesAtPaths({many});
        m_gathering->scanImagesAtPaths({last});
        QTRY_VERIFY(isIdle(*m_gathering));
        QCOMPARE(m_set->images()->size(), 61U);
        QCOMPARE(m_set->images()->back()->filename(), QStringLiteral("last"));
    }

    void limitOfSmallBatchMode_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("answer");
        QTest::addColumn<int>("images");
        QTest::addColumn<bool>("isSmallBatch");
        QTest::newRow("exactly the limit") << 500 << -1 << 500 << true;
        QTest::newRow("only 500") << 503 << 1 << 500 << true;
        QTest::newRow("change the mode") << 503 << 0 << 503 << false;
    }

    void limitOfSmallBatchMode()
    {
        QFETCH(int, count);
        QFETCH(int, answer);
        QFETCH(int, images);
        QFETCH(bool, isSmallBatch);
        const QString title = QStringLiteral("Adding too many images in the Small Batch mode!");
        if (answer >= 0)
            m_work->alerts.expect(title, {answer, false});
        m_gathering->scanImagesAtPaths({m_work->manyPhotos(count)});
        QTRY_VERIFY_WITH_TIMEOUT(isIdle(*m_gathering), 60'000);
        QCOMPARE(m_set->images()->size(), static_cast<std::size_t>(images));
        QCOMPARE(m_set->imageListIsInBrowserMode(), isSmallBatch);
        QCOMPARE(m_work->defaults.boolForKey(settings::imageListIsInBrowserMode), isSmallBatch);
        if (answer < 0)
            return;
        const Alert alert = m_work->alerts.shown().constFirst();
        QCOMPARE(alert.text,
                 QStringLiteral("You are importing over 500 images in the Small Batch mode. This may "
                                "slow down your computer. Please either switch to the Large Batch "
                                "mode, or import only 500 images."));
        QCOMPARE(alert.buttons, QStringList({QStringLiteral("Switch to the Large Batch mode"),
                                             QStringLiteral("Import only 500 images")}));
    }

    void returnsToSmallBatchMode_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("isAllowed");
        QTest::newRow("500") << 500 << true;
        QTest::newRow("501") << 501 << false;
    }

    void returnsToSmallBatchMode()
    {
        QFETCH(int, count);
        QFETCH(bool, isAllowed);
        m_set->setImageListModeToBrowser(false);
        const QString path = m_work->photo(QStringLiteral("a.jpg"));
        for (int i = 0; i < count; ++i)
            m_set->addImage(path, {});
        m_set->selection().selectIndexes({3, 7});
        if (!isAllowed)
            m_work->alerts.expect(QStringLiteral("Too many images for the Small Batch mode!"));
        const QSignalSpy modes(m_set.get(), &ImageSet::imageListModeChanged);
        m_set->switchImageListMode();
        QCOMPARE(modes.constLast().constFirst().toBool(), isAllowed); // a button hears of a refusal, too
        QCOMPARE(m_set->imageListIsInBrowserMode(), isAllowed);
        QCOMPARE(m_set->selection().selectedIndexes(), IndexList({3, 7}));
        QCOMPARE(m_set->selection().shownImageIndex(), 3);
        QCOMPARE(m_gathering->isImportingImages(), isAllowed);
        if (!isAllowed) {
            QCOMPARE(
                m_work->alerts.shown().constFirst().text,
                QStringLiteral("501 images are currently imported. You cannot work with over 500 images in "
                               "the Small Batch mode, because this may slow down your computer. Please "
                               "remove some images if you need to switch."));
        }
    }

    void filters()
    {
        m_set->setImageListModeToBrowser(false);
        for (const char *name : {"a.jpg", "B.Jpg", "c.png", "\u00c4pfel.tif"})
            m_set->addImage(m_work->folder.path(QString::fromUtf8(name)), {});
        m_set->selection().selectIndexes({1});

        m_set->filterImages(QStringLiteral("JPG"));
        QCOMPARE(shownNames(*m_set), QStringLiteral("a B"));
        QVERIFY(m_set->isFiltered());
        QVERIFY(m_set->selection().selectedIndexes().isEmpty());
        m_set->filterImages(QStringLiteral("a\u0308PF")); // the accent written apart
        QCOMPARE(shownNames(*m_set), QString::fromUtf8("\u00c4pfel"));

        // What joins the set while the filter is on is filtered as well.
        m_set->addImage(QStringLiteral("/x/zwei \u00e4pfel.jpg"), {});
        m_set->addImage(QStringLiteral("/x/birne.jpg"), {});
        QCOMPARE(m_set->imagesFiltered()->size(), 2U);
        QVERIFY(m_mirror->isTrue());
        m_set->selection().selectAll();
        m_set->removeSelectedImages();
        QCOMPARE(names(*m_set->images()), QStringLiteral("a B c birne"));

        m_set->filterImages({});
        QCOMPARE(m_set->imagesFiltered().get(), m_set->images().get());
    }

    void moves_data()
    {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<IndexList>("moved");
        QTest::addColumn<int>("target");
        QTest::addColumn<QString>("images");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<IndexList>("selected");
        QTest::addColumn<int>("focus");
        const QString all = QStringLiteral("x1 a x2 b x3 c");
        // The third shown photo has the focus before: x2, or with the filter x3.
        QTest::newRow("to the front") << "" << IndexList{2, 4} << 0 << "x2 x3 x1 a b c"
                                      << "x2 x3 x1 a b c" << IndexList{0, 1} << 0;
        QTest::newRow("to the end") << "" << IndexList{0} << 6 << "a x2 b x3 c x1"
                                    << "a x2 b x3 c x1" << IndexList{5} << 1;
        QTest::newRow("around the target") << "" << IndexList{1, 5} << 3 << "x1 x2 a c b x3"
                                           << "x1 x2 a c b x3" << IndexList{2, 3} << 1;
        QTest::newRow("onto itself") << "" << IndexList{2, 3} << 3 << all << all << IndexList{2, 3} << 2;
        QTest::newRow("beyond the end") << "" << IndexList{1} << 99 << "x1 x2 b x3 c a"
                                        << "x1 x2 b x3 c a" << IndexList{5} << 1;
        QTest::newRow("no such photo") << "" << IndexList{17, -4} << 0 << all << all << IndexList{2} << 2;
        QTest::newRow("filtered, to the front") << "x" << IndexList{2} << 0 << "x3 x1 a x2 b c"
                                                << "x3 x1 x2" << IndexList{0} << 0;
        QTest::newRow("filtered, before another") << "x" << IndexList{0} << 2 << "a x2 b x1 x3 c"
                                                  << "x2 x1 x3" << IndexList{1} << 2;
        // Three photos are shown, so the end is the fourth place of all; one moved photo stood before it.
        QTest::newRow("filtered, to the end") << "x" << IndexList{0} << 3 << "a x2 x1 b x3 c"
                                              << "x2 x3 x1" << IndexList{2} << 1;
    }

    void moves()
    {
        QFETCH(QString, filter);
        QFETCH(IndexList, moved);
        QFETCH(int, target);
        gather(QStringLiteral("x1 a x2 b x3 c"));
        m_set->filterImages(filter);
        m_set->selection().selectIndexes({2});
        m_set->moveIndexes(moved, target);
        QTEST(names(*m_set->images()), "images");
        QTEST(shownNames(*m_set), "shown");
        QTEST(m_set->selection().selectedIndexes(), "selected");
        QTEST(m_set->selection().focusIndex(), "focus");
    }

    void removesFromALongList_data()
    {
        QTest::addColumn<QString>("filter");
        QTest::newRow("all") << QString();
        QTest::newRow("filtered") << QStringLiteral("photo");
    }

    /// Many groups of photos go at once: a view is not told of each of them.
    void removesFromALongList()
    {
        QFETCH(QString, filter);
        m_set->setImageListModeToBrowser(false);
        for (int i = 0; i < 1000; ++i) {
            m_set->addImage(QStringLiteral("/x/photo %1.jpg").arg(i), {});
            m_set->addImage(QStringLiteral("/x/other %1.jpg").arg(i), {});
        }
        m_set->filterImages(filter);
        const ImageList before = *m_set->imagesFiltered();
        IndexList removed;
        for (std::size_t i = 0; i < before.size(); i += 2)
            removed.append(static_cast<int>(i));
        m_set->selection().select(removed, ImageSelection::kNone);
        const QSignalSpy removals(m_set.get(), &ImageSet::imagesRemoved);
        const QSignalSpy resets(m_set.get(), &ImageSet::listReset);
        m_set->removeSelectedImages();
        QVERIFY(removals.isEmpty() && resets.size() == 1);
        QCOMPARE(m_set->images()->size(), 2000U - static_cast<std::size_t>(removed.size()));
        QCOMPARE(m_set->imagesFiltered()->size(), before.size() / 2);
        for (std::size_t i = 0; i < before.size() / 2; ++i)
            QVERIFY((*m_set->imagesFiltered())[i] == before[2 * i + 1]);
    }

    void removes_data()
    {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<IndexList>("selected");
        QTest::addColumn<int>("focus");
        QTest::addColumn<QString>("images");
        QTest::addColumn<QString>("shownImage"); // selected and in focus afterwards
        QTest::newRow("shown and two before") << "" << IndexList{0, 1, 3} << 3 << "c e"
                                              << "e";
        QTest::newRow("the last one") << "" << IndexList{4} << 4 << "a b c d"
                                      << "d";
        QTest::newRow("others than the shown one") << "" << IndexList{0, 4} << 2 << "b c d"
                                                   << "c";
        QTest::newRow("all") << "" << IndexList{0, 1, 2, 3, 4} << 1 << ""
                             << "";
        QTest::newRow("nothing in focus") << "" << IndexList{2} << -1 << "a b d e"
                                          << "";
        QTest::newRow("filtered") << "b" << IndexList{0} << 0 << "a c d e"
                                  << "";
    }

    void removes()
    {
        QFETCH(QString, filter);
        QFETCH(IndexList, selected);
        QFETCH(int, focus);
        QFETCH(QString, shownImage);
        for (const char *name : {"a", "b", "c", "d", "e"})
            m_set->addImage(m_work->photo(QLatin1String(name) + QStringLiteral(".png")), {});
        m_set->filterImages(filter);
        std::shared_ptr<ImageObject> shown;
        connect(m_set.get(), &ImageSet::shownImageChanged, this, [&](const auto &image) { shown = image; });
        m_set->selection().select(selected, focus);
        m_set->removeSelectedImages();
        QTEST(names(*m_set->images()), "images");
        QTRY_COMPARE(shown ? shown->filename() : QString(), shownImage);
        QCOMPARE(names(m_set->selectedImages()), shownImage);
        QVERIFY(!shown || shown->isLoaded());
        disconnect(m_set.get(), nullptr, this, nullptr);
    }

    void selectionCommands_data()
    {
        QTest::addColumn<ImageSelection::View>("view");
        QTest::addColumn<IndexList>("selected");
        QTest::addColumn<IndexList>("inverted");
        QTest::addColumn<int>("shownAfterInversion");
        QTest::addColumn<int>("shownAfterAll"); // where the second photo had the focus
        using enum ImageSelection::View;
        QTest::newRow("grid") << Grid << IndexList{0, 2} << IndexList{1, 3} << 1 << 1;
        QTest::newRow("table") << Table << IndexList{3} << IndexList{0, 1, 2} << 0 << 0;
        QTest::newRow("all are selected") << Grid << IndexList{0, 1, 2, 3} << IndexList{} << -1 << 1;
    }

    void selectionCommands()
    {
        QFETCH(ImageSelection::View, view);
        QFETCH(IndexList, selected);
        ImageSelection selection;
        selection.setView(view);
        selection.reset(4);
        selection.select(selected + IndexList{4, -1} + selected, 1);
        QCOMPARE(selection.selectedIndexes(), selected);
        selection.invertSelection();
        QTEST(selection.selectedIndexes(), "inverted");
        QTEST(selection.shownImageIndex(), "shownAfterInversion");
        selection.select(selected, 1);
        selection.selectAll();
        QCOMPARE(selection.selectedIndexes(), IndexList({0, 1, 2, 3}));
        QTEST(selection.shownImageIndex(), "shownAfterAll");
        selection.selectNone();
        QVERIFY(selection.selectedIndexes().isEmpty() && selection.focusIndex() == ImageSelection::kNone);
    }

    /// In Large Batch mode a photo is loaded when the user looks at it, and goes when it cannot be.
    void followsThePhotoThatHasTheFocus()
    {
        m_set->setImageListModeToBrowser(false);
        m_gathering->scanImagesAtPaths({m_work->photo(QStringLiteral("good.jpg")),
                                        m_work->brokenPhoto(QStringLiteral("bad.jpg")),
                                        m_work->photo(QStringLiteral("after.jpg"))});
        QTRY_COMPARE(shownNames(*m_set), QStringLiteral("good bad after"));
        const ImageList images = *m_set->images();
        ImageList shown;
        connect(m_set.get(), &ImageSet::shownImageChanged, this,
                [&](const auto &image) { shown.push_back(image); });

        m_set->selectAndPreviewImageWithIndex(0);
        QTRY_VERIFY(!shown.empty());
        QVERIFY(shown.back() == images[0]);
        QVERIFY(!images[1]->imageHasBeenLoaded() && !images[2]->imageHasBeenLoaded());

        m_work->alerts.expect(QStringLiteral("Unsupported image file"));
        m_set->selection().selectIndexes({1});
        QTRY_COMPARE(shownNames(*m_set), QStringLiteral("good after"));
        QTRY_COMPARE(m_work->alerts.shown().size(), 1);
        QCOMPARE(m_work->alerts.shown().constFirst().text,
                 QStringLiteral("Sorry, could not load the image bad. The format is not supported."));
        QVERIFY(shown.back() == nullptr);
        QCOMPARE(m_set->selection().focusIndex(), -1);
        disconnect(m_set.get(), nullptr, this, nullptr);
    }

private:
    /// Photos of these names in Large Batch mode, which loads none of them.
    void gather(const QString &names)
    {
        m_set->setImageListModeToBrowser(false);
        for (const QString &name : names.split(QLatin1Char(' ')))
            m_set->addImage(m_work->folder.path(name + QStringLiteral(".jpg")), {});
    }

    std::unique_ptr<WorkingSet> m_work;
    std::unique_ptr<ImageSet> m_set;
    std::unique_ptr<ImageGathering> m_gathering;
    std::unique_ptr<Mirror> m_mirror;
};

QTEST_GUILESS_MAIN(ImageSetTest)
#include "imageset_test.moc"
