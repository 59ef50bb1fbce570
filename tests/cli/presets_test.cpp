// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/programruns.h"
#include "presets/savingpreset.h"
#include "presets/wpresetarchive.h"
#include "support/keyedarchives.h"

#include <QColorSpace>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace plexa;
using namespace plexa::test;

namespace
{

QStringList list(const char *words)
{
    return QString::fromUtf8(words).split(u'|', Qt::SkipEmptyParts);
}

QStringList namesIn(const QByteArray &json)
{
    QStringList names;
    for (const QJsonValue preset : QJsonDocument::fromJson(json).array())
        names.append(preset[QStringLiteral("name")].toString());
    return names;
}

} // namespace

class PresetsCommandTest : public QObject, private ProgramRuns
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void printing();
    void converting();
    void whatCannotBeReadIsTold();
    void noPresets_data();
    void noPresets();
    void applying_data();
    void applying();
    void wrongUsage_data();
    void wrongUsage();
    void theUsersOwnPresets();
    void unmarkedCopies_data();
    void unmarkedCopies();

private:
    QString path(const char *name) const { return m_folder->path(QLatin1StringView(name)); }
    QByteArray contents(const char *name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

void PresetsCommandTest::init()
{
    startAnew();
    // Two watermarks, the second of which is saved as PNG; two saving presets.
    SavingPresetValues png;
    png.name = QStringLiteral("As PNG");
    png.imageFormat = QStringLiteral("PNG");
    png.filenameTokens = {QStringLiteral("filename"), QStringLiteral("-assigned")};
    SavingPresetValues tiff = png;
    tiff.name = QStringLiteral("As TIFF");
    tiff.imageFormat = QStringLiteral("TIFF");
    const auto assigned = std::make_shared<SavingPreset>(png);
    QVERIFY(SavingPreset::writeObjects({assigned, std::make_shared<SavingPreset>(tiff)}, path("my.pxspr"),
                                       QStringLiteral("Quorvel Plexa")));
    WPresetValues values;
    values.name = QStringLiteral("Plain");
    values.textTokens = {QStringLiteral("plain")};
    values.font = QStringLiteral("DejaVuSans");
    const auto plain = std::make_shared<WPreset>(values);
    values.name = QStringLiteral("With PNG");
    values.assignedSavingPreset = assigned;
    QVERIFY(writeWPresets({plain, std::make_shared<WPreset>(values)}, path("my.pxwpr")));
}

void PresetsCommandTest::printing()
{
    const Outcome text = run({QStringLiteral("presets"), path("my.pxwpr")});
    QCOMPARE(text.status, 0);
    QCOMPARE(text.out, QByteArray("Plain: text, plain\nWith PNG: text, plain\n"));
    const Outcome json = run({QStringLiteral("presets"), QStringLiteral("--json"), path("my.pxwpr")});
    const QJsonArray presets = QJsonDocument::fromJson(json.out).array();
    QCOMPARE(presets.size(), 2);
    QCOMPARE(presets[0].toObject().size(), static_cast<qsizetype>(wPresetFields().size()));
    QCOMPARE(presets[0][QStringLiteral("fontSize")], QJsonValue(8));
    QVERIFY(presets[0][QStringLiteral("assignedSavingPreset")].isNull());
    QVERIFY(presets[1][QStringLiteral("assignedSavingPreset")].toInteger() > 0);
    const Outcome saving = run({QStringLiteral("presets"), QStringLiteral("--json"), path("my.pxspr")});
    QCOMPARE(namesIn(saving.out), list("As PNG|As TIFF"));
    QVERIFY(run({QStringLiteral("presets"), path("my.pxspr")})
                .out.startsWith("As PNG: PNG, \"filename\" \"-assigned\"\n"));
    QCOMPARE(QJsonDocument::fromJson(saving.out).array()[0][QStringLiteral("presetID")],
             presets[1][QStringLiteral("assignedSavingPreset")]);
}

void PresetsCommandTest::converting()
{
    const QString script = keyedArchivesScript();
    QProcess::execute(QStringLiteral("python3"), {script, m_folder->path()});
    // Some of its values cannot be read.
    const Outcome converted =
        run({QStringLiteral("presets"), QStringLiteral("--convert"), path("new.pxwpr"), path("old.pxwpr")});
    QVERIFY(converted.status == 1 && converted.err.contains("\"width\" of number 2 in its list"));
    QCOMPARE(run({QStringLiteral("presets"), path("new.pxwpr")}).status, 0);
    const auto json = [&](const char *name) {
        return run({QStringLiteral("presets"), QStringLiteral("--json"), path(name)}).out;
    };
    QVERIFY(json("new.pxwpr").size() > 1000);
    QCOMPARE(json("new.pxwpr"), json("old.pxwpr"));
    const QByteArray archive = outputOf(QStringLiteral("python3"), {script, path("new.pxwpr")});
    QVERIFY(archive.contains("\"FileVersion\": 1.2000000476837158") && archive.contains("\"WPAngle\": 90"));
    // Where something would get lost nothing is written.
    const QByteArray mine = contents("my.pxspr");
    write(QStringLiteral("later.pxspr"), QByteArray(mine).replace("1.4", "1.41"));
    write(QStringLiteral("raw.pxspr"), QByteArray(mine).replace("-assigned", "R&D"));
    write(QStringLiteral("markup.pxspr"), QByteArray(mine).replace("-assigned", "R&amp;D"));
    const std::pair<const char *, const char *> losses[] = {{"later.pxwpr", "later version"},
                                                            {"later.pxspr", "later version"},
                                                            {"raw.pxspr", "\"&D"},
                                                            {"markup.pxspr", "\"R&D\""},
                                                            {"in/a.png", "no file of"}};
    write(QStringLiteral("not"), "old");
    for (const auto &[name, reason] : losses) {
        const Outcome refused =
            run({QStringLiteral("presets"), QStringLiteral("--convert"), path("not"), path(name)});
        QVERIFY2(refused.status == 1 && refused.err.contains(reason), refused.err.constData());
        QCOMPARE(refused.err.count('\n'), 1);
        QCOMPARE(contents("not"), QByteArray("old"));
    }
    const Outcome misnamed =
        run({QStringLiteral("presets"), QStringLiteral("--convert"), path("my.pxwpr"), path("my.pxspr")});
    QVERIFY(misnamed.status == 1 && misnamed.err.contains("my.pxwpr\" is a name for watermark"));
    const Outcome folder =
        run({QStringLiteral("presets"), QStringLiteral("--convert"), path("in"), path("my.pxspr")});
    QVERIFY(folder.status == 1 && folder.err.count("cannot be written") == 1);
    // Otherwise what is read is told, and what is not.
    for (const char *name : {"later.pxwpr", "later.pxspr"}) {
        const Outcome printed = run({QStringLiteral("presets"), path(name)});
        QVERIFY(printed.status == 0 && printed.out.count('\n') == 2 && printed.err.contains("later version"));
    }
    const QStringList save{QStringLiteral("save"),
                           QStringLiteral("--dry-run"),
                           QStringLiteral("--wpresets"),
                           path("later.pxwpr"),
                           QStringLiteral("--saving-presets"),
                           path("later.pxspr"),
                           path("in")};
    QCOMPARE(run(save).err.count("later version"), 2);
    QCOMPARE(run(save + QStringList(QStringLiteral("--quiet"))).err, QByteArray());
    QCOMPARE(
        run({QStringLiteral("presets"), QStringLiteral("--convert"), path("new.pxspr"), path("my.pxspr")})
            .status,
        0);
    QCOMPARE(json("new.pxspr"), json("my.pxspr"));
}

void PresetsCommandTest::whatCannotBeReadIsTold()
{
    const QString script = keyedArchivesScript();
    QProcess::execute(QStringLiteral("python3"), {script, m_folder->path()});
    // Pictures are kept as they are; elements that are no presets are not.
    const Outcome pictures = run({QStringLiteral("presets"), path("pictures.pxwpr")});
    QCOMPARE(pictures.status, 0);
    QCOMPARE(pictures.err.count('\n'), 7);
    QVERIFY(pictures.err.contains("\"vector\"") && pictures.out.contains("vector: image, cannot be read\n"));
    const Outcome converted = run(
        {QStringLiteral("presets"), QStringLiteral("--convert"), path("kept.pxwpr"), path("pictures.pxwpr")});
    QVERIFY(converted.status == 0 && converted.err == pictures.err);
    for (const char *target : {"rest.pxwpr", "some.pxwpr"}) {
        const Outcome partly =
            run({QStringLiteral("presets"), QStringLiteral("--convert"), path(target), path("some.pxwpr")});
        QVERIFY(partly.status == 1 && partly.err.contains("number 5 "));
    }
    QCOMPARE(run({QStringLiteral("presets"), path("rest.pxwpr")}).status, 0);
    QCOMPARE(run({QStringLiteral("presets"), path("some.pxwpr")}).status, 1); // still holds all of it

    const auto saved = [&](const QString &name) {
        return run({QStringLiteral("save"), QStringLiteral("--wpresets"), path("pictures.pxwpr"),
                    QStringLiteral("--apply"), name, QStringLiteral("--output"), path("out"), path("in")});
    };
    for (const auto &[name, status] : {std::pair("vector", 2), std::pair("ends early", 1)}) {
        const Outcome outcome = saved(QString::fromLatin1(name));
        QCOMPARE(outcome.status, status);
        QVERIFY(outcome.err.contains(QByteArray("preset \"") + name + "\" cannot be read: "));
        QVERIFY(entries(path("out")).isEmpty());
    }
    QCOMPARE(saved(QStringLiteral("smaller one left")).status, 0);
}

void PresetsCommandTest::noPresets_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QByteArray>("reason");
    const auto add = [](const char *file, const QByteArray &reason, const QByteArray &contents = {}) {
        QTest::newRow(file) << QString::fromLatin1(file) << contents << reason;
    };
    add("in/a.png", "it is no file of presets");
    add("in", "it is not a regular file");
    add("missing", "No such file");
    add("empty.pxwpr", "it is empty");
    add("cut.txt", "it is damaged", "bplist00");
    add("comment.txt", "it is no archive of objects",
        "<?xml version='1.0'?><!--" + QByteArray(2000, 'x') + "--><!DOCTYPE plist><plist><dict/></plist>");
    add("other.pxspr", "of saving presets: (line 1, near", "<svg></svg>");
}

