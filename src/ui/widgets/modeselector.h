// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

class QButtonGroup;

namespace plexa
{

/// A row of joined buttons, one of which is checked.
class ModeSelector final : public QWidget
{
    Q_OBJECT

public:
    struct Segment {
        QString name; ///< object name of the button
        QString text;
        QString toolTip;
    };

    explicit ModeSelector(const QList<Segment> &segments, QWidget *parent = nullptr);

    /// Checks a button without a signal.
    void select(int segment);

Q_SIGNALS:
    /// The user has chosen another button.
    void selected(int segment);

private:
    QButtonGroup *const m_buttons;
};

} // namespace plexa
