// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/xmpnamespaces.h"
#include "imageio/filemetadata.h"
#include "imageio/jpegassembly.h"
#include "metadata/imagemetadata.h"
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

const QByteArray kPhotoshop = "xmlns:photoshop='http://ns.adobe.com/photoshop/1.0/' ";
const QByteArray kDublinCore = "xmlns:dc='http://purl.org/dc/elements/1.1/' ";

/// The text in every kind of place.
QByteArray packetWith(const QByteArray &text)
{
    return xmpPacket(kPhotoshop + kDublinCore + "photoshop:Headline='" + text + "' photoshop:Credit='kept'",
                     "<photoshop:City>" + text + "</photoshop:City><dc:subject><rdf:Bag><rdf:li>" + text +
                         "</rdf:li><rdf:li>b</rdf:li></rdf:Bag></dc:subject><dc:title><rdf:Alt>"
                         "<rdf:li xml:lang='x-default'>" +
                         text + "</rdf:li></rdf:Alt></dc:title>");
}

/// Checks the texts of a copy of such a packet.
void checkTexts(const QString &copy, const QString &expected)
{
    const QJsonObject record = exiftoolRecords({copy}).value(copy);
    for (const QString &tag : words("XMP-photoshop:Headline XMP-photoshop:City XMP-dc:Title"))
        QCOMPARE(comparable(record[tag]), expected);
    QCOMPARE(comparable(record[u"XMP-dc:Subject"_s].toArray().at(0)), expected);
    QCOMPARE(record[u"XMP-photoshop:Credit"_s].toString(), u"kept"_s);
}

} // namespace

