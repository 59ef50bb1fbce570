// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/statuslineview.h"

#include "app/statusmanager.h"
#include "ui/widgets/elidedlabel.h"

#include <QHBoxLayout>
#include <QProgressBar>
#include <QToolButton>

namespace plexa
{

namespace
{

constexpr int kSteps = 1000; // of the bar, which counts in whole numbers

} // namespace

StatusLineView::StatusLineView(StatusManager &status, QWidget *parent)
    : QWidget(parent)
    , m_status(status)
    , m_statusText(new ElidedLabel)
    , m_progressIndicator(new QProgressBar)
    , m_stopButton(new QToolButton)
{
    m_statusText->setObjectName(QStringLiteral("statusText"));
    m_progressIndicator->setObjectName(QStringLiteral("progressIndicator"));
    m_progressIndicator->setAccessibleName(tr("Progress"));
    m_progressIndicator->setTextVisible(false);
    m_progressIndicator->setFixedSize(160, 12);
    m_stopButton->setObjectName(QStringLiteral("stopAllOperationsButton"));
    m_stopButton->setIcon(QIcon(QStringLiteral(":/icons/stop.svg")));
    m_stopButton->setIconSize(QSize(18, 18));
    m_stopButton->setAutoRaise(true);
    m_stopButton->setToolTip(tr("Stop what is running"));
    m_stopButton->setAccessibleName(tr("Stop"));

    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_statusText);
    layout->addWidget(m_progressIndicator);
    layout->addWidget(m_stopButton);
    layout->addStretch();

    // Nothing moves when the button comes and goes.
    setMinimumHeight(m_stopButton->sizeHint().height());

    connect(m_stopButton, &QToolButton::clicked, this, &StatusLineView::stopPressed);
    connect(&m_status, &StatusManager::lineChanged, this, &StatusLineView::showLine);
    showLine();
}

void StatusLineView::showLine()
{
    const StatusLine &line = m_status.line();
    m_statusText->setText(line.text);
    m_progressIndicator->setVisible(line.bar != StatusLine::Bar::Hidden);
    m_progressIndicator->setRange(0, line.bar == StatusLine::Bar::Busy ? 0 : kSteps);
    m_progressIndicator->setValue(qRound(line.fraction * kSteps));
    m_stopButton->setEnabled(line.canBeStopped);
    m_stopButton->setVisible(line.canBeStopped);
}

} // namespace plexa
