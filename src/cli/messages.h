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

/// How many of `wanted` threads to work on photos with: as many as can be started, and fewer where the
/// process's own limits leave little memory for each; says on standard error if there are none.
int threadsToUse(int wanted);

/// The line on standard error that says what is wrong with a file: "NAME: reason".
void printAbout(const QString &path, const QString &reason);

} // namespace plexa
