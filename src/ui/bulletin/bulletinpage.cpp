// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/bulletin/bulletinpage.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDesktopServices>
#include <QEvent>
#include <QWebEngineNewWindowRequest>
#include <QWebEngineSettings>

#include <utility>

namespace plexa
{

BulletinPage::BulletinPage(QWebEngineProfile *profile, QObject *parent)
    : QWebEnginePage(profile, parent)
{
    using Settings = QWebEngineSettings;
    for (const Settings::WebAttribute attribute :
         {Settings::LocalContentCanAccessFileUrls, Settings::LocalContentCanAccessRemoteUrls,
          Settings::LocalStorageEnabled, Settings::JavascriptCanOpenWindows,
          Settings::JavascriptCanAccessClipboard, Settings::PluginsEnabled, Settings::PdfViewerEnabled,
          Settings::FullScreenSupportEnabled, Settings::ScreenCaptureEnabled,
          Settings::HyperlinkAuditingEnabled, Settings::AllowWindowActivationFromJavaScript,
          Settings::NavigateOnDropEnabled, Settings::ErrorPageEnabled})
        settings()->setAttribute(attribute, false);
    connect(this, &QWebEnginePage::featurePermissionRequested, this,
            [this](const QUrl &origin, Feature feature) {
                setFeaturePermission(origin, feature, PermissionDeniedByUser);
            });
    // Nothing else handles the request, so no window opens.
    connect(this, &QWebEnginePage::newWindowRequested, this,
            [this](const QWebEngineNewWindowRequest &request) {
                if (request.isUserInitiated() && std::exchange(m_hasUserActed, false))
                    openInBrowser(request.requestedUrl());
            });
    QCoreApplication::instance()->installEventFilter(
        this); // the engine takes the input in a widget of its own
}

bool BulletinPage::eventFilter(QObject *watched, QEvent *event)
{
    using enum QEvent::Type;
    const QEvent::Type type = event->type();
    m_hasUserActed = m_hasUserActed || type == MouseButtonPress || type == KeyPress || type == TouchBegin;
    return QWebEnginePage::eventFilter(watched, event);
}

bool BulletinPage::acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame)
{
    // The engine calls the ways of scripts to other pages links, too.
    if (type == NavigationTypeLinkClicked && std::exchange(m_hasUserActed, false)) {
        openInBrowser(url);
        return false;
    }
    const QString scheme = url.scheme();
    const bool isOfThePage = scheme == u"about" || scheme == u"data" || scheme == u"blob"; // a frame in it
    return scheme == u"https" || scheme == u"http" || (!isMainFrame && isOfThePage);
}

/// Other schemes start programs of the desktop, with arguments of the page's choice.
void BulletinPage::openInBrowser(const QUrl &url)
{
    if (url.scheme() != u"https" && url.scheme() != u"http" && url.scheme() != u"mailto")
        return;
    qInfo().noquote() << "Show the bulletin at" << url.toString(QUrl::FullyEncoded);
    QDesktopServices::openUrl(url);
}

} // namespace plexa
