// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>

namespace plexa
{

/// Places in a list of photos or presets, counted from 0.
using IndexList = QList<int>;

/// Ascending, each once, without those that are not in a list of `count`.
IndexList cleanedIndexes(IndexList indexes, std::size_t count);

/// Positions as drags within the program carry them: "3 5 8".
QByteArray draggedBytesOf(const IndexList &indexes);
/// @return the numbers in bytes of any origin, cleaned
IndexList indexesFromDrag(const QByteArray &bytes);

} // namespace plexa
