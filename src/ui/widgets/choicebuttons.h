// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

class QAbstractButton;
class QButtonGroup;
class QGridLayout;
class QIcon;

namespace plexa
{

/// A few choices that are seen at once, of which one or none is chosen: radio buttons, or joined buttons.
/// Assistive technology sees a group of radio buttons. The Tab key reaches the chosen one, the arrow keys the
/// others. Main thread.
class ChoiceButtons final : public QWidget
{
    Q_OBJECT

public:
    enum class Look {
        RadioButtons,
        Icons, ///< joined buttons with icons
        Texts, ///< joined buttons with texts, and icons if given, that share the width
    };

    /// @param purpose  accessible name
    /// @param columns  choices in a row; 0: all
    ChoiceButtons(const QString &purpose, Look look, int columns = 0, QWidget *parent = nullptr);

    /// Adds a choice behind the others. @param text  a tool tip where there is no room for it
    /// @return its button, which the widget owns
    QAbstractButton *addChoice(const QString &text, const QIcon &icon);
    QAbstractButton *addChoice(const QString &text);

    /// -1: none.
    int index() const;
    /// Sends no signal. An index without a choice chooses none.
    void setIndex(int index);

Q_SIGNALS:
    /// The user has chosen another one.
    void chosen(int index);

private:
    bool isJoined() const { return m_look != Look::RadioButtons; }
    QAbstractButton *makeButton(const QString &text, const QIcon &icon) const;
    void joinLast() const;
    void updateTabStops() const;

    const Look m_look;
    const int m_columns;
    QGridLayout *const m_layout;
    QButtonGroup *const m_buttons;
};

} // namespace plexa
