// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QVariant>

namespace plexa
{

/// Is this a number (integer or floating) or a truth value, which counts as 1 or 0?
bool isNumber(const QVariant &value);

} // namespace plexa
