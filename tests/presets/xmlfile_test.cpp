// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/xmlfile.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/testenvironment.h"

#include <QtTest>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::StringLiterals;

namespace
{

/// An object that is nothing but a text and the version of its file.
class Note final : public XMLFile
{
public:
    explicit Note(QString text)
        : m_text(std::move(text))
    {
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

struct Envelope {
    Text name;
    QByteArray xml;
    QStringList notes = {};
    bool isRead = false;
};

} // namespace

class XMLFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void envelope_data()
    {
        const QByteArray header = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
        const auto root = [](const QByteArray &attributes, const QByteArray &content = {}) {
            return "<notes " + attributes + ">" + content + "</notes>";
        };
        const QByteArray ours = "application=\"Quorvel Plexa\" fileVersion=\"1.4\"";
        addRows<Envelope>({
            {"no objects", header + root(ours), {}, true},
            {"the first major version",
             header + root("application=\"Quorvel Plexa 1\" fileVersion=\"1\"", "<n>a</n>"),
             {u"a@1"_s},
             true},
            {"any name, in order", header + root(ours, "<a>1</a><b>2</b>"), {u"1@1.4"_s, u"2@1.4"_s}, true},
            {"a later version",
             header + root("fileVersion=\"12.5x\" application=\"Quorvel Plexa\"", "<a>1</a>"),
             {u"1@12.5"_s},
             true},
            {"no number",
             header + root("application='Quorvel Plexa' fileVersion='new'", "<a>1</a>"),
             {u"1@0"_s},
             true},
            {"infinite",
             header + root("application='Quorvel Plexa' fileVersion='inf'", "<a>1</a>"),
             {u"1@0"_s},
             true},
            {"another application", header + root("application=\"Quorvel Plexa 2\" fileVersion=\"1.4\"")},
            {"no application", header + root("fileVersion=\"1.4\" other=\"\"")},
            {"another attribute", header + root(ours + " a=\"\"")},
            {"no version", header + root("application=\"Quorvel Plexa\"")},
            {"another root", header + "<note " + ours + "></note>"},
            {"a longer root", header + "<notesX " + ours + "></notesX>"},
            {"three attributes in the header",
             "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>" + root(ours)},
            {"one attribute in the header", "<?xml version=\"1.0\"?>" + root(ours)},
            {"another encoding", "<?xml version=\"1.0\" encoding=\"utf-8\"?>" + root(ours)},
            {"another version of XML", "<?xml version=\"1.1\" encoding=\"UTF-8\"?>" + root(ours)},
            {"one broken of ten", header + root(ours, QByteArray("<a>x</a>").repeated(9) + "<a>broken</a>")},
            {"not closed", header + "<notes " + ours + ">"},
        });
    }

    void envelope()
    {
        const auto [name, xml, notes, isRead] = currentRow<Envelope>();
        const auto objects = read(xml);
        QCOMPARE(objects.has_value(), isRead);
        QCOMPARE(m_code, isRead ? ReadCode::Success : ReadCode::Failed);
        QCOMPARE(m_isLater, xml.contains("12.5"));
        QCOMPARE(m_errors.isEmpty(), isRead);
        if (!isRead) // the reason names the file
            QVERIFY2(m_errors.contains(m_folder.path("notes.xml").toUtf8()), m_errors.constData());
        QStringList found;
        for (const auto &object : objects.value_or(std::vector<std::shared_ptr<Note>>()))
            found.append(object->m_text);
        QCOMPARE(found, notes);
    }

private:
    std::optional<std::vector<std::shared_ptr<Note>>> read(const QByteArray &xml)
    {
        const QString path = m_folder.path("notes.xml");
        if (!writeFile(path, xml))
            return std::nullopt;
        m_errors.clear();
        return XMLFile::readObjectsFromFile<Note>(
            path, u"Quorvel Plexa"_s, u"notes"_s, 1.4, m_code,
            [this](const QByteArray &line) { m_errors += line; }, &m_isLater);
    }

    TestFolder m_folder;
    ReadCode m_code = ReadCode::LaterVersion;
    QByteArray m_errors;
    bool m_isLater = false;
};

QTEST_GUILESS_MAIN(XMLFileTest)
#include "xmlfile_test.moc"
