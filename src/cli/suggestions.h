// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QStringList>

namespace plexa
{

/// The name that a text differs from in letter case, punctuation or a letter or two; empty if there is none,
/// or if the text is one of the names.
QString likelyName(const QString &text, const QStringList &names);

/// The same as the end of a message: "; did you mean \"NAME\"?", else `otherwise`.
QString didYouMean(const QString &text, const QStringList &names, const QString &otherwise);

} // namespace plexa
