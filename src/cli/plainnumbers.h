// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QJsonValue>

namespace plexa
{

/// The value with each number in its shortest form: 7.2, where a float as a double is 7.199999809265137 and a
/// sum of fractions 10.412700000000001. Numbers change by less than their own precision; whole ones stay.
QJsonValue withPlainNumbers(const QJsonValue &value);

} // namespace plexa
