// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QStringList>

#include <limits>

namespace plexa
{

struct WPresetField;

/// The values of a field that have a meaning, for checks and for lists of the fields.
struct FieldLimits {
    QStringList choices; ///< the allowed texts; empty: all texts
    double lowest = -std::numeric_limits<double>::infinity();
    double highest = std::numeric_limits<double>::infinity(); ///< of a number; both are allowed
    QString unit;    ///< of a number: its name, or the name of the field that holds the unit; or empty
    QString meaning; ///< of each whole number, as in "0 none, 1 left-right"; or empty

    bool isBounded() const { return highest < std::numeric_limits<double>::infinity(); }
};

/// Lengths may be negative (an offset out of the photo) where that has a meaning.
FieldLimits limitsOf(const WPresetField &field);

} // namespace plexa
