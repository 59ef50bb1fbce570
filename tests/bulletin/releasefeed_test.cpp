// SPDX-License-Identifier: GPL-3.0-or-later

#include "bulletin/releasefeed.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "support/datarows.h"
#include "support/testfolder.h"
#include "support/webserver.h"

#include <QDateTime>
#include <QScopeGuard>
#include <QSignalSpy>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// A feed with one release for each version.
QByteArray feedOf(const QByteArrayList &versions)
{
    QByteArrayList releases;
    for (const QByteArray &version : versions)
        releases.append("{\"version\": \"" + version + "\", \"page\": \"https://a.example/\"}");
    return "{\"releases\": [" + releases.join(',') + "]}";
}

struct Fixture {
    Fixture() { registerDefaults(defaults); }

    TestFolder folder;
    WebServer server;
    UserDefaults defaults{u"Quorvel"_qs, u"Plexa"_qs};
    ReleaseFeed feed{defaults, server.url(u"releases.json"_qs), {.time = std::chrono::seconds(60)}};
    QSignalSpy checked{&feed, &ReleaseFeed::checked};
    QSignalSpy failed{&feed, &ReleaseFeed::failed};

    void setLastCheck(int daysAgo)
    {
        defaults.setObject(settings::lastUpdateCheckDate,
                           QDateTime::currentDateTimeUtc().addDays(-daysAgo).toString(Qt::ISODate));
    }

    /// The reported versions; "none", if nothing is reported for this time.
    QString versions(int milliseconds = 30'000)
    {
        if (checked.isEmpty() && !checked.wait(milliseconds))
            return u"none"_qs;
        QStringList versions;
        const auto releases = checked.takeFirst().first().value<QList<Release>>();
        for (const Release &release : releases)
            versions.append(release.version.toString());
        return versions.join(u' ');
    }
};

} // namespace

class ReleaseFeedTest : public QObject
{
    Q_OBJECT

