// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/savingend.h"

#include "app/appcontroller.h"
#include "ui/saving/savingreportpanel.h"
#include "ui/window/desktopnotification.h"
#include "ui/window/filemanager.h"
#include "ui/window/mainwindow.h"

#include <QApplication>
#include <QEvent>

#include <utility>

namespace plexa
{

SavingEnd::SavingEnd(const Services &services, MainWindow &window)
    : QObject(&window)
    , m_services(services)
    , m_window(window)
    , m_notification(new DesktopNotification(this))
{
    window.installEventFilter(this);
    connect(&services.controller.batchSave(), &BatchSave::finished, this, &SavingEnd::report);
    connect(m_notification, &DesktopNotification::activated, &window, &MainWindow::present);
}

void SavingEnd::report()
{
    // The companion shows the copies.
    const BatchSave &save = m_services.controller.batchSave();
    if (save.isForCompanion() && !save.report().hasFailures())
        return;
    // A question of the program may be the active window.
    if (!QApplication::activeWindow())
        m_notification->show(save.report().title());
    m_isWaiting = true;
    if (m_window.isVisible())
        showReport();
}

void SavingEnd::showReport()
{
    if (!std::exchange(m_isWaiting, false))
        return;
    auto *const panel =
        new SavingReportPanel(m_services.controller.batchSave().report(), m_services.alerts, &m_window);
    StatusManager &status = m_services.controller.statusManager();
    connect(panel, &SavingReportPanel::openFolderWanted, &status, [&status](const QStringList &copies) {
        showFilesInFileManager(copies, [&status](const QString &text) { status.notify(text); });
    });
    panel->open();
}

bool SavingEnd::eventFilter(QObject *, QEvent *event)
{
    // From the event loop: the window is not shown yet.
    if (event->type() == QEvent::Show && m_isWaiting)
        QMetaObject::invokeMethod(this, &SavingEnd::showReport, Qt::QueuedConnection);
    return false;
}

} // namespace plexa
