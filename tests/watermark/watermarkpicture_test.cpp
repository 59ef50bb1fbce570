// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/fontcatalog.h"
#include "support/testenvironment.h"
#include "watermark/textlayout.h"
#include "watermark/watermarkpicture.h"

#include <QBuffer>
#include <QFile>
#include <QtTest>

#include <thread>

using namespace plexa;

namespace
{

QByteArray svgOf(const QByteArray &content, const QByteArray &attributes = R"(viewBox="0 0 20 10")")
{
    return R"(<svg xmlns="http://www.w3.org/2000/svg" )" + attributes + '>' + content + "</svg>";
}

const QByteArray kCircle = R"(<circle cx="5" cy="5" r="4" fill="#ff0000"/>)";

/// A file as the only representation. Nothing but the picture knows of the archive.
Result<WatermarkPicture> archivedPicture(const QByteArray &file)
{
    KeyedArchiver archiver;
    const KeyedArchiver::Reference reference = archiver.addImage({QSizeF(1, 1), file, {}});
    archiver.top().setObject(QLatin1StringView("picture"), reference);
    return archiver.finish().and_then(&ArchivedValue::readArchive).map([](const ArchivedValue &top) {
        return WatermarkPicture::fromArchive(top.value(QLatin1StringView("picture")));
    });
}

/// Of 60 x 30 pixels.
Result<WatermarkPicture> archivedPicture(qsizetype bytesLost)
{
    QImage image(60, 30, QImage::Format_ARGB32);
    for (int i = 0; i < 1800; ++i)
        image.setPixel(i % 60, i / 60, QRgb(i * 0x9e3779b9U));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return archivedPicture(buffer.data().chopped(bytesLost));
}

} // namespace

