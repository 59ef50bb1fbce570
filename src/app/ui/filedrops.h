// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>

class QDropEvent;
class QMimeData;

namespace plexa
{

/// The files of this computer among what is dragged or pasted; empty when there are none.
QStringList droppedFiles(const QMimeData *data);

/// Accepts files that are dragged over a widget, as a copy; anything else is left alone.
void acceptFiles(QDropEvent *event);

} // namespace plexa
