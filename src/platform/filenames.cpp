// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/filenames.h"

#include <QFileInfo>

namespace plexa
{

namespace
{

bool isNothingButExtension(const QFileInfo &file)
{
    return file.completeBaseName().isEmpty();
}

} // namespace

QString filenameOf(const QString &path)
{
    const QFileInfo file(path);
    return isNothingButExtension(file) ? file.fileName() : file.completeBaseName();
}

QString fileExtensionOf(const QString &path)
{
    const QFileInfo file(path);
    return isNothingButExtension(file) ? QString() : file.suffix();
}

} // namespace plexa
