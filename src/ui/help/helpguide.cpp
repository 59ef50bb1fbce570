// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/help/helpguide.h"

#include <QFile>
#include <QXmlStreamReader>

#include <algorithm>

namespace plexa
{

namespace
{

constexpr qsizetype kExcerptBefore = 30;
constexpr qsizetype kExcerptLength = 110;

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString titleIn(QXmlStreamReader &xml)
{
    return xml.readElementText(QXmlStreamReader::IncludeChildElements).simplified();
}

/// The names of the pages in the order of their first links.
QStringList filesOf(const QString &indexPath)
{
    QStringList files{QStringLiteral("index.html")};
    QXmlStreamReader xml(contentsOf(indexPath));
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement || xml.name() != u"a")
            continue;
        const QString file = xml.attributes().value(QStringLiteral("href")).toString().section(u'#', 0, 0);
        if (file.endsWith(u".html") && !file.contains(u'/') && !files.contains(file))
            files.append(file);
    }
    return files;
}

HelpPage readPage(const QString &folder, const QString &file)
{
    HelpPage page{file, {}, {{file, {}, {}}}};
    QXmlStreamReader xml(contentsOf(folder + u'/' + file));
    bool isInBody = false;
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::StartElement && xml.name() == u"body") {
            isInBody = true;
        } else if (token == QXmlStreamReader::StartElement && xml.name() == u"h1") {
            page.title = titleIn(xml);
            page.sections.first().title = page.title;
        } else if (token == QXmlStreamReader::StartElement && xml.name() == u"h2") {
            const QString anchor = xml.attributes().value(QStringLiteral("id")).toString();
            page.sections.append({file + u'#' + anchor, titleIn(xml), {}});
        } else if (token == QXmlStreamReader::Characters && isInBody) {
            page.sections.last().text += xml.text();
        } else if (token == QXmlStreamReader::EndElement) {
            static const QStringList inlineElements{QStringLiteral("a"),   QStringLiteral("b"),
                                                    QStringLiteral("i"),   QStringLiteral("code"),
                                                    QStringLiteral("kbd"), QStringLiteral("em")};
            if (!inlineElements.contains(xml.name()))
                page.sections.last().text += u' '; // two cells of a table are two words
        }
    }
    for (HelpSection &section : page.sections)
        section.text = section.text.simplified();
    return page;
}

QString excerptOf(const QString &text, const QString &word)
{
    const qsizetype at = std::max<qsizetype>(0, text.indexOf(word, 0, Qt::CaseInsensitive));
    qsizetype begin = std::max<qsizetype>(0, at - kExcerptBefore);
    if (begin > 0)
        begin = std::min(at, text.indexOf(u' ', begin) + 1);
    QString excerpt = text.mid(begin, kExcerptLength);
    if (begin + excerpt.size() < text.size())
        excerpt = excerpt.section(u' ', 0, -2) + QStringLiteral(" …");
    return begin > 0 ? QStringLiteral("… ") + excerpt : excerpt;
}

} // namespace

HelpGuide::HelpGuide(const QString &folder)
{
    for (const QString &file : filesOf(folder + QStringLiteral("/index.html")))
        m_pages.append(readPage(folder, file));
}

QList<HelpHit> HelpGuide::find(const QString &text) const
{
    const QStringList words = text.simplified().split(u' ', Qt::SkipEmptyParts);
    QList<HelpHit> inTitle;
    QList<HelpHit> inText;
    for (const HelpPage &page : words.isEmpty() ? QList<HelpPage>() : m_pages) {
        for (const HelpSection &section : page.sections) {
            const auto isIn = [](const QString &place) {
                return [&place](const QString &word) { return place.contains(word, Qt::CaseInsensitive); };
            };
            const QString all = section.title + u' ' + section.text;
            if (!std::all_of(words.begin(), words.end(), isIn(all)))
                continue;
            const bool isPage = section.title == page.title;
            auto &hits = std::any_of(words.begin(), words.end(), isIn(section.title)) ? inTitle : inText;
            hits.append({section.place,
                         isPage ? page.title : page.title + QStringLiteral(": ") + section.title,
                         excerptOf(section.text, words.first())});
        }
    }
    return inTitle + inText;
}

} // namespace plexa
