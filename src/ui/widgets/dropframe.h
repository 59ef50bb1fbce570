// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

namespace plexa
{

/// A frame around a pane while files that it accepts are dragged over it. The frame takes no events.
class DropFrame final : public QWidget
{
    Q_OBJECT

public:
    /// @param accepts  the widget that receives the drops
    /// @param pane     is framed, and owns the frame
    DropFrame(QWidget *accepts, QWidget *pane);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QWidget *const m_accepts;
    QWidget *const m_pane;
};

} // namespace plexa
