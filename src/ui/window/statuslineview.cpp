// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/statuslineview.h"

#include "app/appcontroller.h"
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

StatusLineView::StatusLineView(AppController &controller, QWidget *parent)
    : QWidget(parent)
{
    auto *const text = new ElidedLabel;
    text->setObjectName(QStringLiteral("statusText"));
    auto *const progress = new QProgressBar;
    progress->setObjectName(QStringLiteral("progressIndicator"));
    progress->setAccessibleName(tr("Progress"));
    progress->setTextVisible(false);
    progress->setFixedSize(160, 12);
    auto *const stop = new QToolButton;
    stop->setObjectName(QStringLiteral("stopAllOperationsButton"));
    stop->setIcon(QIcon(QStringLiteral(":/icons/stop.svg")));
    stop->setIconSize(QSize(18, 18));
    stop->setAutoRaise(true);
    stop->setToolTip(tr("Stop what is running"));
    stop->setAccessibleName(tr("Stop"));

    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(text);
    layout->addWidget(progress);
    layout->addWidget(stop);
    layout->addStretch();
    // Nothing moves when the button is shown or hidden.
    setMinimumHeight(stop->sizeHint().height());

    const StatusManager &status = controller.statusManager();
    const auto showLine = [&status, text, progress, stop] {
        const StatusLine &line = status.line();
        text->setText(line.text);
        progress->setVisible(line.bar != StatusLine::Bar::Hidden);
        progress->setRange(0, line.bar == StatusLine::Bar::Busy ? 0 : kSteps);
        progress->setValue(qRound(line.fraction * kSteps));
        stop->setEnabled(line.canBeStopped);
        stop->setVisible(line.canBeStopped);
    };
    connect(stop, &QToolButton::clicked, &controller, &AppController::stopAllOperations);
    connect(&status, &StatusManager::lineChanged, this, showLine);
    showLine();
}

} // namespace plexa
