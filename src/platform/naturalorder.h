// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QCollator>

namespace plexa
{

/// The order of file names for people: numbers in names by their value, "9" before "10"; the same for every
/// locale of the user. One thread at a time.
class NaturalOrder final
{
public:
    NaturalOrder() { m_collator.setNumericMode(true); }

    /// A key of a name, for comparisons with other keys.
    QCollatorSortKey keyOf(const QString &name) const { return m_collator.sortKey(name); }

private:
    QCollator m_collator{QLocale(QLocale::English)};
};

} // namespace plexa
