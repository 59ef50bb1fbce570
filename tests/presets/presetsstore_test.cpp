// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/fontcatalog.h"
#include "presets/presetsmigration.h"
#include "presets/presetsstore.h"
#include "presets/wpresetarchive.h"
#include "support/failingsystemcalls.h"
#include "support/keyedarchives.h"
#include "support/scriptedalerts.h"
#include "support/testenvironment.h"
#include "watermark/texttokens.h"

#include <QtTest>

#include <sys/wait.h>

#include <csignal>
#include <functional>
#include <numeric>

using namespace plexa;
using namespace plexa::test;

namespace
{

using Kind = PresetsStore::Kind;
using Slot = PresetsStore::Slot;

const QString kCannotRead = QStringLiteral("Cannot read the presets file");
const QString kImportFailed = QStringLiteral("Presets import failed");
const QString kCannotSaveAll = QStringLiteral("Cannot save all presets");
const QString kAppID = QStringLiteral("Quorvel Plexa");

WPresetList wPresets(const QStringList &names)
{
    WPresetList list;
    for (const QString &name : names) {
        list.push_back(std::make_shared<WPreset>(WPresetValues()));
        list.back()->setName(name);
    }
    return list;
}

void setWPresets(PresetsStore &store, const WPresetList &presets)
{
    QList<int> rows(static_cast<qsizetype>(store.wPresets().size()));
    std::iota(rows.begin(), rows.end(), 0);
    store.wPresetList().remove(rows);
    store.wPresetList().append(presets);
}

template<class List>
QStringList namesOf(const List &presets)
{
    QStringList names;
    for (const auto &preset : presets)
        names.append(preset->name());
    return names;
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
}

/// A file with one saving preset, which has one token.
QByteArray savingPresetFile(const QByteArray &version, const QByteArray &name, const QByteArray &token)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<savingPresets application=\"Quorvel Plexa\" "
           "fileVersion=\"" +
           version + "\">\n<preset>\n<id>1</id>\n<name>" + name + "</name>\n<filename>\n<token>" + token +
           "</token>\n</filename>\n<quality>80</quality>\n<tiffCompressionLZW>1</tiffCompressionLZW>\n"
           "</preset>\n</savingPresets>\n";
}

/// Runs a function in a process of its own. @return its process ID
pid_t started(const std::function<void()> &function)
{
    const pid_t child = fork();
    if (child == 0) {
        function();
        _exit(0);
    }
    return child;
}

