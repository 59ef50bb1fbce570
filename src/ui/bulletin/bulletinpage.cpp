// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/bulletin/bulletinpage.h"

#include <QDebug>
#include <QDesktopServices>
#include <QWebEngineNewWindowRequest>
#include <QWebEngineSettings>

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
                if (request.isUserInitiated())
                    openInBrowser(request.requestedUrl());
            });
}

bool BulletinPage::acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame)
{
    if (type == NavigationTypeLinkClicked) {
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
