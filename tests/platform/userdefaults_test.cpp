// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/testenvironment.h"

#include <QtTest>

#include <limits>
#include <thread>
#include <vector>

using namespace plexa;
using namespace plexa::test;

namespace
{

const QString kMaker = u"Maker"_qs;
const QString kProgram = u"Program"_qs;
const QString kKey = u"some key"_qs;

using Reading = Row<QVariant, bool, qint64, double, QString>; // value, asBool, asInteger, asFloat, asString
using Stored = Row<QVariant, QStringList>;                    // value, asArray

} // namespace

class UserDefaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<TestFolder>();
        QVERIFY(m_folder->isValid());
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_folder->path("config"));
    }

    void readers_data()
    {
        constexpr qint64 kMost = std::numeric_limits<qint64>::max();
        constexpr qint64 kLeast = std::numeric_limits<qint64>::min();
        constexpr double kHuge = std::numeric_limits<float>::max();
        const auto text = [](const char *text, bool truth, qint64 integer, double decimal) {
            const QString value = QString::fromLatin1(text);
            addRow(Reading{*text ? text : "empty text", value, truth, integer, decimal, value});
        };
        text("YES", true, 0, 0);
        text("NO", false, 0, 0);
        text("true", true, 0, 0);
        text(" yes", true, 0, 0);
        text("0", false, 0, 0);
        text("-007", true, -7, -7);
        text("12 apples", true, 12, 12);
        text("apples 12", false, 0, 0);
        text(" +3.25e1x", true, 3, 32.5);
        text(".5", false, 0, 0.5);
        text("5.", true, 5, 5);
        text("0,5", false, 0, 0);
        text("0x10", false, 0, 0);
        text("nan", false, 0, 0);
        text("", false, 0, 0);
        text("99999999999999999999", true, kMost, 1e20);
        text("-99999999999999999999", true, kLeast, -1e20);
        text("1e999", true, 1, kHuge);
        addRows<Reading>({{"absent", {}, false, 0, 0, {}},
                          {"true value", true, true, 1, 1, u"1"_qs},
                          {"false value", false, false, 0, 0, u"0"_qs},
                          {"integer", -3, true, -3, -3, u"-3"_qs},
                          {"fraction", 2.75, true, 2, 2.75, u"2.75"_qs},
                          {"huge number", 1e300, true, kMost, kHuge, u"1e+300"_qs},
                          {"list", QStringList{u"1"_qs, u"2"_qs}, false, 0, 0, {}}});
    }
    void readers()
    {
        const auto [row, value, asBool, asInteger, asFloat, asString] = currentRow<Reading>();
        // Registered, or stored and not yet written, a value reads alike.
        for (const bool stored : {false, true}) {
            UserDefaults defaults(kMaker, kProgram);
            if (stored)
                defaults.setObject(kKey, value);
            else
                defaults.registerDefaults({{kKey, value}});
            QCOMPARE(defaults.boolForKey(kKey), asBool);
            QCOMPARE(defaults.integerForKey(kKey), asInteger);
            QCOMPARE(defaults.floatForKey(kKey), float(asFloat));
            QCOMPARE(defaults.stringForKey(kKey), asString);
        }
    }

    void storedOverRegistered()
    {
        UserDefaults defaults(kMaker, kProgram);
        defaults.registerDefaults({{kKey, u"YES"_qs}});
        QVERIFY(defaults.boolForKey(kKey));
        defaults.setObject(kKey, false);
        QVERIFY(!defaults.boolForKey(kKey));
        defaults.registerDefaults({{kKey, u"YES"_qs}});
        QVERIFY(!defaults.boolForKey(kKey));
        defaults.setObject(kKey, {});
        QVERIFY(defaults.boolForKey(kKey));
    }

    void survivesTheProgram_data()
    {
        const QStringList one{u"a, \"b\"; c=\\d"_qs};
        const QStringList several{QString(), u"\u00e9 \u6c34"_qs, u"@x"_qs};
        addRows<Stored>({{"no element", QStringList(), {}},
                         {"one", one, one},
                         {"several", several, several},
                         {"untyped list", QVariantList{u"a"_qs, u"b"_qs}, {u"a"_qs, u"b"_qs}},
                         {"text", u" /home/x, y/ "_qs, {u" /home/x, y/ "_qs}},
                         {"number", 0.5, {u"0.5"_qs}}});
    }
    void survivesTheProgram()
    {
        const auto [row, value, asArray] = currentRow<Stored>();
        {
            UserDefaults defaults(kMaker, kProgram);
            defaults.registerDefaults({{kKey, QStringList{u"registered"_qs}}});
            defaults.setObject(kKey, value);
            QVERIFY(defaults.synchronize());
        }
        // Within one process the values come from memory unless the file has changed.
        QFile file(m_folder->path("config/Maker/Program.conf"));
        QVERIFY(file.open(QIODevice::Append));
        file.write("\n");
        file.close();
        UserDefaults again(kMaker, kProgram);
        again.registerDefaults({{kKey, QStringList{u"registered"_qs}}});
        QCOMPARE(again.stringArrayForKey(kKey), asArray);
        if (value.typeId() == QMetaType::Double)
            QCOMPARE(again.floatForKey(kKey), value.toFloat());
    }

    void unwritable()
    {
        // A file where the folder should be: nothing can be stored, also not by the superuser.
        QVERIFY(writeFile(m_folder->path("config"), {}));
        UserDefaults defaults(kMaker, kProgram);
        defaults.setObject(kKey, 1);
        QVERIFY(!defaults.synchronize());
        QCOMPARE(defaults.integerForKey(kKey), 1);
    }

    void savingDirectory()
    {
        for (const auto &[userDirs, expected] :
             {std::pair("XDG_PICTURES_DIR=\"$HOME/Bilder\"\n", "Bilder/Plexa"),
              std::pair("", "Pictures/Plexa"), std::pair("XDG_PICTURES_DIR=\"$HOME/\"\n", "Pictures")}) {
            QVERIFY(writeFile(qEnvironmentVariable("XDG_CONFIG_HOME") + u"/user-dirs.dirs"_qs, userDirs));
            UserDefaults defaults(kMaker, kProgram);
            registerDefaults(defaults);
            QCOMPARE(defaults.stringForKey(settings::savingDirectory),
                     QDir::home().filePath(QLatin1String(expected)));
        }
    }

    void defaultsOfAllSettings()
    {
        UserDefaults defaults(kMaker, kProgram);
        registerDefaults(defaults);
        QStringList on;
#define PLEXA_KEY(name, value) settings::name,
        for (const QLatin1String key : {PLEXA_SETTINGS(PLEXA_KEY)}) {
            if (defaults.boolForKey(key))
                on.append(key);
        }
#undef PLEXA_KEY
        QCOMPARE(defaults.integerForKey(settings::runNumber), 0);
        QCOMPARE(defaults.integerForKey(settings::lastUsedMode), 0);
        QCOMPARE(on, QStringList({u"imageListIsInBrowserMode"_qs, u"imageBrowserShowsNames"_qs,
                                  u"watermarksOnThumbnails"_qs, u"saveAllToOneDirectory"_qs,
                                  u"exportPreserveOriginalFileCreationDate"_qs, u"askForMASReview"_qs,
                                  u"askForFeedback"_qs, u"checksForUpdates"_qs}));
        QCOMPARE(defaults.floatForKey(settings::imageBrowserZoomFactor), 0.5F);
        QCOMPARE(defaults.stringForKey(settings::lastMetadataPanelTabID), u"General"_qs);
        QCOMPARE(defaults.stringForKey(settings::replicationStartDirectory), QString());
    }

    void threads()
    {
        UserDefaults defaults(kMaker, kProgram);
        registerDefaults(defaults);
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&defaults, i] {
                const QString key = QString::number(i);
                for (int n = 1; n <= 100; ++n) {
                    defaults.setObject(key, defaults.integerForKey(key) + 1);
                    defaults.floatForKey(settings::imageBrowserZoomFactor);
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        for (int i = 0; i < 4; ++i)
            QCOMPARE(defaults.integerForKey(QString::number(i)), 100);
    }

private:
    std::unique_ptr<TestFolder> m_folder;
};

QTEST_GUILESS_MAIN(UserDefaultsTest)
#include "userdefaults_test.moc"
