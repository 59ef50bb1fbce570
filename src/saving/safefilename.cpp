// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/safefilename.h"

#include <QRegularExpression>
#include <QTextBoundaryFinder>

namespace plexa
{
namespace
{

bool isBlankOrDot(QChar c)
{
    return c.isSpace() || c == u'.';
}

/// Controls, line and paragraph separators, and the marks that switch the direction of writing, with which a
/// name can be made to look like another one.
bool isUnseen(char16_t unit)
{
    return QChar::category(char32_t(unit)) == QChar::Other_Control || unit == 0x2028 || unit == 0x2029 ||
           unit == 0x061C || unit == 0x200E || unit == 0x200F || (unit >= 0x202A && unit <= 0x202E) ||
           (unit >= 0x2066 && unit <= 0x2069);
}

QString withoutEnd(QString text)
{
    while (!text.isEmpty() && isBlankOrDot(text.back()))
        text.chop(1);
    return text;
}

bool fits(QStringView text, qsizetype maxBytes)
{
    return text.toUtf8().size() <= maxBytes;
}

} // namespace

QString safeFileName(const QString &text)
{
    QString safe = text;
    for (qsizetype i = 0; i < safe.size(); ++i) {
        const QChar c = safe.at(i);
        const bool isPaired =
            (c.isHighSurrogate() && i + 1 < safe.size() && safe.at(i + 1).isLowSurrogate()) ||
            (c.isLowSurrogate() && i > 0 && safe.at(i - 1).isHighSurrogate());
        if (c == u'/' || c == u':' || isUnseen(c.unicode()) || (c.isSurrogate() && !isPaired))
            safe[i] = u'_';
    }
    qsizetype start = 0;
    while (start < safe.size() && isBlankOrDot(safe.at(start)))
        ++start;
    return withoutEnd(safe.mid(start));
}

QString portableFileName(const QString &name)
{
    static const QRegularExpression forbidden(QStringLiteral(R"([\x00-\x1f\\/:*?"<>|]|[ .]\z)"));
    static const QRegularExpression reserved(
        QStringLiteral(
            R"(\A(con|prn|aux|nul|conin\$|conout\$|clock\$|(?:com|lpt)[1-9\x{b9}\x{b2}\x{b3}])(?= *(?:\.|\z)))"),
        QRegularExpression::CaseInsensitiveOption);
    QString portable = name;
    portable.replace(forbidden, QStringLiteral("_"));
    return portable.replace(reserved, QStringLiteral("\\1_"));
}

QString shortenedToBytes(const QString &text, qsizetype maxBytes)
{
    if (fits(text, maxBytes))
        return text;
    // A unit of UTF-16 is a byte at least. What follows may belong to the last letter.
    const QString head = text.left(maxBytes + 2);
    QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, head);
    letters.setPosition(std::min(text.size(), maxBytes));
    if (!letters.isAtBoundary())
        letters.toPreviousBoundary();
    while (letters.position() > 0 && !fits(QStringView(text).first(letters.position()), maxBytes))
        letters.toPreviousBoundary();
    qsizetype length = letters.position();
    if (length <= 0) { // one letter with more accents than fit
        length = std::min(text.size(), maxBytes);
        while (length > 0 &&
               (text.at(length - 1).isHighSurrogate() || !fits(QStringView(text).first(length), maxBytes)))
            --length;
    }
    return withoutEnd(text.first(length));
}

} // namespace plexa
