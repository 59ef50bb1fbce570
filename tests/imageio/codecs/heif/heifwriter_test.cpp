// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/factplaces.h"
#include "imageio/pictures.h"
#include "support/exiftool.h"

#include <QColorSpace>
#include <QFileInfo>
#include <QTest>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::Literals::StringLiterals;

namespace
{

constexpr const char *kHeic = "image/heic";

} // namespace

/// Do HEIC copies contain the same picture in the quality that was asked for?
class HeifWriterTest : public QObject
{
    Q_OBJECT

    struct Size {
        QSize size;
        bool hasAlpha;
        double quality;
    };

    /// The file as another program decodes it.
    QImage decodedElsewhere(const QString &path)
    {
        const QString png = m_folder.path("elsewhere.png");
        QFile::remove(png);
        outputOf("heif-convert %1 %2", path, png);
        QImage image(png);
        image.setColorSpace({}); // sRGB, which the test of metadata proves
        return image;
    }

    TestFolder m_folder;

private Q_SLOTS:
    void initTestCase()
    {
        const ImageFormat *heic = imageFormatOfType(QLatin1String(kHeic));
        QVERIFY(heic);
        if (!heic->canWrite)
            QSKIP("libheif has no encoder for HEVC");
        if (firstProgram({u"heif-convert"_s}).isEmpty())
            QSKIP("heif-convert is not installed (libheif-examples)");
    }

    void copiesReadTheSameElsewhere()
    {
        PLEXA_NEEDS_PHOTOS();
        for (const char *file :
             {"jpeg/silver-fir-511x323.jpg", "jpeg/gray-concert.jpg", "png/alpha-paper.png"}) {
            const QString path = m_folder.path("copy.heic");
            QString error;
            QVERIFY2(writeFile(path, copied(realPhoto(file), kHeic, 0.95, &error)) && error.isEmpty(),
                     qPrintable(error));
            const QImage source = decoded(realPhoto(file));
            const QImage theirs = decodedElsewhere(path);
            QCOMPARE(theirs.size(), source.size());
            QCOMPARE(theirs.hasAlphaChannel(), source.hasAlphaChannel());
            const double fromSource = meanDifference(theirs, source);
            QVERIFY2(fromSource < 2, qPrintable(QString::number(fromSource)));
            QVERIFY(meanDifference(decoded(path), theirs) < 0.5);
        }
    }

    void anySizeIsKept()
    {
        const QString path = m_folder.path("small.heic");
        for (const auto &[size, hasAlpha, quality] : {Size{{1, 1}, true, 1.0},
                                                      {{2, 3}, false, 0.8},
                                                      {{17, 1}, true, 0.8},
                                                      {{65, 63}, false, 1.0},
                                                      {{64, 64}, true, 1.0},
                                                      {{1001, 3}, false, 0.8}}) {
            // Pixels that a decoder invents at an edge differ from this color.
            const QImage image = flatPicture(size, QColor(230, 120, 60, hasAlpha ? 200 : 255),
                                             RowFormat{size, hasAlpha}.imageFormat());
            QVERIFY(writePicture(path, kHeic, image,
                                 {{u"kCGImageDestinationLossyCompressionQuality"_s, quality}}));
            for (const QImage &seen : {decoded(path), decodedElsewhere(path)}) {
                QCOMPARE(seen.size(), size);
                for (const QPoint corner : {QPoint(0, 0), QPoint(size.width() - 1, size.height() - 1)}) {
                    const QColor color = seen.pixelColor(corner);
                    QVERIFY2(qAbs(color.red() - 230) < 6 && qAbs(color.green() - 120) < 6 &&
                                 qAbs(color.blue() - 60) < 6 &&
                                 qAbs(color.alpha() - (hasAlpha ? 200 : 255)) < 4,
                             qPrintable(color.name(QColor::HexArgb)));
                }
            }
        }
    }