void PresetsCommandTest::noPresets()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, contents);
    QFETCH(QByteArray, reason);
    if (file.contains(u'.') && !file.contains(u'/'))
        write(file, contents);
    const Outcome outcome = run({QStringLiteral("presets"), m_folder->path(file)});
    QCOMPARE(outcome.status, 1);
    QVERIFY(outcome.out.isEmpty());
    QVERIFY2(outcome.err.contains(QFileInfo(file).fileName().toUtf8() + ": ") && outcome.err.contains(reason),
             outcome.err.constData());
    QCOMPARE(outcome.err.count('\n'), 1);
}

void PresetsCommandTest::applying_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("copies"); // of the two photos
    QTest::newRow("all, with a copy each")
        << list("--wpresets|my.pxwpr") << list("a-Plain.png|a-With PNG.png|b-Plain.jpg|b-With PNG.jpg");
    QTest::newRow("assigned") << list("--wpresets|my.pxwpr|--saving-presets|my.pxspr|--apply|With PNG")
                              << list("a-assigned.png|b-assigned.png");
    QTest::newRow("assigned, ignored")
        << list("--wpresets|my.pxwpr|--saving-presets|my.pxspr|--apply|With PNG|--ignore-assigned")
        << list("a-With PNG.png|b-With PNG.jpg");
    QTest::newRow("combined") << list("--wpresets|my.pxwpr|--combine") << list("a.png|b.jpg");
    QTest::newRow("named twice, drawn once")
        << list("--wpresets|my.pxwpr|--apply|Plain|--apply|Plain|--combine") << list("a.png|b.jpg");
    QTest::newRow("a saving preset for the run")
        << list("--wpresets|my.pxwpr|--saving-presets|my.pxspr|--saving-preset|As TIFF|--apply|Plain")
        << list("a-assigned.tif|b-assigned.tif");
}

