// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/jpegassembly.h"
#include "metadata/propertykeys.h"
#include "support/exiftool.h"
#include "support/files.h"
#include "support/testenvironment.h"

#include <QCryptographicHash>
#include <QTest>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::Literals::StringLiterals;

namespace
{

QByteArray packet(const QByteArray &namespaces, const QByteArray &attributes, const QByteArray &elements = {})
{
    return "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
           "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description rdf:about=\"\" " +
           namespaces + ' ' + attributes + '>' + elements + "</rdf:Description></rdf:RDF></x:xmpmeta>";
}

const QByteArray kPhotoshop = "xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\" ";
const QByteArray kDublinCore = "xmlns:dc=\"http://purl.org/dc/elements/1.1/\" ";

} // namespace

/// Packets that the metadata library misreads: their photos and all other photos keep their facts.
class XmpDecodingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void prefixesDoNotReachOtherPhotos()
    {
        const QString first =
            copyOf(packet("xmlns:e=\"http://ns.adobe.com/exif/1.0/\" "
                          "xmlns:exif='http://www.w3.org/2003/12/exif/ns#' "
                          "xmlns:photoshop=\"http://example.org/photoshop/\"",
                          "exif:note=\"n\" e:FNumber=\"56/10\" photoshop:City=\"nowhere\""));
        const QString second =
            copyOf(packet("xmlns:exif=\"http://ns.adobe.com/exif/1.0/\"", "exif:FNumber=\"8/1\""));
        const auto records = exiftoolRecords({first, second}, {u"-XMP:all"_s, u"-G1"_s});
        QCOMPARE(records[first][u"XMP-exif:FNumber"_s].toDouble(), 5.6);
        QCOMPARE(records[second][u"XMP-exif:FNumber"_s].toDouble(), 8.0);
        QVERIFY(!records[first].contains(u"XMP-photoshop:City"_s)); // the source does not have it either
        const QByteArray contents = contentsOf(first);
        QVERIFY(contents.contains("\"http://www.w3.org/2003/12/exif/ns#\""));
        QVERIFY(contents.contains("\"http://example.org/photoshop/\"") && contents.contains("nowhere"));
    }

    /// The library decodes the XMP of these files by itself: a TIFF, and EXIF with a packet inside.
    void packetsInExifDoNotReachOtherPhotos()
    {
        const QByteArray xmp = packet("xmlns:dc=\"urn:other/\" xmlns:Iptc4xmpCore=\"urn:core/\"",
                                      "dc:format=\"x\" Iptc4xmpCore:Location=\"x\"");
        const char length[] = {char(xmp.size() & 0xFF), char(xmp.size() >> 8), 0, 0};
        const QByteArray tiff = "II\x2A\0\x08\0\0\0\x01\0\xBC\x02\x01\0"_ba + QByteArray(length, 4) +
                                "\x1A\0\0\0\0\0\0\0"_ba + xmp;
        QVERIFY(writeFile(m_folder.path("a.tif"), tiff));
        EmbeddedMetadata::Encoded inExif;
        inExif.exif = tiff;
        QVERIFY(writeFile(m_folder.path("a.jpg"), jpegWith(inExif)));
        for (const QString &name : {u"a.tif"_s, u"a.jpg"_s}) {
            EmbeddedMetadata::read(m_folder.path(name));
            const QString copy = copyOf(packet(kPhotoshop, "photoshop:Credit=\"me\""),
                                        {{kCGImagePropertyIPTCKeywords, QVariantList{u"lake"_s}},
                                         {kCGImagePropertyIPTCScene, QVariantList{u"010100"_s}}});
            QVERIFY(!contentsOf(copy).contains("urn:"));
            const QJsonObject record = exiftoolRecords({copy}).value(copy);
            QCOMPARE(record[u"XMP-photoshop:Credit"_s].toString(), u"me"_s);
            QCOMPARE(record[u"XMP-iptcCore:Scene"_s].toArray().at(0).toString(), u"010100"_s);
        }
    }

    /// One prefix for two namespaces in one packet, and two that differ in a slash.
    void prefixBoundAgainKeepsItsFacts()
    {
        QByteArray both = packet("xmlns:a=\"http://purl.org/dc/elements/1.1/\" xmlns:q=\"http://q.example\"",
                                 "a:format=\"image/jpeg\" a:identifier=\"No. 1\" q:a=\"one\"");
        both.replace("</rdf:RDF>", "<rdf:Description xmlns:a=\"http://ns.adobe.com/photoshop/1.0/\" "
                                   "xmlns:q=\"http://q.example/\" rdf:about=\"\" a:City=\"Rom\" q:a=\"two\"/>"
                                   "</rdf:RDF>");
        const QString copy = copyOf(both);
        const auto record = exiftoolRecords({copy}, {u"-XMP:all"_s, u"-G1"_s})[copy];
        QCOMPARE(record[u"XMP-photoshop:City"_s].toString(), u"Rom"_s);
        QCOMPARE(record[u"XMP-dc:Identifier"_s].toString(), u"No. 1"_s);
        const QByteArray contents = contentsOf(copy);
        QVERIFY(contents.contains("xmlns:q=\"http://q.example\"") &&
                contents.contains("\"http://q.example/\""));
        QVERIFY(contents.contains("one") && contents.contains("two"));
    }

    /// The main packet of a JPEG and its extended one, each with prefixes of its own, and one prefix with
    /// two addresses.
    void bothPacketsKeepTheirNamespaces()
    {
        const QByteArray more = packet("xmlns:shopy=\"urn:y:1\" xmlns:same=\"http://example.com/more/\"",
                                       "shopy:code=\"y\" same:code=\"more\"");
        const QByteArray guid = QCryptographicHash::hash(more, QCryptographicHash::Md5).toHex().toUpper();
        const QByteArray main =
            packet("xmlns:xmpNote=\"http://ns.adobe.com/xmp/note/\" "
                   "xmlns:shopx=\"http://example.com/ns\" "
                   "xmlns:same=\"http://example.com/main/\"",
                   "xmpNote:HasExtendedXMP=\"" + guid + "\" shopx:code=\"x\" same:code=\"main\"");
        const QByteArray extension =
            "http://ns.adobe.com/xmp/extension/\0"_ba + guid + big32(more.size()) + big32(0) + more;
        const QString copy = copyOf(main, {}, jpegSegment(0xE1, extension));
        const QByteArray contents = contentsOf(copy);
        for (const char *declaration : {"xmlns:shopx=\"http://example.com/ns\"", "xmlns:shopy=\"urn:y:1\"",
                                        "xmlns:same=\"http://example.com/main/\""})
            QVERIFY2(contents.contains(declaration), declaration);
        const auto record = exiftoolRecords({copy}, {u"-XMP:all"_s, u"-G1"_s})[copy];
        QCOMPARE(record[u"XMP-shopx:Code"_s].toString(), u"x"_s);
        QCOMPARE(record[u"XMP-shopy:Code"_s].toString(), u"y"_s);
        QCOMPARE(record[u"XMP-same:Code"_s].toString(), u"main"_s);
        const qsizetype at = contents.indexOf("=\"http://example.com/more/\"");
        QVERIFY(at > 0);
        const QByteArray prefix = contents.first(at).sliced(contents.lastIndexOf("xmlns:", at) + 6);
        QVERIFY(contents.contains(' ' + prefix + ":code=\"more\"") ||
                contents.contains('<' + prefix + ":code>more<"));
    }

    void addressesAreSpelledAsXml()
    {
        const QString copy =
            copyOf(packet("xmlns:abc=\"http://abc.example/\" xmlns:c=\"http://c.example/?a&amp;b\" "
                          "xmlns:d.e=\"urn:d/\"",
                          "abc:one=\"1\" c:two=\"2\" c:text=\"is xmlns:z='&amp;amp;'\" d.e:three=\"3\""));
        const auto record = exiftoolRecords({copy}, {u"-XMP:all"_s, u"-G1"_s})[copy];
        QCOMPARE(record[u"XMP-abc:One"_s].toInt(), 1);
        QCOMPARE(record[u"XMP-c:Two"_s].toInt(), 2);
        QCOMPARE(record[u"XMP-c:Text"_s].toString(), u"is xmlns:z='&amp;'"_s);
        QVERIFY(contentsOf(copy).contains("xmlns:c=\"http://c.example/?a&amp;b\"")); // without a slash
        QVERIFY(contentsOf(copy).contains("d.e:three=\"3\""));
    }

    /// The library reads "type=" as a command. In every place that a text can have.
    void commandsAreTexts()
    {
        for (const char *text : {"type=portrait shoot", "type=Seq", "type=Bag of sweets"}) {
            const QString copy = copyOf(packet(
                kPhotoshop + kDublinCore, "photoshop:Headline=\""_ba + text + "\" photoshop:Credit=\"kept\"",
                "<photoshop:City>"_ba + text + "</photoshop:City><dc:subject><rdf:Bag><rdf:li>" + text +
                    "</rdf:li><rdf:li>b</rdf:li></rdf:Bag></dc:subject><dc:title><rdf:Alt>"
                    "<rdf:li xml:lang=\"x-default\">" +
                    text + "</rdf:li></rdf:Alt></dc:title>"));
            const QJsonObject record = exiftoolRecords({copy}).value(copy);
            const QString expected = QString::fromUtf8(text);
            for (const QString &tag :
                 {u"XMP-photoshop:Headline"_s, u"XMP-photoshop:City"_s, u"XMP-dc:Title"_s})
                QCOMPARE(record[tag].toString(), expected);
            QCOMPARE(record[u"XMP-dc:Subject"_s].toArray().at(0).toString(), expected);
            QCOMPARE(record[u"XMP-photoshop:Credit"_s].toString(), u"kept"_s);
        }
    }

    /// A new text reaches XMP and the IPTC record unchanged, but for characters that these cannot hold.
    void editsAreTexts()
    {
        QList<std::pair<QString, QString>> rows{
            {u"a\uFFFE\u0001b\uFFFFc"_s, u"abc"_s},
            {u"d"_s + QChar(0) + u"e"_s + QChar(0xD800) + u"f"_s, u"def"_s}};
        for (const QString &text : {u"type=Seq"_s, u"lang=de Titel"_s, u"lang=\"de\" Titel"_s, u"[1]"_s,
                                    u"charset=Ascii x"_s, u"a, b; <c> & \"d\""_s})
            rows.append({text, text});
        for (const auto &[text, inXmp] : rows) {
            const QString copy = copyOf(
                packet(kPhotoshop + kDublinCore, "photoshop:City=\"old\" photoshop:Credit=\"kept\"",
                       "<dc:subject><rdf:Bag><rdf:li>old</rdf:li></rdf:Bag></dc:subject><dc:title><rdf:Alt>"
                       "<rdf:li xml:lang=\"x-default\">old</rdf:li></rdf:Alt></dc:title>"),
                {{kCGImagePropertyIPTCCity, text},
                 {kCGImagePropertyIPTCObjectName, text},
                 {kCGImagePropertyIPTCKeywords, QVariantList{text, u"b"_s}}});
            const QJsonObject record = exiftoolRecords({copy}).value(copy);
            for (const QString &tag : {u"XMP-photoshop:City"_s, u"XMP-dc:Title"_s})
                QCOMPARE(record[tag].toVariant().toString(), inXmp);
            QCOMPARE(record[u"XMP-dc:Subject"_s].toArray().at(0).toVariant().toString(), inXmp);
            QCOMPARE(record[u"XMP-photoshop:Credit"_s].toString(), u"kept"_s);
            QVERIFY(!contentsOf(copy).contains("d\0e"_ba));
            QCOMPARE(m_omitted, QStringList());
        }
    }

    void oldNamesOfRightsAddNothing()
    {
        const QString copy = copyOf(packet("xmlns:xmpDM=\"http://ns.adobe.com/xmp/1.0/DynamicMedia/\"",
                                           "xmpDM:copyright=\"(c) me\""));
        QCOMPARE(exiftoolValue(copy, u"XMP-dc:Rights"_s), "(c) me");
    }

    /// A text in the place of a structure accepts no parts.
    void refusedPropertyIsReported()
    {
        const QVariantMap contact{{kCGImagePropertyIPTCContactInfoCity, u"Oslo"_s}};
        const QString copy =
            copyOf(packet("xmlns:core=\"http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/\" " + kPhotoshop,
                          "core:CreatorContactInfo=\"me\" photoshop:Headline=\"kept\""),
                   {{kCGImagePropertyIPTCCreatorContactInfo, contact}});
        QCOMPARE(m_omitted, QStringList(u"XMP iptc:CreatorContactInfo"_s));
        QCOMPARE(exiftoolValue(copy, u"XMP-photoshop:Headline"_s), "kept");
    }

    /// Packets with known faults are repaired, others are left out and reported.
    void brokenPackets()
    {
        const auto check = [this](const QByteArray &text, const QString &city) {
            const QString copy =
                copyOf(packet(kPhotoshop, {}, "<photoshop:City>" + text + "</photoshop:City>"));
            QCOMPARE(m_omitted, city.isNull() ? QStringList(u"XMP"_s) : QStringList());
            QCOMPARE(QString::fromUtf8(exiftoolValue(copy, u"XMP-photoshop:City"_s)), city);
            const auto source = EmbeddedMetadata::read(m_folder.path("source.jpg"));
            QCOMPARE(source->properties()[kCGImagePropertyIPTCDictionary]
                         .toMap()[kCGImagePropertyIPTCCity]
                         .toString(),
                     city);
        };
        check("K\xF6ln \x80 K\xC3\xB6ln", u"K\u00F6ln \u20AC K\u00F6ln"_s);
        check("A & B&ouml;&amp;&#x", u"A & B&ouml;&&#x"_s);
        check("a</photoshop:City><nobody:a>1</nobody:a><photoshop:City>", {}); // undeclared
        check("a</photoshop:City><photoshop:", {});                            // truncated
        check("<!DOCTYPE x>a", {});
    }