class WatermarkPictureTest : public QObject
{
    Q_OBJECT

private:
    QString fileWith(const QString &name, const QByteArray &contents)
    {
        QFile file(m_folder.path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
            return {};
        return file.fileName();
    }

    test::TestFolder m_folder;

private Q_SLOTS:
    void drawingsAreSharpAtEverySize();
    void drawingsKnowTheirSize_data();
    void drawingsKnowTheirSize();
    void drawingsReferToNothingOutside_data();
    void drawingsReferToNothingOutside();
    void badFilesAreNamed_data();
    void badFilesAreNamed();
    void largeReductionsDoNotAlias();
    void logosAreRead_data();
    void logosAreRead();
    void cameraTurnsAreFollowed();
    void threadsShareOnePicture_data();
    void threadsShareOnePicture();
    void drawingsWithTextAreDrawnBesideTexts();
    void sizesAreKept();
};

void WatermarkPictureTest::drawingsAreSharpAtEverySize()
{
    const Result<WatermarkPicture> picture =
        WatermarkPicture::load(fileWith(u"logo.SVG"_qs, "\n\n" + svgOf(kCircle)));
    QVERIFY(picture.has_value());
    QCOMPARE(picture->size(), QSizeF(20, 10));
    for (const int width : {40, 4000}) {
        const QImage image = picture->imageOfSize(QSize(width, width / 2));
        QCOMPARE(image.size(), QSize(width, width / 2));
        // The middle row crosses the circle's edge twice, in a pixel each, whatever the size.
        int filled = 0;
        int partly = 0;
        for (int x = 0; x < width; ++x) {
            const int alpha = qAlpha(image.pixel(x, width / 4));
            filled += alpha == 255 ? 1 : 0;
            partly += alpha > 0 && alpha < 255 ? 1 : 0;
        }
        QVERIFY2(partly <= 4, qPrintable(QString::number(partly)));
        QVERIFY2(std::abs(filled - width * 8 / 20) <= 4, qPrintable(QString::number(filled)));
    }
}

void WatermarkPictureTest::drawingsKnowTheirSize_data()
{
    QTest::addColumn<QByteArray>("attributes");
    QTest::addColumn<QSizeF>("size");
    QTest::newRow("view box") << QByteArray(R"(viewBox="-5 -5 33.5 10")") << QSizeF(33.5, 10);
    QTest::newRow("sides") << QByteArray(R"(width="300" height="200")") << QSizeF(300, 200);
    QTest::newRow("with a part used twice")
        << QByteArray(R"(viewBox="0 0 8 4" xmlns:xlink="http://www.w3.org/1999/xlink")") << QSizeF(8, 4);
    QTest::newRow("both: the view box has the proportions")
        << QByteArray(R"(width="100%" height="100%" viewBox="0 0 64 32")") << QSizeF(64, 32);
}

void WatermarkPictureTest::drawingsKnowTheirSize()
{
    QFETCH(QByteArray, attributes);
    const bool isLinked = attributes.contains("xlink");
    const QByteArray content =
        isLinked ? R"(<g id="a">)" + kCircle + R"(</g><use xlink:href="#a"/>)" : kCircle;
    const Result<WatermarkPicture> picture = WatermarkPicture::fromSvg(svgOf(content, attributes));
    QVERIFY(picture.has_value());
    QTEST(picture->size(), "size");
}

void WatermarkPictureTest::drawingsReferToNothingOutside_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("outcome");
    const QImage red = [] {
        QImage image(2, 2, QImage::Format_RGB32);
        image.fill(Qt::red);
        return image;
    }();
    QByteArray png;
    QBuffer buffer(&png);
    red.save(&buffer, "PNG");
    const auto image = [](const QByteArray &href) {
        return R"(<image width="9" height="9" xlink:href=")" + href + R"("/>)";
    };
    const auto data = [&image](const QByteArray &bytes) {
        return image("data:image/png;base64," + bytes.toBase64());
    };
    QTest::newRow("a picture within") << data(png) << "";
    QTest::newRow("a gradient within") << QByteArray("<rect fill='url(#g)' width='9' height='9'/>") << "";
    QTest::newRow("a sheet within") << QByteArray("<style>rect { fill: url( '#g' ) }</style>") << "";
    const QByteArray outside = m_folder.path(u"red.png"_qs).toUtf8();
    red.save(m_folder.path(u"red.png"_qs));
    const char *const refused = "another file";
    QTest::newRow("a file's picture") << image(outside) << refused;
    QTest::newRow("a file's picture as an address") << image("file://" + outside) << refused;
    QTest::newRow("without a prefix") << QByteArray(R"(<image href="red.png"/>)") << refused;
    QTest::newRow("a part of another file") << QByteArray(R"(<use xlink:href="other.svg#a"/>)") << refused;
    QTest::newRow("a fill") << QByteArray("<rect fill='URL( other.svg#a)'/>") << refused;
    QTest::newRow("a style") << QByteArray("<rect style='fill:url(/etc/x)'/>") << refused;
    QTest::newRow("a sheet") << QByteArray("<style>rect { fill: u<![CDATA[rl(/x)]]> }</style>") << refused;
    QTest::newRow("a sheet's sheet") << QByteArray("<style>@import '/x.css';</style>") << refused;
    QTest::newRow("a sheet beside") << QByteArray(R"(<?xml-stylesheet type="text/css" href="/x"?>)")
                                    << refused;
    const char *const unreadable = "cannot be read";
    QTest::newRow("no picture") << data("none") << unreadable;
    QTest::newRow("a cut picture") << data(png.first(40)) << unreadable;
    QTest::newRow("a drawing within") << data(svgOf(kCircle)) << unreadable;
    QTest::newRow("a file named like data") << image("data:/../" + outside) << unreadable;
    QImage large(8000, 6000, QImage::Format_Mono);
    large.fill(0);
    QByteArray largePng;
    QBuffer largeBuffer(&largePng);
    large.save(&largeBuffer, "PNG");
    QTest::newRow("a huge picture") << data(largePng) << "million pixels";
}

void WatermarkPictureTest::drawingsReferToNothingOutside()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, outcome);
    const Result<WatermarkPicture> picture = WatermarkPicture::fromSvg(
        svgOf(content, R"(viewBox="0 0 9 9" xmlns:xlink="http://www.w3.org/1999/xlink")"));
    QCOMPARE(picture.has_value(), outcome.isEmpty());
    if (!picture)
        QVERIFY2(picture.error().text.contains(outcome), qPrintable(picture.error().text));
}

void WatermarkPictureTest::badFilesAreNamed_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("contents");
    const int deep = 100'000;
    QByteArray nested;
    for (int i = 0; i < deep; ++i)
        nested += "<g>";
    for (int i = 0; i < deep; ++i)
        nested += "</g>";
    QTest::newRow("empty") << "empty.png" << QByteArray();
    QTest::newRow("text") << "text.png" << QByteArray("not a picture");
    QTest::newRow("cut drawing") << "cut.svg" << svgOf(kCircle).chopped(3);
    QTest::newRow("other XML") << "page.svg" << QByteArray("<?xml version=\"1.0\"?><html/>");
    QTest::newRow("no size") << "flat.svg" << svgOf(kCircle, R"(viewBox="0 0 0 10" width="0" height="0")");
    QByteArray laughs = R"(<g id="a0"><rect width="1" height="1"/></g>)";
    for (int i = 1; i < 30; ++i) {
        const QByteArray use = "<use xlink:href=\"#a" + QByteArray::number(i - 1) + "\"/>";
        laughs += "<g id=\"a" + QByteArray::number(i) + "\">" + use.repeated(10) + "</g>";
    }
    const QByteArray links = R"(viewBox="0 0 9 9" xmlns:xlink="http://www.w3.org/1999/xlink")";
    QTest::newRow("used again and again") << "laughs.svg" << svgOf(laughs, links);
    QTest::newRow("used by itself") << "loop.svg"
                                    << svgOf(R"(<g id="a"><g id="b"><use xlink:href="#a"/></g></g>)", links);
    QTest::newRow("compressed") << "logo.svgz" << QByteArray("\x1f\x8b\x08\x00 compressed");
    QTest::newRow("nested without end") << "deep.svg" << svgOf(nested);
}

void WatermarkPictureTest::badFilesAreNamed()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, contents);
    const QString path = fileWith(name, contents);
    const Result<WatermarkPicture> picture = WatermarkPicture::load(path);
    QVERIFY(!picture.has_value());
    QVERIFY2(picture.error().text.contains(path), qPrintable(picture.error().text));
    if (name.endsWith(u".svgz"_qs))
        QVERIFY2(picture.error().text.contains(u"plain SVG"_qs), qPrintable(picture.error().text));
    QVERIFY(!WatermarkPicture::load(m_folder.path()).has_value());
}

