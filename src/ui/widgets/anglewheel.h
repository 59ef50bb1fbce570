// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QAbstractSlider>

namespace plexa
{

/// A circular slider for an angle in whole degrees, -180..179, clockwise from the top, where -180 is. Drag
/// its hand; with Shift it stops at each 15 degrees. Wheel and arrow keys go around. Main thread.
class AngleWheel final : public QAbstractSlider
{
    Q_OBJECT

public:
    /// @param purpose  tool tip and accessible name
    explicit AngleWheel(const QString &purpose, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    /// The position for an angle in degrees, counter-clockwise from the right, and back.
    static double positionOf(double degrees);
    static double degreesAt(double position);
    /// The whole position that shows an angle, which may lie outside of one turn.
    static int nearestPosition(double degrees);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void turnTo(QPointF point, bool inSteps);
    void turnBy(int degrees);

    int m_wheelDelta = 0; ///< not yet a notch
};

} // namespace plexa
