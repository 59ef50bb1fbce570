// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/metadatatext.h"

#include <QStringDecoder>
#include <QStringEncoder>

#include <algorithm>

namespace plexa
{

namespace
{

using namespace Qt::Literals::StringLiterals;

constexpr qsizetype kCodeBytes = 8;

/// Latin letters have a zero high byte: the side with more zeros holds the high bytes.
bool looksBigEndian(const QByteArray &utf16, bool otherwise)
{
    qsizetype zerosFirst = 0;
    qsizetype zerosSecond = 0;
    for (qsizetype i = 0; i + 1 < utf16.size(); i += 2) {
        zerosFirst += utf16[i] == '\0' && utf16[i + 1] != '\0';
        zerosSecond += utf16[i + 1] == '\0' && utf16[i] != '\0';
    }
    return zerosFirst == zerosSecond ? otherwise : zerosFirst > zerosSecond;
}

QString decodedUtf16(const QByteArray &bytes, bool fileIsBigEndian)
{
    const QByteArray whole = bytes.left(bytes.size() / 2 * 2);
    if (whole.startsWith("\xFE\xFF") || whole.startsWith("\xFF\xFE")) {
        QStringDecoder decoder(QStringDecoder::Utf16);
        return decoder(whole);
    }
    QStringDecoder decoder(looksBigEndian(whole, fileIsBigEndian) ? QStringDecoder::Utf16BE
                                                                  : QStringDecoder::Utf16LE);
    return decoder(whole);
}

} // namespace

QString decodedText(const QByteArray &bytes)
{
    return bytes.isValidUtf8() ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes);
}

QString trimmedAtEnd(QString text)
{
    qsizetype end = text.size();
    while (end > 0 && (text[end - 1].isSpace() || text[end - 1] == QChar::Null))
        --end;
    text.truncate(end);
    return text;
}

QString decodedField(const QByteArray &bytes)
{
    const qsizetype end = bytes.indexOf('\0');
    const QString text = decodedText(end < 0 ? bytes : bytes.left(end));
    const bool isBlank =
        std::all_of(text.begin(), text.end(), [](QChar character) { return character.isSpace(); });
    return isBlank ? QString() : text;
}

QString decodedComment(const QByteArray &bytes, bool fileIsBigEndian)
{
    if (bytes.size() < kCodeBytes)
        return trimmedAtEnd(decodedField(bytes));
    const QByteArray code = bytes.left(kCodeBytes);
    const QByteArray body = bytes.mid(kCodeBytes);
    QString text;
    if (code == "UNICODE\0"_ba) {
        text = decodedUtf16(body, fileIsBigEndian);
        const qsizetype end = text.indexOf(QChar::Null);
        if (end >= 0)
            text.truncate(end);
    } else if (code.startsWith("JIS\0"_ba)) {
        QStringDecoder decoder("ISO-2022-JP");
        text = decoder.isValid() ? QString(decoder(body)) : decodedField(body);
    } else {
        text = decodedField(body);
    }
    return trimmedAtEnd(text);
}

QByteArray encodedComment(const QString &text, bool bigEndian)
{
    const bool isAscii =
        std::all_of(text.begin(), text.end(), [](QChar character) { return character.unicode() < 0x80; });
    if (isAscii)
        return "ASCII\0\0\0"_ba + text.toLatin1();
    QStringEncoder encoder(bigEndian ? QStringEncoder::Utf16BE : QStringEncoder::Utf16LE);
    return "UNICODE\0"_ba + QByteArray(encoder(text));
}

QByteArray utf8OfAtMost(const QString &text, qsizetype maxBytes)
{
    QByteArray bytes = text.toUtf8();
    if (bytes.size() <= maxBytes)
        return bytes;
    qsizetype end = maxBytes;
    while (end > 0 && (static_cast<uchar>(bytes[end]) & 0xC0) == 0x80) // inside of a character
        --end;
    return bytes.left(end);
}

} // namespace plexa
