// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/pathlist.h"

#include "platform/systemerror.h"

#include <QFile>

#include <cstdio>

namespace plexa
{
namespace
{

/// More than the paths of any run; a device may never end.
constexpr qint64 kMaxBytes = 1 << 28;

Result<QByteArray> contentsOf(const std::string &path)
{
    QFile file(QFile::decodeName(path.c_str()));
    const auto refuse = [&](const QString &reason) {
        return fail(QStringLiteral("--files-from \"%1\": %2").arg(QFile::decodeName(path.c_str()), reason));
    };
    if (!(path == "-" ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly)))
        return refuse(path == "-" ? file.errorString() : openErrorText(file.fileName(), file.errorString()));
    QByteArray contents = file.read(kMaxBytes + 1);
    if (file.error() != QFileDevice::NoError)
        return refuse(file.errorString());
    if (contents.size() > kMaxBytes)
        return refuse(QStringLiteral("it is too large for a list of paths"));
    return contents;
}

} // namespace

Result<std::vector<std::string>> pathsInList(const std::string &file, bool isNulSeparated)
{
    return contentsOf(file).map([isNulSeparated](const QByteArray &contents) {
        std::vector<std::string> paths;
        for (QByteArray path : contents.split(isNulSeparated ? '\0' : '\n')) {
            if (!isNulSeparated && path.endsWith('\r'))
                path.chop(1);
            if (!path.isEmpty())
                paths.push_back(path.toStdString());
        }
        return paths;
    });
}

} // namespace plexa
