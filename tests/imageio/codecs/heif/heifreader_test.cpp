// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/pictures.h"
#include "support/datarows.h"

#include <QColorSpace>
#include <QTest>
#include <QtEndian>

#include <cmath>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::Literals::StringLiterals;

namespace
{

QColorSpace bt2020()
{
    return QColorSpace({0.3127, 0.3290}, {0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046},
                       QColorSpace::TransferFunction::SRgb);
}

/// `image` with its numbers taken for colors of that space, as sRGB.
QImage meantAs(QImage image, const QColorSpace &space)
{
    image.setColorSpace(space);
    image.convertToColorSpace(QColorSpace::SRgb);
    return image;
}

/// A little-endian TIFF structure that holds an orientation and a camera's maker.
QByteArray exifWithOrientation(char orientation)
{
    QByteArray exif("II*\0\x08\0\0\0\x02\0"
                    "\x0F\x01\x02\0\x08\0\0\0\x26\0\0\0"
                    "\x12\x01\x03\0\x01\0\0\0?\0\0\0"
                    "\0\0\0\0Quorvel\0",
                    46);
    exif[30] = orientation;
    return exif;
}

} // namespace

/// Are HEIC and AVIF files recognized by their contents and shown as their source?
class HeifReaderTest : public QObject
{
    Q_OBJECT

    struct Made {
        Text name;
        Text options;
        Text file;
        QImage expected;
        int depth;
    };

    /// Encodes m_picture, or `source`, with one of the encoders. @return empty when that failed
    QString encoded(const QString &options, const QString &name, const QString &source = {})
    {
        const bool isAvif = name.endsWith(u"avif");
        const QString to = m_folder.path(name);
        QStringList arguments = options.split(u' ', Qt::SkipEmptyParts);
        if (isAvif)
            arguments += {u"-s"_s, u"10"_s};
        else
            arguments += {u"-o"_s, to};
        arguments += source.isEmpty() ? m_folder.path("source.png") : source;
        if (isAvif)
            arguments += to;
        QFile::remove(to);
        outputOf(isAvif ? u"avifenc"_s : u"heif-enc"_s, arguments);
        return QFile::exists(to) ? to : QString();
    }

    TestFolder m_folder;
    QImage m_picture;

private Q_SLOTS:
    void initTestCase()
    {
        m_picture = smoothPicture({96, 64});
        QVERIFY(m_picture.save(m_folder.path("source.png")));
        QVERIFY(smoothPicture({96, 64}, QImage::Format_ARGB32).save(m_folder.path("alpha.png")));
        if (firstProgram({u"avifenc"_s}).isEmpty() || firstProgram({u"heif-enc"_s}).isEmpty())
            QSKIP("avifenc and heif-enc are not installed (libavif-bin, libheif-examples)");
    }

