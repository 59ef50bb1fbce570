// SPDX-License-Identifier: GPL-3.0-or-later

#include "bulletin/bulletinselection.h"
#include "support/datarows.h"

using namespace plexa;
using namespace plexa::test;

namespace
{

/// The bulletin that is chosen. @param feed  JSON with ' for "
Result<std::optional<Bulletin>> chosenFrom(QByteArray feed, const BulletinAudience &audience)
{
    return bulletinToShowFromJSONData(feed.replace('\'', '"'), audience);
}

const QByteArray kPage = "'sources': [{'location': 'https://a.example/'}]";

/// A user of system 10.13.6 in the 12th run, on 2026-11-22.
BulletinAudience audience()
{
    return {12,
            u"com.quorvel.Plexa"_qs,
            systemVersionOf(u"10.13.6"_qs),
            QDate(2026, 11, 22),
            {{u"twice"_qs, 2}, {u"negative"_qs, -3}},
            {u"unwanted"_qs},
            {u"de-AT"_qs, u"en-GB"_qs}};
}

} // namespace

class BulletinSelectionTest : public QObject
{
    Q_OBJECT

    using Condition = Row<QByteArray, bool>; // members of a bulletin, whether it is shown
    using Pages = Row<QByteArray, Text>;     // sources, page
    using Feed = Row<QByteArray, Text>;      // feed, chosen ID or start of the line for the log

private Q_SLOTS:
    void isShown_data()
    {
        addRows<Condition>({
            {"suppressed", "'bulletinID': 'unwanted'", false},
            {"ID is a number", "'bulletinID': 7", false},
            {"ID is empty", "'bulletinID': ''", false},
            {"enough runs", "'min_app_launch_count': 12.9", true},
            {"too few runs", "'min_app_launch_count': 13", false},
            {"runs beyond all numbers", "'min_app_launch_count': 1e300", false},
            {"runs are no number", "'min_app_launch_count': '13'", true},
            {"for this program", "'bundle_ids': [null, 'com.quorvel.Plexa']", true},
            {"for another program", "'bundle_ids': ['com.quorvel.Brevix']", false},
            {"for no program", "'bundle_ids': []", false},
            {"programs are no list", "'bundle_ids': 'com.quorvel.Brevix'", true},
            {"system of major and minor", "'minOSversion': '10.13'", true},
            {"system of three parts", "'minOSversion': '10.13.6'", true},
            {"later patch", "'minOSversion': '10.13.7'", false},
            {"later minor", "'minOSversion': '10.14'", false},
            {"minor above ten, earlier major", "'minOSversion': '9.99'", true},
            {"one part is no condition", "'minOSversion': '99'", true},
            {"four parts are no condition", "'minOSversion': '99.0.0.0'", true},
            {"letters are no condition", "'minOSversion': '99.x'", true},
            {"starts today", "'from': '2026-11-22'", true},
            {"starts tomorrow", "'from': '2026-11-23'", false},
            {"ends today", "'to': '2026-11-22'", false},
            {"ends tomorrow", "'to': '2026-11-23'", true},
            {"impossible days", "'from': '2027-02-30', 'to': '1.1.2020'", true},
            {"shown less often", "'bulletinID': 'twice', 'times_shown': 3", true},
            {"shown often enough", "'bulletinID': 'twice', 'times_shown': 2.5", false},
            {"negative count is 0", "'bulletinID': 'negative', 'times_shown': 1", true},
            {"times are no number", "'bulletinID': 'twice', 'times_shown': [2]", true},
        });
    }
    void isShown()
    {
        const auto [name, members, isShown] = currentRow<Condition>();
        const QByteArray id = members.contains("bulletinID") ? "" : "'bulletinID': 'b', ";
        const auto chosen = chosenFrom("{'bulletins': [{" + id + members + ", " + kPage + "}]}", audience());
        QVERIFY(chosen);
        QCOMPARE(chosen->has_value(), isShown);
    }

    void choosesPage_data()
    {
        addRows<Pages>({
            {"language after default",
             "[{'location': 'https://a/'}, {'location': 'https://b/', 'language': 'DE'}]", "https://b/"},
            {"default after language",
             "[{'location': 'https://b/', 'language': 'de'}, {'location': 'https://a/'}]", "https://b/"},
            {"last language wins",
             "[{'location': 'https://b/', 'language': 'de'}, {'location': 'https://c/', 'language': 'EN'}]",
             "https://c/"},
            {"first default wins", "[{'location': 'https://a/'}, {'location': 'https://b/'}]", "https://a/"},
            {"other language", "[{'location': 'https://b/', 'language': 'FR'}, {'location': 'http://a/'}]",
             "http://a/"},
            {"language without page", "[{'location': 'https://a/'}, {'language': 'DE'}]", "https://a/"},
            {"local file", "[{'location': 'file:///etc/passwd'}]", ""},
            {"script", "[{'location': 'javascript:x'}]", ""},
            {"no address", "[{'location': 5}, {'location': 'https://'}, 7, null]", ""},
            {"no list", "'https://a/'", ""},
        });
    }
    void choosesPage()
    {
        const auto [name, sources, page] = currentRow<Pages>();
        const auto chosen =
            chosenFrom("{'bulletins': [{'bulletinID': 'b', 'sources': " + sources + "}]}", audience());
        QVERIFY(chosen && *chosen);
        QCOMPARE((*chosen)->page.toString(), page);
    }

    void readsFeed_data()
    {
        const QByteArray nested(2'000'000, '[');
        addRows<Feed>({
            {"lowest priority value",
             "{'bulletins': [{'bulletinID': 'five', 'priority': 5}, {'bulletinID': 'one', 'priority': 1}]}",
             "one"},
            {"same priority",
             "{'bulletins': [{'bulletinID': 'first', 'priority': 1}, {'bulletinID': 'second', 'priority': "
             "1}]}",
             "first"},
            {"no priority comes last",
             "{'bulletins': [{'bulletinID': 'none', 'priority': '0'}, {'bulletinID': 'nine', 'priority': "
             "9}]}",
             "nine"},
            {"best is suppressed",
             "{'bulletins': [{'bulletinID': 'unwanted', 'priority': 1}, {'bulletinID': 'two', 'priority': "
             "2}]}",
             "two"},
            {"elements of wrong types", "{'bulletins': [null, 1, 'x', [], {}, {'bulletinID': 'b'}]}", "b"},
            {"nothing to show", "{'bulletins': []}", ""},
            {"bulletins are no list", "{'bulletins': {}}", "ERROR: No root object in the bulletin JSON"},
            {"root is a list", "[{'bulletinID': 'b'}]", "ERROR: No root object in the bulletin JSON"},
            {"no JSON", "<html>", "Failed to get or parse the JSON bulletin. Parse error: "},
            {"empty", "", "Failed to get or parse the JSON bulletin. Parse error: "},
            {"truncated", "{'bulletins': [{'bulle",
             "Failed to get or parse the JSON bulletin. Parse error: "},
            {"too deep", nested, "Failed to get or parse the JSON bulletin. Parse error: "},
        });
    }
    void readsFeed()
    {
        const auto [name, feed, expected] = currentRow<Feed>();
        const auto chosen = chosenFrom(feed, audience());
        if (!chosen)
            QVERIFY2(!expected.isEmpty() && chosen.error().text.startsWith(expected),
                     qPrintable(chosen.error().text));
        else
            QCOMPARE(*chosen ? (*chosen)->bulletinID : QString(), expected);
    }
};

QTEST_GUILESS_MAIN(BulletinSelectionTest)
#include "bulletinselection_test.moc"
