// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/jpegassembly.h"
#include "imageio/pictures.h"
#include "metadata/propertykeys.h"
#include "support/exiftool.h"

#include <QTest>

using namespace plexa;

namespace
{

QByteArray packet(const QByteArray &namespaces, const QByteArray &attributes)
{
    return "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
           "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description rdf:about=\"\" " +
           namespaces + ' ' + attributes + "/></rdf:RDF></x:xmpmeta>";
}

} // namespace

/// Packets that the metadata library takes amiss: do their photos and all others keep what they say?
class XmpPacketsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void prefixesDoNotReachOtherPhotos();
    void prefixBoundAnewKeepsItsFacts();
    void prefixThatEndsAnotherIsDeclared();
    void commandsAreTexts_data();
    void commandsAreTexts();
    void editsAreTexts_data();
    void editsAreTexts();
    void oldNamesOfRightsAddNothing();
    void refusedPropertyIsNamed();
    void brokenPacketsAreMended_data();
    void brokenPacketsAreMended();

private:
    /// Writes a photo with the packet and a copy of it, with the IPTC facts on top. @return the copy's path
    QString copyOf(const QByteArray &xmp, const QVariantMap &iptc = {})
    {
        EmbeddedMetadata::Encoded metadata;
        metadata.xmp = xmp;
        const QString path = m_folder.path(u"source.jpg"_qs);
        const QString copy = m_folder.path(QStringLiteral("copy%1.jpg").arg(++m_copies));
        if (!test::writeFile(path, test::jpegWith(metadata)))
            return {};
        const auto source = EmbeddedMetadata::read(path);
        QVariantMap properties = source->properties();
        QVariantMap edited = properties.value(kCGImagePropertyIPTCDictionary).toMap();
        edited.insert(iptc);
        properties.insert(kCGImagePropertyIPTCDictionary, edited);
        const EmbeddedMetadata::Encoded encoded = source->encodeForCopy(properties, {QSize(16, 16)});
        m_omitted = encoded.omitted;
        const bool isWritten = test::writeFile(copy, test::jpegWith(encoded));
        return isWritten ? copy : QString();
    }

    test::TestFolder m_folder;
    int m_copies = 0;
    QStringList m_omitted; ///< of the last copy
};

void XmpPacketsTest::prefixesDoNotReachOtherPhotos()
{
    const QByteArray adobe = "xmlns:exif=\"http://ns.adobe.com/exif/1.0/\"";
    const QByteArray clashing = "xmlns:e=\"http://ns.adobe.com/exif/1.0/\" "
                                "xmlns:exif='http://www.w3.org/2003/12/exif/ns#' "
                                "xmlns:photoshop=\"http://example.org/photoshop/\"";
    const QString first =
        copyOf(packet(clashing, "exif:note=\"n\" e:FNumber=\"56/10\" photoshop:City=\"nowhere\""));
    const QString second = copyOf(packet(adobe, "exif:FNumber=\"8/1\""));
    const auto records = test::exiftoolRecords({first, second}, {u"-XMP:all"_qs, u"-G1"_qs});
    QCOMPARE(records[first][u"XMP-exif:FNumber"_qs].toDouble(), 5.6);
    QCOMPARE(records[second][u"XMP-exif:FNumber"_qs].toDouble(), 8.0);
    QVERIFY(!records[first].contains(u"XMP-photoshop:City"_qs)); // it never said so
    const QByteArray contents = test::contentsOf(first);
    QVERIFY(contents.contains("\"http://www.w3.org/2003/12/exif/ns#\""));
    QVERIFY(contents.contains("\"http://example.org/photoshop/\""));
    QVERIFY(contents.contains("nowhere"));
}

