// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/programruns.h"
#include "presets/savingpreset.h"
#include "support/datarows.h"
#include "support/exiftool.h"
#include "support/photofolder.h"
#include "support/picturedifference.h"

#include <QDateTime>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

using namespace plexa::test;
using namespace Qt::StringLiterals;

namespace
{

/// One for each copy.
QList<QJsonObject> jsonLines(const QByteArray &out)
{
    QList<QJsonObject> lines;
    for (const QByteArray &line : out.split('\n')) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        if (object.contains(u"source"_s))
            lines.append(object);
    }
    return lines;
}

QJsonObject jsonSummary(const QByteArray &out)
{
    return QJsonDocument::fromJson(out.trimmed().split('\n').last())[u"summary"_s].toObject();
}

QImage uprightRgb(const QString &path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    return reader.read().convertToFormat(QImage::Format_RGB32);
}

/// The rectangle of a result line in QImage's coordinates.
QRect rectOf(const QJsonObject &line)
{
    const QJsonArray rect = line[u"rect"_s].toArray();
    const double height = line[u"size"_s].toArray()[1].toDouble();
    return QRectF(rect[0].toDouble(), height - rect[1].toDouble() - rect[3].toDouble(), rect[2].toDouble(),
                  rect[3].toDouble())
        .toAlignedRect();
}

/// Writes saving presets with these values. @return their file
QString savingPresetsFile(const QString &path, const QList<plexa::SavingPresetValues> &list)
{
    std::vector<std::shared_ptr<plexa::SavingPreset>> presets;
    for (const plexa::SavingPresetValues &values : list)
        presets.push_back(std::make_shared<plexa::SavingPreset>(values));
    return plexa::SavingPreset::writeObjects(presets, path, u"Quorvel Plexa"_s) ? path : QString();
}

} // namespace

class CommandLineTest : public QObject, private ProgramRuns
{
    Q_OBJECT

private Q_SLOTS:
    void init() { startAnew(); }

    void realPhotos()
    {
        PLEXA_NEEDS_PHOTOS();
        const QString photos = photosFolder();
        const ProgramRun outcome =
            run("save --text '(c) Test' --json --output %1 %2", path("out"), photos + u"/jpeg"_s);
        QVERIFY2(outcome.status == 0, outcome.err.constData());
        const QList<QJsonObject> lines = jsonLines(outcome.out);
        QCOMPARE(lines.size(), photoPaths().filter(photos + u"/jpeg/"_s).size());
        for (const QJsonObject &line : lines) {
            const QString source = line[u"source"_s].toString();
            QCOMPARE(line[u"status"_s].toString(), u"written"_s);
            const QImage before = uprightRgb(source);
            const QImage after = uprightRgb(line[u"output"_s].toString());
            const QJsonArray size = line[u"size"_s].toArray();
            QCOMPARE(after.size(), QSize(size[0].toInt(), size[1].toInt()));
            QVERIFY2(before.size() != after.size() || differenceOf(before, after).psnr() < 60,
                     qPrintable(source + u" carries no watermark"_s));
        }
    }

    void picturesAsWatermarks()
    {
        QVERIFY(flatPicture({40, 20}, QColor(200, 0, 40)).save(path("logo.png")));
        const ProgramRun outcome =
            run("save --image %1 --set width=100 --set offsetHorizontal=0 --set offsetVertical=0 --json "
                "--output %2 %3",
                path("logo.png"), path("out"), path("in/a.png"));
        QVERIFY2(outcome.status == 0, outcome.err.constData());
        // As wide as the photo, in its lower left corner.
        const QRect mark(0, 140, 120, 60);
        QCOMPARE(rectOf(jsonLines(outcome.out).value(0)), mark);
        const QImage copy(path("out/a.png"));
        QCOMPARE(differenceOf(pixelsOf(copy), smoothPicture({120, 200})).rect, mark);
        const QImage marked = copy.copy(mark.adjusted(1, 1, -1, -1)); // its edges may be blended
        QCOMPARE(differenceOf(pixelsOf(marked), flatPicture(marked.size(), QColor(200, 0, 40))).worst, 0);
    }

    void datesOfCopies()
    {
        const QDateTime old(QDate(2001, 2, 3), QTime(4, 5, 6));
        const QDateTime now = QDateTime::currentDateTime().addSecs(-2); // file systems round
        QFile photo(path("in/a.png"));
        QVERIFY(photo.open(QIODevice::ReadWrite) &&
                photo.setFileTime(old, QFileDevice::FileModificationTime));
        photo.close();
        const auto dateOfCopy = [&](const char *option) {
            run(words("save --text x --conflict overwrite --output %1 %2", path("out"), path("in/a.png")) +
                words(option));
            return QFileInfo(path("out/a.png")).lastModified();
        };
        QCOMPARE(dateOfCopy(""), old);
        QVERIFY(dateOfCopy("--no-creation-date") >= now);
    }

    /// Results that do not arrive are a failure.
    void fullStandardOutput()
    {
        for (const QStringList &arguments : {words("save --text x --output %1 %2", path("out"), path("in")),
                                             words("inspect --json %1", path("in/a.png")),
                                             words("presets %1", savingPresetsFile(path("presets"), {{}}))}) {
            const ProgramRun outcome = runProgram(
                u"/bin/sh"_s, words("-c %1 %2", "exec \"$0\" \"$@\" > /dev/full", program()) + arguments);
            QCOMPARE(outcome.status, 1);
            QVERIFY(outcome.err.contains("could not be written to the standard output"));
        }
    }

