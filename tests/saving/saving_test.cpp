// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "presets/savingpreset.h"
#include "saving/saving.h"
#include "saving/savingsettings.h"
#include "support/scriptedalerts.h"
#include "support/testenvironment.h"

#include <QColorSpace>
#include <QtTest>

#include <functional>

using namespace plexa;
using namespace plexa::test;
using Status = SavingOutput::Status;
using Conflict = SavingOutput::Conflict;

namespace
{

const QString kExists = QStringLiteral("The file exists:\n  ");

QImage pattern(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x * 3 % 256, y * 5 % 256, (x ^ y) % 256));
    }
    return image;
}

/// Nothing but the pixels, for comparing.
QImage pixels(QImage image)
{
    image.convertTo(QImage::Format_RGB32);
    image.setColorSpace({});
    return image;
}

/// Keeps all that it hears.
class Listener final : public SavingObserver
{
public:
    void begun(qint64 maximum, const QString &message) override { began = {maximum, message}; }
    void pictureBegun(const QImage &picture) override { pictures.append(picture); }
    void copyBegun(qint64 value, const QString &message) override
    {
        values.append(value);
        messages.append(message);
        if (onCopyBegun)
            onCopyBegun(value);
    }
    void copyFinished(const SavingOutput &output) override { outputs.append(output); }

    QStringList names() const
    {
        QStringList names;
        for (const SavingOutput &output : outputs)
            names.append(QFileInfo(output.path).fileName());
        return names;
    }

    std::pair<qint64, QString> began;
    QList<QImage> pictures;
    QList<qint64> values;
    QStringList messages;
    QList<SavingOutput> outputs;
    std::function<void(qint64)> onCopyBegun;
};

/// Lets a test act while a question is open.
class ActingAlerts final : public Alerts
{
public:
    AlertAnswer run(const Alert &alert) override { return act(alert); }

    std::function<AlertAnswer(const Alert &)> act;
};

} // namespace

class SavingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void numbersAndNames_data();
    void numbersAndNames();
    void assignedSavingPresets_data();
    void assignedSavingPresets();
    void resultsComeInOrder();
    void workGoesOnDuringAQuestion();
    void answersAreRememberedForOneRun();
    void skippedCopiesUseUpTheirNumbers();
    void stopping_data();
    void stopping();
    void manyFailuresAreReported();
    void failuresOnTheWay();
    void foldersThatTakeNothing_data();
    void foldersThatTakeNothing();
    void overwritingTheOriginals_data();
    void overwritingTheOriginals();
    void overwrittenPhotosAreReadAfterwards();
    void sameNamesFromManyFolders();
    void dryRunWritesNothingAndAgrees();
    void companion();
    void photosAreReleased_data();
    void photosAreReleased();
    void settingsAreFollowed();

private:
    QString path(const QString &name) const { return m_folder->path(name); }
    QString photo(const QString &name, QSize size = {40, 30});
    AppliedPreset mark(const QString &name, SavingPresetPtr assigned = {});
    SavingRun runFor(const QStringList &photos, const std::vector<AppliedPreset> &presets);
    QStringList copies() const
    {
        return QDir(path(QStringLiteral("out"))).entryList(QDir::Files, QDir::Name);
    }

    FontCatalog m_fonts;
    LocaleFormat m_locale{QStringLiteral("en_US")};
    PixelCache m_cache{64 * 1024 * 1024};
    ByteBudget m_budget{1'000'000'000};
    PhotoServices m_services{m_fonts, m_locale, m_cache, m_budget, {}};
    std::unique_ptr<TestFolder> m_folder;
    Listener m_listener;
    ScriptedAlerts m_noAlerts;
};

void SavingTest::init()
{
    m_folder = std::make_unique<TestFolder>();
    m_listener = {};
}

/// Makes a photo below "in". @return its path
QString SavingTest::photo(const QString &name, QSize size)
{
    const QString file = path(QStringLiteral("in/") + name);
    if (!QDir().mkpath(QFileInfo(file).path()) || !pattern(size).save(file))
        qFatal("no photo can be made");
    return file;
}

AppliedPreset SavingTest::mark(const QString &name, SavingPresetPtr assigned)
{
    WPresetValues values = WPresetValues::forNewPreset(m_fonts);
    values.name = name;
    values.textTokens = {name};
    values.assignedSavingPreset = std::move(assigned);
    return {std::make_shared<WPreset>(values), values};
}

/// Into "out", as PNG, named by number.
SavingRun SavingTest::runFor(const QStringList &photos, const std::vector<AppliedPreset> &presets)
{
    SavingRun run;
    run.photoCount = static_cast<std::size_t>(photos.size());
    run.photoAt = [this, photos](std::size_t index) -> SavingPhoto {
        const QString &photo = photos[static_cast<qsizetype>(index)];
        return {photo, std::make_shared<ImageObject>(photo, m_services), {}};
    };
    run.effectivePresets = presetsToSave(presets);
    run.defaultSavingPreset.imageFormat = QStringLiteral("PNG");
    run.defaultSavingPreset.filenameTokens = {QStringLiteral("img"), QStringLiteral("sequence ##")};
    run.folders.destDirectory = path(QStringLiteral("out"));
    run.jobs = 3;
    return run;
}

