// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ui/filedrops.h"

#include "views/localfiles.h"
#include "views/promisedfiles.h"

#include <QDropEvent>
#include <QMimeData>

namespace plexa
{

QStringList droppedFiles(const QMimeData *data)
{
    // A drag out of the grid offers copies that are made for other programs, and would be made here.
    if (!data->hasUrls() || data->hasFormat(PromisedFiles::kSelectionType))
        return {};
    return localFiles(*data);
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
