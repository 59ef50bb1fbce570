// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QEvent;

namespace plexa
{

/// Is this the press of the Escape key alone? A field discards with it what the user has typed and not
/// committed.
bool isEscape(const QEvent &event);

/// For the event filter of a field: ignores an undo or redo for which the field has no typed text, so that
/// the action of the window gets it.
/// @return whether the field must not see the event
bool leavesUndoToWindow(QEvent &event, bool canFieldUndo, bool canFieldRedo);

} // namespace plexa