void WatermarkPictureTest::largeReductionsDoNotAlias()
{
    QImage chequered(1000, 1000, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < 1000; ++y) {
        for (int x = 0; x < 1000; ++x)
            chequered.setPixel(x, y, (x + y) % 2 != 0 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
    }
    const WatermarkPicture picture = WatermarkPicture::fromImage(chequered);
    for (const int side : {300, 77, 10}) {
        const QImage small = picture.imageOfSize(QSize(side, side));
        for (int i = 1; i < side - 1; ++i) {
            const int gray = qGray(small.pixel(i, (i * 7) % (side - 2) + 1));
            QVERIFY2(gray > 110 && gray < 205, qPrintable(QString::number(gray)));
        }
    }
}

void WatermarkPictureTest::logosAreRead_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("logos/badge-512x512.png") << QSize(512, 512);
    QTest::newRow("logos/stamp-97x61-palette.png") << QSize(97, 61);
    QTest::newRow("logos/wordmark-1200x301.png") << QSize(1200, 301);
    QTest::newRow("jpeg/cmyk-ycck-small.jpg") << QSize();
    QTest::newRow("png/gray16.png") << QSize(32, 32);
}

void WatermarkPictureTest::logosAreRead()
{
    if (test::photosFolder().isEmpty())
        QSKIP("There is no folder of photos.");
    QFETCH(QSize, size);
    const QString path = test::photosFolder() + u'/' + QLatin1StringView(QTest::currentDataTag());
    const Result<WatermarkPicture> picture = WatermarkPicture::load(path);
    QVERIFY2(picture.has_value(), qPrintable(picture ? QString() : picture.error().text));
    if (!size.isEmpty())
        QCOMPARE(picture->size(), QSizeF(size));
    QCOMPARE(picture->imageOfSize(QSize(200, 50)).format(), QImage::Format_ARGB32_Premultiplied);
    QCOMPARE(picture->imageOfSize(QSize(200, 50)).size(), QSize(200, 50));
}

void WatermarkPictureTest::cameraTurnsAreFollowed()
{
    if (test::photosFolder().isEmpty())
        QSKIP("There is no folder of photos.");
    const auto isTheSameInAnArchive = [](const QString &path, const WatermarkPicture &loaded) {
        QFile file(path);
        const bool isOpen = file.open(QIODevice::ReadOnly);
        const Result<WatermarkPicture> archived = archivedPicture(file.readAll());
        return isOpen && archived && archived->size() == loaded.size() && archived->image() == loaded.image();
    };
    for (const char *turn : {"TopRight", "BottomRight", "LeftTop", "RightTop", "LeftBottom"}) {
        const QString path = m_folder.path(u"turned.tif"_qs);
        QProcess::execute(test::magickConvert(), {u"-size"_qs, u"90x600"_qs, u"plasma:red-blue"_qs,
                                                  u"-orient"_qs, QString::fromLatin1(turn), path});
        const Result<WatermarkPicture> picture = WatermarkPicture::load(path);
        QVERIFY2(picture && isTheSameInAnArchive(path, *picture), turn);
    }
    // Eight files that show the same when upright.
    const QString folder = test::photosFolder() + u"/jpeg/orientation/"_qs;
    const QStringList names = QDir(folder).entryList({u"*.jpg"_qs}, QDir::Files, QDir::Name);
    QVERIFY(names.size() >= 8);
    QHash<QString, QImage> firstOfSeries;
    for (const QString &name : names) {
        const Result<WatermarkPicture> picture = WatermarkPicture::load(folder + name);
        QVERIFY(picture.has_value());
        QVERIFY2(isTheSameInAnArchive(folder + name, *picture), qPrintable(name));
        const QImage small = picture->imageOfSize(QSize(24, 24));
        const QString series = name.section(u'_', 0, 0).section(u'-', 0, 0);
        QImage &first = firstOfSeries[series];
        if (first.isNull())
            first = small;
        double difference = 0;
        for (int y = 0; y < 24; ++y) {
            for (int x = 0; x < 24; ++x)
                difference += std::abs(qGray(small.pixel(x, y)) - qGray(first.pixel(x, y))) / 576.0;
        }
        QVERIFY2(difference < 12, qPrintable(name + QString::number(difference)));
    }
}

