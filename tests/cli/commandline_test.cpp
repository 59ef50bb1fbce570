// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/programruns.h"
#include "presets/savingpreset.h"

#include <QDirIterator>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>

using namespace plexa::test;

namespace
{

QList<QJsonObject> jsonLines(const QByteArray &out)
{
    QList<QJsonObject> lines;
    for (const QByteArray &line : out.split('\n')) {
        if (!line.isEmpty())
            lines.append(QJsonDocument::fromJson(line).object());
    }
    return lines;
}

QImage uprightRgb(const QString &path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    return reader.read().convertToFormat(QImage::Format_RGB32);
}

/// Peak signal-to-noise ratio in dB of what lies outside of `hole`.
double psnrOutside(const QImage &one, const QImage &two, const QRect &hole)
{
    double squares = 0;
    qint64 samples = 0;
    for (int y = 0; y < one.height(); ++y) {
        const auto *a = reinterpret_cast<const QRgb *>(one.constScanLine(y));
        const auto *b = reinterpret_cast<const QRgb *>(two.constScanLine(y));
        for (int x = 0; x < one.width(); ++x) {
            if (hole.contains(x, y))
                continue;
            for (const int difference :
                 {qRed(a[x]) - qRed(b[x]), qGreen(a[x]) - qGreen(b[x]), qBlue(a[x]) - qBlue(b[x])})
                squares += difference * difference;
            samples += 3;
        }
    }
    return squares == 0 ? 99 : 10 * std::log10(255.0 * 255.0 * static_cast<double>(samples) / squares);
}

/// The rectangle of a result line in QImage's coordinates, grown by what JPEG blocks carry further.
QRect holeOf(const QJsonObject &line)
{
    const QJsonArray rect = line[QStringLiteral("rect")].toArray();
    const double height = line[QStringLiteral("size")].toArray()[1].toDouble();
    return QRectF(rect[0].toDouble(), height - rect[1].toDouble() - rect[3].toDouble(), rect[2].toDouble(),
                  rect[3].toDouble())
        .toAlignedRect()
        .adjusted(-16, -16, 16, 16);
}

} // namespace

class CommandLineTest : public QObject, private ProgramRuns
{
    Q_OBJECT

private Q_SLOTS:
    void init() { startAnew(); }
    void realPhotos();
    void wrongUsage_data();
    void wrongUsage();
    void badFilesDoNotStopTheOthers();
    void whatCannotBeReached();
    void namesAreNeverTakenTwice();
    void dryRunAgreesWithTheRun_data();
    void dryRunAgreesWithTheRun();
    void whereCopiesGo_data();
    void whereCopiesGo();
    void savingPresetsFromAFile();
    void namesThatMeanSomethingElsewhere();
    void foldersWhoseNamesAreNoTexts();
    void dryRunSeesWhereNothingCanBeWritten();
    void quietTellsFailuresOnly();
    void inspect();
    void inspectTellsTheWholeDictionary();
};

