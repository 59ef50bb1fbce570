// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QPointF>
#include <QTimer>

class QAbstractScrollArea;

namespace plexa
{

/// Scrolls a view up or down while the pointer is held near one of its edges or beyond it; the farther, the
/// faster. Main thread.
class Autoscroll final : public QObject
{
    Q_OBJECT

public:
    /// @param area    outlives this object
    /// @param margin  distance from the upper and lower edge within which the view scrolls, in points; 0: it
    ///                scrolls beyond the edges only
    Autoscroll(QAbstractScrollArea &area, double margin);

    /// The pointer's last position, in points of the viewport.
    QPointF pointer() const { return m_pointer; }
    void setPointer(QPointF viewportPoint) { m_pointer = viewportPoint; }

    void start();
    void stop() { m_timer.stop(); }

Q_SIGNALS:
    /// Scrolling has stopped because another window asks for an answer.
    void interrupted();

private:
    void scroll();

    QAbstractScrollArea &m_area;
    const double m_margin;
    QPointF m_pointer;
    QTimer m_timer;
};

} // namespace plexa