/// @return the exit status; -1 when it was killed
int ended(pid_t child)
{
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

class PresetsStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void firstStart();
    void examplesOfTheProgram();
    void whatIsSavedIsRead();
    void changedListsAreSaved();
    void aFailureIsToldOnce();
    void removedSavingPresets();
    void unreadableLists();
    void laterVersion();
    void whatIsNotReadIsKept_data();
    void whatIsNotReadIsKept();
    void presetsThatNoFileCanHold();
    void importing();
    void quickToStoredAndBack();
    void migration_data();
    void migration();
    void aFaultAtAnyCall_data();
    void aFaultAtAnyCall();
    void killsWhileSaving();
    void firstStartsAtTheSameMoment();

private:
    PresetsStore::Places places() const { return {path(), m_folder.path(QStringLiteral("examples"))}; }
    QString path(const QString &name = {}) const { return QDir::cleanPath(m_home + u'/' + name); }
    QStringList files() const
    {
        return QDir(m_home).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    TestFolder m_folder;
    FontCatalog m_fonts;
    QString m_home;
};

void PresetsStoreTest::initTestCase()
{
    QVERIFY(QDir().mkpath(m_folder.path(QStringLiteral("examples"))));
    QVERIFY(writeWPresets(wPresets({QStringLiteral("Example"), QStringLiteral("Another")}),
                          m_folder.path(QStringLiteral("examples/example_wpresets.pxwpr"))));
    QVERIFY(SavingPreset::writeObjects({std::make_shared<SavingPreset>()},
                                       m_folder.path(QStringLiteral("examples/example_spresets.pxspr")),
                                       kAppID));
    const QString python = keyedArchivesScript();
    QProcess::execute(QStringLiteral("python3"), {python, m_folder.path()});
}

void PresetsStoreTest::init()
{
    m_home = m_folder.path(QStringLiteral("home/Quorvel/Plexa"));
    QVERIFY(QDir().mkpath(m_home));
}

void PresetsStoreTest::cleanup()
{
    QVERIFY(QDir(m_folder.path(QStringLiteral("home"))).removeRecursively());
}

void PresetsStoreTest::firstStart()
{
    ScriptedAlerts alerts;
    PresetsStore store(alerts, m_fonts, places());
    store.readAll();
    QCOMPARE(alerts.complaints(), QStringList());
    QCOMPARE(namesOf(store.wPresets()), QStringList({QStringLiteral("Example"), QStringLiteral("Another")}));
    QCOMPARE(store.savingPresets().size(), std::size_t(1));
    QCOMPARE(store.quickWPreset()->name(), QStringLiteral("Quick Preset"));
    QCOMPARE(store.quickSavingPreset()->name(), QStringLiteral("Quick Preset"));
    QCOMPARE(files(), QStringList({QStringLiteral(".lock"), QStringLiteral("SPresets.pxspr"),
                                   QStringLiteral("WPresets.pxwpr")}));
}

void PresetsStoreTest::examplesOfTheProgram()
{
    ScriptedAlerts alerts;
    PresetsStore store(alerts, m_fonts, {path(), PresetsStore::Places::own().examplesFolder});
    store.readAll();
    QCOMPARE(alerts.complaints(), QStringList());
    QVERIFY(store.wPresets().size() >= 10);
    int pictures = 0;
    for (const auto &preset : store.wPresets()) {
        const bool isPicture = preset->type() == QLatin1StringView("Image");
        QVERIFY2(isPicture ? !preset->image().svg().isEmpty() : !preset->textTokens().isEmpty(),
                 qPrintable(preset->name()));
        // Of a photo without metadata there is something to see, or nothing at all.
        QString literal;
        for (const QString &piece : preset->textTokens())
            literal += tokenNames().contains(piece) ? QString() : piece;
        QVERIFY2(literal.isEmpty() || literal.contains(QRegularExpression(QStringLiteral("\\S"))),
                 qPrintable(preset->name()));
        pictures += isPicture ? 1 : 0;
    }
    QVERIFY(pictures >= 2);
    QCOMPARE(store.savingPresets().size(), std::size_t(6));
    for (const auto &preset : store.savingPresets())
        QVERIFY2(preset->validPreset() && preset->supportedFileFormats().contains(preset->imageFormat()),
                 qPrintable(preset->name()));
}

void PresetsStoreTest::whatIsSavedIsRead()
{
    ScriptedAlerts alerts;
    PresetsStore store(alerts, m_fonts, places());
    store.readAll();
    const auto savingPreset = std::make_shared<SavingPreset>();
    savingPreset->setName(QStringLiteral("Mine & <yours>"));
    store.savingPresetList().append({savingPreset});
    WPresetList presets = wPresets({QStringLiteral("One")});
    presets.front()->setAssignedSavingPreset(savingPreset);
    setWPresets(store, presets);
    store.quickWPreset()->setFontSize(77);
    store.quickSavingPreset()->setJpegQuality(66);
    for (const Slot slot : {Slot::List, Slot::Quick})
        QVERIFY(store.saveWPresets(slot) && store.saveSavingPresets(slot));

    PresetsStore again(alerts, m_fonts, places());
    again.readAll();
    QCOMPARE(namesOf(again.wPresets()), QStringList(QStringLiteral("One")));
    QCOMPARE(again.wPresets().front()->assignedSavingPreset().get(),
             again.savingPresetWithID(savingPreset->presetID()).get());
    QCOMPARE(again.savingPresets().back()->name(), savingPreset->name());
    QCOMPARE(again.quickWPreset()->fontSize(), WholeNumber(77));
    QCOMPARE(again.quickSavingPreset()->jpegQuality(), 66);
    QCOMPARE(alerts.complaints(), QStringList());
}

void PresetsStoreTest::changedListsAreSaved()
{
    using namespace std::chrono_literals;
    ScriptedAlerts alerts;
    const QString files[] = {path(QStringLiteral("WPresets.pxwpr")), path(QStringLiteral("SPresets.pxspr"))};
    const auto savedNames = [&] {
        PresetsStore saved(alerts, m_fonts, places());
        saved.readAll();
        return QStringList(namesOf(saved.wPresets()) + namesOf(saved.savingPresets())).join(u' ');
    };
    PresetsStore store(alerts, m_fonts, places(), 24h);
    store.readAll();
    for (const QString &file : files)
        QVERIFY(QFile::remove(file));
    store.saveChangedLists(); // nothing has changed
    QVERIFY(!QFile::exists(files[0]) && !QFile::exists(files[1]));
    store.wPresetList().insertNew({0});
    store.savingPresets().front()->setName(QStringLiteral("Web"));
    QCoreApplication::processEvents();
    QVERIFY(!QFile::exists(files[0]) && !QFile::exists(files[1]));
    store.saveChangedLists();
    QCOMPARE(savedNames(), QStringLiteral("Example New Preset Another Web"));
    store.wPresetList().move({1}, 0);
    store.saveChangedLists();
    store.savingPresetList().remove({0});
    store.saveChangedLists();
    QCOMPARE(savedNames(), QStringLiteral("New Preset Example Another"));

    // Without being asked, too.
    PresetsStore eager(alerts, m_fonts, places(), 1ms);
    eager.readAll();
    eager.wPresetList().remove({0, 1});
    QTRY_COMPARE(savedNames(), QStringLiteral("Another"));
    eager.wPresets().front()->setName(QStringLiteral("Edited"));
    QTRY_COMPARE(savedNames(), QStringLiteral("Edited"));
    QCOMPARE(alerts.complaints(), QStringList());
}

void PresetsStoreTest::aFailureIsToldOnce()
{
    ScriptedAlerts alerts;
    PresetsStore store(alerts, m_fonts, places(), std::chrono::hours(24));
    store.readAll();
    const QString list = path(QStringLiteral("WPresets.pxwpr"));
    for (int time = 0; time < 2; ++time) {
        QVERIFY(QFile::remove(list) && QDir().mkpath(list + QStringLiteral("/in the way")));
        alerts.expect(QStringLiteral("Cannot save the presets"));
        for (int edit = 0; edit < 3; ++edit) {
            store.wPresetList().insertNew({});
            store.saveChangedLists();
        }
        QCOMPARE(alerts.complaints(), QStringList());
        QVERIFY(alerts.shown().last().text.contains(list));
        // It is tried again, and a failure after a success is another one.
        QVERIFY(QDir(list).removeRecursively());
        store.saveChangedLists();
        QVERIFY(QFileInfo(list).isFile());
    }
    // A caller that gets the failure tells the user.
    QVERIFY(QFile::remove(list) && QDir().mkpath(list + QStringLiteral("/in the way")));
    QVERIFY(!store.saveWPresets(Slot::List));
    store.saveChangedLists();
    QCOMPARE(alerts.complaints(), QStringList());
}

void PresetsStoreTest::removedSavingPresets()
{
    ScriptedAlerts alerts;
    PresetsStore store(alerts, m_fonts, places());
    for (int i = 0; i < 3; ++i)
        store.savingPresetList().insertNew({});
    const SavingPresetList saving = store.savingPresets();
    store.wPresetList().append(wPresets({QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("1")}));
    const WPresetList &marks = store.wPresets();
    marks[0]->setAssignedSavingPreset(saving[0]);
    marks[1]->setAssignedSavingPreset(saving[1]);
    marks[2]->setAssignedSavingPreset(saving[1]);
    store.quickWPreset()->setAssignedSavingPreset(saving[2]);
    store.savingPresetList().remove({1, 2});
    QCOMPARE(marks[0]->assignedSavingPreset().get(), saving[0].get());
    QVERIFY(!marks[1]->assignedSavingPreset() && !marks[2]->assignedSavingPreset());
    QVERIFY(!store.quickWPreset()->assignedSavingPreset());
}

void PresetsStoreTest::unreadableLists()
{
    const QString invalid = QStringLiteral(
        "The presets file is invalid and cannot be read. It will be replaced with a new file.");
    // Three times in a row: all three files are kept.
    for (int time = 1; time <= 3; ++time) {
        const QByteArray bad = "bad " + QByteArray::number(time);
        write(path(QStringLiteral("SPresets.pxspr")), bad);
        write(path(QStringLiteral("WPresets.pxwpr")), bad);
        ScriptedAlerts alerts;
        alerts.expect(kCannotRead);
        alerts.expect(kCannotRead);
        PresetsStore store(alerts, m_fonts, places());
        store.readAll();
        QCOMPARE(alerts.complaints(), QStringList());
        QVERIFY(store.wPresets().empty() && store.savingPresets().empty());
        const QString backup = path(QStringLiteral("SPresets-replaced.pxspr"));
        QCOMPARE(alerts.shown().first().text,
                 time == 1
                     ? invalid +
                           QStringLiteral(" The original file backup has been saved in \"%1\".").arg(backup)
                     : invalid);
        QVERIFY(store.saveSavingPresets(Slot::List) && store.saveWPresets(Slot::List));
        QVERIFY(store.saveSavingPresets(Slot::List)); // what is good is not moved
    }
    for (const char *name : {"SPresets-replaced%1.pxspr", "WPresets-replaced%1.pxwpr"}) {
        const QString pattern = path(QLatin1StringView(name));
        QCOMPARE(contentsOf(pattern.arg(QString())), QByteArray("bad 1"));
        QCOMPARE(contentsOf(pattern.arg(QStringLiteral("-2"))), QByteArray("bad 2"));
        QCOMPARE(contentsOf(pattern.arg(QStringLiteral("-3"))), QByteArray("bad 3"));
    }
    QCOMPARE(files().size(), 9);
    // The next start finds good lists.
    ScriptedAlerts alerts;
    PresetsStore store(alerts, m_fonts, places());
    store.readAll();
    QCOMPARE(alerts.complaints(), QStringList());
}

void PresetsStoreTest::laterVersion()
{
    const QString later = m_folder.path(QStringLiteral("later.pxwpr"));
    QVERIFY(QFile::copy(later, path(QStringLiteral("WPresets.pxwpr"))));
    ScriptedAlerts alerts;
    alerts.expect(kCannotRead);
    PresetsStore store(alerts, m_fonts, places());
    store.readAll();
    QCOMPARE(alerts.complaints(), QStringList());
    QCOMPARE(alerts.shown().first().text,
             QStringLiteral(
                 "The presets file is generated by a later application version and will be replaced. The "
                 "original file backup has been saved in \"%1\".")
                 .arg(path(QStringLiteral("WPresets-replaced.pxwpr"))));
    QCOMPARE(namesOf(store.wPresets()), QStringList({QStringLiteral("Old"), QStringLiteral("Old")}));
    alerts.expect(kImportFailed);
    QVERIFY(!store.importPresetsFromFile(later, Kind::Watermark));
    QCOMPARE(alerts.shown().last().text,
             QStringLiteral("The presets file was generated by a later application version."));
    QCOMPARE(store.wPresets().size(), std::size_t(2));
    QCOMPARE(alerts.complaints(), QStringList());
}

void PresetsStoreTest::whatIsNotReadIsKept_data()
{
    const QByteArray some = contentsOf(m_folder.path(QStringLiteral("some.pxwpr")));
    const QByteArray later = contentsOf(m_folder.path(QStringLiteral("later.pxwpr")));
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QString>("preset"); // the name of what is read of it
    const auto add = [](const char *what, const char *name, const QByteArray &contents, const char *preset) {
        QTest::addRow("%s, %s", name, what)
            << QString::fromLatin1(name) << contents << QString::fromLatin1(preset);
    };
    add("no preset", "WPresets.pxwpr", some, "Old");
    add("no preset", "QuickWPreset.pxwpr", some, "Old");
    add("later version", "QuickWPreset.pxwpr", later, "Quick Preset");
    add("damaged", "QuickWPreset.pxwpr", "bad", "Quick Preset");
    add("damaged", "QuickSPreset.pxspr", "bad", "Quick Preset");
    for (const char *name : {"SPresets.pxspr", "QuickSPreset.pxspr"}) {
        add("later version", name, savingPresetFile("1.5", "A", "filename"), "A");
        add("unknown entity", name, savingPresetFile("1.4", "A", "copy&copy;"), "A");
    }
}

void PresetsStoreTest::whatIsNotReadIsKept()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, contents);
    QFETCH(QString, preset);
    const QFileInfo info(name);
    const QString backup = path(info.completeBaseName() + QStringLiteral("-replaced%1.") + info.suffix());
    write(path(name), contents);
    write(backup.arg(QString()), "of another time");
    ScriptedAlerts alerts;
    PresetsStore store(alerts, m_fonts, places());
    store.readAll();
    QCOMPARE(contentsOf(path(name)), contents);
    const Slot slot = name.startsWith(u'Q') ? Slot::Quick : Slot::List;
    const bool isWatermark = name.endsWith(QLatin1StringView("pxwpr"));
    const QStringList stored = isWatermark ? namesOf(store.wPresets()) : namesOf(store.savingPresets());
    const QString quick = isWatermark ? store.quickWPreset()->name() : store.quickSavingPreset()->name();
    QCOMPARE(slot == Slot::List ? stored : QStringList(quick), QStringList(preset));
    // Once, before the first time that something would get lost.
    for (int time = 0; time < 2; ++time)
        QVERIFY(isWatermark ? store.saveWPresets(slot) : store.saveSavingPresets(slot));
    QVERIFY(contentsOf(path(name)) != contents);
    QCOMPARE(contentsOf(backup.arg(QStringLiteral("-2"))), contents);
    QCOMPARE(contentsOf(backup.arg(QString())), QByteArray("of another time"));
    PresetsStore again(alerts, m_fonts, places());
    again.readAll();
    QVERIFY(isWatermark ? again.saveWPresets(slot) : again.saveSavingPresets(slot));
    QCOMPARE(files().filter(QStringLiteral("-replaced")).size(), 2);
    QCOMPARE(alerts.complaints(), QStringList());
}