    using Feed = Row<QByteArray, Text>; // JSON with ' for "; newer versions and their notes, or a reason

private Q_SLOTS:
    void readsFeed_data()
    {
        const QByteArray page = "'page': 'https://a/'";
        addRows<Feed>({
            {"newest first",
             "{'releases': [{'version': '1.2.9', " + page + "}, {'version': '1.2.10', " + page + "}]}",
             "1.2.10: 1.2.9: "},
            {"same, with a zero less", "{'releases': [{'version': '1.2', " + page + "}]}", ""},
            {"older", "{'releases': [{'version': '1.1.9', " + page + "}]}", ""},
            {"no versions",
             "{'releases': [{'version': '9', " + page + "}, {'version': '9.0-rc1', " + page +
                 "}, {'version': 9.1, " + page + "}, {" + page + "}, null]}",
             ""},
            {"no safe pages",
             "{'releases': [{'version': '9.0', 'page': 'http://a/'}, {'version': '9.0', 'page': "
             "'file:///a'}, {'version': '9.0', 'page': 'https:///'}, {'version': '9.0'}]}",
             ""},
            {"system too old", "{'releases': [{'version': '9.0', 'minOSversion': '12.1', " + page + "}]}",
             ""},
            {"notes in the user's language",
             "{'releases': [{'version': '9.0', " + page +
                 ", 'notes': [{'text': 'New'}, {'text': ' Neu\\n', 'language': 'DE'}]}]}",
             "9.0: Neu"},
            {"endless notes",
             "{'releases': [{'version': '9.0', " + page + ", 'notes': [{'text': '" + QByteArray(50'000, 'x') +
                 "'}]}]}",
             u"9.0: "_qs + QString(10'000, u'x')},
            {"no list", "{'releases': {}}", "The server sent no list of releases"},
            {"no JSON", "<html>", "The list of releases is damaged: "},
        });
    }
    void readsFeed()
    {
        auto [name, feed, expected] = currentRow<Feed>();
        const auto releases = newerReleases(
            feed.replace('\'', '"'), {QVersionNumber(1, 2, 0), systemVersionOf(u"12"_qs), {u"de-AT"_qs}});
        if (!releases) {
            QVERIFY2(!expected.isEmpty() && releases.error().text.startsWith(expected),
                     qPrintable(releases.error().text));
            return;
        }
        QStringList found;
        for (const Release &release : *releases)
            found.append(release.version.toString() + u": "_qs + release.notes);
        QCOMPARE(found.join(QString()), expected);
    }

    void checksOnceADay()
    {
        Fixture fixture;
        const auto check = [&](const QByteArrayList &versions, int milliseconds = 400) {
            fixture.server.answerWith(feedOf(versions));
            fixture.feed.checkIfRequired();
            fixture.feed.checkIfRequired(); // one is under way
            const bool isAllowed = fixture.defaults.boolForKey(settings::checksForUpdates);
            const auto lastCheck = [&] {
                return fixture.defaults.stringForKey(settings::lastUpdateCheckDate);
            };
            if (!QTest::qWaitFor([&] { return !isAllowed || isWithinADay(lastCheck()); }, 30'000))
                return u"no answer"_qs;
            return fixture.versions(milliseconds);
        };
        QCOMPARE(check({"98.0", "99.0"}, 30'000), u"99.0 98.0"_qs);
        QVERIFY(fixture.server.requests.value(0).startsWith("GET /releases.json?nocache="));
        QCOMPARE(check({"99.0"}), u"none"_qs); // on the same day
        QCOMPARE(fixture.server.requests.size(), 1);

        fixture.setLastCheck(1);
        QCOMPARE(check({"0.1"}), u"none"_qs);
        fixture.setLastCheck(1);
        fixture.feed.skip(QVersionNumber(99, 0));
        QCOMPARE(check({"99.0"}), u"none"_qs);
        fixture.setLastCheck(1);
        QCOMPARE(check({"99.0.1"}, 30'000), u"99.0.1"_qs);
        QCOMPARE(fixture.server.requests.size(), 4);

        fixture.setLastCheck(1);
        fixture.defaults.setObject(settings::checksForUpdates, false);
        QCOMPARE(check({"99.1"}), u"none"_qs);
        QCOMPARE(fixture.server.requests.size(), 4);
    }

    void answersTheUser()
    {
        Fixture fixture;
        fixture.defaults.setObject(settings::checksForUpdates, false);
        fixture.setLastCheck(0);
        fixture.feed.skip(QVersionNumber(99, 0));
        fixture.server.answerWith(feedOf({"99.0"}));
        fixture.feed.check();
        QCOMPARE(fixture.versions(), u"99.0"_qs);
        fixture.server.answerWith(feedOf({"0.1"}));
        fixture.feed.check();
        QCOMPARE(fixture.versions(), QString());
        fixture.feed.check();
        fixture.feed.cancel();
        QCOMPARE(fixture.versions(400), u"none"_qs);
        QVERIFY(fixture.failed.isEmpty());
    }

    void reportsFailuresOnlyToTheUser()
    {
        Fixture fixture;
        fixture.server.close();
        static int lines; // of the log
        lines = 0;
        const auto former =
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &line) {
                lines += line.startsWith(u"ERROR: Failed to check for updates: ") ? 1 : 0;
            });
        const auto restored = qScopeGuard([former] { qInstallMessageHandler(former); });
        fixture.feed.checkIfRequired();
        QTRY_COMPARE_WITH_TIMEOUT(lines, 1, 30'000);
        QVERIFY(fixture.failed.isEmpty());
        QVERIFY(!fixture.defaults.isStored(settings::lastUpdateCheckDate));
        fixture.feed.check();
        QVERIFY(fixture.failed.wait(30'000));
        QCOMPARE(lines, 2);
        QVERIFY(fixture.checked.isEmpty());
    }
};

QTEST_GUILESS_MAIN(ReleaseFeedTest)
#include "releasefeed_test.moc"
