// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QVariant>

#include <optional>

namespace plexa
{

/// A metadata value as text: texts as they are, numbers in their own form, which follows no locale (integers
/// without decimals, others in the shortest form that reads back as the same number).
/// @return none for no value, for an empty text, and for lists and groups
std::optional<QString> plainString(const QVariant &value);

/// The same for a number; a whole one has no decimals.
QString plainString(double number);

} // namespace plexa
