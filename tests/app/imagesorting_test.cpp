// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/imagesorting.h"
#include "app/workingset.h"
#include "support/programs.h"

using namespace plexa;
using namespace plexa::test;

using Key = ImageSorting::Key;

class ImageSortingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_gathered = std::make_unique<GatheredSet>();
        m_gathered->set.setImageListModeToBrowser(false); // which loads none
        m_sorting = std::make_unique<ImageSorting>(m_gathered->set, m_gathered->work.status, 3);
    }

    void cleanup()
    {
        QVERIFY(m_gathered->mirror.isTrue());
        m_sorting.reset();
        m_gathered.reset();
    }

    void sorts()
    {
        ImageSet &set = m_gathered->set;
        // Dates as exiftool writes them; "-" for none.
        for (const auto &[name, date, fraction] : {std::tuple{"IMG_10", "2020:01:02 03:04:05", "5"},
                                                   {"x9", "-", ""},
                                                   {"IMG_9", "2020:01:02 03:04:05", "40"},
                                                   {"x10", "-", ""},
                                                   {"img_11", "1999:12:31 23:59:59", ""},
                                                   {"a", "2024:03:31 02:30:00", ""},
                                                   {"IMG_2", "2020:01:02 03:04:05", "40"}}) {
            const QString path = m_gathered->work.photo(QString::fromLatin1(name) + u".jpg"_qs);
            if (*date != '-')
                outputOf("exiftool -q -overwrite_original -DateTimeOriginal=%1 -SubSecTimeOriginal=%2 %3",
                         QString::fromLatin1(date), QString::fromLatin1(fraction), path);
            set.addImage(path, {});
        }
        set.addImage(m_gathered->work.brokenPhoto(u"broken.jpg"_qs), {});
        const auto at = [&](int index) { return set.images()->at(static_cast<std::size_t>(index)); };
        // The photo that was edited last has another date than its file.
        QVERIFY(at(5)->loadImageFromDisk());
        ImageMetadata edited = *at(5)->metadata();
        edited.setExifDateTimeOriginal(QDateTime(QDate(1990, 1, 1), QTime(1, 1)));
        at(5)->setMetadata(edited);
        const QString gathered = names(*set.images());
        set.selection().select({2, 3}, 3);
        const ImageList selected = set.selectedImages();

        QCOMPARE(sorted(Key::CaptureDate), u"a img_11 IMG_9 IMG_2 IMG_10 broken x9 x10"_qs);
        QVERIFY(set.selectedImages() == selected);
        QVERIFY(at(set.selection().focusIndex()) == selected.back());
        set.filterImages(u"img"_qs);
        QCOMPARE(sorted(Key::Name), u"a broken IMG_2 IMG_9 IMG_10 img_11 x9 x10"_qs);
        QCOMPARE(shownNames(set), u"IMG_2 IMG_9 IMG_10 img_11"_qs);
        m_sorting->reverse();
        QCOMPARE(names(*set.images()), u"x10 x9 img_11 IMG_10 IMG_9 IMG_2 broken a"_qs);
        QCOMPARE(shownNames(set), u"img_11 IMG_10 IMG_9 IMG_2"_qs);
    }

    void isStoppedOrOvertaken()
    {
        ImageSet &set = m_gathered->set;
        for (const char *name : {"c", "b", "a"})
            set.addImage(m_gathered->work.folder.path(name), {});
        m_sorting->sort(Key::CaptureDate);
        QVERIFY(m_sorting->isRunning());
        m_sorting->stop();
        QTRY_VERIFY(!m_sorting->isRunning());
        QCOMPARE(shownNames(set), u"c b a"_qs);
        // Photos are added and removed before the end.
        m_sorting->sort(Key::Name);
        set.addImage(m_gathered->work.folder.path("0"), {});
        set.removeImages({set.images()->at(1)});
        QTRY_VERIFY(!m_sorting->isRunning());
        QCOMPARE(shownNames(set), u"a c 0"_qs);
    }

private:
    QString sorted(Key key)
    {
        m_sorting->sort(key);
        m_sorting->sort(Key::Name); // one at a time
        return QTest::qWaitFor([this] { return !m_sorting->isRunning(); }, 60'000)
                   ? names(*m_gathered->set.images())
                   : QString();
    }

    std::unique_ptr<GatheredSet> m_gathered;
    std::unique_ptr<ImageSorting> m_sorting;
};

QTEST_GUILESS_MAIN(ImageSortingTest)
#include "imagesorting_test.moc"