/// One that was read, because references are read in all texts, but has no form in which it can be written.
void PresetsStoreTest::presetsThatNoFileCanHold()
{
    const QByteArray bad = savingPresetFile("1.4", "A", "R&amp;D");
    write(path(QStringLiteral("SPresets.pxspr")), bad);
    write(path(QStringLiteral("QuickSPreset.pxspr")), bad);
    ScriptedAlerts alerts;
    PresetsStore store(alerts, m_fonts, places());
    store.readAll();
    QVERIFY(store.importExamplePresets(Kind::Saving));
    alerts.expect(kCannotSaveAll);
    QVERIFY(store.saveSavingPresets(Slot::List));
    QVERIFY(!store.saveSavingPresets(Slot::Quick)); // the only one in its file, which stays as it is
    QCOMPARE(contentsOf(path(QStringLiteral("SPresets-replaced.pxspr"))), bad);
    QCOMPARE(contentsOf(path(QStringLiteral("QuickSPreset.pxspr"))), bad);
    PresetsStore again(alerts, m_fonts, places());
    again.readAll();
    QCOMPARE(namesOf(again.savingPresets()), QStringList(QStringLiteral("New Preset")));
    QCOMPARE(alerts.complaints(), QStringList());
    // Out of another file it was never in the list on the disk, of which no copy is made.
    const QString file = m_folder.path(QStringLiteral("import.pxspr"));
    write(file, bad);
    const auto imported = again.importPresetsFromFile(file, Kind::Saving);
    QVERIFY(imported && imported->count == 1 && imported->notes.join(u' ').contains(u"\"R&D\""));
    QVERIFY(again.saveSavingPresets(Slot::List));
    QCOMPARE(files().filter(QStringLiteral("-replaced")).size(), 1);
    // One that was edited has its former values there.
    again.savingPresets().front()->setFilenameTokens({QStringLiteral("a<b")});
    alerts.expect(kCannotSaveAll);
    QVERIFY(again.saveSavingPresets(Slot::List) && again.saveSavingPresets(Slot::List));
    QVERIFY(alerts.shown().last().text.contains(u"\"New Preset\" names files with \"a<b\""));
    QVERIFY(contentsOf(path(QStringLiteral("SPresets-replaced-2.pxspr"))).contains("New Preset"));
    QCOMPARE(files().filter(QStringLiteral("-replaced")).size(), 2);
    QCOMPARE(alerts.complaints(), QStringList());
}

