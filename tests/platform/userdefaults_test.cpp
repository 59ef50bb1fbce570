// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "support/testenvironment.h"

#include <QtTest>

#include <limits>
#include <thread>
#include <vector>

using namespace plexa;

namespace
{

const QString kKey = QStringLiteral("some key");

} // namespace

class UserDefaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void readers_data();
    void readers();
    void storedOverRegistered();
    void survivesTheProgram_data();
    void survivesTheProgram();
    void unwritable();
    void registeredSettings_data();
    void registeredSettings();
    void savingDirectory_data();
    void savingDirectory();
    void threads();

private:
    std::unique_ptr<test::TestFolder> m_folder;
};

void UserDefaultsTest::init()
{
    m_folder = std::make_unique<test::TestFolder>();
    QVERIFY(m_folder->isValid());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       m_folder->path(QStringLiteral("config")));
}

void UserDefaultsTest::readers_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("asBool");
    QTest::addColumn<qint64>("asInteger");
    QTest::addColumn<float>("asFloat");
    QTest::addColumn<QString>("asString");
    const auto row = [](const char *name, const QVariant &value, bool truth, qint64 integer, double decimal,
                        const QString &text) {
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
    row("true value", true, true, 1, 1, QStringLiteral("1"));
    row("false value", false, false, 0, 0, QStringLiteral("0"));
    row("integer", -3, true, -3, -3, QStringLiteral("-3"));
    row("fraction", 2.75, true, 2, 2.75, QStringLiteral("2.75"));
    row("huge number", 1e300, true, kMost, double(std::numeric_limits<float>::max()),
        QStringLiteral("1e+300"));
    row("list", QStringList{QStringLiteral("1"), QStringLiteral("2")}, false, 0, 0, {});
}

