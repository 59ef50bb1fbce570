// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/bottombar.h"

#include "app/appcontroller.h"
#include "ui/widgets/commandactions.h"
#include "ui/window/statuslineview.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QPushButton>

namespace plexa
{

BottomBar::BottomBar(AppController &controller, CommandActions &actions, QWidget *parent)
    : QWidget(parent)
{
    auto *const line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFixedHeight(1);
    line->setStyleSheet(QStringLiteral("background: #cfd3d7; border: none;"));
    auto *const status = new StatusLineView(controller.statusManager());
    connect(status, &StatusLineView::stopPressed, &controller, &AppController::stopAllOperations);
    auto *const saveSelected = new QPushButton(tr("Save Selected…"));
    auto *const saveAll = new QPushButton(tr("Save All…"));
    actions.bindButton(ActionId::SaveSelected, saveSelected);
    actions.bindButton(ActionId::SaveAll, saveAll);

    auto *const row = new QHBoxLayout;
    row->setContentsMargins(12, 7, 12, 8);
    row->setSpacing(8);
    row->addWidget(status, 1);
    row->addWidget(saveSelected);
    row->addWidget(saveAll);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(line);
    layout->addLayout(row);
}

} // namespace plexa
