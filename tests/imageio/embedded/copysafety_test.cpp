// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/thumbnail.h"
#include "imageio/container/imageresources.h"
#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/jpegassembly.h"
#include "metadata/propertykeys.h"
#include "support/testenvironment.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QTest>

using namespace plexa;
using namespace Qt::Literals::StringLiterals;

namespace
{

constexpr EmbeddedMetadata::CopyFacts kFacts = {QSize(16, 16), 0};

/// Headers of pictures, with zeros behind so that no size in them can matter.
const QByteArray kTiff = "II*\0\x08\0\0\0"_ba + QByteArray(300, '\0');
const QByteArray kWebp = "RIFF\x2C\x01\0\0WEBPVP8 "_ba + QByteArray(300, '\0');
const QByteArray kGif = "GIF89a\x10\0\x10\0"_ba + QByteArray(300, '\0');
const QByteArray kHeif = "\0\0\0\x18"
                         "ftypheic"_ba +
                         QByteArray(300, '\0');
const QByteArray kPng = "\x89PNG\r\n\x1A\n"_ba + QByteArray(300, '\0');
const QByteArray kJpeg = "\xFF\xD8\xFF\xDB"_ba + QByteArray(300, '\0');

struct Field {
    int tag;
    int type; ///< 2: text, 4: number, 7: bytes
    QByteArray value;
};

QByteArray number(qsizetype value, int bytes)
{
    QByteArray number(bytes, '\0');
    for (qsizetype i = bytes - 1; i >= 0; --i, value >>= 8)
        number[i] = static_cast<char>(value & 0xFF);
    return number;
}

/// A big-endian directory that begins at `at`, its values behind it.
QByteArray directory(qsizetype at, const QList<Field> &fields)
{
    QByteArray table = number(fields.size(), 2);
    QByteArray values;
    const qsizetype valuesAt = at + 2 + 12 * fields.size() + 4;
    for (const Field &field : fields) {
        const qsizetype count = field.type == 4 ? 1 : field.value.size();
        table += number(field.tag, 2) + number(field.type, 2) + number(count, 4);
        if (field.value.size() <= 4) {
            table += field.value.leftJustified(4, '\0');
        } else {
            table += number(valuesAt + values.size(), 4);
            values += field.value + QByteArray(field.value.size() % 2, '\0');
        }
    }
    return table + number(0, 4) + values;
}

/// EXIF with a maker, a date and these fields.
QByteArray exifWith(const QList<Field> &more)
{
    constexpr qsizetype kMainBytes = 2 + 2 * 12 + 4 + 8;
    const QList<Field> main{{0x010F, 2, "Quorvel\0"_ba}, {0x8769, 4, number(8 + kMainBytes, 4)}};
    const QList<Field> photo{{0x9003, 2, "2020:01:01 10:00:00\0"_ba}};
    return "MM\0\x2A\0\0\0\x08"_ba + directory(8, main) + directory(8 + kMainBytes, photo + more);
}

QByteArray dataSet(int record, int tag, const QByteArray &value)
{
    return "\x1C"_ba + number(record, 1) + number(tag, 1) + number(value.size(), 2) + value;
}

QByteArray xmpPacket(const QByteArray &properties)
{
    return "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
           "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description rdf:about=\"\" "
           "xmlns:dc=\"http://purl.org/dc/elements/1.1/\" xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\">" +
           properties + "</rdf:Description></rdf:RDF></x:xmpmeta>";
}

} // namespace

/// Do copies keep all that they can of unusual metadata, and nothing that shows the unmarked photo?
class CopySafetyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void longExifLosesLittle_data();
    void longExifLosesLittle();
    void picturesInExifStayBehind_data();
    void picturesInExifStayBehind();
    void picturesInIptcStayBehind_data();
    void picturesInIptcStayBehind();
    void imageResourcesAreChosen_data();
    void imageResourcesAreChosen();
    void imageResourcesFollowTheCopy();
    void commentsAreTexts_data();
    void commentsAreTexts();
    void excessiveXmpIsRefused_data();
    void excessiveXmpIsRefused();
    void thumbnailFitsAnyRoom_data();
    void thumbnailFitsAnyRoom();

