// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/scriptedalerts.h"

#include <QtTest>

using namespace plexa;

/// What other tests rely on must not let anything pass.
class ScriptedAlertsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsTheScript();
    void complains();
};

namespace
{

Alert question(const QString &title)
{
    Alert alert;
    alert.title = title;
    alert.buttons = {QStringLiteral("Yes"), QStringLiteral("No")};
    alert.escapeButton = 1;
    return alert;
}

} // namespace

void ScriptedAlertsTest::followsTheScript()
{
    test::ScriptedAlerts alerts;
    alerts.expect(QStringLiteral("A"), {1, false});
    alerts.expect(QStringLiteral("B"), {0, true});
    Alert second = question(QStringLiteral("B"));
    second.hasSuppressionBox = true;
    QCOMPARE(alerts.run(question(QStringLiteral("A"))), (AlertAnswer{1, false}));
    QCOMPARE(alerts.run(second), (AlertAnswer{0, true}));
    QCOMPARE(alerts.complaints(), QStringList());
    QCOMPARE(alerts.shown().size(), 2);
}

void ScriptedAlertsTest::complains()
{
    test::ScriptedAlerts alerts;
    alerts.expect(QStringLiteral("A"), {2, true});
    alerts.expect(QStringLiteral("B"));
    QCOMPARE(alerts.run(question(QStringLiteral("B"))), (AlertAnswer{1, false}));
    alerts.run(question(QStringLiteral("A")));
    QCOMPARE(alerts.complaints().size(), 4); // the order, the button, the box, the missing one
}

QTEST_GUILESS_MAIN(ScriptedAlertsTest)
#include "scriptedalerts_test.moc"
