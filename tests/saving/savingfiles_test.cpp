// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/savingruns.h"

#include <QColorSpace>
#include <QtTest>

using namespace plexa;
using namespace plexa::test;
using Status = SavingOutput::Status;
using Conflict = SavingOutput::Conflict;

namespace
{

/// Nothing but the pixels, for comparing.
QImage pixels(QImage image)
{
    image.convertTo(QImage::Format_RGB32);
    image.setColorSpace({});
    return image;
}

} // namespace

class SavingFilesTest : public QObject, private SavingRuns
{
    Q_OBJECT

private Q_SLOTS:
    void init() { startAnew(); }
    void failuresOnTheWay();
    void foldersThatTakeNothing_data();
    void foldersThatTakeNothing();
    void overwritingTheOriginals_data();
    void overwritingTheOriginals();
    void overwrittenPhotosAreReadAfterwards();
    void sameNamesFromManyFolders();
    void dryRunWritesNothingAndAgrees();
};

/// Photos that vanish, shrink or become something else after the run has begun.
void SavingFilesTest::failuresOnTheWay()
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
    QCOMPARE(QDir(path(u"out"_qs)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(),
             2);
}

void SavingFilesTest::foldersThatTakeNothing_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("read-only, whoever writes") << u"/proc/self"_qs;
    QTest::newRow("cannot be made") << u"/proc/no such folder"_qs;
    QTest::newRow("vanishes") << QString();
}

void SavingFilesTest::foldersThatTakeNothing()
{
    QFETCH(QString, folder);
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

void SavingFilesTest::overwritingTheOriginals_data()
{
    QTest::addColumn<int>("jobs");
    for (const int jobs : {1, 2, 8})
        QTest::addRow("%d jobs", jobs) << jobs;
}

/// As if one copy was made after another: all copies of a photo are made of what it was when it was begun,
/// and a photo that comes twice is the second time what the first time has left.
void SavingFilesTest::overwritingTheOriginals()
{
    QFETCH(int, jobs);
    const QImage bare = pattern({300, 200});
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
    ImageObject photo(asBefore, m_services);
    const QImage marked = photo.createWatermarkedImage({}, right);
    QVERIFY(marked != bare);
    QCOMPARE(pixels(QImage(once)), pixels(marked));
    const QImage again = photo.createWatermarkedImage(marked, right);
    QCOMPARE(pixels(QImage(twice)), pixels(again));
}

/// Also when it goes by another name, which its copy gets.
void SavingFilesTest::overwrittenPhotosAreReadAfterwards()
{
    const QString photo = this->photo(u"photo.png"_qs, {700, 700});
    const QString alias = path(u"in/alias.tif"_qs);
    QVERIFY(QFile::link(photo, alias));
    const AppliedPreset preset = mark(u"Mark"_qs);
    ImageObject bare(photo, m_services);
    const QImage once = bare.createWatermarkedImage({}, preset);
    const QImage again = bare.createWatermarkedImage(once, preset);
    SavingRun run = runFor({photo, alias}, {preset});
    run.folders.destDirectory.clear();
    run.defaultSavingPreset.filenameTokens = {u"filename"_qs};
    run.conflictCode = OutputNaming::always(OutputNaming::kOverwrite);
    Saving(m_noAlerts).saveImages(run, m_listener);
    QCOMPARE(pixels(QImage(photo)), pixels(once));
    QCOMPARE(pixels(QImage(path(u"in/alias.png"_qs))), pixels(again));
}

void SavingFilesTest::sameNamesFromManyFolders()
{
    QStringList photos;
    for (int i = 0; i < 12; ++i)
        photos.append(photo(u"%1/a.png"_qs.arg(i), {20 + i, i % 2 == 0 ? 900 : 20}));
    QFile broken(photos[3]);
    QVERIFY(broken.open(QIODevice::WriteOnly));
    SavingRun run = runFor(photos, {mark(u"A"_qs)});
    run.defaultSavingPreset.filenameTokens = {u"filename"_qs};
    run.conflictCode = OutputNaming::always(OutputNaming::kUniqueName);
    run.jobs = 6;
    Saving(m_noAlerts).saveImages(run, m_listener);
    for (int i = 0; i < 12; ++i) {
        // The name of a failed copy is not given to another one, so names do not depend on who was quicker.
        QCOMPARE(m_listener.names()[i], i == 0 ? u"a.png"_qs : u"a-%1.png"_qs.arg(i));
        if (i != 3)
            QCOMPARE(QImage(m_listener.outputs[i].path).width(), 20 + i);
    }
    QCOMPARE(copies().size(), 11);
}

void SavingFilesTest::dryRunWritesNothingAndAgrees()
{
    const QStringList photos{photo(u"x/a.png"_qs), photo(u"y/a.png"_qs), path(u"in/missing.png"_qs)};
    SavingRun run = runFor(photos, {mark(u"creator"_qs), mark(u"width"_qs)});
    run.defaultSavingPreset.filenameTokens = {u"filename"_qs, u"-"_qs, u"city"_qs, u"-"_qs, u"width"_qs};
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
    QCOMPARE(plan[0].emptyTokens, (QStringList{u"city"_qs, u"creator"_qs}));
    QCOMPARE(plan[1].emptyTokens, QStringList{u"city"_qs});
    QCOMPARE(plan[4].status, Status::Failed);
}

QTEST_MAIN(SavingFilesTest)
#include "savingfiles_test.moc"
