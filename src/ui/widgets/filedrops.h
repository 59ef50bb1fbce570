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

/// Accepts dragged files, as a copy; ignores anything else.
void acceptFiles(QDropEvent *event);

} // namespace plexa
