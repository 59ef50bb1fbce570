// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>

class QDropEvent;
class QMimeData;

namespace plexa
{

/// MIME name of what a drag within a grid carries: the selected indexes, valid in the grid that the drag
/// comes from.
inline const QString kPhotoSelectionType = QStringLiteral("com.quorvel.ImageBrowserSelections");

/// The files of this computer among what is dragged or pasted; empty when there are none.
QStringList droppedFiles(const QMimeData *data);

/// Accepts files that are dragged over a widget, as a copy; anything else is left alone.
void acceptFiles(QDropEvent *event);

} // namespace plexa
