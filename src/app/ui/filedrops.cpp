// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ui/filedrops.h"

#include "views/promisedfiles.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

namespace plexa
{

QStringList droppedFiles(const QMimeData *data)
{
    QStringList paths;
    // A drag out of the grid offers copies that are made for other programs, and would be made here.
    if (!data->hasUrls() || data->hasFormat(PromisedFiles::kSelectionType))
        return paths;
    for (const QUrl &url : data->urls()) {
        if (url.isLocalFile() && !url.toLocalFile().isEmpty())
            paths.append(url.toLocalFile());
    }
    return paths;
}

void acceptFiles(QDropEvent *event)
{
    // Photos of our own grid are in the list already; asking for their files would make copies of them.
    if (event->mimeData()->hasFormat(PromisedFiles::kSelectionType))
        return;
    if (!event->possibleActions().testFlag(Qt::CopyAction) || droppedFiles(event->mimeData()).isEmpty())
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

} // namespace plexa
