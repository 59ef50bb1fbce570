// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/desktopnotification.h"

#include "platform/applicationname.h"
#include "platform/identity.h"
#include "ui/window/applicationservice.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>

namespace plexa
{
namespace
{

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kDefaultAction = QStringLiteral("default"); // a click on the message
constexpr int kUsualTime = -1;

} // namespace

DesktopNotification::DesktopNotification(QObject *parent)
    : QObject(parent)
{
}

void DesktopNotification::show(const QString &title)
{
    if (!ApplicationService::hasSessionBus() || !QDBusConnection::sessionBus().isConnected())
        return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.connect(kService, kPath, kService, QStringLiteral("ActionInvoked"), this,
                SLOT(actionInvoked(uint, QString)));
    const QString id = QString::fromLatin1(identity::kApplicationId);
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kService, QStringLiteral("Notify"));
    call << applicationName() << m_id << id << title << QString()
         << QStringList{kDefaultAction, tr("Show %1").arg(applicationName())}
         << QVariantMap{{QStringLiteral("desktop-entry"), id}} << kUsualTime;
    auto *const watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<uint> reply = *watcher;
        m_id = reply.isError() ? 0 : reply.value();
        watcher->deleteLater();
    });
}

void DesktopNotification::actionInvoked(uint id, const QString &action)
{
    if (m_id != 0 && id == m_id && action == kDefaultAction)
        Q_EMIT activated();
}

} // namespace plexa