private:
    /// Writes a photo with the packet and a copy of it with the IPTC facts added. @return the copy's path
    QString copyOf(const QByteArray &xmp, const QVariantMap &iptc = {}, const QByteArray &moreSegments = {})
    {
        EmbeddedMetadata::Encoded metadata;
        metadata.xmp = xmp;
        const QString path = m_folder.path("source.jpg");
        const QString copy = m_folder.path(u"copy%1.jpg"_s.arg(++m_copies));
        if (!writeFile(path, jpegWith(metadata).insert(2, moreSegments)))
            return {};
        const auto source = EmbeddedMetadata::read(path);
        QVariantMap properties = source->properties();
        QVariantMap edited = properties.value(kCGImagePropertyIPTCDictionary).toMap();
        edited.insert(iptc);
        properties.insert(kCGImagePropertyIPTCDictionary, edited);
        const EmbeddedMetadata::Encoded encoded = source->encodeForCopy(properties, {QSize(16, 16)});
        m_omitted = encoded.omitted;
        const bool isWritten = writeFile(copy, jpegWith(encoded));
        return isWritten ? copy : QString();
    }

    TestFolder m_folder;
    int m_copies = 0;
    QStringList m_omitted; ///< of the last copy
};

QTEST_GUILESS_MAIN(XmpDecodingTest)

#include "xmpdecoding_test.moc"
