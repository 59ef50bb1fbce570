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
namespace
{

QString applicationSupportBase()
{
    const QString reported = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return reported.isEmpty() ? QDir::homePath() + QStringLiteral("/.local/share") : reported;
}

} // namespace

BundleInfo BundleInfo::own()
{
    return {QString::fromUtf8(identity::kCompanyName), QString::fromUtf8(identity::kApplicationName),
            QString::fromUtf8(identity::kVersion)};
}

QString companyName(bool fromBundleInfo, const BundleInfo &bundle)
{
    if (fromBundleInfo && !bundle.developerCompany.isEmpty())
        return bundle.developerCompany;
    return QString::fromUtf8(identity::kCompanyName);
}

QString applicationNameWithCompany(bool withCompany, bool andMajorVersion, bool fromBundleInfo,
                                   const BundleInfo &bundle)
{
    QString name = fromBundleInfo && !bundle.bundleName.isEmpty()
                       ? bundle.bundleName
                       : QString::fromUtf8(identity::kApplicationName);
    if (withCompany)
        name.prepend(companyName(fromBundleInfo, bundle) + QLatin1Char(' '));
    if (andMajorVersion) {
        const QString major = bundle.shortVersionString.section(QLatin1Char('.'), 0, 0);
        name.append(QLatin1Char(' ') + (major.isEmpty() ? QStringLiteral("1") : major));
    }
    return name;
}

QString firstVersionApplicationName()
{
    return QStringLiteral("Quorvel Plexa 1");
}

QString applicationSupportSubdirectory()
{
    const QString path = applicationSupportBase() + QLatin1Char('/') + companyName(true) + QLatin1Char('/') +
                         applicationNameWithCompany(false, false, true);
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