void UserDefaultsTest::readers()
{
    QFETCH(QVariant, value);
    // Registered, or stored and not yet written, a value reads alike.
    for (const bool stored : {false, true}) {
        UserDefaults defaults(QStringLiteral("Maker"), QStringLiteral("Program"));
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

void UserDefaultsTest::storedOverRegistered()
{
    UserDefaults defaults(QStringLiteral("Maker"), QStringLiteral("Program"));
    defaults.registerDefaults({{kKey, QStringLiteral("YES")}});
    QVERIFY(defaults.boolForKey(kKey));
    defaults.setObject(kKey, false);
    QVERIFY(!defaults.boolForKey(kKey));
    defaults.registerDefaults({{kKey, QStringLiteral("YES")}});
    QVERIFY(!defaults.boolForKey(kKey));
    defaults.removeObjectForKey(kKey);
    QVERIFY(defaults.boolForKey(kKey));
}

void UserDefaultsTest::survivesTheProgram_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QStringList>("asArray");
    const auto row = [](const char *name, const QStringList &list) {
        QTest::newRow(name) << QVariant(list) << list;
    };
    row("no element", {});
    row("one", {QStringLiteral("a, \"b\"; c=\\d")});
    row("several", {QString(), QStringLiteral("\u00e9 \u6c34"), QStringLiteral("@x")});
    QTest::newRow("untyped list") << QVariant(QVariantList{QStringLiteral("a"), QStringLiteral("b")})
                                  << QStringList{QStringLiteral("a"), QStringLiteral("b")};
    QTest::newRow("text") << QVariant(QStringLiteral(" /home/x, y/ "))
                          << QStringList{QStringLiteral(" /home/x, y/ ")};
    QTest::newRow("number") << QVariant(0.5) << QStringList{QStringLiteral("0.5")};
}

void UserDefaultsTest::survivesTheProgram()
{
    QFETCH(QVariant, value);
    {
        UserDefaults defaults(QStringLiteral("Maker"), QStringLiteral("Program"));
        defaults.registerDefaults({{kKey, QStringList{QStringLiteral("registered")}}});
        defaults.setObject(kKey, value);
        QVERIFY(defaults.synchronize());
    }
    // Within one process the values come from memory unless the file has changed.
    QFile file(m_folder->path(QStringLiteral("config/Maker/Program.conf")));
    QVERIFY(file.open(QIODevice::Append));
    file.write("\n");
    file.close();
    UserDefaults again(QStringLiteral("Maker"), QStringLiteral("Program"));
    again.registerDefaults({{kKey, QStringList{QStringLiteral("registered")}}});
    QTEST(again.stringArrayForKey(kKey), "asArray");
    if (value.typeId() == QMetaType::Double)
        QCOMPARE(again.floatForKey(kKey), value.toFloat());
}

void UserDefaultsTest::unwritable()
{
    // A file where the folder should be: nothing can be stored, also not by the superuser.
    QFile file(m_folder->path(QStringLiteral("config")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    UserDefaults defaults(QStringLiteral("Maker"), QStringLiteral("Program"));
    defaults.setObject(kKey, 1);
    QVERIFY(!defaults.synchronize());
    QCOMPARE(defaults.integerForKey(kKey), 1);
}

void UserDefaultsTest::registeredSettings_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("expected");
    const auto row = [](const char *key, const QVariant &expected) {
        QTest::newRow(key) << QString::fromLatin1(key) << expected;
    };
    for (const char *key : {"imageListIsInBrowserMode", "imageBrowserShowsNames", "saveAllToOneDirectory",
                            "exportPreserveOriginalFileCreationDate", "askForMASReview", "askForFeedback"})
        row(key, true);
    for (const char *key :
         {"defaultSaveSingleOriginalFileLocation", "rememberWPresetsAppliedLastTime",
          "browserShowOriginalOnMouseOver", "combineAllAppliedPresetsInImage", "replicateOrigDirStructure",
          "ignoreSavingPresetsInWPresets", "ignoreSavingPresetsInSizePresets", "enableExifDataEditing"})
        row(key, false);
    row("lastUsedMode", 0);
    row("runNumber", 0);
    row("imageBrowserZoomFactor", 0.5);
    row("lastMetadataPanelTabID", QStringLiteral("General"));
    row("replicationStartDirectory", QString());
    row("fileExportReplicationStartDirectory", QString());
    row("wPresetsAppliedLastTime", QStringList());
}

void UserDefaultsTest::registeredSettings()
{
    QFETCH(QString, key);
    QFETCH(QVariant, expected);
    UserDefaults defaults(QStringLiteral("Maker"), QStringLiteral("Program"));
    registerDefaults(defaults);
    const auto settings = allSettings();
    QCOMPARE(settings.size(), std::size_t(22));
    const auto setting =
        std::find_if(settings.begin(), settings.end(), [&](const Setting &s) { return s.key == key; });
    QVERIFY(setting != settings.end());
    switch (setting->type) {
    case SettingType::Bool:
        QCOMPARE(QVariant(defaults.boolForKey(key)), expected);
        break;
    case SettingType::Integer:
        QCOMPARE(defaults.integerForKey(key), expected.toLongLong());
        break;
    case SettingType::Float:
        QCOMPARE(defaults.floatForKey(key), expected.toFloat());
        break;
    case SettingType::String:
        QCOMPARE(QVariant(defaults.stringForKey(key)), expected);
        break;
    case SettingType::StringArray:
        QCOMPARE(defaults.stringArrayForKey(key), expected.toStringList());
        break;
    }
}

void UserDefaultsTest::savingDirectory_data()
{
    QTest::addColumn<QByteArray>("userDirs");
    QTest::addColumn<QString>("expected");
    QTest::newRow("the user's folder")
        << QByteArray("XDG_PICTURES_DIR=\"$HOME/Bilder\"\n") << QStringLiteral("Bilder/Plexa");
    QTest::newRow("nothing said") << QByteArray() << QStringLiteral("Pictures/Plexa");
    QTest::newRow("none reported") << QByteArray("XDG_PICTURES_DIR=\"$HOME/\"\n")
                                   << QStringLiteral("Pictures");
}

void UserDefaultsTest::savingDirectory()
{
    QFETCH(QByteArray, userDirs);
    QFETCH(QString, expected);
    QVERIFY(QDir().mkpath(qEnvironmentVariable("XDG_CONFIG_HOME")));
    QFile file(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/user-dirs.dirs"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(userDirs);
    file.close();
    UserDefaults defaults(QStringLiteral("Maker"), QStringLiteral("Program"));
    registerDefaults(defaults);
    QCOMPARE(defaults.stringForKey(settings::savingDirectory), QDir::home().filePath(expected));
}

void UserDefaultsTest::threads()
{
    UserDefaults defaults(QStringLiteral("Maker"), QStringLiteral("Program"));
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

QTEST_GUILESS_MAIN(UserDefaultsTest)
#include "userdefaults_test.moc"