/// One prefix for two namespaces in one packet.
void XmpPacketsTest::prefixBoundAnewKeepsItsFacts()
{
    QByteArray both = packet("xmlns:a=\"http://purl.org/dc/elements/1.1/\" xmlns:q=\"http://q.example/1/\"",
                             "a:format=\"image/jpeg\" a:identifier=\"No. 1\" q:a=\"one\"");
    both.replace("</rdf:RDF>", "<rdf:Description xmlns:a=\"http://ns.adobe.com/photoshop/1.0/\" "
                               "xmlns:q=\"http://q.example/2/\" rdf:about=\"\" a:City=\"Rom\" q:a=\"two\"/>"
                               "</rdf:RDF>");
    const QString copy = copyOf(both);
    const auto record = test::exiftoolRecords({copy}, {u"-XMP:all"_qs, u"-G1"_qs})[copy];
    QCOMPARE(record[u"XMP-photoshop:City"_qs].toString(), u"Rom"_qs);
    QCOMPARE(record[u"XMP-dc:Identifier"_qs].toString(), u"No. 1"_qs);
    const QByteArray contents = test::contentsOf(copy);
    QVERIFY(contents.contains("\"http://q.example/1/\"") && contents.contains("\"http://q.example/2/\""));
    QVERIFY(contents.contains("one") && contents.contains("two"));
}

void XmpPacketsTest::prefixThatEndsAnotherIsDeclared()
{
    const QString copy =
        copyOf(packet("xmlns:abc=\"http://abc.example/\" xmlns:c=\"http://c.example/?a&amp;b\"",
                      "abc:one=\"1\" c:two=\"2\" c:text=\"is xmlns:z='&amp;amp;'\""));
    const auto record = test::exiftoolRecords({copy}, {u"-XMP:all"_qs, u"-G1"_qs})[copy];
    QCOMPARE(record[u"XMP-abc:One"_qs].toInt(), 1);
    QCOMPARE(record[u"XMP-c:Two"_qs].toInt(), 2);
    QCOMPARE(record[u"XMP-c:Text"_qs].toString(), u"is xmlns:z='&amp;'"_qs);
    QVERIFY(test::contentsOf(copy).contains("xmlns:c=\"http://c.example/?a&amp;b\"")); // without a slash
}

void XmpPacketsTest::commandsAreTexts_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("of no type") << QByteArray("type=portrait shoot");
    QTest::newRow("of a type") << QByteArray("type=Seq");
    QTest::newRow("of a type, with more") << QByteArray("type=Bag of sweets");
}

/// In every place that a text can have.
void XmpPacketsTest::commandsAreTexts()
{
    QFETCH(QByteArray, text);
    QByteArray xmp = packet("xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\" "
                            "xmlns:dc=\"http://purl.org/dc/elements/1.1/\"",
                            "photoshop:Headline=\"" + text + "\" photoshop:Credit=\"kept\"");
    xmp.replace("/></rdf:RDF>", "><photoshop:City>" + text +
                                    "</photoshop:City><dc:subject><rdf:Bag><rdf:li>" + text +
                                    "</rdf:li><rdf:li>b</rdf:li></rdf:Bag></dc:subject><dc:title><rdf:Alt>"
                                    "<rdf:li xml:lang=\"x-default\">" +
                                    text + "</rdf:li></rdf:Alt></dc:title></rdf:Description></rdf:RDF>");
    const QString copy = copyOf(xmp);
    const QJsonObject record = test::exiftoolRecords({copy}, {u"-XMP:all"_qs, u"-G1"_qs}).value(copy);
    const QString expected = QString::fromUtf8(text);
    for (const QString &tag : {u"XMP-photoshop:Headline"_qs, u"XMP-photoshop:City"_qs, u"XMP-dc:Title"_qs})
        QCOMPARE(record[tag].toString(), expected);
    QCOMPARE(record[u"XMP-dc:Subject"_qs].toArray().at(0).toString(), expected);
    QCOMPARE(record[u"XMP-photoshop:Credit"_qs].toString(), u"kept"_qs);
}

