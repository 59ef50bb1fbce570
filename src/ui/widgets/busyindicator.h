// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QWidget>

namespace plexa
{

/// A rotating arc while work takes noticeably long. Takes its room even when it is not visible.
class BusyIndicator final : public QWidget
{
    Q_OBJECT

public:
    explicit BusyIndicator(QWidget *parent = nullptr);

    /// Work that ends within 150 ms is not shown.
    void setBusy(bool isBusy);
    bool isBusy() const { return m_isBusy; }

protected:
    void timerEvent(QTimerEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_isBusy = false;
    QBasicTimer m_timer;
    QElapsedTimer m_since;
};

} // namespace plexa
