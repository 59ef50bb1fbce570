// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/workingset.h"

#include <QSignalSpy>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// Adds so many photos and begins to import them, while the import can load none: the first ones, one for
/// each thread, are locked until it is destroyed.
class HeldImport
{
public:
    HeldImport(WorkingSet &work, ImageSet &set, ImageGathering &gathering, int count)
    {
        const QDir folder(work.manyPhotos(count));
        for (const QString &name : folder.entryList(QDir::Files, QDir::Name))
            set.addImage(folder.filePath(name), {});
        m_locked.assign(set.images()->begin(), set.images()->begin() + work.services().importThreads);
        for (const auto &image : m_locked)
            image->lock();
        gathering.importMissingImages();
    }

    ~HeldImport()
    {
        for (const auto &image : m_locked)
            image->unlock();
    }

private:
    ImageList m_locked;
};

bool areAllLoaded(const ImageSet &set)
{
    return std::all_of(set.images()->begin(), set.images()->end(),
                       [](const auto &image) { return image->isLoaded(); });
}

} // namespace

class ImageImportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsUnreadableFiles_data()
    {
        QTest::addColumn<int>("count");
        QTest::newRow("one") << 1;
        QTest::newRow("ten") << 10;
        QTest::newRow("twelve") << 12;
    }

    void reportsUnreadableFiles()
    {
        QFETCH(int, count);
        WorkingSet work;
        ImageSet set(work.services());
        ImageGathering gathering(set, work.services());
        const Mirror mirror(set);
        QStringList paths;
        QStringList broken;
        for (int i = 0; i < count; ++i) {
            broken.append(work.brokenPhoto(QStringLiteral("broken%1.jpg").arg(i)));
            paths << broken.last() << work.photo(QStringLiteral("good%1.jpg").arg(i));
        }
        work.alerts.expect(QStringLiteral("Cannot open the following %1 file(s):").arg(count));
        gathering.scanImagesAtPaths(paths);
        QTRY_VERIFY(isIdle(gathering));
        QCOMPARE(work.alerts.complaints(), QStringList());
        QString text = broken.mid(0, 10).join(QLatin1Char('\n'));
        if (count == 12)
            text += QStringLiteral("\n  ...and 2 more...");
        text += QStringLiteral(
            "\n\nPossible reasons:\n \u2022 unsupported file format\n \u2022 insufficient file "
            "access permissions");
        QCOMPARE(work.alerts.shown().constFirst().text, text);
        QCOMPARE(set.images()->size(), static_cast<std::size_t>(count));
        QVERIFY(mirror.isTrue());
        for (const auto &image : *set.images()) {
            QVERIFY(image->filename().startsWith(QLatin1String("good")));
            QVERIFY(image->isLoaded() && !image->thumbnail().isNull());
        }
        // A second import finds nothing to complain of.
        gathering.importMissingImages();
        QTRY_VERIFY(isIdle(gathering));
        QCOMPARE(work.alerts.complaints(), QStringList());
    }

    void reportsUnreadableFolders()
    {
        WorkingSet work;
        ImageSet set(work.services());
        ImageGathering gathering(set, work.services());
        set.setImageListModeToBrowser(false); // where no import comes afterwards
        const QString folder = QFileInfo(work.photo(QStringLiteral("secret/a.jpg"))).path();
        QFile::setPermissions(folder, QFile::Permissions());
        if (QDir(folder).isReadable()) {
            QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            QSKIP("this user may read everything");
        }
        work.alerts.expect(QStringLiteral("Cannot open the following 1 file(s):"));
        gathering.scanImagesAtPaths({folder});
        QTRY_VERIFY(isIdle(gathering));
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(work.alerts.complaints(), QStringList());
        QVERIFY(work.alerts.shown().constFirst().text.startsWith(folder));
    }

    void reportsNamesThatAreNoText()
    {
        WorkingSet work;
        ImageSet set(work.services());
        ImageGathering gathering(set, work.services());
        const QString folder = QFileInfo(work.photo(QStringLiteral("a.jpg"))).path();
        const QByteArray name = QFile::encodeName(folder) + "/f\xfcr.jpg"; // Latin-1
        QVERIFY(QFile::copy(folder + QStringLiteral("/a.jpg"), folder + QStringLiteral("/b.jpg")));
        QCOMPARE(::rename(QFile::encodeName(folder + QStringLiteral("/b.jpg")).constData(), name.constData()),
                 0);
        work.alerts.expect(QStringLiteral("Cannot open the following 1 file(s):"));
        gathering.scanImagesAtPaths({folder});
        QTRY_VERIFY(isIdle(gathering));
        QCOMPARE(work.alerts.complaints(), QStringList());
        QCOMPARE(shownNames(set), QStringLiteral("a"));
        QVERIFY(work.alerts.shown().constFirst().text.startsWith(folder + QStringLiteral("/f")));
        ::unlink(name.constData()); // which Qt could not
    }

    /// Selection and focus stay with their photos when others before them turn out unreadable.
    void keepsTheSelection()
    {
        WorkingSet work;
        ImageSet set(work.services());
        ImageGathering gathering(set, work.services());
        for (const char *name : {"bad1", "a", "bad2", "b", "c"}) {
            const QString file = QLatin1String(name) + QStringLiteral(".png");
            set.addImage(file.startsWith(QLatin1String("bad")) ? work.brokenPhoto(file) : work.photo(file),
                         {});
        }
        QCOMPARE(set.images()->size(), 5U);
        set.selection().select({0, 3, 4}, 3);
        const QSignalSpy focusChanges(&set.selection(), &ImageSelection::focusImageChanged);
        work.alerts.expect(QStringLiteral("Cannot open the following 2 file(s):"));
        gathering.importMissingImages();
        QTRY_VERIFY(isIdle(gathering));
        QCOMPARE(names(set.selectedImages()), QStringLiteral("b c"));
        QCOMPARE(set.selection().focusIndex(), 1);
        QVERIFY(focusChanges.isEmpty());
        QCOMPARE(work.alerts.complaints(), QStringList());
    }

    void takesInWhatIsAddedMeanwhile()
    {
        WorkingSet work;
        ImageSet set(work.services());
        ImageGathering gathering(set, work.services());
        const QString late = work.photo(QStringLiteral("late.jpg"));
        const QSignalSpy ends(&gathering, &ImageGathering::importFinished);
        {
            const HeldImport held(work, set, gathering, 40);
            for (int i = 0; i < 20; ++i)
                gathering.scanImagesAtPaths({late});
            QTRY_VERIFY(!gathering.isScanning());
            QVERIFY(gathering.isImportingImages());
        }
        QTRY_VERIFY(isIdle(gathering));
        QCOMPARE(set.images()->size(), 60U);
        QVERIFY(areAllLoaded(set));
        QCOMPARE(ends.size(), 1);
        // The line says how many there are when all is over.
        QTRY_COMPARE(work.status.line().text, QStringLiteral("60 images"));
        QCOMPARE(work.alerts.complaints(), QStringList());
    }

    void stopsAndGoesOn()
    {
        WorkingSet work;
        ImageSet set(work.services());
        ImageGathering gathering(set, work.services());
        {
            const HeldImport held(work, set, gathering, 30);
            gathering.stopImportingImages();
        }
        QTRY_VERIFY(isIdle(gathering));
        QCOMPARE(set.images()->size(), 30U);
        QVERIFY(!(*set.images())[3]->imageHasBeenLoaded());
        QTRY_COMPARE(work.status.line().text, QStringLiteral("30 images"));
        QVERIFY(!work.status.line().canBeStopped);

        gathering.importMissingImages();
        QTRY_VERIFY(isIdle(gathering));
        QVERIFY(areAllLoaded(set));

        // A stopped scan starts no import.
        gathering.scanImagesAtPaths({QFileInfo(set.images()->front()->path()).path()});
        gathering.stopImportingImages();
        QTRY_VERIFY(!gathering.isScanning());
        QVERIFY(!gathering.isImportingImages());
    }

    void modesStopAndStart()
    {
        WorkingSet work;
        ImageSet set(work.services());
        ImageGathering gathering(set, work.services());
        {
            const HeldImport held(work, set, gathering, 30);
            set.switchImageListMode();
            set.switchImageListMode(); // while the first import is still on its way out
        }
        QTRY_VERIFY(isIdle(gathering));
        QVERIFY(areAllLoaded(set));

        WorkingSet other;
        ImageSet large(other.services());
        ImageGathering largeGathering(large, other.services());
        large.setImageListModeToBrowser(false);
        largeGathering.scanImagesAtPaths({other.manyPhotos(20)});
        QTRY_COMPARE(large.images()->size(), 20U);
        QTRY_VERIFY(isIdle(largeGathering));
        QVERIFY(!large.images()->front()->imageHasBeenLoaded());
    }

    void removedMeanwhile()
    {
        WorkingSet work;
        ImageSet set(work.services());
        ImageGathering gathering(set, work.services());
        const Mirror mirror(set);
        for (int i = 0; i < 100; ++i)
            set.addImage(i < 50 ? work.brokenPhoto(QStringLiteral("bad%1.jpg").arg(i))
                                : work.photo(QStringLiteral("good%1.jpg").arg(i)),
                         {});
        // Two are being loaded when they are removed, all others are done.
        const ImageList held(set.images()->begin(), set.images()->begin() + 2);
        for (const auto &image : held)
            image->lock();
        gathering.importMissingImages();
        QTRY_VERIFY(set.images()->back()->isLoaded());
        set.filterImages(QStringLiteral("bad"));
        set.selection().selectAll();
        set.removeSelectedImages();
        set.filterImages({});
        set.moveIndexes({3, 4, 5}, 0);
        for (const auto &image : held)
            image->unlock();
        QTRY_VERIFY(isIdle(gathering));
        // What the user has removed himself is no news to him.
        QCOMPARE(work.alerts.shown().size(), 0);
        QCOMPARE(set.images()->size(), 50U);
        QVERIFY(areAllLoaded(set));
        QVERIFY(mirror.isTrue());
    }

    void destroyedMeanwhile()
    {
        WorkingSet work;
        {
            ImageSet set(work.services());
            ImageGathering gathering(set, work.services());
            gathering.scanImagesAtPaths({work.manyPhotos(200)});
        }
        {
            ImageSet set(work.services());
            ImageGathering gathering(set, work.services());
            {
                const HeldImport held(work, set, gathering, 200);
                set.selection().selectIndexes({199});
            }
        }
        QCoreApplication::processEvents();
        QCOMPARE(work.alerts.complaints(), QStringList());
    }
};

QTEST_GUILESS_MAIN(ImageImportTest)
#include "imageimport_test.moc"