void PresetsStoreTest::importing()
{
    ScriptedAlerts alerts;
    PresetsStore store(alerts, m_fonts, places());
    store.readAll();
    const auto savingPreset = store.savingPresets().front();
    WPresetList presets = wPresets({QStringLiteral("Imported")});
    presets.front()->setAssignedSavingPreset(savingPreset);
    const QString file = m_folder.path(QStringLiteral("import.pxwpr"));
    QVERIFY(writeWPresets(presets, file));
    QVERIFY(store.importPresetsFromFile(file, Kind::Watermark));
    QCOMPARE(store.wPresets().back()->name(), QStringLiteral("Imported"));
    QVERIFY(!store.wPresets().back()->assignedSavingPreset());
    QVERIFY(store.importExamplePresets(Kind::Watermark));
    QCOMPARE(store.wPresets().size(), std::size_t(5));

    QVERIFY(store.importExamplePresets(Kind::Saving));
    QVERIFY(store.importExamplePresets(Kind::Saving));
    QSet<qint64> ids;
    for (const auto &preset : store.savingPresets())
        ids.insert(preset->presetID());
    QCOMPARE(ids.size(), 3);

    const qint64 before = SavingPreset::lastUsedPresetID();
    const QString bad = m_folder.path(QStringLiteral("bad.pxspr"));
    write(bad, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<savingPresets application=\"Quorvel Plexa\" "
               "fileVersion=\"1.4\">\n<preset>\n<id>5000</id>\n</preset>\n</savingPresets>\n");
    for (const Kind kind : {Kind::Saving, Kind::Watermark}) {
        alerts.expect(kImportFailed);
        QVERIFY(!store.importPresetsFromFile(bad, kind));
        QCOMPARE(alerts.shown().last().text, QStringLiteral("The presets file has a wrong format."));
    }
    QCOMPARE(SavingPreset::lastUsedPresetID(), before);
    QCOMPARE(alerts.complaints(), QStringList());
}

