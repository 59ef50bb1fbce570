// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/fontcatalog.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/picturedifference.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"
#include "watermark/textlayout.h"
#include "watermark/watermarkpicture.h"

#include <QtTest>

#include <thread>

using namespace plexa;
using namespace plexa::test;

namespace
{

QByteArray svgOf(const QByteArray &content, const QByteArray &attributes = R"(viewBox="0 0 20 10")")
{
    return R"(<svg xmlns="http://www.w3.org/2000/svg" )" + attributes + '>' + content + "</svg>";
}

// Outside of the class: moc takes a part of this for a comment.
const QByteArray kLinks = R"(viewBox="0 0 9 9" xmlns:xlink="http://www.w3.org/1999/xlink")";
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

struct Drawing {
    Text name;
    QByteArray content;
    QByteArray attributes;
    QSizeF size;
};

struct Reference {
    Text name;
    QByteArray content;
    Text outcome; ///< part of the message; empty: the drawing is valid
};

struct BadFile {
    Text name;
    QByteArray contents;
};

struct Logo {
    Text name;
    QSize size;
};

struct Shared {
    Text name;
    Result<WatermarkPicture> (*picture)();
    bool isFaulty;
};

} // namespace

class WatermarkPictureTest : public QObject
{
    Q_OBJECT

private:
    QString fileWith(const QString &name, const QByteArray &contents)
    {
        const QString path = m_folder.path(name);
        return writeFile(path, contents) ? path : QString();
    }

    TestFolder m_folder;

private Q_SLOTS:
    void drawingsAreSharpAtEverySize()
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

    void drawingsKnowTheirSize_data()
    {
        addRows<Drawing>({
            {"view box", kCircle, "viewBox='-5 -5 33.5 10'", {33.5, 10}},
            {"sides", kCircle, "width='300' height='200'", {300, 200}},
            {"a part used twice", "<g id='a'>" + kCircle + "</g><use xlink:href='#a'/>", kLinks, {9, 9}},
            {"view box and sides: the view box has the proportions",
             kCircle,
             "width='100%' height='100%' viewBox='0 0 64 32'",
             {64, 32}},
        });
    }

    void drawingsKnowTheirSize()
    {
        const auto [name, content, attributes, size] = currentRow<Drawing>();
        const Result<WatermarkPicture> picture = WatermarkPicture::fromSvg(svgOf(content, attributes));
        QVERIFY(picture.has_value());
        QCOMPARE(picture->size(), size);
    }

    void drawingsReferToNothingOutside_data()
    {
        const QImage red = flatPicture({2, 2}, Qt::red);
        const QByteArray png = encoded(red, "PNG");
        const QByteArray outside = m_folder.path("red.png").toUtf8();
        red.save(m_folder.path("red.png"));
        const auto image = [](const QByteArray &href) {
            return "<image width='9' height='9' xlink:href='" + href + "'/>";
        };
        const auto data = [&image](const QByteArray &bytes) {
            return image("data:image/png;base64," + bytes.toBase64());
        };
        const QByteArray large = encoded(flatPicture({8000, 6000}, Qt::black, QImage::Format_Mono), "PNG");
        const char *const refused = "another file";
        const char *const unreadable = "cannot be read";
        addRows<Reference>({
            {"a picture within", data(png), ""},
            {"a gradient within", "<rect fill='url(#g)' width='9' height='9'/>", ""},
            {"a sheet within", "<style>rect { fill: url( '#g' ) }</style>", ""},
            {"a file's picture", image(outside), refused},
            {"a file's picture as an address", image("file://" + outside), refused},
            {"without a prefix", "<image href='red.png'/>", refused},
            {"a part of another file", "<use xlink:href='other.svg#a'/>", refused},
            {"a fill", "<rect fill='URL( other.svg#a)'/>", refused},
            {"a style", "<rect style='fill:url(/etc/x)'/>", refused},
            {"a sheet", "<style>rect { fill: u<![CDATA[rl(/x)]]> }</style>", refused},
            {"a sheet's sheet", "<style>@import '/x.css';</style>", refused},
            {"a sheet beside", "<?xml-stylesheet type='text/css' href='/x'?>", refused},
            {"no picture", data("none"), unreadable},
            {"a truncated picture", data(png.first(40)), unreadable},
            {"a drawing within", data(svgOf(kCircle)), unreadable},
            {"a file named like data", image("data:/../" + outside), unreadable},
            {"a huge picture", data(large), "million pixels"},
        });
    }

