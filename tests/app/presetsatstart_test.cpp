// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appcontroller.h"
#include "app/workingset.h"
#include "presets/presetsstore.h"
#include "support/keyedarchives.h"

#include <QSignalSpy>

#include <sys/resource.h>
#include <unistd.h>

using namespace plexa;
using namespace plexa::test;

using Kind = PresetsStore::Kind;

class PresetsAtStartTest : public QObject
{
    Q_OBJECT

private:
    static void import(AppController &app, const QStringList &paths)
    {
        QCOMPARE(app.presetCommands().importPresetsFiles(paths), QStringList());
        QTRY_VERIFY(!app.presetCommands().isImporting());
    }

private Q_SLOTS:
    void fromStartToStart()
    {
        WorkingSet work;
        work.defaults.setObject(settings::rememberWPresetsAppliedLastTime, true);
        QString applied;
        {
            PresetsStore store(work.alerts, work.fonts);
            AppController app({work.photos, work.defaults, work.alerts, store, 2});
            app.readPresets();
            QVERIFY(store.wPresets().size() >= 2 && app.appliedPresets().wPresetsApplied().empty());
            QCOMPARE(app.appliedPresets().quickWPreset(), store.quickWPreset());
            applied = store.wPresets().at(1)->name();
            app.appliedPresets().addWPresetsToApplied({store.wPresets().at(1)});
            store.loadWPreset(*store.wPresets().front());
            QCOMPARE(app.appliedPresets().quickWPreset(), store.quickWPreset());
            const QSignalSpy outdated(&app, &AppController::previewOutdated);
            store.quickWPreset()->setFontSize(77);
            QCOMPARE(outdated.size(), 1);
            store.wPresets().front()->setName(u"Edited"_qs);
            app.rememberPresets();
        }
        PresetsStore store(work.alerts, work.fonts);
        AppController app({work.photos, work.defaults, work.alerts, store, 2});
        app.readPresets();
        QCOMPARE(app.appliedPresets().quickWPreset()->fontSize(), WholeNumber(77));
        QCOMPARE(app.appliedPresets().wPresetsApplied().size(), std::size_t(1));
        // The very object of the list.
        QCOMPARE(app.appliedPresets().wPresetsApplied().front(), store.wPresets().at(1));
        QCOMPARE(app.appliedPresets().selectedRows(), IndexList({0})); // the preview shows it
        QCOMPARE(store.wPresets().at(1)->name(), applied);
        QCOMPARE(store.wPresets().front()->name(), u"Edited"_qs);
        // A deleted preset is no longer applied.
        app.appliedPresets().addWPresetsToApplied({store.wPresets().at(0)});
        store.wPresetList().remove({1});
        QCOMPARE(app.appliedPresets().wPresetsApplied(), WPresetList{store.wPresets().at(0)});
        QCOMPARE(work.alerts.complaints(), QStringList());
    }

    void filesFromTheDesktop()
    {
        WorkingSet work;
        PresetsStore &store = work.store;
        AppController app({work.photos, work.defaults, work.alerts, store, 2});
        app.readPresets();
        const std::size_t watermarks = store.wPresets().size();
        const std::size_t savings = store.savingPresets().size();
        const QString file = work.folder.path("Mine.PXWPR");
        QVERIFY(QFile::copy(u":/plexa/presets/example_wpresets.pxwpr"_qs, file));
        const QString photo = work.folder.path("photo.jpg");
        const QStringList files{file, photo, u":/plexa/presets/example_spresets.pxspr"_qs,
                                work.folder.path("missing.pxspr")};
        QList<int> inserted;
        connect(&store.wPresetList(), &PresetListSignals::inserted, this, [&](int first, int last) {
            inserted += {first, last};
        });
        for (const auto &title :
             {u"Presets imported"_qs, u"Presets imported"_qs, u"Presets import failed"_qs})
            work.alerts.expect(title);
        QCOMPARE(app.presetCommands().importPresetsFiles(files), QStringList(photo));
        // Nothing happens before this thread is free.
        StatusManager &status = app.statusManager();
        QVERIFY(status.setProgress(0, StatusOperation::ImportingPresets));
        QCOMPARE(store.wPresets().size(), watermarks);
        QTRY_VERIFY(!app.presetCommands().isImporting());
        QVERIFY(!status.setProgress(0, StatusOperation::ImportingPresets));
        // The presets of a file are added together, and belong to this thread.
        const int count = static_cast<int>(watermarks);
        QCOMPARE(inserted, QList<int>({count, 2 * count - 1}));
        QCOMPARE(store.wPresets().back()->thread(), thread());

        // A stopped import adds nothing, whatever has been read.
        app.presetCommands().importPresetsFiles({file, file});
        app.stopAllOperations();
        QTRY_VERIFY(!app.presetCommands().isImporting());
        QCOMPARE(store.wPresets().size(), 2 * watermarks);

        // They are saved at once, so that a killed program does not lose them.
        PresetsStore again(work.alerts, work.fonts);
        again.readAll();
        QCOMPARE(again.wPresets().size(), 2 * watermarks);
        QVERIFY(again.savingPresets().size() > savings);
        QCOMPARE(work.alerts.complaints(), QStringList());
    }

