// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/pictures.h"
#include "support/bytes.h"
#include "support/datarows.h"

#include <QColor>
#include <QTest>

#include <cmath>

using namespace plexa;
using namespace plexa::test;

namespace
{

// Red, green, blue, white: the indices 0 to 3.
const QByteArray kTable("\xff\0\0\0\xff\0\0\0\xff\xff\xff\xff", 12);
constexpr char kLetters[] = "rgbw";
constexpr QRgb kColors[] = {0xffff0000, 0xff00ff00, 0xff0000ff, 0xffffffff};

/// Data blocks of codes of three bits; the table of codes is cleared so often that it never grows beyond.
QByteArray compressed(const QByteArray &indices)
{
    QByteArray bits;
    const auto put = [&bits](int code) {
        for (int bit = 0; bit < 3; ++bit)
            bits += char(code >> bit & 1);
    };
    for (qsizetype i = 0; i < indices.size(); ++i) {
        if (i % 2 == 0)
            put(4);
        put(indices[i]);
    }
    put(5);
    QByteArray bytes((bits.size() + 7) / 8, '\0');
    for (qsizetype i = 0; i < bits.size(); ++i)
        bytes[i / 8] = char(bytes[i / 8] | bits[i] << (i % 8));
    QByteArray blocks("\2");
    for (qsizetype at = 0; at < bytes.size(); at += 255)
        blocks += char(qMin<qsizetype>(255, bytes.size() - at)) + bytes.mid(at, 255);
    return blocks + '\0';
}

QByteArray screen(QSize size, bool hasTable = true)
{
    return "GIF89a" + little16(size.width()) + little16(size.height()) +
           QByteArray(hasTable ? "\x81\0\0" : "\0\0\0", 3) + (hasTable ? kTable : QByteArray());
}

/// @param pixels  letters of kLetters
QByteArray frame(QRect place, const QByteArray &pixels, int flags = 0, const QByteArray &table = {})
{
    QByteArray indices;
    for (const char pixel : pixels)
        indices += char(std::strchr(kLetters, pixel) - kLetters);
    return ',' + little16(place.x()) + little16(place.y()) + little16(place.width()) +
           little16(place.height()) + char(flags) + table + compressed(indices);
}

/// That index is not to be seen in the next frame.
QByteArray transparent(int index)
{
    return QByteArray("\x21\xf9\4\1\0\0", 6) + char(index) + '\0';
}

QByteArray extension(int kind, const QByteArray &contents)
{
    return QByteArray("\x21") + char(kind) + char(contents.size()) + contents + '\0';
}

/// What is to be seen, as letters; ' ' where nothing is, '.' for another color.
QByteArray lettersOf(const QImage &image)
{
    QByteArray letters;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb color = image.pixel(x, y);
            const auto *found = std::find(std::begin(kColors), std::end(kColors), color);
            letters += color == 0 ? ' ' : found == std::end(kColors) ? '.' : kLetters[found - kColors];
        }
        letters += '/';
    }
    return letters;
}

/// All colors of a cube with so many steps, over and over.
QImage paletteImage(QSize size, int colors, bool hasAlpha)
{
    const auto format = hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    return paintedPicture(size, format, [&](int x, int y) {
        const int index = (x + y * size.width()) * 7 % colors;
        return hasAlpha && index % 3 == 0 ? 0 : qRgb(index * 37 % 256, index * 91 % 256, index * 153 % 256);
    });
}

} // namespace

/// Are GIF files read and written as other programs do?
class GifCodecTest : public QObject
{
    Q_OBJECT

    struct Screen {
        Text name;
        QByteArray file;
        QByteArray letters;
    };

