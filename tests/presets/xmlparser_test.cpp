// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/xmlparser.h"
#include "support/datarows.h"
#include "support/files.h"
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
    return kHeader + QByteArray("<a>").repeated(depth) + QByteArray("</a>").repeated(depth);
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

    void rootText()
    {
        // Faulty texts are empty, and reported.
        for (const auto &[stored, text, fault] : {std::tuple("x&lt;&gt;&amp;&quot;&apos;y", "x<>&\"'y", ""),
                                                  {"&amp;lt;", "&lt;", ""},
                                                  {"&#65;&#x41;&#X4a;&#x4B;", "AAJK", ""},
                                                  {"&#321;&#x99999999999999999999941;", "AA", ""},
                                                  {"&#195;&#164;", "\xc3\xa4", ""},
                                                  {"a&#0;b", "a", ""},
                                                  {" \n\ra\r", "\ra\r", ""},
                                                  {"a&nbsp;b", "", "&nbsp;b"},
                                                  {"a&#65 b;", "", "&#65 b;"},
                                                  {"&#;", "", "&#;"},
                                                  {"&#xg;", "", "&#xg;"},
                                                  {"a&#x4", "", "&#x4"}}) {
            const QByteArray line =
                *fault ? QByteArray("ERROR:  unknown entity reference: \"") + fault + "\"\n" : QByteArray();
            Reading reading;
            QVERIFY(reading.parser.parse(kHeader + "<r>" + stored + "</r>"));
            QCOMPARE(reading.lines, QByteArrayList()); // nothing is decoded before it is asked for
            QCOMPARE(reading.parser.root()->text(), text);
            QCOMPARE(reading.parser.root()->text(), text);
            QCOMPARE(reading.lines.join(), line);
            QCOMPARE(reading.parser.hasError(), !line.isEmpty());
        }
    }

    void faultsAreNamedWithTheirPlace()
    {
        const QByteArray missing = "missing the standard XML header tag <?xml ...?>";
        const QByteArray attribute = "expected an attribute or end of tag";
        const QByteArray quote = "expected single quote \"'\" or double quote \"\"\"";
        const QByteArray open = "the element \"a\" is not closed!";
        using Row = std::tuple<QByteArray, QByteArray>;
        for (const auto &[xml, lines] : std::initializer_list<Row>{
                 {"", "1: " + missing},
                 {"\n<a></a>", "2, near \"<\": " + missing},
                 {"<?php ?>", "1, near \"?>\": " + missing},
                 {"\xef\xbb\xbf" + kHeader, "1, near \"\xef\xbb\xbf<?xml\": " + missing},
                 {QByteArray("<\0?\0x\0", 6), "1, near \"<\": " + missing},
                 {"<?xml a='1'>", "1, near \">\": " + attribute + "\n1, near \">\": " + missing},
                 {"<?xml?><a></a>", "1, near \">\": " + attribute + "\n1, near \">\": " + missing},
                 {kHeader + "\n", "2: expected start of a tag \"<\""},
                 {kHeader + "<a></a>\r\n<b></b>",
                  "2, near \">\": unexpected end of XML file (maybe multiple root elements)"},
                 {kHeader + "\r\n<r>\n<a>text\n</b></r>", "4, near \"b\": " + open},
                 {kHeader + "<a></ab>", "1, near \"ab\": " + open},
                 {kHeader + "<a/>\n", "2: the element \"a/\" is not closed!"},
                 {kHeader + "<a><b></b>\nx y\n</a>", "2, near \"x\": " + open},
                 {kHeader + "<a>\"b\"</a>", "1, near \"\"\": " + open},
                 {kHeader + "<a>/b</a>", "1, near \">\": expected a closing empty tag \"/>\"\n1: " + open},
                 {kHeader + "<a b='c' ?</a>",
                  "1, near \"'\": expected a closing header tag \"?>\"\n1: " + attribute},
                 {kHeader + "<a ?></a>", "1, near \"?>\": " + attribute},
                 {kHeader + "<a b\n'c'></a>", "2, near \"'\": expected equal sign \"=\""},
                 {kHeader + "<a b=c></a>", "1, near \"c></a>\": " + quote},
                 {kHeader + "<a b=\"c", "1: " + quote},
                 {kHeader + "< ></a>", "1, near \">\": expected data"},
                 {kHeader + "<a></a><!-- \n-- >", "2, near \">\": unexpected end of file"}}) {
            Reading reading;
            QVERIFY(!reading.parser.parse(xml));
            QByteArray expected = "ERROR (line " + QByteArray(lines).replace("\n", "\nERROR (line ") + '\n';
            QCOMPARE(reading.lines.join(), expected.replace(": ", "):  "));
            // One fault does not reach into another reading.
            Reading next;
            QVERIFY(next.parser.parse(kHeader + "<a b=\"\" c='\"' d=\"e' ></a>"));
            QCOMPARE(next.parser.root()->attributeValue("c").value(), "\"");
            QVERIFY(!next.parser.parse(kHeader + "<a></a>")); // a parser reads once
        }
    }

    void limitsAreExact()
    {
        // Two are the header and its attribute, one the root.
        const QByteArray elements = QByteArray("<b></b>").repeated(XMLParser::kMaxRecords - 3);
        const QByteArray attributes = QByteArray(" b=''").repeated(XMLParser::kMaxRecords - 3);
        const QByteArray text(XMLParser::kMaxFileBytes - kHeader.size() - 7, 'x');
        const char *const tooMany = "more than 200000 elements and attributes";
        for (const auto &[allowed, refused, reason] :
             {std::tuple(nested(XMLParser::kMaxDepth), nested(XMLParser::kMaxDepth + 1),
                         "nested more than 100 deep"),
              {kHeader + "<a>" + elements + "</a>", kHeader + "<a>" + elements + "<b></b></a>", tooMany},
              {kHeader + "<a" + attributes + " ></a>", kHeader + "<a" + attributes + " c='' ></a>", tooMany},
              {kHeader + "<a>" + text + "</a>", kHeader + "<a>" + text + "x</a>", "more than 16 MB"}}) {
            Reading ok;
            QVERIFY2(ok.parser.parse(allowed), reason);
            Reading bad;
            QVERIFY2(!bad.parser.parse(refused), reason);
            QCOMPARE(bad.lines.size(), 1);
            QVERIFY2(bad.lines.first().contains(reason), bad.lines.first().constData());
        }
    }

    void filesThatCannotBeRead()
    {
        const TestFolder folder;
        QVERIFY(QDir().mkpath(folder.path("folder")));
        QCOMPARE(mkfifo(QFile::encodeName(folder.path("pipe")).constData(), 0600), 0);
        QVERIFY(writeFile(folder.path("text"), "hello <world>") && writeFile(folder.path("large"), {}));
        QVERIFY(QFile::resize(folder.path("large"), XMLParser::kMaxFileBytes + 1));
        for (auto [name, line] :
             {std::pair("missing", QByteArray("ERROR:  cannot open the file \"PATH\"\n")),
              {"folder", "ERROR:  cannot read the file \"PATH\"\n"},
              {"pipe", "ERROR:  cannot read the file \"PATH\"\n"},
              {"large", "ERROR:  there are more than 16 MB in the file \"PATH\"\n"},
              {"text",
               "ERRORPATH  (line 1, near \"hello\"):  missing the standard XML header tag <?xml ...?>\n"}}) {
            Reading reading;
            QVERIFY(!reading.parser.loadAndParseFile(folder.path(name)));
            QCOMPARE(reading.lines.join(), line.replace("PATH", folder.path(name).toUtf8()));
            QVERIFY(!reading.parser.header() && !reading.parser.root());
        }
    }
};

QTEST_GUILESS_MAIN(XMLParserTest)
#include "xmlparser_test.moc"