void PresetsCommandTest::applying()
{
    QFETCH(QStringList, options);
    QFETCH(QStringList, copies);
    for (QString &option : options) {
        if (option.startsWith(QLatin1String("my.")))
            option = m_folder->path(option);
    }
    const Outcome outcome = run(QStringList{QStringLiteral("save")} + options +
                                QStringList{QStringLiteral("--output"), path("out"), path("in")});
    QVERIFY2(outcome.status == 0, outcome.err.constData());
    QCOMPARE(entries(path("out")), copies);
}

void PresetsCommandTest::wrongUsage_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("unknown watermark")
        << list("--wpresets|my.pxwpr|--apply|Nope") << QByteArray("\"Plain\", \"With PNG\"");
    QTest::newRow("unknown saving preset")
        << list("--wpresets|my.pxwpr|--saving-presets|my.pxspr|--saving-preset|Nope")
        << QByteArray("\"As PNG\", \"As TIFF\"");
    QTest::newRow("two kinds of watermark")
        << list("--wpresets|my.pxwpr|--text|x") << QByteArray("--wpresets");
    QTest::newRow("a field") << list("--apply|Plain|--set|width=3") << QByteArray("--apply");
    QTest::newRow("saving presets for watermarks")
        << list("--wpresets|my.pxspr") << QByteArray("my.pxspr\": it is a file of saving presets");
    QTest::newRow("watermarks for saving presets")
        << list("--text|x|--saving-presets|my.pxwpr") << QByteArray("my.pxwpr\": it is a file of watermark");
}

