// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

class QButtonGroup;
class QGridLayout;
class QIcon;

namespace plexa
{

/// A few choices that are seen at once, of which one or none is chosen: radio buttons, or joined buttons with
/// icons. The Tab key reaches the chosen one, the arrow keys the others. Main thread.
class ChoiceButtons final : public QWidget
{
    Q_OBJECT

public:
    enum class Look { RadioButtons, Icons };

    /// @param purpose  accessible name
    /// @param columns  choices in a row; 0: all
    ChoiceButtons(const QString &purpose, Look look, int columns = 0, QWidget *parent = nullptr);

    /// Adds a choice behind the others. @param text  shown by radio buttons in one row, else a tool tip
    void addChoice(const QString &text, const QIcon &icon);
    void addChoice(const QString &text);

    /// -1: none.
    int index() const;
    /// Sends no signal. An index without a choice chooses none.
    void setIndex(int index);

Q_SIGNALS:
    /// The user has chosen another one.
    void chosen(int index);

private:
    const Look m_look;
    const int m_columns;
    QGridLayout *const m_layout;
    QButtonGroup *const m_buttons;
};

} // namespace plexa
