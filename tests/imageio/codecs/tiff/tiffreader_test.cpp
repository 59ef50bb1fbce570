// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/imageresources.h"
#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/pictures.h"
#include "support/bytes.h"
#include "support/datarows.h"

#include <QTest>
#include <QtEndian>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// In a field: where the data begin.
constexpr quint32 kData = 0xdadada;

/// A little-endian TIFF file of one directory, of long values, in front of the data.
QByteArray tiffOf(const QList<std::pair<quint16, quint32>> &fields, const QByteArray &data, quint32 next = 0)
{
    QByteArray file = QByteArray("II*\0\x08\0\0\0", 8) + little16(fields.size());
    const auto start = quint32(8 + 2 + 12 * fields.size() + 4);
    for (const auto &[tag, value] : fields)
        file += little16(tag) + little16(4) + little32(1) + little32(value == kData ? start : value);
    return file + little32(next) + data;
}

/// The fields of a picture of one strip and 8 bits a sample.
QList<std::pair<quint16, quint32>> tiffFields(QSize size, quint32 photometric, quint32 samples,
                                              quint32 compression, quint32 bytes)
{
    return {{256, quint32(size.width())},
            {257, quint32(size.height())},
            {258, 8},
            {259, compression},
            {262, photometric},
            {273, kData},
            {277, samples},
            {278, quint32(size.height())},
            {279, bytes}};
}

} // namespace

/// Is every kind of TIFF read completely, in the right colors, or refused with a reason?
class TiffReaderTest : public QObject
{
    Q_OBJECT

    struct Iptc {
        quint16 tag;
        quint16 type;
        bool isSwapped;
    };

    TestFolder m_folder;

private Q_SLOTS:
    /// A complete JPEG file inside, as in TIFF 6.0 before its revision.
    void oldStyleJpegIsRead()
    {
        const QSize size(64, 48);
        const QByteArray data = encoded(smoothPicture(size), "JPEG", 95);
        auto fields = tiffFields(size, 6, 3, 6, quint32(data.size()));
        fields.append({512, 1}); // baseline
        fields.append({513, kData});
        fields.append({514, quint32(data.size())});
        const QString path = m_folder.path("old.tif");
        QVERIFY(writeFile(path, tiffOf(fields, data)));
        const double difference = meanDifference(decoded(path), QImage::fromData(data));
        QVERIFY2(difference < 2, qPrintable(QString::number(difference)));
    }

    void firstOfManyIsRead()
    {
        PLEXA_NEEDS_MAGICK();
        const QString origin = m_folder.path("origin.png");
        const QString path = m_folder.path("pages.tif");
        const QImage first = detailedPicture({61, 43}, QImage::Format_RGB32);
        QVERIFY(first.save(origin));
        magick("%1 ( +clone -negate -resize 200% ) ( +clone ) %2", origin, path);
        QCOMPARE(decoded(path), first);
        QCOMPARE(droppedPictures(*ImageSource::open(path)), QStringList{u"further pages"_qs});
        const auto mark = [&](const char *tags) {
            outputOf(u"exiftool"_qs, words("-q -overwrite_original") + words(tags) + QStringList{path});
        };
        // Pictures of the first one, smaller and as a mask, are no pages.
        mark("-IFD1:SubfileType#=1 -IFD2:SubfileType#=4");
        QCOMPARE(droppedPictures(*ImageSource::open(path)), QStringList());
        // No camera: the first picture is read although it says that it is a reduced one.
        mark("-IFD0:SubfileType#=1");
        QCOMPARE(decoded(path), first);
        mark("-IFD0:Make=Maker");
        QCOMPARE(decoded(path), first);
    }

    void directoriesOfTiffAreBounded()
    {
        const QByteArray data(12, 'x');
        const auto small = tiffFields({4, 3}, 1, 1, 1, 12);
        auto fax = tiffFields({3'000, 3'000}, 1, 20'000, 4, 12);
        fax[2].second = 1;
        auto tiles = tiffFields({4, 3}, 1, 1, 5, 12);
        tiles[5] = {322, 0x40000000};
        tiles[7] = {323, 0x40000000};
        tiles[8] = {324, kData};
        tiles.append({325, 12});
        const QString path = m_folder.path("bounds.tif");
        for (const quint32 next : {0U, 8U}) { // a loop of directories
            QVERIFY(writeFile(path, tiffOf(small, data, next)));
            QVERIFY(!decoded(path).isNull());
        }
        for (const auto &fields :
             {tiffFields({40'000, 20'000}, 1, 1, 1, 800'000'000), tiffFields({4, 3}, 1, 1, 5, 0xfffffff0),
              tiffFields({2'000'000'000, 2'000'000'000}, 1, 1, 5, 12), fax,
              tiffFields({30'000, 30'000}, 1, 65535, 5, 12), tiles,
              tiffFields({1, 1}, 5, 3, 1, 12)}) { // inks, not CMYK
            QVERIFY(writeFile(path, tiffOf(fields, data)));
            QString error;
            QVERIFY(decoded(path, &error).isNull() && !error.isEmpty());
        }
    }

    /// Records that no encoder would write like this come out as they are.
    void iptcIsFoundInAllForms()
    {
        for (const auto &[tag, type, isSwapped] : {Iptc{33723, 1, false},
                                                   {33723, 7, false},
                                                   {33723, 4, false},
                                                   {33723, 4, true},
                                                   {34377, 7, false}}) {
            const QByteArray records =
                QByteArray("\x1c\x02\x5a\x00\x05Paris", 10) + // city, without a version before
                QByteArray("\x1c\x02\x3c\x00\x06"
                           "101112",
                           11); // time, without a zone
            QByteArray stored = tag == 34377 ? imageResourceBlocks(records, {}) : records;
            stored.append((4 - stored.size() % 4) % 4, '\0');
            if (isSwapped) {
                for (qsizetype at = 0; at < stored.size(); at += 4)
                    std::reverse(stored.begin() + at, stored.begin() + at + 4);
            }
            // A picture of stored.size() gray pixels, which are the records, too.
            auto fields = tiffFields({int(stored.size()), 1}, 1, 1, 1, quint32(stored.size()));
            fields.append({tag, kData});
            QByteArray file = tiffOf(fields, stored);
            char *field = file.data() + 8 + 2 + 12 * (fields.size() - 1);
            qToLittleEndian(type, field + 2);
            qToLittleEndian(quint32(type == 4 ? stored.size() / 4 : stored.size()), field + 4);
            const QString path = m_folder.path("records.tif");
            QVERIFY(writeFile(path, file));
            const auto source = ImageSource::open(path);
            QVERIFY(source);
            QCOMPARE(source->properties()->value(u"{IPTC}"_qs).toMap().value(u"City"_qs).toString(),
                     u"Paris"_qs);
            const auto metadata = *source->metadata();
            QCOMPARE(metadata->encodeForCopy(metadata->properties(), {QSize(8, 8), 0}).iptc, records);
        }
    }
};

QTEST_GUILESS_MAIN(TiffReaderTest)

#include "tiffreader_test.moc"
