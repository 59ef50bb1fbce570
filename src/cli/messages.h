// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QJsonDocument>
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

/// The document as JSON with plain numbers, in which characters that control a terminal are escaped.
QByteArray jsonText(const QJsonDocument &document, QJsonDocument::JsonFormat format);

/// The number of threads for photos, at most `wanted`: as many as can be started within the limits of the
/// process. Reports 0 on standard error.
int threadsToUse(int wanted);

/// Prints a message about a file to standard error: "PATH: reason".
void printAbout(const QString &path, const QString &reason);

} // namespace plexa
