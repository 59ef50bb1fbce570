// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/commandactions.h"

#include "ui/widgets/look.h"

#include <QAbstractButton>
#include <QAction>
#include <QIcon>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>
#include <QToolButton>

#include <optional>
#include <utility>

namespace plexa
{

namespace
{

QIcon iconNamed(const QString &name)
{
    return name.isEmpty() ? QIcon() : QIcon(QStringLiteral(":/icons/%1.svg").arg(name));
}

/// The sentence, with the keys in parentheses.
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

} // namespace

CommandActions::CommandActions(QWidget *parent, std::function<CommandState()> state)
    : QObject(parent)
    , m_state(std::move(state))
{
    for (const CommandRow &row : commandTable()) {
        auto *const action = new QAction(parent);
        action->setObjectName(QString::fromLatin1(row.name));
        action->setIcon(iconNamed(QString::fromLatin1(row.icon)));
        if (*row.shortcut != '\0')
            action->setShortcuts(
                QKeySequence::listFromString(QString::fromLatin1(row.shortcut), QKeySequence::PortableText));
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

QAction *CommandActions::action(ActionId id) const
{
    return m_entries.at(id).action;
}

void CommandActions::setText(ActionId id, const QString &text, const QString &toolTip)
{
    Entry &entry = m_entries[id];
    entry.toolTip = withShortcut(toolTip, entry.action->shortcut());
    entry.action->setText(text);
    entry.action->setToolTip(entry.toolTip);
    entry.action->setWhatsThis(toolTip);
    for (QAbstractButton *const button : entry.buttons)
        nameButton(button, entry.action);
}

void CommandActions::useShortcutIn(QWidget &part, ActionId id)
{
    action(id)->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    part.addAction(action(id));
}

void CommandActions::fillMenuBar(QMenuBar *bar)
{
    QMenu *menu = nullptr;
    std::optional<MenuId> current;
    for (const CommandRow &row : commandTable()) {
        if (row.menu != current) {
            menu = bar->addMenu(menuTitle(row.menu));
            menu->setToolTipsVisible(true); // of disabled commands, too
            current = row.menu;
        }
        if (row.startsGroup)
            menu->addSeparator();
        menu->addAction(action(row.id));
    }
}

void CommandActions::fillImageMenu(QMenu *menu)
{
    menu->setToolTipsVisible(true);
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
    button->setIconSize(QSize(look::kButtonIcon, look::kButtonIcon));
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
    connect(button, &QAbstractButton::clicked, this, [this, id] { run(id, Caller::Button); });
    connect(button, &QObject::destroyed, this,
            [this, id, button] { m_entries[id].buttons.removeOne(button); });
    entry.buttons.append(button);
}

/// Why the command is not possible: a sentence. Empty: it is.
QString CommandActions::obstacle(const CommandRow &row, const CommandState &state, Caller caller) const
{
    if (!m_entries.at(row.id).handler)
        return tr("This version does not have this command yet.");
    if (state.isSavingInProgress && caller == Caller::Menu && !row.isPossibleDuringSave)
        return reasonFor(Need::NoSave);
    const std::optional<Need> missing = missingNeed(row.needs, state);
    return missing ? reasonFor(*missing) : QString();
}

void CommandActions::update()
{
    m_isUpdateScheduled = false;
    const CommandState state = m_state();
    for (const CommandRow &row : commandTable()) {
        const Entry &entry = m_entries.at(row.id);
        const auto show = [&](auto *control, const QString &obstacle, const QString &reason) {
            control->setEnabled(obstacle.isEmpty());
            control->setToolTip(reason.isEmpty() ? entry.toolTip : entry.toolTip + u'\n' + reason);
        };
        const QString inMenu = obstacle(row, state, Caller::Menu);
        show(entry.action, inMenu, inMenu);
        for (QAbstractButton *const button : entry.buttons) {
            const QString ofButton = obstacle(row, state, Caller::Button);
            // During a save, the panes of the buttons are disabled.
            show(button, ofButton, ofButton.isEmpty() ? inMenu : ofButton);
        }
    }
}

void CommandActions::scheduleUpdate()
{
    if (!std::exchange(m_isUpdateScheduled, true))
        QTimer::singleShot(0, this, &CommandActions::update);
}

void CommandActions::run(ActionId id, Caller caller)
{
    if (const QString reason = obstacle(commandRow(id), m_state(), caller); !reason.isEmpty()) {
        Q_EMIT refused(reason);
        return;
    }
    const std::function<void()> handler = m_entries[id].handler; // which may set another one
    handler();
    scheduleUpdate();
}

} // namespace plexa
