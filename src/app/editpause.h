// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTimer>

namespace plexa
{

/// The pause that ends a row of changes to one field, which are one step to undo: a second without a change.
/// It does not end in the middle of a drag, nor while a dialog is open, as that of a color. Main thread.
class EditPause final
{
public:
    EditPause();

    /// There was a change; the pause begins anew.
    void start() { m_timer.start(); }
    /// Ends the row now.
    void stop() { m_timer.stop(); }
    /// May the next change join the last one?
    bool isRunning() const { return m_timer.isActive(); }

private:
    QTimer m_timer;
};

} // namespace plexa
