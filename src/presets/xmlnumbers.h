// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

namespace plexa
{

/// The decimal number at the start of a text, with a point in every locale; 0 when there is none or it is not
/// finite. Leading blanks are skipped.
double leadingDecimal(const QByteArray &text);

/// The whole number at the start of a text, limited to the range of the type; 0 when there is none.
qint64 leadingInteger(const QByteArray &text);

} // namespace plexa