    TestFolder m_folder;

private Q_SLOTS:
    void frameIsPutOnTheScreen_data()
    {
        const QByteArray body = frame({0, 0, 2, 2}, "rgbw");
        addRows<Screen>({{"fills it", screen({2, 2}) + body, "rg/bw/"},
                         {"smaller", screen({4, 4}) + frame({1, 2, 2, 1}, "rg"), "    /    / rg /    /"},
                         {"at the left, wide screen", screen({4, 2}) + body, "rg  /bw  /"},
                         {"larger", screen({1, 1}) + body, "rg/bw/"},
                         {"partly outside", screen({2, 2}) + frame({1, 1, 2, 2}, "rgbw"), "   / rg/ bw/"},
                         {"screen of no size", screen({0, 0}) + body, "rg/bw/"},
                         {"table of its own",
                          screen({2, 2}, false) + frame({0, 0, 2, 2}, "rgbw", 0x81, kTable), "rg/bw/"}});
        const QByteArray reversed("\xff\xff\xff\0\0\xff\0\xff\0\xff\0\0", 12);
        addRows<Screen>(
            {{"two tables", screen({2, 2}) + frame({0, 0, 2, 2}, "rgbw", 0x81, reversed), "wb/gr/"},
             {"no table: black and white", screen({2, 1}, false) + frame({0, 0, 2, 1}, "gg"), "ww/"}});
        const QByteArray shortTable("\xff\0\0\0\xff\0", 6);
        addRows<Screen>(
            {{"colors that the table lacks",
              screen({4, 1}, false) + frame({0, 0, 4, 1}, "rgbw", 0x80, shortTable), "rg../"},
             {"interlaced", screen({1, 9}) + frame({0, 0, 1, 9}, "rrgbbwwww", 0x40), "r/w/b/w/g/w/b/w/r/"},
             {"interlaced, smaller", screen({2, 4}) + frame({1, 1, 1, 3}, "rgb", 0x40), "  / r/ b/ g/"},
             {"transparent", screen({2, 2}) + transparent(1) + body, "r /bw/"},
             {"the last word counts", screen({2, 2}) + transparent(1) + transparent(2) + body, "rg/ w/"},
             {"second frame's transparency", screen({2, 2}) + body + transparent(0) + body, "rg/bw/"},
             {"second frame cut", screen({2, 2}) + body + body.chopped(4), "rg/bw/"}});
        // Blocks around the frame, and garbage after it, change nothing.
        const QByteArray start = screen({2, 2});
        const QByteArray unknown = extension(1, QByteArray(12, 'x')) + extension(0xfe, "hello") +
                                   extension(0xff, "SOMETHING1.") + extension(0x77, "what");
        for (const auto &[name, file] : std::initializer_list<std::pair<const char *, QByteArray>>{
                 {"trailer", start + body + ';'},
                 {"garbage after the trailer", start + body + ";garbage,garbage!!"},
                 {"garbage for a trailer", start + body + "garbage"},
                 {"terminators between blocks", start + QByteArray(3, '\0') + body + QByteArray("\0\0;", 3)},
                 {"unknown extensions", start + unknown + body + extension(0xfe, "again") + ';'},
                 {"extension without end", start + body + "\x21\xfe\xff cut"}})
            addRow<Screen>({name, file, "rg/bw/"});
    }

    void frameIsPutOnTheScreen()
    {
        auto [name, file, letters] = currentRow<Screen>();
        const QString path = m_folder.path("screen.gif");
        QVERIFY(writeFile(path, file));
        const QStringList dropped = droppedPictures(*ImageSource::open(path));
        QCOMPARE(dropped.contains(u"animation"_qs), name.startsWith(u"second frame"));
        QString error;
        const QImage image = decoded(path, &error);
        QVERIFY2(!image.isNull(), qPrintable(error));
        QCOMPARE(lettersOf(image), letters);
        QCOMPARE(image.hasAlphaChannel(), letters.contains(' '));
        QCOMPARE(ImageSource::open(path)->info().rows.hasAlpha, letters.contains(' '));
    }

    void profileIsUsed()
    {
        PLEXA_NEEDS_PHOTOS();
        PLEXA_NEEDS_MAGICK();
        const auto adobe = ImageSource::open(realPhoto("jpeg/adobe-rgb-uss-reagan.jpg"));
        const QString path = m_folder.path("profile.gif");
        magick("%1 -strip %2", realPhoto("jpeg/adobe-rgb-uss-reagan.jpg"), path);
        QByteArray file = contentsOf(path);
        QByteArray profile("\x21\xff\x0bICCRGBG1012", 14);
        const QByteArray icc = adobe->info().iccProfile;
        for (qsizetype at = 0; at < icc.size(); at += 255)
            profile += char(qMin<qsizetype>(255, icc.size() - at)) + icc.mid(at, 255);
        const qsizetype table = 13 + 3 * (2 << (file[10] & 7));
        QVERIFY(writeFile(path, file.insert(table, profile + '\0')));
        QCOMPARE(ImageSource::open(path)->properties()->value(u"ProfileName"_qs).toString(),
                 u"Adobe RGB (1998)"_qs);
        QVERIFY(meanDifference(decoded(path), *adobe->createImage()) < 4); // but for the palette
    }

