// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

namespace plexa
{

/// The number that a text begins with, with a point whatever the locale; 0 when it begins with none, or with
/// one that is not finite. Blanks in front are passed over.
double leadingDecimal(const QByteArray &text);

/// The whole number that a text begins with; 0 when it begins with none, and the nearest one that there is
/// when it has too many digits.
qint64 leadingInteger(const QByteArray &text);

} // namespace plexa
