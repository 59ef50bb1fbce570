// SPDX-License-Identifier: GPL-3.0-or-later

#include "dngassembly.h"
#include "imageio/base/picturefailures.h"
#include "imageio/pictures.h"
#include "support/datarows.h"
#include "support/exiftool.h"

#include <QRegularExpression>
#include <QTest>
#include <QTransform>

using namespace plexa;
using namespace plexa::test;

namespace
{

QByteArray noisyJpeg(QSize size)
{
    return encoded(detailedPicture(size), "JPEG", 90);
}

QImage turned(const QImage &image, int orientation)
{
    const int degrees = orientation == 6 ? 90 : orientation == 3 ? 180 : orientation == 8 ? 270 : 0;
    return image.transformed(QTransform().rotate(degrees));
}

/// A file as the library's own program develops it.
QImage developedByDcraw(const QString &path)
{
    outputOf("dcraw_emu -w -T %1", path);
    return QImage::fromData(magick("%1.tiff png:-", path), "PNG");
}

} // namespace

/// Are camera raw photos developed as by LibRaw's own program, whatever their names, and damaged ones
/// refused?
class RawReaderTest : public QObject
{
    Q_OBJECT

    struct Contents {
        Text name;
        QByteArray contents;
        Text file;
        Text type; ///< empty: it is refused
    };

    struct Copy {
        Text name;
        QByteArray contents;
        Text suffix;
    };

    QString put(const QString &name, const QByteArray &contents)
    {
        const QString path = m_folder.path(name);
        return writeFile(path, contents) ? path : QString();
    }

    TestFolder m_folder;

private Q_SLOTS:
    void developsLikeTheLibrarysProgram_data()
    {
        for (const char *name : {"canon-kiss-x4-colorchart.dng", "kodak-dc50.kdc", "quicktake-100.qtk"}) {
            const QString path = realPhoto("raw/") + QLatin1String(name);
            if (!photosFolder().isEmpty())
                addRow<Copy>({name, contentsOf(path), QFileInfo(path).suffix()});
        }
        addRows<Copy>({{"16 bits", assembledDng({{384, 256}, 16, 0, false, 1, {}}), "dng"},
                       {"8 bits, turned right", assembledDng({{360, 256}, 8, 6, false, 1, {}}), "dng"},
                       {"preview, turned left", assembledDng({{399, 267}, 16, 8, true, 1, {}}), "dng"},
                       {"upside down, wide pixels", assembledDng({{360, 256}, 16, 3, true, 0.5, {}}), "dng"},
                       {"JPEG", assembledDng({{320, 240}, 8, 1, true, 1, noisyJpeg({320, 240})}), "dng"}});
    }

    void developsLikeTheLibrarysProgram()
    {
        PLEXA_NEEDS_PROGRAMS("dcraw_emu");
        const auto [name, contents, suffix] = currentRow<Copy>();
        const QString path = put(u"developed."_qs + suffix, contents);
        const auto source = ImageSource::open(path);
        QVERIFY2(source, source ? "" : qPrintable(source.error().text));
        const auto image = source->createImage();
        QVERIFY2(image, image ? "" : qPrintable(image.error().text));
        const int orientation = source->properties()->value(u"Orientation"_qs, 1).toInt();
        const QImage expected = developedByDcraw(path);
        QVERIFY(!expected.isNull());
        QCOMPARE(turned(*image, orientation).size(), expected.size());
        const double difference = meanDifference(turned(*image, orientation), expected);
        QVERIFY2(difference < 0.5, qPrintable(QString::number(difference)));
    }

    void contentsDecideWhatIsRead_data()
    {
        const QByteArray dng = assembledDng({{96, 64}, 16, 1, true, 1, {}});
        // Without the tag that makes it a DNG: some camera's.
        QByteArray raw = dng;
        raw.replace(QByteArray("\x12\xC6\1\0", 4), QByteArray("\x12\xC5\1\0", 4));
        for (const char *name : {"photo.dng", "photo.tif", "photo.nef", "photo.jpg", "photo"})
            addRow<Contents>({name, dng, name, "image/x-adobe-dng"});
        addRow<Contents>({"raw.tif", raw, "raw.tif", "image/x-dcraw"});
        const QString tiff = m_folder.path("plain.tif");
        magick("-size 40x30 gradient:red-blue -depth 8 %1", tiff);
        addRow<Contents>({"plain.nef", contentsOf(tiff), "plain.nef", "image/tiff"});
        outputOf("exiftool -q -overwrite_original -Make=Maker %1", tiff);
        addRows<Contents>({{"plain.arw", contentsOf(tiff), "plain.arw", "image/tiff"},
                           {"jpeg.nef", noisyJpeg({40, 30}), "jpeg.nef", "image/jpeg"}});
        for (const char *suffix : {"cr2", "dng", "nef", "raf", "qtk"})
            addRow<Contents>({qPrintable(u"text."_qs + QLatin1String(suffix)),
                              QByteArray("This is a text and nothing else. ").repeated(9),
                              u"text."_qs + QLatin1String(suffix), ""});
        if (!photosFolder().isEmpty()) {
            addRows<Contents>(
                {{"kdc.tif", contentsOf(realPhoto("raw/kodak-dc50.kdc")), "kdc.tif", "image/x-dcraw"},
                 {"cr2.tif", contentsOf(realPhoto("raw/canon-metadata-only.cr2")), "cr2.tif", ""}});
        }
    }

