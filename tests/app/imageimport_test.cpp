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
    HeldImport(GatheredSet &gathered, int count)
    {
        auto &[work, set, gathering, mirror] = gathered;
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

} // namespace

class ImageImportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_gathered = std::make_unique<GatheredSet>(); }

    void cleanup()
    {
        QVERIFY(m_gathered->mirror.isTrue());
        QCOMPARE(m_gathered->work.alerts.complaints(), QStringList());
        m_gathered.reset();
    }

    void reportsUnreadableFiles()
    {
        for (const int count : {1, 10, 12}) {
            m_gathered = std::make_unique<GatheredSet>();
            auto &[work, set, gathering, mirror] = *m_gathered;
            QStringList paths;
            QStringList broken;
            for (int i = 0; i < count; ++i) {
                broken.append(work.brokenPhoto(u"broken%1.jpg"_qs.arg(i)));
                paths << broken.last() << work.photo(u"good%1.jpg"_qs.arg(i));
            }
            work.alerts.expect(u"Cannot open the following %1 file(s):"_qs.arg(count));
            QVERIFY(m_gathered->gather(paths));
            QString text = broken.mid(0, 10).join(u'\n');
            if (count == 12)
                text += u"\n  ...and 2 more..."_qs;
            text += QStringLiteral(
                "\n\nPossible reasons:\n \u2022 unsupported file format\n \u2022 insufficient file "
                "access permissions");
            QCOMPARE(work.alerts.shown().constFirst().text, text);
            QCOMPARE(set.images()->size(), static_cast<std::size_t>(count));
            for (const auto &image : *set.images()) {
                QVERIFY(image->filename().startsWith(u"good"));
                QVERIFY(image->isLoaded() && !image->thumbnail().isNull());
            }
            // A second import has nothing to report.
            gathering.importMissingImages();
            QVERIFY(m_gathered->isIdleSoon());
            QCOMPARE(work.alerts.complaints(), QStringList());
        }
    }

    void reportsUnreadableFolders()
    {
        auto &[work, set, gathering, mirror] = *m_gathered;
        set.setImageListModeToBrowser(false); // where no import comes afterwards
        const QString folder = QFileInfo(work.photo("secret/a.jpg")).path();
        QFile::setPermissions(folder, QFile::Permissions());
        if (QDir(folder).isReadable()) {
            QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            QSKIP("this user may read everything");
        }
        work.alerts.expect(u"Cannot open the following 1 file(s):"_qs);
        QVERIFY(m_gathered->gather({folder}));
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QVERIFY(work.alerts.shown().constFirst().text.startsWith(folder));
    }

    /// Selection and focus stay with their photos when others before them turn out unreadable.
    void keepsTheSelection()
    {
        auto &[work, set, gathering, mirror] = *m_gathered;
        for (const char *name : {"bad1", "a", "bad2", "b", "c"}) {
            const QString file = QLatin1String(name) + u".png"_qs;
            set.addImage(file.startsWith(u"bad") ? work.brokenPhoto(file) : work.photo(file), {});
        }
        QCOMPARE(set.images()->size(), 5U);
        set.selection().select({0, 3, 4}, 3);
        const QSignalSpy focusChanges(&set.selection(), &ImageSelection::focusImageChanged);
        work.alerts.expect(u"Cannot open the following 2 file(s):"_qs);
        gathering.importMissingImages();
        QVERIFY(m_gathered->isIdleSoon());
        QCOMPARE(names(set.selectedImages()), u"b c"_qs);
        QCOMPARE(set.selection().focusIndex(), 1);
        QVERIFY(focusChanges.isEmpty());
    }

    void importsPhotosAddedMeanwhile()
    {
        auto &[work, set, gathering, mirror] = *m_gathered;
        const QString late = work.photo("late.jpg");
        const QSignalSpy ends(&gathering, &ImageGathering::importFinished);
        {
            const HeldImport held(*m_gathered, 40);
            for (int i = 0; i < 20; ++i)
                gathering.scanImagesAtPaths({late});
            QTRY_VERIFY(!gathering.isScanning());
            QVERIFY(gathering.isImportingImages());
        }
        QVERIFY(m_gathered->isIdleSoon());
        QCOMPARE(set.images()->size(), 60U);
        QVERIFY(m_gathered->areAllLoaded());
        QCOMPARE(ends.size(), 1);
        // The line says how many there are when all is over.
        QTRY_COMPARE(work.status.line().text, u"60 images"_qs);
    }

    /// Urgent photos are loaded first, and reported in the order of the set all the same. The import waits
    /// for further photos as long as more are expected.
    void visibleOnesFirst()
    {
        auto &[work, set, gathering, mirror] = *m_gathered;
        for (int i = 0; i < 8; ++i)
            set.addImage(work.photo(u"%1.png"_qs.arg(i)), {});
        ImageImport import(set, 1);
        QStringList loaded;
        QStringList delivered;
        connect(&import, &ImageImport::loaded, this,
                [&](const std::shared_ptr<ImageObject> &image) { loaded += image->filename(); });
        connect(&import, &ImageImport::delivered, this,
                [&](const std::shared_ptr<ImageObject> &image) { delivered += image->filename(); });
        const QSignalSpy ends(&import, &ImageImport::finished);
        const ImageList images = *set.images();
        QVERIFY(!import.loadJoined());
        images[0]->lock();
        import.setExpectsMore(true);
        import.start();
        import.loadFirst({images[6], images[4]});
        images[0]->unlock();
        QTRY_COMPARE(delivered.size(), 8);
        loaded.removeOne(u"0"_qs); // may have been begun before
        QCOMPARE(loaded.join(u' '), u"6 4 1 2 3 5 7"_qs);
        set.addImage(work.photo("8.png"), {});
        QVERIFY(import.loadJoined());
        QTRY_COMPARE(delivered.join(u' '), u"0 1 2 3 4 5 6 7 8"_qs);
        QVERIFY(ends.isEmpty());
        import.setExpectsMore(false);
        QTRY_COMPARE(ends.size(), 1);
        QVERIFY(!import.loadJoined());
        // One that waits ends with its owner.
        import.setExpectsMore(true);
        import.start();
        QTest::qWait(20);
    }

    void stopsAndContinues()
    {
        auto &[work, set, gathering, mirror] = *m_gathered;
        {
            const HeldImport held(*m_gathered, 30);
            gathering.stopImportingImages();
        }
        QVERIFY(m_gathered->isIdleSoon());
        QCOMPARE(set.images()->size(), 30U);
        QVERIFY(!(*set.images())[3]->metadata());
        QTRY_COMPARE(work.status.line().text, u"30 images"_qs);
        QVERIFY(!work.status.line().canBeStopped);

        gathering.importMissingImages();
        QVERIFY(m_gathered->isIdleSoon());
        QVERIFY(m_gathered->areAllLoaded());

        // A stopped scan starts no import.
        gathering.scanImagesAtPaths({QFileInfo(set.images()->front()->path()).path()});
        gathering.stopImportingImages();
        QTRY_VERIFY(!gathering.isScanning());
        QVERIFY(!gathering.isImportingImages());
    }

    void modesStopAndStart()
    {
        auto &[work, set, gathering, mirror] = *m_gathered;
        {
            const HeldImport held(*m_gathered, 30);
            set.switchImageListMode();
            set.switchImageListMode(); // while the first import is still on its way out
        }
        QVERIFY(m_gathered->isIdleSoon());
        QVERIFY(m_gathered->areAllLoaded());

        // Large Batch mode stops an import, and begins none.
        set.setImageListModeToBrowser(false);
        QVERIFY(m_gathered->gather({work.photo("late.jpg")}));
        QCOMPARE(set.images()->size(), 31U);
        QVERIFY(!set.images()->back()->metadata());
    }

    void removedMeanwhile()
    {
        auto &[work, set, gathering, mirror] = *m_gathered;
        for (int i = 0; i < 100; ++i)
            set.addImage(
                i < 50 ? work.brokenPhoto(u"bad%1.jpg"_qs.arg(i)) : work.photo(u"good%1.jpg"_qs.arg(i)), {});
        // Two are being loaded when they are removed, all others are done.
        const ImageList held(set.images()->begin(), set.images()->begin() + 2);
        for (const auto &image : held)
            image->lock();
        gathering.importMissingImages();
        QTRY_VERIFY(set.images()->back()->isLoaded());
        set.filterImages(u"bad"_qs);
        set.selection().selectAll();
        set.removeSelectedImages();
        set.filterImages({});
        set.moveIndexes({3, 4, 5}, 0);
        for (const auto &image : held)
            image->unlock();
        QVERIFY(m_gathered->isIdleSoon());
        // The user removed them, so they are not reported.
        QCOMPARE(work.alerts.shown().size(), 0);
        QCOMPARE(set.images()->size(), 50U);
        QVERIFY(m_gathered->areAllLoaded());
    }

    void destroyedMeanwhile()
    {
        m_gathered->gathering.scanImagesAtPaths({m_gathered->work.manyPhotos(200)});
        m_gathered = std::make_unique<GatheredSet>();
        {
            const HeldImport held(*m_gathered, 200);
            m_gathered->set.selection().selectIndexes({199});
        }
        m_gathered = std::make_unique<GatheredSet>();
        QCoreApplication::processEvents();
    }

private:
    std::unique_ptr<GatheredSet> m_gathered;
};

QTEST_GUILESS_MAIN(ImageImportTest)
#include "imageimport_test.moc"
