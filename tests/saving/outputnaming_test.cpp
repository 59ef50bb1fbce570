// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/outputnaming.h"
#include "saving/safefilename.h"
#include "support/files.h"
#include "support/scriptedalerts.h"
#include "support/testenvironment.h"
#include "watermark/fakephoto.h"

#include <QtTest>

#include <thread>

using namespace plexa;
using namespace plexa::test;

namespace
{

SavingPresetValues presetWith(const QStringList &tokens)
{
    SavingPresetValues values;
    values.name = QStringLiteral("Web");
    values.filenameTokens = tokens;
    return values;
}

QString nameFor(const SavingPresetValues &preset, const QString &city, const QString &path, qint64 number = 7)
{
    return OutputNaming::filenameForImage(fakePhoto({40, 30}, city, path), path, QStringLiteral("Mark"),
                                          preset, number);
}

} // namespace

class OutputNamingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tokens_data()
    {
        QTest::addColumn<QStringList>("tokens");
        QTest::addColumn<qint64>("number");
        QTest::addColumn<QString>("name");
        const auto add = [](const char *row, const char *tokens, qint64 number, const char *name) {
            QTest::newRow(row) << QString::fromUtf8(tokens).split(u'|') << number << QString::fromUtf8(name);
        };
        add("the usual ones", "filename|-|watermark preset name|_|width|x|height", 7, "beach-Mark_40x30.jpg");
        add("literal before a number", "img|sequence ####", 7, "img0007.jpg");
        add("every width of number", "sequence #| |sequence ##| |sequence ###", 7, "7 07 007.jpg");
        add("a wide number", "sequence ##", 12345, "12345.jpg");
        add("no such number", "sequence #####|sequence |sequence|Sequence #", 7,
            "sequence #####sequence sequenceSequence #.jpg");
        add("preset names", "saving preset name|+|watermark preset name", 7, "Web+Mark.jpg");
        add("empty values", "state|country", 7, "beach.jpg");
        add("a value that is missing", "a|country|b", 7, "ab.jpg");
        add("unknown and other case", "Filename|%1", 7, "Filename%1.jpg");
        add("slashes and colons", "city|/|1:2:3", 7, "12_30_2_1_2_3.jpg");
    }

    void tokens()
    {
        QFETCH(QStringList, tokens);
        QFETCH(qint64, number);
        QTEST(nameFor(presetWith(tokens), u"12:30/2"_qs, u"/Photos/beach.png"_qs, number), "name");
    }

    void extensionAndCase_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("cases");
        QTest::addColumn<QString>("name");
        const auto add = [](const char *row, const char *text, const char *source, const char *format,
                            const char *cases, const char *name) {
            QTest::newRow(row) << QString::fromUtf8(text) << QString::fromUtf8(source)
                               << QString::fromLatin1(format) << QString::fromLatin1(cases)
                               << QString::fromUtf8(name);
        };
        const char *keep = "do not change|do not change";
        add("upper base", "beach", "a.png", "JPEG", "upper case|do not change", "BEACH.jpg");
        add("upper extension", "Beach", "a.png", "JPEG", "lower case|upper case", "beach.JPG");
        add("unknown case", "Beach", "a.png", "JPEG", "Upper Case|UPPER", "Beach.jpg");
        add("letters that grow", "straße", "a.png", "JPEG", "upper case|lower case", "STRASSE.jpg");
        add("fitting extension stays, in lower case", "photo.JPEG", "a.png", "JPEG", keep, "photo.jpeg");
        add("fitting extension, upper", "photo.JPEG", "a.png", "JPEG", "do not change|upper case",
            "photo.JPEG");
        add("other extension is text", "photo.png", "a.png", "JPEG", keep, "photo.png.jpg");
        add("rare extension is text", "photo.jpe", "a.png", "JPEG", keep, "photo.jpe.jpg");
        add("a dot in the text", "scan 12.03", "a.png", "PNG", keep, "scan 12.03.png");
        add("only the last one", "a.jpg.jpg", "a.png", "JPEG", keep, "a.jpg.jpg");
        add("original", "a", "/x/a.JPEG", "Original", keep, "a.jpg");
        add("original that cannot be written", "a", "/x/a.cr2", "Original", keep, "a.png");
        add("format that cannot be written", "a.b", "/x/a.jpg", "XYZ", keep, "a.b");
    }

    void extensionAndCase()
    {
        QFETCH(QString, text);
        QFETCH(QString, source);
        QFETCH(QString, format);
        QFETCH(QString, cases);
        SavingPresetValues preset;
        preset.imageFormat = format;
        preset.alternativeImageFormat = u"PNG"_qs;
        preset.fileBaseNameCase = cases.section(u'|', 0, 0);
        preset.fileExtensionCase = cases.section(u'|', 1, 1);
        QTEST(OutputNaming::filenameWithExtensionForFilename(text, source, preset), "name");
    }

    void namesAreSafe_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("name");
        QTest::newRow("folder above") << u".."_qs << u"a b.jpg"_qs;
        QTest::newRow("path") << u"../../etc/passwd"_qs << u"_.._etc_passwd.jpg"_qs;
        QTest::newRow("hidden") << u".hidden"_qs << u"hidden.jpg"_qs;
        QTest::newRow("blanks and dots") << u"\u00a0. x.y . "_qs << u"x.y.jpg"_qs;
        QTest::newRow("nothing but blanks") << u" \t\n"_qs << u"___.jpg"_qs.mid(1); // the blank goes
        QTest::newRow("dots before a fitting extension") << u"x . .jpg"_qs << u"x.jpg"_qs;
        QTest::newRow("nothing but an extension") << u".jpg"_qs << u"jpg.jpg"_qs;
        QTest::newRow("line ends") << u"a\r\nb\u2028c\u0085d"_qs << u"a__b_c_d.jpg"_qs;
        QTest::newRow("NUL") << u"a\0b"_qs << u"a_b.jpg"_qs;
        QTest::newRow("marks of direction") << u"a\u200eb\u200fc\u061cd"_qs << u"a_b_c_d.jpg"_qs;
        QTest::newRow("turned direction") << u"a\u202egpj.exe"_qs << u"a_gpj.exe.jpg"_qs;
        QTest::newRow("half a character")
            << u"a"_qs + QChar(0xD83D) + u"b"_qs + QChar(0xDCF7) << u"a_b_.jpg"_qs;
        QTest::newRow("whole characters")
            << u"\U0001F4F7 \u00e4\u200d\u05d0"_qs << u"\U0001F4F7 \u00e4\u200d\u05d0.jpg"_qs;
    }

    void namesAreSafe()
    {
        QFETCH(QString, value);
        QTEST(nameFor(presetWith({u"city"_qs}), value, u"/p/. a b.png"_qs), "name");
        QCOMPARE(nameFor(presetWith({u"city"_qs}), u" . "_qs, u"/p/..."_qs), u"_.jpg"_qs);
    }

    void longNamesAreCut_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("base");
        QTest::newRow("fits") << QString(251, u'a') << QString(251, u'a');
        QTest::newRow("one too many") << QString(252, u'a') << QString(251, u'a');
        QTest::newRow("two bytes each") << QString(200, QChar(0xe4)) << QString(125, QChar(0xe4));
        QTest::newRow("four bytes each") << u"\U0001F4F7"_qs.repeated(100) << u"\U0001F4F7"_qs.repeated(62);
        const QString accented = u"e\u0301"_qs; // 3 bytes
        QTest::newRow("accents stay on their letters") << accented.repeated(100) << accented.repeated(83);
        const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F466"_qs; // 18 bytes
        QTest::newRow("joined pictures") << family.repeated(50) << family.repeated(13);
        QTest::newRow("a blank at the cut") << QString(250, u'a') + u" bc"_qs << QString(250, u'a');
        QTest::newRow("a dot at the cut") << QString(249, u'a') + u"...x"_qs << QString(249, u'a');
        QTest::newRow("a letter that is longer")
            << u"e"_qs + QString(300, QChar(0x301)) << u"e"_qs + QString(125, QChar(0x301));
        QTest::newRow("a fitting extension stays") << QString(400, u'a') + u".jpg"_qs << QString(251, u'a');
    }

    void longNamesAreCut()
    {
        QFETCH(QString, value);
        QFETCH(QString, base);
        const TestFolder folder;
        const QString name = nameFor(presetWith({u"city"_qs}), value, u"/p/a.png"_qs);
        QCOMPARE(name, base + u".jpg"_qs);
        QVERIFY(writeFile(folder.path(name), "old")); // the file system agrees

        // A number finds its place as well.
        ScriptedAlerts alerts;
        OutputNaming naming({}, alerts);
        auto code = OutputNaming::always(OutputNaming::kUniqueName);
        const auto unique = naming.finalDestinationForPath(folder.path(name), code);
        QVERIFY(unique && unique->path.endsWith(u"-1.jpg"_qs));
        QVERIFY(writeFile(unique->path, "old"));
        QCOMPARE(pathsBelow(folder.path()).size(), 2);
    }

    void targetFolder_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("below"); // the destination; none: it is the destination
        QTest::newRow("below the start") << u"/Photos"_qs << u"/Photos/2020/Trip/a.jpg"_qs << u"2020/Trip"_qs;
        QTest::newRow("slash at the end") << u"/Photos/"_qs << u"/Photos/2020/a.jpg"_qs << u"2020"_qs;
        QTest::newRow("in the start") << u"/Photos"_qs << u"/Photos/a.jpg"_qs << QString();
        QTest::newRow("elsewhere") << u"/Photos"_qs << u"/Other/a.jpg"_qs << QString();
        QTest::newRow("above") << u"/Photos/2020"_qs << u"/Photos/a.jpg"_qs << QString();
        QTest::newRow("a name that begins alike") << u"/Photos"_qs << u"/Photos2/b/a.jpg"_qs << QString();
        QTest::newRow("no start") << QString() << u"/Photos/2020/a.jpg"_qs << u"Photos/2020"_qs;
        QTest::newRow("the root") << u"/"_qs << u"/Photos/a.jpg"_qs << u"Photos"_qs;
        QTest::newRow("upwards") << u"/Photos"_qs << u"/Photos/x/../../etc/a.jpg"_qs << QString();
        QTest::newRow("upwards and down again") << u"/Photos"_qs << u"/Photos/x/../y/a.jpg"_qs << u"y"_qs;
        QTest::newRow("above the root") << QString() << u"/../../x/a.jpg"_qs << u"x"_qs;
    }

    void targetFolder()
    {
        QFETCH(QString, start);
        QFETCH(QString, source);
        QFETCH(QString, below);
        const TestFolder folder;
        ScriptedAlerts alerts;
        const QString destination = folder.path(u"Out"_qs);
        const OutputNaming replicating({destination, true, start}, alerts);
        QCOMPARE(replicating.targetDirectoryForFile(source),
                 below.isEmpty() ? destination : destination + u'/' + below);
        const OutputNaming flat({destination, false, start}, alerts);
        QCOMPARE(flat.targetDirectoryForFile(source), destination);
        const OutputNaming beside({QString(), true, start}, alerts);
        QCOMPARE(beside.targetDirectoryForFile(u"/Photos/2020/a.jpg"_qs), u"/Photos/2020"_qs);
    }

    void replicatedFoldersAreMade()
    {
        const TestFolder folder;
        ScriptedAlerts alerts;
        const OutputNaming naming({folder.path(u"Out"_qs), true, folder.path(u"In"_qs)}, alerts);
        const QString target = naming.targetDirectoryForFile(folder.path(u"In/b/c/a.jpg"_qs));
        QVERIFY(QFileInfo(target).isDir());
        QCOMPARE(pathsBelow(folder.path()), (QStringList{u"Out"_qs, u"Out/b"_qs, u"Out/b/c"_qs}));
        QVERIFY(writeFile(folder.path(u"Out/d"_qs), "old")); // in the way of a folder
        QCOMPARE(naming.targetDirectoryForFile(folder.path(u"In/d/a.jpg"_qs)), folder.path(u"Out/d"_qs));
    }

    void uniqueNames_data()
    {
        QTest::addColumn<QStringList>("taken");
        QTest::addColumn<QString>("wanted");
        QTest::addColumn<QString>("given");
        QTest::newRow("free") << QStringList() << u"a.jpg"_qs << u"a.jpg"_qs;
        QTest::newRow("taken twice") << QStringList{u"a.jpg"_qs, u"a-1.jpg"_qs} << u"a.jpg"_qs
                                     << u"a-2.jpg"_qs;
        QTest::newRow("the first gap")
            << QStringList{u"a.jpg"_qs, u"a-2.jpg"_qs} << u"a.jpg"_qs << u"a-1.jpg"_qs;
        QTest::newRow("other case is another file") << QStringList{u"A.jpg"_qs} << u"a.jpg"_qs << u"a.jpg"_qs;
        QTest::newRow("extension as it stands")
            << QStringList{u"a.b.JPG"_qs} << u"a.b.JPG"_qs << u"a.b-1.JPG"_qs;
        QTest::newRow("no extension") << QStringList{u"a"_qs} << u"a"_qs << u"a-1"_qs;
    }

    void uniqueNames()
    {
        QFETCH(QStringList, taken);
        QFETCH(QString, wanted);
        QFETCH(QString, given);
        const TestFolder folder;
        for (const QString &name : taken)
            QVERIFY(writeFile(folder.path(name), "old"));
        ScriptedAlerts alerts;
        OutputNaming naming({}, alerts);
        auto code = OutputNaming::always(OutputNaming::kUniqueName);
        const auto found = naming.finalDestinationForPath(folder.path(wanted), code);
        QVERIFY(found);
        QCOMPARE(found->path, folder.path(given));
        QVERIFY(!found->overwrites);
        QCOMPARE(alerts.complaints(), QStringList());
    }

    void everyAnswer_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<QString>("given"); // empty: skipped
        QTest::addColumn<bool>("overwrites");
        QTest::newRow("unique") << 0 << u"a-1.jpg"_qs << false;
        QTest::newRow("overwrite") << 1 << u"a.jpg"_qs << true;
        QTest::newRow("skip") << 2 << QString() << false;
    }

    void everyAnswer()
    {
        QFETCH(int, button);
        QFETCH(QString, given);
        QFETCH(bool, overwrites);
        const TestFolder folder;
        const QString path = folder.path(u"a.jpg"_qs);
        // A link that points nowhere would be written through.
        QVERIFY(QFile::link(folder.path(u"nowhere"_qs), path));
        ScriptedAlerts alerts;
        OutputNaming naming({}, alerts);
        qint32 code = 0;
        for (int i = 0; i < 2; ++i) { // asked each time
            alerts.expect(u"The file exists:\n  a.jpg"_qs, {button, false});
            const auto found = naming.finalDestinationForPath(path, code);
            QCOMPARE(code, button + 1);
            QCOMPARE(found.has_value(), !given.isEmpty());
            if (found) {
                QCOMPARE(found->path, folder.path(given));
                QCOMPARE(found->overwrites, overwrites);
                naming.finished(found->path);
            }
        }
        QCOMPARE(alerts.complaints(), QStringList());
        const Alert alert = alerts.shown().first();
        QCOMPARE(alert.style, Alert::Style::Warning);
        QCOMPARE(alert.text,
                 u"An overwritten file cannot be recovered. Consider generating a unique filename "
                 "instead."_qs);
        QCOMPARE(alert.buttons,
                 (QStringList{u"Use unique filename"_qs, u"Overwrite file"_qs, u"Skip file"_qs}));
        QCOMPARE(alert.escapeButton, 2);
        QVERIFY(alert.hasSuppressionBox);
    }

    void rememberedAnswerEndsWithTheRun()
    {
        const TestFolder folder;
        QVERIFY(writeFile(folder.path(u"a.jpg"_qs), "old") && writeFile(folder.path(u"b.jpg"_qs), "old"));
        ScriptedAlerts alerts;
        for (int run = 0; run < 2; ++run) {
            OutputNaming naming({}, alerts);
            qint32 code = 0;
            alerts.expect(u"The file exists:\n  a.jpg"_qs, {2, true});
            QVERIFY(!naming.finalDestinationForPath(folder.path(u"a.jpg"_qs), code));
            QVERIFY(!naming.finalDestinationForPath(folder.path(u"b.jpg"_qs), code));
            QVERIFY(naming.finalDestinationForPath(folder.path(u"c.jpg"_qs), code));
            QCOMPARE(code, std::numeric_limits<qint32>::min() + 3);
        }
        QCOMPARE(alerts.complaints(), QStringList());
    }

    void noNumberIsFree()
    {
        const TestFolder folder;
        ScriptedAlerts alerts;
        OutputNaming naming({}, alerts);
        auto code = OutputNaming::always(OutputNaming::kOverwrite);
        const QString path = folder.path(u"a.jpg"_qs);
        QVERIFY(naming.finalDestinationForPath(path, code));
        for (int i = 1; i <= 9999; ++i)
            QVERIFY(naming.finalDestinationForPath(folder.path(u"a-%1.jpg"_qs.arg(i)), code));
        code = OutputNaming::always(OutputNaming::kUniqueName);
        QVERIFY(!naming.finalDestinationForPath(path, code));
        naming.finished(folder.path(u"a-9999.jpg"_qs));
        QCOMPARE(naming.finalDestinationForPath(path, code)->path, folder.path(u"a-9999.jpg"_qs));
    }

    void aFileThatIsBeingWrittenExists()
    {
        const TestFolder folder;
        QVERIFY(QDir().mkpath(folder.path(u"Out"_qs)));
        QVERIFY(QFile::link(folder.path(u"Out"_qs), folder.path(u"link"_qs)));
        ScriptedAlerts alerts;
        OutputNaming naming({}, alerts);
        const QString path = folder.path(u"Out/a.jpg"_qs);
        qint32 code = 0;
        QVERIFY(naming.finalDestinationForPath(path, code));
        // The same file by other names.
        for (const QString &same :
             {path, folder.path(u"link/a.jpg"_qs), folder.path(u"Out/../Out//a.jpg"_qs)}) {
            QVERIFY(naming.isBeingWritten(same));
            alerts.expect(u"The file exists:\n  a.jpg"_qs, {0, false});
            const auto other = naming.finalDestinationForPath(same, code);
            QVERIFY(other);
            QCOMPARE(QFileInfo(other->path).fileName(), u"a-1.jpg"_qs);
            naming.finished(other->path);
        }
        // Two that overwrite one another: both have to end.
        code = OutputNaming::always(OutputNaming::kOverwrite);
        QVERIFY(naming.finalDestinationForPath(path, code)->overwrites);
        naming.finished(path);
        QVERIFY(naming.isBeingWritten(path));
        naming.finished(path);
        QVERIFY(!naming.isBeingWritten(path));
        naming.finished(path);
        QVERIFY(!naming.finalDestinationForPath(path, code)->overwrites); // nothing came of it
        QCOMPARE(alerts.complaints(), QStringList());
    }

    void pathsEndOnAnyThread()
    {
        const TestFolder folder;
        ScriptedAlerts alerts;
        OutputNaming naming({}, alerts);
        auto code = OutputNaming::always(OutputNaming::kUniqueName);
        std::vector<std::thread> threads;
        QSet<QString> given;
        for (int i = 0; i < 50; ++i) {
            const QString path = naming.finalDestinationForPath(folder.path(u"a.jpg"_qs), code).value().path;
            QVERIFY(!given.contains(path));
            given.insert(path);
            threads.emplace_back([&naming, path] {
                writeFile(path, "old");
                naming.finished(path);
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(pathsBelow(folder.path()).size(), 50);
    }
};

QTEST_GUILESS_MAIN(OutputNamingTest)
#include "outputnaming_test.moc"
