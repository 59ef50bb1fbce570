// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <cstdio>

namespace plexa
{

/// Prints a line as UTF-8.
void printLine(FILE *stream, const QString &text);

/// A text on one line: characters that would move the cursor are replaced by a question mark.
QString onOneLine(QString text);

/// The number of threads to use for photos, at most `wanted`: as many as can be started, and fewer where the
/// limits of the process leave little memory for each. Reports 0 on standard error.
int threadsToUse(int wanted);

/// Prints a message about a file to standard error: "NAME: reason".
void printAbout(const QString &path, const QString &reason);

} // namespace plexa
