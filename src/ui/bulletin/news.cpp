// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/bulletin/news.h"

#include <QApplication>
#include <QWidget>

namespace plexa
{

namespace
{

constexpr std::chrono::seconds kDelayOfBulletin(1); // after the launch
// The program may run for days, and it may be in the background when a check is due.
constexpr std::chrono::hours kTimeBetweenUpdates(1);

bool isInFront(const QWidget &window)
{
    return QGuiApplication::applicationState() == Qt::ApplicationActive && window.isVisible();
}

} // namespace

News::News(const Services &services, const Addresses &addresses)
    : m_mainWindow(services.mainWindow)
    , m_bulletins(services.defaults, addresses.bulletins)
    , m_bulletinPresenter(m_bulletins, services.mainWindow)
    , m_releases(services.defaults, addresses.releases)
    , m_updatePresenter({m_releases, services.alerts, services.mainWindow, services.openUrl})
{
    connect(&m_updateTimer, &QTimer::timeout, this, &News::lookForUpdates);
}

void News::begin(std::chrono::milliseconds untilUpdates)
{
    QTimer::singleShot(kDelayOfBulletin, this, &News::lookForBulletin);
    m_updateTimer.start(untilUpdates);
}

/// Only once for each start: news must not interrupt the work.
void News::lookForBulletin()
{
    if (isInFront(m_mainWindow))
        m_bulletins.showBulletinIfRequired();
}

void News::lookForUpdates()
{
    m_updateTimer.start(kTimeBetweenUpdates);
    if (isInFront(m_mainWindow) && !QApplication::activeModalWidget())
        m_releases.checkIfRequired();
}

} // namespace plexa
