// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/indexlist.h"

#include <algorithm>

namespace plexa
{

IndexList cleanedIndexes(IndexList indexes, std::size_t count)
{
    indexes.removeIf([count](int index) { return index < 0 || static_cast<std::size_t>(index) >= count; });
    std::sort(indexes.begin(), indexes.end());
    indexes.erase(std::unique(indexes.begin(), indexes.end()), indexes.end());
    if (indexes.isEmpty())
        return {}; // Qt compares lists by memcmp(), which an emptied list and one without memory are not for
    return indexes;
}

} // namespace plexa
