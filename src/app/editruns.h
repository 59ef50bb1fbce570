// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "watermark/wpresetfields.h"

#include <QObject>
#include <QTimer>

namespace plexa
{

/// Numbers the changes of fields: those of one field with the same number are one step to undo. Such a row
/// ends with a second without a change, but not in the middle of a drag, nor while a dialog is open, as that
/// of a color. A text, whose field undoes the single changes itself, is one row until the focus leaves the
/// field. Main thread.
class EditRuns final
{
public:
    EditRuns();

    /// The number of a change that is made now.
    int numberOf(const FieldValue &now);
    /// The next change begins a row.
    void end();

private:
    QTimer m_pause; ///< since the last change
    int m_number = 0;
    int m_textNumber = 0;
    QObject m_context; ///< of connections
};

} // namespace plexa
