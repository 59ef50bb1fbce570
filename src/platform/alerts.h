// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QStringList>

namespace plexa
{

/// A question or warning that needs a person.
struct Alert {
    enum class Style { Informational, Warning, Critical };

    Style style = Style::Informational;
    QString title;
    QString text;
    QStringList buttons = {};       ///< the first is the default one; none means a single "OK"
    int escapeButton = -1;          ///< index of the button that the Escape key presses; -1: none
    bool hasSuppressionBox = false; ///< a check box for not being asked again
    QString suppressionText = {};   ///< the box's text; empty: the usual one
};

/// What the person chose.
struct AlertAnswer {
    int button = 0; ///< index into Alert::buttons
    bool suppressed = false;

    bool operator==(const AlertAnswer &) const = default;
};

/// Asks the questions: by message boxes in the application, fixed policies on the command line, a script in
/// tests. An implementation states which threads may call it.
class Alerts
{
public:
    virtual ~Alerts() = default;

    /// Returns when the question is answered.
    virtual AlertAnswer run(const Alert &alert) = 0;
};

} // namespace plexa
