// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appdelegate.h"

#include "app/appcontroller.h"
#include "platform/alerts.h"
#include "platform/applicationname.h"
#include "platform/identity.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"

#include <QDebug>
#include <QUrlQuery>

namespace plexa
{

namespace
{

constexpr qint64 kLastCountedRun = 999'999;
constexpr qint64 kRunsBetweenFeedback = 7;

} // namespace

AppDelegate::AppDelegate(const Services &services)
    : m_services(services)
{
}

void AppDelegate::applicationDidFinishLaunching()
{
    const qint64 former = m_services.defaults.integerForKey(settings::runNumber);
    m_services.defaults.setObject(settings::runNumber, former <= kLastCountedRun ? former + 1 : 1);
    if (!m_services.defaults.synchronize())
        qCritical("ERROR: the settings could not be written");
}

void AppDelegate::openFiles(const QStringList &paths)
{
    Q_EMIT windowWanted(); // first: questions are shown above it
    if (!paths.isEmpty() && CompanionExchange::isInfoFile(paths.first()))
        m_services.controller.companionExchange().openTempFilesFromCompanionApplicationUsingInfoFile(
            paths.first());
    else
        m_services.controller.addFiles(paths);
}

void AppDelegate::windowWillClose()
{
    m_services.controller.rememberPresets();
}

void AppDelegate::applicationWillTerminate()
{
    m_services.controller.companionExchange().cancelHandOver();
    UserDefaults &defaults = m_services.defaults;
    if (defaults.integerForKey(settings::runNumber) % kRunsBetweenFeedback != 0 ||
        !defaults.boolForKey(settings::askForFeedback))
        return;
    Alert alert;
    alert.style = Alert::Style::Informational;
    alert.title = tr("Your feedback");
    alert.text =
        tr("Would you like to tell us how we can further improve %1 for your needs?").arg(applicationName());
    alert.buttons = {tr("Give feedback"), tr("No, thanks")};
    alert.escapeButton = 1;
    alert.hasSuppressionBox = true;
    const AlertAnswer answer = m_services.alerts.run(alert);
    if (answer.suppressed)
        defaults.setObject(settings::askForFeedback, false);
    if (answer.button == 0)
        m_services.openUrl(feedbackPage());
}

QUrl AppDelegate::feedbackPage()
{
    QUrl page(QString::fromUtf8(identity::kWebSite) + QStringLiteral("/feedback"));
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("product"), applicationName());
    page.setQuery(query);
    return page;
}

} // namespace plexa
