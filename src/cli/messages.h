// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <cstdio>

namespace plexa
{

/// The exit status of the program.
enum ExitStatus { kAllDone = 0, kSomethingFailed = 1, kWrongUsage = 2 };

/// Prints a line as UTF-8.
void printLine(FILE *stream, const QString &text);

/// The text with a question mark for each character that would move the cursor.
QString onOneLine(QString text);

/// The number of threads for photos, at most `wanted`: as many as can be started within the limits of the
/// process. Reports 0 on standard error.
int threadsToUse(int wanted);

/// Prints a message about a file to standard error: "NAME: reason".
void printAbout(const QString &path, const QString &reason);

} // namespace plexa
