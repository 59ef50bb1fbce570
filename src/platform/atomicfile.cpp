// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/atomicfile.h"

#include "platform/systemerror.h"

#include <QCoreApplication>
#include <QDir>
#include <QRegularExpression>

#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <random>

namespace plexa
{
namespace
{

constexpr mode_t kModeBeforeUmask = 0666;
constexpr mode_t kPermissionBits = 0777;
constexpr int kMaxLinks = 40; // the kernel's own limit
constexpr int kMaxNameTries = 100;

struct AtomicFileTexts {
    Q_DECLARE_TR_FUNCTIONS(AtomicFile)
};

QByteArray folderOf(const QByteArray &path)
{
    return path.left(std::max<qsizetype>(path.lastIndexOf('/'), 1));
}

QByteArray randomTemporaryPath(const QByteArray &target)
{
    static constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device random;
    std::uniform_int_distribution<std::size_t> letter(0, sizeof kLetters - 2);
    QByteArray name = "/.plexa-";
    for (int i = 0; i < 8; ++i)
        name += kLetters[letter(random)];
    return folderOf(target) + name + ".tmp";
}

/// The link under which a process finds its own open file.
QByteArray descriptorPath(int descriptor)
{
    return "/proc/self/fd/" + QByteArray::number(descriptor);
}

/// Marks an unfinished file as being written until its descriptor is closed, also by a kill.
/// @return false when it was removed as a leftover meanwhile
bool lockUnfinished(int descriptor)
{
    struct stat own {
    };
    // On a file system without such locks no program can mistake the file for a leftover either.
    while (flock(descriptor, LOCK_EX) != 0) {
        if (errno != EINTR)
            return true;
    }
    return fstat(descriptor, &own) != 0 || own.st_nlink > 0;
}

/// Removes the file unless a running program is writing it.
bool removeIfLeft(int folder, const char *name)
{
    const int descriptor = openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    struct stat own {
    };
    // The lock is held until the file is gone, so that a writer that waits for it notices.
    const bool isLeft = fstat(descriptor, &own) == 0 && S_ISREG(own.st_mode) && own.st_uid == geteuid() &&
                        flock(descriptor, LOCK_EX | LOCK_NB) == 0;
    const bool isRemoved = isLeft && unlinkat(folder, name, 0) == 0;
    ::close(descriptor);
    return isRemoved;
}

/// Follows symbolic links at the end of the path, also a last one that points nowhere.
/// @return 0 or an errno value
int followLinks(QByteArray &path)
{
    for (int i = 0; i < kMaxLinks; ++i) {
        char buffer[4096];
        const ssize_t length = readlink(path.constData(), buffer, sizeof buffer);
        if (length < 0)
            return errno == EINVAL || errno == ENOENT ? 0 : errno;
        if (length == ssize_t(sizeof buffer))
            return ENAMETOOLONG;
        const QByteArray link(buffer, length);
        path = link.startsWith('/') ? link : folderOf(path) + '/' + link;
    }
    return ELOOP;
}

} // namespace

/// Remembers a failed write, which QFile forgets with the next seek.
class AtomicFile::Device final : public QFile
{
public:
    bool seek(qint64 position) override
    {
        errno = 0;
        const bool done = QFile::seek(position);
        if (!done)
            note();
        return done;
    }

    /// Writes what is buffered. @return 0 or the errno value of the first failure of all
    int finish()
    {
        errno = 0;
        if (!flush())
            note();
        return m_error;
    }

protected:
    qint64 writeData(const char *data, qint64 size) override
    {
        errno = 0;
        const qint64 written = QFile::writeData(data, size);
        if (written != size)
            note();
        return written;
    }

private:
    void note()
    {
        if (m_error == 0)
            m_error = errno != 0 ? errno : EIO;
        setErrorString(writeErrorText(m_error));
    }

