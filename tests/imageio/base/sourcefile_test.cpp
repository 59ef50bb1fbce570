// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/sourcefile.h"
#include "support/files.h"
#include "support/testfolder.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <sys/stat.h>

using namespace plexa;
using namespace plexa::test;

class SourceFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyFilesAreOpened()
    {
        const TestFolder folder;
        QCOMPARE(::mkfifo(QFile::encodeName(folder.path("pipe")).constData(), 0600), 0);
        QVERIFY(!SourceFile::openAt(folder.path("pipe"))); // does not wait for the other end either
        QVERIFY(!SourceFile::openAt(folder.path("")));
        QVERIFY(!SourceFile::openAt(folder.path("missing")));
    }

    void refusedSeekKeepsPosition()
    {
        const TestFolder folder;
        QByteArray bytes(100'000, '\0'); // more than the device reads ahead
        for (qsizetype i = 0; i < bytes.size(); ++i)
            bytes[i] = char(i % 251);
        QVERIFY(writeFile(folder.path("file"), bytes));
        const auto file = SourceFile::openAt(folder.path("file"));
        QVERIFY(file);
        QCOMPARE((*file)->read(10), bytes.first(10));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Invalid pos: -1")));
        QVERIFY(!(*file)->seek(-1));
        QCOMPARE((*file)->readAll(), bytes.sliced(10));
        QVERIFY((*file)->checkReads());
    }
};

QTEST_GUILESS_MAIN(SourceFileTest)
#include "sourcefile_test.moc"
