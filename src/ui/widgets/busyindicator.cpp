// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/busyindicator.h"

#include <QPainter>
#include <QTimerEvent>

namespace plexa
{
namespace
{

constexpr int kSide = 16;
constexpr int kDelay = 150;  // ms
constexpr int kFrame = 40;   // ms
constexpr int kRound = 1000; // ms for one rotation
constexpr int kDegree = 16;  // of QPainter::drawArc

} // namespace

BusyIndicator::BusyIndicator(QWidget *parent)
    : QWidget(parent)
{
    setFixedSize(kSide, kSide);
}

void BusyIndicator::setBusy(bool isBusy)
{
    if (isBusy == m_isBusy)
        return;
    m_isBusy = isBusy;
    if (m_isBusy) {
        m_since.start();
        m_timer.start(kFrame, this);
    } else {
        m_timer.stop();
        update();
    }
}

void BusyIndicator::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_timer.timerId())
        update();
    else
        QWidget::timerEvent(event);
}

void BusyIndicator::paintEvent(QPaintEvent *)
{
    if (!m_isBusy || m_since.elapsed() < kDelay)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2, Qt::SolidLine, Qt::RoundCap));
    const int start = static_cast<int>(-(m_since.elapsed() % kRound) * 360 / kRound);
    painter.drawArc(QRectF(rect()).adjusted(2, 2, -2, -2), start * kDegree, 270 * kDegree);
}

} // namespace plexa