void CommandLineTest::realPhotos()
{
    const QString photos = photosFolder();
    if (photos.isEmpty())
        QSKIP("the folder of real photos is not here");
    const QString out = m_folder->path(QStringLiteral("out"));
    const Outcome outcome =
        run({QStringLiteral("save"), QStringLiteral("--text"), QStringLiteral("(c) Test"),
             QStringLiteral("--json"), QStringLiteral("--output"), out, photos + QStringLiteral("/jpeg")});
    QVERIFY2(outcome.status == 0, outcome.err.constData());
    int photosCount = 0;
    for (QDirIterator it(photos + QStringLiteral("/jpeg"), QDir::Files, QDirIterator::Subdirectories);
         it.hasNext(); ++photosCount)
        it.next();
    const QList<QJsonObject> lines = jsonLines(outcome.out);
    QCOMPARE(lines.size(), photosCount);

    const QString exiftool = firstProgram({QStringLiteral("exiftool")});
    for (const QJsonObject &line : lines) {
        const QString source = line[QStringLiteral("source")].toString();
        const QString copy = line[QStringLiteral("output")].toString();
        QCOMPARE(line[QStringLiteral("status")].toString(), QStringLiteral("written"));
        const QImage before = uprightRgb(source);
        const QImage after = uprightRgb(copy);
        QCOMPARE(after.size(), QSize(line[QStringLiteral("size")].toArray()[0].toInt(),
                                     line[QStringLiteral("size")].toArray()[1].toInt()));
        if (source.contains(QLatin1String("nonsquare")))
            continue; // its pixels are made square
        QVERIFY2(before.size() == after.size(), qPrintable(source));
        // The conversion of other colour spaces is compared elsewhere, with a colour-managed oracle.
        const QByteArray profile =
            exiftool.isEmpty()
                ? "?"
                : outputOf(exiftool, {QStringLiteral("-s3"),
                                      QStringLiteral("-ICC_Profile:ProfileDescription"), source});
        if (!profile.trimmed().isEmpty() && !profile.contains("sRGB IEC61966"))
            continue;
        if (source.contains(QLatin1String("cmyk")) || source.contains(QLatin1String("olympus-e-p3")))
            continue; // the latter is Adobe RGB without a profile
        const double psnr = psnrOutside(before, after, holeOf(line));
        QVERIFY2(psnr > 38, qPrintable(QStringLiteral("%1: %2 dB").arg(source).arg(psnr)));
        QVERIFY2(psnrOutside(before, after, QRect()) < 60,
                 qPrintable(source + QStringLiteral(" carries no watermark")));
    }
}

void CommandLineTest::wrongUsage_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("message");
    const auto text = QStringList{QStringLiteral("--text"), QStringLiteral("x")};
    const auto with = [&](const char *option, const char *value) {
        return text + QStringList{QLatin1String(option), QString::fromUtf8(value)};
    };
    QTest::newRow("no watermark") << QStringList{} << QByteArray("--text");
    QTest::newRow("unknown option") << with("--frobnicate", "1") << QByteArray("frobnicate");
    QTest::newRow("unknown field") << with("--set", "anchor=8") << QByteArray("anchor");
    QTest::newRow("not a field") << with("--set", "anchorPoint") << QByteArray("FIELD=VALUE");
    QTest::newRow("unknown unit") << with("--set", "widthUnit=miles") << QByteArray("% of width");
    QTest::newRow("wrong type") << with("--set", "fontSize=big") << QByteArray("fontSize");
    QTest::newRow("bad colour") << with("--set", "fillColor=#12") << QByteArray("fillColor");
    QTest::newRow("missing logo") << QStringList{QStringLiteral("--image"),
                                                 QStringLiteral("no such logo.png")}
                                  << QByteArray("no such logo.png");
    QTest::newRow("logo that is no picture")
        << QStringList{QStringLiteral("--image"), QStringLiteral("/dev/null")} << QByteArray("/dev/null");
    QTest::newRow("empty text") << QStringList{QStringLiteral("--text"), QString(), QStringLiteral("--set"),
                                               QStringLiteral("background=true")}
                                << QByteArray("--text");
    QTest::newRow("image without a picture")
        << QStringList{QStringLiteral("--set"), QStringLiteral("type=Image")} << QByteArray("--image");
    QTest::newRow("logo that is a device")
        << QStringList{QStringLiteral("--image"), QStringLiteral("/dev/zero")} << QByteArray("/dev/zero");
    QTest::newRow("missing folder") << text + QStringList{QStringLiteral("no such folder")}
                                    << QByteArray("no such folder");
    QTest::newRow("quality out of range")
        << with("--save-set", "jpegQuality=101") << QByteArray("jpegQuality");
    QTest::newRow("no jobs") << with("--jobs", "0") << QByteArray("jobs");
    QTest::newRow("unknown answer") << with("--conflict", "maybe") << QByteArray("conflict");
    for (const char *tokens : {"filenameTokens=[]", "filenameTokens=", "filenameTokens=[\"\",\"\"]"})
        QTest::newRow(tokens) << with("--save-set", tokens) << QByteArray("filenameTokens: at least one");
    QTest::newRow("unknown letter case")
        << with("--save-set", "fileBaseNameCase=title") << QByteArray("do not change");
    QTest::newRow("no saving presets") << with("--saving-presets", "/dev/null") << QByteArray("/dev/null");
    QTest::newRow("saving preset without a file") << with("--saving-preset", "Web") << QByteArray("presets");
    QTest::newRow("presets file without a name") << with("--saving-presets", "") << QByteArray("nothing");
    QTest::newRow("nothing after the equal sign")
        << text + QStringList{QStringLiteral("--output="), QStringLiteral("x")}
        << QByteArray("--output= there is nothing");
    QTest::newRow("preset without a name") << with("--saving-preset", "") << QByteArray("nothing");
    QTest::newRow("start folder without a name") << with("--replicate-from", "") << QByteArray("nothing");
    QTest::newRow("format that cannot be written")
        << with("--saving-presets", "PRESETS") +
               QStringList{QStringLiteral("--saving-preset"), QStringLiteral("WEBP")}
        << QByteArray("WEBP");
    QTest::newRow("alternative that cannot be written")
        << with("--saving-presets", "PRESETS") +
               QStringList{QStringLiteral("--saving-preset"), QStringLiteral("Alternative")}
        << QByteArray("\"Original\"");
    QTest::newRow("stored quality out of range")
        << with("--saving-presets", "PRESETS") +
               QStringList{QStringLiteral("--saving-preset"), QStringLiteral("Best")}
        << QByteArray("quality is 500");
    QTest::newRow("start folder that is none")
        << with("--replicate-from", "no such folder") << QByteArray("no such folder");
}