    int m_error = 0;
};

AtomicFile::AtomicFile(QString path, IfExists ifExists)
    : m_path(std::move(path))
    , m_ifExists(ifExists)
{
}

AtomicFile::~AtomicFile()
{
    discard();
}

Result<void> AtomicFile::failure(int error) const
{
    return fail(AtomicFileTexts::tr("\"%1\" cannot be written: %2").arg(m_path, writeErrorText(error)));
}

void AtomicFile::setAlternatives(std::function<std::optional<QString>()> nextPath)
{
    m_nextPath = std::move(nextPath);
}

/// Absolute, so that a later change of the working directory does not matter. In bytes, because the name of
/// that directory need not be valid UTF-8.
void AtomicFile::resolveTarget()
{
    m_target = QFile::encodeName(QDir::cleanPath(m_path));
    if (m_target.startsWith('/'))
        return;
    char *const folder = getcwd(nullptr, 0); // allocates
    if (folder)
        m_target = QByteArray(folder) + '/' + m_target;
    std::free(folder);
}

/// @return false when there is none
bool AtomicFile::takeAlternative()
{
    const std::optional<QString> next = m_nextPath ? m_nextPath() : std::nullopt;
    if (!next)
        return false;
    m_path = *next;
    resolveTarget();
    return true;
}

Result<void> AtomicFile::check()
{
    if (Result<void> checked = checkTarget(); !checked)
        return checked;
    const bool isWritable = faccessat(AT_FDCWD, folderOf(m_target).constData(), W_OK | X_OK, AT_EACCESS) == 0;
    return isWritable ? Result<void>() : failure(errno);
}

/// Checks the target alone, not whether its folder is writable.
Result<void> AtomicFile::checkTarget()
{
    resolveTarget();
    if (m_path.isEmpty() || m_path.contains(QChar(u'\0')))
        return failure(ENOENT);
    if (m_ifExists == IfExists::Replace) {
        if (const int error = followLinks(m_target))
            return failure(error);
    }
    struct stat there {
    };
    while (lstat(m_target.constData(), &there) == 0) {
        if (m_ifExists == IfExists::Fail && takeAlternative())
            continue;
        if (S_ISDIR(there.st_mode))
            return failure(EISDIR);
        if (m_ifExists == IfExists::Fail)
            return failure(EEXIST);
        if (S_ISLNK(there.st_mode)) // with ReplaceLink
            break;
        if (!S_ISREG(there.st_mode))
            return fail(
                AtomicFileTexts::tr("\"%1\" cannot be written: it is not an ordinary file").arg(m_path));
        if (faccessat(AT_FDCWD, m_target.constData(), W_OK, AT_EACCESS) != 0)
            return fail(AtomicFileTexts::tr("\"%1\" cannot be written: it is write-protected").arg(m_path));
        break;
    }
    return {};
}

Result<void> AtomicFile::open()
{
    Q_ASSERT(!m_device);
    if (Result<void> checked = checkTarget(); !checked)
        return checked;
    int descriptor = openNameless();
    if (descriptor < 0)
        descriptor = openNamed();
    if (descriptor < 0)
        return failure(errno);
    m_device = std::make_unique<Device>();
    if (!m_device->QFile::open(descriptor, QIODevice::ReadWrite, QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        discard();
        return failure(EIO);
    }
    return {};
}

int AtomicFile::openNameless() const
{
    // Without /proc such a file could never get a name.
    if (access("/proc/self/fd", X_OK) != 0)
        return -1;
    return ::open(folderOf(m_target).constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, kModeBeforeUmask);
}

int AtomicFile::openNamed()
{
    for (int i = 0; i < kMaxNameTries; ++i) {
        const QByteArray path = randomTemporaryPath(m_target);
        const int descriptor =
            ::open(path.constData(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC | O_NOFOLLOW, kModeBeforeUmask);
        if (descriptor >= 0 && !lockUnfinished(descriptor)) {
            ::close(descriptor);
            continue;
        }
        if (descriptor >= 0)
            m_temporaryPath = path;
        if (descriptor >= 0 || errno != EEXIST)
            return descriptor;
    }
    return -1;
}

QFile &AtomicFile::device()
{
    Q_ASSERT(m_device);
    return *m_device;
}

void AtomicFile::setModificationTime(const timespec &time)
{
    m_modificationTime = time;
}

Result<void> AtomicFile::commit()
{
    if (!m_device)
        return failure(EBADF);
    Result<void> done = finishContents();
    if (done) {
        int error = putInPlace();
        while (error == EEXIST && m_ifExists == IfExists::Fail && takeAlternative())
            error = putInPlace();
        if (error != 0)
            done = failure(error);
    }
    discard();
    if (done) {
        // Best effort: the file is in place already, and some file systems cannot do it.
        const int folder = ::open(folderOf(m_target).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder >= 0) {
            fsync(folder);
            ::close(folder);
        }
    }
    return done;
}

Result<void> AtomicFile::finishContents()
{
    if (const int error = m_device->finish())
        return failure(error);
    const int descriptor = m_device->handle();
    if (m_ifExists != IfExists::Fail) {
        if (Result<void> done = takeOverPermissions(); !done)
            return done;
    }
    if (m_modificationTime) {
        timespec times[2] = {};
        times[0].tv_nsec = UTIME_OMIT;
        times[1] = *m_modificationTime;
        if (futimens(descriptor, times) != 0)
            return failure(errno);
    }
    return fsync(descriptor) == 0 ? Result<void>() : failure(errno);
}

Result<void> AtomicFile::takeOverPermissions() const
{
    struct stat old {
    };
    struct stat own {
    };
    const int descriptor = m_device->handle();
    if (lstat(m_target.constData(), &old) != 0)
        return errno == ENOENT ? Result<void>() : failure(errno);
    if (S_ISLNK(old.st_mode)) // its permissions mean nothing
        return {};
    if (fstat(descriptor, &own) != 0)
        return failure(errno);
    mode_t mode = old.st_mode & kPermissionBits;
    if (old.st_uid != own.st_uid || old.st_gid != own.st_gid) {
        const bool groupKept = fchown(descriptor, old.st_uid, old.st_gid) == 0 ||
                               fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) == 0;
        // The old group's permissions do not pass to another group.
        if (!groupKept)
            mode = (mode & ~mode_t(S_IRWXG)) | (mode & ((mode & S_IRWXO) << 3));
    }
    // File systems without permissions refuse this, and have nothing to adopt.
    if (fchmod(descriptor, mode) != 0 && errno != EPERM && errno != ENOTSUP)
        return failure(errno);
    return {};
}

/// @return 0 or an errno value
int AtomicFile::putInPlace()
{
    if (m_ifExists == IfExists::Fail) {
        if (!m_temporaryPath.isEmpty())
            return moveWithoutReplacing();
        const int linked = linkat(AT_FDCWD, descriptorPath(m_device->handle()).constData(), AT_FDCWD,
                                  m_target.constData(), AT_SYMLINK_FOLLOW);
        return linked == 0 ? 0 : errno;
    }
    if (m_temporaryPath.isEmpty()) {
        if (const int error = giveTemporaryName())
            return error;
    }
    if (rename(m_temporaryPath.constData(), m_target.constData()) != 0)
        return errno;
    m_temporaryPath.clear();
    return 0;
}

/// A link cannot replace a file, so the nameless file needs a name to be renamed from.
int AtomicFile::giveTemporaryName()
{
    flock(m_device->handle(), LOCK_EX); // no other process can hold it, so this never waits
    for (int i = 0; i < kMaxNameTries; ++i) {
        const QByteArray path = randomTemporaryPath(m_target);
        if (linkat(AT_FDCWD, descriptorPath(m_device->handle()).constData(), AT_FDCWD, path.constData(),
                   AT_SYMLINK_FOLLOW) == 0) {
            m_temporaryPath = path;
            return 0;
        }
        if (errno != EEXIST)
            return errno;
    }
    return EEXIST;
}

/// By the first of three ways that the file system offers. discard() removes the temporary name where it is
/// left.
int AtomicFile::moveWithoutReplacing() const
{
    const char *from = m_temporaryPath.constData();
    const char *to = m_target.constData();
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP)
        return errno;
    if (link(from, to) == 0)
        return 0;
    if (errno != EPERM && errno != ENOSYS && errno != ENOTSUP && errno != EMLINK)
        return errno;
    // An empty file of our own reserves the name, which only one program can do, and is then replaced.
    const int claim = ::open(to, O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, kModeBeforeUmask);
    if (claim < 0)
        return errno;
    ::close(claim);
    if (rename(from, to) == 0)
        return 0;
    const int error = errno;
    unlink(to);
    return error;
}

void AtomicFile::discard()
{
    m_device.reset();
    if (!m_temporaryPath.isEmpty())
        unlink(m_temporaryPath.constData());
    m_temporaryPath.clear();
}

int removeLeftovers(const QString &folder)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(opendir(QFile::encodeName(folder).constData()),
                                                       closedir);
    static const QRegularExpression pattern(QStringLiteral("\\A\\.plexa-[a-z0-9]{8}\\.tmp\\z"));
    int removed = 0;
    while (const dirent *entry = entries ? readdir(entries.get()) : nullptr) {
        if (pattern.match(QFile::decodeName(entry->d_name)).hasMatch() &&
            removeIfLeft(dirfd(entries.get()), entry->d_name))
            ++removed;
    }
    return removed;
}

} // namespace plexa