void PresetsStoreTest::quickToStoredAndBack()
{
    ScriptedAlerts alerts;
    PresetsStore store(alerts, m_fonts, places());
    QSignalSpy quickChanged(&store, &PresetsStore::quickWPresetChanged);
    const auto quick = store.quickWPreset();
    quick->setOpacity(33);
    store.saveQuickAsWPreset();
    QCOMPARE(store.wPresets().back()->name(), QStringLiteral("Saved Quick Preset"));
    QCOMPARE(store.wPresets().back()->opacity(), WholeNumber(33));
    QVERIFY(store.wPresets().back() != quick && quickChanged.isEmpty());

    const WPresetList stored = wPresets({QStringLiteral("Stored")});
    stored.front()->setAssignedSavingPreset(std::make_shared<SavingPreset>());
    store.loadWPreset(*stored.front());
    QCOMPARE(quickChanged.size(), 1);
    QVERIFY(store.quickWPreset() != quick && store.quickWPreset() != stored.front());
    QCOMPARE(store.quickWPreset()->name(), QStringLiteral("Quick Preset"));
    QVERIFY(!store.quickWPreset()->assignedSavingPreset() && stored.front()->assignedSavingPreset());
}

void PresetsStoreTest::migration_data()
{
    QTest::addColumn<QStringList>("old"); // names in the old folder
    QTest::addColumn<QStringList>("now"); // and in the new one
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<bool>("isOldFolderGone");
    const auto list = [](const char *names) {
        return QString::fromLatin1(names).split(u'|', Qt::SkipEmptyParts);
    };
    QTest::newRow("one file") << list("WPresets.pxwpr|other") << list("")
                              << list("WPresets - older backup.pxwpr|WPresets.pxwpr") << true;
    QTest::newRow("new files stay")
        << list("SPresets.pxspr|QuickWPreset.pxwpr") << list("SPresets.pxspr")
        << list("QuickWPreset - older backup.pxwpr|QuickWPreset.pxwpr|SPresets - older "
                "backup.pxspr|SPresets.pxspr")
        << true;
    QTest::newRow("interrupted") << list("WPresets.pxwpr")
                                 << list("WPresets - older backup.pxwpr=WPresets.pxwpr")
                                 << list("WPresets - older backup.pxwpr|WPresets.pxwpr") << true;
    QTest::newRow("another backup there")
        << list("SPresets.pxspr|QuickSPreset.pxspr") << list("SPresets - older backup.pxspr")
        << list("SPresets - older backup.pxspr") << false;
    QTest::newRow("a pipe") << list("WPresets.pxwpr=pipe|SPresets.pxspr") << list("") << list("") << false;
}

