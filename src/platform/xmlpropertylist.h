// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QByteArrayView>
#include <QStringList>

namespace plexa
{

/// The longest property list in its XML form that is read: its texts are held several times meanwhile.
inline constexpr qint64 kMaxXmlPropertyListBytes = 100'000'000;

/// Does it begin like XML?
bool isXmlPropertyList(QByteArrayView bytes);

/// Builds a property list from its XML form. Dictionaries whose only entry is "CF$UID" become references. The
/// bounds are those of propertylistcheck.h; entities of the file's own are refused.
/// @return a node of libplist, which the caller frees with plist_free(), or a failure as text that follows a
/// file's name
[[nodiscard]] Result<void *> propertyListFromXml(const QByteArray &bytes);

/// Reads a property list in its XML form that is an array of texts.
/// @return the texts, or a failure as above, also for any other list
[[nodiscard]] Result<QStringList> stringsFromXml(const QByteArray &bytes);

/// The XML form of an array of texts. Characters that XML cannot hold are replaced by U+FFFD.
QByteArray xmlFromStrings(const QStringList &strings);

} // namespace plexa