private:
    std::shared_ptr<const EmbeddedMetadata> readBack(const EmbeddedMetadata::Encoded &blocks)
    {
        QFile file(m_folder.path(u"source.jpg"_qs));
        if (!file.open(QIODevice::WriteOnly) || file.write(test::jpegWith(blocks)) < 0)
            return EmbeddedMetadata::none();
        file.close();
        return EmbeddedMetadata::read(file.fileName());
    }

    EmbeddedMetadata::Encoded copied(const EmbeddedMetadata::Encoded &blocks,
                                     const EmbeddedMetadata::CopyFacts &facts = kFacts)
    {
        const auto metadata = readBack(blocks);
        return metadata->encodeForCopy(metadata->properties(), facts);
    }

    test::TestFolder m_folder;
};

void CopySafetyTest::longExifLosesLittle_data()
{
    QTest::addColumn<int>("noteBytes");
    QTest::addColumn<int>("commentBytes");
    QTest::addColumn<int>("unknownBytes");
    QTest::addColumn<qsizetype>("limit");
    QTest::addColumn<QStringList>("omitted");
    const qsizetype jpeg = kFacts.maxExifBytes;
    const QString unknown = u"EXIF field 0xfde8"_qs;
    QTest::newRow("fits") << 1000 << 1000 << 1000 << jpeg << QStringList();
    QTest::newRow("comment") << 0 << 65'425 << 0 << jpeg << QStringList{u"user comment"_qs};
    QTest::newRow("note") << 40'000 << 25'405 << 0 << jpeg << QStringList{u"maker note"_qs};
    QTest::newRow("unknown field") << 0 << 33'410 << 32'000 << jpeg << QStringList{unknown};
    QTest::newRow("no more than needed") << 0 << 64'000 << 1000 << qsizetype(65'000) << QStringList{unknown};
    QTest::newRow("all three") << 2000 << 2000 << 3000 << qsizetype(1000)
                               << QStringList{u"maker note"_qs, unknown, u"user comment"_qs};
    QTest::newRow("all of it in a PNG") << 0 << 65'425 << 0 << qsizetype(100'000) << QStringList();
}

