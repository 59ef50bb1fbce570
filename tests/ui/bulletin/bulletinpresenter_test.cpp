// SPDX-License-Identifier: GPL-3.0-or-later

#include "bulletin/bulletinfeed.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "support/files.h"
#include "support/testfolder.h"
#include "support/webserver.h"
#include "ui/bulletin/bulletinpresenter.h"

#include <QTest>
#include <QWidget>

using namespace plexa;
using namespace plexa::test;

class BulletinPresenterTest : public QObject
{
    Q_OBJECT

    TestFolder m_folder;
    UserDefaults m_defaults{u"Quorvel"_qs, u"Plexa"_qs};
    QWidget m_window;
    inline static QStringList s_lines; // of the log

    void resetSettings()
    {
        for (const auto key :
             {settings::lastShownBulletinDate, settings::ShownBulletins, settings::SuppressedBulletins})
            m_defaults.setObject(key, {});
    }

    QString shown() const { return m_defaults.stringForKey(settings::ShownBulletins); }

private Q_SLOTS:
    void initTestCase() { qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1"); }

    /// From the feed to the page, with the real program.
    void showsThePageOfTheFeed()
    {
        resetSettings();
        WebServer feedServer;
        WebServer pageServer;
        pageServer.answerWith("<title>news</title>", "200 OK\r\nContent-Type: text/html");
        feedServer.answerWith("{\"bulletins\": [{\"bulletinID\": \"b\", \"sources\": [{\"location\": \"" +
                              pageServer.url(u"page?n=1"_qs).toEncoded() + "\"}]}]}");
        BulletinFeed feed(m_defaults, feedServer.url(u"news.json"_qs));
        const BulletinPresenter presenter(feed, m_window);
        feed.showBulletinIfRequired();
        QTRY_VERIFY_WITH_TIMEOUT(!pageServer.requests.isEmpty(), 60'000);
        QVERIFY(pageServer.requests.first().startsWith("GET /page?n=1 "));
        QTRY_COMPARE_WITH_TIMEOUT(shown(), u"{\"b\":1}"_qs, 30'000);
        QVERIFY(m_defaults.isStored(settings::lastShownBulletinDate));
    }

    void readsReports()
    {
        resetSettings();
        const QString program = m_folder.path("substitute");
        QVERIFY(writeFile(program, "#!/bin/sh\necho shown\necho \"$@\" >\"$0.txt\"\necho suppressed\n"));
        QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner));
        BulletinFeed feed(m_defaults, QUrl());
        BulletinPresenter presenter(feed, m_window, program);
        m_window.setGeometry(100, 200, 400, 100);
        presenter.showBulletin({u"b"_qs, QUrl(u"https://a.example/ä"_qs), true});
        QTRY_COMPARE(m_defaults.stringArrayForKey(settings::SuppressedBulletins), QStringList{u"b"_qs});
        QCOMPARE(shown(), u"{\"b\":1}"_qs);
        QCOMPARE(contentsOf(program + u".txt"_qs),
                 QByteArray("--allow-suppress --center 299,249 https://a.example/%C3%A4\n"));
    }

    void countsNothingThatWasNotShown()
    {
        resetSettings();
        BulletinFeed feed(m_defaults, QUrl());
        for (const QString &program : {u"/bin/false"_qs, m_folder.path("missing")}) {
            BulletinPresenter presenter(feed, m_window, program);
            s_lines.clear();
            const auto former = qInstallMessageHandler(
                [](QtMsgType, const QMessageLogContext &, const QString &line) { s_lines.append(line); });
            presenter.showBulletin({u"b"_qs, QUrl(u"https://a.example/"_qs), true});
            const bool isLogged = QTest::qWaitFor([] { return !s_lines.isEmpty(); }, 30'000);
            qInstallMessageHandler(former);
            QVERIFY(isLogged);
            QVERIFY(s_lines.first().startsWith(u"ERROR: the bulletin could not be shown: "));
        }
        QVERIFY(!m_defaults.isStored(settings::ShownBulletins));
    }
};

QTEST_MAIN(BulletinPresenterTest)
#include "bulletinpresenter_test.moc"
