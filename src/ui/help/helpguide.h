// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QString>

namespace plexa
{

/// A part of a page of the user guide, below a heading.
struct HelpSection {
    QString place; ///< "page.html", or "page.html#section" below a second heading
    QString title;
    QString text; ///< without marks, in one line
};

struct HelpPage {
    QString file;
    QString title;
    QList<HelpSection> sections; ///< the first is the beginning of the page
};

/// A place that a search found.
struct HelpHit {
    QString place;
    QString title;   ///< of the page, and of the section where it has another one
    QString excerpt; ///< around the first word that was found
};

/// The user guide: a folder of pages in XHTML. The links of index.html give their order. Each page has one
/// <h1>, and an <h2 id="..."> for each section. A page that is not well-formed ends where its fault is. A
/// value; any thread.
class HelpGuide
{
public:
    explicit HelpGuide(const QString &folder);

    const QList<HelpPage> &pages() const { return m_pages; }

    /// The sections that contain all words of the text, in any case; first those with one of them in the
    /// title.
    QList<HelpHit> find(const QString &text) const;

private:
    QList<HelpPage> m_pages;
};

} // namespace plexa