    void drawingsReferToNothingOutside()
    {
        const auto [name, content, outcome] = currentRow<Reference>();
        const Result<WatermarkPicture> picture = WatermarkPicture::fromSvg(svgOf(content, kLinks));
        QCOMPARE(picture.has_value(), outcome.isEmpty());
        if (!picture)
            QVERIFY2(picture.error().text.contains(outcome), qPrintable(picture.error().text));
    }

    void badFilesAreNamed_data()
    {
        constexpr int kDeep = 100'000;
        QByteArray laughs = "<g id='a0'><rect width='1' height='1'/></g>";
        for (int i = 1; i < 30; ++i) {
            const QByteArray use = "<use xlink:href=\"#a" + QByteArray::number(i - 1) + "\"/>";
            laughs += "<g id=\"a" + QByteArray::number(i) + "\">" + use.repeated(10) + "</g>";
        }
        addRows<BadFile>({
            {"empty.png", ""},
            {"text.png", "not a picture"},
            {"truncated.svg", svgOf(kCircle).chopped(3)},
            {"page.svg", "<?xml version=\"1.0\"?><html/>"},
            {"no size.svg", svgOf(kCircle, "viewBox='0 0 0 10' width='0' height='0'")},
            {"used again and again.svg", svgOf(laughs, kLinks)},
            {"used by itself.svg", svgOf("<g id='a'><g id='b'><use xlink:href='#a'/></g></g>", kLinks)},
            {"compressed.svgz", QByteArray("\x1f\x8b\x08\x00 compressed")},
            {"deep.svg", svgOf(QByteArray("<g>").repeated(kDeep) + QByteArray("</g>").repeated(kDeep))},
        });
    }

    void badFilesAreNamed()
    {
        const auto [name, contents] = currentRow<BadFile>();
        const QString path = fileWith(name, contents);
        const Result<WatermarkPicture> picture = WatermarkPicture::load(path);
        QVERIFY(!picture.has_value());
        const QString message = picture.error().text;
        QVERIFY2(message.contains(path), qPrintable(message));
        QVERIFY2(message.contains(u"plain SVG"_qs) || !name.endsWith(u".svgz"_qs), qPrintable(message));
        QVERIFY(!WatermarkPicture::load(m_folder.path()).has_value());
    }

    void largeReductionsDoNotAlias()
    {
        const QImage chequered =
            paintedPicture({1000, 1000}, QImage::Format_ARGB32_Premultiplied,
                           [](int x, int y) { return (x + y) % 2 != 0 ? 0xffffffff : 0xff000000; });
        const WatermarkPicture picture = WatermarkPicture::fromImage(chequered);
        for (const int side : {300, 77, 10}) {
            const QImage small = picture.imageOfSize(QSize(side, side));
            for (int i = 1; i < side - 1; ++i) {
                const int gray = qGray(small.pixel(i, (i * 7) % (side - 2) + 1));
                QVERIFY2(gray > 110 && gray < 205, qPrintable(QString::number(gray)));
            }
        }
    }

    void logosAreRead_data()
    {
        addRows<Logo>({
            {"logos/badge-512x512.png", {512, 512}},
            {"logos/stamp-97x61-palette.png", {97, 61}},
            {"logos/wordmark-1200x301.png", {1200, 301}},
            {"jpeg/cmyk-ycck-small.jpg", {}},
            {"png/gray16.png", {32, 32}},
        });
    }

    void logosAreRead()
    {
        PLEXA_NEEDS_PHOTOS();
        const auto [name, size] = currentRow<Logo>();
        const Result<WatermarkPicture> picture = WatermarkPicture::load(realPhoto(name));
        QVERIFY2(picture.has_value(), qPrintable(picture ? QString() : picture.error().text));
        if (!size.isEmpty())
            QCOMPARE(picture->size(), QSizeF(size));
        QCOMPARE(picture->imageOfSize(QSize(200, 50)).format(), QImage::Format_ARGB32_Premultiplied);
        QCOMPARE(picture->imageOfSize(QSize(200, 50)).size(), QSize(200, 50));
    }

