// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/applicationservice.h"

#include "platform/identity.h"
#include "ui/window/sessionbus.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QUrl>

#include <utility>

namespace plexa
{

namespace
{

constexpr int kAnswerMilliseconds = 5000;

const QString kInterface = QStringLiteral("org.freedesktop.Application");

QString serviceName()
{
    return QString::fromLatin1(identity::kApplicationId);
}

/// "/com/example/Program" for "com.example.Program".
QString objectPath()
{
    return QLatin1Char('/') + serviceName().replace(QLatin1Char('.'), QLatin1Char('/'));
}

/// What lets the running process take the keyboard from the one that the user has just started.
QVariantMap ownPlatformData()
{
    QVariantMap data;
    const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
    if (!token.isEmpty())
        data.insert(QStringLiteral("activation-token"), token);
    const QString startupId = qEnvironmentVariable("DESKTOP_STARTUP_ID");
    if (!startupId.isEmpty())
        data.insert(QStringLiteral("desktop-startup-id"), startupId);
    return data;
}

/// The window system asks for the token when the window is raised.
void takePlatformData(const QVariantMap &data)
{
    const QString token = data.value(QStringLiteral("activation-token")).toString();
    if (!token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}

} // namespace

ApplicationService::ApplicationService() = default;

ApplicationService::~ApplicationService()
{
    release();
}

void ApplicationService::release()
{
    if (std::exchange(m_isReachable, false))
        QDBusConnection::sessionBus().unregisterService(serviceName());
}

bool ApplicationService::registerOnBus()
{
    if (!hasSessionBus())
        return true;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return true;
    // The object first: who sees the name may call at once.
    bus.registerObject(objectPath(), this, QDBusConnection::ExportScriptableSlots);
    const auto reply =
        bus.interface()->registerService(serviceName(), QDBusConnectionInterface::DontQueueService);
    m_isReachable = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
    if (!m_isReachable)
        bus.unregisterObject(objectPath());
    return m_isReachable || !reply.isValid();
}

bool ApplicationService::handOver(const QStringList &paths)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(serviceName(), objectPath(), kInterface,
                                       paths.isEmpty() ? QStringLiteral("Activate") : QStringLiteral("Open"));
    if (!paths.isEmpty()) {
        QStringList uris;
        for (const QString &path : paths)
            uris.append(QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded));
        call << uris;
    }
    call << ownPlatformData();
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, kAnswerMilliseconds);
    return reply.type() == QDBusMessage::ReplyMessage;
}

void ApplicationService::Activate(const QVariantMap &platformData)
{
    takePlatformData(platformData);
    Q_EMIT opened({});
}

void ApplicationService::Open(const QStringList &uris, const QVariantMap &platformData)
{
    takePlatformData(platformData);
    QStringList paths;
    for (const QString &uri : uris) {
        const QUrl url(uri);
        if (url.isLocalFile())
            paths.append(url.toLocalFile());
    }
    Q_EMIT opened(paths);
}

void ApplicationService::ActivateAction(const QString &, const QVariantList &, const QVariantMap &)
{
    // The desktop file announces no actions.
}

} // namespace plexa
