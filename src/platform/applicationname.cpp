// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/applicationname.h"

#include "platform/identity.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

namespace plexa
{

QString companyName()
{
    return QString::fromUtf8(identity::kCompanyName);
}

QString applicationName()
{
    return QString::fromUtf8(identity::kApplicationName);
}

QString applicationNameWithCompany()
{
    return companyName() + QLatin1Char(' ') + applicationName();
}

QString applicationVersion()
{
    return QString::fromUtf8(identity::kVersion);
}

QString firstVersionApplicationName()
{
    return QStringLiteral("Quorvel Plexa 1");
}

QString applicationSupportSubdirectory()
{
    const QString reported = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QString base = reported.isEmpty() ? QDir::homePath() + QStringLiteral("/.local/share") : reported;
    const QString path = QStringLiteral("%1/%2/%3").arg(base, companyName(), applicationName());
    const QFileInfo info(path);
    if (info.exists() && !info.isDir())
        qCritical().noquote()
            << QStringLiteral("ERROR: the application support directory exists, but is not a directory:  %1")
                   .arg(path);
    else if (!info.exists() && !QDir().mkpath(path))
        qCritical().noquote()
            << QStringLiteral("ERROR: failed to create the application support directory:  %1").arg(path);
    return path;
}

QString fullNameInComment(const QString &comment, const QString &loginName)
{
    QString name = comment.section(QLatin1Char(','), 0, 0).trimmed();
    if (!loginName.isEmpty())
        name.replace(QLatin1Char('&'), loginName.at(0).toUpper() + loginName.mid(1));
    return name;
}

QString fullUserName()
{
    passwd entry{};
    passwd *found = nullptr;
    std::vector<char> buffer(1024);
    while (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE)
        buffer.resize(buffer.size() * 2);
    if (!found)
        return qEnvironmentVariable("USER", qEnvironmentVariable("LOGNAME"));
    const QString loginName = QString::fromLocal8Bit(entry.pw_name);
    const QString fullName = fullNameInComment(QString::fromLocal8Bit(entry.pw_gecos), loginName);
    return fullName.isEmpty() ? loginName : fullName;
}

} // namespace plexa
