// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "support/files.h"
#include "support/testenvironment.h"

#include <QtTest>

#include <limits>
#include <thread>
#include <vector>

using namespace plexa;

namespace
{

const QString kMaker = u"Maker"_qs;
const QString kProgram = u"Program"_qs;
const QString kKey = u"some key"_qs;

} // namespace

class UserDefaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<test::TestFolder>();
        QVERIFY(m_folder->isValid());
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_folder->path("config"));
    }

    void readers_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("asBool");
        QTest::addColumn<qint64>("asInteger");
        QTest::addColumn<float>("asFloat");
        QTest::addColumn<QString>("asString");
        const auto row = [](const char *name, const QVariant &value, bool truth, qint64 integer,
                            double decimal, const QString &text) {
            QTest::newRow(name) << value << truth << integer << float(decimal) << text;
        };
        const auto textRow = [&row](const char *text, bool truth, qint64 integer, double decimal) {
            row(*text ? text : "empty text", QString::fromLatin1(text), truth, integer, decimal,
                QString::fromLatin1(text));
        };
        constexpr qint64 kMost = std::numeric_limits<qint64>::max();
        constexpr qint64 kLeast = std::numeric_limits<qint64>::min();
        row("absent", {}, false, 0, 0, {});
        textRow("YES", true, 0, 0);
        textRow("NO", false, 0, 0);
        textRow("true", true, 0, 0);
        textRow("false", false, 0, 0);
        textRow(" yes", true, 0, 0);
        textRow("1", true, 1, 1);
        textRow("0", false, 0, 0);
        textRow("-007", true, -7, -7);
        textRow("0.5", false, 0, 0.5);
        textRow("12 apples", true, 12, 12);
        textRow("apples 12", false, 0, 0);
        textRow(" +3.25e1x", true, 3, 32.5);
        textRow(".5", false, 0, 0.5);
        textRow("5.", true, 5, 5);
        textRow("0,5", false, 0, 0);
        textRow("0x10", false, 0, 0);
        textRow("nan", false, 0, 0);
        textRow("", false, 0, 0);
        textRow("99999999999999999999", true, kMost, 1e20);
        textRow("-99999999999999999999", true, kLeast, -1e20);
        textRow("1e999", true, 1, double(std::numeric_limits<float>::max()));
        row("true value", true, true, 1, 1, u"1"_qs);
        row("false value", false, false, 0, 0, u"0"_qs);
        row("integer", -3, true, -3, -3, u"-3"_qs);
        row("fraction", 2.75, true, 2, 2.75, u"2.75"_qs);
        row("huge number", 1e300, true, kMost, double(std::numeric_limits<float>::max()), u"1e+300"_qs);
        row("list", QStringList{u"1"_qs, u"2"_qs}, false, 0, 0, {});
    }

    void readers()
    {
        QFETCH(QVariant, value);
        // Registered, or stored and not yet written, a value reads alike.
        for (const bool stored : {false, true}) {
            UserDefaults defaults(kMaker, kProgram);
            if (stored)
                defaults.setObject(kKey, value);
            else
                defaults.registerDefaults({{kKey, value}});
            QTEST(defaults.boolForKey(kKey), "asBool");
            QTEST(defaults.integerForKey(kKey), "asInteger");
            QTEST(defaults.floatForKey(kKey), "asFloat");
            QTEST(defaults.stringForKey(kKey), "asString");
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
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QStringList>("asArray");
        const auto row = [](const char *name, const QStringList &list) {
            QTest::newRow(name) << QVariant(list) << list;
        };
        row("no element", {});
        row("one", {u"a, \"b\"; c=\\d"_qs});
        row("several", {QString(), u"\u00e9 \u6c34"_qs, u"@x"_qs});
        QTest::newRow("untyped list")
            << QVariant(QVariantList{u"a"_qs, u"b"_qs}) << QStringList{u"a"_qs, u"b"_qs};
        QTest::newRow("text") << QVariant(u" /home/x, y/ "_qs) << QStringList{u" /home/x, y/ "_qs};
        QTest::newRow("number") << QVariant(0.5) << QStringList{u"0.5"_qs};
    }

    void survivesTheProgram()
    {
        QFETCH(QVariant, value);
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
        QTEST(again.stringArrayForKey(kKey), "asArray");
        if (value.typeId() == QMetaType::Double)
            QCOMPARE(again.floatForKey(kKey), value.toFloat());
    }

    void unwritable()
    {
        // A file where the folder should be: nothing can be stored, also not by the superuser.
        QVERIFY(test::writeFile(m_folder->path("config"), {}));
        UserDefaults defaults(kMaker, kProgram);
        defaults.setObject(kKey, 1);
        QVERIFY(!defaults.synchronize());
        QCOMPARE(defaults.integerForKey(kKey), 1);
    }

    void savingDirectory_data()
    {
        QTest::addColumn<QByteArray>("userDirs");
        QTest::addColumn<QString>("expected");
        QTest::newRow("the user's folder")
            << QByteArray("XDG_PICTURES_DIR=\"$HOME/Bilder\"\n") << u"Bilder/Plexa"_qs;
        QTest::newRow("nothing said") << QByteArray() << u"Pictures/Plexa"_qs;
        QTest::newRow("none reported") << QByteArray("XDG_PICTURES_DIR=\"$HOME/\"\n") << u"Pictures"_qs;
    }

    void savingDirectory()
    {
        QFETCH(QByteArray, userDirs);
        QFETCH(QString, expected);
        QVERIFY(test::writeFile(qEnvironmentVariable("XDG_CONFIG_HOME") + u"/user-dirs.dirs"_qs, userDirs));
        UserDefaults defaults(kMaker, kProgram);
        registerDefaults(defaults);
        QCOMPARE(defaults.stringForKey(settings::savingDirectory), QDir::home().filePath(expected));
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
    std::unique_ptr<test::TestFolder> m_folder;
};

QTEST_GUILESS_MAIN(UserDefaultsTest)
#include "userdefaults_test.moc"
