// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QJsonValue>
#include <QString>

#include <cstdio>

namespace plexa
{

/// The exit status of the program.
enum ExitStatus { kAllDone = 0, kSomethingFailed = 1, kWrongUsage = 2, kInterrupted = 130 };

/// Prints a text and a line feed as UTF-8. Characters that control a terminal become question marks, whatever
/// they come from; line feeds in the text stay.
void printLine(FILE *stream, const QString &text);

/// The text with a question mark for each character that would move the cursor.
QString onOneLine(QString text);

/// Prints "plexa-cli: TEXT" on one line to standard error.
void printMessage(const QString &text);

/// Prints a message about a file likewise: "plexa-cli: PATH: reason".
void printAbout(const QString &path, const QString &reason);

/// The value as JSON on one line with plain numbers, in which characters that control a terminal are escaped.
QByteArray jsonText(const QJsonValue &value);

/// Prints the array as jsonText() would write it, on indented lines, to standard output.
void printJson(const QJsonArray &array);

/// Null for an empty text.
QJsonValue orNull(const QString &text);
/// Null for an empty list.
QJsonValue orNull(const QStringList &texts);

/// The number of threads for photos, at most `wanted` (0: one for each core): as many as can be started
/// within the limits of the process. Reports a result of 0 on standard error.
int threadsToUse(int wanted);

} // namespace plexa
