// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/choicebuttons.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QIcon>
#include <QRadioButton>
#include <QToolButton>

namespace plexa
{

ChoiceButtons::ChoiceButtons(const QString &purpose, Look look, int columns, QWidget *parent)
    : QWidget(parent)
    , m_look(look)
    , m_columns(columns)
    , m_layout(new QGridLayout(this))
    , m_buttons(new QButtonGroup(this))
{
    setAccessibleName(purpose);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(look == Look::Icons ? 0 : 4);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Maximum);
    connect(m_buttons, &QButtonGroup::idClicked, this, &ChoiceButtons::chosen);
}

void ChoiceButtons::addChoice(const QString &text)
{
    addChoice(text, {});
}

void ChoiceButtons::addChoice(const QString &text, const QIcon &icon)
{
    QAbstractButton *button = nullptr;
    if (m_look == Look::Icons) {
        auto *const toolButton = new QToolButton;
        toolButton->setIcon(icon);
        toolButton->setIconSize({18, 18});
        toolButton->setFocusPolicy(Qt::StrongFocus);
        button = toolButton;
    } else {
        button = new QRadioButton(m_columns == 0 ? text : QString());
    }
    button->setCheckable(true);
    button->setToolTip(text);
    button->setAccessibleName(text);
    const int index = int(m_buttons->buttons().size());
    m_buttons->addButton(button, index);
    const int columns = m_columns == 0 ? index + 1 : m_columns;
    m_layout->addWidget(button, index / columns, index % columns);
    // The arrow keys move inside the group, and what they reach is chosen.
    connect(button, &QAbstractButton::toggled, this, [this, button, index](bool isOn) {
        if (isOn && button->hasFocus() && !button->isDown())
            Q_EMIT chosen(index);
    });
}

int ChoiceButtons::index() const
{
    return m_buttons->checkedId();
}

void ChoiceButtons::setIndex(int index)
{
    const QSignalBlocker blocker(this);
    if (QAbstractButton *const button = m_buttons->button(index)) {
        button->setChecked(true);
    } else if (QAbstractButton *const checked = m_buttons->checkedButton()) {
        m_buttons->setExclusive(false); // an exclusive group always has one
        checked->setChecked(false);
        m_buttons->setExclusive(true);
    }
}

} // namespace plexa