    void wrongUsage()
    {
        using Row = std::tuple<Text, Text>;
        for (const auto &[options, message] : std::initializer_list<Row>{
                 {"", "--text"},
                 {"--text x --frobnicate 1", "frobnicate"},
                 {"--text x --set anchor=8", "anchor"},
                 {"--text x --set anchorPoint", "FIELD=VALUE"},
                 {"--text x --set widthUnit=miles", "% of width"},
                 {"--text x --set fontSize=big", "fontSize"},
                 {"--text x --set fillColor=#12", "fillColor"},
                 {"--text '' --set background=true", "--text"},
                 {"--image 'no such logo.png'", "no such logo.png"},
                 {"--image /dev/null", "/dev/null"},
                 {"--image /dev/zero", "/dev/zero"},
                 {"--set type=Image", "--image"},
                 {"--text x --save-set jpegQuality=101", "jpegQuality"},
                 {"--text x --save-set tiffCompressionLZW=1", "true or false"},
                 {"--text x --save-set quality=80", "imageFormat, alternativeImageFormat, jpegQuality"},
                 {"--text x --save-set filenameTokens=[]", "filenameTokens: at least one"},
                 {"--text x --save-set filenameTokens=", "filenameTokens: at least one"},
                 {"--text x --save-set filenameTokens=[\"\",\"\"]", "filenameTokens: at least one"},
                 {"--text x --save-set filenameTokens=[1]", "a list of texts"},
                 {"--text x --save-set fileBaseNameCase=title", "do not change"},
                 {"--text x --save-set alternativeImageFormat=Original", "alternativeImageFormat"},
                 {"--text x --jobs 0", "jobs"},
                 {"--text x --conflict maybe", "conflict"},
                 {"--text x --saving-presets /dev/null", "/dev/null"},
                 {"--text x --saving-preset Web", "presets"},
                 {"--text x --saving-presets ''", "nothing"},
                 {"--text x --output= x", "--output= there is nothing"},
                 {"--text x --saving-preset ''", "nothing"},
                 {"--text x --replicate-from ''", "nothing"},
                 {"--text x --replicate-from 'no such folder'", "no such folder"},
                 {"--text x --set blendMode=multiply", "Multiply, Screen"},
                 {"--text x --set font=Helvetica", "no font \"Helvetica\""},
                 {"--text x --set 'font=DejaVu Sans'", "DejaVuSans"},
                 {"--set 'textTokens=[(c) ,creator]'", "not JSON"},
                 {"--text '{Creator}'", "mean {creator}"},
                 {"--text 'a{'", "no \"}\""},
                 {"--text x --name '{nope}'", "plexa-cli tokens"},
                 {"--text x --name a/b", "a slash cannot be part of a name"},
                 {"--text x --format webp", "JPEG"},
                 {"--text x --format PNG --quality 50", "no effect on PNG"},
                 {"--text x --format PNG --save-set imageFormat=JPEG", "--format and --save-set imageFormat"},
                 {"--image a.png --set type=Text", "--set type has no effect"},
                 {"--text x --combine", "--combine has no effect"},
                 {"--image %2 --set fontSize=9", "--set fontSize has no effect on a picture"},
                 {"--text x --start 5", "--start has no effect"},
                 {"--text x --quality 50 --no-recurse --files-from %3", "no copy is a JPEG or HEIC"},
                 {"--set textTokens=5", "list of texts in JSON"},
                 {"--text x --set AnchorPoint=8", "did you mean \"anchorPoint\"?"},
                 {"--text x --save-set jpegquality=80", "did you mean \"jpegQuality\"?"},
                 {"--text x --saving-presets %1 --saving-preset best", "did you mean \"Best\"?"},
                 {"--text '{sequence #}'", "{sequence #} is a token of names of copies only"},
                 {"--text x --files-from .", "\".\": it is a folder"},
                 {"--wpresets nowhere", "\"nowhere\": there is no file or folder of this name"},
                 {"--set image=nowhere", "there is no file or folder of this name"},
                 {"--text x --ignore-assigned", "--ignore-assigned has no effect"},
                 {"--text x --set image=a.png", "no effect"},
                 {"--text x --set textTokens=y", "together"},
                 {"--text x --image a.png", "--text and --image cannot"},
                 {"--text x --text y", "more than once"},
                 {"--text x -0", "-0 needs --files-from"},
                 {"--text x --files-from nowhere", "nowhere"},
                 {"--text x --jobs", "--jobs needs a value"},
                 {"--text x --saving-presets %1 --saving-preset WEBP", "WEBP"},
                 {"--text x --saving-presets %1 --saving-preset Alternative", "\"Original\""},
                 {"--text x --saving-presets %1 --saving-preset Best", "quality is 500"}}) {
            const QString presets =
                savingPresetsFile(path("presets"), {{.name = u"WEBP"_s, .imageFormat = u"WEBP"_s},
                                                    {.name = u"Alternative"_s,
                                                     .imageFormat = u"Original"_s,
                                                     .alternativeImageFormat = u"Original"_s},
                                                    {.name = u"Best"_s, .jpegQuality = 500}});
            write("list", path("in/a.png").toUtf8());
            const QString photos = options.contains(u"--files-from %3") ? QString() : path("in");
            const ProgramRun outcome =
                run(words("save --output %1", path("out")) + QStringList(photos).filter(u"in"_s) +
                    words(options.toUtf8().constData(), presets, path("in/a.png"), path("list")));
            QCOMPARE(outcome.status, 2);
            QVERIFY2(outcome.err.contains(message.toUtf8()), outcome.err.constData());
            QVERIFY2(outcome.err.startsWith("plexa-cli: ") && outcome.err.count('\n') == 1,
                     outcome.err.constData());
            QVERIFY(outcome.out.isEmpty() && !QFile::exists(path("out")));
        }
        for (const auto &[arguments, message] : {std::pair("", "no command"),
                                                 {"frob", "no command \"frob\""},
                                                 {"inspect --frob", "option --frob"},
                                                 {"fields Font", "did you mean \"font\"?"}}) {
            const ProgramRun outcome = run(arguments);
            QVERIFY2(outcome.status == 2 && outcome.err.contains(message), outcome.err.constData());
        }
    }