    void contentsDecideWhatIsRead()
    {
        auto [name, contents, file, type] = currentRow<Contents>();
        QVERIFY(!contents.isEmpty());
        const auto source = ImageSource::open(put(file, contents));
        if (type.isEmpty()) {
            QVERIFY(!source);
            QVERIFY(!source.error().text.isEmpty());
            return;
        }
        QVERIFY2(source, source ? "" : qPrintable(source.error().text));
        QCOMPARE(source->type(), type);
        const auto image = source->createImage();
        QVERIFY(image);
        QCOMPARE(image->size(), source->info().rows.size);
        QVERIFY(image->size() != QSize(24, 16)); // the preview's
    }

    void copiesDescribeTheirOwnPixels_data()
    {
        addRow<Copy>({"assembled", assembledDng({{96, 64}, 16, 6, true, 1, {}}), "dng"});
        if (!photosFolder().isEmpty())
            addRow<Copy>({"kodak-dc50.kdc", contentsOf(realPhoto("raw/kodak-dc50.kdc")), "kdc"});
    }

    /// LibRaw reports success for these and returns black or random pixels.
    void filesWithoutAllSamplesAreRefused()
    {
        const QByteArray whole = assembledDng({{96, 64}, 16, 0, false, 1, {}});
        constexpr qsizetype kSamples = 8, kSampleBytes = 96 * 64 * 2;
        QByteArray black = whole, twoReds = whole;
        black.replace(kSamples, kSampleBytes, QByteArray(kSampleBytes, '\0'));
        twoReds.replace(QByteArray("\4\0\0\0\0\1\1\2", 8), QByteArray("\4\0\0\0\0\0\1\2", 8));
        QVERIFY(twoReds != whole);
        const QString lacksData = PictureFailures::lacksSensorData();
        for (const auto &[file, reason] :
             {std::pair(whole, QString()),
              {black, lacksData},
              {twoReds, PictureFailures::unsupportedKind("camera raw")},
              {assembledDng({{320, 240}, 8, 1, true, 1, noisyJpeg({320, 120})}), lacksData},
              {assembledDng({{320, 240}, 8, 1, true, 1, noisyJpeg({320, 240})}), {}}}) {
            QString error;
            const bool isRefused = decoded(put(u"incomplete.dng"_qs, file), &error).isNull();
            QCOMPARE(error, reason);
            QCOMPARE(isRefused, !reason.isEmpty());
        }
        PLEXA_NEEDS_PHOTOS();
        QString error;
        QVERIFY(decoded(realPhoto("raw/iphone-12-pro-metadata-only.dng"), &error).isNull());
        QCOMPARE(error, lacksData);
    }

    void copiesDescribeTheirOwnPixels()
    {
        auto [name, contents, suffix] = currentRow<Copy>();
        const QString original = put(u"original."_qs + suffix, contents);
        const QString copy = put(u"copy.jpg"_qs, copied(original, "image/jpeg", 0.8));
        const QJsonObject record = exiftoolRecords({copy}).value(copy);
        QVERIFY(!record.isEmpty());
        // Facts about the sensor's samples and their places, and pictures.
        static const QRegularExpression leftover(
            u"^(IFD0|ExifIFD|SubIFD).*(SubIFD|IFD[1-9]|Strip|Tile|CFA|DNG|Preview|Thumbnail"
            "(?!Image|Offset|Length)|Mask|ColorMatrix|Neutral|WhiteLevel|BlackLevel|Crop|Linear|"
            "Profile(?!.*ICC)|JpgFromRaw|OtherImage|Opcode)"_qs);
        for (const QString &tag : record.keys())
            QVERIFY2(!tag.contains(leftover), qPrintable(tag));
        const QSize size = ImageSource::open(original)->info().rows.size;
        for (const auto &[tag, side] : {std::pair{u"ExifIFD:ExifImageWidth"_qs, size.width()},
                                        {u"ExifIFD:ExifImageHeight"_qs, size.height()}})
            QCOMPARE(record[tag].toInt(side), side);
        QCOMPARE(record[u"IFD0:Orientation"_qs].toInt(1), 1);
    }

    void librarysFactsReplaceMissingMetadata()
    {
        PLEXA_NEEDS_PHOTOS();
        const auto source = ImageSource::open(realPhoto("raw/quicktake-100.qtk"));
        QVERIFY(source);
        const QVariantMap tiff = source->properties()->value(u"{TIFF}"_qs).toMap();
        QCOMPARE(tiff.value(u"Make"_qs).toString(), u"Apple"_qs);
        QCOMPARE(tiff.value(u"Model"_qs).toString(), u"QuickTake 100"_qs);
        const QByteArray copy = copied(realPhoto("raw/quicktake-100.qtk"), "image/jpeg", 0.8);
        QCOMPARE(exiftoolValue(put(u"qtk.jpg"_qs, copy), u"Model"_qs).trimmed(), QByteArray("QuickTake 100"));
    }
};

QTEST_GUILESS_MAIN(RawReaderTest)
#include "rawreader_test.moc"