void WatermarkPictureTest::threadsShareOnePicture_data()
{
    QTest::addColumn<QByteArray>("svg");
    QTest::addColumn<qsizetype>("bytesLost"); // of pixels in an archive
    QTest::newRow("a drawing") << svgOf(kCircle) << qsizetype{0};
    QTest::newRow("archived pixels") << QByteArray() << qsizetype{0};
    QTest::newRow("archived pixels that end early") << QByteArray() << qsizetype{100};
}

void WatermarkPictureTest::threadsShareOnePicture()
{
    QFETCH(QByteArray, svg);
    QFETCH(qsizetype, bytesLost);
    const Result<WatermarkPicture> picture =
        svg.isEmpty() ? archivedPicture(bytesLost) : WatermarkPicture::fromSvg(svg);
    QVERIFY(picture.has_value());
    QCOMPARE(picture->fault(), QString());
    const QSize size = bytesLost > 0 ? QSize(0, 0) : QSize(200, 100);
    const QImage expected = picture->imageOfSize(QSize(200, 100));
    QCOMPARE(expected.size(), size);
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 6; ++i) {
        threads.emplace_back([&, i] {
            for (int k = 0; k < 10; ++k) {
                const WatermarkPicture copy = *picture;
                const int wider = bytesLost > 0 ? 0 : (i + k) % 2;
                if (copy.imageOfSize(QSize(200 + (i + k) % 2, 100)).width() != size.width() + wider ||
                    copy.imageOfSize(QSize(200, 100)) != expected ||
                    copy.image().isNull() != expected.isNull() || copy.fault().isEmpty() != (bytesLost == 0))
                    ++wrong;
                KeyedArchiver archiver;
                archiver.addCopy(copy.original());
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(wrong.load(), 0);
}

void WatermarkPictureTest::drawingsWithTextAreDrawnBesideTexts()
{
    const Result<WatermarkPicture> picture =
        WatermarkPicture::fromSvg(svgOf(R"(<text x="1" y="8" font-size="6">Text \xe6\xbc\xa2</text>)"));
    QVERIFY(picture.has_value());
    const FontCatalog fonts;
    const auto width = [&](int i) {
        const auto setting =
            setText(u"Text \u6f22"_qs, fonts, u"DejaVuSans"_qs, TextAlignment::Left, 50.0 + i);
        return setting ? setting->glyphs.back().at.x() : -1;
    };
    const double expectedWidth = width(0);
    QList<QImage> expected;
    for (int i = 0; i < 20; ++i)
        expected.append(picture->imageOfSize(QSize(200 + i, 100)));
    const auto again = WatermarkPicture::fromSvg(picture->svg()); // shares no cached sizes
    std::atomic<int> wrong = 0;
    std::vector<std::jthread> threads;
    for (int k = 0; k < 6; ++k) {
        threads.emplace_back([&, k] {
            for (int i = 0; i < 20; ++i) {
                const bool isRight = k % 2 == 0 ? again->imageOfSize(QSize(200 + i, 100)) == expected.at(i)
                                                : width(i) == expectedWidth;
                wrong += isRight ? 0 : 1;
            }
        });
    }
    threads.clear();
    QCOMPARE(wrong.load(), 0);
}

void WatermarkPictureTest::sizesAreKept()
{
    const WatermarkPicture picture = WatermarkPicture::fromImage(QImage(10, 10, QImage::Format_RGB32));
    const QImage wide = picture.imageOfSize(QSize(4200, 4000)); // the width of a large photo
    const QImage small = picture.imageOfSize(QSize(30, 20));
    QCOMPARE(picture.imageOfSize(QSize(4200, 4000)).constBits(), wide.constBits());
    QCOMPARE(picture.imageOfSize(QSize(30, 20)).constBits(), small.constBits());
}

QTEST_MAIN(WatermarkPictureTest)
#include "watermarkpicture_test.moc"