/// Packets that the metadata library misreads: their photos and all other photos keep their facts.
class DecodedXmpTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void factsAndAddressesAreKept()
    {
        const auto check = [this](const QByteArray &xmp, const char *facts, const QByteArrayList &parts) {
            const QString copy = copyOf(xmp);
            const QJsonObject record = exiftoolRecords({copy}).value(copy);
            for (const QString &fact : words(facts))
                QCOMPARE(comparable(record[fact.section(u'=', 0, 0)]), fact.section(u'=', 1));
            for (const QByteArray &part : parts)
                QVERIFY2(contentsOf(copy).contains(part), part);
        };
        // Well-known prefixes for other namespaces do not reach the next photo.
        check(xmpPacket(
                  "xmlns:e='http://ns.adobe.com/exif/1.0/' xmlns:exif='http://www.w3.org/2003/12/exif/ns#' "
                  "xmlns:photoshop='http://example.org/photoshop/' exif:note='n' e:FNumber='56/10' "
                  "photoshop:City='nowhere'"),
              "XMP-exif:FNumber=5.6 XMP-photoshop:City=",
              {"\"http://www.w3.org/2003/12/exif/ns#\"", "\"http://example.org/photoshop/\"", "nowhere"});
        check(xmpPacket("xmlns:exif='http://ns.adobe.com/exif/1.0/' exif:FNumber='8/1'"),
              "XMP-exif:FNumber=8", {});
        check(xmpPacket(
                  "xmlns:abc='http://abc.example/' xmlns:c='http://c.example/?a&amp;b' xmlns:d.e='urn:d/' "
                  "abc:one='1' c:two='2' c:text='is xmlns:z=\"&amp;amp;\"' d.e:three='3'"),
              "XMP-abc:One=1 XMP-c:Two=2 'XMP-c:Text=is xmlns:z=\"&amp;\"'",
              {"xmlns:c=\"http://c.example/?a&amp;b\"", "d.e:three=\"3\""});
        // One prefix for two namespaces, and two addresses that differ in a slash.
        QByteArray both = xmpPacket(kDublinCore + "xmlns:q='http://q.example' dc:identifier='5' q:a='one'");
        both.replace("</rdf:RDF>",
                     "<rdf:Description xmlns:dc='http://ns.adobe.com/photoshop/1.0/' "
                     "xmlns:q='http://q.example/' rdf:about='' dc:City='Rom' q:a='two'/></rdf:RDF>");
        check(both, "XMP-photoshop:City=Rom XMP-dc:Identifier=5",
              {"xmlns:q=\"http://q.example\"", "\"http://q.example/\"", "one", "two"});
        // The library reads this old name as Dublin Core and adds line ends.
        check(xmpPacket("xmlns:xmpDM='http://ns.adobe.com/xmp/1.0/DynamicMedia/' xmpDM:copyright='me'"),
              "XMP-dc:Rights=me", {});
        check(xmpPacket(kPhotoshop, "<photoshop:City>a&#xD;b</photoshop:City>"), {}, {"a&#xD;b"});
    }

    void bothPacketsKeepTheirNamespaces()
    {
        const QByteArray more = xmpPacket("xmlns:shopy='urn:y:1' xmlns:same='http://example.com/more/' "
                                          "shopy:code='y' same:code='more'");
        const QByteArray guid = QCryptographicHash::hash(more, QCryptographicHash::Md5).toHex().toUpper();
        const QByteArray main = xmpPacket(
            "xmlns:xmpNote='http://ns.adobe.com/xmp/note/' xmlns:shopx='http://example.com/ns' "
            "xmlns:same='http://example.com/main/' shopx:code='x' same:code='main' xmpNote:HasExtendedXMP='" +
            guid + '\'');
        const QByteArray extension =
            "http://ns.adobe.com/xmp/extension/\0"_ba + guid + big32(more.size()) + big32(0) + more;
        const QString copy = copyOf(main, {}, jpegSegment(0xE1, extension));
        const QByteArray contents = contentsOf(copy);
        QVERIFY(contents.contains("xmlns:shopx=\"http://example.com/ns\""));
        QVERIFY(contents.contains("xmlns:shopy=\"urn:y:1\""));
        QVERIFY(contents.contains("=\"http://example.com/more/\""));
        const QJsonObject record = exiftoolRecords({copy}).value(copy);
        QCOMPARE(record[u"XMP-shopx:Code"_s].toString(), u"x"_s);
        QCOMPARE(record[u"XMP-shopy:Code"_s].toString(), u"y"_s);
        QCOMPARE(record[u"XMP-same:Code"_s].toString(), u"main"_s);
    }

    /// A parser compares each of these with all others, which would take minutes.
    void hugeElementsAreRefusedUnparsed()
    {
        for (const char *attribute : {" a:n%1='1'", " xmlns:n%1='urn:%1'"}) {
            QString attributes;
            for (int i = 0; i < 400'000; ++i)
                attributes += QString::fromLatin1(attribute).arg(i);
            const QByteArray packet = xmpPacket("xmlns:a='urn:a'" + attributes.toLatin1());
            QVERIFY(XmpNamespaces().packetForLibrary(packet.toStdString()).empty());
        }
    }

    /// The library reads "type=" as a command.
    void commandsAreTexts()
    {
        for (const char *text : {"type=portrait shoot", "type=Seq", "type=Bag of sweets"})
            checkTexts(copyOf(packetWith(text)), QString::fromUtf8(text));
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
            const QString copy =
                copyOf(packetWith("old"), {{kCGImagePropertyIPTCHeadline, text},
                                           {kCGImagePropertyIPTCCity, text},
                                           {kCGImagePropertyIPTCObjectName, text},
                                           {kCGImagePropertyIPTCKeywords, QVariantList{text, u"b"_s}}});
            checkTexts(copy, inXmp);
            QVERIFY(!contentsOf(copy).contains("d\0e"_ba));
            QCOMPARE(m_omitted, QStringList());
        }
    }

    /// Packets with known faults are repaired, others are left out and reported.
    void brokenPackets()
    {
        const auto check = [this](const QByteArray &text, const QString &city) {
            const QString copy =
                copyOf(xmpPacket(kPhotoshop, "<photoshop:City>" + text + "</photoshop:City>"));
            QCOMPARE(m_omitted, city.isNull() ? QStringList(u"XMP"_s) : QStringList());
            QCOMPARE(QString::fromUtf8(exiftoolValue(copy, u"XMP-photoshop:City"_s)), city);
            const auto source = metadataOf(m_folder.path("source.jpg"));
            QCOMPARE(ImageMetadata(source->properties()).iptcCity().toString(), city);
        };
        check("K\xF6ln \x80 K\xC3\xB6ln", u"K\u00F6ln \u20AC K\u00F6ln"_s);
        check("A & B&ouml;&amp;&#x", u"A & B&ouml;&&#x"_s);
        check("a</photoshop:City><other:a>1</other:a><photoshop:City>", {}); // undeclared
        check("a</photoshop:City><photoshop:", {});                          // truncated
    }

private:
    /// Writes a photo with the packet and a copy of it with the IPTC facts added. @return the copy's path
    QString copyOf(const QByteArray &xmp, const QVariantMap &iptc = {}, const QByteArray &moreSegments = {})
    {
        const QString path = m_folder.path("source.jpg");
        const QString copy = m_folder.path(u"copy%1.jpg"_s.arg(++m_copies));
        if (!writeFile(path, jpegWith({.xmp = xmp}).insert(2, moreSegments)))
            return {};
        const auto source = metadataOf(path);
        ImageMetadata edited(source->properties());
        for (auto fact = iptc.begin(); fact != iptc.end(); ++fact)
            edited.setIptcValue(*fact, fact.key());
        const auto encoded = source->encodeForCopy(edited.imagePropertiesDictionary(), {QSize(16, 16)});
        m_omitted = encoded.omitted;
        return writeFile(copy, jpegWith(encoded)) ? copy : QString();
    }

    TestFolder m_folder;
    int m_copies = 0;
    QStringList m_omitted; ///< of the last copy
};

QTEST_GUILESS_MAIN(DecodedXmpTest)

#include "decodedxmp_test.moc"
