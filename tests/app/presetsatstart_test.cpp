// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appcontroller.h"
#include "app/workingset.h"
#include "presets/presetsstore.h"

#include <QSignalSpy>

using namespace plexa;
using namespace plexa::test;

class PresetsAtStartTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fromStartToStart();
    void filesFromTheDesktop();
};

void PresetsAtStartTest::fromStartToStart()
{
    WorkingSet work;
    work.defaults.setObject(settings::rememberWPresetsAppliedLastTime, true);
    QString applied;
    {
        PresetsStore store(work.alerts, work.fonts);
        AppController app({work.photos, work.defaults, work.alerts, 2});
        app.readPresets(store);
        QVERIFY(store.wPresets().size() >= 2 && app.appliedPresets().wPresetsApplied().empty());
        QCOMPARE(app.appliedPresets().quickWPreset(), store.quickWPreset());
        applied = store.wPresets().at(1)->name();
        app.appliedPresets().addWPresetsToApplied({store.wPresets().at(1)});
        store.loadWPreset(*store.wPresets().front());
        QCOMPARE(app.appliedPresets().quickWPreset(), store.quickWPreset());
        const QSignalSpy outdated(&app, &AppController::previewOutdated);
        store.quickWPreset()->setFontSize(77);
        QCOMPARE(outdated.size(), 1);
        app.rememberPresets();
    }
    PresetsStore store(work.alerts, work.fonts);
    AppController app({work.photos, work.defaults, work.alerts, 2});
    app.readPresets(store);
    QCOMPARE(app.appliedPresets().quickWPreset()->fontSize(), WholeNumber(77));
    QCOMPARE(app.appliedPresets().wPresetsApplied().size(), std::size_t(1));
    // The very object of the list.
    QCOMPARE(app.appliedPresets().wPresetsApplied().front(), store.wPresets().at(1));
    QCOMPARE(store.wPresets().at(1)->name(), applied);
    QCOMPARE(work.alerts.complaints(), QStringList());
}

void PresetsAtStartTest::filesFromTheDesktop()
{
    WorkingSet work;
    PresetsStore store(work.alerts, work.fonts);
    AppController app({work.photos, work.defaults, work.alerts, 2});
    app.readPresets(store);
    const std::size_t watermarks = store.wPresets().size();
    const std::size_t savings = store.savingPresets().size();
    const QString file = work.folder.path(QStringLiteral("Mine.PXWPR"));
    QVERIFY(QFile::copy(QStringLiteral(":/plexa/presets/example_wpresets.pxwpr"), file));
    work.alerts.expect(QStringLiteral("Presets imported"));
    QVERIFY(app.importPresetsFile(file));
    work.alerts.expect(QStringLiteral("Presets imported"));
    QVERIFY(app.importPresetsFile(QStringLiteral(":/plexa/presets/example_spresets.pxspr")));
    work.alerts.expect(QStringLiteral("Presets import failed"));
    QVERIFY(app.importPresetsFile(work.folder.path(QStringLiteral("missing.pxspr"))));
    QVERIFY(!app.importPresetsFile(work.folder.path(QStringLiteral("photo.jpg"))));

    // They are kept at once: a program that is killed has them, too.
    PresetsStore again(work.alerts, work.fonts);
    again.readAll();
    QCOMPARE(again.wPresets().size(), 2 * watermarks);
    QVERIFY(again.savingPresets().size() > savings);
    QCOMPARE(work.alerts.complaints(), QStringList());
}

QTEST_MAIN(PresetsAtStartTest)
#include "presetsatstart_test.moc"
