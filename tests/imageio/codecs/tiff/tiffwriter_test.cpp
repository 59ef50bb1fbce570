// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/pictures.h"
#include "support/datarows.h"
#include "support/exiftool.h"

#include <QTest>

using namespace plexa;
using namespace plexa::test;

namespace
{

constexpr const char *kType = "image/tiff";

QImage picture(QSize size, bool hasAlpha)
{
    return detailedPicture(size, RowFormat{size, hasAlpha}.imageFormat());
}

QVariantMap compressedBy(int compression)
{
    return {{u"{TIFF}"_qs, QVariantMap{{u"Compression"_qs, compression}}}};
}

} // namespace

/// Does a TIFF copy contain the same picture and the metadata of its source where other programs expect them?
class TiffWriterTest : public QObject
{
    Q_OBJECT

    struct Pixels {
        Text name;
        QSize size;
        bool hasAlpha;
        int compression;
    };

    struct Resolution {
        QVariantMap properties;
        QByteArray printed; ///< XResolution, YResolution, ResolutionUnit
    };

    TestFolder m_folder;

private Q_SLOTS:
    void pixelsAreExact_data()
    {
        addRows<Pixels>({{"none", {301, 203}, false, 1},
                         {"none, alpha, one pixel", {1, 1}, true, 1},
                         {"none, wide", {130'001, 2}, false, 1},
                         {"LZW", {301, 203}, false, 5},
                         {"LZW, alpha", {301, 203}, true, 5},
                         {"LZW, one column", {1, 3001}, false, 5},
                         {"LZW, alpha, wide", {130'001, 2}, true, 5}});
    }

    void pixelsAreExact()
    {
        auto [name, size, hasAlpha, compression] = currentRow<Pixels>();
        const QImage image = picture(size, hasAlpha);
        const QString path = m_folder.path("exact.tif");
        QVERIFY(writePicture(path, kType, image, compressedBy(compression)));
        QCOMPARE(decoded(path), image);
        const auto record = exiftoolRecords({path}, {u"-G1"_qs, u"-all"_qs, u"-validate"_qs}).value(path);
        QCOMPARE(record[u"IFD0:Compression"].toInt(), compression);
        QCOMPARE(record[u"IFD0:Predictor"].toInt(1), compression == 5 ? 2 : 1);
        QCOMPARE(record[u"IFD0:ExtraSamples"].toInt(-1), hasAlpha ? 1 : -1); // associated
        QCOMPARE(record[u"ICC-header:ProfileClass"].toString(), u"mntr"_qs);
        QCOMPARE(record[u"ExifTool:Validate"].toString(), u"0 0 0"_qs);
        const QString inspector = firstProgram({u"tiffinfo"_qs});
        if (inspector.isEmpty() || magickConvert().isEmpty())
            QSKIP("libtiff-tools or ImageMagick are not installed");
        const ProgramRun inspection = runProgram(inspector, {u"-D"_qs, path});
        QCOMPARE(inspection.status, 0);
        QCOMPARE(inspection.err, QByteArray());
        // ImageMagick may refuse the widest, and divides by alpha, which loses precision.
        const QByteArray pixels = magick("%1 -depth 8 rgba:-", path);
        const QImage theirs = pixels.size() == qsizetype(size.width()) * size.height() * 4
                                  ? QImage(reinterpret_cast<const uchar *>(pixels.constData()), size.width(),
                                           size.height(), QImage::Format_RGBA8888)
                                  : QImage(path, "tiff");
        const double difference = meanDifference(theirs, image);
        QVERIFY2(difference <= (hasAlpha ? 0.5 : 0), qPrintable(QString::number(difference)));
    }

    void resolutionIsKept()
    {
        const QVariantMap centimeters = {
            {u"XResolution"_qs, 100.0}, {u"YResolution"_qs, 100.0}, {u"ResolutionUnit"_qs, 3}};
        const QString path = m_folder.path("resolution.tif");
        for (const auto &[properties, printed] :
             {Resolution{{}, "72\n72\n2\n"},
              {{{u"DPIWidth"_qs, 299.5}, {u"DPIHeight"_qs, 150}}, "299.5\n150\n2\n"},
              {{{u"DPIWidth"_qs, 254.0}, {u"DPIHeight"_qs, 254.0}, {u"{TIFF}"_qs, centimeters}},
               "100\n100\n3\n"},
              {{{u"DPIWidth"_qs, 300}, {u"DPIHeight"_qs, 300}, {u"{TIFF}"_qs, centimeters}},
               "300\n300\n2\n"}}) {
            QVERIFY(writePicture(path, kType, detailedPicture({9, 5}), properties));
            QCOMPARE(
                outputOf("exiftool -n -s3 -IFD0:XResolution -IFD0:YResolution -IFD0:ResolutionUnit %1", path),
                printed);
        }
    }
};

QTEST_GUILESS_MAIN(TiffWriterTest)

#include "tiffwriter_test.moc"
