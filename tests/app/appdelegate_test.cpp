// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appcontroller.h"
#include "app/appdelegate.h"
#include "app/workingset.h"

#include <QSignalSpy>

Q_DECLARE_METATYPE(plexa::AlertAnswer)

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
    void countsRuns_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<qint64>("expected");
        QTest::newRow("the first") << QVariant() << qint64(1);
        QTest::newRow("the last that is counted") << QVariant(999'999) << qint64(1'000'000);
        QTest::newRow("round again") << QVariant(1'000'000) << qint64(1);
        QTest::newRow("edited by hand") << QVariant(QStringLiteral("-3")) << qint64(-2);
    }

    void countsRuns()
    {
        Fixture fixture;
        QFETCH(const QVariant, stored);
        if (stored.isValid())
            fixture.files.defaults.setObject(settings::runNumber, stored);
        fixture.delegate.applicationDidFinishLaunching();
        // As another process reads it.
        const UserDefaults other(QStringLiteral("Quorvel"), QStringLiteral("Plexa"));
        QTEST(other.integerForKey(settings::runNumber), "expected");
    }

    void asksForFeedback_data()
    {
        QTest::addColumn<int>("run");
        QTest::addColumn<bool>("asks");
        QTest::addColumn<AlertAnswer>("answer");
        QTest::addColumn<bool>("opensPage");
        QTest::addColumn<bool>("asksAgain");
        QTest::newRow("seventh run, yes") << 7 << true << AlertAnswer{0, false} << true << true;
        QTest::newRow("no, and never again") << 14 << true << AlertAnswer{1, true} << false << false;
        QTest::newRow("yes, and never again") << 21 << true << AlertAnswer{0, true} << true << false;
        QTest::newRow("any other run") << 8 << false << AlertAnswer{} << false << true;
    }

    void asksForFeedback()
    {
        Fixture fixture;
        QFETCH(const int, run);
        QFETCH(const bool, asks);
        QFETCH(const AlertAnswer, answer);
        fixture.files.defaults.setObject(settings::runNumber, run);
        fixture.files.defaults.removeObjectForKey(settings::askForFeedback); // of the row before
        if (asks)
            fixture.files.alerts.expect(QStringLiteral("Your feedback"), answer);
        fixture.delegate.applicationWillTerminate();
        QCOMPARE(fixture.files.alerts.complaints(), QStringList());
        QTEST(fixture.openedUrls.contains(AppDelegate::feedbackPage()), "opensPage");
        QTEST(fixture.files.defaults.boolForKey(settings::askForFeedback), "asksAgain");
    }

    void opensFiles()
    {
        Fixture fixture;
        QSignalSpy windowWanted(&fixture.delegate, &AppDelegate::windowWanted);
        const QString photo = fixture.files.photo(QStringLiteral("a.png"));
        fixture.delegate.openFiles({photo});
        QTRY_VERIFY(isIdle(fixture.controller.gathering()));
        QCOMPARE(shownNames(fixture.controller.imageSet()), QStringLiteral("a"));

        // Photos that come with an exchange info file are not photos of their own.
        const QString info = fixture.files.folder.path(QStringLiteral("info.qtxf"));
        fixture.delegate.openFiles({info, photo});
        QTRY_VERIFY(isIdle(fixture.controller.gathering()));
        QCOMPARE(shownNames(fixture.controller.imageSet()), QStringLiteral("a"));

        fixture.delegate.openFiles({}); // from a second start without files
        QCOMPARE(windowWanted.count(), 3);
    }

    void remembersAppliedPresets()
    {
        Fixture fixture;
        const auto preset = std::make_shared<WPreset>(WPresetValues{});
        preset->setName(QStringLiteral("Logo"));
        fixture.controller.appliedPresets().addWPresetsToApplied({preset});
        UserDefaults &defaults = fixture.files.defaults;
        defaults.setObject(settings::wPresetsAppliedLastTime, QStringList{QStringLiteral("Old")});
        fixture.delegate.windowWillClose(); // the user does not want it
        QCOMPARE(defaults.stringArrayForKey(settings::wPresetsAppliedLastTime),
                 QStringList{QStringLiteral("Old")});
        defaults.setObject(settings::rememberWPresetsAppliedLastTime, true);
        fixture.delegate.windowWillClose();
        QCOMPARE(defaults.stringArrayForKey(settings::wPresetsAppliedLastTime),
                 QStringList{QStringLiteral("Logo")});
    }
};

QTEST_GUILESS_MAIN(AppDelegateTest)
#include "appdelegate_test.moc"
