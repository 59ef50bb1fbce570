// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

namespace plexa
{

/// Text of unknown origin: UTF-8 where the bytes are valid UTF-8, else Windows-1252, which has Latin-1's
/// letters.
QString decodedText(const QByteArray &bytes);

/// A text of an IPTC record.
/// @param characterSet  the record's data set 1:90, an escape sequence of ISO 2022; empty or unknown: as
///                      decodedText(). So is a text that is not the UTF-8 that the record promises.
QString decodedIptcText(const QByteArray &bytes, const QByteArray &characterSet);

/// A padded field: up to its first NUL, as decodedIptcText(). A field of blanks gives an empty text.
QString decodedField(const QByteArray &bytes, const QByteArray &characterSet = {});

/// Without blanks and NULs at the end.
QString trimmedAtEnd(QString text);

/// IIM ends lines with CR, XML with LF: the same text with LF.
QString withXmlLineEnds(QString text);

/// Without the characters that XML 1.0 cannot hold, not even escaped: controls but for tabs and line ends,
/// halves of surrogate pairs, U+FFFE and U+FFFF.
QString xmlText(const QString &text);

/// An EXIF text that begins with eight bytes of character code ("ASCII", "UNICODE", "JIS" or NULs), such as
/// the user comment. Trailing blanks and NULs are left out.
/// @param fileIsBigEndian  decides for Unicode text that has no byte-order mark and looks the same both ways
QString decodedComment(const QByteArray &bytes, bool fileIsBigEndian);

/// The bytes of an EXIF text with character code: "ASCII" where that is enough, else "UNICODE" in the given
/// byte order.
QByteArray encodedComment(const QString &text, bool bigEndian);

/// The longest beginning of `text` that fits into so many bytes of UTF-8 without cutting a character.
QByteArray utf8OfAtMost(const QString &text, qsizetype maxBytes);

} // namespace plexa
