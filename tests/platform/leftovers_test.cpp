// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/atomicfile.h"
#include "platform/leftovers.h"
#include "support/files.h"
#include "support/testenvironment.h"

#include <QtTest>

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>

using namespace plexa;
using namespace plexa::test;
using IfExists = AtomicFile::IfExists;
using Durability = AtomicFile::Durability;
using Staging = AtomicFile::Staging;

class LeftoversTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsBeingWrittenStays()
    {
        const QString target = m_folder.path("target");
        {
            AtomicFile file(target, IfExists::Fail, Durability::Lazy, Staging::Named);
            QVERIFY(file.open());
            file.device().write("whole");
            QCOMPARE(removeLeftovers(m_folder.path()), 0);
            QVERIFY(file.commit());
        }
        QCOMPARE(removeLeftovers(m_folder.path()), 0);
        QCOMPARE(namesIn(m_folder.path()), QStringList{u"target"_qs});
        QVERIFY(QFile::remove(target));
    }

    void whatAKilledProgramLeftGoes()
    {
        const QString target = m_folder.path("target");
        const pid_t child = fork();
        if (child == 0) {
            AtomicFile file(target, IfExists::Fail, Durability::Lazy, Staging::Named);
            if (file.open())
                ::kill(getpid(), SIGKILL);
            _exit(1);
        }
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status));
        QCOMPARE(namesIn(m_folder.path()).size(), 1);
        QVERIFY(AtomicFile::isTemporaryName(namesIn(m_folder.path()).first()));
        QCOMPARE(removeLeftovers(m_folder.path()), 1);
        QCOMPARE(namesIn(m_folder.path()), QStringList());
    }

    void whatIsNotOursStays()
    {
        const QString photo = m_folder.path("photo.tmp");
        const QString link = m_folder.path(".plexa-aaaaaaaa.tmp");
        QFile file(photo);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(QFile::link(photo, link));
        QVERIFY(QDir(m_folder.path()).mkdir(u".plexa-bbbbbbbb.tmp"_qs));
        QCOMPARE(removeLeftovers(m_folder.path()), 0);
        QCOMPARE(removeLeftovers(photo), 0);
        QCOMPARE(namesIn(m_folder.path()).size(), 3);
        QVERIFY(QFile::remove(link) && file.remove() &&
                QDir(m_folder.path()).rmdir(u".plexa-bbbbbbbb.tmp"_qs));
    }

    /// However they meet, every file gets to its place.
    void writersAndRemoversAtOnce()
    {
        std::atomic_bool isOver = false;
        std::jthread remover([&] {
            while (!isOver)
                removeLeftovers(m_folder.path());
        });
        QStringList failures;
        for (int i = 0; i < 2000; ++i) {
            AtomicFile file(m_folder.path(QString::number(i % 3)), IfExists::Replace, Durability::Lazy,
                            i % 2 == 0 ? Staging::Named : Staging::NamelessWherePossible);
            Result<void> done = file.open();
            if (done)
                done = file.commit();
            if (!done)
                failures.append(done.error().text);
        }
        isOver = true;
        QCOMPARE(failures, QStringList());
    }

private:
    TestFolder m_folder;
};

QTEST_GUILESS_MAIN(LeftoversTest)
#include "leftovers_test.moc"
