// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appcontroller.h"
#include "app/appdelegate.h"
#include "app/workingset.h"

#include <QSignalSpy>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// A delegate with all that it works with.
struct Fixture {
    WorkingSet files;
    AppController controller{{files.photos, files.defaults, files.alerts, files.store, 2}};
    QList<QUrl> openedUrls;
    AppDelegate delegate{
        {files.defaults, files.alerts, controller, [this](const QUrl &url) { openedUrls.append(url); }}};
};

} // namespace

class AppDelegateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsRuns()
    {
        Fixture fixture;
        for (const auto &[stored, expected] :
             {std::pair(QVariant(0), 1), {999'999, 1'000'000}, {1'000'000, 1}, {u"-3"_qs, -2}}) {
            fixture.files.defaults.setObject(settings::runNumber, stored);
            fixture.delegate.applicationDidFinishLaunching();
            // As another process reads it.
            QCOMPARE(UserDefaults(u"Quorvel"_qs, u"Plexa"_qs).integerForKey(settings::runNumber), expected);
        }
    }

    void asksForFeedback()
    {
        Fixture fixture;
        using Row = std::tuple<int, bool, AlertAnswer, bool, bool>;
        for (const auto &[run, asks, answer, opensPage, asksAgain] :
             std::initializer_list<Row>{{7, true, {0, false}, true, true},
                                        {14, true, {1, true}, false, false},
                                        {21, true, {0, true}, true, false},
                                        {8, false, {}, false, true}}) {
            fixture.files.defaults.setObject(settings::runNumber, run);
            fixture.files.defaults.setObject(settings::askForFeedback, {}); // of the row before
            fixture.openedUrls.clear();
            if (asks)
                fixture.files.alerts.expect(u"Your feedback"_qs, answer);
            fixture.delegate.applicationWillTerminate();
            QCOMPARE(fixture.files.alerts.complaints(), QStringList());
            QCOMPARE(fixture.openedUrls.contains(AppDelegate::feedbackPage()), opensPage);
            QCOMPARE(fixture.files.defaults.boolForKey(settings::askForFeedback), asksAgain);
        }
    }

    void opensFiles()
    {
        Fixture fixture;
        QSignalSpy windowWanted(&fixture.delegate, &AppDelegate::windowWanted);
        const QString photo = fixture.files.photo("a.png");
        fixture.delegate.openFiles({photo});
        QTRY_VERIFY(isIdle(fixture.controller.gathering()));
        QCOMPARE(shownNames(fixture.controller.imageSet()), u"a"_qs);

        // Photos that come with an exchange info file are not photos of their own.
        const QString info = fixture.files.folder.path("info.qtxf");
        fixture.delegate.openFiles({info, photo});
        QTRY_VERIFY(isIdle(fixture.controller.gathering()));
        QCOMPARE(shownNames(fixture.controller.imageSet()), u"a"_qs);

        fixture.delegate.openFiles({}); // from a second start without files
        QCOMPARE(windowWanted.count(), 3);
    }
};

QTEST_GUILESS_MAIN(AppDelegateTest)
#include "appdelegate_test.moc"
