// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/testenvironment.h"
#include "support/testpictures.h"
#include "support/testservices.h"
#include "ui/browser/photopromise.h"
#include "ui/browser/photosource.h"
#include "ui/browser/promisedfiles.h"

#include <QTest>
#include <QUrl>

using namespace plexa;
using namespace plexa::test;

/// What a drag of real photos gives to others.
class PhotoPromiseTest : public QObject
{
    Q_OBJECT

private:
    TestFolder m_folder;
    TestPhotoServices m_services;

private Q_SLOTS:
    void copiesAndPictures()
    {
        const QImage picture = flatPicture({320, 200}, Qt::darkGreen);
        PhotoPromise::Contents contents;
        for (const QString &name : {u"a.png"_qs, u"broken.png"_qs}) {
            QVERIFY(picture.save(m_folder.path(name)));
            contents.photos.push_back(std::make_shared<ImageObject>(m_folder.path(name), m_services.all));
        }
        QVERIFY(QFile::resize(m_folder.path("broken.png"), 100));
        for (const QString &text : {u"first"_qs, u"second"_qs}) {
            WPresetValues values = WPresetValues::forNewPreset(m_services.fonts);
            values.textTokens = {text};
            contents.presets.push_back({std::make_shared<WPreset>(values), values});
        }
        contents.savingPreset.imageFormat = u"PNG"_qs;
        contents.threads = 2;
        QStringList failures;
        QString target;
        contents.reportFailures = [&](const QStringList &lines) { failures += lines; };
        contents.startSaving = [&](const QString &folder) {
            target = folder;
            return true;
        };
        std::vector<QImage> expected;
        for (const AppliedPreset &preset : contents.presets)
            expected.push_back(contents.photos.front()->createWatermarkedImage(preset));
        QVERIFY(expected[0] != expected[1] && expected[0] != picture);

        PromisedFiles files(std::make_unique<PhotoPromise>(contents), std::make_shared<PrivateFolders>(),
                            PromisedFiles::Use::Clipboard);
        // Two presets, two photos, one of which cannot be read: the list holds what there is.
        QCOMPARE(PhotoPromise(contents).names().size(), 4);
        const QList<QUrl> urls = files.urls();
        QCOMPARE(urls.size(), 2);
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(urls.at(i).fileName(), u"image%1"_qs.arg(i));
            QCOMPARE(pixelsOf(QImage(urls.at(i).toLocalFile())),
                     pixelsOf(expected[static_cast<std::size_t>(i)]));
        }
        QCOMPARE(failures.size(), 2);
        QVERIFY(failures.first().startsWith(contents.photos[1]->path() + u": "_qs));

        // The first photo with its first preset, in the formats that are offered.
        for (const char *type : {"image/png", "image/bmp", "image/jpeg", "image/tiff", "image/gif"}) {
            QVERIFY2(files.hasFormat(QLatin1String(type)), type);
            const QImage decoded = QImage::fromData(files.data(QLatin1String(type)));
            QCOMPARE(decoded.size(), expected[0].size());
        }
        QCOMPARE(pixelsOf(QImage::fromData(files.data(u"image/png"_qs))), pixelsOf(expected[0]));

        QVERIFY(PhotoPromise(contents).saveInto(m_folder.path()));
        QCOMPARE(target, m_folder.path());

        // And the photos as a grid sees them.
        const auto list = std::make_shared<PhotoSource::Photos>(contents.photos);
        const PhotoSource source(list);
        QCOMPARE(source.indexOf(list->back().get()), 1);
        QCOMPARE(source.indexOf(nullptr), -1);
        QVERIFY(source.thumbnail(1, ImageBrowserSource::ThumbnailKind::Original).isNull());
    }
};

QTEST_MAIN(PhotoPromiseTest)
#include "photopromise_test.moc"
