// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/help/supportmail.h"

#include "platform/alerts.h"
#include "platform/applicationname.h"
#include "platform/identity.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QSysInfo>

namespace plexa
{

namespace
{

struct SupportMail {
    Q_DECLARE_TR_FUNCTIONS(plexa::SupportMail)
};

QString programAndVersion()
{
    return applicationName() + u' ' + applicationVersion();
}

/// A part of a "mailto" address: lines end as in a message.
QByteArray encoded(QString text)
{
    return QUrl::toPercentEncoding(text.replace(u'\n', QStringLiteral("\r\n")));
}

} // namespace

QUrl supportMail()
{
    const QString facts =
        QStringLiteral("%1\n%2 (%3)\nQt %4, %5")
            .arg(programAndVersion(), QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture(),
                 QLatin1StringView(qVersion()), QGuiApplication::platformName());
    const QString body =
        SupportMail::tr(
            "What did you do?\n\n\nWhat happened, and what did you expect?\n\n\nIf you can, attach a "
            "photo or a preset with which it happens.\n") +
        QStringLiteral("\n-- \n") + facts + u'\n';
    return QUrl::fromEncoded(QByteArray("mailto:") + identity::kSupportAddress + "?subject=" +
                             encoded(SupportMail::tr("Question about %1").arg(programAndVersion())) +
                             "&body=" + encoded(body));
}

void contactSupport(Alerts &alerts, const std::function<bool(const QUrl &)> &open)
{
    if (open(supportMail()))
        return;
    const QString address = QString::fromLatin1(identity::kSupportAddress);
    Alert alert;
    alert.title = SupportMail::tr("No mail program could be opened");
    alert.text =
        SupportMail::tr("Write to %1 instead, and state your version: %2.").arg(address, programAndVersion());
    alert.buttons = {SupportMail::tr("Copy Address"), SupportMail::tr("Close")};
    alert.escapeButton = 1;
    if (alerts.run(alert).button == 0)
        QGuiApplication::clipboard()->setText(address);
}

} // namespace plexa
