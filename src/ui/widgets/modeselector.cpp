// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/modeselector.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPushButton>

namespace plexa
{

namespace
{

const char kLook[] = R"(
QPushButton { border: 1px solid #b9bec4; padding: 5px 10px; background: #fbfcfc; color: #242a30; }
QPushButton:hover { background: #eef1f4; }
QPushButton:checked { background: #3b78b4; border-color: #33689c; color: white; }
QPushButton:focus { border-color: #33689c; }
QPushButton:checked:focus { border: 2px solid #12293f; padding: 4px 9px; }
QPushButton[place="first"] { border-top-left-radius: 5px; border-bottom-left-radius: 5px; border-right: none; }
QPushButton[place="last"] { border-top-right-radius: 5px; border-bottom-right-radius: 5px; }
)";

} // namespace

ModeSelector::ModeSelector(const QList<Segment> &segments, QWidget *parent)
    : QWidget(parent)
    , m_buttons(new QButtonGroup(this))
{
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (int i = 0; i < segments.size(); ++i) {
        const Segment &segment = segments[i];
        auto *const button = new QPushButton(segment.text);
        button->setObjectName(segment.name);
        button->setToolTip(segment.toolTip);
        button->setWhatsThis(segment.toolTip);
        button->setCheckable(true);
        button->setFocusPolicy(Qt::ClickFocus);
        if (i == 0)
            button->setProperty("place", QStringLiteral("first"));
        else if (i == segments.size() - 1)
            button->setProperty("place", QStringLiteral("last"));
        m_buttons->addButton(button, i);
        layout->addWidget(button, 1);
    }
    setStyleSheet(QString::fromLatin1(kLook));
    connect(m_buttons, &QButtonGroup::idToggled, this, [this](int segment, bool isOn) {
        // The Tab key reaches the checked segment; the arrow keys continue from there.
        m_buttons->button(segment)->setFocusPolicy(isOn ? Qt::StrongFocus : Qt::ClickFocus);
    });
    connect(m_buttons, &QButtonGroup::idClicked, this, &ModeSelector::selected);
}

void ModeSelector::select(int segment)
{
    if (QAbstractButton *const button = m_buttons->button(segment))
        button->setChecked(true);
}

} // namespace plexa
