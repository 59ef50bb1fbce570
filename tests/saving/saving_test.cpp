// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "saving/savingruns.h"
#include "saving/savingsettings.h"
#include "support/datarows.h"

#include <QtTest>

using namespace plexa;
using namespace plexa::test;
using Status = SavingOutput::Status;
using Conflict = SavingOutput::Conflict;

namespace
{

const QString kExists = QStringLiteral("The file exists:\n  ");

/// Lets a test act while a question is open.
class ActingAlerts final : public Alerts
{
public:
    AlertAnswer run(const Alert &alert) override { return act(alert); }

    std::function<AlertAnswer(const Alert &)> act;
};

using Numbers = Row<int, bool, bool, const char *>; // presets, combines, isInSingleMode, names
using Assigned = Row<bool, bool, const char *>;     // areIgnored, combines, names
using Jobs = Row<int>;                              // jobs

} // namespace

class SavingTest : public QObject, private SavingRuns
{
    Q_OBJECT

private Q_SLOTS:
    void init() { startAnew(); }

    void numbersAndNames_data()
    {
        addRows<Numbers>({{"each preset", 2, false, false, "A1.png B2.png A3.png B4.png A5.png B6.png"},
                          {"combined", 2, true, false, "A1.png A2.png A3.png"},
                          {"single mode", 1, true, true, "A1.png A2.png A3.png"}});
    }
    void numbersAndNames()
    {
        const auto [row, presets, combines, isInSingleMode, list] = currentRow<Numbers>();
        QStringList names = words(list);
        std::vector<AppliedPreset> marks{mark(QStringLiteral("A"))};
        if (presets == 2)
            marks.push_back(mark(QStringLiteral("B")));
        SavingRun run = runFor({photo(u"1.png"_qs), photo(u"2.png"_qs), photo(u"3.png"_qs)}, marks);
        run.defaultSavingPreset.filenameTokens = {u"watermark preset name"_qs, u"sequence #"_qs};
        run.combineAllAppliedPresetsInImage = combines;
        run.isInSingleMode = isInSingleMode;

        Saving saving(m_noAlerts);
        saving.saveImages(run, m_listener);
        QVERIFY(saving.isSavingInProgress());
        const Saving::End end = saving.finishedSavingImages();
        QVERIFY(!end.failures && !end.savedImagesInfo);
        QVERIFY(!saving.isSavingInProgress());
        QCOMPARE(m_noAlerts.complaints(), QStringList());
        QCOMPARE(m_listener.names(), names);
        QCOMPARE(m_listener.began, std::pair(qint64(names.size()), u"Saving images..."_qs));
        QCOMPARE(m_listener.messages.last(),
                 u"Saving image %1 out of %1:\n%2"_qs.arg(names.size()).arg(names.last()));
        names.sort();
        QCOMPARE(copies(), names);
        for (const SavingOutput &output : std::as_const(m_listener.outputs)) {
            QCOMPARE(output.status, Status::Written);
            QCOMPARE(output.isCombined, combines && !isInSingleMode);
            QCOMPARE(output.report.rects.size(), output.isCombined ? std::size_t(2) : std::size_t(1));
        }
    }

    void assignedSavingPresets_data()
    {
        addRows<Assigned>({{"followed", false, false, "own.jpg img02.png"},
                           {"ignored", true, false, "img01.png img02.png"},
                           {"combined", false, true, "img01.png"}});
    }
    void assignedSavingPresets()
    {
        const auto [row, areIgnored, combines, names] = currentRow<Assigned>();
        SavingPresetValues own;
        own.imageFormat = u"JPEG"_qs;
        own.filenameTokens = {u"own"_qs};
        SavingRun run =
            runFor({photo(u"1.png"_qs)}, {mark(u"A"_qs, std::make_shared<SavingPreset>(own)), mark(u"B"_qs)});
        run.ignoreAssignedSavingPresets = areIgnored;
        run.combineAllAppliedPresetsInImage = combines;
        Saving(m_noAlerts).saveImages(run, m_listener);
        QCOMPARE(m_listener.names(), words(names));
        for (const SavingOutput &output : std::as_const(m_listener.outputs))
            QCOMPARE(contentsOf(output.path).first(2), output.path.endsWith(u".jpg") ? "\xff\xd8" : "\x89P");
    }