void PresetsStoreTest::migration()
{
    QFETCH(QStringList, old);
    QFETCH(QStringList, now);
    QFETCH(QStringList, expected);
    QFETCH(bool, isOldFolderGone);
    const QString oldFolder = m_folder.path(QStringLiteral("home/Quorvel Plexa 1"));
    QVERIFY(QDir().mkpath(oldFolder));
    for (const QString &name : old) {
        if (name.endsWith(QStringLiteral("=pipe")))
            QCOMPARE(
                QProcess::execute(QStringLiteral("mkfifo"), {oldFolder + u'/' + name.section(u'=', 0, 0)}),
                0);
        else
            write(oldFolder + u'/' + name, "old " + name.toUtf8());
    }
    for (const QString &name : now)
        write(path(name.section(u'=', 0, 0)),
              name.contains(u'=') ? "old " + name.section(u'=', 1).toUtf8() : QByteArray("new"));
    updateOldApplicationSupportDirectoryIfNeeded(m_home);
    QCOMPARE(files(), expected);
    QCOMPARE(QFileInfo::exists(oldFolder), !isOldFolderGone);
    for (const QString &name : now) {
        if (!name.contains(u'='))
            QCOMPARE(contentsOf(path(name)), QByteArray("new"));
    }
    if (isOldFolderGone && !now.contains(old.first()))
        QCOMPARE(contentsOf(path(old.first())), "old " + old.first().toUtf8());
}

