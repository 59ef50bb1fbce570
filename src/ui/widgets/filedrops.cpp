// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/filedrops.h"

#include "ui/widgets/localfiles.h"

#include <QDropEvent>
#include <QMimeData>

namespace plexa
{

QStringList droppedFiles(const QMimeData *data)
{
    // A drag out of the grid offers copies that are made for other programs, and would be made here.
    if (!data->hasUrls() || data->hasFormat(kPhotoSelectionType))
        return {};
    return localFiles(*data);
}

void acceptFiles(QDropEvent *event)
{
    // Photos of our own grid are in the list already; asking for their files would make copies of them.
    if (event->mimeData()->hasFormat(kPhotoSelectionType))
        return;
    if (!event->possibleActions().testFlag(Qt::CopyAction) || droppedFiles(event->mimeData()).isEmpty())
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

} // namespace plexa
