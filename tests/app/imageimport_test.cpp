// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/workingset.h"

#include <QSignalSpy>

using namespace plexa;
using namespace plexa::test;

class ImageImportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsUnreadableFiles_data();
    void reportsUnreadableFiles();
    void reportsUnreadableFolders();
    void keepsTheSelection();
    void takesInWhatIsAddedMeanwhile();
    void stopsAndGoesOn();
    void modesStopAndStart();
    void removedMeanwhile();
    void destroyedMeanwhile();
};

void ImageImportTest::reportsUnreadableFiles_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("one") << 1;
    QTest::newRow("ten") << 10;
    QTest::newRow("twelve") << 12;
}

void ImageImportTest::reportsUnreadableFiles()
{
    QFETCH(int, count);
    WorkingSet work;
    ImageSet set(work.services());
    const Mirror mirror(set);
    QStringList paths;
    QStringList broken;
    for (int i = 0; i < count; ++i) {
        broken.append(work.brokenPhoto(QStringLiteral("broken%1.jpg").arg(i)));
        paths << broken.last() << work.photo(QStringLiteral("good%1.jpg").arg(i));
    }
    work.alerts.expect(QStringLiteral("Cannot open the following %1 file(s):").arg(count));
    set.scanImagesAtPaths(paths);
    QTRY_VERIFY(isIdle(set));
    QCOMPARE(work.alerts.complaints(), QStringList());
    QString text = broken.mid(0, 10).join(QLatin1Char('\n'));
    if (count == 12)
        text += QStringLiteral("\n  ...and 2 more...");
    text +=
        QStringLiteral("\n\nPossible reasons:\n \u2022 unsupported file format\n \u2022 insufficient file "
                       "access permissions");
    QCOMPARE(work.alerts.shown().constFirst().text, text);
    QCOMPARE(set.images()->size(), static_cast<std::size_t>(count));
    QVERIFY(mirror.isTrue());
    for (const auto &image : *set.images()) {
        QVERIFY(image->filename().startsWith(QLatin1String("good")));
        QVERIFY(image->isLoaded() && !image->thumbnail().isNull());
    }
    // A second import finds nothing to complain of.
    set.importMissingImages();
    QTRY_VERIFY(isIdle(set));
    QCOMPARE(work.alerts.complaints(), QStringList());
}

void ImageImportTest::reportsUnreadableFolders()
{
    WorkingSet work;
    ImageSet set(work.services());
    set.setImageListModeToBrowser(false); // where no import comes afterwards
    const QString folder = QFileInfo(work.photo(QStringLiteral("secret/a.jpg"))).path();
    QFile::setPermissions(folder, QFile::Permissions());
    if (QDir(folder).isReadable()) {
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QSKIP("this user may read everything");
    }
    work.alerts.expect(QStringLiteral("Cannot open the following 1 file(s):"));
    set.scanImagesAtPaths({folder});
    QTRY_VERIFY(isIdle(set));
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QCOMPARE(work.alerts.complaints(), QStringList());
    QVERIFY(work.alerts.shown().constFirst().text.startsWith(folder));
}

/// Selection and focus stay with their photos when others before them turn out unreadable.
void ImageImportTest::keepsTheSelection()
{
    WorkingSet work;
    ImageSet set(work.services());
    for (const char *name : {"bad1", "a", "bad2", "b", "c"}) {
        const QString file = QLatin1String(name) + QStringLiteral(".png");
        set.addImage(file.startsWith(QLatin1String("bad")) ? work.brokenPhoto(file) : work.photo(file), {});
    }
    QCOMPARE(set.images()->size(), 5U);
    set.selection().select({0, 3, 4}, 3);
    const QSignalSpy focusChanges(&set.selection(), &ImageSelection::focusImageChanged);
    work.alerts.expect(QStringLiteral("Cannot open the following 2 file(s):"));
    set.importMissingImages();
    QTRY_VERIFY(isIdle(set));
    QCOMPARE(names(set.selectedImages()), QStringLiteral("b c"));
    QCOMPARE(set.selection().focusIndex(), 1);
    QVERIFY(focusChanges.isEmpty());
    QCOMPARE(work.alerts.complaints(), QStringList());
}

