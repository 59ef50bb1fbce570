// SPDX-License-Identifier: GPL-3.0-or-later

#include "bulletin/bulletinfeed.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "support/datarows.h"
#include "support/testfolder.h"
#include "support/webserver.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QSignalSpy>

using namespace plexa;
using namespace plexa::test;

namespace
{

const QByteArray kFeed = R"({"bulletins": [{"bulletinID": "b", "times_shown": 2, "allow_suppress": true,
    "bundle_ids": ["com.quorvel.Plexa"], "sources": [{"location": "https://a.example/"}]}]})";
const QByteArray kExpired = R"({"bulletins": [{"bulletinID": "b", "to": "2026-01-01",
    "sources": [{"location": "https://a.example/"}]}]})";

/// The lines that the program logs while the object lives.
class LoggedLines
{
public:
    LoggedLines()
    {
        s_lines.clear();
        m_former = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &line) { s_lines.append(line); });
    }
    ~LoggedLines() { qInstallMessageHandler(m_former); }

    const QStringList &all() const { return s_lines; }

private:
    inline static QStringList s_lines;
    QtMessageHandler m_former;
};

struct Fixture {
    TestFolder folder;
    WebServer server;
    UserDefaults defaults{u"Quorvel"_qs, u"Plexa"_qs};
};

} // namespace

class BulletinFeedTest : public QObject
{
    Q_OBJECT

