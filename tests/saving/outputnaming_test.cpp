// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/outputnaming.h"
#include "saving/safefilename.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/scriptedalerts.h"
#include "support/testenvironment.h"
#include "watermark/fakephoto.h"

#include <QtTest>

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

/// The text as the value of the only token of a name.
QString nameOfValue(const QString &value, const QString &path)
{
    return nameFor(presetWith({u"city"_qs}), value, path);
}

// tokens: separated by "|"
using Tokens = Row<Text, qint64, Text>; // tokens, number, expected
// cases: of the base name | of the extension
using Extension = Row<Text, Text, Text, Text, Text>; // text, source, format, cases, expected
using Value = Row<QString, QString>;                 // value, expected
// below: the destination; empty: the destination itself
using Replicated = Row<Text, Text, Text>;    // start, source, below
using Taken = Row<const char *, Text, Text>; // taken, wanted, given
// given: empty: skipped
using Answer = Row<int, Text, bool>; // button, given, overwrites

} // namespace

class OutputNamingTest : public QObject
{
    Q_OBJECT

    ScriptedAlerts m_alerts; // answers nothing

private Q_SLOTS:
    void tokens_data()
    {
        addRows<Tokens>({
            {"the usual ones", "filename|-|watermark preset name|_|width|x|height", 7,
             "beach-Mark_40x30.jpg"},
            {"literal before a number", "img|sequence ####", 7, "img0007.jpg"},
            {"every width of number", "sequence #| |sequence ##| |sequence ###", 7, "7 07 007.jpg"},
            {"no such number", "sequence #####|sequence |sequence|Sequence #", 7,
             "sequence #####sequence sequenceSequence #.jpg"},
            {"preset names", "saving preset name|+|watermark preset name", 7, "Web+Mark.jpg"},
            {"empty values", "state|country", 7, "beach.jpg"},
            {"unknown and other case", "Filename|%1", 7, "Filename%1.jpg"},
            {"slashes and colons", "city|/|1:2:3", 7, "12_30_2_1_2_3.jpg"},
        });
    }
    void tokens()
    {
        const auto [name, tokens, number, expected] = currentRow<Tokens>();
        QCOMPARE(nameFor(presetWith(tokens.split(u'|')), u"12:30/2"_qs, u"/Photos/beach.png"_qs, number),
                 expected);
    }

    void extensionAndCase_data()
    {
        const char *const keep = "do not change|do not change";
        addRows<Extension>({
            {"upper base", "beach", "a.png", "JPEG", "upper case|do not change", "BEACH.jpg"},
            {"upper extension", "Beach", "a.png", "JPEG", "lower case|upper case", "beach.JPG"},
            {"letters that grow", "straße", "a.png", "JPEG", "upper case|lower case", "STRASSE.jpg"},
            {"fitting extension stays, in lower case", "photo.JPEG", "a.png", "JPEG", keep, "photo.jpeg"},
            {"fitting extension, upper", "photo.JPEG", "a.png", "JPEG", "do not change|upper case",
             "photo.JPEG"},
            {"other extension is text", "photo.png", "a.png", "JPEG", keep, "photo.png.jpg"},
            {"only the last one", "a.jpg.jpg", "a.png", "JPEG", keep, "a.jpg.jpg"},
            {"original", "a", "/x/a.JPEG", "Original", keep, "a.jpg"},
            {"original that cannot be written", "a", "/x/a.cr2", "Original", keep, "a.png"},
            {"format that cannot be written", "a.b", "/x/a.jpg", "XYZ", keep, "a.b"},
        });
    }
    void extensionAndCase()
    {
        const auto [name, text, source, format, cases, expected] = currentRow<Extension>();
        SavingPresetValues preset;
        preset.imageFormat = format;
        preset.alternativeImageFormat = u"PNG"_qs;
        preset.fileBaseNameCase = cases.section(u'|', 0, 0);
        preset.fileExtensionCase = cases.section(u'|', 1, 1);
        QCOMPARE(OutputNaming::filenameWithExtensionForFilename(text, source, preset), expected);
    }

    void namesAreSafe_data()
    {
        addRows<Value>({
            {"folder above", u".."_qs, u"a b"_qs},
            {"path", u"../../etc/passwd"_qs, u"_.._etc_passwd"_qs},
            {"hidden", u".hidden"_qs, u"hidden"_qs},
            {"blanks and dots", u"\u00a0. x.y . "_qs, u"x.y"_qs},
            {"nothing but blanks", u" \t\n"_qs, u"__"_qs}, // the blank goes
            {"dots before a fitting extension", u"x . .jpg"_qs, u"x"_qs},
            {"line ends", u"a\r\nb\u2028c\u0085d"_qs, u"a__b_c_d"_qs},
            {"NUL", u"a\0b"_qs, u"a_b"_qs},
            {"marks of direction", u"a\u200eb\u200fc\u061cd\u202egpj.exe"_qs, u"a_b_c_d_gpj.exe"_qs},
            {"half a character", u"a"_qs + QChar(0xD83D) + u"b"_qs + QChar(0xDCF7), u"a_b_"_qs},
            {"whole characters", u"\U0001F4F7 \u00e4\u200d\u05d0"_qs, u"\U0001F4F7 \u00e4\u200d\u05d0"_qs},
        });
    }
    void namesAreSafe()
    {
        const auto [name, value, expected] = currentRow<Value>();
        QCOMPARE(nameOfValue(value, u"/p/. a b.png"_qs), expected + u".jpg"_qs);
        QCOMPARE(nameOfValue(u" . "_qs, u"/p/..."_qs), u"_.jpg"_qs);
    }

