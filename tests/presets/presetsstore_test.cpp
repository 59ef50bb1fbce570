// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/fontcatalog.h"
#include "presets/presetsmigration.h"
#include "presets/presetsstore.h"
#include "presets/wpresetarchive.h"
#include "support/datarows.h"
#include "support/failingsystemcalls.h"
#include "support/files.h"
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
using namespace Qt::StringLiterals;

namespace
{

using Kind = PresetsStore::Kind;
using Slot = PresetsStore::Slot;

const QString kCannotRead = u"Cannot read the presets file"_s;
const QString kImportFailed = u"Presets import failed"_s;
const QString kCannotSaveAll = u"Cannot save all presets"_s;
const QString kAppID = u"Quorvel Plexa"_s;

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

struct PartlyRead {
    Text name;
    Text file;
    QByteArray contents;
    Text preset; ///< the name of the preset that is read
};

struct Migration {
    Text name;
    QStringList old; ///< names in the old folder
    QStringList now; ///< and in the new one
    QStringList expected;
    bool isOldFolderGone;
};

} // namespace

class PresetsStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QDir().mkpath(m_folder.path("examples")));
        QVERIFY(writeWPresets(wPresets({u"Example"_s, u"Another"_s}),
                              m_folder.path("examples/example_wpresets.pxwpr")));
        QVERIFY(SavingPreset::writeObjects({std::make_shared<SavingPreset>()},
                                           m_folder.path("examples/example_spresets.pxspr"), kAppID));
        QVERIFY(writeKeyedArchives(m_folder.path()));
    }

    void init()
    {
        m_home = m_folder.path("home/Quorvel/Plexa");
        QVERIFY(QDir().mkpath(m_home));
    }

    void cleanup() { QVERIFY(QDir(m_folder.path("home")).removeRecursively()); }

    void firstStart()
    {
        ScriptedAlerts alerts;
        PresetsStore store(alerts, m_fonts, places());
        store.readAll();
        QCOMPARE(alerts.complaints(), QStringList());
        QCOMPARE(namesOf(store.wPresets()), QStringList({u"Example"_s, u"Another"_s}));
        QCOMPARE(store.savingPresets().size(), std::size_t(1));
        QCOMPARE(store.quickWPreset()->name(), u"Quick Preset"_s);
        QCOMPARE(store.quickSavingPreset()->name(), u"Quick Preset"_s);
        QCOMPARE(files(), words(".lock SPresets.pxspr WPresets.pxwpr"));
    }

    void examplesOfTheProgram()
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
            QVERIFY2(literal.isEmpty() || literal.contains(QRegularExpression(u"\\S"_s)),
                     qPrintable(preset->name()));
            pictures += isPicture ? 1 : 0;
        }
        QVERIFY(pictures >= 2);
        QCOMPARE(store.savingPresets().size(), std::size_t(6));
        for (const auto &preset : store.savingPresets())
            QVERIFY2(preset->validPreset() && preset->supportedFileFormats().contains(preset->imageFormat()),
                     qPrintable(preset->name()));
    }

    void whatIsSavedIsRead()
    {
        ScriptedAlerts alerts;
        PresetsStore store(alerts, m_fonts, places());
        store.readAll();
        const auto savingPreset = std::make_shared<SavingPreset>();
        savingPreset->setName(u"Mine & <yours>"_s);
        store.savingPresetList().append({savingPreset});
        WPresetList presets = wPresets({u"One"_s});
        presets.front()->setAssignedSavingPreset(savingPreset);
        setWPresets(store, presets);
        store.quickWPreset()->setFontSize(77);
        store.quickSavingPreset()->setJpegQuality(66);
        for (const Slot slot : {Slot::List, Slot::Quick})
            QVERIFY(store.saveWPresets(slot) && store.saveSavingPresets(slot));

        PresetsStore again(alerts, m_fonts, places());
        again.readAll();
        QCOMPARE(namesOf(again.wPresets()), QStringList(u"One"_s));
        QCOMPARE(again.wPresets().front()->assignedSavingPreset().get(),
                 again.savingPresetWithID(savingPreset->presetID()).get());
        QCOMPARE(again.savingPresets().back()->name(), savingPreset->name());
        QCOMPARE(again.quickWPreset()->fontSize(), WholeNumber(77));
        QCOMPARE(again.quickSavingPreset()->jpegQuality(), 66);
        QCOMPARE(alerts.complaints(), QStringList());
    }

    void changedListsAreSaved()
    {
        using namespace std::chrono_literals;
        ScriptedAlerts alerts;
        const QString files[] = {path("WPresets.pxwpr"), path("SPresets.pxspr")};
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
        store.savingPresets().front()->setName(u"Web"_s);
        QCoreApplication::processEvents();
        QVERIFY(!QFile::exists(files[0]) && !QFile::exists(files[1]));
        store.saveChangedLists();
        QCOMPARE(savedNames(), u"Example New Preset Another Web"_s);
        store.wPresetList().move({1}, 0);
        store.saveChangedLists();
        store.savingPresetList().remove({0});
        store.saveChangedLists();
        QCOMPARE(savedNames(), u"New Preset Example Another"_s);

        // Without being asked, too.
        PresetsStore eager(alerts, m_fonts, places(), 1ms);
        eager.readAll();
        eager.wPresetList().remove({0, 1});
        QTRY_COMPARE(savedNames(), u"Another"_s);
        eager.wPresets().front()->setName(u"Edited"_s);
        QTRY_COMPARE(savedNames(), u"Edited"_s);
        QCOMPARE(alerts.complaints(), QStringList());
    }

    void aFailureIsToldOnce()
    {
        ScriptedAlerts alerts;
        PresetsStore store(alerts, m_fonts, places(), std::chrono::hours(24));
        store.readAll();
        const QString list = path("WPresets.pxwpr");
        for (int time = 0; time < 2; ++time) {
            QVERIFY(QFile::remove(list) && QDir().mkpath(list + u"/in the way"_s));
            alerts.expect(u"Cannot save the presets"_s);
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
        QVERIFY(QFile::remove(list) && QDir().mkpath(list + u"/in the way"_s));
        QVERIFY(!store.saveWPresets(Slot::List));
        store.saveChangedLists();
        QCOMPARE(alerts.complaints(), QStringList());
    }

    void removedSavingPresets()
    {
        ScriptedAlerts alerts;
        PresetsStore store(alerts, m_fonts, places());
        for (int i = 0; i < 3; ++i)
            store.savingPresetList().insertNew({});
        const SavingPresetList saving = store.savingPresets();
        store.wPresetList().append(wPresets({u"0"_s, u"1"_s, u"1"_s}));
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

    void unreadableLists()
    {
        const QString invalid = QStringLiteral(
            "The presets file is invalid and cannot be read. It will be replaced with a new file.");
        // Three times in a row: all three files are kept.
        for (int time = 1; time <= 3; ++time) {
            const QByteArray bad = "bad " + QByteArray::number(time);
            writeFile(path("SPresets.pxspr"), bad);
            writeFile(path("WPresets.pxwpr"), bad);
            ScriptedAlerts alerts;
            alerts.expect(kCannotRead);
            alerts.expect(kCannotRead);
            PresetsStore store(alerts, m_fonts, places());
            store.readAll();
            QCOMPARE(alerts.complaints(), QStringList());
            QVERIFY(store.wPresets().empty() && store.savingPresets().empty());
            const QString backup = path("SPresets-replaced.pxspr");
            QCOMPARE(alerts.shown().first().text,
                     time == 1
                         ? invalid + u" The original file backup has been saved in \"%1\"."_s.arg(backup)
                         : invalid);
            QVERIFY(store.saveSavingPresets(Slot::List) && store.saveWPresets(Slot::List));
            QVERIFY(store.saveSavingPresets(Slot::List)); // what is good is not moved
        }
        for (const char *name : {"SPresets-replaced%1.pxspr", "WPresets-replaced%1.pxwpr"}) {
            const QString pattern = path(QLatin1StringView(name));
            QCOMPARE(contentsOf(pattern.arg(QString())), QByteArray("bad 1"));
            QCOMPARE(contentsOf(pattern.arg(u"-2"_s)), QByteArray("bad 2"));
            QCOMPARE(contentsOf(pattern.arg(u"-3"_s)), QByteArray("bad 3"));
        }
        QCOMPARE(files().size(), 9);
        // The next start finds good lists.
        ScriptedAlerts alerts;
        PresetsStore store(alerts, m_fonts, places());
        store.readAll();
        QCOMPARE(alerts.complaints(), QStringList());
    }

    void laterVersion()
    {
        const QString later = m_folder.path("later.pxwpr");
        QVERIFY(QFile::copy(later, path("WPresets.pxwpr")));
        ScriptedAlerts alerts;
        alerts.expect(kCannotRead);
        PresetsStore store(alerts, m_fonts, places());
        store.readAll();
        QCOMPARE(alerts.complaints(), QStringList());
        QCOMPARE(alerts.shown().first().text,
                 QStringLiteral(
                     "The presets file is generated by a later application version and will be replaced. The "
                     "original file backup has been saved in \"%1\".")
                     .arg(path("WPresets-replaced.pxwpr")));
        QCOMPARE(namesOf(store.wPresets()), QStringList({u"Old"_s, u"Old"_s}));
        alerts.expect(kImportFailed);
        QVERIFY(!store.importPresetsFromFile(later, Kind::Watermark));
        QCOMPARE(alerts.shown().last().text,
                 u"The presets file was generated by a later application version."_s);
        QCOMPARE(store.wPresets().size(), std::size_t(2));
        QCOMPARE(alerts.complaints(), QStringList());
    }

    void whatIsNotReadIsKept_data()
    {
        const QByteArray some = contentsOf(m_folder.path("some.pxwpr"));
        const QByteArray later = contentsOf(m_folder.path("later.pxwpr"));
        const QByteArray laterSaving = savingPresetFile("1.5", "A", "filename");
        const QByteArray entity = savingPresetFile("1.4", "A", "copy&copy;");
        addRows<PartlyRead>({
            {"no preset in a list", "WPresets.pxwpr", some, "Old"},
            {"no preset", "QuickWPreset.pxwpr", some, "Old"},
            {"later version", "QuickWPreset.pxwpr", later, "Quick Preset"},
            {"damaged", "QuickWPreset.pxwpr", "bad", "Quick Preset"},
            {"damaged saving preset", "QuickSPreset.pxspr", "bad", "Quick Preset"},
            {"later list of saving presets", "SPresets.pxspr", laterSaving, "A"},
            {"later saving preset", "QuickSPreset.pxspr", laterSaving, "A"},
            {"unknown entity in a list", "SPresets.pxspr", entity, "A"},
            {"unknown entity", "QuickSPreset.pxspr", entity, "A"},
        });
    }

    void whatIsNotReadIsKept()
    {
        const auto [row, name, contents, preset] = currentRow<PartlyRead>();
        const QFileInfo info(name);
        const QString backup = path(info.completeBaseName() + u"-replaced%1."_s + info.suffix());
        writeFile(path(name), contents);
        writeFile(backup.arg(QString()), "of another time");
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
        QCOMPARE(contentsOf(backup.arg(u"-2"_s)), contents);
        QCOMPARE(contentsOf(backup.arg(QString())), QByteArray("of another time"));
        PresetsStore again(alerts, m_fonts, places());
        again.readAll();
        QVERIFY(isWatermark ? again.saveWPresets(slot) : again.saveSavingPresets(slot));
        QCOMPARE(files().filter(u"-replaced"_s).size(), 2);
        QCOMPARE(alerts.complaints(), QStringList());
    }

    /// One that was read, because references are read in all texts, but has no form in which it can be
    /// written.
    void presetsThatNoFileCanHold()
    {
        const QByteArray bad = savingPresetFile("1.4", "A", "R&amp;D");
        writeFile(path("SPresets.pxspr"), bad);
        writeFile(path("QuickSPreset.pxspr"), bad);
        ScriptedAlerts alerts;
        PresetsStore store(alerts, m_fonts, places());
        store.readAll();
        QVERIFY(store.importExamplePresets(Kind::Saving));
        alerts.expect(kCannotSaveAll);
        QVERIFY(store.saveSavingPresets(Slot::List));
        QVERIFY(!store.saveSavingPresets(Slot::Quick)); // the only one in its file, which stays as it is
        QCOMPARE(contentsOf(path("SPresets-replaced.pxspr")), bad);
        QCOMPARE(contentsOf(path("QuickSPreset.pxspr")), bad);
        PresetsStore again(alerts, m_fonts, places());
        again.readAll();
        QCOMPARE(namesOf(again.savingPresets()), QStringList(u"New Preset"_s));
        QCOMPARE(alerts.complaints(), QStringList());
        // Out of another file it was never in the list on the disk, of which no copy is made.
        const QString file = m_folder.path("import.pxspr");
        writeFile(file, bad);
        const auto imported = again.importPresetsFromFile(file, Kind::Saving);
        QVERIFY(imported && imported->count == 1 && imported->notes.join(u' ').contains(u"\"R&D\""));
        QVERIFY(again.saveSavingPresets(Slot::List));
        QCOMPARE(files().filter(u"-replaced"_s).size(), 1);
        // One that was edited has its former values there.
        again.savingPresets().front()->setFilenameTokens({u"a<b"_s});
        alerts.expect(kCannotSaveAll);
        QVERIFY(again.saveSavingPresets(Slot::List) && again.saveSavingPresets(Slot::List));
        QVERIFY(alerts.shown().last().text.contains(u"\"New Preset\" names files with \"a<b\""));
        QVERIFY(contentsOf(path("SPresets-replaced-2.pxspr")).contains("New Preset"));
        QCOMPARE(files().filter(u"-replaced"_s).size(), 2);
        QCOMPARE(alerts.complaints(), QStringList());
    }

    void importing()
    {
        ScriptedAlerts alerts;
        PresetsStore store(alerts, m_fonts, places());
        store.readAll();
        const auto savingPreset = store.savingPresets().front();
        WPresetList presets = wPresets({u"Imported"_s});
        presets.front()->setAssignedSavingPreset(savingPreset);
        const QString file = m_folder.path("import.pxwpr");
        QVERIFY(writeWPresets(presets, file));
        QVERIFY(store.importPresetsFromFile(file, Kind::Watermark));
        QCOMPARE(store.wPresets().back()->name(), u"Imported"_s);
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
        const QString bad = m_folder.path("bad.pxspr");
        writeFile(bad,
                  "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<savingPresets application=\"Quorvel Plexa\" "
                  "fileVersion=\"1.4\">\n<preset>\n<id>5000</id>\n</preset>\n</savingPresets>\n");
        for (const Kind kind : {Kind::Saving, Kind::Watermark}) {
            alerts.expect(kImportFailed);
            QVERIFY(!store.importPresetsFromFile(bad, kind));
            QCOMPARE(alerts.shown().last().text, u"The presets file has a wrong format."_s);
        }
        QCOMPARE(SavingPreset::lastUsedPresetID(), before);
        QCOMPARE(alerts.complaints(), QStringList());
    }

    void quickToStoredAndBack()
    {
        ScriptedAlerts alerts;
        PresetsStore store(alerts, m_fonts, places());
        QSignalSpy quickChanged(&store, &PresetsStore::quickWPresetChanged);
        const auto quick = store.quickWPreset();
        quick->setOpacity(33);
        store.saveQuickAsWPreset();
        QCOMPARE(store.wPresets().back()->name(), u"Saved Quick Preset"_s);
        QCOMPARE(store.wPresets().back()->opacity(), WholeNumber(33));
        QVERIFY(store.wPresets().back() != quick && quickChanged.isEmpty());

        const WPresetList stored = wPresets({u"Stored"_s});
        stored.front()->setAssignedSavingPreset(std::make_shared<SavingPreset>());
        store.loadWPreset(*stored.front());
        QCOMPARE(quickChanged.size(), 1);
        QVERIFY(store.quickWPreset() != quick && store.quickWPreset() != stored.front());
        QCOMPARE(store.quickWPreset()->name(), u"Quick Preset"_s);
        QVERIFY(!store.quickWPreset()->assignedSavingPreset() && stored.front()->assignedSavingPreset());
    }

    void migration_data()
    {
        addRows<Migration>({
            {"one file",
             words("WPresets.pxwpr other"),
             {},
             words("'WPresets - older backup.pxwpr' WPresets.pxwpr"),
             true},
            {"new files stay", words("SPresets.pxspr QuickWPreset.pxwpr"), words("SPresets.pxspr"),
             words("'QuickWPreset - older backup.pxwpr' QuickWPreset.pxwpr 'SPresets - older backup.pxspr' "
                   "SPresets.pxspr"),
             true},
            {"interrupted", words("WPresets.pxwpr"), words("'WPresets - older backup.pxwpr=WPresets.pxwpr'"),
             words("'WPresets - older backup.pxwpr' WPresets.pxwpr"), true},
            {"another backup there", words("SPresets.pxspr QuickSPreset.pxspr"),
             words("'SPresets - older backup.pxspr'"), words("'SPresets - older backup.pxspr'"), false},
            {"a pipe", words("WPresets.pxwpr=pipe SPresets.pxspr"), {}, {}, false},
        });
    }

    void migration()
    {
        const auto [name, old, now, expected, isOldFolderGone] = currentRow<Migration>();
        const QString oldFolder = m_folder.path("home/Quorvel Plexa 1");
        QVERIFY(QDir().mkpath(oldFolder));
        for (const QString &file : old) {
            if (file.endsWith(u"=pipe"))
                QCOMPARE(runProgram(u"mkfifo"_s, {oldFolder + u'/' + file.section(u'=', 0, 0)}).status, 0);
            else
                writeFile(oldFolder + u'/' + file, "old " + file.toUtf8());
        }
        for (const QString &file : now)
            writeFile(path(file.section(u'=', 0, 0)),
                      file.contains(u'=') ? "old " + file.section(u'=', 1).toUtf8() : QByteArray("new"));
        updateOldApplicationSupportDirectoryIfNeeded(m_home);
        QCOMPARE(files(), expected);
        QCOMPARE(QFileInfo::exists(oldFolder), !isOldFolderGone);
        for (const QString &file : now) {
            if (!file.contains(u'='))
                QCOMPARE(contentsOf(path(file)), QByteArray("new"));
        }
        if (isOldFolderGone && !now.contains(old.first()))
            QCOMPARE(contentsOf(path(old.first())), "old " + old.first().toUtf8());
    }

    void aFaultAtAnyCall_data()
    {
        QTest::addColumn<int>("kindOfFault");
        QTest::newRow("error") << static_cast<int>(Fault::Error);
        QTest::newRow("death") << static_cast<int>(Fault::Death);
    }

    void aFaultAtAnyCall()
    {
        QFETCH(int, kindOfFault);
        const WPresetList before = wPresets({u"before"_s});
        const WPresetList after = wPresets({u"after"_s, u"too"_s});
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
            QCOMPARE(files(), words(".lock SPresets.pxspr WPresets.pxwpr"));
        }
        QVERIFY(!isReached);
        QVERIFY2(outcomes[0] >= 3 && outcomes[1] >= 1, "the faults did not come where they should");
    }

    void firstStartsAtTheSameMoment()
    {
        for (int time = 0; time < 20; ++time) {
            // Every other time the list that is there is bad, so that it is moved aside and made anew.
            const bool isBad = time % 2 == 1;
            if (isBad)
                writeFile(path("WPresets.pxwpr"), "bad");
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

private:
    PresetsStore::Places places() const { return {path(), m_folder.path("examples")}; }
    QString path(const QString &name = {}) const { return QDir::cleanPath(m_home + u'/' + name); }
    QString path(const char *name) const { return path(QString::fromLatin1(name)); }
    QStringList files() const { return namesIn(m_home); }

    TestFolder m_folder;
    FontCatalog m_fonts;
    QString m_home;
};

QTEST_GUILESS_MAIN(PresetsStoreTest)
#include "presetsstore_test.moc"
