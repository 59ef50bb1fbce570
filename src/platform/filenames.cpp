// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/filenames.h"

#include <QFileInfo>

namespace plexa
{

QString filenameOf(const QString &path)
{
    const QFileInfo file(path);
    return file.completeBaseName().isEmpty() ? file.fileName() : file.completeBaseName();
}

QString fileExtensionOf(const QString &path)
{
    const QFileInfo file(path);
    return file.completeBaseName().isEmpty() ? QString() : file.suffix();
}

} // namespace plexa