    /// The first photos take longest.
    void resultsComeInOrder()
    {
        QStringList photos;
        for (int i = 0; i < 30; ++i)
            photos.append(photo(u"%1.png"_qs.arg(i), i % 7 == 0 ? QSize(1200, 900) : QSize(20, 20)));
        SavingRun run = runFor(photos, {mark(u"A"_qs), mark(u"B"_qs)});
        run.defaultSavingPreset.filenameTokens = {u"filename"_qs, u"-"_qs, u"width"_qs, u"-"_qs,
                                                  u"sequence ##"_qs};
        run.jobs = 8;
        Saving(m_noAlerts).saveImages(run, m_listener);
        QCOMPARE(m_listener.outputs.size(), 60);
        for (int i = 0; i < 60; ++i) {
            const SavingOutput &output = m_listener.outputs[i];
            QCOMPARE(output.sequenceNumber, i + 1);
            QCOMPARE(m_listener.values[i], i + 1);
            QCOMPARE(output.sourcePath, photos[i / 2]);
            QCOMPARE(QFileInfo(output.path).fileName(), u"%1-%2-%3.png"_qs.arg(i / 2)
                                                            .arg(i / 2 % 7 == 0 ? 1200 : 20)
                                                            .arg(i + 1, 2, 10, QLatin1Char('0')));
            QCOMPARE(output.report.size.width(), i / 2 % 7 == 0 ? 1200 : 20);
        }
    }

