// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/programruns.h"
#include "support/datarows.h"

#include <QRegularExpression>

#include <csignal>

using namespace plexa::test;

namespace
{

struct Stop {
    Text name;
    int signal;
    int status; ///< of the program
    Text shell = {};
};

} // namespace

class UnfinishedRunsTest : public QObject, private ProgramRuns
{
    Q_OBJECT

private Q_SLOTS:
    void init() { startAnew(); }

    /// Some copies fit, others do not.
    void fullDisk_data()
    {
        QTest::addColumn<QString>("shell"); // $1: the folder for the copies
        QTest::newRow("file size limit")
            << QStringLiteral("mkdir \"$1\" && ulimit -f 200 && shift && exec \"$@\"");
        QTest::newRow("full file system") << QStringLiteral(
            "mkdir \"$1\" && mount -t tmpfs -o size=1200k none \"$1\" || exit 77; out=$1; shift; "
            "\"$@\"; status=$?; umask 0; mkdir \"$out.kept\"; cp -a \"$out/.\" \"$out.kept\"; "
            "exit $status");
    }

    void fullDisk()
    {
        QFETCH(QString, shell);
        const bool isMounted = shell.contains(QLatin1String("mount"));
        for (const char *name : {"in/c.png", "in/d.png"})
            QVERIFY(randomPicture({700, 500}).save(path(name)));
        QStringList command = words("/bin/sh -c %1 sh %2 %3 save --text x --output %2 %4", shell, path("out"),
                                    program(), path("in"));
        if (isMounted)
            command = words("unshare -Urm") + command;
        QProcess process;
        process.start(command.first(), command.mid(1));
        QVERIFY(process.waitForFinished(120'000));
        const QByteArray messages = process.readAllStandardError();
        if (isMounted && (process.exitCode() == 77 || messages.contains("unshare")))
            QSKIP("a file system cannot be mounted here");
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QVERIFY2(process.exitCode() == 1, messages.constData());
        const QString out = path(isMounted ? "out.kept/" : "out/");
        const QStringList copies = namesIn(out);
        QVERIFY2(copies.size() >= 2 && copies.size() < 4, qPrintable(copies.join(u' ')));
        QCOMPARE(copies.first(2), words("a.png b.jpg"));
        QVERIFY2(messages.contains("d.png: ") || messages.contains("c.png: "), messages.constData());
        QVERIFY2(messages.contains(" of 4 copies failed"), messages.constData());
        for (const QString &copy : copies)
            QVERIFY(!QImage(out + copy).isNull());
    }

    /// A killed run leaves at most hidden files besides, which the next run removes.
    void stoppingLeavesWholeFiles_data()
    {
        addRows<Stop>({{"Ctrl-C", SIGINT, 1},
                       {"hang-up", SIGHUP, 1},
                       {"hang-up under nohup", SIGHUP, 0, "trap '' HUP; "},
                       {"kill", SIGKILL, SIGKILL}});
    }

    void stoppingLeavesWholeFiles()
    {
        const auto [name, signal, status, shell] = currentRow<Stop>();
        QProcess process;
        startLongRun(process, shell + QStringLiteral("exec \"$0\" \"$@\""));
        ::kill(static_cast<pid_t>(process.processId()), signal);
        QVERIFY(process.waitForFinished(60'000));
        const bool isKilled = signal == SIGKILL;
        QCOMPARE(process.exitStatus(), isKilled ? QProcess::CrashExit : QProcess::NormalExit);
        QCOMPARE(process.exitCode(), status);
        checkCopies(status != 0);
        if (isKilled) {
            write("out/.plexa-00000000.tmp", "half a photo");
            write("out/.plexa-notes.tmp", "not ours");
            QCOMPARE(run("save --text x --output %1 %2", path("out"), path("in")).status, 0);
        }
        QCOMPARE(namesIn(path("out")).filter(QRegularExpression(QStringLiteral("^\\."))),
                 words(isKilled ? ".plexa-notes.tmp" : ""));
    }

private:
    /// Starts a run over so many photos that it can be ended in the middle. Its first copy is written.
    void startLongRun(QProcess &process, const QString &shell)
    {
        const QString folder = path("many");
        const QString first = folder + QStringLiteral("/000.jpg");
        QVERIFY(QDir().mkpath(folder) && smoothPicture({1600, 1200}).save(first));
        for (int i = 1; i < 200; ++i)
            QVERIFY(QFile::link(first, folder + QStringLiteral("/%1.jpg").arg(i, 3, 10, QLatin1Char('0'))));
        process.start(QStringLiteral("/bin/sh"),
                      words("-c %1 %2 save --text x --output %3 %4", shell, program(), path("out"), folder));
        QVERIFY(process.waitForReadyRead(60'000));
    }

    void checkCopies(bool isStopped)
    {
        const QStringList copies = namesIn(path("out"));
        QVERIFY2(!copies.isEmpty() && (copies.size() < 200) == isStopped, "the run was over too early");
        for (const QString &copy : copies) {
            if (!copy.startsWith(u'.'))
                QCOMPARE(QImage(path("out/") + copy).size(), QSize(1600, 1200));
        }
    }
};

QTEST_GUILESS_MAIN(UnfinishedRunsTest)
#include "unfinishedruns_test.moc"
