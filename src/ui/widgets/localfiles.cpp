// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/localfiles.h"

#include <QMimeData>
#include <QUrl>

namespace plexa
{

QStringList localFiles(const QMimeData &data)
{
    QStringList paths;
    for (const QUrl &url : data.urls()) {
        if (url.isLocalFile() && !url.toLocalFile().isEmpty())
            paths.append(url.toLocalFile());
    }
    return paths;
}

} // namespace plexa