    /// Status and header lines; body; whether a bulletin is chosen; start of the line in the log
    using Answer = Row<QByteArray, QByteArray, bool, Text>;

private Q_SLOTS:
    void answers_data()
    {
        const Text failed = "ERROR: Failed to download the bulletin file with error: ";
        const Text unreadable = "Failed to get or parse the JSON bulletin. Parse error: ";
        addRows<Answer>({
            {"eligible", "200 OK", kFeed, true, ""},
            {"status is not checked", "404 Not Found", kFeed, true, ""},
            {"server error", "503 Busy", "<html>", false, unreadable},
            {"expired", "200 OK", kExpired, false, ""},
            {"malformed", "200 OK", kFeed.left(40), false, unreadable},
            {"wrong type", "200 OK\r\nContent-Type: image/png", "\x89PNG\r\n", false, unreadable},
            {"largest", "200 OK", kFeed + QByteArray(1024 * 1024 - kFeed.size(), ' '), true, ""},
            {"huge", "200 OK", kFeed + QByteArray(1024 * 1024 + 1 - kFeed.size(), ' '), false,
             failed + u"The file is too large"_qs},
            {"shorter than promised", "200 OK\r\nContent-Length: 5000", kFeed, false, failed},
            {"damaged compression", "200 OK\r\nContent-Encoding: gzip", "\x1f\x8bplain", false, failed},
            {"slow", "", "", false, failed + u"The server is too slow"_qs},
        });
    }
    void answers()
    {
        const auto [name, head, body, isChosen, line] = currentRow<Answer>();
        Fixture fixture;
        fixture.server.answerWith(body, head);
        const std::chrono::milliseconds time(head.isEmpty() ? 200 : 60'000);
        BulletinFeed feed(fixture.defaults, fixture.server.url(u"news.json"_qs), {.time = time});
        QSignalSpy chosen(&feed, &BulletinFeed::bulletinChosen);
        const LoggedLines log;
        feed.showBulletinIfRequired();
        if (isChosen || !line.isEmpty())
            QTRY_COMPARE_WITH_TIMEOUT(chosen.count() + log.all().size(), 1, 30'000);
        else
            QVERIFY(!chosen.wait(300)); // nothing shows the end
        QCOMPARE(chosen.count(), isChosen ? 1 : 0);
        QCOMPARE(log.all().size(), line.isEmpty() ? 0 : 1);
        QCOMPARE(log.all().value(0).left(line.size()), line);
        const QByteArray request = fixture.server.requests.value(0);
        const auto seconds =
            QDateTime(QDate(2001, 1, 1), {}, Qt::UTC).secsTo(QDateTime::currentDateTimeUtc());
        const auto asked =
            QRegularExpression(u"^GET /news\\.json\\?nocache=(\\d+) "_qs).match(QString::fromLatin1(request));
        QVERIFY2(qAbs(asked.captured(1).toLongLong() - seconds) < 120, request.constData());
        QVERIFY(request.toLower().contains("cache-control: no-cache"));
        QVERIFY(request.contains("User-Agent: Plexa\r\n") && request.contains("Accept-Language: *\r\n"));
    }

    void redirectsOnlyToEncryption()
    {
        for (const bool isEncrypted : {false, true}) {
            Fixture fixture;
            WebServer target;
            target.answerWith(kFeed);
            const QUrl url = target.url(u"news.json"_qs, isEncrypted ? u"https"_qs : u"http"_qs);
            fixture.server.answerWith("", "302 Found\r\nLocation: " + url.toEncoded());
            BulletinFeed feed(fixture.defaults, fixture.server.url({}));
            const LoggedLines log;
            feed.showBulletinIfRequired();
            // The target answers without encryption, so this ends in a failure in both cases.
            QTRY_VERIFY_WITH_TIMEOUT(
                log.all().join(u'\n').contains(u"Failed to download the bulletin file with error: "), 30'000);
            QCOMPARE(target.requests.isEmpty(), !isEncrypted);
            QCOMPARE(target.requests.value(0).startsWith('\x16'), isEncrypted); // a handshake of TLS
        }
    }

    void remembersShowings()
    {
        Fixture fixture;
        fixture.server.answerWith(kFeed);
        BulletinFeed feed(fixture.defaults, fixture.server.url(u"news.json"_qs));
        QSignalSpy chosen(&feed, &BulletinFeed::bulletinChosen);
        const auto daysAgo = [&](int days) {
            fixture.defaults.setObject(settings::lastShownBulletinDate,
                                       QDateTime::currentDateTimeUtc().addDays(-days).toString(Qt::ISODate));
        };
        for (int showing = 0; showing < 2; ++showing) {
            feed.showBulletinIfRequired();
            QVERIFY(chosen.wait(30'000));
            const auto bulletin = chosen.takeFirst().first().value<Bulletin>();
            QCOMPARE(bulletin.page, QUrl(u"https://a.example/"_qs));
            feed.bulletinWasShown(bulletin);
            feed.showBulletinIfRequired(); // on the same day
            QVERIFY(!chosen.wait(200));
            QCOMPARE(fixture.server.requests.size(), showing + 1);
            daysAgo(1);
        }
        feed.showBulletinIfRequired();
        QVERIFY(!chosen.wait(300)); // shown twice
        QCOMPARE(fixture.server.requests.size(), 3);

        fixture.defaults.setObject(settings::ShownBulletins, u"no JSON"_qs); // damaged by hand
        daysAgo(-400);                                                       // the clock was wrong
        feed.showBulletinIfRequired();
        QVERIFY(chosen.wait(30'000));
        auto bulletin = chosen.takeFirst().first().value<Bulletin>();
        bulletin.allowSuppress = false;
        feed.suppress(bulletin);
        QVERIFY(fixture.defaults.stringArrayForKey(settings::SuppressedBulletins).isEmpty());
        bulletin.allowSuppress = true;
        feed.suppress(bulletin);
        QCOMPARE(fixture.defaults.stringArrayForKey(settings::SuppressedBulletins), QStringList{u"b"_qs});
        feed.showBulletinIfRequired();
        QVERIFY(!chosen.wait(300));
    }

    void fetchesNothingWithoutAddress()
    {
        Fixture fixture;
        BulletinFeed feed(fixture.defaults, QUrl());
        const LoggedLines log;
        feed.showBulletinIfRequired();
        QTest::qWait(50);
        QCOMPARE(log.all(), QStringList());
    }
};

QTEST_GUILESS_MAIN(BulletinFeedTest)
#include "bulletinfeed_test.moc"
