// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/xmlfile.h"
#include "support/testenvironment.h"

#include <QtTest>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::StringLiterals;

namespace
{

const QString kAppID = u"Quorvel Plexa"_s;

/// An object that is nothing but a text and the version of its file.
class Note final : public XMLFile
{
public:
    explicit Note(QString text)
        : m_text(std::move(text))
    {
    }

    void appendObjectToXML(QString &xml) const override
    {
        xml += u"\n  <note>"_s + replaceXmlSpecialChars(m_text) + u"</note>"_s;
    }

    static std::shared_ptr<Note> initWithXMLData(const XMLParser::Element &element, double fileVersion)
    {
        if (element.text() == "broken")
            return nullptr;
        return std::make_shared<Note>(QString::fromUtf8(element.text()) + u'@' +
                                      QString::number(fileVersion));
    }

    QString m_text;
};

} // namespace

class XMLFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void envelope_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QStringList>("notes");
        QTest::addColumn<bool>("isRead");
        const QByteArray header = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
        const auto add = [&](const char *name, const QByteArray &xml, const QStringList &notes = {}) {
            QTest::newRow(name) << xml << notes << true;
        };
        const auto refuse = [&](const char *name, const QByteArray &xml) {
            QTest::newRow(name) << xml << QStringList() << false;
        };
        const auto root = [](const QByteArray &attributes, const QByteArray &content = {}) {
            return "<notes " + attributes + ">" + content + "</notes>";
        };
        const QByteArray ours = "application=\"Quorvel Plexa\" fileVersion=\"1.4\"";
        add("no objects", header + root(ours));
        add("the first major version",
            header + root("application=\"Quorvel Plexa 1\" fileVersion=\"1\"", "<n>a</n>"), {u"a@1"_s});
        add("any name, in order", header + root(ours, "<a>1</a><b>2</b>"), {u"1@1.4"_s, u"2@1.4"_s});
        add("a later version",
            header + root("fileVersion=\"12.5x\" application=\"Quorvel Plexa\"", "<a>1</a>"), {u"1@12.5"_s});
        add("no number", header + root("application='Quorvel Plexa' fileVersion='new'", "<a>1</a>"),
            {u"1@0"_s});
        add("infinite", header + root("application='Quorvel Plexa' fileVersion='inf'", "<a>1</a>"),
            {u"1@0"_s});
        refuse("another application", header + root("application=\"Quorvel Plexa 2\" fileVersion=\"1.4\""));
        refuse("no application", header + root("fileVersion=\"1.4\" other=\"\""));
        refuse("another attribute", header + root(ours + " a=\"\""));
        refuse("no version", header + root("application=\"Quorvel Plexa\""));
        refuse("another root", header + "<note " + ours + "></note>");
        refuse("a longer root", header + "<notesX " + ours + "></notesX>");
        refuse("three attributes in the header",
               "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>" + root(ours));
        refuse("one attribute in the header", "<?xml version=\"1.0\"?>" + root(ours));
        refuse("another encoding", "<?xml version=\"1.0\" encoding=\"utf-8\"?>" + root(ours));
        refuse("another version of XML", "<?xml version=\"1.1\" encoding=\"UTF-8\"?>" + root(ours));
        refuse("one broken of ten",
               header + root(ours, QByteArray("<a>x</a>").repeated(9) + "<a>broken</a>"));
        refuse("not closed", header + "<notes " + ours + ">");
    }

    void envelope()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QStringList, notes);
        QFETCH(bool, isRead);
        const auto objects = read(xml);
        QCOMPARE(objects.has_value(), isRead);
        QCOMPARE(m_code, isRead ? ReadCode::Success : ReadCode::Failed);
        QCOMPARE(m_isLater, xml.contains("12.5"));
        QCOMPARE(m_errors.isEmpty(), isRead);
        if (!isRead) // the reason names the file
            QVERIFY2(m_errors.contains(m_folder.path(u"notes.xml"_s).toUtf8()), m_errors.constData());
        QStringList found;
        for (const auto &object : objects.value_or(std::vector<std::shared_ptr<Note>>()))
            found.append(object->m_text);
        QCOMPARE(found, notes);
    }

    void writtenFileIsWellFormed()
    {
        const Note first(u"A&B<1> \u00e4 \U0001F4F7 \"q\" 'a' &amp; %1"_s);
        const Note second(QString{});
        const QString path = m_folder.path(u"out.xml"_s);
        const XMLFile *const objects[] = {&first, &second};
        QVERIFY(XMLFile::writeObjects(objects, path, kAppID, u"notes"_s, u"1.4"_s));

        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray xml = file.readAll();
        QVERIFY(
            xml.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<notes application=\"Quorvel Plexa\" "
                           "fileVersion=\"1.4\">\n  <note>A&amp;B&lt;1&gt; "));
        QVERIFY(xml.endsWith("\n  <note></note>\n</notes>\n"));
        QXmlStreamReader judge(xml);
        QVERIFY(judge.readNextStartElement() && judge.readNextStartElement());
        QCOMPARE(judge.readElementText(), first.m_text);
        while (!judge.atEnd())
            judge.readNext();
        QVERIFY2(!judge.hasError(), qPrintable(judge.errorString()));

        const auto again = read(xml);
        QVERIFY2(again.has_value(), m_errors.constData());
        QCOMPARE(again->at(0)->m_text, first.m_text + u"@1.4"_s);
        QCOMPARE(again->at(1)->m_text, u"@1.4"_s);
    }

private:
    std::optional<std::vector<std::shared_ptr<Note>>> read(const QByteArray &xml)
    {
        QFile file(m_folder.path(u"notes.xml"_s));
        if (!file.open(QIODevice::WriteOnly) || file.write(xml) != xml.size())
            return std::nullopt;
        file.close();
        m_errors.clear();
        return XMLFile::readObjectsFromFile<Note>(
            file.fileName(), kAppID, u"notes"_s, 1.4, m_code,
            [this](const QByteArray &line) { m_errors += line; }, &m_isLater);
    }

    TestFolder m_folder;
    ReadCode m_code = ReadCode::LaterVersion;
    QByteArray m_errors;
    bool m_isLater = false;
};

QTEST_GUILESS_MAIN(XMLFileTest)
#include "xmlfile_test.moc"
