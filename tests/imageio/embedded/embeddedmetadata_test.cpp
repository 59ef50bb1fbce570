// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/thumbnail.h"
#include "imageio/container/imageresources.h"
#include "imageio/filemetadata.h"
#include "imageio/jpegassembly.h"
#include "metadata/imagemetadata.h"
#include "support/files.h"
#include "support/testenvironment.h"

#include <QTest>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::Literals::StringLiterals;

namespace
{

constexpr EmbeddedMetadata::CopyFacts kFacts = {QSize(16, 16), 0};

const QByteArray kMaker = "Quorvel X\0"_ba;

const QByteArray kXmp =
    "xmlns:dc='http://purl.org/dc/elements/1.1/' xmlns:xmp='http://ns.adobe.com/xap/1.0/'";

/// Headers of pictures, followed by zeros so that no size in them can matter.
const QByteArray kTiff = "II*\0\x08\0\0\0"_ba + QByteArray(300, '\0');
const QByteArray kWebp = "RIFF\x2C\x01\0\0WEBPVP8 "_ba + QByteArray(300, '\0');
const QByteArray kGif = "GIF89a\x10\0\x10\0"_ba + QByteArray(300, '\0');
const QByteArray kHeif = big32(0x18) + "ftypheic" + QByteArray(300, '\0');
const QByteArray kPng = "\x89PNG\r\n\x1A\n"_ba + QByteArray(300, '\0');
const QByteArray kFrame = "\xFF\xC0\0\x0B\x08\0\x10\0\x10\1\1\x11\0"_ba + QByteArray(300, '\0');
const QByteArray kJpeg = "\xFF\xD8\xFF\xDB\0\2"_ba + kFrame;

/// A Photoshop image resource.
QByteArray resource(int id, const QByteArray &data, const QByteArray &name = {})
{
    QByteArray pascal = bigEndian(name.size(), 1) + name;
    pascal += QByteArray(pascal.size() % 2, '\0');
    return "8BIM" + big16(id) + pascal + big32(data.size()) + data + QByteArray(data.size() % 2, '\0');
}

/// The pattern so many times, each "#" a number.
QByteArray repeated(int count, const char *pattern)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += QByteArray(pattern).replace('#', QByteArray::number(i));
    return text;
}

} // namespace

