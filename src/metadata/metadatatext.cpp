// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/metadatatext.h"

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

/// What Windows-1252 has where Latin-1 has control characters, bytes 0x80 to 0x9F.
constexpr char16_t kWindowsOnly[] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                     0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QString decodedWindows1252(const QByteArray &bytes)
{
    QString text = QString::fromLatin1(bytes);
    for (QChar &character : text) {
        if (character.unicode() >= 0x80 && character.unicode() <= 0x9F)
            character = QChar(kWindowsOnly[character.unicode() - 0x80]);
    }
    return text;
}

/// The part of ISO 8859 that an escape sequence puts into the upper half: "ESC - A" and so on, the second
/// byte being '-', '.' or '/'. Registered in ISO-IR. Null: another one.
const char *nameOfLatinSet(const QByteArray &characterSet)
{
    struct Set {
        char final;
        const char *name;
    };
    static constexpr Set kSets[] = {{'B', "ISO-8859-2"}, {'C', "ISO-8859-3"}, {'D', "ISO-8859-4"},
                                    {'L', "ISO-8859-5"}, {'G', "ISO-8859-6"}, {'F', "ISO-8859-7"},
                                    {'H', "ISO-8859-8"}, {'M', "ISO-8859-9"}, {'b', "ISO-8859-15"}};
    if (characterSet.size() < 3 || characterSet[0] != '\x1B' ||
        !QByteArrayView("-./").contains(characterSet[1]))
        return nullptr;
    for (const Set &set : kSets) {
        if (set.final == characterSet[2])
            return set.name;
    }
    return nullptr;
}

bool isBlank(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar character) { return character.isSpace(); });
}

QByteArray upToNul(const QByteArray &bytes)
{
    const qsizetype end = bytes.indexOf('\0');
    return end < 0 ? bytes : bytes.left(end);
}

} // namespace

QString decodedText(const QByteArray &bytes)
{
    return bytes.isValidUtf8() ? QString::fromUtf8(bytes) : decodedWindows1252(bytes);
}

QString decodedIptcText(const QByteArray &bytes, const QByteArray &characterSet)
{
    const char *name = nameOfLatinSet(characterSet);
    if (name) {
        QStringDecoder decoder(name);
        if (decoder.isValid())
            return decoder(bytes);
    }
    if (characterSet.startsWith("\x1B-A") || characterSet.startsWith("\x1B.A"))
        return decodedWindows1252(bytes);
    return decodedText(bytes);
}

QString decodedIptcField(const QByteArray &bytes, const QByteArray &characterSet)
{
    const QString text = decodedIptcText(upToNul(bytes), characterSet);
    return isBlank(text) ? QString() : text;
}

QString trimmedAtEnd(QString text)
{
    qsizetype end = text.size();
    while (end > 0 && (text[end - 1].isSpace() || text[end - 1] == QChar::Null))
        --end;
    text.truncate(end);
    return text;
}

QString xmlText(const QString &text)
{
    QString allowed;
    allowed.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text[i];
        const bool isPair =
            character.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair) {
            allowed += character;
            allowed += text[++i];
        } else if (!character.isSurrogate() && character.unicode() < 0xFFFE &&
                   (character.unicode() >= 0x20 || character == u'\t' || character == u'\n' ||
                    character == u'\r')) {
            allowed += character;
        }
    }
    return allowed;
}

QString decodedField(const QByteArray &bytes)
{
    const QString text = decodedText(upToNul(bytes));
    return isBlank(text) ? QString() : text;
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
