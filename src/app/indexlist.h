// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArrayList>
#include <QList>

#include <limits>
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

/// One place up or down in a list.
enum class Step { Up, Down };

/// Whether anything moves if these entries do: those at the end of the list stay there.
/// @param indexes  ascending
inline bool canStep(const IndexList &indexes, qsizetype count, Step step)
{
    if (indexes.isEmpty())
        return false;
    return step == Step::Up ? indexes.last() >= indexes.size() : indexes.first() < count - indexes.size();
}

/// Positions as drags within the program carry them: "3 5 8".
inline QByteArray draggedBytesOf(const IndexList &indexes)
{
    QByteArrayList numbers;
    for (const int index : indexes)
        numbers.append(QByteArray::number(index));
    return numbers.join(' ');
}

/// @return the numbers in bytes of any origin, cleaned
inline IndexList indexesFromDrag(const QByteArray &bytes)
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
