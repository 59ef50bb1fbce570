// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWebEnginePage>

namespace plexa
{

/// A page from the net that cannot do more than be looked at: it stays on http and https, reads no file,
/// stores nothing, opens no window or message, and gets no camera, position or other feature. Links that the
/// user activates open in the user's browser; a script cannot open them, it only leads to another page here.
class BulletinPage final : public QWebEnginePage
{
    Q_OBJECT

public:
    /// @param profile  off the record; outlives the page
    explicit BulletinPage(QWebEngineProfile *profile, QObject *parent = nullptr);

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override;
    void javaScriptAlert(const QUrl &, const QString &) override {}
    bool javaScriptConfirm(const QUrl &, const QString &) override { return false; }
    bool javaScriptPrompt(const QUrl &, const QString &, const QString &, QString *) override
    {
        return false;
    }
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString &, int,
                                  const QString &) override
    {
    }
    QStringList chooseFiles(FileSelectionMode, const QStringList &, const QStringList &) override
    {
        return {};
    }

private:
    void openInBrowser(const QUrl &url);

    bool m_hasUserActed = false; // since a link was followed
};

} // namespace plexa
