// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/widgets/commandtable.h"

#include <QHash>
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

/// The commands of one window: their actions, menus and buttons, all made from the table of commands. A
/// command can be chosen when the rules allow it and somebody carries it out; one that nobody carries out
/// stays disabled.
class CommandActions final : public QObject
{
    Q_OBJECT

public:
    /// @param parent  owns the actions
    explicit CommandActions(QWidget *parent);

    /// Who carries out a command.
    void setHandler(ActionId id, std::function<void()> handler);

    /// A condition of the command beside its rule, asked by update().
    void setCondition(ActionId id, std::function<bool()> condition);

    QAction *action(ActionId id) const;

    /// Changes what the command is called, on its action and its buttons.
    void setText(ActionId id, const QString &text, const QString &toolTip);
    void setIcon(ActionId id, const QString &icon);

    void fillMenuBar(QMenuBar *bar);
    /// The commands for photos, for a click with the right button.
    void fillImageMenu(QMenu *menu);

    enum class ButtonStyle { Icon, TextBesideIcon };
    /// A flat button with the command's icon. `parent` owns it.
    QToolButton *makeButton(ActionId id, QWidget *parent, ButtonStyle style = ButtonStyle::Icon);
    /// Makes a button of another kind stand for the command; its text is kept.
    void bindButton(ActionId id, QAbstractButton *button);

    /// Enables what is possible in this state.
    void update(const CommandState &state);

    /// Carries the command out, if somebody does.
    void run(ActionId id);

Q_SIGNALS:
    /// A command has been carried out.
    void commandRun(plexa::ActionId id);

private:
    struct Entry {
        QAction *action = nullptr;
        QList<QAbstractButton *> buttons;
        std::function<void()> handler;
        std::function<bool()> condition;
    };

    std::map<ActionId, Entry> m_entries;
};

} // namespace plexa