void CommandLineTest::wrongUsage()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, message);
    const QString out = m_folder->path(QStringLiteral("out"));
    if (options.contains(QStringLiteral("PRESETS"))) {
        std::vector<std::shared_ptr<plexa::SavingPreset>> presets;
        for (const char *name : {"WEBP", "Alternative", "Best"})
            presets.push_back(std::make_shared<plexa::SavingPreset>(
                plexa::SavingPresetValues{.name = QString::fromLatin1(name)}));
        presets[0]->setImageFormat(QStringLiteral("WEBP"));
        presets[1]->setImageFormat(QStringLiteral("Original"));
        presets[1]->setAlternativeImageFormat(QStringLiteral("Original"));
        presets[2]->setJpegQuality(500);
        const QString file = m_folder->path(QStringLiteral("presets"));
        QVERIFY(plexa::SavingPreset::writeObjects(presets, file, QStringLiteral("Quorvel Plexa")));
        options.replaceInStrings(QStringLiteral("PRESETS"), file);
    }
    const Outcome outcome = run(QStringList{QStringLiteral("save"), QStringLiteral("--output"), out,
                                            m_folder->path(QStringLiteral("in"))} +
                                options);
    QCOMPARE(outcome.status, 2);
    QVERIFY2(outcome.err.contains(message), outcome.err.constData());
    QVERIFY(outcome.out.isEmpty());
    QVERIFY(!QFile::exists(out));
}

