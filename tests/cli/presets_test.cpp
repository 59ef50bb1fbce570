// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/programruns.h"
#include "presets/savingpreset.h"
#include "presets/wpresetarchive.h"
#include "support/datarows.h"
#include "support/keyedarchives.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::StringLiterals;

namespace
{

} // namespace

class PresetsCommandTest : public QObject, private ProgramRuns
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        startAnew();
        // Two watermarks, the second of which is saved as PNG; two saving presets.
        SavingPresetValues png{
            .name = u"As PNG"_s, .filenameTokens = {u"filename"_s, u"-assigned"_s}, .imageFormat = u"PNG"_s};
        SavingPresetValues tiff = png;
        tiff.name = u"As TIFF"_s;
        tiff.imageFormat = u"TIFF"_s;
        const auto assigned = std::make_shared<SavingPreset>(png);
        QVERIFY(SavingPreset::writeObjects({assigned, std::make_shared<SavingPreset>(tiff)}, path("my.pxspr"),
                                           u"Quorvel Plexa"_s));
        WPresetValues values;
        values.name = u"Plain"_s;
        values.textTokens = {u"plain"_s, u"\n"_s, u"creator"_s};
        values.font = u"DejaVuSans"_s;
        values.angle = 12.3F;
        const auto plain = std::make_shared<WPreset>(values);
        values.name = u"With PNG"_s;
        values.assignedSavingPreset = assigned;
        QVERIFY(writeWPresets({plain, std::make_shared<WPreset>(values)}, path("my.pxwpr")));
    }

    void printing()
    {
        const ProgramRun text = run("presets %1", path("my.pxwpr"));
        QCOMPARE(text.status, 0);
        QCOMPARE(text.out, "Plain: text, plain / [creator]\nWith PNG: text, plain / [creator]\n");
        const QJsonArray presets = QJsonDocument::fromJson(json("my.pxwpr")).array();
        QCOMPARE(presets.size(), 2);
        QCOMPARE(presets[0].toObject().size(), static_cast<qsizetype>(wPresetFields().size()));
        QCOMPARE(presets[0][u"fontSize"_s], QJsonValue(8));
        QCOMPARE(presets[0][u"angle"_s], QJsonValue(12.3));
        QVERIFY(presets[0][u"assignedSavingPreset"_s].isNull());
        QVERIFY(presets[1][u"assignedSavingPreset"_s].toInteger() > 0);
        const QJsonArray saving = QJsonDocument::fromJson(json("my.pxspr")).array();
        const QJsonObject expected{{u"presetID"_s, presets[1][u"assignedSavingPreset"_s]},
                                   {u"name"_s, u"As PNG"_s},
                                   {u"filenameTokens"_s, QJsonArray{u"filename"_s, u"-assigned"_s}},
                                   {u"fileBaseNameCase"_s, u"do not change"_s},
                                   {u"fileExtensionCase"_s, u"lower case"_s},
                                   {u"imageFormat"_s, u"PNG"_s},
                                   {u"alternativeImageFormat"_s, u"JPEG"_s},
                                   {u"jpegQuality"_s, 80},
                                   {u"tiffCompressionLZW"_s, true}};
        QCOMPARE(saving[0].toObject(), expected);
        QCOMPARE(run("presets %1", path("my.pxspr")).out,
                 "As PNG: PNG, \"filename\" \"-assigned\"\nAs TIFF: TIFF, \"filename\" \"-assigned\"\n");
    }

    void converting()
    {
        QVERIFY(writeKeyedArchives(m_folder->path()));
        // Some of its values cannot be read.
        const ProgramRun converted = convert("new.pxwpr", "old.pxwpr");
        QVERIFY(converted.status == 1 && converted.err.contains("\"width\" of number 2 in its list"));
        QVERIFY(converted.err.contains("the rest is written to \"" + path("new.pxwpr").toUtf8()));
        QCOMPARE(run("presets %1", path("new.pxwpr")).status, 0);
        QVERIFY(json("new.pxwpr").size() > 1000);
        QCOMPARE(json("new.pxwpr"), json("old.pxwpr"));
        // Nothing is written that would lose something.
        const QByteArray mine = contentsOf(path("my.pxspr"));
        write("later.pxspr", QByteArray(mine).replace("1.4", "1.41"));
        write("raw.pxspr", QByteArray(mine).replace("-assigned", "R&D"));
        write("markup.pxspr", QByteArray(mine).replace("-assigned", "R&amp;D"));
        write("not", mine);
        for (const auto &[name, reason] : {std::pair("later.pxwpr", "later version"),
                                           {"later.pxspr", "later version"},
                                           {"raw.pxspr", "\"&D"}}) {
            const ProgramRun refused = convert("not", name);
            QVERIFY2(refused.status == 1 && refused.err.contains(reason) &&
                         refused.err.contains("nothing is written: "),
                     refused.err.constData());
            QCOMPARE(refused.err.count('\n'), 1);
            QCOMPARE(contentsOf(path("not")), mine);
        }
        QCOMPARE(convert("kept.pxspr", "markup.pxspr").status, 0);
        QCOMPARE(json("kept.pxspr"), json("markup.pxspr"));
        const ProgramRun misnamed = convert("my.pxwpr", "my.pxspr");
        QVERIFY(misnamed.status == 1 && misnamed.err.contains("my.pxwpr\" is a name for watermark"));
        write("text", "mine");
        for (const char *target : {"in", "in/a.png", "text"}) {
            const QByteArray before = contentsOf(path(target));
            const ProgramRun kept = convert(target, "my.pxspr");
            QVERIFY2(kept.status == 1 && kept.err.contains("exists and is not replaced"),
                     kept.err.constData());
            QCOMPARE(contentsOf(path(target)), before);
        }
        QCOMPARE(run("presets --convert - %1", path("my.pxspr")).out, mine);
        QCOMPARE(runProgram(u"/bin/sh"_s, words("-c %1 %2 %3", "exec \"$0\" presets --convert - - < \"$1\"",
                                                program(), path("my.pxspr")))
                     .out,
                 mine);
        // The same status for both kinds with a part that cannot be read.
        QCOMPARE(run("presets %1", path("raw.pxspr")).status, 1);
        // Otherwise the readable part is used, with a note.
        for (const char *name : {"later.pxwpr", "later.pxspr"}) {
            const ProgramRun printed = run("presets %1", path(name));
            QVERIFY(printed.status == 0 && printed.out.count('\n') == 2 &&
                    printed.err.contains("later version"));
        }
        const QStringList save = words("save --dry-run --wpresets %1 --saving-presets %2 %3",
                                       path("later.pxwpr"), path("later.pxspr"), path("in"));
        QCOMPARE(run(save + words("--quiet")).err.count("later version"), 2);
        QCOMPARE(convert("new.pxspr", "my.pxspr").status, 0);
        QCOMPARE(json("new.pxspr"), json("my.pxspr"));
    }

    void unreadablePartsAreReported()
    {
        QVERIFY(writeKeyedArchives(m_folder->path()));
        // Pictures are kept as they are; elements of the list that are not presets are not.
        const ProgramRun pictures = run("presets %1", path("pictures.pxwpr"));
        QCOMPARE(pictures.status, 0);
        QCOMPARE(pictures.err.count('\n'), 7);
        QVERIFY(pictures.err.contains("\"vector\"") &&
                pictures.out.contains("vector: image, cannot be read\n"));
        const ProgramRun kept = convert("kept.pxwpr", "pictures.pxwpr");
        QVERIFY(kept.status == 0 && kept.err == pictures.err);
        for (const char *target : {"rest.pxwpr", "some.pxwpr"}) {
            const ProgramRun partly = convert(target, "some.pxwpr");
            QVERIFY(partly.status == 1 && partly.err.contains("number 5 "));
        }
        QCOMPARE(run("presets %1", path("rest.pxwpr")).status, 0);
        QCOMPARE(run("presets %1", path("some.pxwpr")).status, 1); // still has all its elements

        for (const auto &[name, status] :
             {std::pair("vector", 2), {"ends early", 1}, {"smaller one left", 0}}) {
            const ProgramRun saved = run("save --wpresets %1 --apply %2 --output %3 %4",
                                         path("pictures.pxwpr"), name, path("out"), path("in"));
            QCOMPARE(saved.status, status);
            QVERIFY(status == 0 ||
                    saved.err.contains(QByteArray("preset \"") + name + "\" cannot be read: "));
            QCOMPARE(namesIn(path("out")).isEmpty(), status != 0);
        }
    }

    void noPresets()
    {
        write("empty.pxwpr", {});
        write("cut.txt", "bplist00");
        write("comment.txt", "<?xml version='1.0'?><!--" + QByteArray(2000, 'x') +
                                 "--><!DOCTYPE plist><plist><dict/></plist>");
        write("other.pxspr", "<svg></svg>");
        for (const auto &[file, reason] : {std::pair("in/a.png", "it is not a file of presets"),
                                           {"in", "it is a folder"},
                                           {"empty.pxwpr", "it is empty"},
                                           {"cut.txt", "it is damaged"},
                                           {"comment.txt", "archive of objects"},
                                           {"other.pxspr", "of saving presets: line 1: "}}) {
            const ProgramRun outcome = run("presets %1", path(file));
            QCOMPARE(outcome.status, 1);
            QVERIFY(outcome.out.isEmpty() && outcome.err.count('\n') == 1);
            QVERIFY2(outcome.err.startsWith("plexa-cli: " + path(file).toUtf8() + ": ") &&
                         outcome.err.contains(reason),
                     outcome.err.constData());
        }
    }

    void applying()
    {
        using Row = std::tuple<Text, QStringList>;
        for (const auto &[options, copies] : std::initializer_list<Row>{
                 {"--wpresets %1", words("a-Plain.png 'a-With PNG.png' b-Plain.jpg 'b-With PNG.jpg'")},
                 {"--wpresets %1 --saving-presets %2 --apply 'With PNG'",
                  words("a-assigned.png b-assigned.png")},
                 {"--wpresets %1 --saving-presets %2 --apply 'With PNG' --ignore-assigned",
                  words("'a-With PNG.png' 'b-With PNG.jpg'")},
                 {"--wpresets %1 --combine", words("a.png b.jpg")},
                 {"--wpresets %1 --saving-presets %2 --saving-preset 'As TIFF' --apply Plain",
                  words("a-assigned.tif b-assigned.tif")}}) {
            init();
            const ProgramRun outcome = save(options);
            QVERIFY2(outcome.status == 0, outcome.err.constData());
            QCOMPARE(namesIn(path("out")), copies);
        }
        // The reason why a photo cannot be read is stated once for all presets.
        QVERIFY(writeFile(path("in/a.png"), "no picture"));
        const ProgramRun outcome = save(u"--wpresets %1"_s);
        QCOMPARE(outcome.status, 1);
        QCOMPARE(outcome.err.count("a.png: "), 1);
        QVERIFY2(outcome.err.contains(" (2 copies)\n"), outcome.err.constData());
        QVERIFY2(outcome.err.contains("2 failed"), outcome.err.constData());
    }

    void missingAssignedPresets()
    {
        QVERIFY(writeFile(path("other.pxspr"), contentsOf(path("my.pxspr")).replace("<id>", "<id>7")));
        const char *const missing = "assigned to \"With PNG\" is not there";
        for (const auto &[options, isReported] : {std::pair("", true),
                                                  {"--quiet", true},
                                                  {"--apply Plain", false},
                                                  {"--ignore-assigned", false},
                                                  {"--saving-presets %2", false},
                                                  {"--saving-presets %3", true}}) {
            const ProgramRun outcome =
                run(words("save -n --wpresets %1 ", path("my.pxwpr")) + words("%1", path("in")) +
                    words(options, QString(), path("my.pxspr"), path("other.pxspr")));
            QCOMPARE(outcome.status, 0);
            QVERIFY2(outcome.err.contains(missing) == isReported, outcome.err.constData());
        }
    }

    void theListsOfTheUser()
    {
        const ProgramRun examples = run("presets");
        QCOMPARE(examples.status, 0);
        QVERIFY(examples.out.contains("Watermark presets (the examples):\nDiscreet copyright: ") &&
                examples.out.contains("\nSaving presets (the examples):\n"));
        QCOMPARE(QJsonDocument::fromJson(run("presets --json").out).array().size() + 2,
                 examples.out.count('\n'));
        QCOMPARE(run("presets --convert %1", path("new")).status, 2);
    }

    void wrongUsage()
    {
        using Row = std::tuple<Text, QByteArray>;
        for (const auto &[options, message] : std::initializer_list<Row>{
                 {"--wpresets %1 --apply plain", "did you mean \"Plain\"?"},
                 {"--wpresets %1 --apply Plain --combine", "--combine has no effect"},
                 {"--wpresets %1 --apply Nope", "\"Plain\", \"With PNG\""},
                 {"--wpresets %1 --saving-presets %2 --saving-preset Nope", "\"As PNG\", \"As TIFF\""},
                 {"--wpresets %1 --text x", "--wpresets"},
                 {"--apply Plain --text x", "--text and --apply cannot"},
                 {"--wpresets %1 --set type=Image", "needs a picture"},
                 {"--wpresets %1 --saving-presets %2 --apply 'With PNG' --format GIF", "no effect, because"},
                 {"--wpresets %2", "my.pxspr\": it is not a file of watermark presets"},
                 {"--text x --saving-presets %1", "my.pxwpr\": it is a file of watermark"}}) {
            const ProgramRun outcome = save(options);
            QCOMPARE(outcome.status, 2);
            QVERIFY2(outcome.err.contains(message), outcome.err.constData());
            QVERIFY(!QFile::exists(path("out")));
        }
    }

    void theUsersOwnPresets()
    {
        const auto apply = [this](const char *options) {
            return save(u"--apply "_s + QLatin1String(options));
        };
        QVERIFY(QFile::remove(path("in/a.png")));
        // Without own presets: the examples. They are not written.
        QCOMPARE(apply("'Logo with shadow'").status, 0);
        const QString home = path("XDG_DATA_HOME/Quorvel/Plexa");
        QVERIFY(!QFile::exists(home + u"/WPresets.pxwpr"_s));
        QVERIFY(QDir().mkpath(home) && QFile::copy(path("my.pxwpr"), home + u"/WPresets.pxwpr"_s) &&
                QFile::copy(path("my.pxspr"), home + u"/SPresets.pxspr"_s));
        QCOMPARE(apply("'Logo with shadow'").status, 2);
        QCOMPARE(apply("'With PNG'").status, 0);
        QCOMPARE(namesIn(path("out")), words("'b-Logo with shadow.jpg' b-assigned.png"));
        // Unreadable saving presets are an error only for a run that needs one of them.
        write("XDG_DATA_HOME/Quorvel/Plexa/SPresets.pxspr", "bad");
        QCOMPARE(apply("'With PNG'").status, 2);
        QCOMPARE(apply("Plain --saving-preset 'As PNG'").status, 2);
        const ProgramRun warned = apply("Plain");
        QVERIFY2(warned.status == 0 && warned.err.contains("SPresets.pxspr\": it is not a file"),
                 warned.err.constData());
        const ProgramRun ignored = apply("'With PNG' --ignore-assigned");
        QVERIFY2(ignored.status == 0 && !ignored.err.contains("SPresets"), ignored.err.constData());
        QCOMPARE(namesIn(path("out")),
                 words("'b-Logo with shadow.jpg' b-Plain.jpg 'b-With PNG.jpg' b-assigned.png"));
    }

    /// A copy without a visible watermark is reported.
    void unmarkedCopies()
    {
        using Row = std::tuple<Text, QByteArray>;
        for (const auto &[options, invisible] : std::initializer_list<Row>{
                 {"--apply 'Film date'", "it"},
                 {"--apply 'Film date' --apply 'GPS position'", "\"Film date\""},
                 {"--apply 'GPS position'", ""},
                 {R"(--set textTokens=["city","\n","state"])", "it"},
                 {"--apply 'GPS position' --set opacity=0 --set background=false", "it"},
                 {R"(--set textTokens=["city","\n","state"] --set background=true)", ""},
                 {"--text x --set offsetHorizontal=9000", "it"},
                 {"--text x --set opacity=0", "it"}}) {
            init();
            const ProgramRun outcome = save(options + u" --save-set filenameTokens=filename"_s);
            QCOMPARE(outcome.status, 0);
            const bool isMarked = invisible.isEmpty();
            QCOMPARE(outcome.err.count("saved without a watermark"), isMarked ? 0 : 2);
            QVERIFY2(isMarked || outcome.err.contains("nothing of " + invisible + " is"),
                     outcome.err.constData());
            QCOMPARE(pixelsOf(QImage(path("out/a.png"))) != smoothPicture({120, 200}), isMarked);
        }
    }

private:
    ProgramRun save(const QString &options) const
    {
        return run(words("save --output %1 %2", path("out"), path("in")) +
                   words(options.toUtf8().constData(), path("my.pxwpr"), path("my.pxspr")));
    }
    ProgramRun convert(const char *target, const char *file) const
    {
        return run("presets --convert %1 %2", path(target), path(file));
    }
    QByteArray json(const char *file) const { return run("presets --json %1", path(file)).out; }
};

QTEST_GUILESS_MAIN(PresetsCommandTest)
#include "presets_test.moc"
