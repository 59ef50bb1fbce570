// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/fontcatalog.h"
#include "presets/presetsmigration.h"
#include "presets/presetsstore.h"
#include "presets/wpresetarchive.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/keyedarchives.h"
#include "support/scriptedalerts.h"
#include "support/testenvironment.h"
#include "watermark/texttokens.h"

#include <QtTest>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::StringLiterals;

namespace
{

using Kind = PresetsStore::Kind;
using Slot = PresetsStore::Slot;

const QString kCannotRead = u"Cannot read the presets file"_s;

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
    store.wPresetList().remove({0, 1, 2}); // rows that do not exist are ignored
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

} // namespace

class PresetsStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QDir().mkpath(m_examples));
        QVERIFY(writeWPresets(wPresets(words("Example Another")),
                              m_folder.path("examples/example_wpresets.pxwpr")));
        QVERIFY(SavingPreset::writeObjects({std::make_shared<SavingPreset>()},
                                           m_folder.path("examples/example_spresets.pxspr"),
                                           u"Quorvel Plexa"_s));
        QVERIFY(writeKeyedArchives(m_folder.path()));
    }

    void init()
    {
        m_home = m_folder.path("home/Quorvel/Plexa");
        QVERIFY(QDir().mkpath(m_home));
        m_alerts.emplace();
    }

    void cleanup()
    {
        QCOMPARE(m_alerts->complaints(), QStringList());
        QVERIFY(QDir(m_folder.path("home")).removeRecursively());
    }

    void examplesOfTheProgram_data()
    {
        addRows<Row<QString>>({{"in English", u":/plexa/presets"_s}, {"in German", u":/plexa/presets-de"_s}});
    }
    void examplesOfTheProgram()
    {
        m_examples = std::get<1>(currentRow<Row<QString>>());
        const auto store = start();
        m_examples = m_folder.path("examples");
        int pictures = 0;
        for (const auto &preset : store->wPresets()) {
            const bool isPicture = preset->type() == QLatin1StringView("Image");
            QVERIFY2(isPicture ? !preset->image().svg().isEmpty() : !preset->textTokens().isEmpty(),
                     qPrintable(preset->name()));
            pictures += isPicture ? 1 : 0;
        }
        QVERIFY(pictures >= 2 && store->wPresets().size() >= 10);
        QCOMPARE(store->savingPresets().size(), std::size_t(6));
        for (const auto &preset : store->savingPresets())
            QVERIFY2(preset->validPreset() && preset->supportedFileFormats().contains(preset->imageFormat()),
                     qPrintable(preset->name()));
    }

    void fromTheFirstStartToTheNext()
    {
        const auto store = start();
        QCOMPARE(namesOf(store->wPresets()), words("Example Another"));
        QCOMPARE(store->savingPresets().size(), std::size_t(1));
        QCOMPARE(store->quickWPreset()->name(), u"Quick Preset"_s);
        QCOMPARE(store->quickSavingPreset()->name(), u"Quick Preset"_s);
        QCOMPARE(files(), words(".lock SPresets.pxspr WPresets.pxwpr"));

        const auto savingPreset = std::make_shared<SavingPreset>();
        savingPreset->setName(u"Mine & <yours>"_s);
        store->savingPresetList().append({savingPreset});
        WPresetList presets = wPresets(words("One"));
        presets.front()->setAssignedSavingPreset(savingPreset);
        setWPresets(*store, presets);
        store->quickWPreset()->setFontSize(77);
        store->quickSavingPreset()->setJpegQuality(66);
        for (const Slot slot : {Slot::List, Slot::Quick})
            QVERIFY(store->saveWPresets(slot) && store->saveSavingPresets(slot));

        const auto again = start();
        QCOMPARE(namesOf(again->wPresets()), words("One"));
        QCOMPARE(again->wPresets().front()->assignedSavingPreset().get(),
                 again->savingPresetWithID(savingPreset->presetID()).get());
        QCOMPARE(again->savingPresets().back()->name(), savingPreset->name());
        QCOMPARE(again->quickWPreset()->fontSize(), WholeNumber(77));
        QCOMPARE(again->quickSavingPreset()->jpegQuality(), 66);
    }

    void changedListsAreSaved()
    {
        const QStringList unsaved = words(".lock");
        const auto savedNames = [&] {
            const auto saved = start();
            return QStringList(namesOf(saved->wPresets()) + namesOf(saved->savingPresets())).join(u' ');
        };
        const auto store = start(std::chrono::hours(24));
        QVERIFY(QFile::remove(path("WPresets.pxwpr")) && QFile::remove(path("SPresets.pxspr")));
        store->saveChanges(); // nothing has changed
        QCOMPARE(files(), unsaved);
        store->wPresetList().insertNew({0});
        store->savingPresets().front()->setName(u"Web"_s);
        QCoreApplication::processEvents();
        QCOMPARE(files(), unsaved);
        store->saveChanges();
        QCOMPARE(savedNames(), u"Example New Preset Another Web"_s);
        store->wPresetList().move({1}, 0);
        store->saveChanges();
        store->savingPresetList().remove({0});
        store->saveChanges();
        QCOMPARE(savedNames(), u"New Preset Example Another"_s);

        // The timer saves them, too.
        const auto eager = start(std::chrono::milliseconds(1));
        eager->wPresetList().remove({0, 1});
        QTRY_COMPARE(savedNames(), u"Another"_s);
        eager->wPresets().front()->setName(u"Edited"_s);
        QTRY_COMPARE(savedNames(), u"Edited"_s);
        eager->quickWPreset()->setOpacity(41);
        QTRY_COMPARE(start()->quickWPreset()->opacity(), 41);
        eager->quickSavingPreset()->setJpegQuality(91);
        QTRY_COMPARE(start()->quickSavingPreset()->jpegQuality(), 91);
        eager->loadWPreset(*eager->wPresets().front());
        QTRY_COMPARE(start()->quickWPreset()->opacity(), 100);
    }

    void aFailureIsReportedOnce()
    {
        const auto store = start(std::chrono::hours(24));
        const QString list = path("WPresets.pxwpr");
        for (int time = 0; time < 2; ++time) {
            QVERIFY(QFile::remove(list) && QDir().mkpath(list + u"/in the way"_s));
            m_alerts->expect(u"Cannot save the presets"_s);
            for (int edit = 0; edit < 3; ++edit) {
                store->wPresetList().insertNew({});
                store->saveChanges();
            }
            QVERIFY(m_alerts->shown().last().text.contains(list));
            // It is tried again, and a failure after a success is another one.
            QVERIFY(QDir(list).removeRecursively());
            store->saveChanges();
            QVERIFY(QFileInfo(list).isFile());
        }
        // A caller that gets the failure reports it.
        QVERIFY(QFile::remove(list) && QDir().mkpath(list + u"/in the way"_s));
        QVERIFY(!store->saveWPresets(Slot::List));
        store->saveChanges();
        // All that fail at a time are in one message.
        const QStringList quick{path("QuickWPreset.pxwpr"), path("QuickSPreset.pxspr")};
        QVERIFY(QDir().mkpath(quick[0] + u"/in the way"_s) && QDir().mkpath(quick[1] + u"/in the way"_s));
        m_alerts->expect(u"Cannot save the presets"_s);
        store->saveAll();
        for (const QString &file : quick)
            QVERIFY(m_alerts->shown().last().text.contains(file));
    }

    void removedSavingPresets()
    {
        const auto store = start();
        store->savingPresetList().insertNew({});
        store->savingPresetList().insertNew({});
        const SavingPresetList saving = store->savingPresets();
        setWPresets(*store, wPresets(words("0 1 1")));
        const WPresetList &marks = store->wPresets();
        marks[0]->setAssignedSavingPreset(saving[0]);
        marks[1]->setAssignedSavingPreset(saving[1]);
        marks[2]->setAssignedSavingPreset(saving[1]);
        store->quickWPreset()->setAssignedSavingPreset(saving[2]);
        store->savingPresetList().remove({1, 2});
        QCOMPARE(marks[0]->assignedSavingPreset().get(), saving[0].get());
        QVERIFY(!marks[1]->assignedSavingPreset() && !marks[2]->assignedSavingPreset());
        QVERIFY(!store->quickWPreset()->assignedSavingPreset());
    }

    /// They are moved away at once, so that the next start finds a good list.
    void unreadableLists()
    {
        const QString invalid =
            u"The presets file is invalid and cannot be read. It will be replaced with a new file."_s;
        const QString later =
            u"The presets file is generated by a later application version and will be replaced."_s;
        const QString backup = path("WPresets-replaced.pxwpr");
        for (const auto &[contents, reason] :
             {std::pair(QByteArray("bad"), invalid), {contentsOf(m_folder.path("later.pxwpr")), later}}) {
            QVERIFY(writeFile(path("WPresets.pxwpr"), contents));
            m_alerts->expect(kCannotRead);
            start();
            QCOMPARE(m_alerts->shown().last().text,
                     reason + u" The original file backup has been saved in \"%1\"."_s.arg(backup));
            QCOMPARE(contentsOf(backup), contents);
            QCOMPARE(start()->wPresets().size(), std::size_t(2)); // the examples
            QVERIFY(QFile::remove(backup));
        }
    }

    /// Backups of other times stay, too.
    void whatIsNotReadIsKept()
    {
        const QByteArray some = contentsOf(m_folder.path("some.pxwpr"));
        const QByteArray later = contentsOf(m_folder.path("later.pxwpr"));
        const QByteArray laterSaving = savingPresetFile("1.5", "A", "filename");
        const QByteArray entity = savingPresetFile("1.4", "A", "copy&copy;");
        using Row = std::tuple<Text, QByteArray, Text, Text>; // file, contents, names that are read, alert
        for (const auto &[name, contents, presets, alert] :
             std::initializer_list<Row>{{"WPresets.pxwpr", "bad", "", kCannotRead},
                                        {"SPresets.pxspr", "bad", "", kCannotRead},
                                        {"WPresets.pxwpr", later, "Old Old", kCannotRead},
                                        {"WPresets.pxwpr", some, "Old", ""},
                                        {"QuickWPreset.pxwpr", some, "Old", ""},
                                        {"QuickWPreset.pxwpr", "bad", "Quick Preset", ""},
                                        {"QuickSPreset.pxspr", laterSaving, "A", ""},
                                        {"SPresets.pxspr", entity, "A", ""}}) {
            cleanup();
            init();
            const QFileInfo info(name);
            const QString backup = path(info.completeBaseName() + u"-replaced%1."_s + info.suffix());
            writeFile(path(name), contents);
            for (const QString &number : {QString(), u"-2"_s})
                writeFile(backup.arg(number), "of another time");
            if (!alert.isEmpty())
                m_alerts->expect(alert);
            const auto store = start();
            QVERIFY(alert.isEmpty() || !m_alerts->shown().last().text.contains(u"saved in"));
            QCOMPARE(contentsOf(path(name)), contents);
            const Slot slot = name.startsWith(u'Q') ? Slot::Quick : Slot::List;
            const bool isWatermark = name.endsWith(QLatin1StringView("pxwpr"));
            const QStringList stored =
                isWatermark ? namesOf(store->wPresets()) : namesOf(store->savingPresets());
            const QString quick =
                isWatermark ? store->quickWPreset()->name() : store->quickSavingPreset()->name();
            QCOMPARE(slot == Slot::List ? stored.join(u' ') : quick, presets);
            const auto save = [slot, isWatermark](PresetsStore &of) {
                return (isWatermark ? of.saveWPresets(slot) : of.saveSavingPresets(slot)).has_value();
            };
            // Once, before the first time that something would get lost.
            QVERIFY(save(*store) && save(*store));
            QVERIFY(contentsOf(path(name)) != contents);
            QCOMPARE(contentsOf(backup.arg(u"-3"_s)), contents);
            for (const QString &number : {QString(), u"-2"_s})
                QCOMPARE(contentsOf(backup.arg(number)), QByteArray("of another time"));
            QVERIFY(save(*start()));
            QCOMPARE(files().filter(u"-replaced"_s).size(), 3);
        }
    }

    void tokensWithMarkup()
    {
        const QByteArray both = savingPresetFile("1.4", "A", "Smith &amp; &lt;Sons>-");
        writeFile(path("SPresets.pxspr"), both);
        writeFile(path("QuickSPreset.pxspr"), both);
        const QStringList tokens{u"Smith & <Sons>-"_s};
        for (int time = 0; time < 2; ++time) {
            const auto store = start();
            QCOMPARE(store->savingPresets().front()->filenameTokens(), tokens);
            QCOMPARE(store->quickSavingPreset()->filenameTokens(), tokens);
            store->saveAll();
            QVERIFY(store->saveSavingPresets(Slot::List));
        }
        QCOMPARE(files().filter(u"-replaced"_s), QStringList());
    }

    void importing()
    {
        const auto store = start();
        WPresetList presets = wPresets(words("Imported"));
        presets.front()->setAssignedSavingPreset(store->savingPresets().front());
        const QString file = m_folder.path("import.pxwpr");
        QVERIFY(writeWPresets(presets, file));
        QVERIFY(store->importPresetsFromFile(file, Kind::Watermark));
        QVERIFY(!store->wPresets().back()->assignedSavingPreset());
        QVERIFY(store->importExamplePresets(Kind::Watermark));
        QCOMPARE(namesOf(store->wPresets()), words("Example Another Imported Example Another"));

        QVERIFY(store->importExamplePresets(Kind::Saving) && store->importExamplePresets(Kind::Saving));
        QSet<qint64> ids;
        for (const auto &preset : store->savingPresets())
            ids.insert(preset->presetID());
        QCOMPARE(ids.size(), 3);

        const qint64 before = SavingPreset::lastUsedPresetID();
        const QString bad = m_folder.path("bad.pxspr"); // its first preset has an ID, and lacks the rest
        writeFile(bad, savingPresetFile("1.4", "A", "").replace("<id>1", "<id>5000").replace("quality", "q"));
        const QString wrong = u"The presets file has a wrong format."_s;
        const QString isLater = u"The presets file was generated by a later application version."_s;
        for (const auto &[path, kind, text] : {std::tuple(bad, Kind::Saving, wrong),
                                               {bad, Kind::Watermark, wrong},
                                               {m_folder.path("later.pxwpr"), Kind::Watermark, isLater}}) {
            m_alerts->expect(u"Presets import failed"_s);
            QVERIFY(!store->importPresetsFromFile(path, kind));
            QCOMPARE(m_alerts->shown().last().text, text);
        }
        QCOMPARE(SavingPreset::lastUsedPresetID(), before);
        QCOMPARE(store->wPresets().size(), std::size_t(5));
    }

    void quickToStoredAndBack()
    {
        PresetsStore store(*m_alerts, m_fonts, {m_home, m_examples});
        QSignalSpy quickChanged(&store, &PresetsStore::quickWPresetChanged);
        const auto quick = store.quickWPreset();
        quick->setOpacity(33);
        store.saveQuickAsWPreset();
        QCOMPARE(store.wPresets().back()->name(), u"Saved Quick Preset"_s);
        QCOMPARE(store.wPresets().back()->opacity(), WholeNumber(33));
        QVERIFY(store.wPresets().back() != quick && quickChanged.isEmpty());

        const WPresetList stored = wPresets(words("Stored"));
        stored.front()->setAssignedSavingPreset(std::make_shared<SavingPreset>());
        store.loadWPreset(*stored.front());
        QCOMPARE(quickChanged.size(), 1);
        QVERIFY(store.quickWPreset() != quick && store.quickWPreset() != stored.front());
        QCOMPARE(store.quickWPreset()->name(), u"Quick Preset"_s);
        QVERIFY(!store.quickWPreset()->assignedSavingPreset() && stored.front()->assignedSavingPreset());
    }

    void migration()
    {
        using Row = std::tuple<QStringList, QStringList, QStringList, bool>;
        for (const auto &[old, now, expected, isOldFolderGone] : std::initializer_list<Row>{
                 {words("WPresets.pxwpr=w other=o"),
                  {},
                  words("'WPresets - older backup.pxwpr=w' WPresets.pxwpr=w"),
                  true},
                 {words("SPresets.pxspr=s QuickWPreset.pxwpr=q"), words("SPresets.pxspr=new"),
                  words("'QuickWPreset - older backup.pxwpr=q' QuickWPreset.pxwpr=q "
                        "'SPresets - older backup.pxspr=s' SPresets.pxspr=new"),
                  true},
                 {words("WPresets.pxwpr=w"), words("'WPresets - older backup.pxwpr=w'"),
                  words("'WPresets - older backup.pxwpr=w' WPresets.pxwpr=w"), true},
                 {words("SPresets.pxspr=s QuickSPreset.pxspr=q"), words("'SPresets - older backup.pxspr=a'"),
                  words("'SPresets - older backup.pxspr=a'"), false},
                 {words("WPresets.pxwpr=pipe SPresets.pxspr=s"), {}, {}, false}}) {
            cleanup();
            init();
            const auto write = [](const QStringList &files, const QString &folder) {
                for (const QString &file : files) {
                    const QString path = folder + u'/' + file.section(u'=', 0, 0);
                    if (file.endsWith(u"=pipe"))
                        QCOMPARE(runProgram(u"mkfifo"_s, {path}).status, 0);
                    else
                        QVERIFY(writeFile(path, file.section(u'=', 1).toUtf8()));
                }
            };
            const QString oldFolder = m_folder.path("home/Quorvel Plexa 1");
            QVERIFY(QDir().mkpath(oldFolder));
            write(old, oldFolder);
            write(now, m_home);
            updateOldApplicationSupportDirectoryIfNeeded(m_home);
            QStringList found = files();
            for (QString &file : found)
                file += u'=' + QString::fromUtf8(contentsOf(path(file)));
            QCOMPARE(found, expected);
            QCOMPARE(QFileInfo::exists(oldFolder), !isOldFolderGone);
        }
    }

private:
    /// A store of the program's folder that has read all files.
    std::unique_ptr<PresetsStore> start(std::chrono::milliseconds saveDelay = std::chrono::seconds(1))
    {
        auto store = std::make_unique<PresetsStore>(*m_alerts, m_fonts,
                                                    PresetsStore::Places{m_home, m_examples}, saveDelay);
        store->readAll();
        return store;
    }
    QString path(const QString &name) const { return m_home + u'/' + name; }
    QString path(const char *name) const { return path(QString::fromLatin1(name)); }
    QStringList files() const { return namesIn(m_home); }

    TestFolder m_folder;
    FontCatalog m_fonts;
    QString m_home;
    QString m_examples = m_folder.path("examples");
    std::optional<ScriptedAlerts> m_alerts;
};

QTEST_GUILESS_MAIN(PresetsStoreTest)
#include "presetsstore_test.moc"