void CommandLineTest::badFilesDoNotStopTheOthers()
{
    QByteArray jpeg;
    QFile good(m_folder->path(QStringLiteral("in/b.jpg")));
    QVERIFY(good.open(QIODevice::ReadOnly));
    jpeg = good.readAll();
    write(QStringLiteral("in/0 empty.jpg"), {});
    write(QStringLiteral("in/1 text.png"), "no picture");
    write(QStringLiteral("in/2 cut.jpg"), jpeg.left(jpeg.size() * 2 / 3));
    write(QStringLiteral("in/b.jpg"), jpeg.insert(2, QByteArray("\xFF\xFE\0\4\1\2", 6))); // no text
    write(QStringLiteral("in/notes.txt"), "not even looked at");
    // A name that is no UTF-8, which QFile would not make.
    std::ofstream(m_folder->path(QStringLiteral("in")).toStdString() + "/3 caf\xe9.jpg") << "?";
    const QString out = m_folder->path(QStringLiteral("out"));
    const Outcome outcome = run({QStringLiteral("save"), QStringLiteral("--text"), QStringLiteral("x"),
                                 QStringLiteral("--output"), out, m_folder->path(QStringLiteral("in"))});
    QCOMPARE(outcome.status, 1);
    QCOMPARE(entries(out), (QStringList{QStringLiteral("a.png"), QStringLiteral("b.jpg")}));
    const QList<QByteArray> lines = outcome.err.trimmed().split('\n');
    std::filesystem::remove_all(m_folder->path(QStringLiteral("in")).toStdString()); // Qt could not
    QCOMPARE(lines.size(), 6);
    QVERIFY2(lines[0].startsWith("0 empty.jpg: "), lines[0].constData());
    QVERIFY2(lines[1].startsWith("1 text.png: "), lines[1].constData());
    QVERIFY2(lines[2].startsWith("2 cut.jpg: "), lines[2].constData());
    QVERIFY2(lines[3].startsWith("3 caf") && lines[3].endsWith("UTF-8"), lines[3].constData());
    QCOMPARE(lines[4], "b.jpg: the copy leaves out: comment");
    QCOMPARE(lines[5], "plexa-cli: 4 of 6 copies failed");

    write(QStringLiteral("d.jpg"), jpeg.replace(2, 6, QByteArray("\xFF\xFE\0\5abc", 7)));
    const QByteArray said = run({QStringLiteral("save"), QStringLiteral("--text"), QStringLiteral("x"),
                                 QStringLiteral("--save-set"), QStringLiteral("imageFormat=TIFF"),
                                 QStringLiteral("--output"), out, m_folder->path(QStringLiteral("d.jpg"))})
                                .err;
    QCOMPARE(said, "d.jpg: the copy leaves out: comment\n");
}

/// It costs a line and the exit status; the other photos are done.
void CommandLineTest::whatCannotBeReached()
{
    const std::string in = m_folder->path(QStringLiteral("in")).toStdString();
    const QByteArray name(200, 'd');
    int folder = ::open(in.c_str(), O_DIRECTORY);
    for (int depth = 0; depth < 25; ++depth) { // beyond what a path can say
        QCOMPARE(::mkdirat(folder, name.constData(), 0755), 0);
        const int inner = ::openat(folder, name.constData(), O_DIRECTORY);
        ::close(folder);
        folder = inner;
    }
    ::close(folder);
    const QString circle = m_folder->path(QStringLiteral("circle.jpg"));
    QVERIFY(QFile::link(circle, circle));
    const QString out = m_folder->path(QStringLiteral("out"));
    const Outcome outcome =
        run({QStringLiteral("save"), QStringLiteral("--text"), QStringLiteral("x"),
             QStringLiteral("--output"), out, circle, m_folder->path(QStringLiteral("in"))});
    std::filesystem::remove_all(in); // Qt could not
    QCOMPARE(outcome.status, 1);
    QCOMPARE(entries(out), (QStringList{QStringLiteral("a.png"), QStringLiteral("b.jpg")}));
    const QList<QByteArray> lines = outcome.err.trimmed().split('\n');
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines[0].contains("/in/" + name + '/') && lines[0].endsWith("too long"), lines[0].constData());
    QVERIFY2(lines[1].startsWith("circle.jpg: ") && lines[1].contains("symbolic"), lines[1].constData());
    QCOMPARE(lines[2], "plexa-cli: 1 of 3 copies failed");
}

void CommandLineTest::namesAreNeverTakenTwice()
{
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("in/deep")));
    QVERIFY(gradient({40, 40}).save(m_folder->path(QStringLiteral("in/deep/b.jpg"))));
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("out")));
    write(QStringLiteral("out/a.png"), "mine");
    const QString out = m_folder->path(QStringLiteral("out"));
    const Outcome outcome = run({QStringLiteral("save"), QStringLiteral("--text"), QStringLiteral("x"),
                                 QStringLiteral("--output"), out, m_folder->path(QStringLiteral("in"))});
    QVERIFY2(outcome.status == 0, outcome.err.constData());
    QCOMPARE(entries(out), (QStringList{QStringLiteral("a-1.png"), QStringLiteral("a.png"),
                                        QStringLiteral("b-1.jpg"), QStringLiteral("b.jpg")}));
    QFile mine(out + QStringLiteral("/a.png"));
    QVERIFY(mine.open(QIODevice::ReadOnly));
    QCOMPARE(mine.readAll(), "mine");
}