void PresetsStoreTest::aFaultAtAnyCall_data()
{
    QTest::addColumn<int>("kindOfFault");
    QTest::newRow("error") << static_cast<int>(Fault::Error);
    QTest::newRow("death") << static_cast<int>(Fault::Death);
}

void PresetsStoreTest::aFaultAtAnyCall()
{
    QFETCH(int, kindOfFault);
    const WPresetList before = wPresets({QStringLiteral("before")});
    const WPresetList after = wPresets({QStringLiteral("after"), QStringLiteral("too")});
    ScriptedAlerts alerts;
    int outcomes[2] = {0, 0};
    bool isReached = true;
    for (int call = 1; isReached && call < 100; ++call) {
        PresetsStore store(alerts, m_fonts, places());
        setWPresets(store, before);
        QVERIFY(store.saveWPresets(Slot::List));
        const int status = ended(started([&] {
            setWPresets(store, after);
            callsLeft = call;
            fault = static_cast<Fault>(kindOfFault);
            const bool isSaved = store.saveWPresets(Slot::List).has_value();
            // 0: not reached any more; 1: failed, and said so; 2: passed over, all the same saved
            _exit(callsLeft > 0 ? 0 : isSaved ? 2 : 1);
        }));
        isReached = status != 0;
        PresetsStore restarted(alerts, m_fonts, places());
        restarted.readAll();
        QCOMPARE(alerts.complaints(), QStringList());
        const bool isAfter = namesOf(restarted.wPresets()) == namesOf(after);
        QVERIFY2(isAfter || namesOf(restarted.wPresets()) == namesOf(before),
                 qPrintable(QString::number(call)));
        if (status == 0 || status == 2)
            QVERIFY(isAfter);
        ++outcomes[isAfter ? 1 : 0];
        QCOMPARE(files(), QStringList({QStringLiteral(".lock"), QStringLiteral("SPresets.pxspr"),
                                       QStringLiteral("WPresets.pxwpr")}));
    }
    QVERIFY(!isReached);
    QVERIFY2(outcomes[0] >= 3 && outcomes[1] >= 1, "the faults did not come where they should");
}

