// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace plexa
{

/// The tokens that are known in names of copies only, beside those of watermarks.
QStringList namingTokenNames();

/// Is it one of those with the sequence number?
bool isSequenceToken(const QString &token);

/// The text of such a token. @return none if `token` is not one of them
std::optional<QString> namingTokenText(const QString &token, qint64 sequenceNumber,
                                       const QString &wPresetName, const QString &savingPresetName);

} // namespace plexa
