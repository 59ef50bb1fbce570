// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/metadata/fieldkeys.h"

#include <QKeyEvent>

namespace plexa
{

bool isEscape(const QEvent &event)
{
    if (event.type() != QEvent::KeyPress)
        return false;
    const auto &key = static_cast<const QKeyEvent &>(event);
    return key.key() == Qt::Key_Escape && key.modifiers() == Qt::NoModifier;
}

bool leavesUndoToWindow(QEvent &event, bool canFieldUndo, bool canFieldRedo)
{
    if (event.type() != QEvent::ShortcutOverride)
        return false;
    const auto &key = static_cast<const QKeyEvent &>(event);
    if ((!key.matches(QKeySequence::Undo) || canFieldUndo) &&
        (!key.matches(QKeySequence::Redo) || canFieldRedo))
        return false;
    event.ignore();
    return true;
}

} // namespace plexa