void CopySafetyTest::longExifLosesLittle()
{
    QFETCH(int, noteBytes);
    QFETCH(int, commentBytes);
    QFETCH(int, unknownBytes);
    QFETCH(qsizetype, limit);
    QFETCH(QStringList, omitted);
    QList<Field> fields;
    if (noteBytes > 0)
        fields += {0x927C, 7, QByteArray(noteBytes, 'n')};
    if (commentBytes > 0)
        fields += {0x9286, 7, "ASCII\0\0\0"_ba + QByteArray(commentBytes - 8, 'c')};
    if (unknownBytes > 0)
        fields += {0xFDE8, 7, QByteArray(unknownBytes, 'u')};
    EmbeddedMetadata::Encoded blocks;
    blocks.exif = exifWith(fields);
    QVERIFY(blocks.exif.size() <= kFacts.maxExifBytes);
    const EmbeddedMetadata::Encoded copy = copied(blocks, {QSize(16, 16), 10'000, limit});
    QVERIFY(copy.exif.size() <= limit);
    QCOMPARE(copy.omitted, omitted);
    QCOMPARE(copy.exif.contains(QByteArray(noteBytes, 'n')), !omitted.contains(u"maker note"_qs));
    QCOMPARE(copy.exif.contains(QByteArray(qMax(0, commentBytes - 8), 'c')),
             !omitted.contains(u"user comment"_qs));
    QCOMPARE(copy.exif.contains(QByteArray(unknownBytes, 'u')), !omitted.contains(u"EXIF field 0xfde8"_qs));
    QVERIFY(copy.exif.contains("Quorvel"));
    QVERIFY(copy.exif.contains("2020:01:01 10:00:00"));
}

void CopySafetyTest::picturesInExifStayBehind_data()
{
    QTest::addColumn<int>("tag");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("isKept");
    constexpr int unknown = 0xFDE8;
    QTest::newRow("JPEG") << unknown << "abc" + kJpeg << false;
    QTest::newRow("PNG") << unknown << "abc" + kPng << false;
    QTest::newRow("TIFF") << unknown << kTiff << false;
    QTest::newRow("WebP") << unknown << kWebp << false;
    QTest::newRow("GIF") << unknown << kGif << false;
    QTest::newRow("HEIF") << unknown << kHeif << false;
    QTest::newRow("GIF in a comment") << 0x9286 << "ASCII\0\0\0"_ba + kGif << false;
    QTest::newRow("other bytes") << unknown << "BMXX"_ba + QByteArray(300, '\x01') << true;
    QTest::newRow("maker note with the header of a TIFF") << 0x927C << kTiff << true;
}

void CopySafetyTest::picturesInExifStayBehind()
{
    QFETCH(int, tag);
    QFETCH(QByteArray, value);
    QFETCH(bool, isKept);
    EmbeddedMetadata::Encoded blocks;
    blocks.exif = exifWith({{tag, 7, value}});
    const QByteArray exif = copied(blocks).exif;
    QVERIFY(exif.contains("Quorvel"));
    QCOMPARE(exif.contains(value), isKept);
    QCOMPARE(exif.contains(value.right(290)), isKept);
}

void CopySafetyTest::picturesInIptcStayBehind_data()
{
    QTest::addColumn<QByteArray>("unwanted");
    QTest::newRow("none") << QByteArray();
    QTest::newRow("JPEG preview") << dataSet(2, 200, "\0\x0B"_ba) + dataSet(2, 201, "\0\x01"_ba) +
                                         dataSet(2, 202, kJpeg);
    QTest::newRow("TIFF preview") << dataSet(2, 202, kTiff);
    QTest::newRow("preview without a known header") << dataSet(2, 202, QByteArray(300, 'p'));
    QTest::newRow("object in records 7 to 9")
        << dataSet(7, 10, "\1"_ba) + dataSet(8, 10, QByteArray(300, 'o')) + dataSet(9, 10, "\0\0\1\0"_ba);
    QTest::newRow("GIF in an unknown dataset") << dataSet(2, 240, kGif);
    QTest::newRow("bytes behind the last dataset") << kWebp;
}

void CopySafetyTest::picturesInIptcStayBehind()
{
    QFETCH(QByteArray, unwanted);
    // A time without zone: the library would add one when it writes it anew.
    const QByteArray before = dataSet(2, 0, "\0\x04"_ba) + dataSet(2, 60, "101500") + dataSet(2, 120, "Lake");
    const QByteArray after = dataSet(2, 25, "water");
    EmbeddedMetadata::Encoded blocks;
    const bool isAtEnd = !unwanted.startsWith('\x1C');
    blocks.iptc = isAtEnd ? before + after + unwanted : before + unwanted + after;
    QCOMPARE(copied(blocks).iptc, before + after);
}

/// A Photoshop image resource.
QByteArray resource(int id, const QByteArray &data, const QByteArray &name = {})
{
    QByteArray pascal = number(name.size(), 1) + name;
    pascal += QByteArray(pascal.size() % 2, '\0');
    return "8BIM" + number(id, 2) + pascal + number(data.size(), 4) + data +
           QByteArray(data.size() % 2, '\0');
}

void CopySafetyTest::imageResourcesAreChosen_data()
{
    QTest::addColumn<QByteArray>("unwanted");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("thumbnail") << resource(0x040C, QByteArray(28, '\0') + kJpeg);
    QTest::newRow("old thumbnail") << resource(0x0409, QByteArray(300, 't'));
    QTest::newRow("EXIF") << resource(0x0422, kTiff);
    QTest::newRow("XMP") << resource(0x0424, xmpPacket("<dc:format>image/x</dc:format>"));
    QTest::newRow("layers") << resource(0x0402, QByteArray(64, 'l'), "name");
    QTest::newRow("JPEG for a link") << resource(0x040B, kJpeg);
    QTest::newRow("TIFF for a link") << resource(0x040B, kTiff);
    QTest::newRow("too long") << resource(0x040B, QByteArray(100'000, 'u'));
    QTest::newRow("name beyond the end") << "8BIM\x04\x0B\xFFname"_ba;
    QTest::newRow("length beyond the end") << "8BIM\x04\x0B\0\0\xFF\xFF\xFF\xFFlink"_ba;
    QTest::newRow("bytes of another kind") << "\xFF\xD8\xFF\xE0 and more bytes"_ba;
}

/// What follows something that cannot be understood is left out with it.
void CopySafetyTest::imageResourcesAreChosen()
{
    QFETCH(QByteArray, unwanted);
    const QByteArray angle = resource(0x040D, number(30, 4));
    const QByteArray flag = resource(0x040A, "\1");
    const QByteArray iptc = dataSet(2, 120, "Lake");
    const QByteArray all = angle + resource(0x0404, iptc) + flag + unwanted;
    QCOMPARE(imageResourcesForCopy(all, {}), angle + flag);
    QCOMPARE(iptcOfImageResources(all), iptc);
    QCOMPARE(imageResourcesForCopy(unwanted, {}), QByteArray());
}

void CopySafetyTest::imageResourcesFollowTheCopy()
{
    const auto resolution = [](int horizontal, int vertical) {
        return resource(0x03ED, number(horizontal, 2) + number(0, 2) + "\0\1\0\2"_ba + number(vertical, 2) +
                                    number(0, 2) + "\0\1\0\2"_ba);
    };
    const QByteArray digest(16, 'd');
    const QByteArray rights = resource(0x040A, "\1") + resource(0x040B, "https://quorvel.example");
    const QByteArray all = resolution(72, 300) + rights + resource(0x0425, digest);
    ImageResourceFacts facts{"old"_ba, "old"_ba, {300, 300}, false};
    QCOMPARE(imageResourcesForCopy(all, facts), resolution(300, 300) + rights + resource(0x0425, digest));
    facts.iptcAfter = "new";
    facts.clearsRights = true;
    const QByteArray renewed = QByteArray::fromHex("22af645d1859cb5ca6da0c484f1f37ea"); // md5sum of "new"
    QCOMPARE(imageResourcesForCopy(all, facts), resolution(300, 300) + resource(0x0425, renewed));
    facts.iptcAfter.clear();
    QCOMPARE(imageResourcesForCopy(all, facts), resolution(300, 300));
}

void CopySafetyTest::commentsAreTexts_data()
{
    QTest::addColumn<QByteArrayList>("comments");
    QTest::addColumn<QByteArray>("kept");
    const auto text = [](const char *name, const QByteArray &comment) {
        QTest::newRow(name) << QByteArrayList{comment} << comment;
    };
    const auto other = [](const char *name, const QByteArray &comment) {
        QTest::newRow(name) << QByteArrayList{comment} << QByteArray();
    };
    text("text", "Lake\tat\r\nnoon\n"_ba);
    text("closed text", "Lake\0"_ba);
    text("Latin 1", "Z\xFCrich"_ba);
    text("UTF-8", "Z\xC3\xBCrich"_ba);
    other("control bytes", "Lake\x01\x02"_ba);
    other("JPEG", "\xFF\xD8\xFF\xDB"_ba + QByteArray(300, 'x'));
    other("PNG", kPng);
    other("TIFF", kTiff);
    other("GIF without control bytes", "GIF89a"_ba + QByteArray(300, 'x'));
    QTest::newRow("several") << QByteArrayList{"Lake\0"_ba, "Z\xFCrich"_ba, kPng, "Z\xC3\xBCrich"_ba}
                             << "Lake\nZ\xC3\xBCrich\nZ\xC3\xBCrich"_ba;
    const QByteArray full(65'533, 'c');
    QTest::newRow("one of two segments") << QByteArrayList{full, "d"_ba} << full + 'd';
    QTest::newRow("too many") << QByteArrayList(300, "c"_ba) << QByteArrayList(256, "c"_ba).join('\n');
}

void CopySafetyTest::commentsAreTexts()
{
    QFETCH(QByteArrayList, comments);
    QFETCH(QByteArray, kept);
    QByteArray segments;
    for (const QByteArray &comment : comments)
        segments += test::jpegSegment(0xFE, comment);
    QFile file(m_folder.path(u"comments.jpg"_qs));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(test::jpegWith({}).insert(2, segments)) > 0);
    file.close();
    const auto metadata = EmbeddedMetadata::read(file.fileName());
    const EmbeddedMetadata::Encoded copy = metadata->encodeForCopy(metadata->properties(), kFacts);
    QCOMPARE(copy.comment, kept);
    const bool isWhole = comments.size() < 256 && kept.size() >= comments.join().size();
    QCOMPARE(copy.omitted, isWhole ? QStringList() : QStringList(u"comment"_qs));
}

void CopySafetyTest::excessiveXmpIsRefused_data()
{
    QTest::addColumn<QByteArray>("properties");
    QTest::addColumn<bool>("isKept");
    const auto repeated = [](int count, const char *pattern) {
        QByteArray text;
        for (int i = 0; i < count; ++i)
            text += QByteArray(pattern).replace('#', QByteArray::number(i));
        return text;
    };
    const auto bag = [&](int count) {
        return "<dc:subject><rdf:Bag>" + repeated(count, "<rdf:li>k#</rdf:li>") + "</rdf:Bag></dc:subject>";
    };
    const auto nested = [&](const char *start) {
        return repeated(1000, start) + QByteArray("</xmp:a>").repeated(1000);
    };
    QTest::newRow("few") << bag(5) << true;
    QTest::newRow("4000 properties") << repeated(4000, "<xmp:p#>v</xmp:p#>") << true;
    QTest::newRow("4000 items") << bag(4000) << true;
    QTest::newRow("6000 properties") << repeated(6000, "<xmp:p#>v</xmp:p#>") << false;
    QTest::newRow("6000 attributes") << "<rdf:Description " + repeated(6000, " xmp:p#='v'") + "/>" << false;
    QTest::newRow("deep") << nested("<xmp:a rdf:parseType='Resource'>") << false;
    QTest::newRow("deep, with ends in comments")
        << nested("<xmp:a rdf:parseType='Resource'><!--</xmp:a>-->") << false;
    QTest::newRow("deep, with ends in values")
        << nested("<xmp:a rdf:parseType='Resource' xmp:b='/>'>") << false;
    QTest::newRow("document type") << QByteArray("<xmp:a>v</xmp:a>") << false;
}

void CopySafetyTest::excessiveXmpIsRefused()
{
    QFETCH(QByteArray, properties);
    QFETCH(bool, isKept);
    EmbeddedMetadata::Encoded blocks;
    blocks.xmp = xmpPacket("<dc:format>image/x</dc:format>" + properties);
    if (QTest::currentDataTag() == "document type"_ba)
        blocks.xmp.prepend("<!DOCTYPE x [<!ENTITY e \"v\">]>");
    // A JPEG's segment would be too short for most of these.
    QByteArray png = kPng.left(8);
    const QByteArray data = "XML:com.adobe.xmp\0\0\0\0\0"_ba + blocks.xmp;
    const QByteArray header = number(1, 4) + number(1, 4) + "\x08\0\0\0\0"_ba;
    for (const auto &[type, contents] : {std::pair("IHDR", header), {"iTXt", data}, {"IEND", QByteArray()}})
        png += number(contents.size(), 4) + type + contents + number(0, 4);
    QFile file(m_folder.path(u"source.png"_qs));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(png), png.size());
    file.close();

    QElapsedTimer timer;
    timer.start();
    const auto metadata = EmbeddedMetadata::read(file.fileName());
    const EmbeddedMetadata::Encoded copy = metadata->encodeForCopy(metadata->properties(), kFacts);
    qInfo("%lld ms", timer.elapsed());
    QCOMPARE(copy.xmp.contains("image/x"), isKept);
    QCOMPARE(copy.xmp.isEmpty(), !isKept);
    QCOMPARE(copy.omitted, isKept ? QStringList() : QStringList{u"XMP"_qs});
    QVERIFY(timer.elapsed() < 15'000); // a quarter of a second without sanitizers
}

void CopySafetyTest::thumbnailFitsAnyRoom_data()
{
    QTest::addColumn<int>("room");
    for (const int room : {700, 1500, 4000, 10'000})
        QTest::addRow("%d", room) << room;
}

/// Noise is what compresses worst.
void CopySafetyTest::thumbnailFitsAnyRoom()
{
    QFETCH(int, room);
    QImage noise(640, 640, QImage::Format_RGB32);
    QRandomGenerator random(1);
    for (int y = 0; y < noise.height(); ++y)
        for (int x = 0; x < noise.width(); ++x)
            noise.setPixel(x, y, x / 4 % 2 == y / 4 % 2 ? random.generate() : 0xFF000000);
    ThumbnailMaker maker(noise.size());
    maker.addRows(noise, noise.height());
    const QByteArray thumbnail = maker.jpeg(room);
    QCOMPARE(thumbnail.size(), room);
    QVERIFY(!QImage::fromData(thumbnail, "JPG").isNull());
}

QTEST_GUILESS_MAIN(CopySafetyTest)
#include "copysafety_test.moc"
