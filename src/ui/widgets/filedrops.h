// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>

class QDropEvent;
class QMimeData;

namespace plexa
{

/// The MIME name of the selected indexes that a drag within a grid carries. They are valid only in the grid
/// where the drag started.
inline const QString kPhotoSelectionType = QStringLiteral("com.quorvel.ImageBrowserSelections");

/// The dragged or pasted files of this computer; empty for a drag from the grid.
QStringList droppedFiles(const QMimeData *data);

/// Whether files are dragged that may be copied.
bool canAcceptFiles(const QDropEvent &event);

/// Accepts dragged files, as a copy; ignores anything else.
void acceptFiles(QDropEvent *event);

} // namespace plexa