void ImageImportTest::takesInWhatIsAddedMeanwhile()
{
    WorkingSet work;
    ImageSet set(work.services());
    const QString many = work.manyPhotos(40);
    const QString late = work.photo(QStringLiteral("late.jpg"));
    set.scanImagesAtPaths({many});
    QTRY_VERIFY(set.isImportingImages());
    for (int i = 0; i < 20; ++i) {
        set.scanImagesAtPaths({late});
        QCoreApplication::processEvents();
    }
    const QSignalSpy ends(&set, &ImageSet::importFinished);
    QTRY_VERIFY(isIdle(set));
    QCOMPARE(set.images()->size(), 60U);
    for (const auto &image : *set.images())
        QVERIFY(image->isLoaded());
    // The line says how many there are when all is over.
    QTRY_COMPARE(work.status.line().text, QStringLiteral("60 images"));
    QCOMPARE(work.alerts.complaints(), QStringList());
}

void ImageImportTest::stopsAndGoesOn()
{
    WorkingSet work;
    ImageSet set(work.services());
    const QString many = work.manyPhotos(400);
    set.scanImagesAtPaths({many});
    QTRY_VERIFY(set.isImportingImages());
    set.stopImportingImages();
    QTRY_VERIFY(isIdle(set));
    QCOMPARE(set.images()->size(), 400U);
    QVERIFY(!set.images()->back()->isLoaded());
    QTRY_COMPARE(work.status.line().text, QStringLiteral("400 images"));
    QVERIFY(!work.status.line().canBeStopped);

    set.importMissingImages();
    QTRY_VERIFY(isIdle(set));
    QVERIFY(set.images()->back()->isLoaded());

    // A stopped scan starts no import.
    set.scanImagesAtPaths({many});
    set.stopImportingImages();
    QTRY_VERIFY(!set.isScanning());
    QVERIFY(!set.isImportingImages());
    QVERIFY(set.images()->size() < 500U);
}

void ImageImportTest::modesStopAndStart()
{
    WorkingSet work;
    ImageSet set(work.services());
    set.scanImagesAtPaths({work.manyPhotos(300)});
    QTRY_VERIFY(set.isImportingImages());
    set.switchImageListMode();
    set.switchImageListMode(); // while the first import is still on its way out
    QTRY_VERIFY(isIdle(set));
    QVERIFY(set.images()->back()->isLoaded());

    WorkingSet other;
    ImageSet large(other.services());
    large.setImageListModeToBrowser(false);
    large.scanImagesAtPaths({other.manyPhotos(20)});
    QTRY_COMPARE(large.images()->size(), 20U);
    QTRY_VERIFY(isIdle(large));
    QVERIFY(!large.images()->front()->imageHasBeenLoaded());
}

void ImageImportTest::removedMeanwhile()
{
    WorkingSet work;
    ImageSet set(work.services());
    const Mirror mirror(set);
    QStringList paths;
    for (int i = 0; i < 100; ++i)
        paths.append(i % 2 ? work.brokenPhoto(QStringLiteral("bad%1.jpg").arg(i))
                           : work.photo(QStringLiteral("good%1.jpg").arg(i)));
    for (const QString &path : paths)
        set.addImage(path, {});
    set.importMissingImages();
    set.filterImages(QStringLiteral("bad"));
    set.selection().selectAll();
    set.removeSelectedImages();
    set.moveIndexes({0}, 1);
    set.filterImages({});
    set.moveIndexes({3, 4, 5}, 0);
    QTRY_VERIFY(isIdle(set));
    // What the user has removed himself is no news to him.
    QCOMPARE(work.alerts.shown().size(), 0);
    QCOMPARE(set.images()->size(), 50U);
    for (const auto &image : *set.images())
        QVERIFY(image->isLoaded());
    QVERIFY(mirror.isTrue());
}

void ImageImportTest::destroyedMeanwhile()
{
    WorkingSet work;
    const QString many = work.manyPhotos(200);
    {
        ImageSet set(work.services());
        set.scanImagesAtPaths({many});
    }
    {
        ImageSet set(work.services());
        set.scanImagesAtPaths({many});
        QTRY_VERIFY(set.isImportingImages());
        set.selection().selectIndexes({199});
    }
    QCoreApplication::processEvents();
    QCOMPARE(work.alerts.complaints(), QStringList());
}

QTEST_GUILESS_MAIN(ImageImportTest)
#include "imageimport_test.moc"
