// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/widgets/commandtable.h"

#include <QObject>

#include <functional>
#include <map>

class QAbstractButton;
class QAction;
class QMenu;
class QMenuBar;
class QToolButton;
class QWidget;

namespace plexa
{

/// The commands of one window: their actions, menus and buttons, all created from the table of commands. A
/// command runs only if its needs are met, from a menu, a shortcut or a button; its tool tip states what is
/// missing. A command without a handler stays disabled.
class CommandActions final : public QObject
{
    Q_OBJECT

public:
    /// @param parent  owns the actions
    /// @param state   the state of now; called when the event loop updates the commands, and before each run
    CommandActions(QWidget *parent, std::function<CommandState()> state);

    /// Sets the function that carries out a command.
    void setHandler(ActionId id, std::function<void()> handler);

    QAction *action(ActionId id) const;

    /// Changes the name of the command, on its action and its buttons.
    void setText(ActionId id, const QString &text, const QString &toolTip);

    /// Limits the shortcut to this part of the window; elsewhere the keys may have another meaning.
    void useShortcutIn(QWidget &part, ActionId id);

    void fillMenuBar(QMenuBar *bar);
    /// Adds the commands of the context menu of the photos.
    void fillImageMenu(QMenu *menu);

    enum class ButtonStyle { Icon, TextBesideIcon };
    /// A flat button with the command's icon. `parent` owns it.
    QToolButton *makeButton(ActionId id, QWidget *parent, ButtonStyle style = ButtonStyle::Icon);
    /// Connects another button with the command; its text is kept.
    void bindButton(ActionId id, QAbstractButton *button);

    /// Enables the commands that are possible now.
    void update();
    /// Does this once for many changes, from the event loop.
    void scheduleUpdate();

    /// Carries the command out if it is possible.
    void run(ActionId id) { run(id, Caller::Menu); }

Q_SIGNALS:
    /// A command that is not possible was asked for, by a key or a double click; a sentence.
    void refused(const QString &reason);

private:
    /// The buttons do not depend on a running save; what shows them decides about that.
    enum class Caller { Menu, Button };

    struct Entry {
        QAction *action = nullptr;
        QString toolTip; ///< without what is missing
        QList<QAbstractButton *> buttons;
        std::function<void()> handler;
    };

    void run(ActionId id, Caller caller);
    QString obstacle(const CommandRow &row, const CommandState &state, Caller caller) const;

    const std::function<CommandState()> m_state;
    std::map<ActionId, Entry> m_entries;
    bool m_isUpdateScheduled = false;
};

} // namespace plexa