void PresetsStoreTest::killsWhileSaving()
{
    ScriptedAlerts alerts;
    QStringList many;
    for (int i = 0; i < 40; ++i)
        many.append(QString::number(i));
    const WPresetList lists[] = {wPresets({QStringLiteral("short")}), wPresets(many)};
    PresetsStore store(alerts, m_fonts, places());
    store.readAll();
    setWPresets(store, lists[0]);
    QVERIFY(store.saveWPresets(Slot::List));
    QSet<qsizetype> seen;
    for (int kill = 0; kill < 60; ++kill) {
        const pid_t child = started([&] {
            for (int i = kill;; ++i) {
                setWPresets(store, lists[i % 2]);
                store.saveWPresets(Slot::List);
            }
        });
        QTest::qSleep(5 + kill * 7 % 60);
        ::kill(child, SIGKILL);
        QCOMPARE(ended(child), -1);
        PresetsStore restarted(alerts, m_fonts, places());
        restarted.readAll();
        const QStringList names = namesOf(restarted.wPresets());
        QVERIFY(names == namesOf(lists[0]) || names == namesOf(lists[1]));
        seen.insert(names.size());
        QCOMPARE(files().size(), 3);
    }
    QCOMPARE(seen.size(), 2);
    QCOMPARE(alerts.complaints(), QStringList());
}

void PresetsStoreTest::firstStartsAtTheSameMoment()
{
    for (int time = 0; time < 20; ++time) {
        // Every other time the list that is there is bad, so that it is moved aside and made anew.
        const bool isBad = time % 2 == 1;
        if (isBad)
            write(path(QStringLiteral("WPresets.pxwpr")), "bad");
        int gate[2];
        QCOMPARE(pipe(gate), 0);
        QList<pid_t> children;
        for (int i = 0; i < 4; ++i) {
            children.append(started([&] {
                ::close(gate[1]);
                char byte = 0;
                if (read(gate[0], &byte, 1) != 0)
                    _exit(3);
                ScriptedAlerts alerts;
                PresetsStore store(alerts, m_fonts, places());
                store.readAll();
                const bool isWhole = store.wPresets().size() == 2 && alerts.shown().isEmpty();
                const bool isEmpty = store.wPresets().empty() && alerts.shown().size() == 1;
                _exit(isWhole ? 0 : isEmpty ? 1 : 2);
            }));
        }
        ::close(gate[0]);
        ::close(gate[1]);
        int reports = 0;
        for (const pid_t child : children) {
            const int status = ended(child);
            QVERIFY(status == 0 || status == 1);
            reports += status;
        }
        QCOMPARE(reports, isBad ? 1 : 0);
        ScriptedAlerts alerts;
        PresetsStore store(alerts, m_fonts, places());
        store.readAll();
        QCOMPARE(store.wPresets().size(), std::size_t(2));
        QCOMPARE(alerts.complaints(), QStringList());
        QCOMPARE(files().size(), isBad ? 4 : 3);
        cleanup();
        init();
    }
}

QTEST_GUILESS_MAIN(PresetsStoreTest)
#include "presetsstore_test.moc"
