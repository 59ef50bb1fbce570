// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

namespace plexa
{

class AppController;

/// The status line: a text, and while something runs a progress bar and a stop button.
class StatusLineView final : public QWidget
{
    Q_OBJECT

public:
    /// @param controller  outlives the view
    explicit StatusLineView(AppController &controller, QWidget *parent = nullptr);
};

} // namespace plexa
