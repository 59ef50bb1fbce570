// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

namespace plexa
{

class CommandActions;

/// The buttons for the places to which watermarks were dragged.
class PositionsBox final : public QWidget
{
    Q_OBJECT

public:
    explicit PositionsBox(CommandActions &actions, QWidget *parent = nullptr);
};

} // namespace plexa