    /// Two texts are the same if their copies are.
    void tokensInBraces()
    {
        const auto copyWith = [&](const QStringList &options) {
            const ProgramRun outcome =
                run(words("save --conflict overwrite -q -o %1 %2", path("out"), path("in/a.png")) + options);
            return outcome.status == 0 ? contentsOf(path("out/a.png")) : outcome.err;
        };
        for (const auto &[text, pieces] :
             {std::pair("{filename}{{{height}}", R"(["filename","{","height","}"])"),
              {"filename", R"(["f","ilename"])"},
              {"{width}width", R"(["width","w","idth"])"}})
            QCOMPARE(copyWith(words("--text %1", text)), copyWith(words("--set textTokens=%1", pieces)));
        QVERIFY(copyWith(words("--text {filename}")) != copyWith(words("--text filename")));
    }

    void namesAndPathsFromOptions()
    {
        QVERIFY(QDir().mkpath(path("in/deep")) && smoothPicture({40, 40}).save(path("in/deep/c.jpg")));
        const ProgramRun named = run("save --text x -j 2 -q --no-recurse --format tif --start 8 --name "
                                     "'{{{sequence ##}_{filename}width' -o %1 %2",
                                     path("out"), path("in"));
        QVERIFY2(named.status == 0 && named.err.isEmpty(), named.err.constData());
        QCOMPARE(namesIn(path("out")), words("{08_awidth.tif {09_bwidth.tif"));
        // The paths of a list, with the null byte or the line as their end.
        for (const char *command :
             {"printf '%s\\0' \"$1/a.png\" \"$1/b.jpg\" | \"$0\" save --text x -n --json --files-from - -0",
              "printf '%s\\n\\n' \"$1/a.png\" \"$1/b.jpg\" > list; \"$0\" save --text x -n --json "
              "--files-from list"}) {
            const ProgramRun listed = runProgram(
                u"/bin/sh"_s, words("-c %1 %2 %3", u"cd \"$1/..\"; "_s + QLatin1StringView(command),
                                    program(), path("in")));
            QVERIFY2(listed.status == 0, listed.err.constData());
            QCOMPARE(jsonLines(listed.out).size(), 2);
        }
    }

    void piecesThatAreNearlyTokens()
    {
        const ProgramRun outcome =
            run("save -n --set 'textTokens=[\"Creator\",\"Copyright: \",\"copyright\"]' "
                "--save-set 'filenameTokens=[\"file name\",\"sequence\",\"x\"]' %1",
                path("in"));
        QCOMPARE(outcome.err.count("is literal text"), 3);
        for (const char *notice :
             {"textTokens: \"Creator\" is literal text; the token is \"creator\"\n",
              "filenameTokens: \"file name\" is literal text; the token is \"filename\"\n",
              "\"sequence\" is literal text; the token is \"sequence #\"\n"})
            QVERIFY2(outcome.err.contains(notice), outcome.err.constData());
    }