void CommandLineTest::dryRunAgreesWithTheRun_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("outputs"); // below "out"; empty: skipped
    const auto list = [](const char *text) { return QString::fromLatin1(text).split(QLatin1Char(' ')); };
    QTest::newRow("unique") << QStringList{} << list("a-1.png b.jpg b-1.jpg");
    QTest::newRow("overwrite") << list("--conflict overwrite") << list("a.png b.jpg b.jpg");
    QTest::newRow("skip") << list("--conflict skip")
                          << QStringList{QString(), QStringLiteral("b.jpg"), QString()};
    QTest::newRow("folders") << QStringList{QStringLiteral("--replicate-from"), QStringLiteral("in")}
                             << list("a-1.png b.jpg deep/b.jpg");
    QTest::newRow("tokens") << QStringList{QStringLiteral("--save-set"),
                                           QStringLiteral(
                                               "filenameTokens=[\"city\",\"width\",\"_\",\"sequence ##\"]")}
                            << list("120_01.png 320_02.jpg 40_03.jpg");
}

void CommandLineTest::dryRunAgreesWithTheRun()
{
    QFETCH(QStringList, options);
    QFETCH(QStringList, outputs);
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("in/deep")));
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("out")));
    QVERIFY(gradient({40, 40}).save(m_folder->path(QStringLiteral("in/deep/b.jpg"))));
    write(QStringLiteral("out/a.png"), "mine");
    options.replaceInStrings(QRegularExpression(QStringLiteral("^in$")),
                             m_folder->path(QStringLiteral("in")));
    const QString out = m_folder->path(QStringLiteral("out/"));
    const QStringList arguments = QStringList{QStringLiteral("save"),
                                              QStringLiteral("--set"),
                                              QStringLiteral("textTokens=[\"(c) \",\"creator\"]"),
                                              QStringLiteral("--json"),
                                              QStringLiteral("--jobs"),
                                              QStringLiteral("3"),
                                              QStringLiteral("--output"),
                                              out,
                                              m_folder->path(QStringLiteral("in"))} +
                                  options;
    const Outcome plan = run(arguments + QStringList{QStringLiteral("--dry-run")});
    QCOMPARE(plan.status, 0);
    QCOMPARE(entries(out), QStringList{QStringLiteral("a.png")});
    const Outcome real = run(arguments);
    QCOMPARE(real.status, 0);
    const QList<QJsonObject> planned = jsonLines(plan.out);
    const QList<QJsonObject> done = jsonLines(real.out);
    QCOMPARE(planned.size(), outputs.size());
    QCOMPARE(done.size(), outputs.size());
    for (int i = 0; i < outputs.size(); ++i) {
        for (const char *key : {"source", "output", "sequence", "wpreset", "conflict"})
            QCOMPARE(done[i][QLatin1String(key)], planned[i][QLatin1String(key)]);
        const QString output = done[i][QStringLiteral("output")].toString();
        QCOMPARE(output.isEmpty() ? output : QDir(out).relativeFilePath(output), outputs[i]);
        QCOMPARE(done[i][QStringLiteral("status")].toString(),
                 output.isEmpty() ? QStringLiteral("skipped") : QStringLiteral("written"));
        QVERIFY(output.isEmpty() || !QImage(output).isNull());
        QVERIFY(output.isEmpty() ||
                planned[i][QStringLiteral("emptyTokens")].toArray().contains(QStringLiteral("creator")));
    }
}

