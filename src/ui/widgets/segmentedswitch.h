// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QWidget>

class QIcon;
class QPushButton;

namespace plexa
{

/// Joined buttons, one of which is checked. Assistive technology sees a group of radio buttons. The Tab key
/// reaches the checked button, and the arrow keys continue from there.
class SegmentedSwitch final : public QWidget
{
    Q_OBJECT

public:
    /// @param name  of the group, for assistive technology
    explicit SegmentedSwitch(const QString &name, QWidget *parent = nullptr);

    /// Adds a button at the end; the switch owns it.
    QPushButton *addPart(const QString &text, const QIcon &icon = {});

    /// Checks the button of this index; sends no clicked().
    void check(qsizetype part);

private:
    QList<QPushButton *> m_parts;
};

} // namespace plexa
