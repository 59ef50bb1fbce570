// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QList>

namespace plexa
{

/// Positions in a list as drags carry them: a keyed archive of an index set.
/// @param indexes  ascending, each once, not negative
QByteArray archivedIndexSet(const QList<int> &indexes);

/// @return ascending; empty when this is no archive of an index set, or when it has more than ten million
QList<int> indexSetFromArchive(const QByteArray &bytes);

} // namespace plexa
