// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/positionsbox.h"

#include "ui/widgets/commandactions.h"
#include "ui/widgets/sectiontitle.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

namespace plexa
{

PositionsBox::PositionsBox(CommandActions &actions, QWidget *parent)
    : QWidget(parent)
{
    auto *const buttons = new QHBoxLayout;
    buttons->setSpacing(2);
    for (const ActionId id : {ActionId::CopyPosition, ActionId::CopyAllPositions, ActionId::PastePositions})
        buttons->addWidget(actions.makeButton(id, this));
    buttons->addStretch();
    for (const ActionId id : {ActionId::ResetPosition, ActionId::ResetAllPositions})
        buttons->addWidget(actions.makeButton(id, this));

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(sectionTitle(tr("Manual positions")));
    layout->addLayout(buttons);
}

} // namespace plexa
