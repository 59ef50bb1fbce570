// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/anglewheel.h"

#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <QtMath>

#include <cmath>

namespace plexa
{
namespace
{

constexpr int kSide = 48;
constexpr int kLowest = -180;
constexpr int kHighest = 179;
constexpr int kTurn = 360;
constexpr int kCoarseStep = 15;
constexpr int kNotch = 120; // of QWheelEvent::angleDelta

int wrapped(int position)
{
    return ((position - kLowest) % kTurn + kTurn) % kTurn + kLowest;
}

} // namespace

AngleWheel::AngleWheel(const QString &purpose, QWidget *parent)
    : QAbstractSlider(parent)
{
    setRange(kLowest, kHighest);
    setSingleStep(1);
    setPageStep(kCoarseStep);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(purpose);
    setToolTip(purpose);
    // Its position is of no use to people.
    const auto describe = [this](int position) {
        setAccessibleDescription(tr("%1 degrees").arg(locale().toString(degreesAt(position))));
    };
    connect(this, &QAbstractSlider::valueChanged, this, describe);
    describe(value());
}

QSize AngleWheel::sizeHint() const
{
    return {kSide, kSide};
}

double AngleWheel::positionOf(double degrees)
{
    const double fromTop = degrees > 90 ? degrees - kTurn : degrees;
    return -(fromTop + 90);
}

double AngleWheel::degreesAt(double position)
{
    const double degrees = -90 - position;
    return degrees <= -180 ? degrees + kTurn : degrees;
}

int AngleWheel::nearestPosition(double degrees)
{
    return wrapped(int(std::lround(positionOf(std::remainder(degrees, kTurn)))));
}

void AngleWheel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF circle = QRectF(rect()).adjusted(3, 3, -3, -3);
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const QColor line = palette().color(group, QPalette::WindowText);
    painter.setPen(QPen(hasFocus() ? palette().color(QPalette::Highlight) : palette().color(QPalette::Shadow),
                        hasFocus() ? 2 : 1));
    painter.setBrush(palette().color(group, isEnabled() ? QPalette::Base : QPalette::Window));
    painter.drawEllipse(circle);
    const double angle = qDegreesToRadians(degreesAt(value()));
    const double radius = circle.width() / 2;
    const QPointF tip = circle.center() + QPointF(std::cos(angle), -std::sin(angle)) * (radius - 5);
    painter.setPen(QPen(line, 1.5, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(circle.center(), tip);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isEnabled() ? palette().color(QPalette::Highlight) : line);
    painter.drawEllipse(tip, 3.5, 3.5);
}

void AngleWheel::turnTo(QPointF point, bool inSteps)
{
    const QPointF arm = point - QRectF(rect()).center();
    if (arm.isNull())
        return;
    double degrees = qRadiansToDegrees(std::atan2(-arm.y(), arm.x()));
    if (inSteps)
        degrees = std::round(degrees / kCoarseStep) * kCoarseStep;
    setValue(wrapped(qRound(positionOf(degrees))));
}

void AngleWheel::turnBy(int degrees)
{
    setValue(wrapped(value() + degrees));
}

void AngleWheel::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    setSliderDown(true);
    turnTo(event->position(), event->modifiers().testFlag(Qt::ShiftModifier));
}

void AngleWheel::mouseMoveEvent(QMouseEvent *event)
{
    if (isSliderDown())
        turnTo(event->position(), event->modifiers().testFlag(Qt::ShiftModifier));
}

void AngleWheel::mouseReleaseEvent(QMouseEvent *)
{
    setSliderDown(false);
}

void AngleWheel::wheelEvent(QWheelEvent *event)
{
    event->accept();
    m_wheelDelta += event->angleDelta().y(); // fine wheels turn by parts of a notch
    turnBy(-m_wheelDelta / kNotch * singleStep());
    m_wheelDelta %= kNotch;
}

void AngleWheel::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
        turnBy(-singleStep()); // counter-clockwise
        break;
    case Qt::Key_Right:
    case Qt::Key_Down:
        turnBy(singleStep());
        break;
    case Qt::Key_PageUp:
        turnBy(-pageStep());
        break;
    case Qt::Key_PageDown:
        turnBy(pageStep());
        break;
    default:
        QAbstractSlider::keyPressEvent(event);
    }
}

} // namespace plexa