    void longNamesAreCut_data()
    {
        const QString accented = u"e\u0301"_qs;                                  // 3 bytes
        const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F466"_qs; // 18 bytes
        const QString camera = u"\U0001F4F7"_qs;
        addRows<Value>({
            {"fits", QString(251, u'a'), QString(251, u'a')},
            {"one too many", QString(252, u'a'), QString(251, u'a')},
            {"four bytes each", camera.repeated(100), camera.repeated(62)},
            {"accents stay on their letters", accented.repeated(100), accented.repeated(83)},
            {"joined pictures", family.repeated(50), family.repeated(13)},
            {"a blank at the cut", QString(250, u'a') + u" bc"_qs, QString(250, u'a')},
            {"a letter that is longer", u"e"_qs + QString(300, QChar(0x301)),
             u"e"_qs + QString(125, QChar(0x301))},
            {"a fitting extension stays", QString(400, u'a') + u".jpg"_qs, QString(251, u'a')},
        });
    }
    void longNamesAreCut()
    {
        const auto [row, value, base] = currentRow<Value>();
        const TestFolder folder;
        const QString name = nameOfValue(value, u"/p/a.png"_qs);
        QCOMPARE(name, base + u".jpg"_qs);
        QVERIFY(writeFile(folder.path(name), "old")); // the file system agrees

        // A number finds its place as well.
        OutputNaming naming({}, m_alerts);
        auto code = OutputNaming::always(OutputNaming::kUniqueName);
        const auto unique = naming.finalDestinationForPath(folder.path(name), code);
        QVERIFY(unique && unique->path.endsWith(u"-1.jpg"_qs));
        QVERIFY(writeFile(unique->path, "old"));
        QCOMPARE(pathsBelow(folder.path()).size(), 2);
    }

    void targetFolder_data()
    {
        addRows<Replicated>({
            {"below the start", "/Photos", "/Photos/2020/Trip/a.jpg", "2020/Trip"},
            {"in the start", "/Photos", "/Photos/a.jpg", ""},
            {"a name that begins alike", "/Photos", "/Photos2/b/a.jpg", ""},
            {"no start", "", "/Photos/2020/a.jpg", "Photos/2020"},
            {"the root", "/", "/Photos/a.jpg", "Photos"},
            {"upwards", "/Photos", "/Photos/x/../../etc/a.jpg", ""},
            {"upwards and down again", "/Photos", "/Photos/x/../y/a.jpg", "y"},
            {"above the root", "", "/../../x/a.jpg", "x"},
        });
    }
    void targetFolder()
    {
        const auto [name, start, source, below] = currentRow<Replicated>();
        const TestFolder folder;
        const QString destination = folder.path(u"Out"_qs);
        const OutputNaming replicating({destination, true, start}, m_alerts);
        QCOMPARE(replicating.targetDirectoryForFile(source),
                 below.isEmpty() ? destination : destination + u'/' + below);
        const OutputNaming flat({destination, false, start}, m_alerts);
        QCOMPARE(flat.targetDirectoryForFile(source), destination);
        const OutputNaming beside({QString(), true, start}, m_alerts);
        QCOMPARE(beside.targetDirectoryForFile(u"/Photos/2020/a.jpg"_qs), u"/Photos/2020"_qs);
    }

    void replicatedFoldersAreMade()
    {
        const TestFolder folder;
        const OutputNaming naming({folder.path(u"Out"_qs), true, folder.path(u"In"_qs)}, m_alerts);
        const QString target = naming.targetDirectoryForFile(folder.path(u"In/b/c/a.jpg"_qs));
        QVERIFY(QFileInfo(target).isDir());
        QCOMPARE(pathsBelow(folder.path()), (QStringList{u"Out"_qs, u"Out/b"_qs, u"Out/b/c"_qs}));
        QVERIFY(writeFile(folder.path(u"Out/d"_qs), "old")); // in the way of a folder
        QCOMPARE(naming.targetDirectoryForFile(folder.path(u"In/d/a.jpg"_qs)), folder.path(u"Out/d"_qs));
    }

    void uniqueNames_data()
    {
        addRows<Taken>({{"free", "", "a.jpg", "a.jpg"},
                        {"taken twice", "a.jpg a-1.jpg", "a.jpg", "a-2.jpg"},
                        {"the first gap", "a.jpg a-2.jpg", "a.jpg", "a-1.jpg"},
                        {"other case is another file", "A.jpg", "a.jpg", "a.jpg"},
                        {"extension as it stands", "a.b.JPG", "a.b.JPG", "a.b-1.JPG"}});
    }
    void uniqueNames()
    {
        const auto [row, taken, wanted, given] = currentRow<Taken>();
        const TestFolder folder;
        for (const QString &name : words(taken))
            QVERIFY(writeFile(folder.path(name), "old"));
        OutputNaming naming({}, m_alerts);
        auto code = OutputNaming::always(OutputNaming::kUniqueName);
        const auto found = naming.finalDestinationForPath(folder.path(wanted), code);
        QVERIFY(found);
        QCOMPARE(found->path, folder.path(given));
        QVERIFY(!found->overwrites);
        QCOMPARE(m_alerts.complaints(), QStringList());
    }

    void everyAnswer_data()
    {
        addRows<Answer>(
            {{"unique", 0, "a-1.jpg", false}, {"overwrite", 1, "a.jpg", true}, {"skip", 2, "", false}});
    }
    void everyAnswer()
    {
        const auto [name, button, given, overwrites] = currentRow<Answer>();
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

    void noNumberIsFree()
    {
        const TestFolder folder;
        OutputNaming naming({}, m_alerts);
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
};

QTEST_GUILESS_MAIN(OutputNamingTest)
#include "outputnaming_test.moc"
