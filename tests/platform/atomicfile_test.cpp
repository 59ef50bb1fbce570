// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/atomicfile.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/testfolder.h"

#include <QtTest>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>

using namespace plexa;
using namespace plexa::test;
using IfExists = AtomicFile::IfExists;

namespace
{

/// Simulates a system on which an unfinished file needs a name.
std::atomic_bool isWithoutProc = false;

} // namespace

extern "C" int access(const char *path, int mode) noexcept
{
    const bool isHidden = isWithoutProc && qstrcmp(path, "/proc/self/fd") == 0;
    return faccessat(AT_FDCWD, isHidden ? "/no/such/folder" : path, mode, 0);
}

namespace
{

const QRegularExpression kTemporaryName(u"^\\.plexa-[a-z0-9]{8}\\.tmp$"_qs);

mode_t modeOf(const QString &path)
{
    struct stat info {
    };
    return stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 07777 : 0;
}

struct Way {
    Text name;
    IfExists ifExists = IfExists::Fail;
    bool exists = false;
    bool isNamed = false;
};

using Refusal = Row<IfExists, Text>; // ifExists, reason

/// The failure's text, or an empty string.
QString writeAll(AtomicFile &file, const QByteArray &bytes)
{
    if (const auto opened = file.open(); !opened)
        return opened.error().text;
    file.device().write(bytes);
    const auto done = file.commit();
    return done ? QString() : done.error().text;
}

} // namespace

class AtomicFileTest : public QObject
{
    Q_OBJECT

private:
    static void addStagings() { addRows<Way>({{"nameless"}, {"named", IfExists::Fail, false, true}}); }
    QStringList namesInOut() const { return namesIn(m_folder->path("out")); }

    std::unique_ptr<TestFolder> m_folder;
    QString m_target;

private Q_SLOTS:
    void init()
    {
        isWithoutProc = false;
        m_folder = std::make_unique<TestFolder>();
        QVERIFY(m_folder->isValid());
        QVERIFY(QDir().mkpath(m_folder->path("out")));
        m_target = m_folder->path("out/copy \u00e9.jpg");
    }

    void writes_data()
    {
        addRows<Way>({{"new", IfExists::Fail, false},
                      {"new where one may stand", IfExists::Replace, false},
                      {"replaced", IfExists::Replace, true},
                      {"new, named", IfExists::Fail, false, true},
                      {"new where one may stand, named", IfExists::Replace, false, true},
                      {"replaced, named", IfExists::Replace, true, true}});
    }
    void writes()
    {
        const auto [name, ifExists, exists, isNamed] = currentRow<Way>();
        isWithoutProc = isNamed;
        if (exists)
            QVERIFY(writeFile(m_target, "old"));
        const QStringList before = namesInOut();
        {
            AtomicFile abandoned(m_target, ifExists);
            QVERIFY(abandoned.open());
            abandoned.device().write("never seen");
        }
        QCOMPARE(namesInOut(), before);

        AtomicFile file(m_target, ifExists);
        QVERIFY(file.open());
        QVERIFY(file.device().write("0123456789") == 10);
        QVERIFY(file.device().seek(2));
        QVERIFY(file.device().write("ab") == 2);
        QVERIFY(file.device().seek(0));
        QCOMPARE(file.device().read(4), QByteArray("01ab"));
        QCOMPARE(contentsOf(m_target), exists ? "old" : QByteArray());
        for (const QString &name : namesInOut())
            QVERIFY(before.contains(name) || kTemporaryName.match(name).hasMatch());
        const auto done = file.commit();
        QVERIFY2(done, done ? "" : qPrintable(done.error().text));
        QCOMPARE(contentsOf(m_target), "01ab456789");
        QCOMPARE(namesInOut().size(), 1);
        QVERIFY(!file.commit());
    }

    void failNeverReplaces_data() { addStagings(); }
    void failNeverReplaces()
    {
        isWithoutProc = currentRow<Way>().isNamed;
        AtomicFile late(m_target, IfExists::Fail);
        QVERIFY(late.open());
        late.device().write("new");
        QVERIFY(writeFile(m_target, "appeared meanwhile"));
        const auto done = late.commit();
        QVERIFY(!done && done.error().text.contains(u"exists already"_qs));
        QCOMPARE(contentsOf(m_target), "appeared meanwhile");
        QCOMPARE(namesInOut().size(), 1);

        const QString link = m_folder->path("out/dangling.jpg");
        QVERIFY(QFile::link(m_folder->path("nowhere"), link));
        AtomicFile onLink(link, IfExists::Fail);
        QVERIFY(!onLink.open());
        QVERIFY(!QFileInfo::exists(m_folder->path("nowhere")));
    }

