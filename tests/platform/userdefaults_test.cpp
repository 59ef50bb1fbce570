// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/testfolder.h"
#include "support/words.h"

#include <QtTest>

#include <limits>
#include <thread>
#include <vector>

using namespace plexa;
using namespace plexa::test;

namespace
{

const QString kKey = u"some key"_qs;

constexpr double kLargestFloat = double(std::numeric_limits<float>::max());

struct Read {
    Text name;
    QVariant value;
    bool asBool;
    qint64 asInteger;
    double asFloat;
    Text asString;
};

/// A stored text that is its own name.
Read textRow(const char *text, bool asBool, qint64 asInteger, double asFloat)
{
    return {*text ? text : "empty text", QString::fromLatin1(text), asBool, asInteger, asFloat, text};
}

struct Kept {
    Text name;
    QVariant value;
    QStringList asArray;
};

struct Pictures {
    Text name;
    QByteArray userDirs;
    const char *expected; ///< in the home folder
};

} // namespace

class UserDefaultsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TestFolder> m_folder;

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
        addRows<Read>({
            {"absent", {}, false, 0, 0, {}},
            textRow("YES", true, 0, 0),
            textRow("NO", false, 0, 0),
            textRow("true", true, 0, 0),
            textRow("false", false, 0, 0),
            textRow(" yes", true, 0, 0),
            textRow("1", true, 1, 1),
            textRow("0", false, 0, 0),
            textRow("-007", true, -7, -7),
            textRow("0.5", false, 0, 0.5),
            textRow("12 apples", true, 12, 12),
            textRow("apples 12", false, 0, 0),
            textRow(" +3.25e1x", true, 3, 32.5),
            textRow(".5", false, 0, 0.5),
            textRow("5.", true, 5, 5),
            textRow("0,5", false, 0, 0),
            textRow("0x10", false, 0, 0),
            textRow("nan", false, 0, 0),
            textRow("", false, 0, 0),
            textRow("99999999999999999999", true, kMost, 1e20),
            textRow("-99999999999999999999", true, kLeast, -1e20),
            textRow("1e999", true, 1, kLargestFloat),
            {"true value", true, true, 1, 1, u"1"_qs},
            {"false value", false, false, 0, 0, u"0"_qs},
            {"integer", -3, true, -3, -3, u"-3"_qs},
            {"fraction", 2.75, true, 2, 2.75, u"2.75"_qs},
            {"huge number", 1e300, true, kMost, kLargestFloat, u"1e+300"_qs},
            {"list", QStringList{u"1"_qs, u"2"_qs}, false, 0, 0, {}},
        });
    }
    void readers()
    {
        const auto row = currentRow<Read>();
        // Registered, or stored and not yet written, a value reads alike.
        for (const bool stored : {false, true}) {
            UserDefaults defaults(u"Maker"_qs, u"Program"_qs);
            if (stored)
                defaults.setObject(kKey, row.value);
            else
                defaults.registerDefaults({{kKey, row.value}});
            QCOMPARE(defaults.boolForKey(kKey), row.asBool);
            QCOMPARE(defaults.integerForKey(kKey), row.asInteger);
            QCOMPARE(defaults.floatForKey(kKey), float(row.asFloat));
            QCOMPARE(defaults.stringForKey(kKey), row.asString);
        }
    }

    void storedOverRegistered()
    {
        UserDefaults defaults(u"Maker"_qs, u"Program"_qs);
        defaults.registerDefaults({{kKey, u"YES"_qs}});
        QVERIFY(defaults.boolForKey(kKey));
        defaults.setObject(kKey, false);
        QVERIFY(!defaults.boolForKey(kKey));
        defaults.registerDefaults({{kKey, u"YES"_qs}});
        QVERIFY(!defaults.boolForKey(kKey));
        defaults.removeObjectForKey(kKey);
        QVERIFY(defaults.boolForKey(kKey));
    }

    void survivesTheProgram_data()
    {
        const QStringList several{{}, u"\u00e9 \u6c34"_qs, u"@x"_qs};
        addRows<Kept>({{"no element", QStringList(), {}},
                       {"one", QStringList{u"a, \"b\"; c=\\d"_qs}, {u"a, \"b\"; c=\\d"_qs}},
                       {"several", several, several},
                       {"untyped list", QVariantList{u"a"_qs, u"b"_qs}, words("a b")},
                       {"text", u" /home/x, y/ "_qs, {u" /home/x, y/ "_qs}},
                       {"number", 0.5, {u"0.5"_qs}}});
    }
    void survivesTheProgram()
    {
        const auto [row, value, asArray] = currentRow<Kept>();
        {
            UserDefaults defaults(u"Maker"_qs, u"Program"_qs);
            defaults.registerDefaults({{kKey, QStringList{u"registered"_qs}}});
            defaults.setObject(kKey, value);
            QVERIFY(defaults.synchronize());
        }
        // Within one process the values come from memory unless the file has changed.
        QFile file(m_folder->path("config/Maker/Program.conf"));
        QVERIFY(file.open(QIODevice::Append));
        file.write("\n");
        file.close();
        UserDefaults again(u"Maker"_qs, u"Program"_qs);
        again.registerDefaults({{kKey, QStringList{u"registered"_qs}}});
        QCOMPARE(again.stringArrayForKey(kKey), asArray);
        if (value.typeId() == QMetaType::Double)
            QCOMPARE(again.floatForKey(kKey), value.toFloat());
    }

    void unwritable()
    {
        // A file where the folder should be: nothing can be stored, also not by the superuser.
        QVERIFY(writeFile(m_folder->path("config"), {}));
        UserDefaults defaults(u"Maker"_qs, u"Program"_qs);
        defaults.setObject(kKey, 1);
        QVERIFY(!defaults.synchronize());
        QCOMPARE(defaults.integerForKey(kKey), 1);
    }

    void savingDirectory_data()
    {
        addRows<Pictures>({{"the user's folder", "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n", "Bilder/Plexa"},
                           {"not configured", {}, "Pictures/Plexa"},
                           {"disabled", "XDG_PICTURES_DIR=\"$HOME/\"\n", "Pictures"}});
    }
    void savingDirectory()
    {
        const auto [row, userDirs, expected] = currentRow<Pictures>();
        QVERIFY(writeFile(qEnvironmentVariable("XDG_CONFIG_HOME") + u"/user-dirs.dirs"_qs, userDirs));
        UserDefaults defaults(u"Maker"_qs, u"Program"_qs);
        registerDefaults(defaults);
        QCOMPARE(defaults.stringForKey(settings::savingDirectory),
                 QDir::home().filePath(QLatin1String(expected)));
    }

    void threads()
    {
        UserDefaults defaults(u"Maker"_qs, u"Program"_qs);
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
};

QTEST_GUILESS_MAIN(UserDefaultsTest)
#include "userdefaults_test.moc"
