// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/messages.h"

#include <QFileInfo>

namespace plexa
{

void printLine(FILE *stream, const QString &text)
{
    std::fprintf(stream, "%s\n", text.toUtf8().constData());
}

QString onOneLine(QString text)
{
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
            character == QChar::ParagraphSeparator)
            character = QLatin1Char('?');
    }
    return text;
}

void printAbout(const QString &path, const QString &reason)
{
    const QString name = QFileInfo(path).fileName();
    printLine(stderr, onOneLine(QStringLiteral("%1: %2").arg(name.isEmpty() ? path : name, reason)));
}

} // namespace plexa
