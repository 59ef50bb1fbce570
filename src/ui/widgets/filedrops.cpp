// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/filedrops.h"

#include "platform/workspace.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

namespace plexa
{

QStringList droppedFiles(const QMimeData *data)
{
    // A drag from the grid offers copies for other programs; reading them would write them.
    if (!data->hasUrls() || data->hasFormat(kPhotoSelectionType))
        return {};
    QStringList paths;
    for (const QUrl &url : data->urls()) {
        if (const QString path = localPathOf(url); !path.isEmpty())
            paths.append(path);
    }
    return paths;
}

bool canAcceptFiles(const QDropEvent &event)
{
    // Photos of the grid are in the list already; requesting their files would write copies.
    return event.possibleActions().testFlag(Qt::CopyAction) && !droppedFiles(event.mimeData()).isEmpty();
}

void acceptFiles(QDropEvent *event)
{
    if (!canAcceptFiles(*event))
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

} // namespace plexa
