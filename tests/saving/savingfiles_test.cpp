// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/savingruns.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/testpictures.h"

#include <QColorSpace>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

#include <thread>

using namespace plexa;
using namespace plexa::test;
using Status = SavingOutput::Status;
using Conflict = SavingOutput::Conflict;

namespace
{

using NoFolder = Row<Text>; // folder
using Jobs = Row<int>;      // jobs
// choice: kNoChoice: the user is asked
using FailedFirst = Row<OutputNaming::Choice, QList<Conflict>>; // choice, conflicts

struct Choice {
    Text name;
    OutputNaming::Choice choice;
};

} // namespace

class SavingFilesTest : public QObject, private SavingRuns
{
    Q_OBJECT

private Q_SLOTS:
    void init() { startAnew(); }

    /// Photos that vanish, shrink or become something else after the run has begun.
    void failuresOnTheWay()
    {
        const QStringList photos{photo(u"1.png"_qs), photo(u"2.png"_qs), photo(u"3.png"_qs, {600, 600}),
                                 photo(u"4.png"_qs), photo(u"5.png"_qs)};
        SavingRun run = runFor(photos, {mark(u"A"_qs)});
        run.jobs = 1;
        m_listener.onCopyBegun = [&](qint64 value) {
            if (value != 1)
                return;
            QVERIFY(QFile::remove(photos[1]));
            QVERIFY(QFile::resize(photos[2], QFileInfo(photos[2]).size() / 2));
            QVERIFY(QFile::remove(photos[3]) && QDir().mkdir(photos[3]));
        };
        Saving saving(m_noAlerts);
        saving.saveImages(run, m_listener);
        QCOMPARE(copies(), (QStringList{u"img01.png"_qs, u"img05.png"_qs}));
        QCOMPARE(saving.savingFailedImages(), (QStringList{u"2.png"_qs, u"3.png"_qs, u"4.png"_qs}));
        for (const SavingOutput &output : std::as_const(m_listener.outputs))
            QCOMPARE(output.error.isEmpty(), output.status == Status::Written);
        // Nothing half-written, and nothing hidden.
        QCOMPARE(
            QDir(path(u"out"_qs)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(),
            2);
    }

    void foldersThatTakeNothing_data()
    {
        addRows<NoFolder>({{"read-only, also for the superuser", "/proc/self"},
                           {"cannot be created", "/proc/no such folder"},
                           {"vanishes", {}}});
    }
    void foldersThatTakeNothing()
    {
        const QString folder = std::get<1>(currentRow<NoFolder>());
        SavingRun run = runFor({photo(u"1.png"_qs), photo(u"2.png"_qs)}, {mark(u"A"_qs)});
        if (!folder.isEmpty())
            run.folders.destDirectory = folder;
        m_listener.onCopyBegun = [&](qint64 value) {
            if (value == 1 && folder.isEmpty())
                QVERIFY(QDir().rmdir(path(u"out"_qs)));
        };
        Saving saving(m_noAlerts);
        saving.saveImages(run, m_listener);
        QCOMPARE(saving.savingFailedImages(), (QStringList{u"1.png"_qs, u"2.png"_qs}));
        QVERIFY(m_listener.outputs[0].error.contains(u"img01.png"));
    }

    void overwritingTheOriginals_data() { addRows<Jobs>({{"1 job", 1}, {"2 jobs", 2}, {"8 jobs", 8}}); }
    /// As if one copy was made after another: all copies of a photo are made of what it was when it was
    /// begun, and a photo that comes twice is the second time what the first time has left.
    void overwritingTheOriginals()
    {
        const int jobs = std::get<1>(currentRow<Jobs>());
        const QImage bare = smoothPicture({300, 200});
        const QString once = photo(u"once.png"_qs, bare.size());
        const QString twice = photo(u"twice.png"_qs, bare.size());
        AppliedPreset left = mark(u"Left"_qs);
        AppliedPreset right = mark(u"Right"_qs);
        left.values.anchorPoint = 0;
        right.values.anchorPoint = 8;
        SavingRun run = runFor({once, twice, twice}, {left, right});
        run.folders.destDirectory.clear();
        run.defaultSavingPreset.filenameTokens = {u"filename"_qs};
        run.conflictCode = OutputNaming::always(OutputNaming::kOverwrite);
        run.jobs = jobs;
        Saving saving(m_noAlerts);
        saving.saveImages(run, m_listener);
        QCOMPARE(m_listener.outputs.size(), 6);
        QVERIFY(saving.savingFailedImages().isEmpty());

        const QString asBefore = photo(u"bare.png"_qs, bare.size());
        const auto bareAgain = ImageObject(asBefore, m_services.all).readReduced(300);
        const QImage marked = bareAgain->drawn(bareAgain->pixels, right, m_services.fonts).value();
        QVERIFY(marked != bare);
        QCOMPARE(pixelsOf(QImage(once)), pixelsOf(marked));
        const QImage again = bareAgain->drawn(marked, right, m_services.fonts).value();
        QCOMPARE(pixelsOf(QImage(twice)), pixelsOf(again));
    }

    /// Also when it goes by another name, which its copy gets.
    void overwrittenPhotosAreReadAfterwards()
    {
        const QString photo = this->photo(u"photo.png"_qs, {700, 700});
        const QString alias = path(u"in/alias.tif"_qs);
        QVERIFY(QFile::link(photo, alias));
        const AppliedPreset preset = mark(u"Mark"_qs);
        const auto bare = ImageObject(photo, m_services.all).readReduced(700);
        const QImage once = bare->drawn(bare->pixels, preset, m_services.fonts).value();
        const QImage again = bare->drawn(once, preset, m_services.fonts).value();
        SavingRun run = runFor({photo, alias}, {preset});
        run.folders.destDirectory.clear();
        run.defaultSavingPreset.filenameTokens = {u"filename"_qs};
        run.conflictCode = OutputNaming::always(OutputNaming::kOverwrite);
        Saving(m_noAlerts).saveImages(run, m_listener);
        QCOMPARE(pixelsOf(QImage(photo)), pixelsOf(once));
        QCOMPARE(pixelsOf(QImage(path(u"in/alias.png"_qs))), pixelsOf(again));
    }

    void overwrittenFilesKeepTheirOwner()
    {
        QVERIFY(writeFile(path(u"out/img01.png"_qs), "old"));
        const QByteArray target = QFile::encodeName(path(u"out/img01.png"_qs));
        if (chown(target.constData(), 12345, 23456) != 0)
            QSKIP("this user may not give files to others");
        SavingRun run = runFor({photo(u"1.png"_qs)}, {mark(u"A"_qs)});
        run.conflictCode = OutputNaming::always(OutputNaming::kOverwrite);
        Saving(m_noAlerts).saveImages(run, m_listener);
        QCOMPARE(m_listener.outputs.first().status, Status::Written);
        struct stat info {
        };
        QCOMPARE(stat(target.constData(), &info), 0);
        QVERIFY(info.st_size > 3);
        QCOMPARE(info.st_uid, uid_t(12345));
        QCOMPARE(info.st_gid, gid_t(23456));
    }

    void aFailedCopyHasNoName_data()
    {
        using enum SavingOutput::Conflict;
        addRows<FailedFirst>({{"unique",
                               OutputNaming::kUniqueName,
                               {None, UniqueName, UniqueName}}, // does not wait for the first one
                              {"overwrite", OutputNaming::kOverwrite, {None, None, Overwrite}},
                              {"skip", OutputNaming::kSkip, {None, None, Skip}},
                              {"asked", OutputNaming::kNoChoice, {None, None, Skip}}});
    }
    /// Three photos of one name, the first of which cannot be read: only the third finds a file.
    void aFailedCopyHasNoName()
    {
        const auto [row, choice, conflicts] = currentRow<FailedFirst>();
        for (const int jobs : {1, 4}) {
            startAnew();
            const QStringList photos{photo(u"1/a.png"_qs, {1500, 1500}), photo(u"2/a.png"_qs, {900, 900}),
                                     photo(u"3/a.png"_qs)};
            QVERIFY(QFile::resize(photos[0], QFileInfo(photos[0]).size() - 100)); // seen at the end only
            SavingRun run = runFor(photos, {mark(u"A"_qs)});
            run.defaultSavingPreset.filenameTokens = {u"filename"_qs};
            run.jobs = jobs;
            ScriptedAlerts alerts;
            if (choice == OutputNaming::kNoChoice)
                alerts.expect(u"The file exists:\n  a.png"_qs, {2, false});
            else
                run.conflictCode = OutputNaming::always(choice);
            Saving(alerts).saveImages(run, m_listener);
            QCOMPARE(alerts.complaints(), QStringList());
            QList<Conflict> found;
            for (const SavingOutput &output : std::as_const(m_listener.outputs))
                found.append(output.conflict);
            QCOMPARE(found, conflicts);
            QCOMPARE(m_listener.outputs[0].status, Status::Failed);
            const QString second = choice == OutputNaming::kUniqueName ? u"out/a-1.png"_qs : u"out/a.png"_qs;
            QCOMPARE(QImage(path(second)).width(), choice == OutputNaming::kOverwrite ? 40 : 900);
        }
    }

    /// Only files from before the run are overwritten or skipped: not the copy of another photo, and not a
    /// photo whose turn comes later.
    void filesOfTheRunStay()
    {
        using enum SavingOutput::Conflict;
        for (const bool overwrites : {true, false}) {
            startAnew();
            const QStringList photos{photo(u"1/a.png"_qs, {41, 30}), photo(u"2/a.png"_qs, {42, 30}),
                                     photo(u"3/b.bmp"_qs, {43, 30}), photo(u"3/b.png"_qs, {44, 30})};
            SavingRun run = runFor(photos, {mark(u"A"_qs)});
            run.defaultSavingPreset.filenameTokens = {u"filename"_qs};
            run.conflictCode =
                OutputNaming::always(overwrites ? OutputNaming::kOverwrite : OutputNaming::kSkip);
            run.conflictScope = OutputNaming::Scope::FilesFromBefore;
            run.keptPhotos = photos;
            run.folders.destDirectory = path(u"in/3"_qs);
            QVERIFY(smoothPicture({9, 9}).save(path(u"in/3/a-1.png"_qs)));
            const auto conflictsOfRun = [&](bool isDryRun) {
                run.isDryRun = isDryRun;
                m_listener = {};
                Saving(m_noAlerts).saveImages(run, m_listener);
                QList<Conflict> conflicts;
                for (const SavingOutput &output : std::as_const(m_listener.outputs))
                    conflicts.append(output.conflict);
                return conflicts;
            };
            const QList<Conflict> expected{None, UniqueNameInRun, UniqueNameInRun,
                                           overwrites ? Overwrite : Skip};
            QCOMPARE(conflictsOfRun(true), expected);
            QCOMPARE(conflictsOfRun(false), expected);
            for (const auto &[name, width] :
                 {std::pair("a.png", 41), {"a-1.png", 9}, {"a-2.png", 42}, {"b-1.png", 43}, {"b.png", 44}})
                QCOMPARE(QImage(path(u"in/3/"_qs + QLatin1String(name))).width(), width);
        }
    }

    /// Replaced, unless it leads to the photo itself.
    void linksInTheOutputFolder()
    {
        const QStringList photos{photo(u"1.png"_qs), photo(u"2.png"_qs)};
        QVERIFY(writeFile(path(u"elsewhere.png"_qs), "precious") && QDir().mkpath(path(u"out"_qs)));
        QVERIFY(QFile::link(path(u"elsewhere.png"_qs), path(u"out/1.png"_qs)));
        QVERIFY(QFile::link(photos[1], path(u"out/2.png"_qs)));
        const QByteArray before = contentsOf(photos[1]);
        SavingRun run = runFor(photos, {mark(u"A"_qs)});
        run.defaultSavingPreset.filenameTokens = {u"filename"_qs};
        run.conflictCode = OutputNaming::always(OutputNaming::kOverwrite);
        Saving(m_noAlerts).saveImages(run, m_listener);
        QCOMPARE(contentsOf(path(u"elsewhere.png"_qs)), "precious");
        QVERIFY(!QFileInfo(path(u"out/1.png"_qs)).isSymLink() && !QImage(path(u"out/1.png"_qs)).isNull());
        QVERIFY(QFileInfo(path(u"out/2.png"_qs)).isSymLink() && contentsOf(photos[1]) != before);
    }

    void manyRunsIntoOneFolder_data()
    {
        addRows<Choice>({{"unique", OutputNaming::kUniqueName},
                         {"overwrite", OutputNaming::kOverwrite},
                         {"skip", OutputNaming::kSkip}});
    }
    /// Runs that know nothing of each other do what was chosen, and report it.
    void manyRunsIntoOneFolder()
    {
        const OutputNaming::Choice choice = currentRow<Choice>().choice;
        QStringList photos;
        for (int i = 0; i < 10; ++i)
            photos.append(photo(u"%1.png"_qs.arg(i), {40 + i, 200}));
        std::vector<Listener> listeners(4);
        std::vector<std::jthread> threads;
        for (Listener &listener : listeners) {
            SavingRun run = runFor(photos, {mark(u"A"_qs)});
            run.conflictCode = OutputNaming::always(choice);
            threads.emplace_back([run, &listener, this] { Saving(m_noAlerts).saveImages(run, listener); });
        }
        threads.clear();
        QStringList names;
        for (const Listener &listener : listeners) {
            QCOMPARE(listener.outputs.size(), photos.size());
            for (qsizetype i = 0; i < photos.size(); ++i) {
                const SavingOutput &output = listener.outputs[i];
                const bool isSkipped = choice == OutputNaming::kSkip && output.status == Status::Skipped;
                QVERIFY2(isSkipped || output.status == Status::Written, qPrintable(output.error));
                QCOMPARE(QImage(output.path).width(), isSkipped ? 0 : 40 + i);
                if (choice == OutputNaming::kUniqueName)
                    QCOMPARE(output.conflict != Conflict::None, output.path.contains(u'-'));
            }
            names += listener.names();
        }
        names.removeAll(QString());
        names.sort();
        if (choice == OutputNaming::kOverwrite)
            names.removeDuplicates();
        QCOMPARE(copies(), names);
    }

    void dryRunWritesNothingAndAgrees()
    {
        const QStringList photos{photo(u"x/a.png"_qs), photo(u"y/a.png"_qs), path(u"in/missing.png"_qs)};
        SavingRun run = runFor(photos, {mark(u"creator"_qs), mark(u"width"_qs)});
        run.defaultSavingPreset.name.clear();
        run.defaultSavingPreset.filenameTokens = {
            u"filename"_qs, u"saving preset name"_qs, u"-"_qs, u"city"_qs, u"-"_qs, u"width"_qs};
        run.folders.replicateOrigDirStructure = true;
        run.folders.replicationStartDirectory = path(u"in"_qs);
        run.conflictCode = OutputNaming::always(OutputNaming::kUniqueName);
        run.isDryRun = true;
        Saving(m_noAlerts).saveImages(run, m_listener);
        QVERIFY(!QFile::exists(path(u"out"_qs)));
        const QList<SavingOutput> plan = std::exchange(m_listener.outputs, {});
        run.isDryRun = false;
        Saving(m_noAlerts).saveImages(run, m_listener);
        QCOMPARE(plan.size(), m_listener.outputs.size());
        for (int i = 0; i < plan.size(); ++i) {
            const SavingOutput &done = m_listener.outputs[i];
            QCOMPARE(plan[i].path, done.path);
            QCOMPARE(plan[i].sequenceNumber, done.sequenceNumber);
            QCOMPARE(plan[i].conflict, done.conflict);
            QCOMPARE(plan[i].status, done.status == Status::Written ? Status::Planned : done.status);
            QCOMPARE(QFile::exists(done.path), done.status == Status::Written);
        }
        QCOMPARE(plan[0].path, path(u"out/x/a--40.png"_qs));
        QCOMPARE(plan[1].conflict, Conflict::UniqueName);
        QCOMPARE(plan[0].emptyTokens, (QStringList{u"saving preset name"_qs, u"city"_qs, u"creator"_qs}));
        QCOMPARE(plan[1].emptyTokens, (QStringList{u"saving preset name"_qs, u"city"_qs}));
        QCOMPARE(plan[4].status, Status::Failed);
    }
};

QTEST_MAIN(SavingFilesTest)
#include "savingfiles_test.moc"