void CommandLineTest::whereCopiesGo_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("files"); // in "in", afterwards
    const auto saveSet = [](const char *field) {
        return QStringList{QStringLiteral("--save-set"), QString::fromLatin1(field)};
    };
    QTest::newRow("beside the originals") << QStringList{}
                                          << QStringList{QStringLiteral("a-1.png"), QStringLiteral("a.png"),
                                                         QStringLiteral("b-1.jpg"), QStringLiteral("b.jpg")};
    QTest::newRow("in their place") << QStringList{QStringLiteral("--conflict"), QStringLiteral("overwrite")}
                                    << QStringList{QStringLiteral("a.png"), QStringLiteral("b.jpg")};
    QTest::newRow("upper case, another format")
        << saveSet("fileBaseNameCase=upper case") + saveSet("fileExtensionCase=upper case") +
               saveSet("imageFormat=TIFF")
        << QStringList{QStringLiteral("A.TIF"), QStringLiteral("B.TIF"), QStringLiteral("a.png"),
                       QStringLiteral("b.jpg")};
}

void CommandLineTest::whereCopiesGo()
{
    QFETCH(QStringList, options);
    QFETCH(QStringList, files);
    const Outcome outcome = run(QStringList{QStringLiteral("save"), QStringLiteral("--text"),
                                            QStringLiteral("x"), m_folder->path(QStringLiteral("in"))} +
                                options);
    QVERIFY2(outcome.status == 0, outcome.err.constData());
    QCOMPARE(entries(m_folder->path(QStringLiteral("in"))), files);
    QVERIFY(!outcome.out.contains("skipped"));
}

void CommandLineTest::savingPresetsFromAFile()
{
    plexa::SavingPresetValues web;
    web.name = QStringLiteral("Web");
    web.imageFormat = QStringLiteral("PNG");
    web.filenameTokens = {QStringLiteral("saving preset name"), QStringLiteral("sequence #")};
    plexa::SavingPresetValues print = web;
    print.name = QStringLiteral("Print");
    const QString file = m_folder->path(QStringLiteral("presets"));
    QVERIFY(plexa::SavingPreset::writeObjects(
        {std::make_shared<plexa::SavingPreset>(web), std::make_shared<plexa::SavingPreset>(print)}, file,
        QStringLiteral("Quorvel Plexa")));
    const QString out = m_folder->path(QStringLiteral("out"));
    const QStringList arguments{QStringLiteral("save"),
                                QStringLiteral("--text"),
                                QStringLiteral("x"),
                                QStringLiteral("--saving-presets"),
                                file,
                                QStringLiteral("--save-set"),
                                QStringLiteral("fileBaseNameCase=lower case"),
                                QStringLiteral("--output"),
                                out,
                                m_folder->path(QStringLiteral("in"))};
    const Outcome unclear = run(arguments);
    QCOMPARE(unclear.status, 2);
    QVERIFY2(unclear.err.contains("\"Web\", \"Print\""), unclear.err.constData());
    QCOMPARE(run(arguments + QStringList{QStringLiteral("--saving-preset"), QStringLiteral("Print")}).status,
             0);
    QCOMPARE(entries(out), (QStringList{QStringLiteral("print1.png"), QStringLiteral("print2.png")}));
}

