// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/xmlparser.h"
#include "support/testenvironment.h"

#include <QtTest>

#include <sys/stat.h>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::StringLiterals;

namespace
{

const QByteArray kHeader = "<?xml version=\"1.0\"?>";

/// A parser that keeps its error lines.
struct Reading {
    QByteArrayList lines;
    XMLParser parser{[this](const QByteArray &line) { lines.append(line); }};
};

QByteArray nested(int depth)
{
    QByteArray xml = kHeader;
    for (int i = 0; i < depth; ++i)
        xml += "<a>";
    for (int i = 0; i < depth; ++i)
        xml += "</a>";
    return xml;
}

} // namespace

class XMLParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsElementsAndAttributes()
    {
        Reading reading;
        const QByteArray xml =
            "\t<!-- <a> -- ->\r\n-->" + kHeader +
            "<r one='say \"1\"' two=\"it's\"three = '&lt;&amp;3'\n empty=''>\r\n  text \n"
            "<formatX>x</formatX><!----><format>f</format><leaf /><leaf id=\"7\" ></leaf>\n"
            "</r> <!-- > -->\n";
        QVERIFY2(reading.parser.parse(xml), reading.lines.join().constData());
        QCOMPARE(reading.parser.header()->name(), "xml");
        QCOMPARE(reading.parser.header()->attributeValue("version").value(), "1.0");
        const XMLParser::Element &root = *reading.parser.root();
        QCOMPARE(root.name(), "r");
        QCOMPARE(root.text(), "text \n");
        QCOMPARE(root.attributeCount(), 4);
        QCOMPARE(root.attributeValue("one").value(), "say \"1\"");
        QCOMPARE(root.attributeValue("two").value(), "it's");
        QCOMPARE(root.attributeValue("three").value(), "<&3");
        QCOMPARE(root.attributeValue("empty").value(), "");
        QVERIFY(!root.attributeValue("oneX").has_value());
        QCOMPARE(root.subelementCount(), 4);
        QCOMPARE(root.subelement(1)->text(), "f");
        QCOMPARE(root.subelement("format"), root.subelement(qsizetype(0))); // the first that begins so
        QCOMPARE(root.subelement("leaf"), root.subelement(2));
        QCOMPARE(root.subelement(2)->text(), "");
        QCOMPARE(root.subelement(3)->attributeValue("i").value(), "7");
        QVERIFY(!root.subelement(4) && !root.subelement(-1) && !root.subelement("leaves"));
        QCOMPARE(reading.lines, QByteArrayList());

        // Where its own quote does not come again, a value ends at the other one.
        Reading mixed;
        QVERIFY2(mixed.parser.parse(kHeader + "<r a=\"x' b='y'></r>"), mixed.lines.join().constData());
        QCOMPARE(mixed.parser.root()->attributeValue("a").value(), "x");
        QCOMPARE(mixed.parser.root()->attributeValue("b").value(), "y");
    }

    void rootText_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("line");
        const QByteArray none;
        QTest::newRow("every entity")
            << QByteArray("x&lt;&gt;&amp;&quot;&apos;y") << QByteArray("x<>&\"'y") << none;
        QTest::newRow("not decoded twice") << QByteArray("&amp;lt;") << QByteArray("&lt;") << none;
        QTest::newRow("decimal and hexadecimal")
            << QByteArray("&#65;&#x41;&#X4a;") << QByteArray("AAJ") << none;
        QTest::newRow("the low eight bits")
            << QByteArray("&#321;&#x99999999999999999999941;") << QByteArray("AA") << none;
        QTest::newRow("bytes make up UTF-8") << QByteArray("&#195;&#164;") << QByteArray("\xc3\xa4") << none;
        QTest::newRow("ends at a NUL") << QByteArray("a&#0;b") << QByteArray("a") << none;
        QTest::newRow("a lone carriage return") << QByteArray(" \n\ra\r") << QByteArray("\ra\r") << none;
        const auto unknown = [](const QByteArray &rest) {
            return "ERROR:  unknown entity reference: \"" + rest + "\"\n";
        };
        QTest::newRow("unknown") << QByteArray("a&nbsp;b") << none << unknown("&nbsp;b");
        QTest::newRow("not closed") << QByteArray("a&#65 b;") << none << unknown("&#65 b;");
        QTest::newRow("no digits") << QByteArray("&#;") << none << unknown("&#;");
        QTest::newRow("no hexadecimal digits") << QByteArray("&#xg;") << none << unknown("&#xg;");
        QTest::newRow("at the end") << QByteArray("a&#x4") << none << unknown("&#x4");
    }

    void rootText()
    {
        QFETCH(QByteArray, stored);
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, line);
        Reading reading;
        QVERIFY(reading.parser.parse(kHeader + "<r>" + stored + "</r>"));
        QCOMPARE(reading.lines, QByteArrayList()); // nothing is decoded before it is asked for
        QCOMPARE(reading.parser.root()->text(), text);
        QCOMPARE(reading.parser.root()->text(), text);
        QCOMPARE(reading.lines.join(), line);
        QCOMPARE(reading.parser.hasError(), !line.isEmpty());
    }

    void faultsAreNamedWithTheirPlace_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QByteArrayList>("lines");
        const auto add = [](const char *name, const QByteArray &xml, const QByteArrayList &lines) {
            QTest::newRow(name) << xml << lines;
        };
        const QByteArray missing = "missing the standard XML header tag <?xml ...?>\n";
        const QByteArray attribute = "expected an attribute or end of tag\n";
        add("empty", "", {"ERROR (line 1):  " + missing});
        add("no header", "\n<a></a>", {"ERROR (line 2, near \"<\"):  " + missing});
        add("another header", "<?php ?>", {"ERROR (line 1, near \"?>\"):  " + missing});
        add("byte order mark", "\xef\xbb\xbf" + kHeader,
            {"ERROR (line 1, near \"\xef\xbb\xbf<?xml\"):  " + missing});
        add("UTF-16", QByteArray("<\0?\0x\0", 6), {"ERROR (line 1, near \"<\"):  " + missing});
        add("header ends like an element", "<?xml a='1'>",
            {"ERROR (line 1, near \">\"):  " + attribute, "ERROR (line 1, near \">\"):  " + missing});
        add("header without a blank at its end", "<?xml?><a></a>",
            {"ERROR (line 1, near \">\"):  " + attribute, "ERROR (line 1, near \">\"):  " + missing});
        add("no root", kHeader + "\n", {"ERROR (line 2):  expected start of a tag \"<\"\n"});
        add("two roots", kHeader + "<a></a>\r\n<b></b>",
            {"ERROR (line 2, near \">\"):  unexpected end of XML file (maybe multiple root elements)\n"});
        add("closed by another", kHeader + "\r\n<r>\n<a>text\n</b></r>",
            {"ERROR (line 4, near \"b\"):  the element \"a\" is not closed!\n"});
        add("closed by a longer name", kHeader + "<a></ab>",
            {"ERROR (line 1, near \"ab\"):  the element \"a\" is not closed!\n"});
        add("no blank before the slash", kHeader + "<a/>\n",
            {"ERROR (line 2):  the element \"a/\" is not closed!\n"});
        add("text behind an element", kHeader + "<a><b></b>\nx y\n</a>",
            {"ERROR (line 2, near \"x\"):  the element \"a\" is not closed!\n"});
        add("text that begins with a quote", kHeader + "<a>\"b\"</a>",
            {"ERROR (line 1, near \"\"\"):  the element \"a\" is not closed!\n"});
        add("text that begins with a slash", kHeader + "<a>/b</a>",
            {"ERROR (line 1, near \">\"):  expected a closing empty tag \"/>\"\n",
             "ERROR (line 1):  the element \"a\" is not closed!\n"});
        add("question mark", kHeader + "<a b='c' ?</a>",
            {"ERROR (line 1, near \"'\"):  expected a closing header tag \"?>\"\n",
             "ERROR (line 1):  " + attribute});
        add("header's end in an element", kHeader + "<a ?></a>",
            {"ERROR (line 1, near \"?>\"):  " + attribute});
        add("no equal sign", kHeader + "<a b\n'c'></a>",
            {"ERROR (line 2, near \"'\"):  expected equal sign \"=\"\n"});
        add("no quotes", kHeader + "<a b=c></a>",
            {"ERROR (line 1, near \"c></a>\"):  expected single quote \"'\" or double quote \"\"\"\n"});
        add("unfinished value", kHeader + "<a b=\"c",
            {"ERROR (line 1):  expected single quote \"'\" or double quote \"\"\"\n"});
        add("no name", kHeader + "< ></a>", {"ERROR (line 1, near \">\"):  expected data\n"});
        add("unfinished comment", kHeader + "<a></a><!-- \n-- >",
            {"ERROR (line 2, near \">\"):  unexpected end of file\n"});
    }

    void faultsAreNamedWithTheirPlace()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QByteArrayList, lines);
        Reading reading;
        QVERIFY(!reading.parser.parse(xml));
        QCOMPARE(reading.lines, lines);
        // One fault does not reach into another reading.
        Reading next;
        QVERIFY(next.parser.parse(kHeader + "<a b=\"\" c='\"' d=\"e' ></a>"));
        QCOMPARE(next.parser.root()->attributeValue("c").value(), "\"");
    }

    void limitsAreExact_data()
    {
        QTest::addColumn<QByteArray>("allowed");
        QTest::addColumn<QByteArray>("refused");
        QTest::addColumn<QByteArray>("reason");
        QTest::newRow("depth") << nested(XMLParser::kMaxDepth) << nested(XMLParser::kMaxDepth + 1)
                               << QByteArray("nested more than 100 deep");
        // Two are the header and its attribute, one the root.
        const QByteArray elements = QByteArray("<b></b>").repeated(XMLParser::kMaxRecords - 3);
        QTest::newRow("elements") << kHeader + "<a>" + elements + "</a>"
                                  << kHeader + "<a>" + elements + "<b></b></a>"
                                  << QByteArray("more than 200000 elements and attributes");
        const QByteArray attributes = QByteArray(" b=''").repeated(XMLParser::kMaxRecords - 3);
        QTest::newRow("attributes") << kHeader + "<a" + attributes + " ></a>"
                                    << kHeader + "<a" + attributes + " c='' ></a>"
                                    << QByteArray("more than 200000 elements and attributes");
        const QByteArray text(XMLParser::kMaxFileBytes - kHeader.size() - 7, 'x');
        QTest::newRow("bytes") << kHeader + "<a>" + text + "</a>" << kHeader + "<a>" + text + "x</a>"
                               << QByteArray("more than 16 MB");
    }

    void limitsAreExact()
    {
        QFETCH(QByteArray, allowed);
        QFETCH(QByteArray, refused);
        QFETCH(QByteArray, reason);
        Reading ok;
        QVERIFY(ok.parser.parse(allowed));
        Reading bad;
        QVERIFY(!bad.parser.parse(refused));
        QCOMPARE(bad.lines.size(), 1);
        QVERIFY2(bad.lines.first().contains(reason), bad.lines.first().constData());
    }

    void errorLinesStayShortAndPlain()
    {
        Reading reading;
        // The cut falls into the middle of a letter.
        QVERIFY(reading.parser.parse(kHeader + "<a>&\x1b[2J" + QByteArray("\xc3\xa4").repeated(100'000) +
                                     "</a>"));
        QCOMPARE(reading.parser.root()->text(), "");
        const QByteArray line = reading.lines.join();
        QVERIFY(line.size() < 1100);
        QVERIFY(line.startsWith("ERROR:  unknown entity reference: \"&?[2J"));
        QVERIFY(line.endsWith("\xc3\xa4...\"\n"));
        QVERIFY(line.isValidUtf8());
    }

    void filesThatCannotBeRead_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("missing") << u"missing"_s << QByteArray("ERROR:  cannot open the file \"PATH\"\n");
        QTest::newRow("folder") << u"folder"_s << QByteArray("ERROR:  cannot read the file \"PATH\"\n");
        QTest::newRow("pipe") << u"pipe"_s << QByteArray("ERROR:  cannot read the file \"PATH\"\n");
        QTest::newRow("too large") << u"large"_s
                                   << QByteArray("ERROR:  there are more than 16 MB in the file \"PATH\"\n");
        QTest::newRow("no XML") << u"text"_s
                                << QByteArray(
                                       "ERRORPATH  (line 1, near \"hello\"):  missing the standard XML "
                                       "header tag <?xml ...?>\n");
    }

    void filesThatCannotBeRead()
    {
        const TestFolder folder;
        QVERIFY(QDir().mkpath(folder.path(u"folder"_s)));
        QCOMPARE(mkfifo(QFile::encodeName(folder.path(u"pipe"_s)).constData(), 0600), 0);
        QFile text(folder.path(u"text"_s));
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write("hello <world>") > 0);
        QFile large(folder.path(u"large"_s));
        QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(XMLParser::kMaxFileBytes + 1));
        text.close();

        QFETCH(QString, name);
        QFETCH(QByteArray, line);
        Reading reading;
        QVERIFY(!reading.parser.loadAndParseFile(folder.path(name)));
        QCOMPARE(reading.lines.join(), line.replace("PATH", folder.path(name).toUtf8()));
        QVERIFY(!reading.parser.header() && !reading.parser.root());
    }

    void aFileIsReadOnce()
    {
        const TestFolder folder;
        QFile file(folder.path(u"a.xml"_s));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(kHeader + "<a></a>") > 0);
        file.close();
        Reading reading;
        QVERIFY(!reading.parser.parse());
        QVERIFY(reading.parser.loadFile(file.fileName()));
        QVERIFY(!reading.parser.loadFile(file.fileName()));
        QVERIFY(reading.parser.parse());
        QCOMPARE(reading.parser.root()->name(), "a");
        QVERIFY(!reading.parser.parse());
        QCOMPARE(reading.parser.root()->name(), "a");
    }
};

QTEST_GUILESS_MAIN(XMLParserTest)
#include "xmlparser_test.moc"
