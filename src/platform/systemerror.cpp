// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/systemerror.h"

#include <QCoreApplication>
#include <QFile>

#include <sys/stat.h>

#include <cerrno>
#include <system_error>

namespace plexa
{
namespace
{

struct SystemError {
    Q_DECLARE_TR_FUNCTIONS(SystemError)
};

} // namespace

QString openErrorText(const QString &path, const QString &otherwise)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) == 0)
        return S_ISDIR(status.st_mode) ? SystemError::tr("it is a folder") : otherwise;
    return errno == ENOENT || errno == ENOTDIR ? SystemError::tr("there is no file or folder of this name")
                                               : otherwise;
}

QString writeErrorText(int error)
{
    switch (error) {
    case ENOSPC:
        return SystemError::tr("no space left on the disk");
    case EACCES:
    case EPERM:
        return SystemError::tr("no permission to write into the folder");
    case EROFS:
        return SystemError::tr("the disk is read-only");
    case ENOENT:
        return SystemError::tr("the folder does not exist");
    case ENOTDIR:
        return SystemError::tr("a part of its path is not a folder");
    case EISDIR:
        return SystemError::tr("a folder of that name exists");
    case EEXIST:
        return SystemError::tr("a file of that name exists already");
    default: {
        QString text = QString::fromLocal8Bit(std::system_category().message(error).c_str());
        return text.replace(0, 1, text.first(1).toLower());
    }
    }
}

} // namespace plexa