void SavingTest::numbersAndNames_data()
{
    QTest::addColumn<int>("presets");
    QTest::addColumn<bool>("combines");
    QTest::addColumn<bool>("isInSingleMode");
    QTest::addColumn<QStringList>("names");
    const auto names = [](const char *text) { return QString::fromLatin1(text).split(u' '); };
    QTest::newRow("each preset") << 2 << false << false << names("A1.png B2.png A3.png B4.png A5.png B6.png");
    QTest::newRow("combined") << 2 << true << false << names("A1.png A2.png A3.png");
    QTest::newRow("single mode") << 1 << true << true << names("A1.png A2.png A3.png");
}

void SavingTest::numbersAndNames()
{
    QFETCH(int, presets);
    QFETCH(bool, combines);
    QFETCH(bool, isInSingleMode);
    QFETCH(QStringList, names);
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
    QVERIFY(!saving.finishedSavingImages());
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

void SavingTest::assignedSavingPresets_data()
{
    QTest::addColumn<bool>("areIgnored");
    QTest::addColumn<bool>("combines");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("followed") << false << false << QStringList{u"own.jpg"_qs, u"img02.png"_qs};
    QTest::newRow("ignored") << true << false << QStringList{u"img01.png"_qs, u"img02.png"_qs};
    QTest::newRow("combined") << false << true << QStringList{u"img01.png"_qs};
}

void SavingTest::assignedSavingPresets()
{
    QFETCH(bool, areIgnored);
    QFETCH(bool, combines);
    QFETCH(QStringList, names);
    SavingPresetValues own;
    own.imageFormat = u"JPEG"_qs;
    own.filenameTokens = {u"own"_qs};
    SavingRun run =
        runFor({photo(u"1.png"_qs)}, {mark(u"A"_qs, std::make_shared<SavingPreset>(own)), mark(u"B"_qs)});
    run.ignoreAssignedSavingPresets = areIgnored;
    run.combineAllAppliedPresetsInImage = combines;
    Saving(m_noAlerts).saveImages(run, m_listener);
    QCOMPARE(m_listener.names(), names);
    for (const SavingOutput &output : std::as_const(m_listener.outputs)) {
        QFile copy(output.path);
        QVERIFY(copy.open(QIODevice::ReadOnly));
        QCOMPARE(copy.read(2), output.path.endsWith(u".jpg") ? QByteArray("\xff\xd8") : QByteArray("\x89P"));
    }
}

/// The first photos take longest.
void SavingTest::resultsComeInOrder()
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

void SavingTest::workGoesOnDuringAQuestion()
{
    QVERIFY(QDir().mkpath(path(u"out"_qs)));
    QVERIFY(pattern({9, 9}).save(path(u"out/img02.png"_qs)));
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

void SavingTest::answersAreRememberedForOneRun()
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
    QCOMPARE(copies(), (QStringList{u"img01-1.png"_qs, u"img01.png"_qs, u"img02.png"_qs, u"img03.png"_qs}));
    QVERIFY(saving.savingFailedImages().isEmpty());
}

void SavingTest::skippedCopiesUseUpTheirNumbers()
{
    QVERIFY(QDir().mkpath(path(u"out"_qs)));
    QVERIFY(pattern({9, 9}).save(path(u"out/img02.png"_qs)));
    SavingRun run = runFor({photo(u"1.png"_qs), photo(u"2.png"_qs), photo(u"3.png"_qs)}, {mark(u"A"_qs)});
    run.conflictCode = OutputNaming::always(OutputNaming::kSkip);
    Saving saving(m_noAlerts);
    saving.saveImages(run, m_listener);
    QCOMPARE(m_listener.names(), (QStringList{u"img01.png"_qs, QString(), u"img03.png"_qs}));
    QCOMPARE(m_listener.outputs[1].status, Status::Skipped);
    QVERIFY(saving.savingFailedImages().isEmpty());
    QCOMPARE(QImage(path(u"out/img02.png"_qs)).size(), QSize(9, 9));
}

void SavingTest::stopping_data()
{
    QTest::addColumn<int>("jobs");
    QTest::newRow("one at a time") << 1;
    QTest::newRow("overlapping") << 4;
}

/// Stopped while the second of forty photos is under way.
void SavingTest::stopping()
{
    QFETCH(int, jobs);
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

void SavingTest::manyFailuresAreReported()
{
    QStringList photos{photo(u"good.png"_qs)};
    QString list;
    for (int i = 1; i <= 14; ++i) {
        photos.append(path(u"in/%1.png"_qs.arg(i)));
        if (i <= 10)
            list += u"\n%1.png"_qs.arg(i);
    }
    ScriptedAlerts alerts;
    alerts.expect(u"Failed to save 14 image(s)!"_qs);
    Saving saving(alerts);
    saving.saveImages(runFor(photos, {mark(u"A"_qs)}), m_listener);
    QCOMPARE(copies(), QStringList{u"img01.png"_qs});
    saving.finishedSavingImages();
    saving.finishedSavingImages(); // all is forgotten
    QCOMPARE(alerts.complaints(), QStringList());
    QCOMPARE(alerts.shown().first().style, Alert::Style::Critical);
    QCOMPARE(alerts.shown().first().text,
             u"Sorry, could not save the following image(s). Possibly the original image format is not "
             "supported, or missing write permissions on the destination:"_qs +
                 list + u"\n  ...and 4 more..."_qs);
}

/// Photos that vanish, shrink or become something else after the run has begun.
void SavingTest::failuresOnTheWay()
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

void SavingTest::foldersThatTakeNothing_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("read-only, whoever writes") << u"/proc/self"_qs;
    QTest::newRow("cannot be made") << u"/proc/no such folder"_qs;
    QTest::newRow("vanishes") << QString();
}

void SavingTest::foldersThatTakeNothing()
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

void SavingTest::overwritingTheOriginals_data()
{
    QTest::addColumn<int>("jobs");
    for (const int jobs : {1, 2, 8})
        QTest::addRow("%d jobs", jobs) << jobs;
}

/// As if one copy was made after another: all copies of a photo are made of what it was when it was begun,
/// and a photo that comes twice is the second time what the first time has left.
void SavingTest::overwritingTheOriginals()
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
void SavingTest::overwrittenPhotosAreReadAfterwards()
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

void SavingTest::sameNamesFromManyFolders()
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

void SavingTest::dryRunWritesNothingAndAgrees()
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

void SavingTest::companion()
{
    const QStringList photos{photo(u"1.png"_qs), path(u"in/missing.png"_qs), photo(u"3.png"_qs)};
    SavingRun run = runFor(photos, {mark(u"A"_qs, std::make_shared<SavingPreset>())});
    UserDefaults defaults(u"maker"_qs, u"companion"_qs);
    registerDefaults(defaults);
    const QString exchange = path(u"exchange"_qs);
    followSettingsForCompanion(run, defaults, exchange);
    ScriptedAlerts alerts;
    alerts.expect(u"Failed to save 1 image(s)!"_qs);
    Saving saving(alerts);
    saving.saveImages(run, m_listener);
    QCOMPARE(saving.finishedSavingImages(),
             std::optional(QStringList{exchange + u"/img0001.tif"_qs, photos[0],
                                       exchange + u"/img0003.tif"_qs, photos[2]}));
    QVERIFY(!saving.finishedSavingImages());
    QCOMPARE(alerts.complaints(), QStringList());
    QFile tiff(exchange + u"/img0001.tif"_qs);
    QVERIFY(tiff.open(QIODevice::ReadOnly));
    QVERIFY(QByteArrayList({"II*", "MM\0"}).contains(tiff.read(3)));
}

void SavingTest::photosAreReleased_data()
{
    QTest::addColumn<bool>("areReleased");
    QTest::newRow("released") << true;
    QTest::newRow("kept") << false;
}

void SavingTest::photosAreReleased()
{
    QFETCH(bool, areReleased);
    const QString file = photo(u"1.png"_qs, {360, 240});
    const auto image = std::make_shared<ImageObject>(file, m_services);
    QVERIFY(image->loadImageFromDisk());
    SavingRun run = runFor({file}, {mark(u"A"_qs), mark(u"B"_qs)});
    run.photoAt = [&](std::size_t) -> SavingPhoto { return {file, image, {}}; };
    run.releasesImages = areReleased;
    Saving(m_noAlerts).saveImages(run, m_listener);
    QCOMPARE(image->isLoaded(), !areReleased);
    QCOMPARE(copies().size(), 2);
    // It was at hand when it was begun, so it could be shown.
    QCOMPARE(m_listener.pictures.size(), 1);
    QCOMPARE(m_listener.pictures[0].size(), QSize(180, 120));
}

void SavingTest::settingsAreFollowed()
{
    UserDefaults defaults(u"maker"_qs, u"settings"_qs);
    registerDefaults(defaults);
    SavingRun run;
    followSettings(run, defaults);
    QCOMPARE(run.folders.destDirectory, defaults.stringForKey(settings::savingDirectory));
    QVERIFY(run.preservesCreationDate && !run.releasesImages && !run.ignoreAssignedSavingPresets);
    defaults.setObject(settings::saveAllToOneDirectory, false);
    defaults.setObject(settings::ignoreSavingPresetsInWPresets, true); // nothing reads it
    defaults.setObject(settings::imageListIsInBrowserMode, false);
    followSettings(run, defaults);
    QVERIFY(run.folders.destDirectory.isEmpty());
    QVERIFY(run.releasesImages && !run.ignoreAssignedSavingPresets);
    defaults.setObject(settings::ignoreSavingPresetsInSizePresets, true);
    followSettings(run, defaults);
    QVERIFY(run.ignoreAssignedSavingPresets);
}

QTEST_MAIN(SavingTest)
#include "saving_test.moc"
