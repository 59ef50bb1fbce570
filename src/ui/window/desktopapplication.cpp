// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/desktopapplication.h"

#include "platform/applicationname.h"
#include "platform/settings.h"
#include "ui/help/licensedialog.h"
#include "ui/widgets/commandactions.h"
#include "ui/window/applicationservice.h"

#include <QDesktopServices>
#include <QGuiApplication>
#include <QSessionManager>

#include <algorithm>
#include <thread>
#include <utility>

namespace plexa
{

namespace
{

/// The memory for decoded photos, so that a photo that was shown is shown again at once.
qsizetype cacheBytes()
{
    return static_cast<qsizetype>(physicalMemoryBytes() / 8);
}

int workerThreads()
{
    return static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
}

/// The settings with their defaults, registered before the first one is read.
UserDefaults &registered(UserDefaults &defaults)
{
    registerDefaults(defaults);
    return defaults;
}

} // namespace

DesktopApplication::DesktopApplication(ApplicationService &service, const News::Addresses &feeds)
    : m_service(service)
    , m_defaults(companyName(), applicationName())
    , m_cache(cacheBytes())
    , m_budget(physicalMemoryBytes() / 2)
    , m_photos{m_fonts, m_locale, m_cache, m_budget, ReadLimits{.maxBytes = physicalMemoryBytes() / 2}}
    , m_store(m_alerts, m_fonts)
    , m_controller({m_photos, registered(m_defaults), m_alerts, m_store, workerThreads()})
    , m_delegate(
          {m_defaults, m_alerts, m_controller, [](const QUrl &url) { QDesktopServices::openUrl(url); }})
    , m_window({m_controller, m_defaults, m_alerts, workerThreads()})
    , m_session(m_controller, m_alerts)
    , m_news({m_defaults, m_alerts, m_window, [](const QUrl &url) { QDesktopServices::openUrl(url); }}, feeds)
{
    m_alerts.setWindow(&m_window);
    // Closing the window quits only where no other process can reach this one.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    m_window.setMayClose([this] { return mayClose(); });
    connect(&m_window, &MainWindow::closed, this, &DesktopApplication::windowClosed);
    connect(&m_window, &MainWindow::quitWanted, this, &DesktopApplication::quit);
    connect(&m_delegate, &AppDelegate::windowWanted, &m_window, &MainWindow::present);
    // Queued: the sender waits for the reply of the call, which must not wait for the user.
    connect(&m_service, &ApplicationService::opened, &m_delegate, &AppDelegate::openFiles,
            Qt::QueuedConnection);
    connect(&m_service, &ApplicationService::refused, this, &DesktopApplication::reportRefused,
            Qt::QueuedConnection);
    connect(&m_service, &ApplicationService::actionWanted, this, &DesktopApplication::runAction,
            Qt::QueuedConnection);
    const BatchSave &save = m_controller.batchSave();
    connect(&save, &BatchSave::started, &m_logoutInhibitor,
            [this] { m_logoutInhibitor.hold(tr("Photos are being saved")); });
    connect(&save, &BatchSave::finished, &m_logoutInhibitor, &LogoutInhibitor::release);
    // Direct: the session manager waits for the answer.
    connect(qGuiApp, &QGuiApplication::commitDataRequest, this, &DesktopApplication::sessionEnds,
            Qt::DirectConnection);
    qApp->installEventFilter(this);
    m_window.actions().setHandler(ActionId::Feedback,
                                  [] { QDesktopServices::openUrl(AppDelegate::feedbackPage()); });
    m_window.actions().setHandler(ActionId::CheckForUpdates, [this] { m_news.checkForUpdates(); });
}

DesktopApplication::~DesktopApplication()
{
    m_alerts.setWindow(nullptr);
}

bool DesktopApplication::hasAgreement()
{
    return LicenseDialog::hasAgreement(m_defaults);
}

void DesktopApplication::launch(const QStringList &paths)
{
    m_controller.readPresets();
    if (m_isQuitting) // during a question, as below
        return;
    m_hasPresets = true;
    m_controller.imageSet().setImageListModeToBrowser(
        m_defaults.boolForKey(settings::imageListIsInBrowserMode));
    m_window.show();
    m_delegate.applicationDidFinishLaunching();
    m_news.begin();
    m_session.begin();
    if (!m_isQuitting && !paths.isEmpty())
        m_delegate.openFiles(paths);
}

void DesktopApplication::runAction(const QString &name)
{
    m_window.present();
    if (name == QLatin1StringView(kAddPhotosAction))
        m_window.actions().run(ActionId::AddImages);
}

void DesktopApplication::windowClosed()
{
    m_delegate.windowWillClose();
    if (m_isQuitting || (m_service.isReachable() && wantsToKeepRunning()))
        return;
    // After the window has closed; the user may still decide to keep it.
    QMetaObject::invokeMethod(this, &DesktopApplication::quit, Qt::QueuedConnection);
}

void DesktopApplication::reportRefused(const QStringList &addresses)
{
    constexpr qsizetype kShown = 300; // of what any program may send
    QString list = addresses.join(QStringLiteral(", "));
    if (list.size() > kShown)
        list = list.left(kShown) + u'\u2026';
    Alert alert;
    alert.style = Alert::Style::Warning;
    alert.title = tr("Files elsewhere cannot be opened");
    alert.text = tr("Copy them to a folder of this computer first: %1").arg(list);
    m_alerts.run(alert);
}

/// Asks at the first time only.
bool DesktopApplication::wantsToKeepRunning()
{
    if (m_defaults.boolForKey(settings::hasExplainedClosing))
        return true;
    m_defaults.setObject(settings::hasExplainedClosing, true);
    Alert alert;
    alert.title = tr("%1 keeps running").arg(applicationName());
    alert.text = tr("Closing the window does not quit %1. Start it again to see the window again, with the "
                    "same photos. To quit, press Ctrl+Q.")
                     .arg(applicationName());
    alert.buttons = {tr("Keep Running"), tr("Quit")};
    alert.escapeButton = 0;
    return m_alerts.run(alert).button == 0;
}

/// Asks the user while photos are being saved, which goes on without the window.
bool DesktopApplication::mayClose()
{
    const BatchSave &save = m_controller.batchSave();
    if (m_isQuitting || !save.isSavingInProgress() || save.isTerminating())
        return true;
    if (!m_service.isReachable())
        return mayQuit();
    Alert alert;
    alert.style = Alert::Style::Warning;
    alert.title = tr("Photos are being saved");
    alert.text = tr("If you close the window, saving goes on without it. Start %1 again to see the result.")
                     .arg(applicationName());
    alert.buttons = {tr("Keep Window"), tr("Close Window")};
    alert.escapeButton = 0;
    return m_alerts.run(alert).button == 1;
}

/// Asks the user while photos are being saved. Saving stops if the user agrees.
bool DesktopApplication::mayQuit()
{
    BatchSave &save = m_controller.batchSave();
    if (!save.isSavingInProgress() || save.isTerminating())
        return true;
    Alert alert;
    alert.style = Alert::Style::Warning;
    alert.title = tr("Photos are being saved");
    alert.text = tr("If you quit now, photos that are not saved yet get no copies.");
    alert.buttons = {tr("Keep Saving"), tr("Quit")};
    alert.escapeButton = 0;
    if (m_alerts.run(alert).button == 0)
        return false;
    save.terminateOperation();
    return true;
}

/// The user logs out: a question while photos are being saved may keep the session.
void DesktopApplication::sessionEnds(QSessionManager &manager)
{
    if (!manager.allowsInteraction())
        return;
    if (!mayQuit())
        manager.cancel();
    manager.release();
}

/// The end of the desktop session would close the window as if the user had done it.
bool DesktopApplication::eventFilter(QObject *object, QEvent *event)
{
    if (object != qApp || event->type() != QEvent::Quit || m_isQuitting)
        return false;
    terminate();
    return true;
}

void DesktopApplication::terminate()
{
    m_alerts.stopAsking();
    m_controller.batchSave().terminateOperation();
    quit();
}

void DesktopApplication::quit()
{
    if (!m_isQuitting && !mayQuit()) {
        m_window.present();
        return;
    }
    if (std::exchange(m_isQuitting, true)) // closing the window leads here again
        return;
    m_service.release(); // a process that starts from now on must not send its files here
    if (m_hasPresets) {  // else both would replace the files of presets
        m_delegate.applicationWillTerminate();
        m_window.close();
    }
    m_session.end();
    QCoreApplication::quit();
}

} // namespace plexa
