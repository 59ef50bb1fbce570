// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/commandactions.h"

#include <QAbstractButton>
#include <QAction>
#include <QIcon>
#include <QMenu>
#include <QMenuBar>
#include <QToolButton>

namespace plexa
{

namespace
{

QIcon iconNamed(const QString &name)
{
    return name.isEmpty() ? QIcon() : QIcon(QStringLiteral(":/icons/%1.svg").arg(name));
}

/// The sentence, and the keys behind it.
QString withShortcut(const QString &toolTip, const QKeySequence &shortcut)
{
    if (shortcut.isEmpty())
        return toolTip;
    return QStringLiteral("%1 (%2)").arg(toolTip, shortcut.toString(QKeySequence::NativeText));
}

/// "Turn Left" from "Turn &Left", "Add Images" from "&Add Images…".
QString spokenName(QString text)
{
    text.remove(QLatin1Char('&'));
    text.remove(QChar(0x2026));
    return text;
}

void nameButton(QAbstractButton *button, const QAction *action)
{
    button->setToolTip(action->toolTip());
    button->setWhatsThis(action->whatsThis());
    button->setAccessibleName(spokenName(action->text()));
}

/// About the program or its window, and so possible while photos are saved.
bool isOfProgram(const CommandRow &row)
{
    return row.menu == MenuId::Help || row.id == ActionId::Quit || row.id == ActionId::CloseWindow ||
           row.id == ActionId::Minimize || row.id == ActionId::ToggleFullScreen ||
           row.id == ActionId::ShowMainWindow;
}

} // namespace

CommandActions::CommandActions(QWidget *parent)
    : QObject(parent)
{
    for (const CommandRow &row : commandTable()) {
        auto *const action = new QAction(parent);
        action->setObjectName(QString::fromLatin1(row.name));
        action->setIcon(iconNamed(QString::fromLatin1(row.icon)));
        action->setShortcut(QKeySequence(QString::fromLatin1(row.shortcut), QKeySequence::PortableText));
        action->setMenuRole(QAction::NoRole);
        const ActionId id = row.id;
        connect(action, &QAction::triggered, this, [this, id] { run(id); });
        m_entries[id].action = action;
        setText(id, commandText(row), commandToolTip(row));
    }
}

void CommandActions::setHandler(ActionId id, std::function<void()> handler)
{
    m_entries[id].handler = std::move(handler);
}

void CommandActions::setCondition(ActionId id, std::function<bool()> condition)
{
    m_entries[id].condition = std::move(condition);
}

QAction *CommandActions::action(ActionId id) const
{
    return m_entries.at(id).action;
}

void CommandActions::setText(ActionId id, const QString &text, const QString &toolTip)
{
    const Entry &entry = m_entries[id];
    entry.action->setText(text);
    entry.action->setToolTip(withShortcut(toolTip, entry.action->shortcut()));
    entry.action->setWhatsThis(toolTip);
    for (QAbstractButton *const button : entry.buttons)
        nameButton(button, entry.action);
}

void CommandActions::setIcon(ActionId id, const QString &icon)
{
    const Entry &entry = m_entries[id];
    entry.action->setIcon(iconNamed(icon));
    for (QAbstractButton *const button : entry.buttons)
        button->setIcon(entry.action->icon());
}

void CommandActions::fillMenuBar(QMenuBar *bar)
{
    QMenu *menu = nullptr;
    std::optional<MenuId> current;
    for (const CommandRow &row : commandTable()) {
        if (row.menu != current) {
            menu = bar->addMenu(menuTitle(row.menu));
            menu->setToolTipsVisible(false);
            current = row.menu;
        }
        if (row.startsGroup)
            menu->addSeparator();
        menu->addAction(action(row.id));
    }
}

void CommandActions::fillImageMenu(QMenu *menu)
{
    bool startsGroup = false;
    for (const CommandRow &row : commandTable()) {
        startsGroup = startsGroup || row.startsGroup;
        if (!row.isInImageMenu)
            continue;
        if (startsGroup && !menu->isEmpty())
            menu->addSeparator();
        startsGroup = false;
        menu->addAction(action(row.id));
    }
}

QToolButton *CommandActions::makeButton(ActionId id, QWidget *parent, ButtonStyle style)
{
    auto *const button = new QToolButton(parent);
    button->setAutoRaise(true);
    button->setIconSize(QSize(20, 20));
    button->setIcon(action(id)->icon());
    button->setFocusPolicy(Qt::TabFocus);
    if (style == ButtonStyle::TextBesideIcon) {
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setText(spokenName(action(id)->text()));
    }
    bindButton(id, button);
    return button;
}

void CommandActions::bindButton(ActionId id, QAbstractButton *button)
{
    Entry &entry = m_entries[id];
    if (button->objectName().isEmpty())
        button->setObjectName(entry.action->objectName() + QStringLiteral("Button"));
    nameButton(button, entry.action);
    button->setEnabled(false);
    connect(button, &QAbstractButton::clicked, this, [this, id] { run(id); });
    connect(button, &QObject::destroyed, this,
            [this, id, button] { m_entries[id].buttons.removeOne(button); });
    entry.buttons.append(button);
}

void CommandActions::update(const CommandState &state)
{
    for (const CommandRow &row : commandTable()) {
        const Entry &entry = m_entries.at(row.id);
        const bool isPossible = entry.handler && (!entry.condition || entry.condition());
        const bool isMenuEnabled =
            isPossible && (isOfProgram(row) || isMenuItemEnabled(row.rule, row.tag, state));
        entry.action->setEnabled(isMenuEnabled);
        for (QAbstractButton *const button : entry.buttons)
            button->setEnabled(row.button ? isPossible && isButtonEnabled(*row.button, state)
                                          : isMenuEnabled);
    }
}

void CommandActions::run(ActionId id)
{
    const std::function<void()> handler = m_entries[id].handler;
    if (!handler)
        return;
    handler();
    Q_EMIT commandRun(id);
}

} // namespace plexa
