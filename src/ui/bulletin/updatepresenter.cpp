// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/bulletin/updatepresenter.h"

#include "bulletin/releasefeed.h"
#include "platform/alerts.h"
#include "platform/applicationname.h"
#include "ui/bulletin/updatewindow.h"

#include <QProgressDialog>

namespace plexa
{

namespace
{

constexpr int kMillisecondsBeforeProgress = 500;

} // namespace

UpdatePresenter::UpdatePresenter(const Services &services)
    : m_services(services)
{
    connect(&services.feed, &ReleaseFeed::checked, this, &UpdatePresenter::show);
    connect(&services.feed, &ReleaseFeed::failed, this, &UpdatePresenter::showFailure);
}

UpdatePresenter::~UpdatePresenter()
{
    delete m_progress;
    delete m_window;
}

void UpdatePresenter::check()
{
    if (m_progress)
        return;
    m_progress = new QProgressDialog(tr("Checking for updates…"), tr("Cancel"), 0, 0, &m_services.mainWindow);
    m_progress->setObjectName(QStringLiteral("updateCheck"));
    m_progress->setWindowTitle(applicationName());
    m_progress->setWindowModality(Qt::WindowModal);
    m_progress->setMinimumDuration(kMillisecondsBeforeProgress);
    m_progress->setValue(0); // begins that time, which else stays the 4 seconds of Qt
    connect(m_progress, &QProgressDialog::canceled, this, [this] {
        m_services.feed.cancel();
        m_progress->deleteLater();
        m_progress.clear();
    });
    m_services.feed.check();
}

void UpdatePresenter::show(const QList<Release> &releases)
{
    delete m_progress;
    if (releases.isEmpty()) {
        m_services.alerts.run({.title = tr("%1 is up to date").arg(applicationName()),
                               .text = tr("Version %1 is the newest one.").arg(applicationVersion())});
        return;
    }
    delete m_window;
    m_window = new UpdateWindow(releases, &m_services.mainWindow);
    connect(m_window, &UpdateWindow::pageWanted, this, m_services.openUrl);
    connect(m_window, &UpdateWindow::skipWanted, &m_services.feed, &ReleaseFeed::skip);
    m_window->show();
}

void UpdatePresenter::showFailure()
{
    delete m_progress;
    m_services.alerts.run({.style = Alert::Style::Warning,
                           .title = tr("Could not check for updates"),
                           .text = tr("The server of the maker cannot be reached, or does not answer as it "
                                      "should. Check the connection to the Internet, or try again later.")});
}

} // namespace plexa
