// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArrayView>
#include <QString>

namespace plexa
{

/// The longest property list that is read or written.
inline constexpr qint64 kMaxPropertyListBytes = 512'000'000;

// Larger lists are refused.
inline constexpr int kMaxPropertyListNesting = 32;         ///< a keyed archive has four levels
inline constexpr qint64 kMaxPropertyListNodes = 2'000'000; ///< about 200 bytes each, once they are built
inline constexpr qint64 kMaxPropertyListKeys = 1000; ///< of one dictionary, which is searched key by key

/// Checks a binary property list without building it: places outside of the data, objects inside of
/// themselves, keys with null characters, too much nesting, and shared objects that unfold into too much
/// memory. libplist copies a shared object for each of its users and descends without a bound, so it must get
/// valid lists only.
/// @return what is wrong; empty when it is valid
QString faultOfPropertyList(QByteArrayView bytes);

} // namespace plexa