    void madeFilesLookAsTheirSource_data()
    {
        const auto add = [](const char *row, const char *options, const char *name, const QImage &expected,
                            int depth = 8) {
            addRow<Made>({row, options, name, expected, depth});
        };
        const auto turned = [this](int degrees) {
            return m_picture.transformed(QTransform().rotate(degrees));
        };
        const QImage gray = paintedPicture(m_picture.size(), QImage::Format_RGB32, [this](int x, int y) {
            const QColor color = m_picture.pixelColor(x, y);
            // The weights of BT.601, which the encoder uses.
            const int light =
                int(std::lround(0.299 * color.red() + 0.587 * color.green() + 0.114 * color.blue()));
            return qRgb(light, light, light);
        });
        add("AVIF", "-y 420", "a.avif", m_picture);
        add("AVIF, limited range", "-y 444 -r limited", "a.avif", m_picture);
        add("AVIF, gray", "-y 400", "a.avif", gray);
        add("AVIF, tiles", "-y 444 -g 1x1", "a.avif", m_picture);
        add("AVIF, a quarter turn", "-y 444 --irot 1", "a.avif", turned(-90));
        add("AVIF, mirrored, 10 bit", "-y 444 -d 10 --imir 1", "a.avif", m_picture.mirrored(true, false), 10);
        add("AVIF, turned and mirrored", "-y 444 --irot 1 --imir 0", "a.avif",
            turned(-90).mirrored(false, true));
        add("AVIF, cropped and turned", "-y 444 --crop 10,6,41,23 --irot 3", "a.avif",
            m_picture.copy(10, 6, 41, 23).transformed(QTransform().rotate(90)));
        add("AVIF, Display P3", "-y 444 --cicp 12/13/1", "a.avif",
            meantAs(m_picture, QColorSpace(QColorSpace::DisplayP3)));
        add("AVIF, BT.2020, 10 bit", "-y 444 -d 10 --cicp 9/13/9", "a.avif", meantAs(m_picture, bt2020()),
            10);
        add("AVIF, linear light", "-y 444 --cicp 1/8/1", "a.avif",
            meantAs(m_picture, QColorSpace(QColorSpace::SRgbLinear)));
        add("HEIC", "-q 95", "a.heic", m_picture);
        const QImage alpha = smoothPicture({96, 64}, QImage::Format_ARGB32);
        add("AVIF, alpha, 10 bit", "-y 444 -d 10 alpha", "a.avif", alpha, 10);
        add("AVIF, premultiplied, Display P3", "-y 444 -p --cicp 12/13/1 alpha", "a.avif",
            meantAs(alpha, QColorSpace(QColorSpace::DisplayP3)));
        add("HEIC, alpha", "-q 95 alpha", "a.heic", alpha);
    }

    void madeFilesLookAsTheirSource()
    {
        auto [name, options, file, expected, depth] = currentRow<Made>();
        const bool hasAlpha = options.endsWith(u" alpha");
        if (hasAlpha)
            options.chop(6);
        const QString path = encoded(options, file, hasAlpha ? m_folder.path("alpha.png") : QString());
        QVERIFY(!path.isEmpty());
        const auto source = ImageSource::open(path);
        QVERIFY2(source, source ? "" : qPrintable(source.error().text));
        QCOMPARE(source->type(), file.endsWith(u"avif") ? u"image/avif"_s : u"image/heic"_s);
        QCOMPARE(source->info().rows.size, expected.size());
        QCOMPARE(source->info().depth, depth);
        QCOMPARE(source->info().rows.hasAlpha, hasAlpha);
        QCOMPARE(source->info().colorModel, options.contains(u"400") ? u"Gray"_s : u"RGB"_s);
        const auto image = source->createImage();
        QVERIFY2(image, image ? "" : qPrintable(image.error().text));
        const double difference = meanDifference(*image, expected);
        QVERIFY2(difference < 3, qPrintable(QString::number(difference)));
    }

    void brightPartsOfHdrKeepTheirOrder()
    {
        // PQ and HLG, with the signals of reference white (BT.2408).
        for (const auto &[transfer, white] : {std::pair{16, 0.58}, {18, 0.75}}) {
            const QImage ramp =
                paintedPicture({256, 16}, QImage::Format_RGB32, [](int x, int) { return qRgb(x, x, x); });
            const QString png = m_folder.path("ramp.png");
            QVERIFY(ramp.save(png));
            const QString path =
                encoded(u"-y 444 -d 10 --min 0 --max 0 --cicp 9/%1/9"_s.arg(transfer), u"hdr.avif"_s, png);
            const QImage shown = decoded(path);
            QVERIFY(!shown.isNull());
            // Gray stays gray, brighter never gets darker, black is black and the greatest light nearly
            // white.
            for (int x = 1; x < 256; ++x) {
                const QColor color = shown.pixelColor(x, 8);
                QVERIFY(color.green() + 1 >= shown.pixelColor(x - 1, 8).green());
                QVERIFY(std::abs(color.red() - color.green()) < 4 &&
                        std::abs(color.blue() - color.green()) < 4);
            }
            QVERIFY(shown.pixelColor(0, 8).green() < 4);
            QVERIFY(shown.pixelColor(255, 8).green() > 235);
            const int reference = shown.pixelColor(int(std::lround(white * 255)), 8).green();
            QVERIFY2(reference > 185 && reference < 240, qPrintable(QString::number(reference)));
        }
    }

