// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/datarows.h"
#include "support/files.h"
#include "support/picturedifference.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"
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

    void drawingsKnowTheirSize()
    {
        const QByteArray usedTwice = "<g id='a'>" + kCircle + "</g><use xlink:href='#a'/>";
        for (const auto &[content, attributes, size] :
             {std::tuple(kCircle, QByteArray("viewBox='-5 -5 33.5 10'"), QSizeF(33.5, 10)),
              {kCircle, "width='300' height='200'", {300, 200}},
              {usedTwice, kLinks, {9, 9}},
              {kCircle, "width='100%' height='100%' viewBox='0 0 64 32'", {64, 32}}}) {
            const Result<WatermarkPicture> picture = WatermarkPicture::fromSvg(svgOf(content, attributes));
            QVERIFY(picture.has_value());
            QCOMPARE(picture->size(), size);
        }
    }

    void drawingsReferToNothingOutside()
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
        using Row = std::tuple<QByteArray, Text>;
        for (const auto &[content, outcome] :
             std::initializer_list<Row>{{data(png), ""},
                                        {"<rect fill='url(#g)' width='9' height='9'/>", ""},
                                        {"<style>rect { fill: url( '#g' ) }</style>", ""},
                                        {image(outside), refused},
                                        {image("file://" + outside), refused},
                                        {"<image href='red.png'/>", refused},
                                        {"<use xlink:href='other.svg#a'/>", refused},
                                        {"<rect fill='URL( other.svg#a)'/>", refused},
                                        {"<rect style='fill:url(/etc/x)'/>", refused},
                                        {"<style>rect { fill: u<![CDATA[rl(/x)]]> }</style>", refused},
                                        {"<style>@import '/x.css';</style>", refused},
                                        {"<?xml-stylesheet type='text/css' href='/x'?>", refused},
                                        {data("none"), unreadable},
                                        {data(png.first(40)), unreadable},
                                        {data(svgOf(kCircle)), unreadable},
                                        {image("data:/../" + outside), unreadable},
                                        {data(large), "million pixels"}}) {
            const Result<WatermarkPicture> picture = WatermarkPicture::fromSvg(svgOf(content, kLinks));
            QCOMPARE(picture.has_value(), outcome.isEmpty());
            if (!picture)
                QVERIFY2(picture.error().text.contains(outcome), qPrintable(picture.error().text));
        }
    }

    void badFilesAreNamed()
    {
        constexpr int kDeep = 100'000;
        QByteArray laughs = "<g id='a0'><rect width='1' height='1'/></g>";
        for (int i = 1; i < 30; ++i) {
            const QByteArray use = "<use xlink:href=\"#a" + QByteArray::number(i - 1) + "\"/>";
            laughs += "<g id=\"a" + QByteArray::number(i) + "\">" + use.repeated(10) + "</g>";
        }
        using Row = std::tuple<Text, QByteArray>;
        for (const auto &[name, contents] : std::initializer_list<Row>{
                 {"empty.png", ""},
                 {"text.png", "not a picture"},
                 {"truncated.svg", svgOf(kCircle).chopped(3)},
                 {"page.svg", "<?xml version=\"1.0\"?><html/>"},
                 {"no size.svg", svgOf(kCircle, "viewBox='0 0 0 10' width='0' height='0'")},
                 {"used again and again.svg", svgOf(laughs, kLinks)},
                 {"used by itself.svg", svgOf("<g id='a'><g id='b'><use xlink:href='#a'/></g></g>", kLinks)},
                 {"compressed.svgz", QByteArray("\x1f\x8b\x08\x00 compressed")},
                 {"deep.svg",
                  svgOf(QByteArray("<g>").repeated(kDeep) + QByteArray("</g>").repeated(kDeep))}}) {
            const QString path = fileWith(name, contents);
            const Result<WatermarkPicture> picture = WatermarkPicture::load(path);
            QVERIFY(!picture.has_value());
            const QString message = picture.error().text;
            QVERIFY2(message.contains(path), qPrintable(message));
            QVERIFY2(message.contains(u"plain SVG"_qs) || !name.endsWith(u".svgz"_qs), qPrintable(message));
            QVERIFY(!WatermarkPicture::load(m_folder.path()).has_value());
        }
    }

    void drawingsAreBoundedBeforeTheyAreParsed()
    {
        const auto many = [](int count, const QByteArray &text) {
            QByteArray all;
            for (int i = 0; i < count; ++i)
                all += QByteArray(text)
                           .replace('#', QByteArray::number(i))
                           .replace('@', QByteArray::number(i + 1));
            return all;
        };
        const auto gradients = [&many](int count) {
            return many(count, "<linearGradient id='g#' xlink:href='!g@'/>").replace('!', '#');
        };
        const auto style = [&many](int count) { return "<style>" + many(count, "[a],b{}") + "</style>"; };
        const QByteArray stops = "<linearGradient><linearGradient/>" + QByteArray("<stop/>").repeated(999);
        const QByteArray comment = "<!-- it's <g " + many(300, "a#='1' ") + "-->";
        using Row = std::tuple<QByteArray, Text>;
        for (const auto &[content, outcome] : std::initializer_list<Row>{
                 {"<g " + many(190, "a#='a=b' ") + "/>" + comment, ""},
                 {"<g " + many(100'000, "a#='1' ") + "/>", "attributes"},
                 {many(90, "<g xmlns:a#='u'/><g xmlns:a#='u'></g>"), ""},
                 {many(150, "<g xmlns:a#='u'>") + QByteArray("</g>").repeated(150), "namespaces"},
                 {style(2000), ""},
                 {style(1500) + style(2000), "rules"},
                 {stops + "</linearGradient>", ""},
                 {stops + "<stop/><stop/></linearGradient>", "stops"},
                 {gradients(90), ""},
                 {gradients(150), "too many others"}}) {
            const Result<WatermarkPicture> picture = WatermarkPicture::fromSvg(svgOf(content, kLinks));
            QVERIFY2(picture ? outcome.isEmpty()
                             : !outcome.isEmpty() && picture.error().text.contains(outcome),
                     qPrintable(picture ? outcome : picture.error().text));
        }
        const QByteArray defaults = "<!DOCTYPE svg [<!ATTLIST g " + many(1000, "a# CDATA 'x' ") + ">]>";
        QVERIFY(!WatermarkPicture::fromSvg(defaults + svgOf(kCircle)));
    }

    void drawingsMayBeInAnyEncoding()
    {
        const QString text = QString::fromUtf8(svgOf(kCircle + "<!-- \u00e9 -->"));
        const QString declaration = u"<?xml version='1.0' encoding='%1'?>"_qs;
        const QByteArray attributes = svgOf("<g " + QByteArray("a='1' ").repeated(300) + "/>");
        for (const char *name : {"UTF-8", "UTF-16LE", "UTF-16BE", "ISO-8859-1"}) {
            QStringEncoder encoder(name, QStringEncoder::Flag::WriteBom);
            const QByteArray drawing = encoder(declaration.arg(QLatin1StringView(name)) + text);
            const auto picture = WatermarkPicture::fromSvg(drawing);
            QVERIFY2(picture && qAlpha(picture->imageOfSize({20, 10}).pixel(5, 5)) == 255, name);
            // A stated encoding must not hide attributes.
            const auto hidden =
                WatermarkPicture::fromSvg(QByteArray(encoder(declaration.arg(u"UTF-16"_qs))) + attributes);
            QVERIFY2(!hidden, name);
        }
    }

    void slowDrawingsAreStopped()
    {
        const QByteArray layer = "<rect width='20' height='10' fill='red' opacity='.5'/>";
        const auto picture = WatermarkPicture::fromSvg(svgOf(layer.repeated(20'000)));
        QVERIFY(picture.has_value());
        const QSize large(8000, 4000);
        QVERIFY(picture->imageOfSize(large, [] { return true; }).isNull()); // canceled, no fault
        QVERIFY(!picture->imageOfSize({20, 10}).isNull());
        QVERIFY(picture->imageOfSize(large).isNull());
        QVERIFY2(picture->fault().contains(u"2 seconds"_qs), qPrintable(picture->fault()));
    }

    void largePicturesInDrawingsNeedNoOtherPicture()
    {
#ifdef __SANITIZE_THREAD__
        QSKIP("Under the thread sanitizer the drawing exceeds its time limit.");
#endif
        const QByteArray png = encoded(flatPicture({7000, 5000}, Qt::red), "PNG");
        const QByteArray image =
            "<image width='9' height='9' xlink:href='data:image/png;base64," + png.toBase64() + "'/>";
        QVERIFY(WatermarkPicture::fromSvg(svgOf(image, kLinks)).has_value());
    }

    void cameraTurnsAreFollowed()
    {
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
    }

    void threadsShareOnePicture()
    {
        const QByteArray png = encoded(randomPicture({60, 30}), "PNG");
        for (const auto &[picture, isFaulty] : {std::pair(WatermarkPicture::fromSvg(svgOf(kCircle)), false),
                                                {archivedPicture(png), false},
                                                {archivedPicture(png.chopped(100)), true}}) {
            QVERIFY(picture.has_value());
            QCOMPARE(picture->fault(), QString());
            const QImage expected = picture->imageOfSize(QSize(200, 100));
            QCOMPARE(expected.size(), isFaulty ? QSize(0, 0) : QSize(200, 100));
            std::atomic<int> wrong = 0;
            {
                std::vector<std::jthread> threads;
                for (int i = 0; i < 6; ++i) {
                    threads.emplace_back([&picture = *picture, &expected, &wrong, i, isFaulty = isFaulty] {
                        for (int width = 200 + i; width < 210 + i; ++width) {
                            const WatermarkPicture copy = picture;
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
    }
};

QTEST_MAIN(WatermarkPictureTest)
#include "watermarkpicture_test.moc"