    /// Colors of pixels that alpha hides, in a viewer that ignores it.
    void hiddenPixelsHaveColorsOfTheirNeighborhood()
    {
        constexpr int kSide = 101;
        const QColor left(220, 60, 40), right(40, 90, 220);
        QImage image(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        for (int y = 30; y < 70; ++y) {
            for (int x = 20; x < 80; ++x)
                image.setPixelColor(x, y, x < 50 ? left : right);
        }
        const QString path = m_folder.path("hidden.heic");
        QVERIFY(writePicture(path, kHeic, image));
        const QImage seen = decodedElsewhere(path).convertToFormat(QImage::Format_ARGB32);
        for (const auto &[at, color] : {std::pair{QPoint(0, 50), left},
                                        {QPoint(19, 50), left},
                                        {QPoint(30, 29), left},
                                        {QPoint(81, 40), right},
                                        {QPoint(100, 100), right},
                                        {QPoint(70, 71), right}}) {
            const QColor hidden = seen.pixelColor(at);
            QVERIFY(hidden.alpha() < 4);
            const int worst =
                std::max({qAbs(hidden.red() - color.red()), qAbs(hidden.green() - color.green()),
                          qAbs(hidden.blue() - color.blue())});
            QVERIFY2(worst < 50, qPrintable(u"%1,%2: %3"_s.arg(at.x()).arg(at.y()).arg(hidden.name())));
        }
        image.fill(Qt::transparent);
        QVERIFY(writePicture(path, kHeic, image));
    }

    /// As close to the source as a JPEG of that quality, or nearly so, in fewer bytes.
    void qualityMeansWhatItDoesForJpeg()
    {
        PLEXA_NEEDS_PHOTOS();
        const QString file = realPhoto("jpeg/htc-desire.jpg");
        for (const double quality : {0.5, 0.8, 0.9}) {
            const QString heic = m_folder.path("copy.heic");
            const QString jpeg = m_folder.path("copy.jpg");
            QVERIFY(writeFile(heic, copied(file, kHeic, quality)));
            QVERIFY(writeFile(jpeg, copied(file, "image/jpeg", quality)));
            const QImage source = decoded(file);
            const double heicLoss = differenceOf(decoded(heic), source).meanSquare;
            const double jpegLoss = differenceOf(decoded(jpeg), source).meanSquare;
            QVERIFY2(heicLoss < jpegLoss * 1.6,
                     qPrintable(u"%1 against %2"_s.arg(heicLoss).arg(jpegLoss))); // 2 dB
            QVERIFY(QFileInfo(heic).size() < QFileInfo(jpeg).size());
        }
    }

    /// From quality 90 on, each pixel has its own color.
    void colorIsReducedBelowQuality90()
    {
        const QImage stripes = paintedPicture({64, 64}, QImage::Format_RGB32, [](int x, int) {
            return x % 2 ? qRgb(220, 60, 60) : qRgb(60, 60, 220);
        });
        const QString path = m_folder.path("stripes.heic");
        for (const double quality : {0.89, 0.9}) {
            QVERIFY(writePicture(path, kHeic, stripes,
                                 {{u"kCGImageDestinationLossyCompressionQuality"_s, quality}}));
            QCOMPARE(meanDifference(decodedElsewhere(path), stripes) < 15, quality >= 0.9);
        }
    }

    void recordsMoveToXmp()
    {
        PLEXA_NEEDS_PHOTOS();
        int compared = 0;
        for (const char *name :
             {"jpeg/canon-eos-1d-mark-iii-lightroom.jpg", "jpeg/nokia-n70-nonsquare-density.jpg",
              "jpeg/adobe-rgb-uss-reagan.jpg", "jpeg/jupiter-iptc-creator-contact.jpg",
              "jpeg/gray-concert.jpg", "jpeg/photoshop-copyright-author.jpg",
              "jpeg/thompson-springs-gps-city.jpg"}) {
            const QString from = realPhoto(QString::fromLatin1(name));
            const QString path = m_folder.path("copy.heic");
            QVERIFY(writeFile(path, copied(from, kHeic, 0.1)));
            const auto records = exiftoolRecords({from, path});
            for (const FactPlaces &fact : kFactPlaces) {
                const QStringList places = fact.places();
                if (places.size() < 2 || !places[0].startsWith(u"IPTC:"))
                    continue;
                QString told = comparable(records[from][places[0]]);
                told.replace(u'\r', u'\n'); // as XML ends lines
                if (told.isEmpty())
                    continue;
                ++compared;
                const QString moved = comparable(records[path][places[1]]);
                // IIM has room for the beginnings of long texts only.
                QVERIFY2(moved.startsWith(told) || (told.contains(u'\xFFFD') && !moved.isEmpty()),
                         qPrintable(QLatin1StringView(name) + u' ' + places[1] + u": "_s + moved + u" | "_s +
                                    told));
            }
            for (const QString &key : records[path].keys())
                QVERIFY2(!key.startsWith(u"IPTC:"), qPrintable(key));
        }
        QVERIFY2(compared > 30, qPrintable(QString::number(compared)));
    }
};

QTEST_GUILESS_MAIN(HeifWriterTest)

#include "heifwriter_test.moc"
