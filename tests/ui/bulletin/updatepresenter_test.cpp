// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "support/scriptedalerts.h"
#include "support/testfolder.h"
#include "support/webserver.h"
#include "ui/bulletin/news.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QTest>

using namespace plexa;
using namespace plexa::test;

namespace
{

const QByteArray kFeed =
    "{'releases': [{'version': '98.0', 'page': 'https://a.example/98', 'notes': [{'text': "
    "'<b>Faster</b>'}]}, "
    "{'version': '99.0', 'page': 'https://a.example/99', 'notes': [{'text': 'More cameras'}]}]}";

struct Fixture {
    Fixture()
    {
        registerDefaults(defaults);
        server.answerWith(QByteArray(kFeed).replace('\'', '"'));
        window.show();
    }

    TestFolder folder;
    WebServer server;
    UserDefaults defaults{u"Quorvel"_qs, u"Plexa"_qs};
    ScriptedAlerts alerts;
    QWidget window;
    QStringList opened;
    News news{{defaults, alerts, window, [this](const QUrl &url) { opened.append(url.toString()); }},
              {QUrl(), server.url(u"releases.json"_qs)}};

    QDialog *update() const { return window.findChild<QDialog *>(u"update"_qs); }
};

} // namespace

class UpdatePresenterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsWhatIsNew()
    {
        struct Choice {
            QString button;
            Qt::Key key;
            QStringList opened;
            QString skipped;
        };
        for (const Choice &choice :
             {Choice{u"openPage"_qs, Qt::Key_Return, {u"https://a.example/99"_qs}, QString()},
              Choice{u"skip"_qs, Qt::Key_Space, {}, u"99.0"_qs},
              Choice{u"later"_qs, Qt::Key_Escape, {}, QString()}}) {
            Fixture fixture;
            QVERIFY(QTest::qWaitForWindowActive(&fixture.window));
            fixture.news.begin(std::chrono::milliseconds(0));
            QTRY_VERIFY_WITH_TIMEOUT(fixture.update(), 30'000);
            QDialog &update = *fixture.update();
            QCOMPARE(update.findChild<QPlainTextEdit *>()->toPlainText(),
                     u"Version 99.0\n\nMore cameras\n\nVersion 98.0\n\n<b>Faster</b>"_qs);
            QVERIFY(update.isVisible() && !update.isModal());
            auto *const button = update.findChild<QPushButton *>(choice.button);
            if (choice.key == Qt::Key_Space)
                button->setFocus();
            QTest::keyClick(choice.key == Qt::Key_Space ? static_cast<QWidget *>(button) : &update,
                            choice.key);
            QTRY_VERIFY(!fixture.update());
            QCOMPARE(fixture.opened, choice.opened);
            QCOMPARE(fixture.defaults.stringForKey(settings::skippedVersion), choice.skipped);
            QCOMPARE(fixture.alerts.complaints(), QStringList());
        }
    }

    void answersTheCommand()
    {
        Fixture fixture;
        fixture.news.checkForUpdates();
        QTRY_VERIFY_WITH_TIMEOUT(fixture.update(), 30'000);
        fixture.alerts.expect(u"Plexa is up to date"_qs);
        fixture.server.answerWith("{\"releases\": []}");
        fixture.news.checkForUpdates();
        QTRY_COMPARE_WITH_TIMEOUT(fixture.alerts.complaints(), QStringList(), 30'000);

        fixture.server.head.clear(); // never answers
        fixture.news.checkForUpdates();
        QTRY_VERIFY_WITH_TIMEOUT(fixture.window.findChild<QProgressDialog *>()->isVisible(), 2000);
        QTest::keyClick(fixture.window.findChild<QProgressDialog *>(), Qt::Key_Escape);
        QTRY_VERIFY(!fixture.window.findChild<QProgressDialog *>());

        fixture.server.close();
        fixture.alerts.expect(u"Could not check for updates"_qs);
        fixture.news.checkForUpdates();
        QTRY_COMPARE_WITH_TIMEOUT(fixture.alerts.complaints(), QStringList(), 30'000);
        QTRY_VERIFY(!fixture.window.findChild<QProgressDialog *>());
    }
};

QTEST_MAIN(UpdatePresenterTest)
#include "updatepresenter_test.moc"
