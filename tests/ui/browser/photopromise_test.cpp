// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/testenvironment.h"
#include "ui/browser/photopromise.h"
#include "ui/browser/photosource.h"
#include "ui/browser/promisedfiles.h"

#include <QColorSpace>
#include <QTest>
#include <QUrl>

using namespace plexa;

namespace
{

/// Without the tag that a file has and a picture in memory has not.
QImage pixels(QImage image)
{
    image.setColorSpace({});
    return image.convertToFormat(QImage::Format_RGB32);
}

} // namespace

/// What a drag of real photos gives to others.
class PhotoPromiseTest : public QObject
{
    Q_OBJECT

private:
    test::TestFolder m_folder;
    FontCatalog m_fonts;
    LocaleFormat m_locale{QStringLiteral("en_US")};
    PixelCache m_cache{64 << 20};
    ByteBudget m_budget{1'000'000'000};
    PhotoServices m_services{m_fonts, m_locale, m_cache, m_budget, {}};

private Q_SLOTS:
    void copiesAndPictures()
    {
        QImage picture(320, 200, QImage::Format_RGB32);
        picture.fill(Qt::darkGreen);
        PhotoPromise::Contents contents;
        for (const QString &name : {QStringLiteral("a.png"), QStringLiteral("broken.png")}) {
            QVERIFY(picture.save(m_folder.path(name)));
            contents.photos.push_back(std::make_shared<ImageObject>(m_folder.path(name), m_services));
        }
        QVERIFY(QFile::resize(m_folder.path(QStringLiteral("broken.png")), 100));
        for (const QString &text : {QStringLiteral("first"), QStringLiteral("second")}) {
            WPresetValues values = WPresetValues::forNewPreset(m_fonts);
            values.textTokens = {text};
            contents.presets.push_back({std::make_shared<WPreset>(values), values});
        }
        contents.savingPreset.imageFormat = QStringLiteral("PNG");
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
            expected.push_back(contents.photos.front()->savedImage(&preset, {}));
        QVERIFY(expected[0] != expected[1] && expected[0] != picture);

        PromisedFiles files(std::make_unique<PhotoPromise>(contents), std::make_shared<PrivateFolders>(),
                            PromisedFiles::Use::Clipboard);
        // Two presets, two photos, one of which cannot be read: the list holds what there is.
        QCOMPARE(PhotoPromise(contents).names().size(), 4);
        const QList<QUrl> urls = files.urls();
        QCOMPARE(urls.size(), 2);
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(urls.at(i).fileName(), QStringLiteral("image%1").arg(i));
            QCOMPARE(pixels(QImage(urls.at(i).toLocalFile())), pixels(expected[static_cast<std::size_t>(i)]));
        }
        QCOMPARE(failures.size(), 2);
        QVERIFY(failures.first().startsWith(contents.photos[1]->path() + QStringLiteral(": ")));

        // The first photo with its first preset, in the formats that are offered.
        for (const char *type : {"image/png", "image/bmp", "image/jpeg", "image/tiff", "image/gif"}) {
            QVERIFY2(files.hasFormat(QLatin1String(type)), type);
            const QImage decoded = QImage::fromData(files.data(QLatin1String(type)));
            QCOMPARE(decoded.size(), expected[0].size());
        }
        QCOMPARE(pixels(QImage::fromData(files.data(QStringLiteral("image/png")))), pixels(expected[0]));

        QVERIFY(PhotoPromise(contents).saveInto(m_folder.path()));
        QCOMPARE(target, m_folder.path());

        // And the photos as a grid sees them.
        const auto list = std::make_shared<PhotoSource::Photos>(contents.photos);
        const PhotoSource source(list);
        QCOMPARE(source.count(), 2);
        QCOMPARE(source.filename(0), QStringLiteral("a"));
        QCOMPARE(source.indexOf(list->back().get()), 1);
        QCOMPARE(source.indexOf(nullptr), -1);
        QVERIFY(source.thumbnail(1, ImageBrowserSource::ThumbnailKind::Original).isNull());
    }
};

QTEST_MAIN(PhotoPromiseTest)
#include "photopromise_test.moc"
