// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/programruns.h"

#include <QRegularExpression>

#include <csignal>

using namespace plexa::test;

class UnfinishedRunsTest : public QObject, private ProgramRuns
{
    Q_OBJECT

private Q_SLOTS:
    void init() { startAnew(); }

    /// Some copies fit, others do not.
    void fullDisk()
    {
        for (const char *name : {"in/c.png", "in/d.png"})
            QVERIFY(randomPicture({700, 500}).save(path(name)));
        const ProgramRun outcome =
            runProgram(QStringLiteral("/bin/sh"),
                       words("-c %1 %2 save --text x --output %3 %4", "ulimit -f 200; exec \"$0\" \"$@\"",
                             program(), path("out"), path("in")));
        QVERIFY2(outcome.status == 1, outcome.err.constData());
        QCOMPARE(namesIn(path("out")), words("a.png b.jpg"));
        QVERIFY2(outcome.err.contains("c.png: ") && outcome.err.contains("d.png: "), outcome.err.constData());
        QVERIFY2(outcome.err.contains("2 failed"), outcome.err.constData());
        for (const char *copy : {"out/a.png", "out/b.jpg"})
            QVERIFY(!QImage(path(copy)).isNull());
    }

    /// A killed run leaves at most hidden files besides, which the next run removes.
    void stoppingLeavesWholeFiles()
    {
        for (const auto &[signal, status, shell] : {std::tuple(SIGINT, 130, ""),
                                                    {SIGHUP, 130, ""},
                                                    {SIGHUP, 0, "trap '' HUP; "}, // as under nohup
                                                    {SIGKILL, SIGKILL, ""}}) {
            startAnew();
            QProcess process;
            startLongRun(process, QLatin1String(shell) + QStringLiteral("exec \"$0\" \"$@\""));
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
    }

private:
    /// Starts a run over so many photos that it can be ended in the middle. Its first copy is written.
    void startLongRun(QProcess &process, const QString &shell)
    {
        const QString folder = path("many");
        const QString first = folder + QStringLiteral("/000.jpg");
        QVERIFY(QDir().mkpath(folder) && smoothPicture({1600, 1200}).save(first));
        for (int i = 1; i < 200; ++i)
            QVERIFY(QFile::copy(first, folder + QStringLiteral("/%1.jpg").arg(i, 3, 10, QLatin1Char('0'))));
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
