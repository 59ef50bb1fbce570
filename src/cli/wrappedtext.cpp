// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/wrappedtext.h"

#include <QStringList>

namespace plexa
{

QString wrappedText(const QString &start, const QString &text, qsizetype column)
{
    const QString indent(column, u' ');
    const bool isAlone = start.size() + 2 > column;
    QString lines = isAlone ? start + u'\n' : QString();
    QString line = isAlone ? indent : start.leftJustified(column);
    for (const QString &word : text.split(u' ', Qt::SkipEmptyParts)) {
        if (line.size() > column && line.size() + 1 + word.size() > kTextColumns) {
            lines += line + u'\n';
            line = indent;
        }
        line += line.size() == column ? word : u' ' + word;
    }
    lines += line;
    while (lines.endsWith(u' '))
        lines.chop(1);
    return lines + u'\n';
}

} // namespace plexa