void XmpPacketsTest::editsAreTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("inXmp");
    const auto row = [](const QString &text, const QString &inXmp) {
        QTest::newRow(qPrintable(inXmp)) << text << inXmp;
    };
    for (const QString &text : {u"type=Seq"_qs, u"lang=de Titel"_qs, u"lang=\"de\" Titel"_qs, u"[1]"_qs,
                                u"charset=Ascii x"_qs, u"a, b; <c> & \"d\""_qs})
        row(text, text);
    row(u"a\uFFFE\u0001b\uFFFFc"_qs, u"abc"_qs);
    row(u"d"_qs + QChar(0) + u"e"_qs + QChar(0xD800) + u"f"_qs, u"def"_qs);
}

/// What people type reaches XMP and the IPTC record as it is, but for what these cannot hold.
void XmpPacketsTest::editsAreTexts()
{
    QFETCH(QString, text);
    QFETCH(QString, inXmp);
    QByteArray xmp = packet("xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\" "
                            "xmlns:dc=\"http://purl.org/dc/elements/1.1/\"",
                            "photoshop:City=\"old\" photoshop:Credit=\"kept\"");
    xmp.replace("/></rdf:RDF>", "><dc:subject><rdf:Bag><rdf:li>old</rdf:li></rdf:Bag></dc:subject>"
                                "<dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">old</rdf:li></rdf:Alt>"
                                "</dc:title></rdf:Description></rdf:RDF>");
    const QString copy = copyOf(xmp, {{kCGImagePropertyIPTCCity, text},
                                      {kCGImagePropertyIPTCObjectName, text},
                                      {kCGImagePropertyIPTCKeywords, QVariantList{text, u"b"_qs}}});
    const QJsonObject record = test::exiftoolRecords({copy}).value(copy);
    for (const QString &tag : {u"XMP-photoshop:City"_qs, u"XMP-dc:Title"_qs})
        QCOMPARE(record[tag].toVariant().toString(), inXmp);
    QCOMPARE(record[u"XMP-dc:Subject"_qs].toArray().at(0).toVariant().toString(), inXmp);
    QCOMPARE(record[u"XMP-photoshop:Credit"_qs].toString(), u"kept"_qs);
    QVERIFY(!test::contentsOf(copy).contains(QByteArray("d\0e", 3)));
    QCOMPARE(m_omitted, QStringList());
}

void XmpPacketsTest::oldNamesOfRightsAddNothing()
{
    const QString copy = copyOf(
        packet("xmlns:xmpDM=\"http://ns.adobe.com/xmp/1.0/DynamicMedia/\"", "xmpDM:copyright=\"(c) me\""));
    QCOMPARE(test::exiftoolRecords({copy}).value(copy)[u"XMP-dc:Rights"_qs].toString(), u"(c) me"_qs);
}

/// A text in the place of a structure takes in no parts.
void XmpPacketsTest::refusedPropertyIsNamed()
{
    const QVariantMap contact{{kCGImagePropertyIPTCContactInfoCity, u"Oslo"_qs}};
    const QString copy = copyOf(packet("xmlns:core=\"http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/\" "
                                       "xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\"",
                                       "core:CreatorContactInfo=\"me\" photoshop:Headline=\"kept\""),
                                {{kCGImagePropertyIPTCCreatorContactInfo, contact}});
    QCOMPARE(m_omitted, QStringList(u"XMP iptc:CreatorContactInfo"_qs));
    QCOMPARE(test::exiftoolRecords({copy}).value(copy)[u"XMP-photoshop:Headline"_qs].toString(), u"kept"_qs);
}