    void fileWithoutMemory()
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        QSKIP("the sanitizers end a program that lacks memory");
#endif
        WorkingSet work;
        AppController app({work.photos, work.defaults, work.alerts, work.store, 2});
        app.readPresets();
        const QString path = work.folder.path("large.pxwpr");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(400'000'000));
        rlimit before = {};
        QCOMPARE(getrlimit(RLIMIT_AS, &before), 0);
        const qint64 mapped = contentsOf(u"/proc/self/statm"_qs).split(' ').first().toLongLong();
        const rlimit limit = {rlim_t(mapped * getpagesize() + 200'000'000), before.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_AS, &limit), 0);
        work.alerts.expect(u"Presets import failed"_qs);
        import(app, {path});
        QCOMPARE(setrlimit(RLIMIT_AS, &before), 0);
        QCOMPARE(work.alerts.shown().last().text, u"There is not enough memory for \"large.pxwpr\"."_qs);
        QCOMPARE(work.alerts.complaints(), QStringList());
    }

    /// The message of an import states what was read and what was not.
    void filesWithLosses()
    {
        WorkingSet work;
        PresetsStore &store = work.store;
        AppController app({work.photos, work.defaults, work.alerts, store, 2});
        app.readPresets();
        QVERIFY(writeKeyedArchives(work.folder.path()));
        const QByteArray good = contentsOf(u":/plexa/presets/example_spresets.pxspr"_qs);
        const auto reportOf = [&](const QString &title, const char *name, const QByteArray &contents = {}) {
            const QString path = work.folder.path(QString::fromLatin1(name));
            if (!contents.isEmpty())
                writeFile(path, contents);
            work.alerts.expect(title);
            import(app, {path});
            return work.alerts.shown().last().text;
        };
        const QString imported = u"Presets imported"_qs;
        const QString some = reportOf(imported, "some.pxwpr");
        QVERIFY2(some.contains(u"some.pxwpr") && some.contains(u"number 4 "), qPrintable(some));
        const QByteArray token = "<token>filename</token>";
        const QString entity =
            reportOf(imported, "entity.pxspr", QByteArray(good).replace(token, "<token>&copy;</token>"));
        QVERIFY2(entity.contains(u"6 presets") && entity.contains(u"unknown entity reference: \"&copy;\"") &&
                     entity.contains(u"and 2 more"),
                 qPrintable(entity));

        // No success is reported where nothing can be written.
        for (const Kind kind : {Kind::Saving, Kind::Watermark}) {
            const QString list = store.presetsFileNameForWatermark(kind, PresetsStore::Slot::List);
            QVERIFY(QFile::remove(list) && QDir().mkpath(list + u"/in the way"_qs));
        }
        const QString cannotSave = u"Cannot save the presets"_qs;
        QVERIFY(reportOf(cannotSave, "good.pxspr", good).contains(u"SPresets.pxspr"));
        reportOf(cannotSave, "some.pxwpr");
        work.alerts.expect(cannotSave);
        app.presetCommands().saveQuickAsWPreset();
        QCOMPARE(work.alerts.complaints(), QStringList());
    }
};

QTEST_MAIN(PresetsAtStartTest)
#include "presetsatstart_test.moc"