    void listsAndHelp()
    {
        const QJsonArray tokens = QJsonDocument::fromJson(run("tokens --json").out).array();
        QCOMPARE(tokens.size(), 68);
        for (const QJsonValue &token : tokens)
            QVERIFY2(!token[u"example"_s].toString().isEmpty(), qPrintable(token[u"name"_s].toString()));
        const QJsonArray fields = QJsonDocument::fromJson(run("fields --json").out).array();
        QCOMPARE(fields.size(), 44 + 8 + 44);
        const QJsonArray width = QJsonDocument::fromJson(run("fields --json width").out).array();
        QCOMPARE(width.size(), 1);
        QCOMPARE(width[0][u"highest"_s], QJsonValue(100'000));
        QVERIFY(run("fields font").out.contains("DejaVuSans-Bold"));
        QCOMPARE(run("fields textAlignment offsetVertical").out,
                 "  textAlignment           whole number from 0 to 2 (0 left, 1 centered, 2\n"
                 "                          right); default: 0\n"
                 "  offsetVertical          whole number from -100000 to 100000, in\n"
                 "                          offsetVerticalUnit; default: 1\n");
        QVERIFY(run("tokens").out.contains("\n  filename              IMG_4211\n"));
        QCOMPARE(run("fields nope").status, 2);
        const ProgramRun manual = run("--manual");
        QCOMPARE(manual.status, 0);
        for (const char *part : {".SS presets\n", "\\fB\\-o\\fR, \\fB\\-\\-output\\fR \\fIDIR\\fR\n",
                                 "\\fBtiffCompressionLZW\\fR\n", "\\fB{watermark preset name}\\fR\n"})
            QVERIFY2(manual.out.contains(part), part);
        QVERIFY(!manual.out.contains("DejaVu"));
        for (const char *command : {"--help", "save --help", "inspect --help", "presets --help",
                                    "fields --help", "tokens --help", "fields"}) {
            const ProgramRun printed = run(command);
            QCOMPARE(printed.status, 0);
            for (const QString &line : QString::fromUtf8(printed.out).split(u'\n'))
                QVERIFY2(line.size() <= 80, qPrintable(line));
        }
    }

    void editsMetadata()
    {
        PLEXA_NEEDS_PROGRAMS("exiftool");
        outputOf("exiftool -q -overwrite_original -EXIF:Artist=Bob -IPTC:City=Rome -IPTC:Headline=News "
                 "-IPTC:CopyrightNotice=Mine -XMP-photoshop:City=Rome -GPS:GPSLatitude=1 %1",
                 path("in/b.jpg"));
        const QString out = path("out");
        QCOMPARE(run("save --text x --output %1 --clear all-but-copyright --meta iptcCity=Oslo --meta "
                     "iptcCreator=Ada --meta iptcKeywords=sea,sky --meta exifExposureTime=1/125 --name "
                     "{city} %2",
                     out, path("in/b.jpg"))
                     .status,
                 0);
        const QString copy = out + u"/Oslo.jpg"_s;
        for (const auto &[tag, value] : {std::pair("IPTC:City", "Oslo"),
                                         {"XMP:City", "Oslo"},
                                         {"IPTC:By-line", "Ada"},
                                         {"EXIF:Artist", "Ada"},
                                         {"IPTC:Keywords", "sea\nsky"},
                                         {"EXIF:ExposureTime", "0.008"},
                                         {"IPTC:Headline", ""},
                                         {"IPTC:CopyrightNotice", "Mine"},
                                         {"GPS:GPSLatitude", ""}})
            QCOMPARE(exiftoolValue(copy, QString::fromUtf8(tag)).trimmed(), QByteArray(value));
        for (const auto &[arguments, message] :
             {std::pair("--meta iptcTown=x", "\"plexa-cli fields\" lists the fields"),
              {"--meta iptccity=x", "did you mean \"iptcCity\"?"},
              {"--meta exifISOSpeed=fast", "exifISOSpeed: it must be a whole number from 0 to 65535"},
              {"--meta exifDateTimeOriginalStr=today", "it must be a date"},
              {"--clear everything", "the groups are all, all-but-copyright,"}}) {
            const ProgramRun refused =
                run((QByteArray("save --text x %1 ") + arguments).constData(), path("in"));
            QCOMPARE(refused.status, 2);
            QVERIFY2(refused.err.contains(message), refused.err.constData());
        }
    }

    /// Each costs a line and the exit status; the other photos are saved.
    void badFilesDoNotStopTheOthers()
    {
        QByteArray jpeg = contentsOf(path("in/b.jpg"));
        write("in/0 empty.jpg", {});
        write("in/1 text.png", "no picture");
        write("in/2 cut.jpg", jpeg.left(jpeg.size() * 2 / 3));
        write("in/b.jpg", jpeg.insert(2, QByteArray("\xFF\xFE\0\4\1\2", 6))); // a comment that is not text
        write("in/notes.txt", "not a photo");
        // A name that is not UTF-8, which QFile would not create.
        std::ofstream(path("in").toStdString() + "/3 caf\xe9.jpg") << "?";
        const QString circle = path("circle.jpg");
        QVERIFY(QFile::link(circle, circle));
        const ProgramRun outcome =
            run("save --text x --output %1 %2 %3 %4", path("out"), circle, path("in"), path("in/*.jp2"));
        std::filesystem::remove_all(path("in").toStdString()); // Qt could not
        QCOMPARE(outcome.status, 1);
        QCOMPARE(namesIn(path("out")), words("a.png b.jpg"));
        const QStringList lines = QString::fromUtf8(outcome.err).trimmed().split(u'\n');
        const QString in = u"plexa-cli: "_s + QRegularExpression::escape(path("in/"));
        const QStringList expected{in + u"\\*\\.jp2: .*no file.*"_s,
                                   u"plexa-cli: "_s + QRegularExpression::escape(circle) +
                                       u": .*symbolic.*"_s,
                                   in + u"0 empty\\.jpg: .+"_s,
                                   in + u"1 text\\.png: .+"_s,
                                   in + u"2 cut\\.jpg: .+"_s,
                                   in + u"3 caf.+UTF-8"_s,
                                   in + u"b\\.jpg: the copy leaves out: comment"_s,
                                   u"plexa-cli: copies: 2 written, 5 failed; 1 path not read"_s};
        QCOMPARE(lines.size(), expected.size());
        for (qsizetype i = 0; i < lines.size(); ++i)
            QVERIFY2(QRegularExpression(QRegularExpression::anchoredPattern(expected[i]))
                         .match(lines[i])
                         .hasMatch(),
                     qPrintable(lines[i]));

        write("d.jpg", jpeg.replace(2, 6, QByteArray("\xFF\xFE\0\5abc", 7)));
        QVERIFY(run("save --text x --save-set imageFormat=TIFF --output %1 %2", path("out"), path("d.jpg"))
                    .err.contains("d.jpg: the copy leaves out: comment\n"));
        const QByteArray json =
            run("save --text x --json --save-set imageFormat=TIFF --output %1 %2", path("out"), path("d.jpg"))
                .out;
        QCOMPARE(jsonLines(json)[0][u"dropped"_s], QJsonValue(QJsonArray{u"comment"_s}));
    }

    void dryRunAgreesWithTheRun()
    {
        // The files of the result lines, below "out"; empty: skipped.
        for (const auto &[extra, expected] :
             {std::pair("", "a-1.png b.jpg b-1.jpg"),
              {"--conflict overwrite", "a.png b.jpg b-1.jpg"},
              {"--conflict skip", "'' b.jpg b-1.jpg"},
              {"--replicate-from %1", "a-1.png b.jpg deep/b.jpg"},
              {"--save-set 'filenameTokens=[\"city\",\"width\",\"_\",\"sequence ##\"]'",
               "120_01.png 320_02.jpg 40_03.jpg"}}) {
            startAnew();
            const QStringList options = words(extra, path("in"));
            const QStringList files = words(expected);
            QVERIFY(QDir().mkpath(path("in/deep")) && smoothPicture({40, 40}).save(path("in/deep/b.jpg")));
            write("out/a.png", "mine");
            const QStringList arguments =
                words("save --set textTokens=[\"(c)\",\"creator\"] --json --jobs 3 --output %1 %2",
                      path("out"), path("in")) +
                options;
            const ProgramRun plan = run(arguments + words("--dry-run"));
            QCOMPARE(plan.status, 0);
            QCOMPARE(namesIn(path("out")), words("a.png"));
            const ProgramRun real = run(arguments);
            QCOMPARE(real.status, 0);
            QCOMPARE(contentsOf(path("out/a.png")) == "mine", options.value(1) != u"overwrite");
            const QList<QJsonObject> planned = jsonLines(plan.out);
            const QList<QJsonObject> done = jsonLines(real.out);
            QCOMPARE(planned.size(), files.size());
            QCOMPARE(done.size(), files.size());
            for (int i = 0; i < files.size(); ++i) {
                for (const char *key : {"source", "output", "sequence", "wpreset", "conflict"})
                    QCOMPARE(done[i][QLatin1String(key)], planned[i][QLatin1String(key)]);
                const QString output = done[i][u"output"_s].toString();
                QCOMPARE(output.isEmpty() ? output : QDir(path("out")).relativeFilePath(output), files[i]);
                QCOMPARE(done[i][u"status"_s].toString(), output.isEmpty() ? u"skipped"_s : u"written"_s);
                QVERIFY(output.isEmpty() || (!QImage(output).isNull() &&
                                             planned[i][u"emptyTokens"_s].toArray().contains(u"creator"_s)));
            }
        }
    }

    void copiesBesideTheirOriginals()
    {
        for (const auto &[options, files] :
             {std::pair("", "a-1.png a.png b-1.jpg b.jpg"),
              {"--conflict overwrite", "a.png b.jpg"},
              {"--save-set 'fileBaseNameCase=upper case' --save-set 'fileExtensionCase=\"upper case\"' "
               "--save-set imageFormat=TIFF --save-set tiffCompressionLZW=false",
               "A.TIF B.TIF a.png b.jpg"}}) {
            startAnew();
            const ProgramRun outcome = run(words("save --text x %1", path("in")) + words(options));
            QVERIFY2(outcome.status == 0, outcome.err.constData());
            QCOMPARE(namesIn(path("in")), words(files));
            QVERIFY(!outcome.out.contains("skipped"));
        }
        // Without compression it has all its bytes.
        QVERIFY(QFileInfo(path("in/A.TIF")).size() > 120 * 200 * 3);
        // The copies of the first run are no photos of the second one, but an original beside them is.
        startAnew();
        QVERIFY(QDir().mkpath(path("in/out")) && smoothPicture({40, 40}).save(path("in/out/c.png")));
        for (const char *copies : {"3 written", "2 written; 3 copies of earlier runs left out"}) {
            const ProgramRun outcome =
                run("save --text x --conflict overwrite --output %1 %2", path("in/out"), path("in"));
            QVERIFY2(outcome.err.contains(copies), outcome.err.constData());
            QCOMPARE(namesIn(path("in/out")), words("a.png b.jpg c.png"));
        }
    }

    /// Libraries take some names for the standard input, for addresses, or for lists.
    void namesWithAnotherMeaning()
    {
        const QStringList names{u"-"_s, u"--quiet"_s, u"data:x"_s, u"%1 %n"_s, u"[p,q]"_s};
        QVERIFY(QDir().mkpath(path("odd")) && smoothPicture({30, 20}).save(path("photo.tif")));
        for (const QString &name : names)
            QVERIFY(QFile::copy(path("photo.tif"), path("odd/") + name));
        QProcess process;
        process.setWorkingDirectory(path("odd"));
        process.setStandardInputFile(u"/dev/zero"_s);
        process.start(program(), words("save --text x --output out --") + names);
        QVERIFY(process.waitForFinished(60'000));
        QCOMPARE(process.readAllStandardError(), "plexa-cli: copies: 5 written\n");
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(namesIn(path("odd")).size(), names.size() + 1);
        QCOMPARE(namesIn(path("odd/out")).size(), names.size());
    }

    void namesThatAreNotText()
    {
        const char *const inspection = "exec \"$0\" inspect \"$(printf 'a\\377')\"";
        const ProgramRun inspected = runProgram(u"sh"_s, words("-c %1 %2", inspection, program()));
        QCOMPARE(inspected.status, 1);
        QVERIFY2(inspected.err.contains(": its name is not valid UTF-8"), inspected.err.constData());
        const char *const script =
            "cd \"$1\"; exec \"$0\" save --text x --output \"$(printf 'new\\377')\" in";
        const ProgramRun refused =
            runProgram(u"sh"_s, words("-c %1 %2 %3", script, program(), m_folder->path()));
        QCOMPARE(refused.status, 2);
        QVERIFY2(refused.err.contains("--output: its name is not valid UTF-8"), refused.err.constData());
        QCOMPARE(namesIn(m_folder->path()), words("in"));
    }

    void dryRunSeesWhereNothingCanBeWritten()
    {
        QVERIFY(QDir().mkpath(path("out/a.png")));
        for (const char *dryRun : {"--dry-run", ""}) {
            const ProgramRun folder =
                run(words("save --text x --conflict overwrite --output %1 %2", path("out"), path("in")) +
                    words(dryRun));
            QCOMPARE(folder.status, 1);
            QVERIFY2(folder.err.contains("a folder of that name exists"), folder.err.constData());
            QVERIFY2(folder.err.contains("1 failed"), folder.err.constData());
        }
    }

    /// Lines about failures and about copies with a notice or without a watermark are left.
    void quietPrintsFailuresAndNotices()
    {
        write("in/0 empty.jpg", {});
        QImage photo = smoothPicture({40, 30});
        photo.setDotsPerMeterX(10000);
        photo.setDotsPerMeterY(3000);
        QVERIFY(photo.save(path("in/c.png")));
        for (const auto &[extra, sources] :
             {std::pair("", ""),
              {"--json", "nowhere '0 empty.jpg' c.png"},
              {"--json --set opacity=0", "nowhere '0 empty.jpg' a.png b.jpg c.png"},
              {"--json --set opacity=0 --render", "nowhere '0 empty.jpg' a.png b.jpg c.png"}}) {
            const ProgramRun outcome =
                run(words("save --text x --quiet --save-set filenameTokens=\"filename\" --output %1 %2 %3",
                          path("out"), path("nowhere"), path("in")) +
                    words(extra));
            QCOMPARE(outcome.status, 1);
            for (const char *message : {"nowhere: ", "in/0 empty.jpg: "})
                QVERIFY(outcome.err.contains("plexa-cli: " + path(message).toUtf8()));
            QCOMPARE(outcome.err.count("c.png: stretched"), *extra ? 0 : 1);
            QStringList found;
            for (const QJsonObject &line : jsonLines(outcome.out)) {
                found.append(QFileInfo(line[u"source"_s].toString()).fileName());
                const bool isFailed = found.size() <= 2;
                QCOMPARE(line[u"status"_s], isFailed ? u"failed"_s : u"written"_s);
                QCOMPARE(line[u"error"_s].isNull(), !isFailed);
                const bool isJpeg = found.last().endsWith(u".jpg");
                const bool isRecompressed = isJpeg && !QByteArrayView(extra).contains("--render");
                QCOMPARE(line[u"road"_s], isFailed         ? QJsonValue::Null
                                          : isRecompressed ? QJsonValue(u"recompressed"_s)
                                                           : QJsonValue(u"rendered"_s));
            }
            QCOMPARE(found, words(sources));
        }
        QVERIFY(namesIn(path("out")).contains(u"a.png"));
    }

    /// A second run over a folder leaves the copies of the first one out, in every format with metadata; one
    /// that is named is a photo like others.
    void copiesAreNotMarkedAgain()
    {
        for (const char *format : {"Original", "TIFF", "HEIC", "GIF", "BMP"}) {
            startAnew();
            const QStringList arguments =
                words("save --text x --json --save-set imageFormat=%1 %2", QLatin1String(format), path("in"));
            const ProgramRun first = run(arguments);
            QVERIFY2(first.status == 0, first.err + first.out);
            const QStringList copies = namesIn(path("in"));
            QCOMPARE(copies.size(), 4);
            const ProgramRun again = run(arguments);
            QCOMPARE(jsonSummary(again.out)[u"leftOut"_s], 2);
            QCOMPARE(jsonSummary(again.out)[u"written"_s], 2);
            QVERIFY2(again.err.contains("left out: 2, the first is"), again.err.constData());
        }
        run("save --text x --conflict overwrite %1", path("in/a.png"));
        const QByteArray once = contentsOf(path("in/a.png"));
        run("save --text x --conflict overwrite %1", path("in"));
        QCOMPARE(contentsOf(path("in/a.png")), once);
        run("save --text x --conflict overwrite %1 %2", path("in"), path("in/a.png"));
        QVERIFY(contentsOf(path("in/a.png")) != once);
    }

    /// In the order of their numbers, each once, whichever paths lead to it.
    void orderOfPhotos()
    {
        for (const char *name : {"in/c10.png", "in/c9.png", "in/C1.png"})
            QVERIFY(QFile::copy(path("in/a.png"), path(name)));
        QVERIFY(QFile::link(path("in"), path("link")));
        QVERIFY(QDir().mkpath(path("in/.trash")) && QFile::copy(path("in/a.png"), path("in/.trash/d.png")));
        // Two further names of one file.
        QVERIFY(QFile::link(path("in/a.png"), path("in/x.png")));
        std::filesystem::create_hard_link(path("in/b.jpg").toStdString(), path("in/y.jpg").toStdString());
        const ProgramRun outcome =
            run("save --text x --dry-run --quiet --json --output %1 %2 %3 %4 %5", path("out"),
                path("in/c9.png"), path("in"), path("in/../in/a.png"), path("link/b.jpg"));
        QCOMPARE(jsonSummary(outcome.out)[u"planned"_s], 5);
        QVERIFY2(outcome.err.contains("by links, are left out: 2, the first is \"" +
                                      path("in/x.png").toUtf8() + "\""),
                 outcome.err.constData());
        QStringList names;
        for (const QJsonObject &line :
             jsonLines(run("save --text x --dry-run --json --output %1 %2 %3 %4 %5", path("out"),
                           path("in/c9.png"), path("in"), path("in/../in/a.png"), path("link/b.jpg"))
                           .out))
            names.append(QFileInfo(line[u"source"_s].toString()).fileName());
        QCOMPARE(names, words("c9.png a.png b.jpg C1.png c10.png"));
    }

    /// Also in replicated folders; names that differ in the case of letters only are one name there.
    void portableNames()
    {
        for (const char *name : {"in/x? ./a*b\\<.png", "in/x? ./NUL.png", "in/x? ./com1 .x.png",
                                 "in/x? ./conin$.png", "in/B.jpg"}) {
            const QString photo = path(name);
            QVERIFY(QDir().mkpath(QFileInfo(photo).path()) && QFile::copy(path("in/a.png"), photo));
        }
        for (const char *dryRun : {"--dry-run", ""}) {
            const QByteArray out =
                run(words("save --text x --json --portable-names --replicate-from %1 --output "
                          "%2 %1",
                          path("in"), path("out")) +
                    words(dryRun))
                    .out;
            QStringList outputs;
            for (const QJsonObject &line : jsonLines(out))
                outputs.append(QDir(path("out")).relativeFilePath(line[u"output"_s].toString()));
            QCOMPARE(outputs, words("a.png b.jpg b-1.jpg 'x_ _/a_b__.png' 'x_ _/com1_ .x.png' 'x_ "
                                    "_/conin$_.png' 'x_ _/NUL_.png'"));
        }
    }

    /// The resolutions are rather wrong than the pixels so long.
    void stretchedPhotos()
    {
        QImage photo = smoothPicture({40, 30});
        photo.setDotsPerMeterX(10000);
        for (const auto &[dots, notices] : {std::pair(5000, 0), {3000, 1}}) {
            photo.setDotsPerMeterY(dots);
            QVERIFY(photo.save(path("in/c.png")));
            const ProgramRun outcome = run("save --text x --output %1 %2", path("out"), path("in/c.png"));
            QCOMPARE(outcome.err.count("c.png: stretched by a factor of 3.33"), notices);
        }
    }

    /// In a stream and turned upright.
    void photosWithDamage()
    {
        PLEXA_NEEDS_MAGICK();
        PLEXA_NEEDS_PROGRAMS("exiftool");
        for (const char *orientation : {"-Orientation#=1", "-Orientation#=6"}) {
            magick("%1 -interlace Plane %2", path("in/b.jpg"), path("in/c.jpg"));
            outputOf("exiftool -q -overwrite_original %1 %2", QLatin1StringView(orientation),
                     path("in/c.jpg"));
            const QByteArray whole = contentsOf(path("in/c.jpg"));
            write("in/c.jpg", whole.first(whole.lastIndexOf("\xff\xc4")) + "\xff\xd9");
            const ProgramRun outcome = run("save --text x --output %1 %2", path("out"), path("in/c.jpg"));
            QVERIFY2(outcome.err.contains("c.jpg: the file lacks the last of its scans"), outcome.err);
            // The decoder gets out of step in the middle and finds no meaning for the rest.
            QVERIFY(QFile::remove(path("in/c.jpg")) && QFile::copy(path("in/b.jpg"), path("in/c.jpg")));
            outputOf("exiftool -q -overwrite_original %1 %2", QLatin1StringView(orientation),
                     path("in/c.jpg"));
            QByteArray damaged = contentsOf(path("in/c.jpg"));
            const qsizetype middle = (damaged.lastIndexOf("\xff\xda") + damaged.size()) / 2;
            write("in/c.jpg", damaged.insert(middle, damaged.mid(middle - 60, 60)));
            const ProgramRun saved = run("save --text x --output %1 %2", path("out"), path("in/c.jpg"));
            QVERIFY2(saved.err.contains("c.jpg: the picture may be damaged: "), saved.err);
        }
    }

    /// Not a failure unless one is required, but reported whatever else is silent. The dry run knows empty
    /// texts.
    void copiesWithoutAWatermark()
    {
        for (const auto &[extra, status, written, unmarked] :
             {std::tuple("--set textTokens=[\"creator\"]", 0, 2, 2),
              {"--set textTokens=[\"creator\"] --dry-run", 0, 0, 2},
              {"--text x --set opacity=0", 0, 2, 2},
              {"--text x --set opacity=0 --dry-run", 0, 0, 2},
              {"--text ' ' --dry-run", 0, 0, 2},
              {"--text x --set fillColor=#ff000000 --set stroke=false", 0, 2, 2},
              {"--text x", 0, 2, 0},
              {"--set textTokens=[\"creator\"] --require-watermark", 1, 0, 0},
              {"--set textTokens=[\"creator\"] --require-watermark --dry-run", 1, 0, 0}}) {
            startAnew();
            const QStringList arguments =
                words("save --output %1 %2", path("out"), path("in")) + words(extra);
            const ProgramRun quiet = run(arguments + words("--quiet"));
            QCOMPARE(quiet.status, status);
            QCOMPARE(quiet.out, QByteArray());
            QCOMPARE(quiet.err.count("a.png: "), unmarked > 0 || status == 1 ? 1 : 0);
            QCOMPARE(quiet.err.count("2 without a visible watermark"), unmarked > 0 ? 1 : 0);
            QCOMPARE(namesIn(path("out")).size(), written);
            const QByteArray json = run(arguments + words("--json")).out;
            QCOMPARE(jsonSummary(json)[u"unmarked"_s], unmarked);
            QCOMPARE(jsonSummary(json)[u"written"_s], written);
            for (const QJsonObject &line : jsonLines(json)) {
                QCOMPARE(line[u"marked"_s], status == 1 ? QJsonValue::Null : QJsonValue(unmarked == 0));
                QCOMPARE(line[u"rects"_s].toArray().size(), written / 2);
            }
        }
    }

    /// Whatever they come from: arguments, names of files, metadata.
    void controlCharactersNeverReachTheTerminal()
    {
        const QString odd = path("in/\x1b[31m\xc2\x9b.png");
        QVERIFY(QFile::copy(path("in/a.png"), odd));
        for (const QStringList &arguments :
             {words("save --text x --output %1 %2 %3", path("out"), odd, path("no\x1b\xc2\x9b.jpg")),
              words("save --text x --json --output %1 %2", path("out"), odd),
              words("save --text x --set \x1b[1m=2 %1", odd), words("save --text x --\x1b[1m %1", odd),
              words("save --text x --output=\x1b[1m= --jobs \x1b[1m %1", odd), words("inspect %1", odd),
              words("inspect --json %1", odd), words("presets %1", odd)}) {
            const ProgramRun outcome = run(arguments);
            const QByteArray all = outcome.out + outcome.err;
            QVERIFY2(!all.isEmpty() && !all.contains('\x1b') && !all.contains("\xc2\x9b"), all.constData());
        }
    }

    /// A program that writes to a file, such as a server, may hold a lease. It gives it up when asked.
    void aFileUnderALease()
    {
        static int file;
        file = ::open(path("in/a.png").toUtf8().constData(), O_RDONLY | O_CLOEXEC);
        const auto giveUp = [](int) { ::fcntl(file, F_SETLEASE, F_UNLCK); };
        const auto before = std::signal(SIGIO, giveUp);
        const bool isLeased = ::fcntl(file, F_SETLEASE, F_WRLCK) == 0;
        const ProgramRun outcome = run("save --text x --output %1 %2", path("out"), path("in/a.png"));
        std::signal(SIGIO, before);
        ::close(file);
        if (!isLeased)
            QSKIP("the file system has no leases");
        QVERIFY2(outcome.status == 0, outcome.err.constData());
    }

    /// From the start, with the remaining time, and never as wide as the terminal.
    void progressLine()
    {
        PLEXA_NEEDS_PROGRAMS("script")
        for (const auto &[columns, first, second] :
             {std::tuple(6, "0/2", "1/2"),
              {24, "[                 ] 0/2", "[===   ] 1/2, 0:"},
              {300, "[                                        ] 0/2", "= "}}) {
            const ProgramRun outcome =
                runProgram(u"script"_s,
                           {u"-qefc"_s,
                            u"stty cols %1; '%2' save --text x --jobs 1 --output '%3' '%4' > /dev/null"_s.arg(
                                QString::number(columns), program(), path("out"), path("in")),
                            u"/dev/null"_s});
            QCOMPARE(outcome.status, 0);
            const QByteArrayList lines = outcome.out.split('\r');
            QCOMPARE(lines.value(1), first + QByteArray("\x1b[K"));
            QVERIFY2(lines.value(3).contains(second), lines.value(3).constData());
            for (const QByteArray &line : lines)
                QVERIFY(line.contains("copies") || line.size() < columns + 3);
        }
    }

    void inspect()
    {
        write("in/0 empty.jpg", {});
        const ProgramRun outcome =
            run("inspect --json %1 %2 %3", path("in/b.jpg"), path("in/0 empty.jpg"), path("in/a.png"));
        QCOMPARE(outcome.status, 1);
        QVERIFY(outcome.err.startsWith("plexa-cli: " + path("in/0 empty.jpg: ").toUtf8()));
        const QJsonArray photos = QJsonDocument::fromJson(outcome.out).array();
        QCOMPARE(photos.size(), 2);
        QCOMPARE(photos[0][u"type"_s], u"image/jpeg"_s);
        QCOMPARE(photos[0][u"width"_s], 320);
        QCOMPARE(photos[0][u"tokens"_s][u"dimensions"_s], u"320 x 200"_s);
        QVERIFY(photos[0][u"tokens"_s][u"city"_s].isNull());
    }

    /// Numbers as numbers, arrays as arrays, nested dictionaries; for people one line a value, without
    /// characters that a terminal would act on.
    void inspectPrintsTheWholeDictionary()
    {
        PLEXA_NEEDS_PROGRAMS("exiftool")
        outputOf("exiftool -q -overwrite_original -ISO=200 -ExposureTime=1/3 -FocalLength=41999998/10000000 "
                 "-FocalPlaneXResolution=43.9999974 -XMP-iptcCore:CreatorCity=Bern "
                 "-IPTC:Keywords=a -Orientation#=6 -Artist=%1 %2",
                 "A\x1b[31mB", path("in/b.jpg"));
        const ProgramRun json = run("inspect --json %1", path("in/b.jpg"));
        QCOMPARE(json.status, 0);
        QVERIFY(json.err.isEmpty());
        const QJsonObject object = QJsonDocument::fromJson(json.out).array()[0].toObject();
        QCOMPARE(object.keys(), words("height orientation path properties tokens type width"));
        QCOMPARE(object[u"orientation"_s], QJsonValue(6));
        const QJsonValue properties = object[u"properties"_s];
        const QJsonValue exif = properties[u"{Exif}"_s];
        QCOMPARE(exif[u"ISOSpeedRatings"_s], QJsonValue(QJsonArray{200}));
        QCOMPARE(exif[u"ExposureTime"_s], QJsonValue(1.0 / 3));
        QCOMPARE(exif[u"FocalLength"_s], QJsonValue(4.2));
        QCOMPARE(exif[u"FocalPlaneXResolution"_s], QJsonValue(44));
        const QJsonValue iptc = properties[u"{IPTC}"_s];
        QCOMPARE(iptc[u"Keywords"_s], QJsonValue(QJsonArray{u"a"_s}));
        QCOMPARE(iptc[u"CreatorContactInfo"_s][u"CiAdrCity"_s], QJsonValue(u"Bern"_s));
        QCOMPARE(object[u"tokens"_s][u"ISO speed"_s], QJsonValue(u"200"_s));

        const ProgramRun text = run("inspect %1", path("in/b.jpg"));
        QVERIFY(text.out.startsWith(path("in/b.jpg").toUtf8() +
                                    "\n  type         image/jpeg\n  size         200 x 320\n"
                                    "  orientation  6\n  properties\n    ") &&
                text.out.contains("\n  tokens\n    "));
        QVERIFY(text.out.contains("ISOSpeedRatings") && text.out.contains("[200]"));
        QVERIFY(text.out.contains("A?[31mB") && !text.out.contains('\x1b'));
    }
};

QTEST_GUILESS_MAIN(CommandLineTest)
#include "commandline_test.moc"
