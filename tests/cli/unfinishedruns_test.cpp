// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/programruns.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

using namespace plexa::test;

class UnfinishedRunsTest : public QObject, private ProgramRuns
{
    Q_OBJECT

private Q_SLOTS:
    void init() { startAnew(); }
    void fullDisk_data();
    void fullDisk();
    void killing();
    void stoppingLeavesWholeFiles_data();
    void stoppingLeavesWholeFiles();

private:
    QString manyPhotos() const;
};

/// @return a folder with so many of them that a run can be ended in the middle
QString UnfinishedRunsTest::manyPhotos() const
{
    const QString folder = m_folder->path(QStringLiteral("many"));
    const QString first = folder + QStringLiteral("/000.jpg");
    bool done = QDir().mkpath(folder) && gradient({1600, 1200}).save(first);
    for (int i = 1; i < 200; ++i)
        done = done && QFile::link(first, folder + QStringLiteral("/%1.jpg").arg(i, 3, 10, QLatin1Char('0')));
    if (!done)
        qFatal("no photos can be made");
    return folder;
}

void UnfinishedRunsTest::fullDisk_data()
{
    QTest::addColumn<QString>("shell"); // $1: the folder for the copies
    QTest::newRow("file size limit") << QStringLiteral(
        "mkdir \"$1\" && ulimit -f 200 && shift && exec \"$@\"");
    QTest::newRow("full file system") << QStringLiteral(
        "mkdir \"$1\" && mount -t tmpfs -o size=1200k none \"$1\" || exit 77; out=$1; shift; "
        "\"$@\"; status=$?; umask 0; mkdir \"$out.kept\"; cp -a \"$out/.\" \"$out.kept\"; "
        "exit $status");
}

/// Some copies fit, others do not.
void UnfinishedRunsTest::fullDisk()
{
    QFETCH(QString, shell);
    const bool isMounted = shell.contains(QLatin1String("mount"));
    QImage noise(700, 500, QImage::Format_RGB32);
    for (int y = 0; y < noise.height(); ++y) {
        for (int x = 0; x < noise.width(); ++x)
            noise.setPixel(x, y, QRandomGenerator::global()->generate() | 0xff000000U);
    }
    QVERIFY(noise.save(m_folder->path(QStringLiteral("in/c.png"))));
    QVERIFY(noise.save(m_folder->path(QStringLiteral("in/d.png"))));
    const QString out = m_folder->path(QStringLiteral("out"));
    QStringList command{QStringLiteral("/bin/sh"),
                        QStringLiteral("-c"),
                        shell,
                        QStringLiteral("sh"),
                        out,
                        program(),
                        QStringLiteral("save"),
                        QStringLiteral("--text"),
                        QStringLiteral("x"),
                        QStringLiteral("--output"),
                        out,
                        m_folder->path(QStringLiteral("in"))};
    if (isMounted)
        command = QStringList{QStringLiteral("unshare"), QStringLiteral("-Urm")} + command;
    QProcess process;
    process.start(command.first(), command.mid(1));
    QVERIFY(process.waitForFinished(120'000));
    const QByteArray messages = process.readAllStandardError();
    if (isMounted && (process.exitCode() == 77 || messages.contains("unshare")))
        QSKIP("a file system cannot be mounted here");
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QVERIFY2(process.exitCode() == 1, messages.constData());
    const QStringList copies = entries(isMounted ? out + QStringLiteral(".kept") : out);
    QVERIFY2(copies.size() >= 2 && copies.size() < 4, qPrintable(copies.join(QLatin1Char(' '))));
    QCOMPARE(copies.first(2), (QStringList{QStringLiteral("a.png"), QStringLiteral("b.jpg")}));
    QVERIFY2(messages.contains("d.png: ") || messages.contains("c.png: "), messages.constData());
    QVERIFY2(messages.contains(" of 4 copies failed"), messages.constData());
    for (const QString &copy : copies)
        QVERIFY(
            !QImage((isMounted ? out + QStringLiteral(".kept/") : out + QLatin1Char('/')) + copy).isNull());
}

/// What a killed run leaves are whole files, and hidden ones at most, which the next run removes.
void UnfinishedRunsTest::killing()
{
    const QString in = manyPhotos();
    const QString out = m_folder->path(QStringLiteral("out"));
    const QStringList arguments{QStringLiteral("save"), QStringLiteral("--text"), QStringLiteral("x"),
                                QStringLiteral("--output"), out};
    QProcess process;
    process.start(program(), arguments + QStringList{in});
    QVERIFY(process.waitForReadyRead(60'000)); // the first copy is written
    process.kill();
    QVERIFY(process.waitForFinished(60'000));
    QVERIFY2(entries(out).size() < 200, "the run was over before it could be killed");
    for (const QString &copy : entries(out)) {
        if (!copy.startsWith(QLatin1Char('.')))
            QCOMPARE(QImage(out + QLatin1Char('/') + copy).size(), QSize(1600, 1200));
    }
    write(QStringLiteral("out/.plexa-00000000.tmp"), "half a photo");
    write(QStringLiteral("out/.plexa-notes.tmp"), "not ours");
    QCOMPARE(run(arguments + QStringList{m_folder->path(QStringLiteral("in"))}).status, 0);
    const QStringList hidden = entries(out).filter(QRegularExpression(QStringLiteral("^\\.")));
    QCOMPARE(hidden, QStringList{QStringLiteral(".plexa-notes.tmp")});
}

void UnfinishedRunsTest::stoppingLeavesWholeFiles_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<QString>("shell");
    QTest::addColumn<bool>("stops");
    QTest::newRow("Ctrl-C") << SIGINT << QStringLiteral("exec \"$0\" \"$@\"") << true;
    QTest::newRow("hang-up") << SIGHUP << QStringLiteral("exec \"$0\" \"$@\"") << true;
    QTest::newRow("hang-up under nohup")
        << SIGHUP << QStringLiteral("trap '' HUP; exec \"$0\" \"$@\"") << false;
}

void UnfinishedRunsTest::stoppingLeavesWholeFiles()
{
    QFETCH(int, signal);
    QFETCH(QString, shell);
    QFETCH(bool, stops);
    const QString in = manyPhotos();
    const QString out = m_folder->path(QStringLiteral("out"));
    QProcess process;
    process.start(QStringLiteral("/bin/sh"),
                  {QStringLiteral("-c"), shell, program(), QStringLiteral("save"), QStringLiteral("--text"),
                   QStringLiteral("x"), QStringLiteral("--output"), out, in});
    QVERIFY(process.waitForReadyRead(60'000)); // the first copy is written
    ::kill(static_cast<pid_t>(process.processId()), signal);
    QVERIFY(process.waitForFinished(60'000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), stops ? 1 : 0);
    const QStringList copies = entries(out);
    QVERIFY(!copies.isEmpty());
    QVERIFY2((copies.size() < 200) == stops, "the run was over before it could be stopped");
    for (const QString &copy : copies) {
        QVERIFY2(!copy.startsWith(QLatin1Char('.')), qPrintable(copy));
        QCOMPARE(QImage(out + QLatin1Char('/') + copy).size(), QSize(1600, 1200));
    }
}

QTEST_GUILESS_MAIN(UnfinishedRunsTest)
#include "unfinishedruns_test.moc"
