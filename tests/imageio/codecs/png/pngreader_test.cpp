// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/pictures.h"
#include "support/bytes.h"
#include "support/datarows.h"

#include <QTest>

#include <array>
#include <cmath>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// @param rows    without filter bytes
/// @param chunks  what stands between the header and the picture
QByteArray png(QSize size, int depth, int colorType, const QByteArray &rows, const QByteArray &chunks = {})
{
    QByteArray filtered;
    const qsizetype rowBytes = rows.size() / size.height();
    for (int y = 0; y < size.height(); ++y)
        filtered += '\0' + rows.mid(y * rowBytes, rowBytes);
    return "\x89PNG\r\n\x1a\n" +
           pngChunk("IHDR", big32(size.width()) + big32(size.height()) + char(depth) + char(colorType) +
                                QByteArray(3, '\0')) +
           chunks + pngChunk("IDAT", qCompress(filtered).mid(4)) + pngChunk("IEND", {});
}

QByteArray gammaChunk(double gamma)
{
    return pngChunk("gAMA", big32(std::lround(gamma * 100'000)));
}

QByteArray profileChunk(const QByteArray &icc)
{
    return pngChunk("iCCP", QByteArray("p\0\0", 3) + qCompress(icc).mid(4));
}

double encoded(double light)
{
    light = qBound(0.0, light, 1.0);
    return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

} // namespace

struct ColorChunks {
    Text name;
    QByteArray chunks;
    int level; ///< that 128 becomes
};

/// Do the chunks of a PNG mean what the standard says, each and together?
class PngReaderTest : public QObject
{
    Q_OBJECT

    TestFolder m_folder;

private Q_SLOTS:
    /// Some of the seven passes are empty.
    void smallInterlacedPictures()
    {
        PLEXA_NEEDS_MAGICK();
        const QString origin = m_folder.path("origin.png");
        const QString path = m_folder.path("interlaced.png");
        for (const QSize size :
             {QSize(1, 1), QSize(2, 9), QSize(3, 2), QSize(4, 1), QSize(5, 5), QSize(9, 3)}) {
            QVERIFY(smoothPicture(size).save(origin));
            for (const char *kind : {"png24", "png8"}) {
                magick("%1 -interlace Plane %2:%3", origin, kind, path);
                QVERIFY(ImageSource::open(path)->info().decoderBytes > 0);
                QCOMPARE(decoded(path), smoothPicture(size));
            }
        }
    }

    void colorChunksInOrderOfWeight_data()
    {
        const QByteArray srgb = pngChunk("sRGB", QByteArray(1, '\0'));
        const QByteArray linear = gammaChunk(1);
        // Adobe RGB's exponent is 2.2: the same for grays, but for the dark end.
        const int bright = int(std::lround(255 * encoded(128 / 255.0)));
        addRows<ColorChunks>({
            {"nothing", {}, 128},
            {"sRGB", srgb, 128},
            {"gamma 1/2.2", gammaChunk(0.45455), 128},
            {"gamma 1", linear, bright},
            {"gamma 1/1.8", gammaChunk(0.55556), int(std::lround(255 * encoded(std::pow(128 / 255.0, 1.8))))},
            {"gamma 0", gammaChunk(0), 128},
            {"sRGB after gamma", linear + srgb, 128},
        });
    }

    void colorChunksInOrderOfWeight()
    {
        const auto [name, chunks, level] = currentRow<ColorChunks>();
        const QString path = m_folder.path("order.png");
        for (const int colorType : {0, 2, 4, 6}) {
            const QByteArray pixel = QByteArray((colorType & 2) != 0 ? 3 : 1, '\x80') +
                                     QByteArray((colorType & 4) != 0 ? 1 : 0, '\xff');
            QVERIFY(writeFile(path, png({1, 1}, 8, colorType, pixel, chunks)));
            const QRgb color = decoded(path).pixel(0, 0);
            QVERIFY2(std::abs(qRed(color) - level) <= 1 && std::abs(qBlue(color) - level) <= 1,
                     qPrintable(QString::number(qRed(color))));
        }
        // A profile weighs more than all of these.
        PLEXA_NEEDS_PHOTOS();
        const auto adobe = ImageSource::open(realPhoto("jpeg/adobe-rgb-uss-reagan.jpg"));
        const QByteArray pixel("\x40\xc0\x40", 3);
        QVERIFY(writeFile(path, png({1, 1}, 8, 2, pixel, profileChunk(adobe->info().iccProfile))));
        const QRgb alone = decoded(path).pixel(0, 0);
        QVERIFY(qRed(alone) < 0x30); // outside of sRGB
        QVERIFY(writeFile(path, png({1, 1}, 8, 2, pixel, chunks + profileChunk(adobe->info().iccProfile))));
        QCOMPARE(decoded(path).pixel(0, 0), alone);
    }

    /// Adobe RGB (1998) as cHRM and gAMA, by its own definition: the matrix to XYZ and that from XYZ to sRGB.
    void primariesFollowTheFormula()
    {
        QByteArray primaries;
        for (const quint32 value : {31270, 32900, 64000, 33000, 21000, 71000, 15000, 6000})
            primaries += big32(value);
        const QByteArray chunks = gammaChunk(0.45470) + pngChunk("cHRM", primaries);
        constexpr double kToXyz[3][3] = {
            {0.57667, 0.18556, 0.18823}, {0.29734, 0.62736, 0.07529}, {0.02703, 0.07069, 0.99134}};
        constexpr double kToSrgb[3][3] = {
            {3.24045, -1.53714, -0.49853}, {-0.96927, 1.87601, 0.04156}, {0.05564, -0.20403, 1.05723}};
        const QString path = m_folder.path("primaries.png");
        for (const std::array<int, 3> &color :
             {std::array{128, 128, 128}, {200, 100, 50}, {120, 140, 90}, {60, 70, 160}, {230, 220, 200}}) {
            QByteArray pixel;
            double xyz[3] = {};
            for (size_t i = 0; i < 3; ++i) {
                pixel += char(color[i]);
                for (size_t j = 0; j < 3; ++j)
                    xyz[j] += kToXyz[j][i] * std::pow(color[i] / 255.0, 2.19922);
            }
            QVERIFY(writeFile(path, png({1, 1}, 8, 2, pixel, chunks)));
            const QRgb is = decoded(path).pixel(0, 0);
            const int channels[3] = {qRed(is), qGreen(is), qBlue(is)};
            for (size_t i = 0; i < 3; ++i) {
                const double light = kToSrgb[i][0] * xyz[0] + kToSrgb[i][1] * xyz[1] + kToSrgb[i][2] * xyz[2];
                const int wanted = int(std::lround(255 * encoded(light)));
                QVERIFY2(std::abs(channels[i] - wanted) <= 2,
                         qPrintable(u"%1 %2"_qs.arg(channels[i]).arg(wanted)));
            }
        }
    }

    void deepTransparentColorIsExact()
    {
        const QString path = m_folder.path("deep.png");
        const QByteArray pixels("\x12\x34\x12\x34\x12\x34\x12\x35\x12\x34\x12\x34", 12);
        QVERIFY(writeFile(path, png({2, 1}, 16, 2, pixels, pngChunk("tRNS", pixels.first(6)))));
        const QImage image = decoded(path);
        QCOMPARE(image.pixel(0, 0), QRgb(0));
        QCOMPARE(image.pixel(1, 0), qRgb(0x12, 0x12, 0x12));
    }

    /// IPTC and XMP as ImageMagick writes them.
    void rawProfilesAreRead()
    {
        PLEXA_NEEDS_MAGICK();
        const QString origin = m_folder.path("origin.jpg");
        const QString path = m_folder.path("converted.png");
        QVERIFY(smoothPicture({9, 9}).save(origin));
        outputOf("exiftool -overwrite_original -XMP-dc:Title=Żółw -IPTC:City=Ulm %1", origin);
        magick("%1 %2", origin, path);
        QVERIFY(contentsOf(path).contains("Raw profile type iptc"));
        QVERIFY(contentsOf(path).contains("Raw profile type xmp"));
        const QVariantMap iptc = ImageSource::open(path)->properties()->value(u"{IPTC}"_qs).toMap();
        QCOMPARE(iptc.value(u"City"_qs).toString(), u"Ulm"_qs);
        QCOMPARE(iptc.value(u"ObjectName"_qs).toString(), u"Żółw"_qs);
    }
};

QTEST_GUILESS_MAIN(PngReaderTest)

#include "pngreader_test.moc"
