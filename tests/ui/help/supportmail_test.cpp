// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/applicationname.h"
#include "support/scriptedalerts.h"
#include "ui/help/supportmail.h"

#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <QTest>
#include <QUrlQuery>

using namespace plexa;
using namespace plexa::test;

class SupportMailTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mailStatesTheVersionsAndNothingPrivate()
    {
        const QUrl mail = supportMail();
        QCOMPARE(mail.scheme(), u"mailto"_qs);
        QCOMPARE(mail.path(), u"support@quorvel.com"_qs);
        const QUrlQuery query(mail);
        const QString subject = query.queryItemValue(u"subject"_qs, QUrl::FullyDecoded);
        const QString body = query.queryItemValue(u"body"_qs, QUrl::FullyDecoded);
        QVERIFY2(subject.contains(applicationName() + u' ' + applicationVersion()), qPrintable(subject));
        for (const QString &fact :
             {applicationVersion(), QSysInfo::prettyProductName(), u"Qt "_qs + QLatin1StringView(qVersion())})
            QVERIFY2(body.contains(fact), qPrintable(body));
        for (const QString &secret : {QDir::homePath(), QSysInfo::machineHostName(),
                                      QString::fromLatin1(QSysInfo::machineUniqueId())})
            QVERIFY(secret.isEmpty() || !body.contains(secret));
        // As the standard on such addresses asks for: %20 for a blank, %0D%0A for the end of a line.
        QVERIFY(mail.toEncoded().contains("%0D%0A") && !mail.toEncoded().contains('+'));
    }

    void failureOffersTheAddress()
    {
        ScriptedAlerts alerts;
        contactSupport(alerts, [](const QUrl &) { return true; });
        QVERIFY(alerts.shown().isEmpty());
        alerts.expect(u"No mail program could be opened"_qs, {0, false});
        contactSupport(alerts, [](const QUrl &) { return false; });
        QCOMPARE(alerts.complaints(), QStringList());
        QVERIFY(alerts.shown().first().text.contains(u"support@quorvel.com"_qs));
        QCOMPARE(QGuiApplication::clipboard()->text(), u"support@quorvel.com"_qs);
    }
};

QTEST_MAIN(SupportMailTest)
#include "supportmail_test.moc"
