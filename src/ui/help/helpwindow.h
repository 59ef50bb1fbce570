// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/help/helpguide.h"

#include <QUrl>
#include <QWidget>

class QLineEdit;
class QListWidget;
class QStackedWidget;
class QTextBrowser;
class QToolButton;
class QTreeWidget;

namespace plexa
{

/// Shows the user guide: its contents or the hits of a search at the left, a page at the right. Links to the
/// web open in the browser. Main thread.
class HelpWindow final : public QWidget
{
    Q_OBJECT

public:
    HelpWindow();

    /// Shows a place of the guide, "saving.html#names", and brings the window to the front. The first page if
    /// there is no such page.
    void showPlace(const QString &place);

private:
    QWidget *makeBar();
    QWidget *makeSide();
    void fillContents();
    void search(const QString &text);
    void showHit(int row);
    void followPage(const QUrl &page);
    void openLink(const QUrl &link);
    void zoom(int steps);

    QUrl addressOf(const QString &place) const;

    QString m_folder; ///< of the guide in the language of the window, in the resources
    HelpGuide m_guide;
    QTextBrowser *m_browser;
    QTreeWidget *m_contents;
    QListWidget *m_hits;
    QStackedWidget *m_contentsOrHits;
    QLineEdit *m_search;
    int m_zoom = 0; ///< in steps from the size of the system's font
};

} // namespace plexa
