// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/sourcefile.h"

#include "imageio/base/picturefailures.h"
#include "platform/systemerror.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace plexa
{

namespace
{

/// @return -1 with errno if it fails
int openForReading(const QByteArray &name, int flags)
{
    int descriptor = -1;
    do {
        descriptor = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY | flags);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

/// Waits until the lease ends: the system grants its holder less than a minute. The path cannot lead to a
/// pipe meanwhile.
int openLeased(const QByteArray &name)
{
    const int place = openForReading(name, O_PATH);
    struct stat status = {};
    if (place < 0 || ::fstat(place, &status) != 0 || !S_ISREG(status.st_mode)) {
        if (place >= 0)
            ::close(place);
        errno = EWOULDBLOCK;
        return -1;
    }
    const int descriptor = openForReading("/proc/self/fd/" + QByteArray::number(place), 0);
    const int error = errno;
    ::close(place);
    errno = error;
    return descriptor;
}

} // namespace

SourceFile::SourceFile(int descriptor, const FileVersion &version)
    : m_descriptor(descriptor)
    , m_version(version)
{
    open(QIODevice::ReadOnly);
}

SourceFile::~SourceFile()
{
    ::close(m_descriptor);
}

Result<std::unique_ptr<SourceFile>> SourceFile::openAt(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    // A device has no reliable end, and opening it, or a pipe, may have effects.
    if (::stat(name.constData(), &status) == 0 && !S_ISREG(status.st_mode))
        return fail(openErrorText(path, PictureFailures::notAPicture()));
    // The path may lead elsewhere by now: to open a pipe must not wait for its other end.
    int descriptor = openForReading(name, O_NONBLOCK);
    // Another program holds a lease on the file, which ends when the file is opened.
    if (descriptor < 0 && errno == EWOULDBLOCK)
        descriptor = openLeased(name);
    if (descriptor < 0)
        return fail(openErrorText(path, PictureFailures::readError(qt_error_string(errno))));
    if (::fstat(descriptor, &status) == 0 && !S_ISREG(status.st_mode)) {
        ::close(descriptor);
        return fail(PictureFailures::notAPicture());
    }
    const std::optional<FileVersion> version = fileVersionOf(descriptor);
    if (version)
        return std::unique_ptr<SourceFile>(new SourceFile(descriptor, *version));
    const QString reason = qt_error_string(errno);
    ::close(descriptor);
    return fail(PictureFailures::readError(reason));
}

Result<void> SourceFile::checkReads() const
{
    return m_failure.isEmpty() ? Result<void>() : fail(m_failure);
}

Result<void> SourceFile::checkUnchanged() const
{
    if (m_failure.isEmpty() && fileVersionOf(m_descriptor) != m_version)
        return fail(PictureFailures::changedMeanwhile());
    return checkReads();
}

bool SourceFile::seek(qint64 position)
{
    if (!QIODevice::seek(position))
        return false;
    m_position = position;
    return true;
}

/// @param error  an errno value; 0: the file ends before its size
void SourceFile::recordFailure(int error)
{
    const QString reason = error != 0 ? qt_error_string(error) : PictureFailures::changedMeanwhile();
    setErrorString(reason);
    if (m_failure.isEmpty())
        m_failure = error != 0 ? PictureFailures::readError(reason) : reason;
}

qint64 SourceFile::readData(char *bytes, qint64 count)
{
    const qint64 wanted = qMin(count, size() - m_position);
    qint64 done = 0;
    while (done < wanted) {
        const ssize_t got = ::pread(m_descriptor, bytes + done, size_t(wanted - done), off_t(m_position));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0) {
            recordFailure(got < 0 ? errno : 0);
            return done > 0 ? done : -1;
        }
        done += got;
        m_position += got;
    }
    return done;
}

} // namespace plexa