    void cameraTurnsAreFollowed()
    {
        PLEXA_NEEDS_PHOTOS();
        const auto isTheSameInAnArchive = [](const QString &path, const WatermarkPicture &loaded) {
            const Result<WatermarkPicture> archived = archivedPicture(contentsOf(path));
            return archived && archived->size() == loaded.size() && archived->image() == loaded.image();
        };
        for (const char *turn : {"TopRight", "BottomRight", "LeftTop", "RightTop", "LeftBottom"}) {
            const QString path = m_folder.path("turned.tif");
            magick("-size 90x600 plasma:red-blue -orient %1 %2", turn, path);
            const Result<WatermarkPicture> picture = WatermarkPicture::load(path);
            QVERIFY2(picture && isTheSameInAnArchive(path, *picture), turn);
        }
        // Eight files that show the same when upright.
        const QString folder = realPhoto("jpeg/orientation/");
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
            const double difference = meanDifference(small, first);
            QVERIFY2(difference < 12, qPrintable(name + QString::number(difference)));
        }
    }

    void threadsShareOnePicture_data()
    {
        addRows<Shared>({
            {"a drawing", [] { return WatermarkPicture::fromSvg(svgOf(kCircle)); }, false},
            {"archived pixels",
             [] {
                 return archivedPicture(encoded(randomPicture({60, 30}), "PNG"));
             },
             false},
            {"truncated archived pixels",
             [] {
                 return archivedPicture(encoded(randomPicture({60, 30}), "PNG").chopped(100));
             },
             true},
        });
    }

    void threadsShareOnePicture()
    {
        const auto [name, made, isFaulty] = currentRow<Shared>();
        const Result<WatermarkPicture> picture = made();
        QVERIFY(picture.has_value());
        QCOMPARE(picture->fault(), QString());
        const QImage expected = picture->imageOfSize(QSize(200, 100));
        QCOMPARE(expected.size(), isFaulty ? QSize(0, 0) : QSize(200, 100));
        std::atomic<int> wrong = 0;
        {
            std::vector<std::jthread> threads;
            for (int i = 0; i < 6; ++i) {
                threads.emplace_back([&, i, isFaulty = isFaulty] {
                    for (int width = 200 + i; width < 210 + i; ++width) {
                        const WatermarkPicture copy = *picture;
                        wrong += copy.imageOfSize(QSize(200 + width % 2, 100)).width() !=
                                     (isFaulty ? 0 : 200 + width % 2) ||
                                 copy.imageOfSize(QSize(200, 100)) != expected ||
                                 copy.image().isNull() != isFaulty || copy.fault().isEmpty() == isFaulty;
                        KeyedArchiver archiver;
                        archiver.addCopy(copy.original());
                    }
                });
            }
        }
        QCOMPARE(wrong.load(), 0);
    }

    void drawingsWithTextAreDrawnBesideTexts()
    {
        const Result<WatermarkPicture> picture =
            WatermarkPicture::fromSvg(svgOf("<text x='1' y='8' font-size='6'>Text \xe6\xbc\xa2</text>"));
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
                    const bool isRight = k % 2 == 0
                                             ? again->imageOfSize(QSize(200 + i, 100)) == expected.at(i)
                                             : width(i) == expectedWidth;
                    wrong += isRight ? 0 : 1;
                }
            });
        }
        threads.clear();
        QCOMPARE(wrong.load(), 0);
    }

    void sizesAreKept()
    {
        const WatermarkPicture picture = WatermarkPicture::fromImage(QImage(10, 10, QImage::Format_RGB32));
        const QImage wide = picture.imageOfSize(QSize(4200, 4000)); // the width of a large photo
        const QImage small = picture.imageOfSize(QSize(30, 20));
        QCOMPARE(picture.imageOfSize(QSize(4200, 4000)).constBits(), wide.constBits());
        QCOMPARE(picture.imageOfSize(QSize(30, 20)).constBits(), small.constBits());
    }
};

QTEST_MAIN(WatermarkPictureTest)
#include "watermarkpicture_test.moc"