    void alternatives_data() { addStagings(); }
    /// Names that are taken before the file is begun and while it is written are passed over.
    void alternatives()
    {
        isWithoutProc = currentRow<Way>().isNamed;
        const auto numbered = [this](int number) { return m_target + QString::number(number); };
        QVERIFY(writeFile(m_target, "old"));
        AtomicFile file(m_target, IfExists::Fail);
        file.setAlternatives([&, number = 0]() mutable -> std::optional<QString> {
            return number < 4 ? std::optional(numbered(++number)) : std::nullopt;
        });
        QVERIFY(file.open());
        file.device().write("new");
        for (const int taken : {1, 2})
            QVERIFY(writeFile(numbered(taken), "old"));
        QVERIFY(file.commit());
        QCOMPARE(contentsOf(numbered(3)), "new");
        QCOMPARE(contentsOf(m_target) + contentsOf(numbered(1)) + contentsOf(numbered(2)), "oldoldold");
        QCOMPARE(namesInOut().size(), 4);

        QVERIFY(writeFile(numbered(4), "old"));
        AtomicFile last(numbered(4), IfExists::Fail);
        last.setAlternatives([] { return std::nullopt; });
        QVERIFY(!last.open());
    }

    void fullDisk_data() { writes_data(); }

    void fullDisk()
    {
        const auto [name, ifExists, exists, isNamed] = currentRow<Way>();
        isWithoutProc = isNamed;
        if (exists)
            QVERIFY(writeFile(m_target, "old"));
        // A limit of the file size stands in for a full disk: the write is cut short in the same way.
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit before{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
        const rlimit low{100'000, before.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &low), 0);
        QStringList texts;
        for (const int size : {100'000, 100'001, 300'000}) {
            AtomicFile file(m_target, size == 100'000 ? IfExists::Replace : ifExists);
            texts.append(writeAll(file, QByteArray(size, 'x')));
            if (size == 100'000 && !exists)
                QFile::remove(m_target);
        }
        setrlimit(RLIMIT_FSIZE, &before);
        QCOMPARE(texts[0], QString());
        QVERIFY2(texts[1].endsWith(u"file too large"_qs), qPrintable(texts[1]));
        QVERIFY(texts[1].contains(m_target));
        QCOMPARE(texts[2], texts[1]);
        QCOMPARE(namesInOut().size(), exists ? 1 : 0);
        if (exists)
            QCOMPARE(contentsOf(m_target).size(), 100'000);
    }

    void failedWriteIsRemembered()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit before{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
        AtomicFile file(m_target, IfExists::Fail);
        QVERIFY(file.open());
        const rlimit low{1000, before.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &low), 0);
        file.device().write(QByteArray(100'000, 'x'));
        setrlimit(RLIMIT_FSIZE, &before);
        // There is room again, but a piece is missing.
        QVERIFY(file.device().seek(0));
        file.device().write("start");
        QVERIFY(!file.commit());
        QVERIFY(!QFileInfo::exists(m_target));
    }

    void refusals_data()
    {
        addRows<Refusal>({{"no/such/folder.jpg", IfExists::Fail, "the folder does not exist"},
                          {"file/copy.jpg", IfExists::Fail, "a part of its path is not a folder"},
                          {"folder", IfExists::Replace, "a folder of that name exists"},
                          {"file", IfExists::Fail, "a file of that name exists already"},
                          {"circle", IfExists::Replace, "too many levels of symbolic links"},
                          {"pipe", IfExists::Replace, "it is not an ordinary file"},
                          {QString(300, u'n'), IfExists::Replace, "file name too long"}});
    }
    void refusals()
    {
        const auto [name, ifExists, reason] = currentRow<Refusal>();
        QVERIFY(writeFile(m_folder->path("file"), "old"));
        QVERIFY(QDir().mkpath(m_folder->path("folder")));
        QVERIFY(QFile::link(m_folder->path("circle"), m_folder->path("circle")));
        QCOMPARE(mkfifo(QFile::encodeName(m_folder->path("pipe")).constData(), 0600), 0);
        AtomicFile file(m_folder->path(name), ifExists);
        QCOMPARE(writeAll(file, "new"),
                 QStringLiteral("\"%1\" cannot be written: %2").arg(m_folder->path(name), reason));
        QCOMPARE(contentsOf(m_folder->path("file")), "old");
    }

    void keepsPermissionsAndLinks()
    {
        const QString link = m_folder->path("link.jpg");
        QVERIFY(writeFile(m_target, "old"));
        QCOMPARE(chmod(QFile::encodeName(m_target).constData(), 0751), 0);
        // A relative link, so that it must be taken from the link's own folder.
        QCOMPARE(symlink(QFile::encodeName(u"out/"_qs + QFileInfo(m_target).fileName()).constData(),
                         QFile::encodeName(link).constData()),
                 0);
        AtomicFile file(link, IfExists::Replace);
        QCOMPARE(writeAll(file, "new"), QString());
        QVERIFY(QFileInfo(link).isSymLink());
        QVERIFY(!QFileInfo(m_target).isSymLink());
        QCOMPARE(contentsOf(m_target), "new");
        QCOMPARE(modeOf(m_target), mode_t(0751));
    }

    void newFileFollowsUmask()
    {
        const mode_t before = umask(027);
        QStringList failures;
        for (const bool isNamed : {false, true}) {
            isWithoutProc = isNamed;
            AtomicFile file(m_target, IfExists::Fail);
            failures.append(writeAll(file, "new"));
            const mode_t mode = modeOf(m_target);
            QFile::remove(m_target);
            if (mode != 0640)
                failures.append(u"mode %1"_qs.arg(mode, 0, 8));
        }
        umask(before);
        QCOMPARE(failures, QStringList({QString(), QString()}));
    }

    void killedWhileWriting_data() { addStagings(); }
    void killedWhileWriting()
    {
        isWithoutProc = currentRow<Way>().isNamed;
        const pid_t child = fork();
        QVERIFY(child >= 0);
        if (child == 0) {
            AtomicFile file(m_target, IfExists::Fail);
            if (!file.open())
                _exit(1);
            file.device().write("half");
            file.device().flush();
            raise(SIGKILL);
        }
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status));
        const QStringList left = namesInOut();
        QVERIFY(left.size() <= 1 && (left.size() == 1 || !isWithoutProc));
        for (const QString &name : left)
            QVERIFY2(kTemporaryName.match(name).hasMatch(), qPrintable(name));
        QCOMPARE(removeLeftovers(m_folder->path("out")), left.size());
        QCOMPARE(namesInOut(), QStringList());
    }

    void leftoversOfOthersStay()
    {
        const QString folder = m_folder->path("out");
        const QString photo = m_folder->path("out/photo.tmp");
        QVERIFY(writeFile(photo, "photo"));
        QVERIFY(QFile::link(photo, m_folder->path("out/.plexa-aaaaaaaa.tmp")));
        QVERIFY(QDir(folder).mkdir(u".plexa-bbbbbbbb.tmp"_qs));
        isWithoutProc = true;
        AtomicFile file(m_target, IfExists::Fail);
        QVERIFY(file.open()); // a file that is being written
        QCOMPARE(removeLeftovers(folder), 0);
        QCOMPARE(removeLeftovers(photo), 0);
        QVERIFY(file.commit());
        QCOMPARE(namesInOut().size(), 4);
    }

    /// Whatever their order, every file gets to its place.
    void writersAndRemoversAtOnce()
    {
        std::atomic_bool isOver = false;
        std::jthread remover([&] {
            while (!isOver)
                removeLeftovers(m_folder->path("out"));
        });
        QStringList failures;
        for (int i = 0; i < 500; ++i) {
            isWithoutProc = i % 2 == 0;
            AtomicFile file(m_target + QString::number(i % 3), IfExists::Replace);
            failures.append(writeAll(file, "new"));
        }
        isOver = true;
        failures.removeAll(QString());
        QCOMPARE(failures, QStringList());
    }
};

QTEST_GUILESS_MAIN(AtomicFileTest)
#include "atomicfile_test.moc"