/// Copies keep all that they can of unusual metadata, and nothing that shows the unmarked photo.
class EmbeddedMetadataTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void longExifLosesLittle()
    {
        const QString unknown = u"EXIF field 0xfde8"_s;
        const QString note = u"maker note"_s;
        const QString comment = u"user comment"_s;
        const auto check = [&](int noteBytes, int commentBytes, int unknownBytes, const QStringList &omitted,
                               qsizetype limit = kFacts.maxExifBytes) {
            QList<ExifField> fields;
            if (noteBytes > 0)
                fields += {0x927C, 7, QByteArray(noteBytes, 'n')};
            if (commentBytes > 0)
                fields += {0x9286, 7, "ASCII\0\0\0"_ba + QByteArray(commentBytes - 8, 'c')};
            if (unknownBytes > 0)
                fields += {0xFDE8, 7, QByteArray(unknownBytes, 'u')};
            const EmbeddedMetadata::Encoded copy =
                copied({.exif = exifWith(fields, kMaker)}, {QSize(16, 16), 10'000, limit});
            QVERIFY(copy.exif.size() <= limit);
            QCOMPARE(copy.omitted, omitted);
            QCOMPARE(copy.exif.contains(QByteArray(noteBytes, 'n')), !omitted.contains(note));
            QCOMPARE(copy.exif.contains(QByteArray(qMax(0, commentBytes - 8), 'c')),
                     !omitted.contains(comment));
            QCOMPARE(copy.exif.contains(QByteArray(unknownBytes, 'u')), !omitted.contains(unknown));
            QVERIFY(copy.exif.contains("Quorvel") && copy.exif.contains("2020:01:01 10:00:00"));
        };
        check(1000, 1000, 1000, {});
        check(0, 65'425, 0, {comment});
        check(40'000, 25'405, 0, {note});
        check(0, 33'410, 32'000, {unknown});
        check(0, 64'000, 1000, {unknown}, 65'000); // no more than needed
        check(2000, 2000, 3000, {note, unknown, comment}, 1000);
        check(0, 65'425, 0, {}, 100'000); // in a PNG
    }

    void picturesInExifAreRemoved()
    {
        const auto check = [this](int tag, const QByteArray &value, bool isKept) {
            const QByteArray exif = copied({.exif = exifWith({{tag, 7, value}}, kMaker)}).exif;
            QVERIFY(exif.contains("Quorvel"));
            QVERIFY2(exif.contains(value.right(290)) == isKept, value);
        };
        for (const QByteArray &picture : {"abc" + kJpeg, "abc" + kPng, kTiff, kWebp, kGif, kHeif})
            check(0xFDE8, picture, false);
        check(0x927C, "abc" + kJpeg.mid(1), false); // spoiled by the camera
        // Tables of numbers: a start without a frame, without a marker after it, and after the frame.
        const QByteArray start = kJpeg.left(6);
        for (const QByteArray &table :
             {start + kFrame.mid(1), "\xFF\xD8\xFF\x90\0\2"_ba + kFrame, kFrame + start})
            check(0xFDE8, table, true);
        check(0x9286, "ASCII\0\0\0"_ba + kGif, false);
        check(0xFDE8, "BMXX"_ba + QByteArray(300, '\x01'), true);
        check(0x927C, kTiff, true); // a maker note may have the header of a TIFF
    }

    /// An unreadable maker note may hold the serial number that is edited.
    void serialNumbersLeaveWithTheirNote()
    {
        const auto metadata =
            readBack("note.jpg", jpegWith({.exif = exifWith({{0x927C, 7, "unreadable"}}, kMaker)}));
        ImageMetadata edited(metadata->properties());
        edited.setExifAuxValue(u"1"_s, kCGImagePropertyExifAuxSerialNumber);
        const auto copy = metadata->encodeForCopy(edited.imagePropertiesDictionary(), kFacts);
        QVERIFY(copy.exif.contains("Quorvel") && !copy.exif.contains("unreadable"));
        QCOMPARE(copy.omitted, QStringList(u"maker note"_s));
    }

    void pointersGoWithTheirDirectories()
    {
        const auto check = [this](const ExifField &pointer, const QByteArray &maker,
                                  const QStringList &omitted) {
            const auto copy = copied({.exif = exifWith({pointer, {0xFDE8, 7, "kept"}}, maker)});
            QVERIFY(copy.exif.contains("kept"));
            QVERIFY(!copy.exif.contains(big16(0x8290)) && !copy.exif.contains(big16(0xFDE7)) &&
                    !copy.exif.contains(big16(0x0035)));
            QCOMPARE(copy.omitted, omitted);
        };
        check({0x8290, 4, big32(8)}, kMaker, {u"EXIF directory 0x8290"_s}); // Kodak's
        check({0xFDE7, 13, big32(8)}, kMaker, {u"EXIF directory 0xfde7"_s});
        // Samsung's maker note, whose offsets count from its start, with a preview.
        const QByteArray preview = exifDirectory(42, {{0x0103, 3, big16(6)}});
        const QByteArray note =
            exifDirectory(0, {{1, 7, "0100"}, {0x0035, 4, big32(42)}, {0x0050, 3, big16(1)}}) + preview;
        const QByteArray data(40, 'd');
        for (const QByteArray &lost : {data, data + kPng, "\xD8\xFF\0"_ba + data + kJpeg})
            check({0x927C, 7, note + lost}, "SAMSUNG\0\0\0"_ba, {u"maker note data outside of its fields"_s});
        for (const QByteArray &picture : {QByteArray(), kPng, kJpeg, kJpeg.mid(1)})
            check({0x927C, 7, note + picture}, "SAMSUNG\0\0\0"_ba, {});
        // A field of unknown type, with the number of a field of the preview.
        const QByteArray other =
            exifDirectory(0, {{1, 7, "0100"}, {0x0035, 4, big32(42)}, {0x0103, 0x63, "1"}}) + preview;
        check({0x927C, 7, other}, "SAMSUNG\0\0\0"_ba, {u"maker note field 0x0103"_s});
    }

    void picturesInIptcAreRemoved()
    {
        // A time without zone: the library would add one when it encodes the record again.
        const QByteArray before =
            dataSet(2, 0, "\0\x04"_ba) + dataSet(2, 60, "101500") + dataSet(2, 120, "Lake");
        const QByteArray after = dataSet(2, 25, "water");
        const auto check = [&](const QByteArray &unwanted) {
            const bool isAtEnd = !unwanted.startsWith('\x1C');
            const QByteArray all = isAtEnd ? before + after + unwanted : before + unwanted + after;
            QCOMPARE(copied({.iptc = all}).iptc, before + after);
        };
        check({});
        check(dataSet(2, 200, "\0\x0B"_ba) + dataSet(2, 201, "\0\x01"_ba) + dataSet(2, 202, kJpeg));
        check(dataSet(2, 202, kTiff));
        check(dataSet(2, 202, QByteArray(300, 'p'))); // a preview without a known header
        check(dataSet(7, 10, "\1"_ba) + dataSet(8, 10, QByteArray(300, 'o')) + dataSet(9, 10, "\0\0\1\0"_ba));
        check(dataSet(2, 240, kGif)); // an unknown dataset
        check(kWebp);                 // after the last dataset
    }

    /// In a format without IIM records.
    void iptcGoesIntoXmpOrIsReported()
    {
        EmbeddedMetadata::CopyFacts facts = kFacts;
        facts.holdsIptc = false;
        facts.pixelSize = {16, 12};
        const auto copy = copied(
            {.iptc = dataSet(2, 0, "\0\4"_ba) + dataSet(2, 4, "Opinion") +
                     dataSet(2, 12, "IPTC:04000000:economy") + dataSet(2, 62, "20200304") +
                     dataSet(2, 63, "050607+0800") + dataSet(2, 65, "Editor") + dataSet(2, 90, "Bern") +
                     dataSet(2, 118, "Ann") + dataSet(2, 230, "notes") + dataSet(2, 228, "?"),
             .xmp = xmpPacket("xmlns:photoshop='http://ns.adobe.com/photoshop/1.0/' "
                              "photoshop:City='Basel' xmlns:exif='http://ns.adobe.com/exif/1.0/' "
                              "exif:PixelXDimension='9' exif:PixelYDimension='9'")},
            facts);
        QVERIFY(copy.xmp.contains("Bern") && !copy.xmp.contains("Basel") &&
                copy.xmp.contains("2020-03-04T05:06:07+08:00"));
        for (const char *text : {"IntellectualGenre=\"Opinion\"", ">04000000<", "PixelXDimension=\"16\"",
                                 "PixelYDimension=\"12\""})
            QVERIFY2(copy.xmp.contains(text), copy.xmp.constData());
        QCOMPARE(copy.omitted, (QStringList{u"IPTC field Contact"_s, u"IPTC field DocumentNotes"_s,
                                            u"IPTC field 0x00e4"_s}));
    }

    /// Resources that follow an invalid one are left out with it.
    void imageResourcesAreChosen()
    {
        QByteArray others;
        for (const int id : {0x03F3, 0x040D, 0x0419, 0x041E, 0x0426, 0x2710}) // and flags and links
            others += resource(id, big32(30));
        const QByteArray flag = resource(0x040A, "\1");
        const QByteArray iptc = dataSet(2, 120, "Lake");
        const QByteArray unwanted[] = {
            {},
            resource(0x040C, QByteArray(28, '\0') + kJpeg),                      // thumbnail
            resource(0x0409, QByteArray(300, 't')),                              // old thumbnail
            resource(0x0422, kTiff),                                             // EXIF
            resource(0x0424, xmpPacket(kXmp, "<dc:format>image/x</dc:format>")), // XMP
            resource(0x0402, QByteArray(64, 'l'), "name"),                       // layers
            resource(0x040B, kJpeg),                                             // in place of a link
            resource(0x040B, QByteArray(100'000, 'u')),                          // too long
            "8BIM\x04\x0B\xFFname"_ba,                                           // name beyond the end
            "8BIM\x04\x0B\0\0\xFF\xFF\xFF\xFFlink"_ba,                           // length beyond the end
            "\xFF\xD8\xFF\xE0 and more bytes"_ba,                                // another kind
        };
        for (const QByteArray &bytes : unwanted) {
            const QByteArray all = others + resource(0x0404, iptc) + flag + bytes;
            QCOMPARE(imageResourcesForCopy(all, {}), others + flag);
            QCOMPARE(iptcOfImageResources(all), iptc);
            QCOMPARE(imageResourcesForCopy(bytes, {}), QByteArray());
        }
    }

    void imageResourcesFollowTheCopy()
    {
        const auto resolution = [](int horizontal, int vertical) {
            return resource(0x03ED, big16(horizontal) + big16(0) + "\0\1\0\2"_ba + big16(vertical) +
                                        big16(0) + "\0\1\0\2"_ba);
        };
        const QByteArray wide = resource(0x0428, big32(1) + QByteArray::fromHex("4000000000000000"));
        const QByteArray square = resource(0x0428, big32(1) + QByteArray::fromHex("3ff0000000000000"));
        const QByteArray digest = resource(0x0425, QByteArray(16, 'd'));
        const QByteArray rights = resource(0x040A, "\1") + resource(0x040B, "https://quorvel.example");
        const QByteArray all = resolution(72, 300) + wide + rights + digest;
        ImageResourceFacts facts{"old"_ba, "old"_ba, {300, 300}, false};
        QCOMPARE(imageResourcesForCopy(all, facts), resolution(300, 300) + square + rights + digest);
        facts.iptcAfter = "new";
        facts.clearsRights = true;
        const QByteArray renewed = QByteArray::fromHex("22af645d1859cb5ca6da0c484f1f37ea"); // md5sum of "new"
        QCOMPARE(imageResourcesForCopy(all, facts),
                 resolution(300, 300) + square + resource(0x0425, renewed));
        facts.iptcAfter.clear();
        QCOMPARE(imageResourcesForCopy(all, facts), resolution(300, 300) + square);
    }

    void commentsAreTexts()
    {
        const auto check = [this](const QByteArrayList &comments, const QByteArray &kept) {
            QByteArray segments;
            for (const QByteArray &comment : comments)
                segments += jpegSegment(0xFE, comment);
            const auto metadata = readBack("comments.jpg", jpegWith({}).insert(2, segments));
            const EmbeddedMetadata::Encoded copy = metadata->encodeForCopy(metadata->properties(), kFacts);
            QCOMPARE(copy.comment, kept);
            const bool isWhole = comments.size() < 256 && kept.size() >= comments.join().size();
            QCOMPARE(copy.omitted, isWhole ? QStringList() : QStringList(u"comment"_s));
        };
        for (const QByteArray &text : {"Lake\tat\r\nnoon\n"_ba, "Z\xFCrich"_ba, "\x1B(BLake"_ba})
            check({text}, text);
        for (const QByteArray &other : {"Lake\x01\x02"_ba, kJpeg, "GIF89a" + QByteArray(300, 'x')})
            check({other}, {});
        check({"Lake\0"_ba, "Z\xFCrich"_ba, kPng, "Z\xC3\xBCrich"_ba}, "Lake\nZ\xC3\xBCrich\nZ\xC3\xBCrich");
        const QByteArray full(65'533, 'c');
        check({full, "d"}, full + 'd'); // one comment of two segments
        check(QByteArrayList(300, "c"), QByteArrayList(256, "c").join('\n'));
    }

    /// In a PNG: a JPEG's segment would be too short for most of these.
    void excessiveXmpIsRefused()
    {
        const auto check = [this](const QByteArray &properties, bool isKept, const QByteArray &prolog = {}) {
            const QByteArray xmp = prolog + xmpPacket(kXmp, "<dc:format>image/x</dc:format>" + properties);
            const auto metadata = readBack(
                "source.png", encoded(flatPicture({1, 1}), "PNG")
                                  .insert(33, pngChunk("iTXt", "XML:com.adobe.xmp\0\0\0\0\0"_ba + xmp)));
            const EmbeddedMetadata::Encoded copy = metadata->encodeForCopy(metadata->properties(), kFacts);
            QCOMPARE(copy.xmp.contains("image/x"), isKept);
            QCOMPARE(copy.omitted, isKept ? QStringList() : QStringList{u"XMP"_s});
        };
        check(repeated(4000, "<xmp:p#>v</xmp:p#>"), true);
        check(repeated(6000, "<xmp:p#>v</xmp:p#>"), false);
        check("<rdf:Description " + repeated(6000, " xmp:p#='v'") + "/>", false);
        check(repeated(1000, "<xmp:a rdf:parseType='Resource'>") + repeated(1000, "</xmp:a>"), false);
        check("<xmp:a>v</xmp:a>", false, "<!DOCTYPE x [<!ENTITY e \"v\">]>");
    }

    /// Random blocks compress worst.
    void thumbnailFitsAnyRoom()
    {
        const QImage noise = randomPicture({160, 160}).scaled(640, 640);
        for (const int room : {700, 1500, 4000, 10'000}) {
            ThumbnailMaker maker(noise.size());
            maker.addRows(noise, noise.height());
            const QByteArray thumbnail = maker.jpeg(room);
            QCOMPARE(thumbnail.size(), room);
            QVERIFY(!QImage::fromData(thumbnail, "JPG").isNull());
        }
    }

private:
    std::shared_ptr<const EmbeddedMetadata> readBack(const char *name, const QByteArray &file)
    {
        const QString path = m_folder.path(name);
        return writeFile(path, file) ? metadataOf(path) : EmbeddedMetadata::none();
    }

    EmbeddedMetadata::Encoded copied(const EmbeddedMetadata::Encoded &blocks,
                                     const EmbeddedMetadata::CopyFacts &facts = kFacts)
    {
        const auto metadata = readBack("source.jpg", jpegWith(blocks));
        return metadata->encodeForCopy(metadata->properties(), facts);
    }

    TestFolder m_folder;
};

QTEST_GUILESS_MAIN(EmbeddedMetadataTest)
#include "embeddedmetadata_test.moc"
