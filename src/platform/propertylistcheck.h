// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArrayView>
#include <QString>

namespace plexa
{

/// The longest property list that is read or written.
inline constexpr qint64 kMaxPropertyListBytes = 512'000'000;

// More is not built.
inline constexpr int kMaxPropertyListNesting = 32;         ///< a keyed archive has four levels
inline constexpr qint64 kMaxPropertyListNodes = 2'000'000; ///< about 200 bytes each, once they are built
inline constexpr qint64 kMaxPropertyListKeys = 1000; ///< of one dictionary, which is searched key by key

/// What is wrong with a binary property list, found without building it: a place that lies outside of the
/// data, objects inside of themselves, keys with null characters in them, more nesting than a program writes,
/// or shared objects that would unfold into more than memory should be spent on. libplist copies a shared
/// object for each of its users and descends without a bound, so nothing is handed to it that was not found
/// sound here.
/// @return empty when it is sound
QString faultOfPropertyList(QByteArrayView bytes);

} // namespace plexa
