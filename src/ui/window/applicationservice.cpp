// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/applicationservice.h"

#include "platform/identity.h"
#include "platform/workspace.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFileInfo>
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

/// Permits the running process to raise its window: the user started this one.
QVariantMap ownPlatformData()
{
    QVariantMap data;
    for (const auto &[key, variable] : {std::pair("activation-token", "XDG_ACTIVATION_TOKEN"),
                                        {"desktop-startup-id", "DESKTOP_STARTUP_ID"}})
        if (const QString value = qEnvironmentVariable(variable); !value.isEmpty())
            data.insert(QLatin1String(key), value);
    return data;
}

/// Calls the interface in the process that has the name. @return false if it does not answer
bool callOther(const QString &method, const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(serviceName(), objectPath(), kInterface, method);
    call.setArguments(arguments + QVariantList{ownPlatformData()});
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, kAnswerMilliseconds);
    return reply.type() == QDBusMessage::ReplyMessage;
}

/// Qt gives the token to the window system when the window is raised.
void applyPlatformData(const QVariantMap &data)
{
    const QString token = data.value(QStringLiteral("activation-token")).toString();
    if (!token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}

} // namespace

bool ApplicationService::hasSessionBus()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") ||
           (!runtime.isEmpty() && QFileInfo::exists(runtime + QStringLiteral("/bus")));
}

void ApplicationService::release()
{
    if (std::exchange(m_isReachable, false))
        QDBusConnection::sessionBus().unregisterService(serviceName());
}

bool ApplicationService::registerOnBus()
{
    if (!hasSessionBus() || !QDBusConnection::sessionBus().isConnected())
        return true;
    QDBusConnection bus = QDBusConnection::sessionBus();
    // The object first: other processes may call as soon as the name is registered.
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
    if (paths.isEmpty())
        return callOther(QStringLiteral("Activate"), {});
    QStringList uris;
    for (const QString &path : paths)
        uris.append(QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded));
    return callOther(QStringLiteral("Open"), {uris});
}

bool ApplicationService::handOverAction(const QString &name)
{
    return callOther(QStringLiteral("ActivateAction"), {name, QVariant(QVariantList())});
}

void ApplicationService::Activate(const QVariantMap &platformData)
{
    applyPlatformData(platformData);
    Q_EMIT opened({});
}

void ApplicationService::Open(const QStringList &uris, const QVariantMap &platformData)
{
    applyPlatformData(platformData);
    QStringList paths;
    QStringList others;
    for (const QString &uri : uris) {
        const QString path = localPathOf(QUrl(uri));
        (path.isEmpty() ? others : paths).append(path.isEmpty() ? uri : path);
    }
    Q_EMIT opened(paths);
    if (!others.isEmpty())
        Q_EMIT refused(others);
}

void ApplicationService::ActivateAction(const QString &name, const QVariantList &,
                                        const QVariantMap &platformData)
{
    applyPlatformData(platformData);
    Q_EMIT actionWanted(name);
}

} // namespace plexa
