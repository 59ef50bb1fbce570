// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/logoutinhibitor.h"

#include "ui/window/applicationservice.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

#include <utility>

namespace plexa
{
namespace
{

const QString kPortal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");

constexpr uint kLogout = 1;
constexpr uint kSuspend = 4;

} // namespace

LogoutInhibitor::LogoutInhibitor(QObject *parent)
    : QObject(parent)
{
}

void LogoutInhibitor::hold(const QString &reason)
{
    if (!m_request.isEmpty() || !ApplicationService::hasSessionBus() ||
        !QDBusConnection::sessionBus().isConnected())
        return;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    // The portal makes the path of the request from these two, so it is known without waiting for the reply.
    const QString token =
        QStringLiteral("plexa_%1_%2").arg(QCoreApplication::applicationPid()).arg(++m_count);
    const QString sender = bus.baseService().mid(1).replace(u'.', u'_');
    m_request = kPath + QStringLiteral("/request/") + sender + u'/' + token;
    QDBusMessage call = QDBusMessage::createMethodCall(
        kPortal, kPath, QStringLiteral("org.freedesktop.portal.Inhibit"), QStringLiteral("Inhibit"));
    call << QString() << (kLogout | kSuspend)
         << QVariantMap{{QStringLiteral("handle_token"), token}, {QStringLiteral("reason"), reason}};
    bus.send(call);
}

void LogoutInhibitor::release()
{
    if (m_request.isEmpty())
        return;
    QDBusConnection::sessionBus().send(QDBusMessage::createMethodCall(
        kPortal, std::exchange(m_request, {}), QStringLiteral("org.freedesktop.portal.Request"),
        QStringLiteral("Close")));
}

} // namespace plexa
