// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/namingtokens.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/testenvironment.h"
#include "support/testfolder.h"
#include "support/words.h"
#include "ui/help/helpguide.h"
#include "ui/widgets/commandtable.h"
#include "watermark/texttokens.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QXmlStreamReader>

using namespace plexa;
using namespace plexa::test;

using Language = Row<>;                // the name of the folder
using Search = Row<Text, QStringList>; // words, places

QString folder(const QString &name = u"guide"_qs)
{
    return sourceFolder() + u"/docs/"_qs + name;
}

/// All places of the guide, "page.html" and "page.html#section".
QStringList placesOf(const HelpGuide &guide)
{
    QStringList places;
    for (const HelpPage &page : guide.pages())
        for (const HelpSection &section : page.sections)
            places.append(section.place);
    return places;
}

class HelpGuideTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// A page that no other one leads to would be lost, a link to nowhere leads astray.
    void linksAndPicturesResolve_data() { addRows<Language>({{"guide"}, {"guide-de"}}); }
    void linksAndPicturesResolve()
    {
        const QString folder = ::folder(std::get<0>(currentRow<Language>()));
        const HelpGuide guide(folder);
        const QStringList places = placesOf(guide);
        QStringList files;
        int links = 0;
        int pictures = 0;
        for (const HelpPage &page : guide.pages()) {
            files.append(page.file);
            QVERIFY2(!page.title.isEmpty(), qPrintable(page.file));
            QXmlStreamReader xml(contentsOf(folder + u'/' + page.file));
            while (!xml.atEnd()) {
                if (xml.readNext() != QXmlStreamReader::StartElement)
                    continue;
                const QString link = xml.attributes().value(u"href"_qs).toString();
                const QString picture = xml.attributes().value(u"src"_qs).toString();
                QVERIFY2(link.isEmpty() || places.contains(link), qPrintable(page.file + u": "_qs + link));
                QVERIFY2(picture.isEmpty() || (QFileInfo::exists(folder + u'/' + picture) &&
                                               !xml.attributes().value(u"alt"_qs).isEmpty()),
                         qPrintable(page.file + u": "_qs + picture));
                links += !link.isEmpty();
                pictures += !picture.isEmpty();
            }
            QVERIFY2(!xml.hasError(), qPrintable(page.file + u": "_qs + xml.errorString()));
        }
        files.sort();
        QCOMPARE(files, namesIn(folder));
        QCOMPARE(QSet<QString>(places.begin(), places.end()).size(), places.size());
        QVERIFY(links > 30 && pictures > 4);
    }

    /// Each guide has the same places, pictures, tokens and keys.
    void germanGuideHasTheSamePlaces()
    {
        const HelpGuide english(folder());
        QCOMPARE(placesOf(HelpGuide(folder(u"guide-de"_qs))), placesOf(english));
        for (const HelpPage &page : english.pages()) {
            const QByteArray own = contentsOf(folder() + u'/' + page.file);
            const QByteArray german = contentsOf(folder(u"guide-de"_qs) + u'/' + page.file);
            for (const char *const element : {"<img", "<tr>", "<li>"})
                QVERIFY2(own.count(element) == german.count(element), qPrintable(page.file));
        }
    }

    /// The places that the windows ask for, as the source names them.
    void placesOfHelpButtonsExist()
    {
        const QStringList places = placesOf(HelpGuide(folder()));
        static const QRegularExpression place(u"\"([a-z-]+\\.html(#[a-z-]+)?)\""_qs);
        int count = 0;
        for (const QString &path : pathsBelow(sourceFolder() + u"/src/ui"_qs)) {
            if (!path.endsWith(u".cpp"))
                continue;
            const QString source = QString::fromUtf8(contentsOf(sourceFolder() + u"/src/ui/"_qs + path));
            for (const QRegularExpressionMatch &match : place.globalMatch(source)) {
                QVERIFY2(places.contains(match.captured(1)), qPrintable(path + u": "_qs + match.captured(1)));
                ++count;
            }
        }
        QVERIFY(count >= 8);
    }

    void everyTokenIsListed()
    {
        const QString page = QString::fromUtf8(contentsOf(folder() + u"/tokens.html"_qs));
        for (const QString &token : tokenNames() + namingTokenNames())
            QVERIFY2(page.contains(
                         QRegularExpression(u"[>,] ?"_qs + QRegularExpression::escape(token) + u"[,<]"_qs)),
                     qPrintable(token));
    }

    void everyShortcutIsListed()
    {
        const QString page = QString::fromUtf8(contentsOf(folder() + u"/shortcuts.html"_qs));
        for (const CommandRow &row : commandTable()) {
            if (*row.shortcut == '\0')
                continue;
            QString text = commandText(row).remove(u'&');
            text.remove(u'…');
            const QString keys = QString::fromLatin1(row.shortcut).replace(u"; "_qs, u"</kbd> or <kbd>"_qs);
            const QString line = u"%1</td><td><kbd>%2</kbd></td>"_qs.arg(text, keys);
            QVERIFY2(page.contains(line), qPrintable(line));
        }
    }

    void searchFinds_data()
    {
        addRows<Search>({
            {"title first, in any case",
             "DISTANCES",
             {u"watermark.html#distances"_qs, u"look.html#tiling"_qs}},
            {"all words, in any order", "unique overwrite", {u"saving.html#conflicts"_qs}},
            {"cells of a table apart", "time title", {}},
            {"nothing", "  ", {}},
            {"unknown", "qwertz", {}},
        });
    }
    void searchFinds()
    {
        const auto [name, words, places] = currentRow<Search>();
        QStringList found;
        for (const HelpHit &hit : HelpGuide(folder()).find(words)) {
            found.append(hit.place);
            QVERIFY(hit.excerpt.size() < 130 && !hit.title.isEmpty());
        }
        if (name == u"cells of a table apart")
            QVERIFY(!found.contains(u"shortcuts.html"_qs));
        else
            QCOMPARE(found, places);
    }

    void damagedPageEndsAtItsFault()
    {
        const TestFolder damaged;
        QVERIFY(writeFile(damaged.path("index.html"),
                          "<html><body><h1>One</h1><a href=\"b.html\">b</a></p><h2>Two</h2></body></html>"));
        const HelpGuide guide(damaged.path(""));
        QCOMPARE(guide.pages().size(), 2); // the second one is empty
        QCOMPARE(guide.pages().first().sections.size(), 1);
        QVERIFY(HelpGuide(damaged.path("none")).pages().size() == 1);
    }
};

QTEST_MAIN(HelpGuideTest)
#include "helpguide_test.moc"
