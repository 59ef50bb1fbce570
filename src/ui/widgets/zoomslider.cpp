// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/zoomslider.h"

namespace plexa
{
namespace
{

constexpr int kWidth = 140;
constexpr int kSteps = 200; // the values of a slider are whole numbers

} // namespace

ZoomSlider::ZoomSlider(const QString &purpose, QWidget *parent)
    : QSlider(Qt::Horizontal, parent)
{
    setAccessibleName(purpose);
    setToolTip(purpose);
    setRange(0, kSteps);
    setPageStep(kSteps / 10);
    setSingleStep(kSteps / 50);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setMaximumWidth(kWidth);
    setMinimumWidth(kWidth / 2); // names of photos need the room more
    connect(this, &QSlider::valueChanged, this, [this](int step) {
        if (step != m_shownStep)
            Q_EMIT zoomFactorChosen(double(step) / kSteps);
    });
}

void ZoomSlider::setZoomFactor(double factor)
{
    m_shownStep = qRound(factor * kSteps);
    setValue(m_shownStep);
}

QSize ZoomSlider::sizeHint() const
{
    return {kWidth, QSlider::sizeHint().height()};
}

} // namespace plexa
