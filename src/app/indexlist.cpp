// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/indexlist.h"

#include <algorithm>
#include <limits>

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

QByteArray draggedBytesOf(const IndexList &indexes)
{
    QByteArrayList numbers;
    for (const int index : indexes)
        numbers.append(QByteArray::number(index));
    return numbers.join(' ');
}

IndexList indexesFromDrag(const QByteArray &bytes)
{
    IndexList indexes;
    for (const QByteArray &number : bytes.split(' ')) {
        bool isNumber = false;
        const int index = number.toInt(&isNumber);
        if (isNumber)
            indexes.append(index);
    }
    return cleanedIndexes(indexes, std::numeric_limits<int>::max());
}

} // namespace plexa
