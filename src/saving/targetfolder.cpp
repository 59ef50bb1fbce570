// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/targetfolder.h"

#include "platform/systemerror.h"

#include <QCoreApplication>
#include <QFile>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::Saving)
};

} // namespace

Result<void> checkFolderCanBeMade(const QString &path)
{
    namespace fs = std::filesystem;
    const auto failure = [&path](const QString &reason) {
        return fail(Texts::tr("the folder \"%1\" cannot be made: %2").arg(path, reason));
    };
    std::error_code error;
    const fs::path wanted = fs::absolute(QFile::encodeName(path).toStdString(), error);
    if (fs::is_directory(wanted, error))
        return {};
    fs::path above = wanted.lexically_normal();
    while (above.has_relative_path() && fs::symlink_status(above, error).type() == fs::file_type::not_found)
        above = above.parent_path();
    if (!fs::is_directory(above, error))
        return failure(writeErrorText(error ? error.value() : ENOTDIR));
    if (faccessat(AT_FDCWD, above.c_str(), W_OK | X_OK, AT_EACCESS) == 0)
        return {};
    if (errno == EACCES)
        return failure(Texts::tr("no permission to write into \"%1\"").arg(QFile::decodeName(above.c_str())));
    return failure(writeErrorText(errno));
}

} // namespace plexa
