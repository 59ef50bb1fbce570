// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QVariant>

namespace plexa
{

/// Are two values of a property dictionary equal? Numbers are compared as numbers whatever their type,
/// texts as texts, arrays and dictionaries element by element; an absent value equals only an absent one.
bool samePropertyValue(const QVariant &a, const QVariant &b);

} // namespace plexa