    void hostileFilesGiveAReason()
    {
        const QString truncated = u"the file is truncated"_qs;
        const QString damaged = u"the picture data are damaged"_qs;
        const QByteArray body = frame({0, 0, 2, 2}, "rgbw");
        QByteArray wideCodes = body;
        wideCodes[10] = 12;
        for (const auto &[file, reason] :
             {std::pair{screen({2, 2}) + ';', damaged},
              {screen({2, 2}) + "garbage", damaged},
              {screen({2, 2}) + frame({0, 0, 0, 2}, {}), damaged},
              {screen({2, 2}) + frame({0, 0, 2, 2}, "rgb") + ';', truncated},
              // data that end by a terminator
              {screen({2, 2}) + body.first(11) + '\1' + body[12] + QByteArray("\0;", 2), truncated},
              {screen({2, 2}) + wideCodes + ';', damaged},
              {screen({1, 1}) + frame({65535, 65535, 65535, 65535}, "rgbw"),
               u"the picture is too large: 131070 x 131070 pixels, at most 1000 megapixels can be read"_qs},
              // would need 900 MB
              {screen({30000, 30000}) + frame({0, 0, 30000, 30000}, "rgbw", 0x40), truncated}}) {
            const QString path = m_folder.path("hostile.gif");
            QVERIFY(writeFile(path, file));
            QString error;
            QVERIFY(decoded(path, &error).isNull());
            QCOMPARE(error, reason);
        }
    }

    void fewColorsAreWrittenExactly()
    {
        PLEXA_NEEDS_MAGICK();
        for (const auto &[colors, hasAlpha] :
             {std::pair{1, false}, {2, false}, {16, false}, {256, false}, {1, true}, {255, true}}) {
            const QImage image = paletteImage({67, 41}, colors, hasAlpha);
            const QString path = m_folder.path("few.gif");
            QVERIFY(writePicture(path, "image/gif", image));
            QCOMPARE(decoded(path).convertToFormat(image.format()), image);
            const QByteArray theirs = magick("%1 -depth 8 rgba:-", path);
            QCOMPARE(theirs.size(), 67 * 41 * 4);
            const QImage read(reinterpret_cast<const uchar *>(theirs.constData()), 67, 41,
                              QImage::Format_RGBA8888);
            QCOMPARE(read.convertToFormat(image.format()), image);
        }
    }

    void alphaIsWrittenAsOnWhite()
    {
        const QImage image = paintedPicture({256, 4}, QImage::Format_ARGB32_Premultiplied,
                                            [](int x, int) { return qRgba(0, 0, 0, x); });
        const QString path = m_folder.path("alpha.gif");
        QVERIFY(writePicture(path, "image/gif", image));
        const QImage copy = decoded(path);
        QVERIFY(copy.hasAlphaChannel());
        for (int x = 0; x < image.width(); ++x) {
            const QRgb color = copy.pixel(x, 1);
            if (x < 16)
                QCOMPARE(color, QRgb(0));
            else
                QVERIFY2(qAlpha(color) == 255 && std::abs(qGray(color) - (255 - x)) <= 2,
                         qPrintable(QColor(color).name()));
        }
    }

    void photosAreWrittenWell()
    {
        PLEXA_NEEDS_PHOTOS();
        PLEXA_NEEDS_MAGICK();
        const QString photo = realPhoto("jpeg/silver-fir-511x323.jpg");
        const QString path = m_folder.path("copy.gif");
        const QString theirs = m_folder.path("theirs.gif");
        const QByteArray copy = copied(photo, "image/gif", 1);
        QVERIFY(writeFile(path, copy));
        QCOMPARE(copied(photo, "image/gif", 1), copy);
        const QImage source = decoded(photo);
        QVERIFY(source.save(m_folder.path("source.png")));
        magick("%1 %2", m_folder.path("source.png"), theirs);
        const double ours = differenceOf(source, decoded(path)).psnr();
        QVERIFY2(ours > differenceOf(source, decoded(theirs)).psnr() + 1, qPrintable(QString::number(ours)));
        // Dithered areas have no bands.
        const auto scaled = [&source](const QImage &image) {
            return image.scaled(source.size() / 4, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        };
        const double smooth = differenceOf(scaled(source), scaled(decoded(path))).psnr();
        QVERIFY2(smooth > 40, qPrintable(QString::number(smooth)));
    }

    void commentIsKept()
    {
        const QString path = m_folder.path("comment.gif");
        const QString source = m_folder.path("source.gif");
        QVERIFY(writeFile(source, screen({2, 2}) + frame({0, 0, 2, 2}, "rgbw") + ';'));
        outputOf("exiftool -overwrite_original '-Comment=made by hand' %1", source);
        QVERIFY(writeFile(path, copied(source, "image/gif", 1)));
        QCOMPARE(exiftoolValue(path, u"Comment"_qs).trimmed(), QByteArray("made by hand"));
        QCOMPARE(decoded(path), decoded(source));
    }
};

QTEST_GUILESS_MAIN(GifCodecTest)

#include "gifcodec_test.moc"