    void workGoesOnDuringAQuestion()
    {
        QVERIFY(QDir().mkpath(path(u"out"_qs)));
        QVERIFY(smoothPicture({9, 9}).save(path(u"out/img02.png"_qs)));
        ActingAlerts alerts;
        bool isFirstDone = false;
        alerts.act = [&](const Alert &alert) -> AlertAnswer {
            isFirstDone = alert.title == kExists + u"img02.png"_qs &&
                          QTest::qWaitFor([&] { return QFile::exists(path(u"out/img01.png"_qs)); }, 60'000);
            return {1, false};
        };
        const SavingRun run = runFor({photo(u"1.png"_qs, {900, 900}), photo(u"2.png"_qs)}, {mark(u"A"_qs)});
        Saving(alerts).saveImages(run, m_listener);
        QVERIFY(isFirstDone);
        QCOMPARE(m_listener.outputs[1].conflict, Conflict::Overwrite);
        QCOMPARE(QImage(path(u"out/img02.png"_qs)).size(), QSize(40, 30));
    }

    void answersAreRememberedForOneRun()
    {
        const QStringList photos{photo(u"1.png"_qs), photo(u"2.png"_qs), photo(u"3.png"_qs)};
        const SavingRun run = runFor(photos, {mark(u"A"_qs)});
        ScriptedAlerts alerts;
        Saving saving(alerts);
        saving.saveImages(run, m_listener);
        alerts.expect(kExists + u"img01.png"_qs, {0, false});
        alerts.expect(kExists + u"img02.png"_qs, {2, true});
        saving.saveImages(run, m_listener);
        alerts.expect(kExists + u"img01.png"_qs, {1, true});
        saving.saveImages(run, m_listener);
        QCOMPARE(alerts.complaints(), QStringList());
        QList<Conflict> conflicts;
        for (const SavingOutput &output : std::as_const(m_listener.outputs))
            conflicts.append(output.conflict);
        QCOMPARE(conflicts,
                 (QList{Conflict::None, Conflict::None, Conflict::None, Conflict::UniqueName, Conflict::Skip,
                        Conflict::Skip, Conflict::Overwrite, Conflict::Overwrite, Conflict::Overwrite}));
        QCOMPARE(copies(),
                 (QStringList{u"img01-1.png"_qs, u"img01.png"_qs, u"img02.png"_qs, u"img03.png"_qs}));
        QVERIFY(saving.savingFailedImages().isEmpty());
    }

    void skippedCopiesUseUpTheirNumbers()
    {
        QVERIFY(QDir().mkpath(path(u"out"_qs)));
        QVERIFY(smoothPicture({9, 9}).save(path(u"out/img02.png"_qs)));
        SavingRun run = runFor({photo(u"1.png"_qs), photo(u"2.png"_qs), photo(u"3.png"_qs)}, {mark(u"A"_qs)});
        run.conflictCode = OutputNaming::always(OutputNaming::kSkip);
        Saving saving(m_noAlerts);
        saving.saveImages(run, m_listener);
        QCOMPARE(m_listener.names(), (QStringList{u"img01.png"_qs, QString(), u"img03.png"_qs}));
        QCOMPARE(m_listener.outputs[1].status, Status::Skipped);
        QVERIFY(saving.savingFailedImages().isEmpty());
        QCOMPARE(QImage(path(u"out/img02.png"_qs)).size(), QSize(9, 9));
    }

    void stopping_data() { addRows<Jobs>({{"one at a time", 1}, {"overlapping", 4}}); }
    /// Stopped while the second of forty photos is under way.
    void stopping()
    {
        const int jobs = std::get<1>(currentRow<Jobs>());
        QStringList photos;
        for (int i = 0; i < 40; ++i)
            photos.append(photo(u"%1.png"_qs.arg(i)));
        SavingRun run = runFor(photos, {mark(u"A"_qs), mark(u"B"_qs)});
        run.jobs = jobs;
        Saving saving(m_noAlerts);
        qsizetype finishedBefore = 0;
        m_listener.onCopyBegun = [&](qint64 value) {
            if (value != 3)
                return;
            saving.terminateOperation();
            finishedBefore = m_listener.outputs.size();
        };
        saving.saveImages(run, m_listener);
        QVERIFY(jobs > 1 || finishedBefore == 2);
        // Whatever overlaps, no photo is begun after the stop, and the one under way gets both copies.
        QCOMPARE(m_listener.names(),
                 (QStringList{u"img01.png"_qs, u"img02.png"_qs, u"img03.png"_qs, u"img04.png"_qs}));
        QCOMPARE(m_listener.values, (QList<qint64>{1, 2, 3, 4}));
        QCOMPARE(copies(), m_listener.names());

        saving.finishedSavingImages();
        m_listener = {};
        run.conflictCode = OutputNaming::always(OutputNaming::kOverwrite);
        saving.saveImages(run, m_listener); // the next run does not know of it
        QCOMPARE(m_listener.outputs.size(), 80);
    }

    void manyFailuresAreReported()
    {
        QStringList photos{photo(u"good.png"_qs)};
        QString list;
        for (int i = 1; i <= 14; ++i) {
            photos.append(path(u"in/%1.png"_qs.arg(i)));
            if (i <= 10)
                list += u"\n%1.png"_qs.arg(i);
        }
        Saving saving(m_noAlerts);
        saving.saveImages(runFor(photos, {mark(u"A"_qs)}), m_listener);
        QCOMPARE(copies(), QStringList{u"img01.png"_qs});
        const std::optional<Alert> failures = saving.finishedSavingImages().failures;
        QVERIFY(!saving.finishedSavingImages().failures); // all is forgotten
        QVERIFY(failures && failures->style == Alert::Style::Critical);
        QCOMPARE(failures->title, u"Failed to save 14 image(s)!"_qs);
        QCOMPARE(failures->text,
                 u"Sorry, could not save the following image(s). Possibly the original image format is not "
                 "supported, or missing write permissions on the destination:"_qs +
                     list + u"\n  ...and 4 more..."_qs);
    }

    void companion()
    {
        const QStringList photos{photo(u"1.png"_qs), path(u"in/missing.png"_qs), photo(u"3.png"_qs)};
        SavingRun run = runFor(photos, {mark(u"A"_qs, std::make_shared<SavingPreset>())});
        UserDefaults defaults(u"maker"_qs, u"companion"_qs);
        registerDefaults(defaults);
        const QString exchange = path(u"exchange"_qs);
        run.folders.replicateOrigDirStructure = true; // of a former save
        followSettingsForCompanion(run, defaults, exchange);
        Saving saving(m_noAlerts);
        saving.saveImages(run, m_listener);
        const Saving::End end = saving.finishedSavingImages();
        QCOMPARE(end.failures.value_or(Alert()).title, u"Failed to save 1 image(s)!"_qs);
        QCOMPARE(end.savedImagesInfo, std::optional(QStringList{exchange + u"/img0001.tif"_qs, photos[0],
                                                                exchange + u"/img0003.tif"_qs, photos[2]}));
        QVERIFY(!saving.finishedSavingImages().savedImagesInfo);
        QVERIFY(contentsOf(exchange + u"/img0001.tif"_qs).startsWith("II*"));
    }

    void photosAreReleased()
    {
        const QString file = photo(u"1.png"_qs, {360, 240});
        const auto image = std::make_shared<ImageObject>(file, m_services.all);
        QVERIFY(image->loadImageFromDisk());
        SavingRun run = runFor({file}, {mark(u"A"_qs), mark(u"B"_qs)});
        run.photoAt = [&](std::size_t) -> SavingPhoto { return {file, image, {}}; };
        for (const bool areReleased : {false, true}) {
            run.releasesImages = areReleased;
            run.conflictCode = OutputNaming::always(OutputNaming::kOverwrite);
            m_listener = {};
            Saving(m_noAlerts).saveImages(run, m_listener);
            QCOMPARE(image->isLoaded(), !areReleased);
            QCOMPARE(copies().size(), 2);
            // It was at hand when it was begun, so it could be shown.
            QCOMPARE(m_listener.pictures.size(), 1);
            QCOMPARE(m_listener.pictures[0].size(), QSize(180, 120));
        }
    }

    void settingsAreFollowed()
    {
        UserDefaults defaults(u"maker"_qs, u"settings"_qs);
        registerDefaults(defaults);
        SavingRun run;
        followSettings(run, defaults);
        QCOMPARE(run.folders.destDirectory, defaults.stringForKey(settings::savingDirectory));
        QVERIFY(run.copyRules.preservesCreationDate && !run.releasesImages &&
                !run.ignoreAssignedSavingPresets);
        defaults.setObject(settings::saveAllToOneDirectory, false);
        defaults.setObject(settings::ignoreSavingPresetsInWPresets, true); // nothing reads it
        defaults.setObject(settings::imageListIsInBrowserMode, false);
        followSettings(run, defaults);
        QVERIFY(run.folders.destDirectory.isEmpty());
        QVERIFY(run.releasesImages && !run.ignoreAssignedSavingPresets);
        defaults.setObject(settings::ignoreSavingPresetsInSizePresets, true);
        followSettings(run, defaults);
        QVERIFY(run.ignoreAssignedSavingPresets);

        const QStringList tokens = run.defaultSavingPreset.filenameTokens;
        completeFilenameTokens(run.defaultSavingPreset, m_noAlerts);
        QCOMPARE(run.defaultSavingPreset.filenameTokens, tokens);
        run.defaultSavingPreset.filenameTokens.clear();
        ScriptedAlerts alerts;
        alerts.expect(u"Missing the filename specification!"_qs);
        completeFilenameTokens(run.defaultSavingPreset, alerts);
        QCOMPARE(run.defaultSavingPreset.filenameTokens, QStringList{u"filename"_qs});
        QCOMPARE(alerts.shown().first().text, u"Will use the original filename."_qs);
        QCOMPARE(alerts.complaints() + m_noAlerts.complaints(), QStringList());
    }
};

QTEST_MAIN(SavingTest)
#include "saving_test.moc"