    void orientationIsFollowedOnce()
    {
        const QString exif = m_folder.path("exif");
        const QString path = m_folder.path("turned.avif");
        QVERIFY(writeFile(exif, exifWithOrientation(6)));
        for (const bool isRotated : {false, true}) {
            outputOf(isRotated ? "avifenc -s 10 --irot 3 --exif %1 %2 %3" : "avifenc -s 10 --exif %1 %2 %3",
                     exif, m_folder.path("source.png"), path);
            QByteArray file = contentsOf(path);
            if (!isRotated) // the encoder derives a box from EXIF: replaced by an unknown one
                QVERIFY(writeFile(path, file.replace("irot", "irxx")));
            const auto source = ImageSource::open(path);
            QVERIFY2(source, source ? "" : qPrintable(source.error().text));
            QCOMPARE(source->info().rows.size, isRotated ? QSize(64, 96) : QSize(96, 64));
            const QVariantMap properties = *source->properties();
            QCOMPARE(properties.value(u"Orientation"_s), QVariant(1));
            const QVariantMap tiff = properties.value(u"{TIFF}"_s).toMap();
            QCOMPARE(tiff.value(u"Orientation"_s), QVariant(1));
            QCOMPARE(tiff.value(u"Make"_s), QVariant(u"Quorvel"_s));
        }
    }

    /// Decoders go on after damage and leave the rest as it is in memory.
    void damagedDataAreRefused()
    {
        const QString big = m_folder.path("detailed.png");
        QVERIFY(detailedPicture({320, 200}).save(big));
        const QString path = encoded(u"-q 80"_s, u"damaged.heic"_s, big);
        const QByteArray whole = contentsOf(path);
        const qsizetype data = whole.indexOf("mdat") + 200;
        QVERIFY(data > 200 && whole.size() > data + 2000);
        QVERIFY(!decoded(path).isNull());
        QString error;
        QVERIFY(writeFile(path, whole.first((data + whole.size()) / 2).leftJustified(whole.size(), '\0')));
        QVERIFY(decoded(path, &error).isNull());
        QCOMPARE(error, u"the picture data are damaged"_s);
        int refused = 0;
        constexpr int kPlaces = 40;
        for (int i = 0; i < kPlaces; ++i) {
            QByteArray damaged = whole;
            damaged[data + (whole.size() - data) / 2 * i / kPlaces] ^= 16;
            QVERIFY(writeFile(path, damaged));
            refused += decoded(path).isNull() ? 1 : 0;
        }
        QVERIFY2(refused > kPlaces / 2, qPrintable(QString::number(refused)));
    }

    void liesAreFoundBeforeDecoding()
    {
        for (const auto &[options, file] : {std::pair{"-y 420"_L1, u"big.avif"_s},
                                            {"-q 10"_L1, u"big.heic"_s},
                                            {"-y 420 -g 2x2"_L1, u"grid.avif"_s}}) {
            const QString big = m_folder.path("big.png");
            QVERIFY(flatPicture({1600, 1200}, Qt::darkGreen).save(big));
            const bool isLoop = file.startsWith(u"grid"); // of itself
            const QString path = encoded(options, file, big);
            QVERIFY(!path.isEmpty());
            QVERIFY(ImageSource::open(path));
            QByteArray bytes = contentsOf(path);
            if (!isLoop) {
                for (qsizetype at = bytes.indexOf("ispe"); at >= 0; at = bytes.indexOf("ispe", at + 1)) {
                    qToBigEndian<quint32>(80, bytes.data() + at + 8);
                    qToBigEndian<quint32>(60, bytes.data() + at + 12);
                }
            } else {
                const qsizetype at = bytes.indexOf("dimg"); // from, count, to
                QVERIFY(at > 0);
                bytes.replace(at + 8, 2, bytes.mid(at + 4, 2));
            }
            QVERIFY(writeFile(path, bytes));
            const auto opened = ImageSource::open(path, ReadLimits{.maxPixels = 1'000'000});
            QVERIFY(!opened);
            QVERIFY2(isLoop || opened.error().text.contains(u"1600 x 1200"), qPrintable(opened.error().text));
        }
    }
};

QTEST_GUILESS_MAIN(HeifReaderTest)

#include "heifreader_test.moc"
