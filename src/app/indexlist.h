// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>

#include <set>

namespace plexa
{

/// Places in a list of photos or presets, counted from 0.
using IndexList = QList<int>;

/// Ascending, each once, without those that are not in a list of `count`.
inline IndexList cleanedIndexes(const IndexList &indexes, std::size_t count)
{
    const std::set<int> sorted(indexes.begin(), indexes.end());
    const IndexList clean(sorted.lower_bound(0), sorted.lower_bound(static_cast<int>(count)));
    if (clean.isEmpty())
        return {}; // Qt compares lists by memcmp(), which an emptied list and one without memory are not for
    return clean;
}

} // namespace plexa