void PresetsCommandTest::wrongUsage()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, message);
    for (QString &option : options) {
        if (option.startsWith(QLatin1String("my.")))
            option = m_folder->path(option);
    }
    const Outcome outcome = run(QStringList{QStringLiteral("save")} + options +
                                QStringList{QStringLiteral("--output"), path("out"), path("in")});
    QCOMPARE(outcome.status, 2);
    QVERIFY2(outcome.err.contains(message), outcome.err.constData());
    QVERIFY(!QFile::exists(path("out")));
}

void PresetsCommandTest::theUsersOwnPresets()
{
    const auto save = [&](const char *name) {
        return run(list("save|--apply") + list(name) +
                   QStringList{QStringLiteral("--output"), path("out"), path("in/b.jpg")});
    };
    // Before there are any: the examples. They are not written.
    QCOMPARE(save("Logo with shadow").status, 0);
    const QString home = path("XDG_DATA_HOME/Quorvel/Plexa");
    QVERIFY(!QFile::exists(home + QStringLiteral("/WPresets.pxwpr")));
    QVERIFY(QDir().mkpath(home) && QFile::copy(path("my.pxwpr"), home + QStringLiteral("/WPresets.pxwpr")) &&
            QFile::copy(path("my.pxspr"), home + QStringLiteral("/SPresets.pxspr")));
    QCOMPARE(save("Logo with shadow").status, 2);
    QCOMPARE(save("With PNG").status, 0);
    QCOMPARE(entries(path("out")), list("b-Logo with shadow.jpg|b-assigned.png"));
    // Saving presets that cannot be read matter to who takes one of them.
    write(QStringLiteral("XDG_DATA_HOME/Quorvel/Plexa/SPresets.pxspr"), "bad");
    QCOMPARE(save("With PNG").status, 2);
    QCOMPARE(save("Plain|--saving-preset|As PNG").status, 2);
    const Outcome warned = save("Plain");
    QVERIFY2(warned.status == 0 && warned.err.contains("SPresets.pxspr\": it is no file"),
             warned.err.constData());
    const Outcome ignored = save("With PNG|--ignore-assigned");
    QVERIFY2(ignored.status == 0 && !ignored.err.contains("SPresets"), ignored.err.constData());
    QCOMPARE(entries(path("out")), list("b-Logo with shadow.jpg|b-Plain.jpg|b-With PNG.jpg|b-assigned.png"));
}

void PresetsCommandTest::unmarkedCopies_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("unseen"); // as the message calls it; none: something is seen
    const QString lines = QStringLiteral("textTokens=[\"city\",\"\\n\",\"state\"]");
    QTest::newRow("no date") << list("--apply|Film date") << QByteArray("it");
    QTest::newRow("no date, of two") << list("--apply|Film date|--apply|GPS position")
                                     << QByteArray("\"Film date\"");
    QTest::newRow("no position") << list("--apply|GPS position") << QByteArray();
    QTest::newRow("two empty lines") << QStringList{QStringLiteral("--set"), lines} << QByteArray("it");
    QTest::newRow("two empty lines on a bar")
        << QStringList{QStringLiteral("--set"), lines} + list("--set|background=true") << QByteArray();
    QTest::newRow("outside of the photo") << list("--text|x|--set|offsetHorizontal=9000") << QByteArray("it");
    QTest::newRow("see-through") << list("--text|x|--set|opacity=0") << QByteArray("it");
}

/// A copy on which nothing is to be seen is told of.
void PresetsCommandTest::unmarkedCopies()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, unseen);
    const Outcome outcome = run(list("save|--save-set|filenameTokens=filename") + options +
                                QStringList{QStringLiteral("--output"), path("out"), path("in/a.png")});
    QCOMPARE(outcome.status, 0);
    const bool isMarked = unseen.isEmpty();
    QCOMPARE(outcome.err.count("saved without a watermark"), isMarked ? 0 : 1);
    QVERIFY2(isMarked || outcome.err.contains("nothing of " + unseen + " is"), outcome.err.constData());
    QImage copy(path("out/a.png"));
    copy.setColorSpace({});
    QCOMPARE(copy.convertToFormat(QImage::Format_RGB32) != gradient({120, 200}), isMarked);
}

QTEST_GUILESS_MAIN(PresetsCommandTest)
#include "presets_test.moc"