void XmpPacketsTest::brokenPacketsAreMended_data()
{
    QTest::addColumn<QByteArray>("properties");
    QTest::addColumn<QString>("city"); // null: the packet is lost
    QTest::addColumn<QStringList>("omitted");
    const auto row = [](const char *name, const QByteArray &properties, const QString &city,
                        const QStringList &omitted = {}) {
        QTest::newRow(name) << properties << city << omitted;
    };
    const auto cityRow = [&](const char *name, const QByteArray &text, const QString &city) {
        row(name, "<p:City>" + text + "</p:City>", city);
    };
    cityRow("Latin-1 beside UTF-8", "K\xF6ln \x80 K\xC3\xB6ln", u"K\u00F6ln \u20AC K\u00F6ln"_qs);
    cityRow("control characters", QByteArray("a\1b\0c", 5), u"abc"_qs);
    cityRow("forbidden references", "a&#x1;b&#xD800;c&#1114112;d&#xF6;&#228;", u"abcd\u00F6\u00E4"_qs);
    cityRow("ampersands, entities", "A & B&ouml;&<![CDATA[C&D\xF6]]>&amp;", u"A & B&ouml;&C&D\u00F6&"_qs);
    cityRow("reference without end", "&#x", u"&#x"_qs);
    const QByteArray oslo = "<p:City>Oslo</p:City>";
    row("undeclared prefix", "<nobody:a>1</nobody:a><tiff:Make>M</tiff:Make>" + oslo, u"Oslo"_qs,
        {u"XMP nobody:a"_qs});
    row("twice", oslo + "<p:City>Rome</p:City>", u"Oslo"_qs, {u"XMP p:City"_qs});
    row("twice, in another description",
        oslo + "</rdf:Description><rdf:Description rdf:about='' xmlns:p='http://ns.adobe.com/photoshop/1.0/' "
               "p:City='Rome'>",
        u"Oslo"_qs, {u"XMP p:City"_qs});
    row("item without list", "<rdf:li>x</rdf:li>" + oslo, u"Oslo"_qs, {u"XMP rdf:li"_qs});
    row("prefix bound anew",
        "<q:a xmlns:n='urn:b/' rdf:parseType='Resource'><n:c xmlns:n='urn:d/'>1</n:c></q:a><rdf:li/>" + oslo,
        u"Oslo"_qs, {u"XMP rdf:li"_qs});
    row("XML as text", "<p:City rdf:parseType='Literal'>Os<b xmlns=''>lo</b></p:City>", u"Oslo"_qs);
    row("cut off", oslo + "<p:", {}, {u"XMP"_qs});
    row("document type", "<!DOCTYPE x>" + oslo, {}, {u"XMP"_qs});
}

/// Who reads the metadata of a photo sees what the copy carries.
void XmpPacketsTest::brokenPacketsAreMended()
{
    QFETCH(QByteArray, properties);
    QFETCH(QString, city);
    QFETCH(QStringList, omitted);
    QByteArray xmp = packet("xmlns:p=\"http://ns.adobe.com/photoshop/1.0/\" "
                            "xmlns:q=\"http://ns.adobe.com/xap/1.0/\"",
                            "");
    xmp.replace("/></rdf:RDF>",
                "><q:Nickname><rdf:Bag><rdf:li>a</rdf:li><rdf:li>b</rdf:li></rdf:Bag></q:Nickname>" +
                    properties + "<p:Country>Norway</p:Country></rdf:Description></rdf:RDF>");
    const QString copy = copyOf(xmp);
    QCOMPARE(m_omitted, omitted);
    const QVariantMap iptc = EmbeddedMetadata::read(m_folder.path(u"source.jpg"_qs))
                                 ->properties()[kCGImagePropertyIPTCDictionary]
                                 .toMap();
    const QJsonObject record = test::exiftoolRecords({copy}).value(copy);
    const QString country = city.isNull() ? QString() : u"Norway"_qs;
    QCOMPARE(iptc[kCGImagePropertyIPTCCity].toString(), city);
    QCOMPARE(iptc[kCGImagePropertyIPTCCountryPrimaryLocationName].toString(), country);
    QCOMPARE(record[u"XMP-photoshop:City"_qs].toString(), city);
    QCOMPARE(record[u"XMP-photoshop:Country"_qs].toString(), country);
    QCOMPARE(record[u"XMP-xmp:Nickname"_qs].toArray().size(), city.isNull() ? 0 : 2);
}

QTEST_GUILESS_MAIN(XmpPacketsTest)

#include "xmppackets_test.moc"