/// Libraries take some names for the standard input, or for addresses.
void CommandLineTest::namesThatMeanSomethingElsewhere()
{
    const QString folder = m_folder->path(QStringLiteral("odd"));
    QVERIFY(QDir().mkpath(folder));
    const QStringList names{QStringLiteral("-"), QStringLiteral("--quiet"), QStringLiteral("data:x"),
                            QStringLiteral("%1 %n")};
    const QString tiff = m_folder->path(QStringLiteral("photo.tif"));
    QVERIFY(gradient({30, 20}).save(tiff));
    for (const QString &name : names)
        QVERIFY(QFile::copy(tiff, folder + QLatin1Char('/') + name));
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setStandardInputFile(QStringLiteral("/dev/zero"));
    process.start(program(),
                  QStringList{QStringLiteral("save"), QStringLiteral("--text"), QStringLiteral("x"),
                              QStringLiteral("--output"), QStringLiteral("out"), QStringLiteral("--")} +
                      names);
    QVERIFY(process.waitForFinished(60'000));
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(entries(folder).size(), names.size() + 1);
    QCOMPARE(entries(folder + QStringLiteral("/out")).size(), names.size());
}

/// For the output such a name is refused, for the working folder it does not matter.
void CommandLineTest::foldersWhoseNamesAreNoTexts()
{
    const std::string odd = m_folder->path().toStdString() + "/bo\xff";
    QVERIFY(std::filesystem::create_directory(odd));
    const auto inShell = [&](const char *script) {
        QProcess shell;
        shell.start(QStringLiteral("sh"),
                    {QStringLiteral("-c"), QString::fromLatin1(script), program(), m_folder->path()});
        return shell.waitForFinished(60'000) ? Outcome{shell.exitCode(), {}, shell.readAllStandardError()}
                                             : Outcome{};
    };
    const Outcome refused =
        inShell("cd \"$1\"; exec \"$0\" save --text x --output \"$(printf 'new\\377')\" in");
    QCOMPARE(refused.status, 2);
    QVERIFY2(refused.err.contains("--output: its name is not valid UTF-8"), refused.err.constData());
    const Outcome done = inShell("cp \"$1\"/in/* \"$1\"/bo*; cd \"$1\"/bo*; "
                                 "\"$0\" save --text x --output out . && exec \"$0\" save --text x *.*");
    const auto count = [](const std::string &folder) {
        return std::distance(std::filesystem::directory_iterator(folder), {});
    };
    const auto copies = count(odd + "/out");
    const auto beside = count(odd);
    std::filesystem::remove_all(odd); // Qt could not
    QVERIFY2(done.status == 0, done.err.constData());
    QCOMPARE(copies, 2);
    QCOMPARE(beside, 5); // two photos, their copies, "out"
    QCOMPARE(entries(m_folder->path()), QStringList{QStringLiteral("in")});
}

void CommandLineTest::dryRunSeesWhereNothingCanBeWritten()
{
    write(QStringLiteral("file"), {});
    QVERIFY(QDir().mkpath(m_folder->path(QStringLiteral("out/a.png"))));
    const QStringList arguments{QStringLiteral("save"),      QStringLiteral("--text"),
                                QStringLiteral("x"),         QStringLiteral("--conflict"),
                                QStringLiteral("overwrite"), m_folder->path(QStringLiteral("in")),
                                QStringLiteral("--output")};
    for (const QStringList &dryRun : {QStringList{QStringLiteral("--dry-run")}, QStringList{}}) {
        const Outcome folder = run(arguments + QStringList{m_folder->path(QStringLiteral("out"))} + dryRun);
        QCOMPARE(folder.status, 1);
        QVERIFY2(folder.err.contains("a folder of that name exists"), folder.err.constData());
        QVERIFY2(folder.err.contains("1 of 2 copies failed"), folder.err.constData());
        const Outcome part =
            run(arguments + QStringList{m_folder->path(QStringLiteral("file/sub"))} + dryRun);
        QCOMPARE(part.status, 1);
        QVERIFY2(part.err.contains("cannot be made: a part of its path is not a folder"),
                 part.err.constData());
    }
}

void CommandLineTest::quietTellsFailuresOnly()
{
    write(QStringLiteral("in/0 empty.jpg"), {});
    for (const QStringList &json : {QStringList{QStringLiteral("--json")}, QStringList{}}) {
        const Outcome outcome =
            run(QStringList{QStringLiteral("save"), QStringLiteral("--text"), QStringLiteral("x"),
                            QStringLiteral("--quiet"), QStringLiteral("--save-set"),
                            QStringLiteral("filenameTokens=\"filename\""), QStringLiteral("--output"),
                            m_folder->path(QStringLiteral("out")), m_folder->path(QStringLiteral("in"))} +
                json);
        QCOMPARE(outcome.status, 1);
        QVERIFY(outcome.err.startsWith("0 empty.jpg: "));
        const QList<QJsonObject> lines = jsonLines(outcome.out);
        QCOMPARE(lines.size(), json.size());
        QVERIFY(json.isEmpty() || lines[0][QStringLiteral("status")] == QStringLiteral("failed"));
    }
    QVERIFY(entries(m_folder->path(QStringLiteral("out"))).contains(QStringLiteral("a.png")));
}

void CommandLineTest::inspect()
{
    write(QStringLiteral("in/0 empty.jpg"), {});
    const Outcome outcome =
        run({QStringLiteral("inspect"), QStringLiteral("--json"), m_folder->path(QStringLiteral("in/b.jpg")),
             m_folder->path(QStringLiteral("in/0 empty.jpg")), m_folder->path(QStringLiteral("in/a.png"))});
    QCOMPARE(outcome.status, 1);
    QVERIFY(outcome.err.startsWith("0 empty.jpg: "));
    const QJsonArray photos = QJsonDocument::fromJson(outcome.out).array();
    QCOMPARE(photos.size(), 2);
    QCOMPARE(photos[0][QStringLiteral("type")].toString(), QStringLiteral("image/jpeg"));
    QCOMPARE(photos[0][QStringLiteral("width")].toInt(), 320);
    QCOMPARE(photos[0][QStringLiteral("tokens")][QStringLiteral("dimensions")].toString(),
             QStringLiteral("320 x 200"));
    QVERIFY(photos[0][QStringLiteral("tokens")][QStringLiteral("city")].isNull());
    QCOMPARE(photos[1][QStringLiteral("type")].toString(), QStringLiteral("image/png"));
}

/// Numbers as numbers, arrays as arrays, dictionaries inside of each other; for people below each other, and
/// without anything that a terminal would act on.
void CommandLineTest::inspectTellsTheWholeDictionary()
{
    const QString exiftool = firstProgram({QStringLiteral("exiftool")});
    if (exiftool.isEmpty())
        QSKIP("exiftool is not installed");
    const QString photo = m_folder->path(QStringLiteral("in/b.jpg"));
    outputOf(exiftool,
             {QStringLiteral("-q"), QStringLiteral("-overwrite_original"), QStringLiteral("-ISO=200"),
              QStringLiteral("-ExposureTime=1/3"), QStringLiteral("-DateTimeOriginal=2024:05:06 07:08:09"),
              QStringLiteral("-XMP-iptcCore:CreatorCity=Bern"), QStringLiteral("-IPTC:Keywords=a"),
              QStringLiteral("-Artist=A\x1b[31mB"), photo});
    const Outcome json = run({QStringLiteral("inspect"), QStringLiteral("--json"), photo});
    QCOMPARE(json.status, 0);
    QVERIFY(json.err.isEmpty());
    const QJsonObject object = QJsonDocument::fromJson(json.out).array()[0].toObject();
    const QStringList keys{QStringLiteral("height"), QStringLiteral("orientation"),
                           QStringLiteral("path"),   QStringLiteral("properties"),
                           QStringLiteral("tokens"), QStringLiteral("type"),
                           QStringLiteral("width")};
    QCOMPARE(object.keys(), keys);
    const QJsonValue properties = object[QStringLiteral("properties")];
    const QJsonValue exif = properties[QStringLiteral("{Exif}")];
    QCOMPARE(exif[QStringLiteral("ISOSpeedRatings")], QJsonValue(QJsonArray{200}));
    QCOMPARE(exif[QStringLiteral("ExposureTime")], QJsonValue(1.0 / 3));
    const QJsonValue iptc = properties[QStringLiteral("{IPTC}")];
    QCOMPARE(iptc[QStringLiteral("Keywords")], QJsonValue(QJsonArray{QStringLiteral("a")}));
    QCOMPARE(iptc[QStringLiteral("CreatorContactInfo")][QStringLiteral("CiAdrCity")],
             QJsonValue(QStringLiteral("Bern")));
    QCOMPARE(object[QStringLiteral("tokens")][QStringLiteral("ISO speed")],
             QJsonValue(QStringLiteral("200")));

    const Outcome text = run({QStringLiteral("inspect"), photo});
    QVERIFY(text.out.contains("\n  size         320 x 200\n"));
    QVERIFY(text.out.contains("ISOSpeedRatings") && text.out.contains("[200]"));
    QVERIFY(text.out.contains("A.[31mB") && !text.out.contains('\x1b'));
}

QTEST_GUILESS_MAIN(CommandLineTest)
#include "commandline_test.moc"
