// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/autoscroll.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace plexa
{
namespace
{

constexpr int kMilliseconds = 30;
constexpr double kMaxStep = 60; // points

} // namespace

Autoscroll::Autoscroll(QAbstractScrollArea &area, double margin)
    : m_area(area)
    , m_margin(margin)
{
    m_timer.setInterval(kMilliseconds);
    connect(&m_timer, &QTimer::timeout, this, &Autoscroll::scroll);
}

void Autoscroll::start()
{
    if (!m_timer.isActive())
        m_timer.start();
}

void Autoscroll::scroll()
{
    if (const QWidget *modal = QApplication::activeModalWidget(); modal && modal != m_area.window()) {
        stop();
        Q_EMIT interrupted();
        return;
    }
    const QRectF rect(m_area.viewport()->rect());
    const double above = rect.top() + m_margin - m_pointer.y();
    const double below = m_pointer.y() - (rect.bottom() - m_margin);
    const double distance = above > 0 ? -above : std::max(0.0, below);
    if (distance == 0)
        return;
    QScrollBar *bar = m_area.verticalScrollBar();
    bar->setValue(bar->value() + static_cast<int>(std::lround(std::clamp(distance, -kMaxStep, kMaxStep))));
}

} // namespace plexa
